"""Sorting by real clicks on the header: each column, both ways, with its arrow."""

import itertools
import random

import pytest

from support import orders, rules
from support.program import ALL_PACKAGES, GROUP, LIST, REFRESH, STATUS, TYPE, eventually
from support.registry import Key, Usage
from support.samples import file_time

QUIET = ("-nopersist", "-noupdate")
SHOW_ALL_COLUMNS = 2017
NAME_COLUMN, DATE_COLUMN = 0, 6

# Each list is given to the packages in an order of its own. Small and capital letters, numbers as
# texts and brackets part the rules from each other.
TEXTS = ["apple", "Banana", "cherry", "Damson", "elder", "Fig", "grape", "Hip", "iris", "Juniper",
         "kale", "Lemon", "mint", "Nut"]
VALUES = {
    "DisplayName": ["(zeta) x", "[Yarrow] x", "xylem", "Walnut", "{vine} x", "Umber", "tansy",
                    "Sage", "1 rose", "22 Quince", "3 poppy", "Oak", "nettle", "Maple"],
    "DisplayVersion": ["1", "1.2", "1.10", "1.9", "2.0", "10.0", "9.9", "1.2.3", "1.2.10", "0.1",
                       "100", "11.1", "3.14", "3.2"],
    "ParentKeyName": ["", "beta", "Alpha", "", "delta", "Gamma", "eta", "", "Zeta", "theta", "Iota",
                      "", "kappa", "Lambda"],
    "ParentDisplayName": ["", "", "upper one", "", "Tree", "", "stem", "", "Root", "", "quay", "",
                          "Pole", ""],
    "InstallDate": ["20240112", "20230211", "20250310", "20220409", "20260508", "20210607", "",
                    "20200706", "20190805", "20180904", "20171003", "20161102", "20151201",
                    "20261111"],
    "EstimatedSize": [5, 40, 300, 2000, 10000, 7, 60, 500, 4000, 30000, 9, 80, 700, None],
    "UninstallString": TEXTS, "ModifyPath": TEXTS, "DisplayIcon": TEXTS, "InstallLocation": TEXTS,
    "Comments": TEXTS, "Publisher": TEXTS, "Contact": TEXTS, "HelpLink": TEXTS,
    "HelpTelephone": TEXTS, "URLInfoAbout": TEXTS, "URLUpdateInfo": TEXTS,
    "SystemComponent": [0, 1] * 7, "NoRemove": [0, 0, 1, 0, 0, 1, 0] * 2,
    "WindowsInstaller": [0, 1, 0, 0, 1, 0, 0] * 2,
}
NAMES = ["Aster", "broom", "Clover", "daisy", "Elm", "fern", "Gorse", "hazel", "ivy", "aster",
         "Broom", "clover", "{1111}", "Ivy x"]


def make_world():
    dice = random.Random(7)
    shuffled = {name: dice.sample(values, len(values)) for name, values in VALUES.items()}
    keys, usages, records = [], {}, {}
    for number, name in enumerate(NAMES):
        values = {value: column[number] for value, column in shuffled.items()
                  if column[number] not in (None, "")}
        # The same name in another case is another key only where it stands elsewhere.
        place = ("local", "local64")[number % 2] if number < 9 else "user"
        keys.append(Key(place, name, values))
        used = file_time(2015 + (number * 5) % 11, 1 + number % 12, 3, 8, 9, 10)
        # The cache knows no case.
        usages[name] = records.setdefault(name.lower(), Usage(used=used,
                                                              frequency=(number * 37) % 101))
    return keys, usages


KEYS, USAGES = make_world()


class Opened:
    def __init__(self, desk):
        self.desk = desk
        self.program = desk.open(*QUIET)
        rows = rules.read_all(rules.world_of(desk, KEYS, USAGES))
        self.by_name = {row["name"]: row for row in rows}
        self.program.select_type(ALL_PACKAGES)
        self.program.wait_filled(len(KEYS))
        self.program.ask("command", SHOW_ALL_COLUMNS)

    def names(self):
        return self.program.column(NAME_COLUMN)

    def values(self, key):
        """What the rows are sorted by, from the top."""
        return [key(self.by_name[name]) for name in self.names()]


@pytest.fixture(scope="module")
def opened(make_desk):
    with make_desk(KEYS, USAGES) as desk:
        yield Opened(desk)


def test_every_two_rules_disagree_about_some_rows(opened):
    """Otherwise a column could be sorted by another's rule and nobody would see it."""
    rows = list(opened.by_name.values())
    assert len(rows) == len(KEYS)
    assert set(orders.KEYS) | orders.ALIKE == set(range(orders.COLUMNS))
    for a, b in itertools.combinations(orders.KEYS, 2):
        by_a, by_b = orders.KEYS[a], orders.KEYS[b]
        assert any((by_a(x) < by_a(y)) != (by_b(x) < by_b(y))
                   for x, y in itertools.permutations(rows, 2)), (a, b)


def test_it_starts_with_the_newest_and_without_an_arrow(opened):
    values = opened.values(orders.KEYS[DATE_COLUMN])
    assert values == sorted(values, reverse=True)
    assert opened.program.arrows() == {}


@pytest.mark.parametrize("column", range(orders.COLUMNS))
def test_a_click_sorts_and_the_next_one_turns_it(opened, column):
    opened.program.choose_row(column % len(KEYS))
    chosen = opened.program.chosen_row()
    key = orders.KEYS.get(column)
    opened.program.click_header(column)
    eventually(lambda: opened.program.arrows() == {column: "down"},
               lambda: f"the arrow of the natural order, not {opened.program.arrows()}")
    assert key is None or opened.values(key) == sorted(map(key, opened.by_name.values()))
    assert opened.program.chosen_row() == chosen
    opened.program.click_header(column, shift=3)
    eventually(lambda: opened.program.arrows() == {column: "up"},
               lambda: f"the arrow of the reverse order, not {opened.program.arrows()}")
    assert key is None or opened.values(key) == sorted(map(key, opened.by_name.values()),
                                                       reverse=True)
    assert opened.program.chosen_row() == chosen
    assert sorted(opened.names()) == sorted(opened.by_name)


def test_the_chosen_row_is_scrolled_to(opened):
    program = opened.program
    program.ask("move", 50, 50, *program.ask("min-size"))
    opened.program.click_header(NAME_COLUMN)
    eventually(lambda: NAME_COLUMN in opened.program.arrows(), "sorted by name")
    program.choose_row(0)
    chosen = program.chosen_row()
    opened.program.click_header(NAME_COLUMN, shift=3)
    eventually(lambda: opened.names().index(chosen) > 0, "the row has gone to the other end")
    row = opened.names().index(chosen)
    _, top, _, bottom = program.ask("list-cell-rect", LIST, row, 2)["screen"]
    _, list_top, _, list_bottom = program.control(LIST)["screen"]
    assert list_top <= top and bottom <= list_bottom


def test_filter_and_refresh_keep_the_order(opened):
    program, column = opened.program, 24
    opened.program.click_header(column)
    eventually(lambda: opened.program.arrows() == {column: "down"}, "sorted by publisher")
    key = orders.KEYS[column]
    program.select_type(0)
    shown = opened.values(key)
    assert 0 < len(shown) < len(KEYS) and shown == sorted(shown)
    program.select_type(ALL_PACKAGES)
    wanted = sorted(map(key, opened.by_name.values()))
    assert opened.values(key) == wanted
    program.ask("set-text", STATUS, "")
    program.ask("command", REFRESH)
    program.wait_filled(len(KEYS))
    assert opened.values(key) == wanted
    assert opened.program.arrows() == {column: "down"}


def test_grouping_sorts_sub_packages_below_their_parents(opened):
    """The combo box is hidden; its notification isn't."""
    program = opened.program
    program.select_type(0)
    program.ask("combo-select", GROUP, 1)
    assert program.ask("combo", TYPE)["selected"] == 1
    assert opened.program.arrows() == {}
    shown = opened.values(orders.tree)
    assert shown == sorted(shown) and any((False, "\\") in text for text, _ in shown)
    count = len(shown)
    assert program.status() == f"{count} / {len(KEYS)} packages"
    program.ask("combo-select", GROUP, 1)
    assert opened.values(orders.tree) == sorted(shown, reverse=True)
    program.ask("combo-select", GROUP, 0)
    assert opened.values(orders.tree) == sorted(shown)


def test_all_columns_can_be_shown(make_desk):
    with make_desk(KEYS[:1]) as desk:
        program = desk.open(*QUIET)
        before = [column["width"] for column in program.columns()]
        assert before.count(0) > 3
        program.ask("command", SHOW_ALL_COLUMNS)
        assert [column["width"] for column in program.columns()] == [
            width or 100 for width in before]
