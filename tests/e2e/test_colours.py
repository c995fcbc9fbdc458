"""The colours and the bold font of the main list, by its pixels: one row for each rule and for each
meeting of two, with and without a search, with and without a chosen sort column."""

import contextlib
from dataclasses import dataclass

import pytest

from conftest import SCREENSHOTS
from support.cells import BLACK, BLUE, CREAM, GREY, RED, WHITE, YELLOW, Look
from support.program import ALL_PACKAGES, LIST, REFRESH, SEARCH, eventually
from support.registry import Key, reg_text

SHOW_ALL_COLUMNS, COLORS = 2017, 32784
LVM_SCROLL, LVM_SETCOLUMNWIDTH = 0x1000 + 20, 0x1000 + 30

NAME, SOURCE, PROGRAM, VERSION, PARENT_ENTRY, PARENT = range(6)
UPDATE_URL, CHANGES = 29, 30
# Wide enough for every text in bold.
WIDTHS = {NAME: 180, SOURCE: 130, PROGRAM: 260, VERSION: 110, PARENT_ENTRY: 110, 5: 110, 6: 110}
COLUMNS = range(len(WIDTHS))


@dataclass
class Package:
    """`changed`: the columns that have changed since the last run."""

    name: str
    new: bool = False
    changed: tuple = ()
    part: bool = False
    nameless: bool = False
    microsoft: bool = False

    def key(self, last_run):
        """As the registry has it now or had it at the last run."""
        changed = () if last_run else self.changed
        values = {"DisplayVersion": "quince 1.1" if VERSION in changed else "quince 1.0",
                  "InstallDate": "20240105", "Comments": "quince"}
        if not self.nameless:
            values["DisplayName"] = self.name + (" II" if PROGRAM in changed else " I")
        if self.part:
            values["ParentKeyName"] = "Alder"
        if self.microsoft:
            values["Publisher"] = "Microsoft"
        return Key("user", self.name, values)


PACKAGES = [
    Package("Alder"),
    Package("Birch new", new=True),
    Package("Cedar version", changed=(VERSION,)),
    Package("Dogwood name", changed=(PROGRAM,)),
    Package("Elm both", changed=(PROGRAM, VERSION)),
    Package("Fir part", part=True),
    Package("Gorse new part", new=True, part=True),
    Package("Hazel part", changed=(VERSION,), part=True),
    Package("Iris of system", microsoft=True),
    Package("Juniper new", new=True, microsoft=True),
    Package("Kale", changed=(VERSION,), microsoft=True),
    Package("Lime part", part=True, microsoft=True),
    Package("Maple part", changed=(PROGRAM,), part=True, microsoft=True),
    Package("Nettle nameless", nameless=True),
    Package("Oak nameless", new=True, nameless=True),
    Package("Poppy nameless", changed=(VERSION,), nameless=True),
    Package("Quillwort", nameless=True, part=True),
    Package("Rose nameless", nameless=True, microsoft=True),
]
BY_NAME = {package.name: package for package in PACKAGES}


@dataclass(frozen=True)
class State:
    searched: bool
    sorted_by: int = None

    @property
    def name(self):
        return f"{'search' if self.searched else 'all'}-{self.sorted_by}"


# In an order in which each can be brought about from the one before: a chosen column stays chosen.
STATES = [State(False), State(True), State(False, VERSION), State(True, VERSION), State(False, NAME)]


def expected_text(package, column, state):
    if state.searched and column == VERSION:
        return RED
    if package.part or (package.nameless and column == SOURCE):
        return GREY
    return BLACK


def expected_ground(package, column, state):
    if package.new or package.changed:
        return YELLOW
    if package.microsoft:
        return BLUE
    return CREAM if column == state.sorted_by else WHITE


def expected_weight(package, column, state):
    cell_by_cell = state.searched or state.sorted_by is not None or package.nameless
    bold = column in package.changed
    if package.new:
        bold = not cell_by_cell or column in (NAME, SOURCE)
    return "bold" if bold else "normal"


class Gallery:
    """The program with a baseline behind it, and what each cell looks like in each state."""

    def __init__(self, desk):
        self.desk = desk
        self.program = desk.open("-eng", "-noupdate")
        self.program.select_type(ALL_PACKAGES)
        self.program.wait_filled(len(PACKAGES))
        self.program.ask("move", 0, 0, 1270, 700)
        self.program.ask("command", SHOW_ALL_COLUMNS)
        for column, width in WIDTHS.items():
            self.program.send_to(LIST, LVM_SETCOLUMNWIDTH, column, width)

    def rects(self):
        """Of every cell of every row, by the row's name."""
        return {name: [self.program.ask("list-cell-rect", LIST, row, column)["screen"]
                       for column in COLUMNS]
                for row, name in enumerate(self.program.column(NAME))}

    def bring_about(self, state):
        self.program.ask("set-text", SEARCH, "quince" if state.searched else "")
        chosen = [i for i, column in enumerate(self.program.columns()) if column["arrow"]]
        if state.sorted_by is None or chosen == [state.sorted_by]:
            return
        self.program.activate()
        left, top, right, bottom = self.program.ask("header-rect", LIST, state.sorted_by)["screen"]
        self.desk.screen.click((left + right) // 2, (top + bottom) // 2)
        eventually(lambda: self.program.columns()[state.sorted_by]["arrow"], "the column's arrow")

    def looks(self, is_expected, save_to):
        """Of every cell, by the row's name, once all are as expected: the list is drawn some time
        after it was told to. At the limit as they are then, for the tests to tell what is wrong."""
        seen = []

        def all_expected():
            rects = self.rects()
            picture = self.program.picture(save_to)
            seen.append({name: [Look.of(picture, rect) for rect in row]
                         for name, row in rects.items()})
            return all(is_expected(name, column, look) for name, row in seen[-1].items()
                       for column, look in enumerate(row))

        with contextlib.suppress(AssertionError):
            eventually(all_expected, "every cell as expected")
        return seen[-1]


def is_plain(_name, _column, look):
    return look.ground == WHITE and look.text in (None, BLACK)


@pytest.fixture(scope="module")
def gallery(make_desk):
    last_run = [package for package in PACKAGES if not package.new]
    normal = [package for package in last_run if not (package.nameless or package.part)]
    with make_desk([package.key(last_run=True) for package in last_run]) as desk:
        first = desk.open("-eng", "-noupdate")
        first.wait_for_status(f"{len(normal)} / {len(last_run)} packages")
        assert first.close() == 0
        desk.prefix.import_registry(reg_text([package.key(last_run=False)
                                              for package in PACKAGES]))
        yield Gallery(desk)
        desk.end_programs()


@dataclass
class Shown:
    """Every cell in a state, and every cell in it with the switch off."""

    state: State
    coloured: dict
    plain: dict

    def is_expected(self, name, column, look):
        package, normal = BY_NAME[name], self.plain[name][column]
        if look.ground != expected_ground(package, column, self.state):
            return False
        if normal.text is None:
            return look.text is None
        return (look.text == expected_text(package, column, self.state)
                and look.weight(normal) == expected_weight(package, column, self.state))


@pytest.fixture(scope="module", params=STATES, ids=lambda state: state.name)
def shown(request, gallery):
    gallery.bring_about(request.param)
    gallery.program.ask("command", COLORS)
    made = Shown(request.param, {}, gallery.looks(
        is_plain, SCREENSHOTS / f"colours-{request.param.name}-off.png"))
    gallery.program.ask("command", COLORS)
    made.coloured = gallery.looks(made.is_expected,
                                  SCREENSHOTS / f"colours-{request.param.name}.png")
    return made


@pytest.mark.parametrize("package", PACKAGES, ids=lambda package: package.name)
def test_each_cell_is_painted_by_the_rules(shown, package):
    for column in COLUMNS:
        look, normal = shown.coloured[package.name][column], shown.plain[package.name][column]
        assert look.ground == expected_ground(package, column, shown.state), column
        if normal.text is None:
            assert look.text is None, column
            continue
        assert look.text == expected_text(package, column, shown.state), column
        assert look.weight(normal) == expected_weight(package, column, shown.state), column


def test_the_switch_takes_all_colours_away(shown):
    """The search's red and the bold font too: the ink is that of a normal font."""
    assert set(shown.plain) == set(BY_NAME)
    for name, row in shown.plain.items():
        assert all(is_plain(name, column, look) for column, look in enumerate(row)), (name, row)


def test_the_rows_hold_what_the_rules_are_about(shown):
    """Else the tests above would ask nothing."""
    cells = [look for row in shown.coloured.values() for look in row]
    assert {look.text for look in cells} == {
        None, BLACK, GREY, *([RED] if shown.state.searched else [])}
    assert {look.ground for look in cells} == {
        WHITE, BLUE, YELLOW, *([] if shown.state.sorted_by is None else [CREAM])}
    written = {column for row in shown.plain.values()
               for column, look in enumerate(row) if look.text is not None}
    assert written == set(COLUMNS)


def switch_is_checked(program):
    return [item["checked"] for popup in program.ask("menu") for item in popup["items"]
            if item["id"] == COLORS] == [True]


def test_the_menu_tells_how_the_switch_stands(gallery):
    for wanted in (False, True):
        gallery.program.ask("command", COLORS)
        assert switch_is_checked(gallery.program) == wanted


def test_without_colours_the_search_still_filters(gallery):
    gallery.program.ask("command", COLORS)
    gallery.program.ask("set-text", SEARCH, "both")
    assert gallery.program.column(NAME) == ["Elm both"]
    gallery.program.ask("set-text", SEARCH, "quince")
    gallery.program.ask("command", COLORS)
    assert len(gallery.program.column(NAME)) == len(PACKAGES)


@pytest.fixture
def changed_version(make_desk):
    """A desk whose only package has another version than at the last run, and the program there."""
    package = Package("Alder", changed=(VERSION,))
    with make_desk([package.key(last_run=True)]) as desk:
        first = desk.open("-eng", "-noupdate")
        first.wait_filled(1)
        assert first.close() == 0
        desk.prefix.import_registry(reg_text([package.key(last_run=False)]))
        program = desk.open("-eng", "-noupdate")
        program.wait_filled(1)
        yield desk, program
        desk.end_programs()


def expect_grounds(program, grounds, row=0, columns=(PROGRAM, VERSION)):
    """Of name and version of the only row, or of others."""
    seen = []

    def are_these():
        rects = [program.ask("list-cell-rect", LIST, row, column)["screen"] for column in columns]
        picture = program.picture()
        seen.append([Look.of(picture, rect).ground for rect in rects])
        return seen[-1] == grounds

    eventually(are_these, lambda: f"{grounds}, but {seen[-1]}")


def test_accepting_the_present_state_takes_the_yellow_away(changed_version):
    _, program = changed_version
    expect_grounds(program, [YELLOW, YELLOW])
    program.ask("command", REFRESH)
    program.wait_filled(1)
    expect_grounds(program, [WHITE, WHITE])


def test_a_single_row_shows_its_sort_column_at_once(changed_version):
    desk, program = changed_version
    program.ask("command", REFRESH)
    expect_grounds(program, [WHITE, WHITE])
    program.activate()
    left, top, right, bottom = program.ask("header-rect", LIST, VERSION)["screen"]
    desk.screen.click((left + right) // 2, (top + bottom) // 2)
    expect_grounds(program, [WHITE, CREAM])


def test_the_shade_ends_with_its_column_where_the_next_is_hidden(changed_version):
    _, program = changed_version
    program.ask("command", REFRESH)
    assert program.columns()[PARENT_ENTRY]["width"] == 0
    program.click_header(VERSION)
    expect_grounds(program, [WHITE, CREAM, WHITE], columns=(PROGRAM, VERSION, PARENT))


def test_behind_the_last_column_the_next_row_begins_without_its_shade(make_desk):
    with make_desk([Package(name).key(last_run=False) for name in ("Alder", "Birch")]) as desk:
        program = desk.open("-eng", "-noupdate", "-nopersist")
        program.wait_filled(2)
        program.click_header(CHANGES)
        expect_grounds(program, [WHITE, CREAM], row=1, columns=(UPDATE_URL, CHANGES))
        program.send_to(LIST, LVM_SCROLL, -10000 & 0xffffffff)
        expect_grounds(program, [WHITE, WHITE], row=1)
        desk.end_programs()


def test_the_switch_outlasts_the_program_even_where_that_is_killed(changed_version):
    desk, program = changed_version
    expect_grounds(program, [YELLOW, YELLOW])
    program.ask("command", COLORS)
    expect_grounds(program, [WHITE, WHITE])
    desk.end_programs()
    again = desk.open("-eng", "-noupdate")
    again.wait_filled(1)
    assert not switch_is_checked(again)


def test_a_run_that_keeps_nothing_keeps_no_switch(changed_version):
    desk, program = changed_version
    assert program.close() == 0
    silent = desk.open("-eng", "-noupdate", "-nopersist")
    silent.wait_filled(1)
    silent.ask("command", COLORS)
    assert not switch_is_checked(silent)
    assert silent.close() == 0
    again = desk.open("-eng", "-noupdate")
    again.wait_filled(1)
    assert switch_is_checked(again)
