"""The colour legend: its frame, its samples, its pixels, in both languages."""

import pytest

from conftest import SCREENSHOTS
from support.cells import BLACK, BLUE, CREAM, GREY, RED, WHITE, YELLOW, Look
from support.program import WINDOW_CLASS, eventually, focus_on
from support.registry import Key

QUIET = ("-nopersist", "-noupdate")
WM_CLOSE, WM_COMMAND = 0x10, 0x111
LEGEND_COMMAND, LEGEND_LIST, CLOSE = 32785, 1026, 1
TEMPLATE_UNITS, GROWTH = (180, 87), (100, 50)
LIMIT = 20000

TEXTS = {
    "english": {"switch": "-eng", "status": "1 / 1 packages", "title": "Color Legend",
                "columns": ["Name", "Sort Column", "Size"], "search": "Search string"},
    "german": {"switch": "-ger", "status": "1 / 1 Pakete", "title": "Farblegende",
               "columns": ["Name", "Sortierspalte", "Gr\u00f6\u00dfe"], "search": "Suchtext"},
}
GRIDLINES_FULLROWSELECT = 0x1 | 0x20

BUTTON_REST, BUTTON_ACTIVE = (0, 0, 128), (0, 0, 255)

# Ground and text of each cell; None where nothing is written.
PAINTS = [
    [(YELLOW, BLACK), (YELLOW, BLACK), (YELLOW, None)],
    [(WHITE, BLACK), (CREAM, BLACK), (WHITE, BLACK)],
    [(WHITE, GREY), (CREAM, GREY), (WHITE, None)],
    [(WHITE, BLACK), (CREAM, BLACK), (WHITE, RED)],
    [(BLUE, BLACK), (BLUE, BLACK), (BLUE, BLACK)],
]


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk([Key("user", "One", {"DisplayName": "One"})]) as made:
        yield made


class Legend:
    def __init__(self, desk, language):
        self.desk, self.language, self.texts = desk, language, TEXTS[language]
        self.program = desk.open(self.texts["switch"], *QUIET)
        self.program.wait_for_status(self.texts["status"])
        self.program.activate()
        self.program.ask("post", WM_COMMAND, LEGEND_COMMAND, 0)
        self.handle = desk.driver("wait-window", self.program.pid, WINDOW_CLASS,
                                  self.texts["title"], LIMIT)["handle"]
        has_focus = focus_on(desk.screen, self.texts["title"])
        eventually(lambda: has_focus() and self.window()["foreground"], "the legend is active")

    def ask(self, command, *arguments):
        return self.desk.driver(command, self.handle, *arguments)

    def window(self):
        return self.ask("window")

    def size(self, what):
        left, top, right, bottom = self.window()[what]
        return right - left, bottom - top

    def places(self):
        return {number: self.ask("control", number)["rect"] for number in (LEGEND_LIST, CLOSE)}

    def looks(self, name):
        rects = [[self.ask("list-cell-rect", LEGEND_LIST, row, column)["screen"]
                  for column in range(3)] for row in range(len(PAINTS))]
        picture = self.program.picture(SCREENSHOTS / f"legend-{self.language}-{name}.png")
        return [[Look.of(picture, rect) for rect in row] for row in rects]

    def expect_gone(self):
        self.desk.driver("wait-gone", self.handle, LIMIT)
        eventually(lambda: self.program.window()["enabled"], "the window can be used again")
        assert self.program.close() == 0


@pytest.fixture(params=["english", "german"])
def legend(request, desk):
    yield Legend(desk, request.param)
    desk.end_programs()


def test_it_opens_over_the_middle_of_the_main_window(legend):
    def middle(window):
        left, top, right, bottom = window["frame"]
        return (left + right) // 2, (top + bottom) // 2

    own, owner = middle(legend.ask("window")), middle(legend.program.window())
    assert all(abs(a - b) <= 1 for a, b in zip(own, owner)), (own, owner)


def test_it_holds_the_samples(legend):
    rows = [row["cells"] for row in legend.ask("list-rows", LEGEND_LIST)]
    assert rows == [
        ["new Application", "0", ""], ["Background Service", "1", "2.43 MB"],
        ["Hotfix Patch", "2", ""], ["Application", "3", legend.texts["search"]],
        ["Microsoft Windows", "4", "13.75 MB"]]
    columns = [(column["title"], column["width"], column["align"])
               for column in legend.ask("list-columns", LEGEND_LIST)]
    assert columns == list(zip(legend.texts["columns"], (120, 80, 100),
                               ("left", "right", "right")))
    assert legend.ask("list-state", LEGEND_LIST)["extended"] == GRIDLINES_FULLROWSELECT
    assert legend.ask("text", CLOSE) == "Schlie\u00dfen"


def paints_of(looks):
    return [[(look.ground, look.text) for look in row] for row in looks]


def expect_painted(legend, name, rows=len(PAINTS), columns=3):
    """So many rows and columns, from the upper left on."""
    looks = []
    wanted = [row[:columns] for row in PAINTS[:rows]]

    def painted():
        looks[:] = [row[:columns] for row in legend.looks(name)[:rows]]
        return paints_of(looks) == wanted

    eventually(painted, lambda: looks)
    return looks


def test_its_samples_are_painted_by_the_rules(legend):
    looks = expect_painted(legend, "open")
    # Bold by its ink: one digit has about as much as another.
    new, *others = [row[1].ink for row in looks]
    assert new > 1.3 * max(others), (new, others)
    # The bold font goes no further than its row.
    assert max(others) < 1.9 * min(others)


def test_it_is_modal_and_belongs_to_the_window(legend):
    assert legend.window()["owner"] == legend.program.handle
    assert not legend.program.window()["enabled"]


def colours(picture, rect):
    left, top, right, bottom = rect
    return {colour for y in range(top, bottom) for colour in picture.row(y, left, right)}


def test_its_button_lights_up_under_the_mouse(legend):
    left, top, right, bottom = rect = legend.ask("control", CLOSE)["screen"]
    screen = legend.desk.screen
    seen = colours(legend.program.picture(), rect)
    assert BUTTON_REST in seen and BUTTON_ACTIVE not in seen
    screen.move_mouse((left + right) // 2, (top + bottom) // 2)
    eventually(lambda: BUTTON_ACTIVE in colours(screen.picture(), rect), "it has lit up")
    screen.move_mouse(left - 20, top)
    eventually(lambda: BUTTON_ACTIVE not in colours(screen.picture(), rect), "it is at rest again")


def close_by_button(legend):
    left, top, right, bottom = legend.ask("control", CLOSE)["screen"]
    legend.desk.screen.click((left + right) // 2, (top + bottom) // 2)


def close_by_key(legend):
    legend.desk.screen.press_key("Escape")


def close_by_enter(legend):
    legend.desk.screen.press_key("Return")


def close_by_frame(legend):
    legend.ask("post", WM_CLOSE, 0, 0)


@pytest.mark.parametrize("close", [close_by_button, close_by_key, close_by_enter, close_by_frame])
def test_it_closes(legend, close):
    close(legend)
    legend.expect_gone()


def test_the_program_ends_with_it_open(legend):
    assert legend.program.close() == 0


def test_it_opens_larger_than_its_template_and_no_smaller_than_that(legend):
    template = legend.ask("dialog-units", *TEMPLATE_UNITS)
    assert legend.size("client") == (template[0] + GROWTH[0], template[1] + GROWTH[1])
    frame = legend.size("frame")
    least = (frame[0] - GROWTH[0], frame[1] - GROWTH[1])
    assert tuple(legend.ask("min-size")) == least
    legend.ask("move", 100, 100, 10, 10)
    eventually(lambda: legend.size("frame") == least, "the smallest size")
    # The rest has to be scrolled to.
    expect_painted(legend, "minimum", rows=3, columns=2)


def test_the_mouse_resizes_it_and_its_controls_follow(legend):
    before, client = legend.places(), legend.size("client")
    screen = legend.desk.screen
    left, top, right, bottom = legend.window()["frame"]
    steps = iter(range(1, 10000))

    def has_grown():
        # The window manager takes up the drag with one of the first movements.
        screen.move_mouse(right + 60 + next(steps) % 2, bottom + 40)
        return legend.size("client")[0] > client[0] + 40 and legend.size("client")[1] > client[1] + 20

    with screen.button_held(*screen.corner_of(legend.texts["title"])):
        eventually(has_grown, "it is larger")

    def have_followed():
        x, y = (now - then for now, then in zip(legend.size("client"), client))
        return legend.places() == {
            LEGEND_LIST: [*before[LEGEND_LIST][:2], before[LEGEND_LIST][2] + x,
                          before[LEGEND_LIST][3] + y],
            CLOSE: [edge + shift for edge, shift in zip(before[CLOSE], (x, y, x, y))]}

    eventually(have_followed, lambda: (before, client, legend.places(), legend.size("client")))
    expect_painted(legend, "larger")
    text = {extent["id"]: extent for extent in legend.ask("text-extents")}[CLOSE]
    assert text["width"] < text["room_width"] and text["height"] <= text["room_height"]
