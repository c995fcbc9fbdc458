#!/usr/bin/python3
"""Prints the figures of scripts/bench.sh: each measured time beside what it is judged by, with the
ratio of the two and the bar for it, where there is one.

The folder given holds host.json, as Google Benchmark writes it, and for each bench of the target a
NAME.txt with lines "  CANDIDATE  1.234 ms", the program's own candidate being the first.
"""

import json
import re
import sys
from pathlib import Path

# Title, benchmark, benchmark beside it (or None), bar (or None).
HOST = (
    ("difference, 100,000 rows, 1 % changed", "BM_Difference", "BM_DifferenceFloor", 1.0),
    ("difference, tables without shared texts", "BM_DifferenceUnrelated", "BM_DifferenceFloor",
     None),
    ("reading 100,000 known rows anew", "BM_AddKnownRows", None, None),
    ("String: copy", "BM_Copy<String>", "BM_Copy<std::string>", None),
    ("String: append 1,000 pieces", "BM_Append<String>", "BM_Append<std::string>", None),
    ("date parsing, 8 texts", "BM_ParseDates", None, None),
    ("wildcard search", "BM_WildcardSearch", "BM_FindInFoldedText", None),
)
# Title, file, candidate beside the program's own, bar (or None).
TARGET = (
    ("registry pass, 2,000 subkeys", "registry_pass", "floor: values enumerated", 1.2),
    ("registry pass, 2,000 subkeys", "registry_pass", "naive: one query per value name", None),
    ("list filling, 2,000 entries", "list_fill", "floor: bare list view, frozen", 2.0),
)

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def host_medians(path):
    """Nanoseconds of each benchmark, the median of its repetitions."""
    return {run["run_name"]: run["cpu_time"] * NANOSECONDS[run["time_unit"]]
            for run in json.loads(path.read_text())["benchmarks"]
            if run.get("aggregate_name") == "median" and not run.get("error_occurred")}


def target_medians(path):
    """Nanoseconds of each candidate."""
    rows = re.findall(r"^  (\S.*?) +([0-9.]+) ms", path.read_text(), re.MULTILINE)
    return {name: float(time) * 1e6 for name, time in rows}


def shown(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= NANOSECONDS[unit]:
            return f"{nanoseconds / NANOSECONDS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def print_row(title, time, beside_name="", beside=None, bar=None):
    ratio = "" if beside is None else f"{time / beside:.2f}"
    verdict = ""
    if bar is not None:
        verdict = f"{bar:.1f}  {'holds' if time / beside <= bar else 'MISSED'}"
    print(f"{title:42}{shown(time):>9}  {beside_name:34}"
          f"{shown(beside) if beside is not None else '':>9} {ratio:>6}  {verdict}".rstrip())


def main():
    folder = Path(sys.argv[1])
    print(f"{'figure':42}{'median':>9}  {'beside':34}{'median':>9} {'ratio':>6}  bar")
    host = host_medians(folder / "host.json")
    for title, name, beside, bar in HOST:
        print_row(title, host[name], beside or "", host.get(beside), bar)
    for title, file, beside, bar in TARGET:
        times = target_medians(folder / f"{file}.txt")
        print_row(title, times["zolvane"], beside, times[beside], bar)
    # The split of the start is text already.
    for line in (folder / "list_fill.txt").read_text().splitlines():
        if line.startswith("Process start") or line.startswith("  pass"):
            print(line)


if __name__ == "__main__":
    main()
