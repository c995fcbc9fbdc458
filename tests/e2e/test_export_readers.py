"""What readers of workbooks that come from elsewhere see in ours: each cell."""

import random
import subprocess

import pytest

from conftest import BINARIES
from support.exports import READERS, sheet_of
from support.registry import EXPAND_SZ, Key
from support.rules import World

COUNT = 10_000
LONGEST = 32_767

# What a reader could take for something else than a text, or could trim.
TEXTS = [
    "M\u00fcller & S\u00f6hne", "stra\u00dfe \u00c4\u00d6\u00dc \u00f1\u00e9\u00e7", 'A "quoted" name',
    '"', '""', "a;b;c", "a,b", "two\r\nlines", "a feed\nalone", "three\n\nwith an empty one",
    " blank before", "blank after ", "   ", "=1+1", "=SUM(A1:A9)", "'x", "'", "''", "1/2/2026",
    "2026-01-02", "12:30", "007", "42", "-1.5", "1e5", "1,234.50", "50 %", "TRUE", "#N/A", "+49 30 1",
    "@home", "<b>&amp;</b>", "tab\there", "C:\\Program Files\\x \"%1\"", "https://example.com/?a=1#b",
    "\u20ac\u2122 \u2013 \u201equoted\u201c", "\u00a0no break\u00a0",
]
LENGTHS = [1, 255, 256, 8_223, 8_224, 8_225, 20_000, LONGEST, LONGEST + 1, 40_000]
# Seconds. A date as a text would be shown by the time at which its key was written.
FIRST_DAY = 1_000_000_000
VALUES = ["DisplayVersion", "ParentDisplayName", "UninstallString", "ModifyPath", "DisplayIcon",
          "InstallLocation", "Comments", "Publisher", "Contact", "HelpLink", "HelpTelephone",
          "URLInfoAbout", "URLUpdateInfo"]


def text_value(text):
    """In a kind that the text of a .reg file tells byte by byte."""
    return (EXPAND_SZ, text)


def package(number, choice):
    values = {"DisplayName": f"Program {number}", "InstallDate": FIRST_DAY + number * 7_919}
    if number % 3 == 0:
        # In no middle between two texts, which one rounds up and the other down.
        values["EstimatedSize"] = choice.randrange(1 << 16) * 256
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


def packages():
    choice = random.Random(13)
    made = [long_package(length, choice) for length in LENGTHS]
    return made + [package(number, choice) for number in range(COUNT - len(made))]


def export(desk, path):
    subprocess.run(["wine", str(BINARIES / "zolvane.exe"), "-eng", "-export", path],
                   env=desk.prefix.env, check=True, stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=300)
    return desk.prefix.host_path(path)


@pytest.fixture(scope="module")
def inventory(make_desk, tmp_path_factory):
    """A workbook of the program, and the sheet that has to be in it."""
    keys = packages()
    with make_desk(keys) as desk:
        file = tmp_path_factory.mktemp("inventory") / "inventory.xls"
        file.write_bytes(export(desk, "C:\\inventory.xls").read_bytes())
        # Each package has a date: when its key was written plays no part.
        yield file, sheet_of(World(keys, {}, {}, desk.prefix, desk.driver("short-date")))


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
    assert len(found) == COUNT + 1
    assert differences(found, [[reader.shows(cell[:LONGEST]) for cell in line]
                               for line in sheet]) == []
