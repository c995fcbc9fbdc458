"""The list over packages whose texts, dates and numbers are as bad as a registry can hold them."""

import itertools

import pytest

from support import orders
from support.program import ALL_PACKAGES, LIST, SEARCH, eventually
from support.registry import SZ, UNINSTALL, Key

SHOW_ALL_COLUMNS = 2017
MEGABYTE = 1 << 20
LONG_NAME = "n" * 255

KEYS = [
    Key("user", LONG_NAME, {"DisplayName": "d" * 1000, "DisplayVersion": "9" * 300,
                            "Publisher": "(" * 500}),
    Key("user", "megabyte", {"DisplayName": "Megabyte", "Comments": "x" * MEGABYTE,
                             "UninstallString": "u" * MEGABYTE}),
    Key("user", "megabyte too", {"DisplayName": "Megabyte", "Comments": "x" * MEGABYTE + "y"}),
    Key("user", "pattern", {"DisplayName": "[a-z]+(*)?", "Publisher": "a*b?c"}),
    Key("user", "format", {"DisplayName": "%s%n%d%#s%p", "Comments": "%s" * 100,
                           "DisplayVersion": "%d.%s"}),
    Key("user", "ends of numbers", {"DisplayName": "Numbers", "EstimatedSize": 0xFFFFFFFF,
                                    "SystemComponent": 0xFFFFFFFF, "WindowsInstaller": 0x80000000}),
    Key("user", "other end", {"DisplayName": "Numbers", "EstimatedSize": 0x7FFFFFFF,
                              "SystemComponent": 0x80000000, "DisplayVersion": "4294967296.-1..x"}),
    *(Key("user", f"date {number}", {"DisplayName": "Dated", "InstallDate": date})
      for number, date in enumerate(("20230229", "31/31/2013", "00000000", "99999999", "16010101",
                                     "30828-01-01", "0", "-", "/" * 300, "2024-02-29"))),
    *(Key("user", f"equal {number:02}", {"DisplayName": "Equal"}) for number in range(30)),
    Key("user", "{}", {"DisplayName": "{}", "ParentKeyName": "{}"}),
    Key("user", "{", {"DisplayName": " ", "ParentKeyName": "}"}),
    Key("user", "nul", {}),
]
# Each of the rules for sorting: collation, bytes, program name, version, parent, date, numbers.
COLUMNS = (0, 1, 2, 3, 5, 6, 8, 20, 22, 24, 9)


@pytest.fixture(scope="module")
def program(make_desk):
    with make_desk(KEYS) as desk:
        desk.driver("reg-set", "HKCU", 64, f"Software\\{UNINSTALL}\\nul", "DisplayName", SZ,
                    b"before\0behind\0")
        opened = desk.open("-nopersist", "-noupdate")
        opened.select_type(ALL_PACKAGES)
        opened.wait_filled(len(KEYS))
        opened.ask("command", SHOW_ALL_COLUMNS)
        yield opened
        assert opened.close() == 0


def search(program, text):
    program.ask("set-text", SEARCH, text)
    return sorted(program.column(0))


def test_every_package_has_its_row(program):
    assert sorted(program.column(0)) == sorted(key.name for key in KEYS)
    rows = {row[0]: row for row in program.rows()}
    # A text ends at its first NUL.
    assert rows["nul"][2] == "before"
    assert rows["format"][2] == "%s%n%d%#s%p"
    assert rows["pattern"][2] == "[a-z]+(*)?"
    # A size of -1 is none.
    assert rows["ends of numbers"][8] == ""


@pytest.mark.parametrize("text, found", [
    ("[a-z]+(", ["pattern"]),
    ("A*B?C", ["pattern"]),
    ("%s%n", ["format"]),
    ("%d.%s", ["format"]),
    ("\\", []),
    ("before?", []),
    ("behind", []),
    (LONG_NAME, [LONG_NAME]),
    (LONG_NAME + "n", []),
    ("9" * 300, [LONG_NAME]),
    ("x" * 1000 + "y", ["megabyte too"]),
    ("xx*xy", ["megabyte too"]),
    ("*?" * 5000, ["megabyte", "megabyte too"]),
    ("u" * 2000, ["megabyte"]),
], ids=lambda value: str(value)[:20] if isinstance(value, str) else None)
def test_a_search_finds_what_holds_the_text(program, text, found):
    assert search(program, text) == found
    assert program.status() == f"{len(found)} / {len(KEYS)} packages"


def test_every_order_keeps_every_row(program):
    everything = search(program, "")
    for column in COLUMNS:
        for shift, arrow in ((-3, "down"), (3, "up")):
            program.click_header(column, shift)
            eventually(lambda: program.arrows() == {column: arrow}, f"{arrow} in {column}")
            assert sorted(program.column(0)) == everything
    # Dates that can't be converted come last, and equal rows stay together.
    program.click_header(6)
    eventually(lambda: program.arrows() == {6: "down"}, "sorted by date")
    dates = [orders.date(text) for text in program.column(6)]
    assert dates == sorted(dates) and len({is_none for is_none, _ in dates}) == 2
    program.click_header(2)
    eventually(lambda: program.arrows() == {2: "down"}, "sorted by program name")
    runs = [title for title, _ in itertools.groupby(program.column(2))]
    assert runs.count("Equal") == runs.count("Dated") == 1


def test_every_row_can_be_chosen_and_stays_chosen(program):
    search(program, "")
    names = program.column(0)
    for row, name in enumerate(names):
        program.choose_row(row)
        assert program.ask("list-state", LIST)["selected"] == row, name
    program.choose_row(names.index("megabyte"))
    assert search(program, "xxxx") == ["megabyte", "megabyte too"]
    assert program.chosen_row() == "megabyte"
    assert program.ask("text", 1002) == "Megabyte"
