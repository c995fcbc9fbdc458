"""The window by the keyboard alone, with real keys."""

import pytest

from support.program import (GROUP, LIST, MICROSOFT, REFRESH, SEARCH, STATUS, TITLE, TYPE,
                             WINDOW_CLASS, DriverError, eventually, wait_for_focus)
from support.registry import Key

QUIET = ("-nopersist", "-noupdate")
WM_SYSCOMMAND, SC_KEYMENU = 0x112, 0xF100
NAME, VERSION, ICON_PATH, DATE, COMMAND = 1002, 1003, 1004, 1005, 1006
MODIFY, REPAIR, UNINSTALL = 1021, 2010, 1018

# In the order in which Tab goes; the three buttons only while they can be used.
STOPS = [SEARCH, MICROSOFT, TYPE, LIST, NAME, REFRESH, ICON_PATH, VERSION, DATE, MODIFY, REPAIR,
         UNINSTALL, COMMAND]
BUTTONS = {MODIFY, REPAIR, UNINSTALL}

# Keys with Alt that lead to a control. The check box, Refresh and the buttons act at once.
FOCUS_KEYS = {
    "english": {"f": SEARCH, "t": TYPE, "p": NAME, "i": ICON_PATH, "v": VERSION},
    "german": {"f": SEARCH, "t": TYPE, "p": NAME, "i": ICON_PATH, "v": VERSION},
}
REFRESH_KEY = {"english": "alt+r", "german": "alt+a"}
UNINSTALL_KEY = {"english": "alt+u", "german": "alt+d"}
ABOUT_KEYS = {"english": ("alt+h", "i"), "german": ("alt+h", "i")}
ABOUT_TITLES = {"english": "Info about Zolvane", "german": "Info \u00fcber Zolvane"}
STATUSES = {"english": "2 / 2 packages", "german": "2 / 2 Pakete"}

PRODUCT = "{5F0C1B6A-11D4-4C0E-9D4E-6A1B2C3D4E5F}"
KEYS = [Key("user", PRODUCT, {"DisplayName": "Product", "InstallDate": "20260104",
                              "WindowsInstaller": 1}),
        Key("user", "Bare", {"DisplayName": "Bare", "InstallDate": "20260102"})]


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk(KEYS) as made:
        yield made


@pytest.fixture(params=["english", "german"])
def language(request):
    return request.param


@pytest.fixture
def program(desk, language):
    program = desk.open({"english": "-eng", "german": "-ger"}[language], *QUIET)
    program.wait_for_status(STATUSES[language])
    program.activate()
    yield program
    desk.end_programs()


def wait_for_control(program, control):
    seen = []

    def is_there():
        seen.append(program.ask("focus"))
        return seen[-1] == control
    eventually(is_there, lambda: f"focus on {control}, not on {seen[-1]}", limit=15)


def walk(program, stops, key):
    for stop in stops:
        program.press_key(key)
        wait_for_control(program, stop)


def boxes(desk, program):
    return [window for window in desk.windows_of(program.pid)
            if window["class"] == WINDOW_CLASS and window["handle"] != program.handle]


def wait_for_box(desk, program, title=TITLE):
    def shown():
        return [box for box in boxes(desk, program)
                if box["title"] == title and box["foreground"]]
    box = eventually(shown, f"a box {title!r}")[0]["handle"]
    wait_for_focus(desk.screen, title)
    return box


def close_by_key(desk, program, box, key):
    desk.screen.press_key(key)
    desk.driver("wait-gone", box, 20000)
    program.activate()


def test_it_starts_where_one_types_the_search(program):
    wait_for_control(program, SEARCH)


def test_tab_goes_through_all_and_round(program):
    wait_for_control(program, SEARCH)
    stops = [stop for stop in STOPS if stop not in BUTTONS]
    walk(program, stops[1:] + stops[:1], "Tab")
    walk(program, stops[::-1], "shift+Tab")


def test_tab_stops_at_the_buttons_that_can_be_used(program):
    program.choose_row(0)
    assert all(program.control(button)["enabled"] for button in BUTTONS)
    walk(program, STOPS[1:] + STOPS[:1], "Tab")
    walk(program, STOPS[::-1], "shift+Tab")


def test_mnemonics_lead_to_their_controls(program, language):
    for key, control in FOCUS_KEYS[language].items():
        program.press_key("alt+" + key)
        wait_for_control(program, control)


def test_the_check_box_follows_its_key(program):
    for state in (0, 1):
        program.press_key("alt+m")
        eventually(lambda: program.ask("checked", MICROSOFT) == state, f"the check is {state}")


@pytest.mark.parametrize("way", ["mnemonic", "F5", "Enter", "blank"])
def test_refresh_by_key(program, language, way):
    if way in ("Enter", "blank"):
        program.press_key("alt+i")
        wait_for_control(program, ICON_PATH)
        program.press_key("shift+Tab")
        wait_for_control(program, REFRESH)
    program.ask("set-text", STATUS, "")
    program.press_key({"mnemonic": REFRESH_KEY[language], "F5": "F5", "Enter": "Return",
                       "blank": "space"}[way])
    program.wait_for_status(STATUSES[language])
    assert len(program.rows()) == 2


def test_searching_and_choosing_by_key(desk, program, language):
    program.press_key("alt+f")
    wait_for_control(program, SEARCH)
    desk.screen.type_text("bare")
    status = STATUSES[language].replace("2 /", "1 /", 1)
    program.wait_for_status(status)
    walk(program, STOPS[1:4], "Tab")
    program.press_key("Down")
    eventually(lambda: program.ask("text", NAME) == "Bare", "the row that is left")
    program.press_key("alt+t")
    wait_for_control(program, TYPE)
    for index in (1, 2):
        program.press_key("Down")
        eventually(lambda: program.ask("combo", TYPE)["selected"] == index, "the next type")
    assert program.ask("combo", GROUP)["selected"] == 0
    # The row stays chosen all along.
    assert program.chosen_row() == "Bare"


def test_arrows_walk_the_list_and_the_pane_follows(program):
    walk(program, STOPS[1:4], "Tab")
    for key, name in (("Down", "Product"), ("Down", "Bare"), ("Up", "Product"), ("End", "Bare")):
        program.press_key(key)
        eventually(lambda: program.ask("text", NAME) == name, f"{name} behind {key}")


def test_enter_does_nothing_outside_the_buttons(desk, program):
    for stop in (SEARCH, MICROSOFT, TYPE, LIST, NAME):
        wait_for_control(program, stop)
        program.press_key("Return")
        # The keys come in their order: with Tab done, so is Enter.
        program.press_key("Tab")
    wait_for_control(program, REFRESH)
    assert program.window()["visible"] and boxes(desk, program) == []


def test_a_button_acts_by_its_key(desk, program, language):
    program.choose_row(0)
    program.press_key(UNINSTALL_KEY[language])
    close_by_key(desk, program, wait_for_box(desk, program, "Uninstallation"), "Escape")


def test_nothing_happens_by_alt_and_x(desk, program):
    program.press_key("alt+x")

    def tab_moves_the_focus():
        if program.ask("in-menu"):
            # Under Wine an accelerator with Alt counts as Alt alone, which goes to the menu bar.
            desk.screen.press_key("Escape")
            eventually(lambda: not program.ask("in-menu"), "the menu bar is left")
        elif program.ask("focus") == SEARCH:
            desk.screen.press_key("Tab")
        return program.ask("focus") != SEARCH
    eventually(tab_moves_the_focus, "Tab moves the focus as before")
    assert program.window()["visible"] and boxes(desk, program) == []


def test_the_menu_opens_the_about_box_and_escape_closes_it(desk, program, language):
    for key in ABOUT_KEYS[language]:
        program.press_key(key)
    box = wait_for_box(desk, program, ABOUT_TITLES[language])
    close_by_key(desk, program, box, "Escape")
    assert program.is_running()


def test_the_system_menu_opens_the_about_box(desk, program, language):
    # The window manager keeps Alt and the space bar for itself.
    program.ask("post", WM_SYSCOMMAND, SC_KEYMENU, ord(" "))

    def is_open():
        try:
            return program.ask("popup")
        except DriverError:
            return None
    eventually(is_open, "the system menu")
    desk.screen.press_key("o")
    box = wait_for_box(desk, program, ABOUT_TITLES[language])
    close_by_key(desk, program, box, "Return")


# Nothing of it depends on the language.
@pytest.mark.parametrize("steps", range(len(STOPS) - len(BUTTONS)))
def test_escape_ends_it_from_anywhere(desk, steps):
    program = desk.open("-eng", *QUIET)
    program.wait_for_status(STATUSES["english"])
    walk(program, [stop for stop in STOPS if stop not in BUTTONS][1:steps + 1], "Tab")
    program.press_key("Escape")
    assert program.exit_code() == 0
