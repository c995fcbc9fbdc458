"""Type selection, check box and search text: which rows are left, and what is told of them."""

import itertools

import pytest

from conftest import BINARIES
from support import filters, rules
from support.filter_samples import KEYS, SEARCHES, USAGES
from support.held import HeldDesk
from support.program import ALL_PACKAGES, MICROSOFT, REFRESH, SEARCH, STATUS, TYPE, eventually
from support.registry import SZ, UNINSTALL, Key
from support.watching import shows_by_itself

QUIET = ("-nopersist", "-noupdate")
PANE = (1002, 1003, 1004, 1005, 1006)
TYPES = range(5)


class Opened:
    def __init__(self, desk):
        self.desk = desk
        self.program = desk.open(*QUIET)
        self.entries = rules.newest_first(rules.read_all(rules.world_of(desk, KEYS, USAGES)))
        self.program.wait_for_status(self.status(0, True, ""))

    def expected(self, kind, microsoft, search):
        return [row["name"] for row in self.entries
                if filters.accepts(row, kind, microsoft, search, rules.size_text)]

    def status(self, kind, microsoft, search):
        return f"{len(self.expected(kind, microsoft, search))} / {len(KEYS)} packages"

    def choose(self, kind, microsoft, search):
        self.program.select_type(kind)
        if self.program.ask("checked", MICROSOFT) != int(microsoft):
            self.program.ask("check", MICROSOFT, int(microsoft))
        self.program.ask("set-text", SEARCH, search)

    def names(self):
        return self.program.column(0)


@pytest.fixture(scope="module")
def shared(make_desk):
    with make_desk(KEYS, USAGES) as desk:
        yield Opened(desk)


@pytest.fixture
def opened(shared):
    shared.choose(0, True, "")
    return shared


def test_the_sample_has_what_it_needs(opened):
    assert len(KEYS) == len(opened.entries) == 60
    # Every search tells the selections apart from each other, or finds nothing in any.
    shown = {(kind, microsoft): opened.expected(kind, microsoft, "")
             for kind in TYPES for microsoft in (True, False)}
    for a, b in itertools.combinations(shown, 2):
        same = not a[1] and not b[1] and {a[0], b[0]} == {2, 3}
        assert (shown[a] == shown[b]) == same, (a, b)


@pytest.mark.parametrize("microsoft", [True, False], ids=["MS", "no MS"])
@pytest.mark.parametrize("kind", TYPES)
def test_rows_and_status_are_as_the_rules_have_them(opened, kind, microsoft):
    for search in SEARCHES:
        opened.choose(kind, microsoft, search)
        what = (kind, microsoft, search)
        assert opened.names() == opened.expected(*what), what
        assert opened.program.status() == opened.status(*what), what


def test_it_starts_with_normal_packages_of_all_makers(opened):
    assert opened.program.ask("combo", TYPE)["selected"] == 0
    assert opened.program.ask("checked", MICROSOFT) == 1
    assert opened.program.ask("text", SEARCH) == ""
    assert opened.names() == opened.expected(0, True, "")


def test_os_updates_are_hidden_without_the_check_box_even_among_all_packages(opened):
    opened.choose(ALL_PACKAGES, False, "")
    assert not [name for name in opened.names() if name.startswith("KB")]


def test_nothing_found_empties_the_pane_and_says_0(opened):
    program = opened.program
    program.choose_row(0)
    eventually(lambda: program.ask("text", PANE[0]) != "", "the pane shows the row")
    opened.choose(0, True, "nothing at all")
    assert program.status() == f"0 / {len(KEYS)} packages"
    assert [program.ask("text", field) for field in PANE] == [""] * 5
    assert not any(program.control(button)["enabled"] for button in (1018, 1021, 2010))
    # Nothing is chosen again only because it can be seen again.
    opened.choose(0, True, "")
    assert [program.ask("text", field) for field in PANE] == [""] * 5


def test_the_chosen_row_stays_chosen_as_long_as_it_is_shown(opened):
    program = opened.program
    opened.choose(ALL_PACKAGES, True, "")
    row = opened.names().index("placed")
    program.choose_row(row)
    opened.choose(ALL_PACKAGES, True, "quarry")
    assert program.chosen_row() == "placed"
    opened.choose(0, False, "quarry")
    assert program.chosen_row() == "placed"
    opened.choose(0, False, "versioned")
    assert program.chosen_row() is None
    # The pane still tells of the row that is hidden.
    assert program.ask("text", 1002) == "Placed"


def test_the_real_mouse_and_keys_choose_too(opened):
    program, screen = opened.program, opened.desk.screen
    program.click(SEARCH)
    eventually(lambda: program.ask("focus") == SEARCH, "the search text has the focus")
    typed = "quarry"
    for length in range(1, len(typed) + 1):
        screen.type_text(typed[length - 1])
        program.wait_for_status(opened.status(0, True, typed[:length]))
    program.click(MICROSOFT)
    program.wait_for_status(opened.status(0, False, typed))
    program.click(TYPE)
    for kind in (1, 2, 3, 4):
        screen.press_key("Down")
        eventually(lambda: program.ask("combo", TYPE)["selected"] == kind, "the next type")
    screen.press_key("Return")
    program.wait_for_status(opened.status(4, False, typed))
    assert opened.names() == opened.expected(4, False, typed)


def test_a_refresh_keeps_type_check_box_and_search(opened):
    program = opened.program
    opened.choose(1, False, "quarry")
    wanted = opened.expected(1, False, "quarry")
    program.ask("set-text", STATUS, "")
    program.ask("command", REFRESH)
    program.wait_for_status(opened.status(1, False, "quarry"))
    assert opened.names() == wanted
    assert program.ask("text", SEARCH) == "quarry"
    assert program.ask("combo", TYPE)["selected"] == 1
    assert program.ask("checked", MICROSOFT) == 0


def test_what_comes_later_passes_the_filter_too(opened):
    program = opened.program
    # A pass may meet a key before it has its text: the name of the one decides already.
    opened.choose(ALL_PACKAGES, True, "quarry")
    before = opened.names()
    total = len(KEYS)
    late = ("late 1", "Late one"), ("late quarry", "Late two")
    try:
        for name, text in late:
            opened.desk.driver("reg-set", "HKCU", 64, f"Software\\{UNINSTALL}\\{name}",
                               "DisplayName", SZ, text.encode() + b"\0")
        status = f"{len(before) + 1} / {total + 2} packages"
        shows_by_itself(opened.desk, "user", lambda: program.status() == status, status)
        assert sorted(opened.names()) == sorted(before + ["late quarry"])
    finally:
        for name, _ in late:
            opened.desk.driver("reg-delete", "HKCU", 64, f"Software\\{UNINSTALL}\\{name}")
        status = f"{len(before)} / {total} packages"
        shows_by_itself(opened.desk, "user", lambda: program.status() == status, status)


# Each place has one, so a pass reads three sources.
FEW = [Key(place, name, {"DisplayName": name, "Publisher": publisher})
       for place, name, publisher in (("local", "quarry b", "2"), ("local64", "other", "1"),
                                      ("user", "quarry d", "4"))]


def test_a_change_during_a_pass_takes_effect_at_once_and_what_comes_later_passes_it(make_desk):
    with make_desk(FEW) as desk:
        held = HeldDesk(desk, BINARIES / "zolvane-held.exe")
        program = held.start("hold@source4")
        program.wait_filled(len(FEW))
        program.click_header(24)
        eventually(lambda: program.arrows() == {24: "down"}, "sorted by publisher")
        assert program.column(0) == ["other", "quarry b", "quarry d"]
        program.choose_row(2)
        desk.driver("reg-delete", "HKLM", 32, f"Software\\{UNINSTALL}\\quarry b")
        held.reached()
        program.ask("set-text", SEARCH, "quarry")
        assert program.column(0) == ["quarry b", "quarry d"]
        assert program.status() == "2 / 3 packages"
        program.click_header(24, shift=3)
        eventually(lambda: program.arrows() == {24: "up"}, "turned")
        assert program.column(0) == ["quarry d", "quarry b"]
        added = (("quarry c", "3", "new"), ("late", "5", "new"), ("quarry e", "5", "new"),
                 ("quarry d", "4", "known"))
        for name, publisher, comment in added:
            for value, text in (("Publisher", publisher), ("DisplayName", name),
                                ("Comments", comment)):
                desk.driver("reg-set", "HKCU", 64, f"Software\\{UNINSTALL}\\{name}", value, SZ,
                            text.encode() + b"\0")
        held.go()
        shows_by_itself(desk, "user", lambda: program.status() == "3 / 5 packages",
                        "what the pass has found")
        assert program.column(0) == ["quarry e", "quarry d", "quarry c"]
        assert program.column(22) == ["new", "known", "new"]
        # Its line has stayed.
        assert program.chosen_row() == "quarry d"
        program.ask("set-text", SEARCH, "")
        assert program.column(0) == ["late", "quarry e", "quarry d", "quarry c", "other"]
        assert program.close() == 0
        held.end_programs()
