#!/usr/bin/env bash
# Builds the benches, runs them and prints what they measure beside their floors. A busy machine
# gives wrong figures: let nothing else run. Raw results: build/bench.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec </dev/null

export LC_ALL=en_GB.UTF-8 TZ=Europe/Berlin
readonly python=/usr/bin/python3
readonly results=build/bench

build() {
  scripts/setup.sh
  cmake --preset host
  cmake --build --preset host -j "$(nproc)" --target zolvane_benches
  cmake --preset win32
  cmake --build --preset win32 -j "$(nproc)" --target zolvane zolvane_benches
}

run_host() {
  echo "bench: host, 9 repetitions in turns"
  build/host/bench/zolvane_bench --benchmark_repetitions=9 \
    --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true \
    --benchmark_out="$results/host.json" --benchmark_out_format=json >"$results/host.log" 2>&1
  build/host/bench/workbook_memory >"$results/workbook_memory.txt"
  build/host/bench/database_memory >"$results/database_memory.txt"
  echo "bench: workbooks of other programs, 5 times in turns"
  "$python" scripts/bench_workbook.py build/host/bench/csv_to_workbook \
    >"$results/workbook_file.txt"
}

# run_wine NAME [ARGUMENT...]: in a prefix and on a screen of its own.
run_wine() {
  local name=$1
  shift
  echo "bench: $name, in Wine"
  "$python" tests/e2e/in_prefix.py wine "build/win32/bench/${name}_bench.exe" "$@" \
    >"$results/$name.txt" 2>"$results/$name.log"
}

build
rm -rf "$results"
mkdir -p "$results"
load=$(cut -d ' ' -f 1 /proc/loadavg)
run_host
run_wine registry_pass
run_wine product_source
run_wine calm_cycle
run_wine servicing_source
run_wine line_read
run_wine update_log
run_wine list_model
run_wine list_paint
run_wine icon_pass
run_wine export_pass
run_wine database_table
run_wine database_open
run_wine list_fill 'build\win32\zolvane.exe'
echo "bench: $(nproc) cores, load at the start $load, $(wine --version), $(uname -m)"
"$python" scripts/bench_figures.py "$results"
