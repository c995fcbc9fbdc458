#!/usr/bin/env bash
# Looks over the sources without running them: their form, clang-tidy's checks, the scripts, and the
# project's own rules. Changes nothing; fails if anything is found. Sources that clang-tidy has found
# clean are remembered; see scripts/tidy.py.
#   scripts/lint.sh [CHECK...]    format, rules, scripts, tidy; without any, all of them
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec </dev/null

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

# Reads the modules with what each knows of from CMakeLists.txt, where a module stands after those
# that it is built on: sets knows[MODULE] to its own name and those of all below it.
declare -A knows
read_modules() {
  local module others other
  while read -r module others; do
    knows[$module]=$module
    for other in $others; do knows[$module]+=" ${knows[$other]}"; done
  done < <(sed -nE 's/^zolvane_module\((.*)\)$/\1/p' CMakeLists.txt)
}

# The modules that the given one must not include from, as alternatives of a pattern.
foreign_folders() {
  local other foreign=()
  [ -n "${knows[$1]:-}" ] || { echo "lint: src/$1 is no module of CMakeLists.txt" >&2; return 1; }
  for other in "${!knows[@]}"; do
    [[ " ${knows[$1]} " == *" $other "* ]] || foreign+=("$other")
  done
  (IFS='|'; echo "${foreign[*]}")
}

check_rules() {
  local all portable inside folder foreign failed=0
  mapfile -t all < <(cpp_sources)
  mapfile -t portable < <(printf '%s\n' "${all[@]}" | grep -vE '_win(_test)?\.(cpp|h)$')
  forbid 'only ASCII in sources' '[^\x00-\x7F]' "${all[@]}" || failed=1
  forbid 'no choice by the preprocessor' '^\s*#\s*(if|ifdef|ifndef|elif)\b' "${all[@]}" || failed=1
  forbid 'portable code has no wchar_t' '\bwchar_t\b' "${portable[@]}" || failed=1
  mapfile -t portable < <(printf '%s\n' "${portable[@]}" | grep -vx 'src/orlo/orlowin\.h')
  forbid 'portable code has no windows.h' '^#include <windows\.h>' "${portable[@]}" || failed=1
  read_modules
  for folder in src/*/; do
    folder=$(basename "$folder")
    foreign=$(foreign_folders "$folder") || { failed=1; continue; }
    [ -n "$foreign" ] || continue
    mapfile -t inside < <(printf '%s\n' "${all[@]}" | grep "^src/$folder/")
    forbid "src/$folder includes only what it is built on" "^#include \"($foreign)/" "${inside[@]}" || failed=1
  done
  return "$failed"
}

check_scripts() {
  shellcheck scripts/*.sh
}

check_tidy() {
  cmake --preset host >/dev/null && cmake --preset win32 >/dev/null && scripts/tidy.py
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

scripts/setup.sh
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
