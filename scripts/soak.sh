#!/usr/bin/env bash
# What takes hours: each fuzz target for ten million executions, with the coverage it reached, and
# the end-to-end tests many times over.
#   scripts/soak.sh [-b] [-j JOBS] [-n EXECUTIONS] [-r ROUNDS] [TARGET...]
# A TARGET is the name of a fuzz target, "life" (closes and refreshes by the hundred) or "e2e";
# without any, all of these take their turn, one at a time. With -b the end-to-end tests run beside
# one busy loop on each core, with -j that many files of them at a time. One more target is only run
# if named, as it needs root and fetches a system of three gigabytes: "wine10", all tests of the win32
# build in a Debian 13 with its Wine 10 (see wine10.sh).
# What a fuzzer learns stays in build/soak/corpus, what it finds in build/soak/found; the figures
# are printed as a table at the end and kept in build/soak/figures.tsv.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec </dev/null

export LC_ALL=en_GB.UTF-8 TZ=Europe/Berlin
readonly python=/usr/bin/python3
readonly work=build/soak
readonly coverage_build=build/fuzz-coverage
executions=10000000
rounds=20
jobs=$(nproc)
busy=false
loops=()

# Each target's longest input: what a sensible text needs, as longer ones only cost time. Then the
# code that its coverage is counted over: the source files, and a pattern for the functions of a
# file that several targets share.
max_len() {
  case $1 in
    usage_cache) echo 560 ;;
    image_list) echo 512 ;;
    package_file) echo 4096 ;;
    pad) echo 512 ;;
    reg_text) echo 256 ;;
    update_key) echo 32 ;;
    xml_reader) echo 128 ;;
    *) echo 64 ;;
  esac
}
sources() {
  case $1 in
    dates) echo src/orlo/datetime.cpp src/orlo/scan.cpp ;;
    format) echo src/orlo/format.cpp src/orlo/format_reader.cpp ;;
    wildcard) echo src/orlo/wildcard.cpp ;;
    command | version) echo src/inventory/text_helpers.cpp ;;
    usage_cache) echo src/inventory/usage_cache.cpp ;;
    reg_text) echo src/platform/reg_text.cpp ;;
    update_key) echo src/inventory/updates_registry.cpp ;;
    update_line) echo src/inventory/update_log.cpp ;;
    packed_code) echo src/inventory/installer_patches.cpp ;;
    image_list) echo src/platform/image_list_bytes.cpp ;;
    package_file) echo src/platform/package_file_check.cpp ;;
    image_paths) echo src/persist/image_paths.cpp ;;
    pad) echo src/update/pad_reader.cpp src/update/update_check.cpp src/update/download.cpp ;;
    file_text)
      echo src/orlo/buffered_in.cpp src/orlo/buffered_in_text.cpp src/orlo/read_line.cpp
      ;;
    xml_reader)
      echo src/trellis/tl_native.cpp src/trellis/xml_reader.cpp src/trellis/xml_writer.cpp
      ;;
    xml_path) echo src/trellis/xml_path.cpp ;;
    xml_decode) echo src/trellis/xml_text.cpp ;;
    *) echo "soak: no sources are named for the target $1" >&2; exit 2 ;;
  esac
}
functions() {
  case $1 in
    command) echo 'SplitIconSpec|ResolveCommandLine|arguments|skip_space|is_space|end_of' ;;
    version) echo 'compareVersions|version_start|number|pieces|part_end|sign|skip|is_space|is_digit' ;;
    packed_code) echo 'PackProductCode' ;;
    update_line)
      echo 'parse_update_line|find_success|after|skip_prefix|take_word|in_code_page|split_title'
      ;;
    *) echo . ;;
  esac
}

usage() {
  sed -n '4s/^# *//p' "$0" >&2
  exit 2
}

all_targets() {
  local file
  for file in fuzz/*_fuzz.cpp; do basename "$file" _fuzz.cpp; done
}

# The tools that count lines come with the compiler's suite, not with the compiler.
install_coverage_tools() {
  command -v llvm-cov-14 >/dev/null && command -v llvm-profdata-14 >/dev/null && return
  local root=()
  [ "$(id -u)" -eq 0 ] || root=(sudo --)
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -y install --no-install-recommends llvm-14
}

build_fuzzers() {
  install_coverage_tools
  cmake --preset fuzz
  cmake --build --preset fuzz -j "$(nproc)"
  cmake --preset fuzz -B "$coverage_build" \
    -DCMAKE_CXX_FLAGS="-fprofile-instr-generate -fcoverage-mapping"
  cmake --build "$coverage_build" -j "$(nproc)"
}

# line_coverage TARGET: lines and branches reached of all, from everything that the target knows.
line_coverage() {
  local target=$1 program="$coverage_build/fuzz/$1_fuzz" profile="$work/$1"
  local files
  read -ra files <<<"$(sources "$target")"
  LLVM_PROFILE_FILE="$profile.profraw" "$program" -runs=0 \
    "$work/corpus/$target" "fuzz/corpus/$target" >"$profile.coverage.log" 2>&1
  llvm-profdata-14 merge -sparse "$profile.profraw" -o "$profile.profdata"
  # A function's columns: name; then of regions, lines and branches all, missed and percentage.
  llvm-cov-14 report "$program" -instr-profile="$profile.profdata" -show-functions "${files[@]}" |
    awk -v names="$(functions "$target")" '
      function reached(all, missed) {
        return sprintf("%d of %d (%.1f %%)", all - missed, all, 100 * (all - missed) / all)
      }
      NF == 10 && $1 != "TOTAL" && $5 ~ /^[0-9]+$/ && $1 ~ names {
        lines += $5; missed_lines += $6; branches += $8; missed_branches += $9
      }
      END { printf "%s\t%s", reached(lines, missed_lines), reached(branches, missed_branches) }'
}

# soak TARGET: fails if the target has found something.
soak() {
  local target=$1 log="$work/$1.log" status=0
  mkdir -p "$work/corpus/$target" "$work/found/$target"
  echo "soak: $target, $executions executions"
  # Without the entropic schedule, whose bookkeeping costs these short inputs more than they do.
  "build/fuzz/fuzz/${target}_fuzz" -runs="$executions" -max_len="$(max_len "$target")" \
    -entropic=0 -timeout=60 -print_final_stats=1 -artifact_prefix="$work/found/$target/" \
    "$work/corpus/$target" "fuzz/corpus/$target" >"$log" 2>&1 || status=$?
  if [ "$status" -ne 0 ]; then
    echo "soak: $target has ended with $status; see $log and $work/found/$target"
    tail -n 20 "$log"
    return 1
  fi
  write_figures "$target" "$log"
}

# One line of figures: target, longest input, executions, seconds, edges, features, lines,
# branches.
write_figures() {
  local target=$1 log=$2 done_line seconds runs edges features
  done_line=$(grep -E '^#[0-9]+[[:space:]]+DONE ' "$log")
  runs=$(sed -E 's/^#([0-9]+).*/\1/' <<<"$done_line")
  edges=$(sed -E 's/.* cov: ([0-9]+).*/\1/' <<<"$done_line")
  features=$(sed -E 's/.* ft: ([0-9]+).*/\1/' <<<"$done_line")
  seconds=$(sed -nE 's/^Done [0-9]+ runs in ([0-9]+) second.*/\1/p' "$log")
  # The newest figures of a target replace its older ones.
  touch "$work/figures.tsv"
  {
    grep -v "^$target	" "$work/figures.tsv" || true
    printf '%s\t%s\t%s\t%s\t%s\t%s\t%s\n' "$target" "$(max_len "$target")" "$runs" "$seconds" \
      "$edges" "$features" "$(line_coverage "$target")"
  } >"$work/figures.new"
  sort "$work/figures.new" >"$work/figures.tsv"
  rm "$work/figures.new"
}

# A loop ends by itself once this script is gone, however that came.
start_busy_loops() {
  local core cores
  cores=$(nproc)
  for ((core = 0; core < cores; ++core)); do
    # shellcheck disable=SC2016 # for the inner shell
    taskset -c "$core" sh -c '
      while kill -0 "$1" 2>/dev/null; do
        i=0
        while [ "$i" -lt 100000 ]; do i=$((i + 1)); done
      done' busy-loop "$$" &
    loops+=("$!")
  done
}
end_busy_loops() {
  [ "${#loops[@]}" -eq 0 ] || kill "${loops[@]}"
  loops=()
}

# Fails if any round has a failed test.
soak_e2e() {
  local round failed=0
  cmake --preset win32 || return
  cmake --build --preset win32 -j "$(nproc)" || return
  rm -f "$work"/e2e.*.log
  if "$busy"; then start_busy_loops; fi
  for ((round = 1; round <= rounds; ++round)); do
    if ! "$python" -m pytest -q -p no:cacheprovider -n "$jobs" --dist loadfile tests/e2e \
      >"$work/e2e.$round.log" 2>&1; then
      failed=$((failed + 1))
      mv "$work/e2e.$round.log" "$work/e2e.$round.failed.log"
    fi
    echo "soak: end to end, round $round of $rounds: $(tail -n 1 "$work"/e2e."$round".*log)"
  done
  end_busy_loops
  echo "soak: end to end, $failed of $rounds rounds had failures"
  [ "$failed" -eq 0 ]
}

# What the end-to-end tests do ten or fifty times, two hundred and five hundred times, with a
# histogram of where the closes have hit; a line of 200 MB; and the list model through random steps.
soak_life() {
  cmake --preset host || return
  cmake --build --preset host -j "$(nproc)" --target orlo_tests view_tests || return
  ZOLVANE_LONG_LINE_MB=200 build/host/orlo_tests --gtest_filter='*AHugeLine*' || return
  ZOLVANE_RANDOM_RUNS=100000 build/host/view_tests --gtest_filter='ListModel.*Whatever*' || return
  cmake --preset win32 || return
  cmake --build --preset win32 -j "$(nproc)" \
    --target zolvane zolvane-held zolvane-driver zolvane-probe || return
  ZOLVANE_CLOSES=200 ZOLVANE_REFRESHES=500 "$python" -m pytest -q -s -p no:cacheprovider \
    -k 'closes or leave_nothing' tests/e2e/test_life.py tests/e2e/test_watching.py
}

# judge NAME KIND RESULTS COMMAND...: runs a command's tests under Wine 10, and says how many have
# passed and failed. KIND and RESULTS are those of count_results.py.
judge() {
  local name=$1 kind=$2 results=$3 output="$work/wine10/$1" status=0
  shift 3
  scripts/wine10.sh "$@" >"$output.log" 2>&1 || status=$?
  printf '%s\t%s\t%s\t%s\n' "$name" "$status" "$kind" "$results" >"$output.tsv"
  status=0
  "$python" scripts/count_results.py "$output.tsv" >"$output.figures" || status=$?
  [ "$status" -eq 0 ] || tail -n 40 "$output.log"
  sed "s/^/soak: Wine 10, $name: /" "$output.figures"
  return "$status"
}

soak_wine10() {
  local own=$work/wine10 failed=0
  cmake --preset win32 -DCMAKE_CROSSCOMPILING_EMULATOR=wine || return
  cmake --build --preset win32 -j "$(nproc)" || return
  # That system has no compilers; its tests take these setups as they are.
  "$python" tests/e2e/support/releases.py || return
  mkdir -p "$own"
  rm -rf "$own/results" "$own/screenshots" "$own/e2e.xml"
  judge unit ctest "$own/results" "$python" tests/e2e/in_prefix.py \
    ctest --preset win32 --output-junit "$PWD/build/win32/results/ctest.xml" || failed=1
  judge e2e junit "$own/e2e.xml" "$python" -m pytest -p no:cacheprovider -n "$(nproc)" \
    --dist loadfile --junitxml="$own/e2e.xml" tests/e2e || failed=1
  return "$failed"
}

while getopts bj:n:r: option; do
  case $option in
    b) busy=true ;;
    j) jobs=$OPTARG ;;
    n) executions=$OPTARG ;;
    r) rounds=$OPTARG ;;
    *) usage ;;
  esac
done
shift $((OPTIND - 1))
mapfile -t known < <(all_targets)
targets=("$@")
[ "${#targets[@]}" -gt 0 ] || targets=("${known[@]}" life e2e)
for target in "${targets[@]}"; do
  [[ " ${known[*]} life e2e wine10 " == *" $target "* ]] ||
    { echo "soak: no target $target" >&2; usage; }
done

trap end_busy_loops EXIT
scripts/setup.sh
mkdir -p "$work"
for target in "${targets[@]}"; do
  [[ " ${known[*]} " == *" $target "* ]] || continue
  build_fuzzers
  break
done
failures=0
for target in "${targets[@]}"; do
  case $target in
    life) soak_life || failures=$((failures + 1)) ;;
    e2e) soak_e2e || failures=$((failures + 1)) ;;
    wine10) soak_wine10 || failures=$((failures + 1)) ;;
    *) soak "$target" || failures=$((failures + 1)) ;;
  esac
done
if [ -s "$work/figures.tsv" ]; then
  {
    printf 'target\tlongest\texecutions\tseconds\tedges\tfeatures\tlines\tbranches\n'
    cat "$work/figures.tsv"
  } | column -t -s $'\t'
fi
exit $((failures > 0))
