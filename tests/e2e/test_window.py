"""The main window: its controls, its sizes, and that everything can be read."""

import itertools

import pytest

from conftest import SCREENSHOTS
from support.program import LIST, REFRESH, STATUS, TITLE, eventually
from support.registry import Key

QUIET = ("-nopersist", "-noupdate")
TEMPLATE_UNITS = (360, 153)
GROWTH = (252, 300)

LEFT, RIGHT, TOP, BOTTOM = 1, 2, 4, 8

# Id, window class, English text, German text, which edges move with the dialog.
CONTROLS = [
    (1014, "Static", "Search &Filter:", "Such&filter:", 0),
    (1026, "Edit", "", "", RIGHT),
    (1028, "Button", "&MS", "&MS", LEFT | RIGHT),
    (1015, "Static", "&Typ:", "&Typ:", LEFT | RIGHT),
    (1016, "ComboBox", None, None, LEFT | RIGHT),
    (1017, "Static", "Group by:", "Gruppierung:", LEFT | RIGHT),
    (1040, "ComboBox", "-", "-", LEFT | RIGHT),
    (1001, "SysListView32", "", "", RIGHT | BOTTOM),
    (1009, "Static", "&Program Name:", "&Programmname:", TOP | BOTTOM),
    (1002, "Edit", "", "", RIGHT | TOP | BOTTOM),
    (1031, "Static", "2 / 2 packages", "2 / 2 Pakete", LEFT | RIGHT | TOP | BOTTOM),
    (1007, "Button", "&Refresh", "&Aktualisieren", LEFT | RIGHT | TOP | BOTTOM),
    (1011, "Static", "&Icon:", "&Icon:", TOP | BOTTOM),
    (1004, "Edit", "", "", RIGHT | TOP | BOTTOM),
    (1019, "Static", "", "", LEFT | RIGHT | TOP | BOTTOM),
    (1010, "Static", "&Version:", "&Version:", TOP | BOTTOM),
    (1003, "Edit", "", "", TOP | BOTTOM),
    (1013, "Static", "Date:", "Datum:", TOP | BOTTOM),
    (1005, "Edit", "", "", TOP | BOTTOM),
    (1021, "Button", "&Modify...", "&\u00e4ndere...", LEFT | RIGHT | TOP | BOTTOM),
    (2010, "Button", "&repair...", "&repariere...", LEFT | RIGHT | TOP | BOTTOM),
    (1018, "Button", "&Uninstall...", "&deinstalliere...", LEFT | RIGHT | TOP | BOTTOM),
    (1012, "Static", "Uninstall-Cmd.:", "Uninstall-Befehl:", TOP | BOTTOM),
    (1006, "Edit", "", "", RIGHT | TOP | BOTTOM),
]
HIDDEN = {1017, 1040}
FLAT_BUTTONS = {1007, 1021, 2010, 1018}
READ_ONLY = {1002, 1004, 1003, 1005, 1006}
TYPES = {
    "english": ["normal packages", "+ sub packets", "+ system components", "+ OS updates",
                "all packages"],
    "german": ["normale Pakete", "+ Unterpakete", "+ Systemkomponenten", "+ OS Updates",
               "alle Pakete"],
}

# Id, English text, German text of the main menu's items, in their order.
MENU_ITEMS = [
    (1024, "&Export as XLS or CSV file ...", "&Export als XLS oder CSV-File ..."),
    (2004, "&MSI Package Cleanup ...", "&MSI Paket-Cleanup ..."),
    (2007, "System &Restore ...", "System-&Wiederherstellung ..."),
    (2006, "MS&Config ...", "MS&Config ..."),
    (2005, "MS&Info ...", "MS&Info ..."),
    (2011, "&Software Control Panel ...", "&Software Control Panel ..."),
    (2014, "&ORCA...", "&ORCA..."),
    (32784, "&Color background", "&Farbmarkierungen"),
    (32785, "Color &legend ...", "Farb-Legende ..."),
    (32, "Switch to &German", "Umschalten zu &Englisch"),
    (57670, "&Help ...", "&Hilfe ..."),
    (32790, "Bug &Report / Feature Request ...", "Bug &Report / Feature Request ..."),
    (32788, "Current &Version ...", "aktuelle &Version ..."),
    (2008, "Show &PAD information ...", "&PAD-Anzeige ..."),
    (16, "&Info about Zolvane ...", "&Info \u00fcber Zolvane ..."),
]

# What is grey where no package is chosen, on a 64-bit system without an editor for MSI files.
GREY_CONTROLS = {1021, 2010, 1018}
GREY_MENU_ITEMS = {2007, 2006, 2014}
CHECKED_MENU_ITEMS = {32784}

BS_OWNERDRAW, BS_TYPEMASK = 0xB, 0xF
ES_READONLY = 0x800
LVS_REPORT_SINGLESEL_SHOWSELALWAYS = 0x1 | 0x4 | 0x8
LVS_EX_GRIDLINES_FULLROWSELECT = 0x1 | 0x20
SW_RESTORE = 9

KEYS = [Key("user", "One", {"DisplayName": "One"}), Key("user", "Two", {"DisplayName": "Two"})]


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk(KEYS) as made:
        yield made


@pytest.fixture(params=["english", "german"])
def language(request):
    return request.param


@pytest.fixture
def program(desk, language):
    switch, text = {"english": ("-eng", "2 / 2 packages"),
                    "german": ("-ger", "2 / 2 Pakete")}[language]
    program = desk.open(switch, *QUIET)
    program.wait_for_status(text)
    yield program
    desk.end_programs()


def size(rect):
    return rect[2] - rect[0], rect[3] - rect[1]


def frame_size(program):
    return size(program.window()["frame"])


def grow(program, x, y):
    """Makes the window larger or smaller and waits until it is."""
    left, top, right, bottom = program.window()["frame"]
    wanted = right - left + x, bottom - top + y
    program.ask("move", left, top, *wanted)
    eventually(lambda: frame_size(program) == wanted, f"the window is {wanted}")


def to_minimum(program):
    program.ask("move", 100, 100, *program.ask("min-size"))
    eventually(lambda: frame_size(program) == tuple(program.ask("min-size")), "the smallest size")


def rects(program):
    return {number: control["rect"] for number, control in program.controls().items()
            if number in {row[0] for row in CONTROLS}}


def test_every_control_is_there_with_its_text(program, language):
    controls = program.controls()
    for number, window_class, english, german, _ in CONTROLS:
        text = {"english": english, "german": german}[language]
        assert controls[number]["class"] == window_class, number
        assert text in (None, controls[number]["text"]), number
        assert controls[number]["visible"] == (number not in HIDDEN), number
    assert set(controls) - {0} == {row[0] for row in CONTROLS}


def test_controls_have_their_kinds(program):
    controls = program.controls()
    for number in FLAT_BUTTONS:
        assert controls[number]["style"] & BS_TYPEMASK == BS_OWNERDRAW, number
    assert {number for number, control in controls.items()
            if control["class"] == "Edit" and control["style"] & ES_READONLY} == READ_ONLY
    wanted = LVS_REPORT_SINGLESEL_SHOWSELALWAYS
    assert controls[LIST]["style"] & wanted == wanted
    assert program.ask("list-state", LIST)["extended"] == LVS_EX_GRIDLINES_FULLROWSELECT


def test_what_needs_a_selection_is_disabled_at_the_start(program):
    controls = program.controls()
    assert [controls[number]["enabled"] for number in (1021, 2010, 1018)] == [False] * 3
    assert controls[REFRESH]["enabled"] and controls[LIST]["enabled"]


def test_combo_boxes_have_their_items(program, language):
    assert program.ask("combo", 1016)["items"] == TYPES[language]
    groups = program.ask("combo", 1040)
    assert groups == {"items": ["-", "Pakettyp", "Abh\u00e4ngigkeiten"], "selected": 0}
    assert program.ask("combo", 1016)["selected"] == 0
    assert program.ask("checked", 1028) == 1


def menu_items(program):
    return [item for popup in program.ask("menu") for item in popup["items"]
            if not item["separator"]]


def test_the_menu_has_its_items(program, language):
    wanted = [(number, {"english": english, "german": german}[language])
              for number, english, german in MENU_ITEMS]
    assert [(item["id"], item["text"]) for item in menu_items(program)] == wanted


def test_only_that_is_grey_which_can_do_nothing(program):
    disabled = {number for number, control in program.controls().items()
                if number and control["visible"] and not control["enabled"]}
    assert disabled == GREY_CONTROLS
    assert {item["id"] for item in menu_items(program) if item["gray"]} == GREY_MENU_ITEMS


def test_the_switch_that_is_on_is_checked(program):
    assert {item["id"] for item in menu_items(program) if item["checked"]} == CHECKED_MENU_ITEMS


def test_the_system_menu_ends_with_the_about_item(program, language):
    *_, separator, about = program.ask("system-menu")
    assert separator["separator"]
    wanted = {"english": "Inf&o about Zolvane...", "german": "Inf&o \u00fcber Zolvane..."}
    assert (about["id"], about["text"], about["gray"]) == (16, wanted[language], False)


def test_it_opens_larger_than_its_template_and_no_smaller_than_that(program):
    template = program.ask("dialog-units", *TEMPLATE_UNITS)
    client = size(program.window()["client"])
    assert client == (template[0] + GROWTH[0], template[1] + GROWTH[1])
    frame = frame_size(program)
    assert program.ask("min-size") == [frame[0] - GROWTH[0], frame[1] - GROWTH[1]]


def test_it_opens_in_the_middle_of_the_work_area(program):
    left, top, right, bottom = program.window()["frame"]
    assert abs(left + right - 1280) <= 2 and abs(top + bottom - 1024) <= 2


def test_a_program_cannot_make_it_smaller_than_its_minimum(program):
    program.ask("move", 100, 100, 10, 10)
    eventually(lambda: frame_size(program) == tuple(program.ask("min-size")), "the smallest size")


def test_the_mouse_cannot_make_it_smaller_than_its_minimum(program, screen):
    least = tuple(program.ask("min-size"))
    assert frame_size(program) > least
    program.activate()
    left, top, _, _ = program.window()["frame"]
    steps = itertools.cycle([(left + 20, top + 20), (left + 22, top + 22)])

    def drags_to_minimum():
        screen.move_mouse(*next(steps))
        return frame_size(program) == least

    with screen.button_held(*screen.corner_of(TITLE)):
        # The window manager takes up the drag with one of the first movements.
        eventually(drags_to_minimum, "the smallest size")
        assert all(drags_to_minimum() for _ in range(4))


def moved_edges(mask, rect, x, y):
    shifts = (x if mask & LEFT else 0, y if mask & TOP else 0,
              x if mask & RIGHT else 0, y if mask & BOTTOM else 0)
    return [edge + shift for edge, shift in zip(rect, shifts)]


@pytest.mark.parametrize("x, y", [(130, 70), (-90, -50), (57, -31), (0, 1)])
def test_each_edge_moves_with_the_dialog_as_its_rule_says(program, x, y):
    before = rects(program)
    grow(program, x, y)
    wanted = {number: moved_edges(mask, before[number], x, y)
              for number, *_, mask in CONTROLS}
    eventually(lambda: rects(program) == wanted, "every control is at its place")


def test_going_to_the_minimum_and_back_moves_nothing(program):
    before, frame = rects(program), program.window()["frame"]
    to_minimum(program)
    assert rects(program) != before
    program.ask("move", frame[0], frame[1], *size(frame))
    eventually(lambda: rects(program) == before, "every control is back")


def test_maximising_lays_out_and_restoring_brings_back(program):
    before, client = rects(program), size(program.window()["client"])
    program.maximise()

    def is_laid_out():
        # The client area may get its last size after the frame.
        large = size(program.window()["client"])
        x, y = large[0] - client[0], large[1] - client[1]
        return x > 0 and y > 0 and rects(program) == {
            number: moved_edges(mask, before[number], x, y) for number, *_, mask in CONTROLS}

    eventually(is_laid_out, "every control is at its place")
    program.ask("show", SW_RESTORE)
    eventually(lambda: rects(program) == before, "every control is back")


def test_minimising_lays_nothing_out(program):
    before = rects(program)
    program.minimise()
    assert rects(program) == before
    program.ask("show", SW_RESTORE)
    eventually(lambda: not program.window()["iconic"], "it is restored")
    assert rects(program) == before


@pytest.fixture(params=["start", "minimum", "maximum"])
def sized(request, program, language):
    """The program at one of its three telling sizes, with a picture of it."""
    if request.param == "minimum":
        to_minimum(program)
    elif request.param == "maximum":
        program.maximise()
    program.activate()
    picture = program.picture(SCREENSHOTS / f"{language}-{request.param}.png")
    return program, picture


# What a control needs beside its text: the box of a check box with its gap, and on each side of a
# flat button's text the focus rectangle.
EXTRA_WIDTH = {"check": 18, "button": 8, "label": 0}


def kind_of(control):
    if control["class"] == "Button":
        flat = control["style"] & BS_TYPEMASK == BS_OWNERDRAW
        return "button" if flat else "check"
    return "label"


def test_no_text_is_clipped_and_no_button_blank(sized):
    program, picture = sized
    extents = {extent["id"]: extent for extent in program.ask("text-extents")}
    controls = program.controls()
    texts = [number for number, window_class, english, *_ in CONTROLS
             if window_class in ("Static", "Button") and english and number not in HIDDEN]
    assert len(texts) == 13
    for number in texts:
        control, extent = controls[number], extents[number]
        needed = extent["width"] + EXTRA_WIDTH[kind_of(control)]
        assert 0 < needed <= extent["room_width"], control["text"]
        assert extent["height"] <= extent["room_height"], control["text"]
        ink = picture.ink(control["screen"])
        assert ink is not None, f"{control['text']} is blank"
        assert ink[2] < control["screen"][2], f"{control['text']} reaches its right edge"


# Text of a button that can be used, at rest and under the mouse.
REST, ACTIVE = (0, 0, 128), (0, 0, 255)


def colours(picture, rect):
    left, top, right, bottom = rect
    return {colour for y in range(top, bottom) for colour in picture.row(y, left, right)}


def test_a_button_lights_up_under_the_mouse(program, screen):
    program.activate()
    left, top, right, bottom = rect = program.control(REFRESH)["screen"]
    seen = colours(program.picture(), rect)
    assert REST in seen and ACTIVE not in seen
    screen.move_mouse((left + right) // 2, (top + bottom) // 2)
    eventually(lambda: ACTIVE in colours(screen.picture(), rect), "it has lit up")
    assert REST not in colours(screen.picture(), rect)
    screen.move_mouse(left - 40, top)
    eventually(lambda: REST in colours(screen.picture(), rect), "it is at rest again")


def overlap(a, b):
    return a[0] < b[2] and b[0] < a[2] and a[1] < b[3] and b[1] < a[3]


def test_controls_stand_apart_and_inside_the_window(sized):
    program, _ = sized
    _, _, width, height = program.window()["client"]
    shown = [control for number, control in program.controls().items()
             if number and control["visible"]]
    for control in shown:
        left, top, right, bottom = control["rect"]
        assert 0 <= left < right <= width and 0 <= top < bottom <= height, control
    for a, b in itertools.combinations(shown, 2):
        assert not overlap(a["rect"], b["rect"]), (a["id"], b["id"])


def test_the_hidden_pair_fits_too(program):
    extents = {extent["id"]: extent for extent in program.ask("text-extents")}
    assert extents[1017]["width"] <= extents[1017]["room_width"]


def test_the_list_draws_its_rows(sized):
    program, picture = sized
    for row in range(2):
        rect = program.ask("list-cell-rect", LIST, row, 2)["screen"]
        assert picture.ink(rect) is not None, row
    assert picture.ink(program.control(STATUS)["screen"]) is not None
