"""What readers of workbooks that come from elsewhere see in ours: each cell."""

import random
import subprocess

import olefile
import pytest
import xlrd

from conftest import BINARIES
from support import sheets
from support.exports import READERS, sheet_of
from support.registry import EXPAND_SZ, Key
from support.rules import World
from support.sheets import Wide

COUNT = 10_000
LONGEST = 32_767

# What a reader could take for something else than a text, or could trim.
TEXTS = [
    "M\u00fcller & S\u00f6hne", "stra\u00dfe \u00c4\u00d6\u00dc \u00f1\u00e9\u00e7",
    'A "quoted" name', '"', '""', "a;b;c", "a,b", "two\r\nlines", "a feed\nalone",
    "three\n\nwith an empty one", " blank before", "blank after ", "   ", "=1+1", "=SUM(A1:A9)",
    "'x", "'", "''", "1/2/2026", "2026-01-02", "12:30", "007", "42", "-1.5", "1e5", "1,234.50",
    "50 %", "TRUE", "#N/A", "+49 30 1", "@home", "<b>&amp;</b>", "tab\there",
    "C:\\Program Files\\x \"%1\"", "https://example.com/?a=1#b", "\u00a0no break\u00a0",
    # The last one has characters that readers take for different ones.
    "\u20ac\u2122 \u2013 \u201equoted\u201c",
]
LENGTHS = [1, 255, 256, 8_223, 8_224, 8_225, 20_000, LONGEST, LONGEST + 1, 40_000]
# Seconds. A date as a text would be shown by the time at which its key was written.
FIRST_DAY = 1_000_000_000
VALUES = ["DisplayVersion", "ParentDisplayName", "DisplayIcon", "InstallLocation", "Comments",
          "Publisher", "Contact", "HelpLink", "HelpTelephone", "URLInfoAbout", "URLUpdateInfo"]


def random_text(length, first, last, kind=str):
    """The same on each run."""
    choice = random.Random(length)
    return kind("".join(chr(choice.randint(first, last)) for _ in range(length)))


def narrow(length):
    return random_text(length, 0x21, 0x7E)


def wide(length):
    """Small Greek letters: catdoc can't bear the byte 1, which many other ones have in them."""
    return random_text(length, 0x3B1, 0x3C8, Wide)


def column(*texts):
    """A workbook of one sheet with one column. The table holds the texts in this order."""
    return [[[text] for text in texts]]


# The body of a record takes so many bytes. Before the first string stand 8, before each string's
# characters 3.
RECORD = 8_224
FIRST = RECORD - 8 - 3
FEW = [narrow(length) for length in range(20, 40)]
FEW_WIDE = [wide(length) for length in range(20, 40)]

# A string over several records needs others after it, which also see to the beginnings of its
# later pieces. As the last one it would be shown wrong: only the unit tests have that.
EDGES = {
    **{f"narrow-{size}": column(narrow(size), *FEW)
       for size in (FIRST, FIRST + 1, 8_223, 8_224, 8_225, 20_000, LONGEST)},
    **{f"wide-{size}": column(wide(size // 2), *FEW_WIDE)
       for size in (FIRST - 1, FIRST + 1, 8_222, 8_224, 8_226, 20_000)},
    **{f"room-{room}": column(narrow(FIRST - room), *FEW) for room in (0, 1, 11, 12, 13)},
    **{f"room-{room}-wide": column(narrow(FIRST - room), *FEW_WIDE)
       for room in (0, 1, 11, 12, 13, 14)},
    # The second one begins a record that it doesn't fit into.
    "room-5-long": column(narrow(FIRST - 5), narrow(9_000), *FEW),
    "room-5-long-wide": column(narrow(FIRST - 5), wide(4_500), *FEW_WIDE),
    "both": column(*(text for pair in zip(FEW * 20, FEW_WIDE * 20) for text in pair)),
    # A form feed divides the sheets of catdoc.
    "signs": column(*(f"{chr(code)} sign {chr(code)}" for code in (*range(1, 0x20), 0x7F)
                      if chr(code) not in "\x01\f\r\n\x1c\x1e"),
                    "a return\ralone", "\r", "\n", "\r\n", "\n at an edge", "at an edge\r\n",
                    *TEXTS[:-1]),
    "other-signs": column("a \x01 inside", "a \x1c inside", "a \x1e inside", *FEW),
}


def lines_of(count):
    return [[["a title", "another", "last"], *([f"line {line}", "same", ""]
                                               for line in range(1, count))]]


LENGTHS_OF_SHEETS = {f"{count}-lines": lines_of(count) for count in (1, 31, 32, 33, 35, 64, 65)}

# What lies some bytes beside the place that the table of sheets tells.
ELSEWHERE = {
    # The strings take a record more than is counted, as each record has room left at its end.
    "short": column(narrow(FIRST - 11), narrow(RECORD - 3 - 11), narrow(12)),
    # The size of a sheet counts a record of merged cells, which isn't written if there are none.
    "two": [[["a", "b"], ["c", ""]], [["b", "x"], [Wide("\u03b1\u03b2"), "z"], ["1", "2"]]],
}

# What is written, and what a reader finds.
NUMBERS = [
    [(5, 5), ("beside it", "beside it"), (-5, -5)],
    [(1, 1), (2, 2), (0, 0)],
    [(1.5, 1.5), (2.0, 2), (99.99, 99.99)],
    [(0.123, 0.123), (0.456, 0.456), (1.5, 1.5)],
    [(2.5, 2.5), (3, 3), ("a text", "a text")],
    [(3.14159265358979, 3.14159265358979), (1e300, 1e300), (-0.001, -0.001)],
    # The short form has 30 bits for any number, and isn't asked whether that is enough.
    [(536_870_911, 536_870_911), (-536_870_912, -536_870_912), (536_870_912, -536_870_912)],
    [(12_345_678.0, 12_345_664), (2_147_483_647, -1), ("", "")],
]
BOOKS = {**EDGES, **LENGTHS_OF_SHEETS, **ELSEWHERE, "empty": [[]],
         "numbers": [[[written for written, _ in line] for line in NUMBERS]]}


def text_value(text):
    """In a kind that the text of a .reg file tells byte by byte."""
    return (EXPAND_SZ, text)


def package(number, choice):
    values = {"DisplayName": f"Program {number}", "InstallDate": FIRST_DAY + number * 7_919}
    if number % 3 == 0:
        # In no middle between two texts, which one rounds up and the other down.
        values["EstimatedSize"] = choice.randrange(1 << 16) * 256
    if number % 20 == 0:
        # Few, as each blank in them has the system's folders searched.
        values["UninstallString"] = text_value(choice.choice(TEXTS))
        values["ModifyPath"] = f"C:\\Setups\\{number}.exe"
    for name in choice.sample(VALUES, 3):
        text = choice.choice(TEXTS)
        # Half of them stand there once, the others are shared.
        values[name] = text_value(f"{text}{number}" if choice.random() < 0.5 else text)
    return Key(("local", "local64", "user")[number % 3], f"Package {number:05}", values)


def long_package(length, choice):
    text = "".join(chr(choice.randrange(0x20, 0x7F)) for _ in range(length))
    return Key("local", f"Long {length:05}",
               {"DisplayName": f"Long {length}", "InstallDate": FIRST_DAY,
                "Comments": text_value(text)})


def packages(count):
    choice = random.Random(13)
    made = [long_package(length, choice) for length in LENGTHS]
    return made + [package(number, choice) for number in range(count - len(made))]


def export(desk, path):
    subprocess.run(["wine", str(BINARIES / "zolvane.exe"), "-eng", "-export", path],
                   env=desk.prefix.env, check=True, stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=300)
    return desk.prefix.host_path(path)


@pytest.fixture(scope="module")
def inventory(make_desk):
    """A workbook of the program, and the sheet that has to be in it."""
    keys = packages(COUNT)
    with make_desk(keys) as desk:
        # Each package has a date: when its key was written plays no part.
        world = World(keys, {}, {}, desk.prefix, desk.driver("short-date"))
        yield export(desk, "C:\\inventory.xls"), sheet_of(world)


@pytest.fixture(scope="module")
def small_desk(make_desk):
    with make_desk(packages(34)) as made:
        yield made


@pytest.fixture(scope="module")
def files(small_desk):
    return sheets.write(small_desk, BINARIES / "zolvane-sheets.exe", BOOKS)


def differences(found, expected):
    """The first few cells that aren't what they have to be."""
    assert [len(line) for line in found] == [len(line) for line in expected]
    return [(row, column, found[row][column], cell)
            for row, line in enumerate(expected) for column, cell in enumerate(line)
            if found[row][column] != cell][:5]


@pytest.mark.parametrize("name", READERS)
def test_readers_see_each_cell_of_an_inventory(inventory, name):
    file, sheet = inventory
    reader = READERS[name]
    ((found,),) = reader.sheets([file])
    assert (len(found), len(found[0])) == (COUNT + 1, 29)
    assert differences(found, [[reader.shows(cell[:LONGEST]) for cell in line]
                               for line in sheet]) == []


class Reading:
    """What a reader has seen in all books that it can open, in one go."""

    def __init__(self, reader, files):
        self.reader, self.files = reader, files
        names = [name for name in files if not (reader.trusts_positions and name in ELSEWHERE)]
        self.found = dict(zip(names, reader.sheets([files[name] for name in names])))

    def check(self, books):
        """The books hold their texts and no others."""
        for name, book in books.items():
            assert len(self.found[name]) == len(book), name
            for found, sheet in zip(self.found[name], book):
                expected = [[self.reader.ends(cell) for cell in line] for line in sheet]
                assert (name, differences(found, expected)) == (name, [])


@pytest.fixture(scope="module", params=READERS)
def reading(request, files):
    return Reading(READERS[request.param], files)


def has(book, letters):
    return any(letter in cell for sheet in book for line in sheet for cell in line
               for letter in letters)


def test_readers_see_strings_at_the_edges_of_records(reading):
    books = {name: book for name, book in EDGES.items() if not has(book, reading.reader.misread)}
    assert set(EDGES) - set(books) <= {"other-signs"}
    reading.check(books)


def test_readers_see_sheets_of_any_length(reading):
    reading.check(LENGTHS_OF_SHEETS)


def test_readers_see_no_text_in_an_empty_sheet(reading):
    """What there is instead differs: no sheet, one without a line, one with an empty cell."""
    assert not any(cell for sheet in reading.found["empty"] for line in sheet for cell in line)


def test_readers_see_numbers(reading):
    (found,) = reading.found["numbers"]
    assert [[type(shown)(cell) if cell != "" else "" for cell, (_, shown) in zip(line, expected)]
            for line, expected in zip(found, NUMBERS, strict=True)] == \
        [[shown for _, shown in line] for line in NUMBERS]


@pytest.mark.parametrize("name", ELSEWHERE)
def test_readers_find_sheets_elsewhere_unless_they_trust_the_told_place(reading, name):
    if reading.reader.trusts_positions:
        with pytest.raises(xlrd.XLRDError, match="Expected BOF record"):
            reading.reader.sheets([reading.files[name]])
    else:
        reading.check({name: ELSEWHERE[name]})


def records(file):
    """Code and body of each record."""
    with olefile.OleFileIO(str(file)) as opened:
        data = opened.openstream("Workbook").read()
    at = 0
    while at < len(data):
        code, size = (int.from_bytes(data[at + part:at + part + 2], "little") for part in (0, 2))
        yield code, data[at + 4:at + 4 + size]
        at += 4 + size


def test_35_lines_have_two_fonts_26_formats_of_cells_and_no_format_of_numbers(small_desk):
    file = export(small_desk, "C:\\small.xls")
    codes = [code for code, _ in records(file)]
    font, number_format, cell_format, row = 0x31, 0x41E, 0xE0, 0x208
    assert [codes.count(code) for code in (font, number_format, cell_format, row)] == [2, 0, 26, 35]
    book = xlrd.open_workbook(str(file), formatting_info=True)
    assert [(found.name, found.weight) for found in book.font_list] == [("Arial", 400),
                                                                        ("Arial", 700)]
    sheet = book.sheet_by_index(0)
    assert (len(book.xf_list), sheet.nrows, sheet.ncols) == (26, 35, 29)

    def looks(line):
        return [book.xf_list[sheet.cell_xf_index(line, column)] for column in range(29)]

    assert {look.font_index for look in looks(0)} == {1}
    assert {look.font_index for line in range(1, 35) for look in looks(line)} == {0}
