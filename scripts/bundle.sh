#!/usr/bin/env bash
# Makes build/zolvane-bundle.zip for a real Windows: the program, all test programs with the data
# that they read, run-tests.cmd, and the list of what to look at by hand.
#   scripts/bundle.sh [--try]    --try: unpacks it into an empty folder and runs its tests in Wine
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

readonly python=/usr/bin/python3
readonly folder=build/bundle
readonly bundle=build/zolvane-bundle.zip

# with_crlf SOURCE TARGET: the line ends that cmd.exe and every Windows's editor understand.
with_crlf() {
  sed 's/$/\r/' "$1" >"$2"
}

build() {
  scripts/setup.sh
  cmake --preset win32
  cmake --build --preset win32 -j "$(nproc)"
}

collect() {
  local corpus
  rm -rf "$folder"
  mkdir -p "$folder/tests" "$folder/testdata/fuzz" "$folder/testdata/packaging"
  cp build/win32/zolvane.exe build/win32/zolvane.chm "$folder"
  find build/win32 -name '*_tests.exe' -exec cp -t "$folder/tests" {} +
  # The foundation's tests look for it beside them.
  cp -r build/win32/orlocore "$folder/tests"
  corpus=$folder/testdata/fuzz/corpus
  cp -r fuzz/corpus "$corpus"
  cp packaging/zolvane-pad.xml "$folder/testdata/packaging"
  with_crlf scripts/bundle/run-tests.cmd "$folder/run-tests.cmd"
  with_crlf docs/windows-checklist.md "$folder/windows-checklist.txt"
}

pack() {
  rm -f "$bundle"
  (cd "$folder" && "$python" -m zipfile -c "../${bundle##*/}" ./*)
}

# As on a foreign machine: nothing but what is in the bundle, in a fresh prefix.
try() {
  local empty status=0
  empty=$(mktemp -d)
  "$python" -m zipfile -e "$bundle" "$empty"
  (cd "$empty" && LC_ALL=en_GB.UTF-8 TZ=Europe/Berlin "$python" "$OLDPWD/tests/e2e/in_prefix.py" \
    wine cmd /c run-tests.cmd /q) || status=$?
  rm -rf build/bundle-results
  cp -r "$empty/results" build/bundle-results
  rm -rf "$empty"
  echo "bundle: the results are in build/bundle-results"
  return "$status"
}

case ${1:-} in
  '' | --try) ;;
  *) echo "usage: $0 [--try]" >&2; exit 2 ;;
esac
build
collect
pack
echo "bundle: $bundle, $(stat -c %s "$bundle") bytes"
if [ "${1:-}" = --try ]; then try; fi
