#!/usr/bin/env bash
# Looks over the sources without running them: their form, clang-tidy's checks, the scripts, and the
# project's own rules. Changes nothing; fails if anything is found.
#   scripts/lint.sh [CHECK...]    format, rules, scripts, tidy; without any, all of them
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec </dev/null

# From the bottom up: a folder of src includes nothing from the ones behind it.
readonly folders=(orlo trellis platform inventory persist update export inspect actions view start)

install_missing() {
  local tool missing=() root=()
  for tool in clang-format clang-tidy shellcheck; do
    command -v "$tool" >/dev/null || missing+=("$tool")
  done
  [ "${#missing[@]}" -gt 0 ] || return 0
  [ "$(id -u)" -eq 0 ] || root=(sudo --)
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get -y install --no-install-recommends "${missing[@]}"
}

cpp_sources() {
  find src bench fuzz tests -name '*.cpp' -o -name '*.h' | sort
}

check_format() {
  cpp_sources | xargs clang-format --dry-run -Werror
}

# forbid RULE PATTERN FILE...: prints the lines that the pattern fits; fails if there are any.
forbid() {
  local rule=$1 pattern=$2 found
  shift 2
  [ $# -gt 0 ] || return 0
  found=$(LC_ALL=C grep -nHP -- "$pattern" "$@") || [ $? -eq 1 ] || return 1
  [ -n "$found" ] || return 0
  printf '%s:\n%s\n' "$rule" "$found"
  return 1
}

# Names of the folders behind the given one, as alternatives of a pattern.
folders_above() {
  local folder seen=no above=()
  for folder in "${folders[@]}"; do
    [ "$seen" = no ] || above+=("$folder")
    [ "$folder" != "$1" ] || seen=yes
  done
  [ "$seen" = yes ] || { echo "lint: src/$1 has no place in the order of folders" >&2; return 1; }
  (IFS='|'; echo "${above[*]}")
}

check_rules() {
  local all portable inside folder above failed=0
  mapfile -t all < <(cpp_sources)
  mapfile -t portable < <(printf '%s\n' "${all[@]}" | grep -vE '_win(_test)?\.(cpp|h)$')
  forbid 'only ASCII in sources' '[^\x00-\x7F]' "${all[@]}" || failed=1
  forbid 'no choice by the preprocessor' '^\s*#\s*(if|ifdef|ifndef|elif)\b' "${all[@]}" || failed=1
  forbid 'portable code has no wchar_t' '\bwchar_t\b' "${portable[@]}" || failed=1
  mapfile -t portable < <(printf '%s\n' "${portable[@]}" | grep -vx 'src/orlo/orlowin\.h')
  forbid 'portable code has no windows.h' '^#include <windows\.h>' "${portable[@]}" || failed=1
  for folder in src/*/; do
    folder=$(basename "$folder")
    above=$(folders_above "$folder") || { failed=1; continue; }
    [ -n "$above" ] || continue
    mapfile -t inside < <(printf '%s\n' "${all[@]}" | grep "^src/$folder/")
    forbid "src/$folder includes nothing from a folder above it" "^#include \"($above)/" "${inside[@]}" || failed=1
  done
  return "$failed"
}

check_scripts() {
  shellcheck scripts/*.sh
}

# The portable sources, as the host build compiles them.
check_tidy() {
  cmake --preset host >/dev/null || return
  # What it says beside its findings, on the error output, only counts what it left out.
  sed -nE "s|^ *\"file\": \"$PWD/((src\|bench\|fuzz)/.*)\",?\$|\1|p" \
    build/host/compile_commands.json | sort -u |
    xargs -P "$(nproc)" -n 1 clang-tidy -p build/host --quiet 2>/dev/null
}

run_check() {
  case $1 in
    format) check_format ;;
    rules) check_rules ;;
    scripts) check_scripts ;;
    tidy) check_tidy ;;
    *) echo "lint: no check $1: format, rules, scripts or tidy" >&2; return 1 ;;
  esac
}

install_missing
checks=("$@")
[ "${#checks[@]}" -gt 0 ] || checks=(format rules scripts tidy)
failures=0
for check in "${checks[@]}"; do
  if run_check "$check"; then
    echo "lint: $check ok"
  else
    echo "lint: $check FAILED"
    failures=$((failures + 1))
  fi
done
exit $((failures > 0))
