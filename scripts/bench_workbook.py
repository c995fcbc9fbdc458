#!/usr/bin/python3
"""How long our writer and others take for one workbook: 10,000 rows of 29 texts, from a CSV file.

    scripts/bench_workbook.py build/host/bench/csv_to_workbook

Prints the median processor time of each candidate, run in turns:

zolvane           the whole process: start, reading the CSV file, writing. What it writes is the
                  workbook's stream; the compound file around it is the platform's work.
zolvane, writing  from the texts in memory to the closed file
xlwt, writing     the same, in this process, which has loaded the module before
ssconvert, LibreOffice            the whole process, LibreOffice with a profile that is there already
..., without its start            less the time that a file of one cell takes
"""

import csv
import resource
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import xlwt

ROUNDS = 5


def seconds_of_children():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def run(*command):
    """Its output, and the seconds that it and its own children took."""
    before = seconds_of_children()
    output = subprocess.run([str(word) for word in command], check=True, timeout=300,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL).stdout
    return output, seconds_of_children() - before


def write_by_xlwt(rows, target):
    start = time.process_time()
    book = xlwt.Workbook()
    sheet = book.add_sheet("Sheet1")
    for number, row in enumerate(rows):
        for column, text in enumerate(row):
            if text:
                sheet.write(number, column, text)
    book.save(str(target))
    return time.process_time() - start


class Bench:
    def __init__(self, ours, folder):
        self.ours, self.folder = ours, folder
        self.texts, self.one = folder / "texts.csv", folder / "one.csv"
        run(ours, "--make", self.texts)
        self.one.write_text('"x"\n')
        with open(self.texts, newline="") as file:
            self.rows = list(csv.reader(file))
        assert (len(self.rows), {len(row) for row in self.rows}) == (10_000, {29})

    def by_ssconvert(self, source):
        return run("ssconvert", "-T", "Gnumeric_Excel:excel_biff8", source,
                   self.folder / f"ssconvert-{source.stem}.xls")[1]

    def by_libreoffice(self, source):
        return run("soffice", f"-env:UserInstallation=file://{self.folder}/profile", "--headless",
                   "--convert-to", "xls:MS Excel 97", "--outdir", self.folder / "libreoffice",
                   source)[1]

    def round(self):
        """Seconds of each candidate."""
        output, whole = run(self.ours, self.texts, self.folder / "zolvane.stream")
        times = {"zolvane": whole, "zolvane, writing": float(output),
                 "xlwt, writing": write_by_xlwt(self.rows, self.folder / "xlwt.xls")}
        for name, convert in (("ssconvert", self.by_ssconvert),
                              ("LibreOffice", self.by_libreoffice)):
            times[name] = convert(self.texts)
            times[f"{name}, without its start"] = times[name] - convert(self.one)
        return times

    def written(self):
        return [self.folder / name for name in
                ("zolvane.stream", "xlwt.xls", "ssconvert-texts.xls", "libreoffice/texts.xls")]


def main():
    with tempfile.TemporaryDirectory() as folder:
        bench = Bench(sys.argv[1], Path(folder))
        # Makes LibreOffice's profile.
        bench.by_libreoffice(bench.one)
        rounds = [bench.round() for _ in range(ROUNDS)]
        for file in bench.written():
            assert file.stat().st_size > 1_000_000, file
    medians = {name: statistics.median(times[name] for times in rounds) for name in rounds[0]}
    medians["quickest converter without start"] = min(
        medians[name] for name in medians if name.endswith("without its start"))
    for name, seconds in medians.items():
        print(f"  {name:38} {seconds * 1000:10.3f} ms")


if __name__ == "__main__":
    main()
