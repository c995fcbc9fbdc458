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
    ("lines of 50 MB, overlapped", "BM_ReadLines<ORLO::OverlappedInFile>", "BM_ReadLinesFloor",
     1.2),
    ("lines of 50 MB, synchronous", "BM_ReadLines<ORLO::SyncInFile>", "BM_ReadLinesFloor", 1.2),
    ("XML: reading 10,000 rows", "BM_ReadRows", "BM_ReadRowsFloor", 1.5),
    ("XML: reading by characters", "BM_ReadRowsByCharacters", "BM_ReadRowsFloor", None),
    ("XML: writing 10,000 rows", "BM_WriteRows", "BM_WriteRowsFloor", 1.0),
    ("history: 10,000 rows, written to a file", "BM_WriteHistory", None, None),
    ("history: the file, read into a table", "BM_ReadHistory", None, None),
    ("difference and marks, 10,000 rows", "BM_DifferenceAndMarks", None, None),
    ("marks alone, 10,000 rows", "BM_Marks", None, None),
    ("wildcard search", "BM_WildcardSearch", "BM_FindInFoldedText", None),
    ("keystroke, 200 of 10,000 match", "BM_SearchKeystroke/0", "BM_SearchKeystrokeFloor/0", 1.0),
    ("keystroke, none of 10,000 matches", "BM_SearchKeystroke/1", "BM_SearchKeystrokeFloor/1", 1.0),
    ("keystroke, all of 10,000 match", "BM_SearchKeystroke/2", "BM_SearchKeystrokeFloor/2", 1.0),
    ("CSV: 10,000 packages", "BM_WriteCsv/real_time", "BM_CsvBytes/real_time", 1.5),
    ("JSON lines: 10,000 packages", "BM_WriteJsonLines", "BM_JsonBytes", 2.0),
    ("10,000 entries into the model", "BM_FirstFill", None, None),
    ("workbook of 10,000 by 29 cells, to a file", "BM_WriteWorkbook", "BM_WorkbookFloor", 1.5),
    ("the same without table to fill and file", "BM_WorkbookStream", "BM_WorkbookHashesAndBytes", None),
    *((f"sort of 10,000 rows by column {column}", f"BM_SortByColumn/{column}/min_time:0.050", None,
       None) for column in range(32)),
)
# Title, file, candidate beside the program's own, bar (or None).
TARGET = (
    ("registry pass, 2,000 subkeys", "registry_pass", "floor: values enumerated", 1.2),
    ("registry pass, 2,000 subkeys", "registry_pass", "naive: one query per value name", None),
    ("product source, 500 products", "product_source", "floor: bare calls", 1.2),
    ("cycle without a change, 5,000 subkeys", "calm_cycle", "calls of its sources alone", 1.1),
    ("servicing packages, 5,000 keys", "servicing_source", "floor: values enumerated", 1.2),
    ("lines of 50 MB", "line_read", "floor: the same blocks", 1.2),
    ("update log of 50 MB, 1 % successes", "update_log", "floor: its lines alone", 1.3),
    ("table of 20,000 rows shown", "database_table", "floor: bare list view, frozen", 2.0),
    ("database of 100 tables, 5,000 rows", "database_open", "floor: bare calls", 1.2),
    ("list filling, 2,000 entries", "list_fill", "floor: bare list view, frozen", 2.0),
)
# Files with several candidates of the program's own: title, candidate, candidate beside it, bar.
LIST_MODEL = (
    ("first fill, 10,000 rows", "first fill", "floor: bare list for first fill", 2.0),
    ("keystroke, all of 10,000 rows match", "keystroke, all match",
     "floor: bare list for all match", 2.0),
    ("keystroke, 200 of 10,000 rows match", "keystroke, 200 match",
     "floor: bare list for 200 match", 2.0),
    ("sort of 10,000 rows by size", "sort by size", None, None),
    ("sort of 10,000 rows by program name", "sort by program name", None, None),
)
LIST_PAINT = (
    ("10 repaints of 50 rows, search active", "coloured, search active",
     "floor: without colours", None),
    ("10 repaints of 50 rows, no search", "coloured", "floor: without colours", None),
)
ICON_PASS = (
    ("first icon pass, 2,000 rows, 300 icons", "first icon pass", "floor: bare calls", 1.2),
    ("icon pass with nothing new, 10,000 rows", "calm icon pass", None, None),
    ("the same: the window's longest answer", "calm icon pass, longest answer", None, None),
    ("images at the start, 300 kept", "images at the start, 300 kept",
     "images at the start, none kept", None),
    ("choice of a row", "choice of a row", None, None),
)
EXPORT_PASS = (
    ("export as JSON lines, 2,000 entries", "json", "the pass alone", 1.1),
    ("export as CSV, 2,000 entries", "csv", "the pass alone", 1.1),
)
WORKBOOK_FILE = (
    ("workbook from texts, 10,000 by 29 cells", "zolvane, writing", "xlwt, writing", 0.1),
    ("workbook from CSV, whole process", "zolvane", "quickest converter without start", 0.1),
    ("workbook from CSV, whole process", "zolvane", "ssconvert", None),
    ("workbook from CSV, whole process", "zolvane", "LibreOffice", None),
)

BY_CLOCK = "/real_time"
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def host_medians(path):
    """Nanoseconds of each benchmark, the median of its repetitions: by the clock where the benchmark
    asks for that, else of processor time."""
    return {run["run_name"]: run["real_time" if run["run_name"].endswith(BY_CLOCK) else "cpu_time"]
            * NANOSECONDS[run["time_unit"]]
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
    for file, rows in (("list_model", LIST_MODEL), ("list_paint", LIST_PAINT),
                       ("icon_pass", ICON_PASS), ("export_pass", EXPORT_PASS),
                       ("workbook_file", WORKBOOK_FILE)):
        times = target_medians(folder / f"{file}.txt")
        for title, name, beside, bar in rows:
            print_row(title, times[name], beside or "", times.get(beside), bar)
    print((folder / "workbook_memory.txt").read_text(), end="")
    print((folder / "database_memory.txt").read_text(), end="")
    for line in (folder / "database_open.txt").read_text().splitlines():
        if line.startswith("database of"):
            print(line)
    # The split of the start is text already.
    for line in (folder / "list_fill.txt").read_text().splitlines():
        if line.startswith("Process start") or line.startswith("  pass"):
            print(line)


if __name__ == "__main__":
    main()
