"""Every command from where the user gives it: menus, buttons, double clicks; the about box."""

import contextlib

import pytest

from conftest import SCREENSHOTS
from support.program import (ALL_PACKAGES, LIST, REFRESH, SEARCH, TITLE, WINDOW_CLASS, DriverError,
                             eventually, wait_for_focus)
from support.registry import UNINSTALL, Key, reg_text

QUIET = ("-nopersist", "-noupdate")
WM_CLOSE, WM_COMMAND, WM_SYSCOMMAND, WM_LBUTTONDOWN = 0x10, 0x111, 0x112, 0x201
WM_APP = 0x8000
LIMIT = 20000

PRODUCT = "{5F0C1B6A-11D4-4C0E-9D4E-6A1B2C3D4E5F}"
KEYS = [
    Key("user", "Whole", {
        "DisplayName": "Whole", "DisplayVersion": "1.5", "InstallDate": "20260105",
        "DisplayIcon": "C:\\w.ico", "UninstallString": "un.exe", "ModifyPath": "mod.exe",
        "InstallLocation": "C:\\whole", "HelpLink": "http://help.whole.example/",
        "Contact": "desk@whole.example", "URLInfoAbout": "www.whole.example"}),
    Key("user", PRODUCT, {
        "DisplayName": "Product", "InstallDate": "20260104", "WindowsInstaller": 1}),
    Key("user", "Modify only", {
        "DisplayName": "Modify only", "InstallDate": "20260103", "ModifyPath": "mod.exe"}),
    Key("user", "Bare", {"DisplayName": "Bare", "InstallDate": "20260102"}),
    Key("user", "Arrow", {"DisplayName": " -->", "InstallDate": "20260101",
                          "UninstallString": "un.exe"}),
]
ROWS = {key.name: row for row, key in enumerate(KEYS)}
COUNT = f"{len(KEYS)} / {len(KEYS)}"
TEXTS = {
    "english": {"switch": "-eng", "status": f"{COUNT} packages", "about": "Info about Zolvane",
                "pending": "This function isn't there yet. It comes with a later version.",
                "no command": "There is no command to launch the installer of this entry."},
    "german": {"switch": "-ger", "status": f"{COUNT} Pakete", "about": "Info \u00fcber Zolvane",
               "pending": "Diese Funktion gibt es noch nicht. Sie kommt mit einer sp\u00e4teren "
                          "Version.",
               "no command": "Es ist kein Kommando zum Aufruf des Installers f\u00fcr diesen "
                             "Eintrag registriert."},
}

UNINSTALL_COMMAND, MODIFY_COMMAND, REPAIR_COMMAND = 1018, 1021, 2010
PACKAGE_ACTIONS = (UNINSTALL_COMMAND, MODIFY_COMMAND, REPAIR_COMMAND)
ABOUT, SHOW_ALL_COLUMNS, BUG_REPORT, EXIT_KEY = 16, 2017, 32790, 32769
HOME_PAGE, MAIL, OK = 1012, 1011, 1
# What can be given at any time, and what only on a 32-bit system or with an editor for MSI files.
PENDING = (1024, 2004, 2005, 2011, 32788, 2008, 32774)
GREY_HERE = (2007, 2006, 2014)
# What needs something that none of these packages has.
NEEDY = (1032, 1023, 2013, 2016)

# What the shell runs for web and mail addresses: the address goes into a file.
HANDLERS = "".join(f"""
[HKEY_LOCAL_MACHINE\\Software\\Classes\\{scheme}]
"URL Protocol"=""

[HKEY_LOCAL_MACHINE\\Software\\Classes\\{scheme}\\shell\\open\\command]
@="C:\\\\windows\\\\system32\\\\cmd.exe /c echo %1>C:\\\\opened.txt"

[-HKEY_LOCAL_MACHINE\\Software\\Classes\\{scheme}\\shell\\open\\ddeexec]
""" for scheme in ("https", "mailto"))


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk(KEYS) as made:
        made.prefix.import_registry("Windows Registry Editor Version 5.00\n" + HANDLERS)
        yield made


class Window:
    """The program in a language, with what it opens."""

    def __init__(self, desk, language):
        self.desk, self.language, self.texts = desk, language, TEXTS[language]
        self.program = desk.open(self.texts["switch"], *QUIET)
        self.program.wait_for_status(self.texts["status"])

    def choose(self, name):
        self.program.choose_row(ROWS[name])

    def post(self, command):
        self.program.ask("post", WM_COMMAND, command, 0)

    def boxes(self):
        return [window["handle"] for window in self.desk.windows_of(self.program.pid)
                if window["class"] == WINDOW_CLASS and window["handle"] != self.program.handle]

    def wait_for_box(self, title=TITLE):
        def shown():
            return [box for box in self.boxes()
                    if self.desk.driver("window", box)["title"] == title]
        (box,) = eventually(shown, f"a box {title!r}")
        return box

    def box_texts(self, box):
        return [control["text"] for control in self.desk.driver("controls", box)]

    def close_box(self, box):
        self.desk.driver("post", box, WM_CLOSE, 0, 0)
        self.desk.driver("wait-gone", box, LIMIT)
        eventually(lambda: self.program.window()["enabled"], "the window can be used again")

    def expect_box(self, text):
        box = self.wait_for_box()
        assert self.texts[text] in self.box_texts(box)
        assert not self.program.window()["enabled"]
        self.close_box(box)

    def popup(self):
        """The items of the popup menu that is open, None if none is."""
        try:
            return self.program.ask("popup")
        except DriverError:
            return None

    def click_cell(self, name, column, button=1, times=1):
        self.program.activate()
        left, top, right, bottom = self.program.ask(
            "list-cell-rect", LIST, ROWS[name], column)["screen"]
        self.desk.screen.click((left + right) // 2, (top + bottom) // 2, button, times)

    def leave_popup(self):
        def left():
            if self.popup() is None:
                return True
            self.desk.screen.press_key("Escape")
            return self.popup() is None
        eventually(left, "the popup is closed")


@pytest.fixture(params=["english"])
def window(request, desk):
    yield Window(desk, request.param)
    desk.end_programs()


both_languages = pytest.mark.parametrize("window", ["english", "german"], indirect=True)


@both_languages
def test_what_is_not_there_yet_says_so(window):
    for command in PENDING:
        window.post(command)
        window.expect_box("pending")
    window.choose("Whole")
    for command in (UNINSTALL_COMMAND, MODIFY_COMMAND, 1008, 2003):
        window.post(command)
        window.expect_box("pending")
    window.choose(PRODUCT)
    window.post(REPAIR_COMMAND)
    window.expect_box("pending")
    assert window.program.close() == 0


def test_a_command_that_can_do_nothing_does_nothing(window):
    """Each call comes back at once, which it would not with a box open."""
    for command in (*PACKAGE_ACTIONS, 1008, 2003, 2012, *NEEDY, *GREY_HERE, EXIT_KEY, 1, 4242):
        window.program.ask("command", command)
        assert window.boxes() == [], command
    window.choose("Bare")
    for command in (*PACKAGE_ACTIONS, 2003, 2012, *NEEDY, *GREY_HERE):
        window.program.ask("command", command)
        assert window.boxes() == [], command
    assert window.program.close() == 0


@pytest.mark.parametrize("name, enabled", [
    ("Whole", {UNINSTALL_COMMAND, MODIFY_COMMAND}), (PRODUCT, set(PACKAGE_ACTIONS)),
    ("Modify only", {MODIFY_COMMAND}), ("Bare", set())])
def test_the_buttons_follow_the_chosen_package(window, name, enabled):
    window.choose(name)
    controls = window.program.controls()
    assert {number for number in PACKAGE_ACTIONS if controls[number]["enabled"]} == enabled
    for number in enabled:
        window.program.click(number)
        window.expect_box("pending")


def test_the_pane_shows_the_chosen_package(window):
    program = window.program
    window.choose("Whole")
    assert [program.ask("text", field) for field in (1002, 1003, 1004, 1005, 1006)] == [
        "Whole", "1.5", "C:\\w.ico", "05/01/2026", "un.exe"]
    window.click_cell("Bare", 2)
    eventually(lambda: program.ask("text", 1002) == "Bare", "the clicked package")
    assert [program.ask("text", field) for field in (1003, 1004, 1006)] == [""] * 3


@both_languages
def test_a_double_click_uninstalls_or_else_modifies_or_else_says_that_it_cannot(window):
    for name, text in (("Whole", "pending"), ("Modify only", "pending"), ("Bare", "no command")):
        window.click_cell(name, 2, times=2)
        window.expect_box(text)


def test_a_double_click_on_a_line_without_actions_does_nothing(window):
    window.click_cell("Arrow", 2, times=2)
    eventually(lambda: window.program.ask("text", 1002) == " -->", "the line is chosen")
    window.click_cell("Whole", 2)
    eventually(lambda: window.program.ask("text", 1002) == "Whole", "the next click has come")
    assert window.boxes() == []


LIST_MENU = [32774, 2012, 1018, 1021, 2010, 1032, 1023, 2013, 2016, 2003, 1008]


@pytest.mark.parametrize("name, column, enabled", [
    ("Whole", 2, {32774, 1018, 1021, 2003, 1008}),
    (PRODUCT, 2, {32774, 1018, 1021, 2010, 1008}),
    ("Bare", 2, {32774, 1008}),
])
def test_a_right_click_opens_the_menu_of_the_package(window, name, column, enabled):
    window.click_cell(name, column, button=3)
    items = eventually(window.popup, "the popup menu")
    window.program.picture(SCREENSHOTS / f"popup-{name.strip('{}')}.png")
    assert [item["id"] for item in items] == LIST_MENU
    assert {item["id"] for item in items if not item["gray"]} == enabled
    window.leave_popup()
    assert window.program.close() == 0


@pytest.mark.parametrize("column, is_link", [(26, True), (25, True), (28, False)])
def test_a_cell_with_an_address_can_be_launched(window, column, is_link):
    program = window.program
    program.maximise()
    left, _, right, _ = program.ask("list-cell-rect", LIST, 0, column)["screen"]
    program.send_to(LIST, 0x1014, (left + right) // 2 - 640)
    window.click_cell("Whole", column, button=3)
    items = eventually(window.popup, "the popup menu")
    assert [item["gray"] for item in items if item["id"] == 2012] == [not is_link]
    window.leave_popup()


def test_a_right_click_beside_the_rows_or_on_a_line_without_actions_opens_no_menu(window):
    program = window.program
    window.click_cell("Arrow", 2, button=3)
    eventually(lambda: program.ask("text", 1002) == " -->", "the line is chosen")
    assert window.popup() is None
    left, _, right, bottom = program.control(LIST)["screen"]
    window.desk.screen.click((left + right) // 2, bottom - 60, button=3)
    window.click_cell("Whole", 2, button=3)
    eventually(window.popup, "the menu of the click after them")
    window.leave_popup()


@both_languages
def test_a_right_click_on_the_header_offers_all_columns(window):
    program = window.program
    program.activate()
    left, top, right, bottom = program.ask("header-rect", LIST, 2)["screen"]
    window.desk.screen.click((left + right) // 2, (top + bottom) // 2, button=3)
    items = eventually(window.popup, "the popup menu")
    assert [(item["id"], item["gray"]) for item in items] == [(SHOW_ALL_COLUMNS, False)]
    window.desk.screen.press_key("Down")
    window.desk.screen.press_key("Return")
    eventually(lambda: all(column["width"] for column in program.columns()), "every column")
    assert {column["arrow"] for column in program.columns()} == {""}


def opened_address(desk):
    file = desk.prefix.folder / "drive_c" / "opened.txt"

    def read():
        return file.exists() and file.read_text().strip()
    text = eventually(read, "an address is opened")
    file.unlink()
    return text


def test_the_issue_tracker_is_opened(window):
    window.program.ask("command", BUG_REPORT)
    assert opened_address(window.desk) == "https://example.org/zolvane/issues"
    assert window.boxes() == []


def centre(window):
    left, top, right, bottom = window["frame"]
    return [(left + right) / 2, (top + bottom) / 2]


def open_by_menu(window):
    window.post(ABOUT)


def open_by_system_menu(window):
    # The lowest four bits belong to the system.
    window.program.ask("post", WM_SYSCOMMAND, ABOUT + 3, 0)


@both_languages
@pytest.mark.parametrize("open_it", [open_by_menu, open_by_system_menu], ids=["menu", "system"])
def test_the_about_box_says_what_it_is_and_leads_to_its_makers(window, open_it):
    ask = window.desk.driver
    open_it(window)
    box = window.wait_for_box(window.texts["about"])
    assert ask("window", box)["owner"] == window.program.handle
    assert centre(ask("window", box)) == pytest.approx(centre(window.program.window()), abs=1)
    assert "Zolvane 5.3" in window.box_texts(box)
    assert not window.program.window()["enabled"]
    window.program.picture(SCREENSHOTS / f"{window.language}-about.png")
    left, top, _, bottom = ask("control", box, HOME_PAGE)["screen"]
    wait_for_focus(window.desk.screen, window.texts["about"])
    window.desk.screen.click(left + 10, (top + bottom) // 2)
    assert opened_address(window.desk) == "https://example.org/zolvane"
    # What the shell has started may have taken the screen's focus with it.
    ask("post", ask("control", box, MAIL)["handle"], WM_LBUTTONDOWN, 1, 0)
    assert opened_address(window.desk) == "mailto:zolvane@example.org"
    ask("post", box, WM_COMMAND, OK, 0)
    ask("wait-gone", box, LIMIT)
    eventually(lambda: window.program.window()["enabled"], "the window can be used again")
    assert window.program.close() == 0


def test_there_is_one_about_box_at_most(window):
    window.post(ABOUT)
    box = window.wait_for_box(window.texts["about"])
    # The second one has come and gone when this returns.
    window.program.ask("command", ABOUT)
    assert window.boxes() == [box]
    window.close_box(box)


@pytest.mark.parametrize("commands", [(ABOUT,), (2005,), (ABOUT, 2005), (2005, 2011, ABOUT)])
def test_the_program_ends_with_boxes_open(window, commands):
    for count, command in enumerate(commands, 1):
        window.post(command)
        eventually(lambda: len(window.boxes()) == count, f"box {count}")
    assert window.program.close() == 0


@pytest.fixture
def own(make_desk):
    with make_desk(KEYS) as desk, contextlib.closing(Owned(desk)) as window:
        yield window


class Owned(Window):
    def __init__(self, desk):
        super().__init__(desk, "english")

    def delete(self, name):
        self.desk.driver("reg-delete", "HKCU", 64, f"Software\\{UNINSTALL}\\{name}")

    def close(self):
        self.desk.end_programs()


def test_a_package_that_goes_while_its_box_is_open_leaves_nothing_behind(own):
    own.choose("Whole")
    own.post(UNINSTALL_COMMAND)
    box = own.wait_for_box()
    own.delete("Whole")
    own.program.wait_for_status("4 / 4 packages")
    own.close_box(box)
    for command in (*PACKAGE_ACTIONS, 1008, 2003):
        own.program.ask("command", command)
        assert own.boxes() == [], command
    assert own.program.close() == 0


def test_a_package_that_goes_while_its_menu_is_open_leaves_nothing_behind(own):
    own.click_cell("Whole", 2, button=3)
    eventually(own.popup, "the popup menu")
    own.delete("Whole")
    # The list waits for the menu's end.
    for _ in range(5):
        assert own.program.status() == "5 / 5 packages"
    own.desk.screen.press_key("Down")
    own.desk.screen.press_key("Return")
    box = own.wait_for_box()
    own.close_box(box)
    own.program.wait_for_status("4 / 4 packages")
    own.program.ask("command", UNINSTALL_COMMAND)
    assert own.boxes() == []
    assert own.program.close() == 0


@contextlib.contextmanager
def scroll_bar_dragged(own):
    own.program.activate()
    left, _, _, bottom = own.program.control(LIST)["screen"]
    with own.desk.screen.button_held(left + 40, bottom - 10):
        yield


@contextlib.contextmanager
def menu_of_a_text_open(own):
    own.program.activate()
    left, top, _, bottom = own.program.control(SEARCH)["screen"]
    own.desk.screen.click(left + 20, (top + bottom) // 2, button=3)
    eventually(lambda: own.program.ask("in-menu"), "the menu is open")
    yield
    own.desk.screen.press_key("Escape")


@pytest.mark.parametrize("taken_up", [scroll_bar_dragged, menu_of_a_text_open])
def test_what_changes_waits_until_mouse_and_keys_are_free_again(own, taken_up):
    scrolled = own.program.ask("list-cell-rect", LIST, 0, 2)
    with taken_up(own):
        if taken_up is scroll_bar_dragged:
            left, _, _, bottom = own.program.control(LIST)["screen"]

            def drags():
                own.desk.screen.move_mouse(left + 90, bottom - 10)
                return own.program.ask("list-cell-rect", LIST, 0, 2) != scrolled
            eventually(drags, "the list is scrolled")
        own.delete("Whole")
        # Each returns when the refresh that it has begun has ended.
        for _ in range(20):
            own.program.ask("send", WM_APP, 0, 0)
            assert own.program.status() == "5 / 5 packages"
    own.program.wait_for_status("4 / 4 packages")
    assert own.program.close() == 0


def test_after_a_refresh_from_scratch_no_package_is_chosen_until_one_is(own):
    own.choose("Whole")
    own.program.ask("set-text", 1031, "")
    own.program.ask("command", REFRESH)
    own.program.wait_for_status("5 / 5 packages")
    own.program.ask("command", UNINSTALL_COMMAND)
    assert own.boxes() == []
    # What it showed stands there still.
    assert own.program.ask("text", 1002) == "Whole"
    own.choose(PRODUCT)
    own.post(UNINSTALL_COMMAND)
    own.expect_box("pending")


def test_a_merge_while_a_box_is_open_shows_afterwards(own):
    own.choose("Whole")
    own.post(UNINSTALL_COMMAND)
    box = own.wait_for_box()
    own.desk.prefix.import_registry(
        reg_text([Key("user", "Whole", {"DisplayName": "Whole again"})]))
    eventually(lambda: "Whole again" in own.program.column(2), "the merged name")
    own.close_box(box)
    own.choose("Whole")
    own.program.select_type(ALL_PACKAGES)
    assert own.program.chosen_row() == "Whole"
    assert own.program.close() == 0
