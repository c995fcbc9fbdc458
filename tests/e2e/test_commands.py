"""Commands that act on no package, and what goes on while boxes and menus are open."""

import contextlib

import pytest

from conftest import BINARIES, SCREENSHOTS
from support import handlers, window as windows
from support.installers import Installer
from support.program import ALL_PACKAGES, LIST, REFRESH, SEARCH, eventually, wait_for_focus
from support.registry import Key, reg_text
from support.seeding import path_of
from support.updates import SHOW_DESCRIPTION
from support.window import (BUTTONS, COPY, LAUNCH_URL, MODIFY, OK, OPEN_FOLDER, REMOVE, REPAIR,
                            UNINSTALL)

WM_SYSCOMMAND, WM_LBUTTONDOWN = 0x112, 0x201
WM_APP = 0x8000

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
COUNT = len(KEYS)
ABOUT_TITLES = {"english": "Info about Zolvane", "german": "Info \u00fcber Zolvane"}

ABOUT, SHOW_ALL_COLUMNS, BUG_REPORT, EXIT_KEY = 16, 2017, 32790, 32769
HOME_PAGE, MAIL = 1012, 1011
# What can be given only on a 32-bit system or with an editor for MSI files.
GREY_HERE = (2007, 2006, 2014)
# What needs something that none of these packages has.
NEEDY = (1032, 1023, 2013, 2016)

ASKED = "Uninstallation"
BROWSER = "C:\\Setups\\browser.exe"


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk(KEYS) as made:
        made.prefix.import_registry(handlers.reg_text(*(
            handlers.scheme(name, BROWSER) for name in ("https", "mailto"))))
        yield made


@pytest.fixture
def browser(desk):
    """What the shell runs for web and mail addresses."""
    made = Installer(desk, BINARIES, BROWSER)
    yield made
    made.end_all()


class Window(windows.Window):
    """With all packages in its list."""

    def __init__(self, desk, language):
        super().__init__(desk, language)
        self.wait_filled(COUNT)

    def box_texts(self, box):
        return [control["text"] for control in self.desk.driver("controls", box.handle)]

    def close_box(self, box):
        box.close()
        self.wait_usable()


@pytest.fixture(params=["english"])
def window(request, desk):
    yield Window(desk, request.param)
    desk.end_programs()


both_languages = pytest.mark.parametrize("window", ["english", "german"], indirect=True)


def test_a_command_that_can_do_nothing_does_nothing(window):
    """Each call comes back at once, which it would not with a box open."""
    for command in (*BUTTONS, REMOVE, COPY, OPEN_FOLDER, LAUNCH_URL, *NEEDY, *GREY_HERE, EXIT_KEY,
                    1, 4242):
        window.program.ask("command", command)
        assert window.boxes() == [], command
    window.choose("Bare")
    for command in (REPAIR, COPY, OPEN_FOLDER, LAUNCH_URL, *NEEDY, *GREY_HERE):
        window.program.ask("command", command)
        assert window.boxes() == [], command
    assert window.program.close() == 0


@pytest.mark.parametrize("name, enabled", [
    ("Whole", {UNINSTALL, MODIFY}), ("Product", set(BUTTONS)), ("Modify only", {MODIFY}),
    ("Bare", set())])
def test_the_buttons_follow_the_chosen_package(window, name, enabled):
    window.choose(name)
    assert window.enabled_buttons() == enabled


def test_the_pane_shows_the_chosen_package(window):
    program = window.program
    window.choose("Whole")
    assert [program.ask("text", field) for field in (1002, 1003, 1004, 1005, 1006)] == [
        "Whole", "1.5", "C:\\w.ico", "05/01/2026", "un.exe"]
    window.click_cell("Bare", 2)
    eventually(lambda: program.ask("text", 1002) == "Bare", "the clicked package")
    assert [program.ask("text", field) for field in (1003, 1004, 1006)] == [""] * 3


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


def test_the_issue_tracker_is_opened(window, browser):
    window.program.ask("command", BUG_REPORT)
    browser.wait_for_starts('"https://example.org/zolvane/issues"')
    assert window.boxes() == []


def test_the_description_of_the_newest_version_is_opened(window, browser):
    window.program.ask("command", SHOW_DESCRIPTION)
    browser.wait_for_starts('"https://example.org/zolvane/zolvane-pad.xml"')
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
def test_the_about_box_says_what_it_is_and_leads_to_its_makers(window, browser, open_it):
    ask = window.desk.driver
    open_it(window)
    title = ABOUT_TITLES[window.language]
    about = window.box(title)
    box = about.handle
    assert ask("window", box)["owner"] == window.program.handle
    assert centre(ask("window", box)) == pytest.approx(centre(window.program.window()), abs=1)
    assert "Zolvane 5.3" in window.box_texts(about)
    assert not window.program.window()["enabled"]
    window.program.picture(SCREENSHOTS / f"{window.language}-about.png")
    left, top, _, bottom = ask("control", box, HOME_PAGE)["screen"]
    wait_for_focus(window.desk.screen, title)
    window.desk.screen.click(left + 10, (top + bottom) // 2)
    browser.wait_for_starts('"https://example.org/zolvane"')
    # What the shell has started may have taken the screen's focus with it.
    ask("post", ask("control", box, MAIL)["handle"], WM_LBUTTONDOWN, 1, 0)
    browser.wait_for_starts('"mailto:zolvane@example.org"')
    about.answer(OK)
    window.wait_usable()
    assert window.program.close() == 0


def test_there_is_one_about_box_at_most(window):
    window.post(ABOUT)
    box = window.box(ABOUT_TITLES["english"])
    # The second one has come and gone when this returns.
    window.program.ask("command", ABOUT)
    assert [left["handle"] for left in window.boxes()] == [box.handle]
    window.close_box(box)


@pytest.mark.parametrize("commands", [
    (ABOUT,), (UNINSTALL,), (REPAIR,), (REMOVE,), (2004,), (ABOUT, UNINSTALL),
    (UNINSTALL, 2004, ABOUT), (REMOVE, REPAIR, 2004)])
def test_the_program_ends_with_boxes_open(window, commands):
    window.choose("Product")
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
        self.desk.driver("reg-delete", "HKCU", 64, path_of(name))

    def close(self):
        self.desk.end_programs()


def test_a_package_that_goes_while_its_box_is_open_leaves_nothing_behind(own):
    own.choose("Whole")
    own.post(UNINSTALL)
    box = own.box(ASKED)
    own.delete("Whole")
    own.program.wait_for_status("4 / 4 packages")
    own.close_box(box)
    for command in (*BUTTONS, REMOVE, OPEN_FOLDER):
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
    own.choose_in_popup(UNINSTALL)
    own.close_box(own.box(ASKED))
    own.program.wait_for_status("4 / 4 packages")
    own.program.ask("command", UNINSTALL)
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
    own.program.ask("command", UNINSTALL)
    assert own.boxes() == []
    # What it showed stands there still.
    assert own.program.ask("text", 1002) == "Whole"
    own.choose("Product")
    own.post(UNINSTALL)
    own.close_box(own.box(ASKED))


def test_a_merge_while_a_box_is_open_shows_afterwards(own):
    own.choose("Whole")
    own.post(UNINSTALL)
    box = own.box(ASKED)
    own.desk.prefix.import_registry(
        reg_text([Key("user", "Whole", {"DisplayName": "Whole again"})]))
    eventually(lambda: "Whole again" in own.program.column(2), "the merged name")
    own.close_box(box)
    own.choose("Whole again")
    own.program.select_type(ALL_PACKAGES)
    assert own.program.chosen_row() == "Whole"
    assert own.program.close() == 0
