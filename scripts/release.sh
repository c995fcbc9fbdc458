#!/usr/bin/env bash
# Makes what a publisher uploads, in build/release: setup, portable archive, bill of materials and
# their checksums. Then makes it all a second time from a clone in another folder, and fails unless
# each byte is the same.
#   scripts/release.sh [--dirty] [--once] [--from DIR] [--into DIR] [-D NAME=VALUE]...
#     --dirty         takes the sources as they are, though they aren't what is committed
#     --once          leaves the second time out; --dirty does too
#     --from DIR      packs what has been built in this build folder, with its settings
#     --into DIR      puts the files there
#     -D NAME=VALUE   a setting of the build, as ZOLVANE_VERSION=5.4
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec </dev/null
# Nothing of what is made depends on whose machine it is.
export LC_ALL=C.UTF-8 TZ=UTC
umask 022

readonly python=/usr/bin/python3
# What has licences of its own, with the folder of the packages' own texts.
readonly lgpl_text=/usr/share/common-licenses/LGPL-2.1
readonly runtime_text=/usr/share/doc/mingw-w64-i686-dev/copyright

dirty=no once=no from='' into=build/release
settings=()

fail() {
  echo "release: $*" >&2
  exit 1
}

usage() {
  sed -n 's/^#   scripts/usage: scripts/p' "scripts/release.sh" >&2
  exit 2
}

read_arguments() {
  while [ $# -gt 0 ]; do
    case $1 in
      --dirty) dirty=yes once=yes ;;
      --once) once=yes ;;
      --from | --into | -D)
        [ $# -gt 1 ] || usage
        case $1 in
          --from) from=$(realpath -m "$2") ;;
          --into) into=$2 ;;
          -D) settings+=("-D$2") ;;
        esac
        shift ;;
      *) usage ;;
    esac
    shift
  done
  [ -z "$from" ] || [ "${#settings[@]}" -eq 0 ] ||
    fail "--from takes a build folder with its settings, so there is nothing for -D to set"
}

check_sources() {
  [ "$dirty" = no ] || return 0
  [ -z "$(git status --porcelain)" ] ||
    fail "there are changes that aren't committed; commit them, or make a trial with --dirty"
}

# setting BUILD NAME: its value in a build folder.
setting() {
  sed -n "s/^$2:[A-Z]*=//p" "$1/CMakeCache.txt"
}

# build SOURCE BUILD: the program and its help.
build() {
  cmake -S "$1" --preset win32 -B "$2" "${settings[@]}"
  cmake --build "$2" -j "$(nproc)" --target zolvane zolvane_help
}

# collect SOURCE BUILD FOLDER: the files that are installed, with one time.
collect() {
  local source=$1 build=$2 folder=$3
  mkdir -p "$folder"
  install -m 644 "$build/zolvane.exe" "$build/zolvane.chm" "$folder"
  "$python" "$source/scripts/release_files.py" set-help-time "$folder/zolvane.chm"
  {
    cat "$source/packaging/licences.txt" "$lgpl_text"
    printf '\n\n'
    cat "$runtime_text"
  } | sed 's/$/\r/' >"$folder/licences.txt"
  sed -e "s|@VERSION@|$(setting "$build" ZOLVANE_VERSION)|" \
    -e "s|@HOME_PAGE@|$(setting "$build" ZOLVANE_HOME_PAGE)|" -e 's/$/\r/' \
    "$source/packaging/readme.txt" >"$folder/readme.txt"
  find "$folder" -exec touch -d "@$SOURCE_DATE_EPOCH" {} +
}

# The version resource of a program, as its four numbers.
version_numbers() {
  i686-w64-mingw32-windres -i "$1" -O rc 2>/dev/null |
    sed -nE 's/^ *FILEVERSION ([0-9]+), ([0-9]+), ([0-9]+), ([0-9]+)$/\1.\2.\3.\4/p'
}

# make_setup SOURCE BUILD FOLDER SETUP
make_setup() {
  local source=$1 build=$2 folder=$3 setup=$4 size version numbers
  size=$(du -bck "$folder"/zolvane.* "$folder/licences.txt" | tail -n 1 | cut -f 1)
  version=$(setting "$build" ZOLVANE_VERSION)
  numbers=$(version_numbers "$folder/zolvane.exe")
  [ "$numbers" = "$(cut -d . -f -4 <<<"$version.0.0.0")" ] ||
    fail "$build/zolvane.exe is version $numbers, but its folder is set to $version"
  makensis -V2 -WX -INPUTCHARSET UTF8 \
    "-DVERSION=$version" "-DVERSION_NUMBERS=$numbers" \
    "-DHOME_PAGE=$(setting "$build" ZOLVANE_HOME_PAGE)" "-DMAIL=$(setting "$build" ZOLVANE_MAIL)" \
    "-DISSUE_TRACKER=$(setting "$build" ZOLVANE_ISSUE_TRACKER)" \
    "-DFILES=$folder" "-DINSTALLED_KB=$size" "-DICON=$source/resources/zolvane.ico" \
    "-DOUTPUT=$setup" "$source/packaging/zolvane.nsi"
}

# make SOURCE BUILD TARGET: all files from what has been built.
make() {
  local source=$1 build=$2 target=$3 name work
  for name in zolvane.exe zolvane.chm CMakeCache.txt; do
    [ -e "$build/$name" ] || fail "$build has no $name, so it is no folder of a build"
  done
  name=zolvane-$(setting "$build" ZOLVANE_VERSION)
  work=$(mktemp -d)
  collect "$source" "$build" "$work/files"
  rm -rf "$target"
  mkdir -p "$target"
  make_setup "$source" "$build" "$work/files" "$target/$name-setup.exe"
  "$python" "$source/scripts/release_files.py" archive "$work/files" "$target/$name-portable.zip"
  "$python" "$source/scripts/release_files.py" bill-of-materials "$name" \
    "$(setting "$build" ZOLVANE_HOME_PAGE)" "$work/files" "$target"
  rm -r "$work"
  (cd "$target" && sha256sum "$name"* >SHA256SUMS)
}

# From a clone in a folder of another name and length.
make_again() {
  local elsewhere status=0
  elsewhere=$(mktemp -d --suffix=-a-second-time)
  git clone --quiet . "$elsewhere/sources"
  [ -n "$from" ] || build "$elsewhere/sources" "$elsewhere/built"
  make "$elsewhere/sources" "${from:-$elsewhere/built}" "$elsewhere/release"
  diff -r "$into" "$elsewhere/release" >&2 || status=1
  rm -rf "$elsewhere"
  [ "$status" -eq 0 ] || fail "the second time gave other bytes"
  echo "release: the second time gave the same bytes"
}

read_arguments "$@"
check_sources
scripts/setup.sh release
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
if [ -z "$from" ]; then
  rm -rf build/release-build
  build "$PWD" "$PWD/build/release-build"
fi
make "$PWD" "${from:-$PWD/build/release-build}" "$(realpath -m "$into")"
[ "$once" = yes ] || make_again
(cd "$into" && ls -l -- *)
