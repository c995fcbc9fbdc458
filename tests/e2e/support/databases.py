"""Databases of Windows Installer packages: built by msibuild and wixl, read by msiinfo, and what a
browser has to show of them."""

import os
import shutil
import subprocess
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

from .packages import CELLAR, MEADOW, SOURCES, WICKET

REALDATA = "ZOLVANE_REALDATA"

# What a browser shows beside the tables that a database lists.
SYSTEM_TABLES = ("_Columns", "_Storages", "_Streams", "_Tables")
# What msiinfo lists beside them.
NO_TABLES = ("_SummaryInformation", "_ForceCodepage")

BINARY = "<binary>"
SHOWN_LENGTH = 1023


@dataclass
class Table:
    """`types` in the installer's words: s72, I4, v0."""

    names: list
    types: list
    rows: list = field(default_factory=list)

    @property
    def numbers(self):
        """For each column whether it is one of numbers."""
        return [kind[0] in "iIjJ" for kind in self.types]

    def shown_columns(self):
        """A list view's first column is at the left whatever is asked for."""
        return [(name, "right" if number and place > 0 else "left")
                for place, (name, number) in enumerate(zip(self.names, self.numbers))]

    def shown_rows(self):
        """In the order of their numbers as texts."""
        by_number = sorted(range(1, len(self.rows) + 1), key=str)
        return [[shown(text, kind) for text, kind in zip(self.rows[number - 1], self.types)]
                for number in by_number]


def shown(text, kind="s0"):
    """What a window of the Western code page shows of a value."""
    if kind[0] in "vV":
        return BINARY
    return text.encode("cp1252", "replace")[:SHOWN_LENGTH].decode("cp1252")


def _msiinfo(*words):
    """Its lines, of which some hold ends of lines of their own. It writes UTF-8 whatever the
    database's code page is."""
    with tempfile.TemporaryDirectory() as folder:  # It leaves the streams where it is run.
        told = subprocess.run(["msiinfo", *map(str, words)], cwd=folder, check=True, timeout=60,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL).stdout
    return told.decode()


def table_names(file):
    """Those that the database lists."""
    listed = _msiinfo("tables", file).split("\n")
    return [name for name in listed if name and name not in NO_TABLES]


def stream_names(file):
    return [name for name in _msiinfo("streams", file).split("\n") if name]


def read_table(file, name):
    """A table as msiinfo exports it, rows in the database's order."""
    if name == "_Streams":
        # Their names are no files' names, which an export would make of them.
        return Table(["Name", "Data"], ["s62", "v0"], [[name, ""] for name in stream_names(file)])
    return parse_export(_msiinfo("export", file, name))


def parse_export(text):
    names, types, _, *lines = text.removesuffix("\r\n").split("\r\n")
    table = Table(names.split("\t"), types.split("\t"))
    gaps = len(table.names) - 1
    record = None
    for line in lines:
        if record is not None and (record.count("\t") < gaps or gaps > 0 and "\t" not in line):
            # The ends of lines in a value aren't escaped.
            record += "\r\n" + line
            continue
        if record is not None:
            table.rows.append(record.split("\t"))
        record = line
    if record is not None:
        table.rows.append(record.split("\t"))
    assert all(len(row) == gaps + 1 for row in table.rows), names
    return table


@dataclass
class Fixture:
    """A file with a package in it. `make` writes it to a path; `told`: what was written to those
    tables that msiinfo can't be asked for, as their names need quotation marks."""

    file: str
    make: object
    told: dict = field(default_factory=dict)

    @property
    def path(self):
        return f"C:\\Packages\\{self.file}"

    def write(self, desk):
        """Into the prefix; where it lies for us."""
        desk.prefix.make_file(self.path)
        place = desk.prefix.host_path(self.path)
        place.unlink()
        self.make(place)
        return place


def copy_of(source):
    return lambda place: shutil.copyfile(source, place)


def package(source):
    """Built by wixl."""
    return lambda place: subprocess.run(["wixl", "-o", str(place), f"{source}.wxs"], cwd=SOURCES,
                                        check=True, timeout=60)


def database(tables, code_page=None, streams=None, queries=()):
    """Built by msibuild. `tables`: Table by its name, the first column of each is its key."""
    def make(place):
        with tempfile.TemporaryDirectory() as folder:
            words = ["msibuild", str(place)]
            if code_page is not None:
                words += ["-i", _write(folder, "_ForceCodepage",
                                       f"\r\n\r\n{code_page}\t_ForceCodepage\r\n")]
            for query in queries:
                words += ["-q", query]
            for name, table in tables.items():
                words += ["-i", _write(folder, name, _idt(folder, name, table))]
            for name, content in (streams or {}).items():
                words += ["-a", name, _write(folder, f"stream {name}", content)]
            subprocess.run(words, cwd=folder, check=True, timeout=60, stdin=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL)
    return make


def _write(folder, name, text):
    place = Path(folder) / f"{name}.idt"
    place.write_bytes(text if isinstance(text, bytes) else text.encode())
    return str(place)


def _idt(folder, name, table):
    """The text that msibuild takes; a stream's value stands in a file."""
    streams = Path(folder) / name
    lines = ["\t".join(table.names), "\t".join(table.types), f"{name}\t{table.names[0]}"]
    for row in table.rows:
        cells = []
        for value, kind in zip(row, table.types):
            if kind[0] in "vV" and value:
                streams.mkdir(exist_ok=True)
                (streams / value).write_bytes(b"\x00\x01 stream")
            cells.append(value.replace("\r", "\x11").replace("\n", "\x19"))
        lines.append("\t".join(cells))
    return "".join(line + "\r\n" for line in lines)


NUMBERS = Table(
    ["Key", "Short", "Long", "Text"], ["i2", "I2", "I4", "S0"],
    [["-32767", "-32767", "-2147483647", "lowest"], ["-1", "-1", "-1", ""],
     ["0", "0", "0", "zero"], ["1", "", "", "null"],
     ["32767", "32767", "2147483647", "highest"]])
LENGTHS = Table(
    ["Key", "Value"], ["s72", "L0"],
    [[f"{length}", ("abcdefghij" * 500)[:length]] for length in (1, 1022, 1023, 1024, 5000)])
LINES = Table(
    ["Key", "Value", "More"], ["s72", "L0", "L0"],
    [["first", "one\r\ntwo", "x"], ["last", "x", "three\r\nfour\r\n\r\nfive"], ["none", "", ""]])


def counted(count):
    """So many rows."""
    return Table(["Name", "Number", "Half", "Remark"], ["s72", "i4", "I4", "S255"],
                 [[f"Row {number:05d}", str(number), str(number // 2) if number % 2 == 0 else "",
                   f"remark {number % 7}"] for number in range(1, count + 1)])


def words_in(code_page, *texts):
    return Fixture(f"words {code_page}.msi", database(
        {"Words": Table(["Key", "Text"], ["i2", "L0"],
                        [[str(key), text] for key, text in enumerate(texts, 1)])}, code_page))


ODD_NAME = "Name, with (odd) signs"

MADE = [
    *(Fixture(f"{made.source}.msi", package(made.source)) for made in (MEADOW, WICKET, CELLAR)),
    Fixture("numbers.msi", database({"Numbers": NUMBERS})),
    Fixture("lengths.msi", database({"Lengths": LENGTHS, "Lines": LINES})),
    Fixture("rows.msi", database({"Dozen": counted(12), "One": counted(1), "None": counted(0)})),
    Fixture("reserved.msi", database({"Select": counted(3), "Order": counted(12)}),
            {"Select": counted(3), "Order": counted(12)}),
    Fixture("crowd.msi", database({"Crowd": counted(20000)})),
    Fixture("streams.msi", database(
        {"Binary": Table(["Name", "Data"], ["s72", "v0"], [["picture", "a"], ["sound", "b"]]),
         "Maybe": Table(["Key", "Data", "Number"], ["s72", "V0", "I2"],
                        [["with", "c", "1"], ["without", "", ""]])},
        streams={"loose": b"x", "a longer name of a stream.cab": b"y" * 5000})),
    Fixture("odd names.msi", database({}, queries=[
        f"CREATE TABLE `{ODD_NAME}` (`Key` SHORT NOT NULL, `select` LONG, `and from` CHAR(30) "
        "PRIMARY KEY `Key`)",
        f"INSERT INTO `{ODD_NAME}` (`Key`, `select`, `and from`) VALUES (1, 20, 'value')"]),
        {ODD_NAME: Table(["Key", "select", "and from"], ["i2", "I4", "S30"],
                         [["1", "20", "value"]])}),
    words_in(1252, "K\u00e4fer \u20ac \u2013 \u0160koda"),
    words_in(932, "\u65e5\u672c\u8a9e \u30c6\u30b9\u30c8", "plain"),
    words_in(1251, "\u041f\u0440\u0438\u0432\u0435\u0442 \u0401\u0436", "plain"),
    words_in(65001, "K\u00e4fer \u65e5\u672c \u041f\u0440\u0438 \u20ac", "plain"),
]


def real_files():
    """Packages of other makers; none where their folder isn't told."""
    folder = os.environ.get(REALDATA)
    return [] if not folder else [
        Fixture(f"real {file.name}", copy_of(file))
        for file in sorted((Path(folder) / "msi").iterdir()) if file.is_file()]
