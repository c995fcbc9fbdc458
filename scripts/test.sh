#!/usr/bin/env bash
# Sets up, builds every preset and runs all tests. The last line is "N passed, N failed, N skipped";
# the exit code tells whether all went well. Logs: build/logs, screenshots: build/screenshots.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec </dev/null

# The tests' expectations hold for these, on every machine.
export LC_ALL=en_GB.UTF-8 TZ=Europe/Berlin
# The distribution's interpreter: the one that has the packages which setup.sh installs.
readonly python=/usr/bin/python3
readonly logs=build/logs
# One line for each attempt: name, exit code, kind, where its results are. See count_results.py.
readonly record=build/attempts.tsv
readonly fuzz_runs=20000

# attempt KIND NAME RESULTS COMMAND...: runs the command, its output in a log, and records how it
# went, in one line each, as two may run side by side. Fails as the command does.
attempt() {
  local kind=$1 name=$2 results=$3 log="$logs/$2.log" status=0 start=$SECONDS
  shift 3
  "$@" >"$log" 2>&1 || status=$?
  printf '%s\t%s\t%s\t%s\n' "$name" "$status" "$kind" "$results" >>"$record"
  if [ "$status" -eq 0 ]; then
    printf '%-16s ok, %s s\n' "$name" "$((SECONDS - start))"
  else
    printf '%-16s FAILED with %s, %s s; the end of %s:\n' \
      "$name" "$status" "$((SECONDS - start))" "$log"
    tail -n 40 "$log"
  fi
  return "$status"
}

# build PRESET [OPTION...]: with the benches, where the preset has any.
build() {
  local preset=$1 targets=(all)
  shift
  case $preset in host | win32 | win64) targets+=(zolvane_benches) ;; esac
  cmake --preset "$preset" "$@" &&
    cmake --build --preset "$preset" -j "$(nproc)" --target "${targets[@]}"
}

# run_ctest PRESET JOBS [COMMAND...]: all tests of a preset, behind a command where one is given.
run_ctest() {
  local preset=$1 jobs=$2 results="build/$1/results"
  shift 2
  rm -rf "$results"
  mkdir -p "$results"
  attempt ctest "$preset-tests" "$results" \
    "$@" ctest --preset "$preset" -j "$jobs" --output-junit "$PWD/$results/ctest.xml"
}

# A short replay of what the fuzzers know, and a little beyond it: the same on every run.
run_fuzzers() {
  local program name found
  for program in build/fuzz/fuzz/*_fuzz; do
    name=$(basename "$program")
    found="build/fuzz/found/$name"
    rm -rf "$found"
    mkdir -p "$found"
    attempt test "$name" - "$program" -runs="$fuzz_runs" -seed=1 -artifact_prefix="$found/" \
      "$found" "fuzz/corpus/${name%_fuzz}" || true
  done
}

run_e2e() {
  rm -rf build/screenshots build/e2e.xml
  attempt junit e2e build/e2e.xml \
    "$python" -m pytest -p no:cacheprovider -n "$(nproc)" --dist loadfile \
    --junitxml=build/e2e.xml tests/e2e
}

mkdir -p "$logs"
rm -f "$record"
scripts/setup.sh
attempt step lint - scripts/lint.sh || true
for preset in host asan tsan; do
  if attempt step "$preset" - build "$preset"; then run_ctest "$preset" "$(nproc)" || true; fi
done
attempt step win64 - build win64 || true
# Windows take turns on their screen, and so do their tests; the fuzzers have another core.
if attempt step fuzz - build fuzz; then fuzz=run_fuzzers; else fuzz=true; fi
if attempt step win32 - build win32 -DCMAKE_CROSSCOMPILING_EMULATOR=wine; then
  "$fuzz" &
  run_ctest win32 1 "$python" tests/e2e/in_prefix.py || true
  wait "$!" || printf 'fuzzers\t1\tstep\t-\n' >>"$record"
  run_e2e || true
else
  "$fuzz"
fi
"$python" scripts/count_results.py "$record"
