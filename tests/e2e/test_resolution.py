"""Screens of higher resolution: what is told in pixels grows with it as the fonts do, and nothing is
cut that isn't cut at 96 dots per inch."""

import contextlib
import itertools

import pytest

from conftest import ENGLISH, GERMAN, SCREENSHOTS, desk_on
from support.program import LIST, REFRESH, STATUS, WINDOW_CLASS, eventually
from support.registry import Key
from support.screen import Screen
from test_list import COLUMNS

STANDARD = 96
RESOLUTIONS = (96, 120, 144, 192)
# Room for the window as it opens at the highest of them.
LARGE = (1760, 1240)

SWITCHES = ("-nopersist", "-noupdate")
LOCALES = {"english": ENGLISH, "german": GERMAN}
LANGUAGE_SWITCH = {"english": "-eng", "german": "-ger"}
STATUS_TEXT = {"english": "2 / 2 packages", "german": "2 / 2 Pakete"}
LEGEND_TITLE = {"english": "Color Legend", "german": "Farblegende"}
ABOUT_TITLE = {"english": "Info about Zolvane", "german": "Info \u00fcber Zolvane"}
FULL_DATE = {"english": "31/12/2026 23:59", "german": "31.12.2026 23:59"}

WM_COMMAND, WM_CLOSE = 0x111, 0x10
ABOUT, SHOW_ALL_COLUMNS, COLOR_LEGEND = 16, 2017, 32785
VERSION_FIELD, DATE_FIELD = 1003, 1005
LEGEND_LIST = 1026

TEMPLATE_UNITS, GROWTH = (360, 153), (252, 300)
LEGEND_UNITS, LEGEND_GROWTH, LEGEND_WIDTHS = (180, 87), (100, 50), (120, 80, 100)
REVEALED, FOCUS_INSET = 100, 3
VERSION, DATE, SIZE = 3, 6, 8
# What a list leaves free on both sides of a cell's text, taken together.
CELL_MARGINS = 12
LIMIT = 20000

KEYS = [
    Key("user", "Usual", {"DisplayName": "Pocket Atlas", "DisplayVersion": "99.99.999.99",
                          "InstallDate": "2026-12-31 23:59:00", "EstimatedSize": 102384,
                          "UninstallString": '"C:\\atlas\\remove.exe" /all'}),
    Key("user", "Widest", {"DisplayName": "Quarry Suite", "DisplayVersion": "99.99.99999.99999",
                           "InstallDate": "2026-12-31 23:59:00", "EstimatedSize": 1264189,
                           "DisplayIcon": "C:\\quarry\\suite.exe,0",
                           "UninstallString": '"C:\\quarry\\remove.exe" /all'}),
]
USUAL_VERSION, USUAL_SIZE = "99.99.999.99", "99.99 MB"
WIDEST_VERSION, WIDEST_SIZE = "99.99.99999.99999", "1234.56 MB"


def scaled(pixels, dpi):
    """Of a length that isn't negative, halves up."""
    return (2 * pixels * dpi + STANDARD) // (2 * STANDARD)


@pytest.fixture(scope="module")
def large_screen():
    with contextlib.closing(Screen(LARGE)) as made:
        yield made


class Bench:
    """The program in one language at one resolution, with its size and its columns' widths as it
    opened."""

    def __init__(self, desk, language, dpi):
        self.desk, self.language, self.dpi = desk, language, dpi
        self.program = desk.open(LANGUAGE_SWITCH[language], *SWITCHES)
        self.program.wait_for_status(STATUS_TEXT[language])
        self.program.activate()
        self.opened, self.opened_widths = self.program.window(), self.widths()
        self.picture("open")

    def px(self, length):
        return scaled(length, self.dpi)

    def widths(self):
        return [column["width"] for column in self.program.columns()]

    def picture(self, name):
        picture = self.program.picture()
        picture.save(SCREENSHOTS / f"{self.dpi}-dpi-{self.language}-{name}.png")
        return picture

    def choose(self, name):
        self.program.choose_row([row[0] for row in self.program.rows()].index(name))

    @contextlib.contextmanager
    def dialog(self, command, title):
        """The handle of a dialog that a command opens; it is closed at the end."""
        driver = self.desk.driver
        self.program.activate()
        self.program.ask("post", WM_COMMAND, command, 0)
        handle = driver("wait-window", self.program.pid, WINDOW_CLASS, title, LIMIT)["handle"]
        try:
            yield handle
        finally:
            driver("post", handle, WM_CLOSE, 0, 0)
            driver("wait-gone", handle, LIMIT)

    def give_size(self, wanted):
        self.program.ask("move", *self.opened["frame"][:2], *wanted)
        eventually(lambda: size(self.program.window()["frame"]) == tuple(wanted),
                   lambda: f"the size {wanted}, which is {self.program.window()}")


def size(rect):
    return rect[2] - rect[0], rect[3] - rect[1]


@pytest.fixture(scope="module", params=itertools.product(RESOLUTIONS, LOCALES),
                ids=lambda param: f"{param[0]}-{param[1]}")
def bench(request, large_screen, template, standard_share):
    # It comes after what opens a window of its own and takes the focus.
    del standard_share
    dpi, language = request.param
    with desk_on(large_screen, template, KEYS, lc_all=LOCALES[language], dpi=dpi) as desk:
        yield Bench(desk, language, dpi)
        desk.end_programs()


@pytest.fixture(scope="module")
def standard_share(large_screen, template):
    """How much of its column each of the widest texts takes at 96 dots per inch."""
    with desk_on(large_screen, template, KEYS) as desk:
        bench = Bench(desk, "english", STANDARD)
        share = shares(bench)
        assert bench.program.close() == 0
    return share


def text_width(bench, text):
    return bench.program.ask("list-text-width", LIST, text)


def shares(bench):
    return {column: text_width(bench, text) / bench.opened_widths[column]
            for column, text in ((VERSION, WIDEST_VERSION), (SIZE, WIDEST_SIZE))}


def test_the_font_grows_with_the_resolution(bench):
    # One dialog unit is a quarter of the font's average width, and an eighth of its height.
    width, height = bench.program.ask("dialog-units", 4, 8)
    assert abs(width - 7 * bench.dpi / STANDARD) <= 1.01
    assert abs(height - 13 * bench.dpi / STANDARD) <= 2.01


def test_the_window_opens_larger_than_its_template_by_scaled_lengths(bench):
    template = bench.program.ask("dialog-units", *TEMPLATE_UNITS)
    wanted = tuple(units + bench.px(growth) for units, growth in zip(template, GROWTH))
    assert size(bench.opened["client"]) == wanted


def test_columns_have_scaled_widths(bench):
    assert bench.opened_widths == [bench.px(width) for _, _, width, _ in COLUMNS]


def test_usual_texts_fit_their_cells(bench):
    texts = {VERSION: USUAL_VERSION, DATE: FULL_DATE[bench.language], SIZE: USUAL_SIZE}
    row, = (cells for cells in bench.program.rows() if cells[0] == "Usual")
    for column, text in texts.items():
        assert row[column] == text
        needed = text_width(bench, text)
        assert 0 < needed + CELL_MARGINS <= bench.opened_widths[column], text


def test_no_more_is_cut_than_on_an_ordinary_screen(bench, standard_share):
    for column, share in shares(bench).items():
        assert share <= standard_share[column], COLUMNS[column]


def expect_drawn_whole(bench, picture, row, column, text):
    """The cell's text has the width that it needs, which one with an ellipsis has not."""
    left, top, right, bottom = bench.program.ask("list-cell-rect", LIST, row, column)["screen"]
    # Without the lines of the grid.
    ink = picture.ink((left + 2, top + 1, right - 2, bottom - 1))
    # A character begins and ends a little inside its own width.
    slack = 4 * bench.dpi / STANDARD
    assert ink is not None and abs(ink[2] - ink[0] - text_width(bench, text)) <= slack, text


def test_usual_texts_are_drawn_whole(bench):
    bench.give_size(size(bench.opened["frame"]))
    bench.choose("Widest")
    bench.program.activate()
    picture = bench.picture("cells")
    row = [cells[0] for cells in bench.program.rows()].index("Usual")
    for column, text in ((VERSION, USUAL_VERSION), (DATE, FULL_DATE[bench.language]),
                         (SIZE, USUAL_SIZE)):
        expect_drawn_whole(bench, picture, row, column, text)


def overlap(a, b):
    return a[0] < b[2] and b[0] < a[2] and a[1] < b[3] and b[1] < a[3]


def expect_apart_and_inside(bench):
    _, _, width, height = bench.program.window()["client"]
    shown = [control for number, control in bench.program.controls().items()
             if number and control["visible"]]
    for control in shown:
        left, top, right, bottom = control["rect"]
        assert 0 <= left < right <= width and 0 <= top < bottom <= height, control
    for a, b in itertools.combinations(shown, 2):
        assert not overlap(a["rect"], b["rect"]), (a["id"], b["id"])


# What a check box and a flat button need beside their text, at 96 dots per inch.
MORE_WIDTH = {1028: 18, REFRESH: 8, 1021: 8, 2010: 8, 1018: 8}
GROWING_FIELDS = {1002, 1004, 1006}


def test_nothing_is_cut_or_covered_at_the_smallest_size(bench):
    bench.choose("Widest")
    bench.give_size(bench.program.ask("min-size"))
    expect_apart_and_inside(bench)
    extents = {extent["id"]: extent for extent in bench.program.ask("text-extents")}
    assert extents[VERSION_FIELD]["text"] == WIDEST_VERSION
    assert extents[DATE_FIELD]["text"] == FULL_DATE[bench.language]
    shown = bench.program.controls()
    checked = 0
    for number, extent in extents.items():
        if number in GROWING_FIELDS or not extent["text"] or not shown[number]["visible"]:
            continue
        needed = extent["width"] + bench.px(MORE_WIDTH.get(number, 0))
        assert 0 < needed <= extent["room_width"], extent
        assert extent["height"] <= extent["room_height"], extent
        checked += 1
    # Twelve labels and buttons, the check box, the status, both fields, and the combo box.
    assert checked == 16
    bench.program.activate()
    bench.picture("smallest")


def test_a_focus_rectangle_keeps_its_distance(bench):
    bench.program.activate()
    handle = bench.program.control(REFRESH)["handle"]
    bench.desk.driver("post", bench.program.handle, 0x28, handle, 1)  # WM_NEXTDLGCTL
    left, top, right, bottom = bench.program.control(REFRESH)["screen"]
    inset = bench.px(FOCUS_INSET)
    wanted = (left + inset, top + inset, right - inset, bottom - inset)
    eventually(lambda: bench.program.picture().ink((left + 2, top + 2, right - 2, bottom - 2))
               == wanted, lambda: (wanted, bench.program.picture().ink((left, top, right, bottom))))


def test_hidden_columns_are_revealed_with_a_scaled_width(bench):
    bench.program.ask("post", WM_COMMAND, SHOW_ALL_COLUMNS, 0)
    wanted = [bench.px(width or REVEALED) for _, _, width, _ in COLUMNS]
    eventually(lambda: bench.widths() == wanted, bench.widths)


def test_the_legend_is_scaled_too(bench):
    driver = bench.desk.driver
    with bench.dialog(COLOR_LEGEND, LEGEND_TITLE[bench.language]) as legend:
        template = driver("dialog-units", legend, *LEGEND_UNITS)
        wanted = tuple(units + bench.px(growth) for units, growth in zip(template, LEGEND_GROWTH))
        assert size(driver("window", legend)["client"]) == wanted
        widths = [column["width"] for column in driver("list-columns", legend, LEGEND_LIST)]
        assert widths == [bench.px(width) for width in LEGEND_WIDTHS]
        for row in driver("list-rows", legend, LEGEND_LIST):
            for width, text in zip(widths, row["cells"]):
                needed = driver("list-text-width", legend, LEGEND_LIST, text)
                assert needed <= width, text
        bench.picture("legend")


def test_the_about_box_can_be_read(bench):
    with bench.dialog(ABOUT, ABOUT_TITLE[bench.language]) as about:
        for extent in bench.desk.driver("text-extents", about):
            assert extent["width"] <= extent["room_width"], extent
            assert not extent["text"] or extent["height"] <= extent["room_height"], extent
        bench.picture("about")


def test_a_saved_place_is_that_of_real_pixels(large_screen, template):
    with desk_on(large_screen, template, KEYS, dpi=144) as desk:
        program = desk.open("-noupdate")
        program.wait_for_status(STATUS_TEXT["english"])
        place = [90, 120, 1190, 920]
        program.ask("move", 90, 120, 1100, 800)
        eventually(lambda: program.window()["frame"] == place, "the window is there")
        assert program.close() == 0
        program = desk.open("-noupdate")
        program.wait_for_status(STATUS_TEXT["english"])
        assert program.window()["frame"] == place
        desk.end_programs()


def test_a_saved_place_must_leave_a_larger_grip(large_screen, template):
    with desk_on(large_screen, template, KEYS, dpi=192) as desk:
        # Enough of the title bar at 96 dots per inch, but not here.
        left, top = large_screen.size[0] - 60, 100
        place = f"{left}/{top}/{left + 1300}/{top + 700} - 1"
        file = desk.prefix.kept / "zolvane-cfg.xml"
        file.parent.mkdir(exist_ok=True)
        file.write_text('<?xml version="1.0" encoding="utf-8"?><zolvane version="5.3">'
                        f'<ui lang-id="9" window-pos="{place}"/></zolvane>\n')
        program = desk.open("-noupdate")
        program.wait_for_status(STATUS_TEXT["english"])
        width = large_screen.size[0]
        assert program.window()["frame"] == [width - 1300, top, width, top + 700]
        desk.end_programs()


def test_the_window_opens_no_larger_than_the_screen(make_desk, screen):
    with make_desk(KEYS, dpi=192) as desk:
        program = desk.open(*SWITCHES)
        program.wait_for_status(STATUS_TEXT["english"])
        program.activate()
        assert program.window()["frame"] == [0, 0, *screen.size]
        # The growth had to give way, the template didn't.
        assert program.ask("min-size")[0] < screen.size[0]
        left, top, right, bottom = program.control(STATUS)["screen"]
        assert 0 <= left < right <= screen.size[0] and 0 <= top < bottom <= screen.size[1]
        program.picture(SCREENSHOTS / "192-dpi-small-screen.png")
        desk.end_programs()
