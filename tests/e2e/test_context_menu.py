"""The popup menu of the list: where it opens, what it offers, and what copy, URL and folder do."""

import pytest

from conftest import SCREENSHOTS
from support import handlers
from support.program import LIST, TITLE, eventually
from support.registry import Key
from support.seeding import seed
from support.setups import SETUP
from support.window import (COPY, LAUNCH_URL, MODIFY, NAME_COLUMN, OK, OPEN_FOLDER, REMOVE, REPAIR,
                            UNINSTALL, Window)

VERSION, ICON, FOLDER, CONTACT, HELP, ABOUT, UPDATE, COMMENT = 3, 13, 14, 25, 26, 28, 29, 22
PATCHES, FEATURES, MSI_CONTENT, OPEN_WITH_ORCA = 1032, 1023, 2013, 2016

PRODUCT = "{5F0C1B6A-11D4-4C0E-9D4E-6A1B2C3D4E5F}"
WHOLE = Key("user", "Whole", {
    "DisplayName": "Whole K\u00e4fer \u20ac", "DisplayVersion": "1.5", "InstallDate": "20260105",
    "DisplayIcon": "C:\\w.ico", "UninstallString": f"{SETUP} /un", "ModifyPath": f"{SETUP} /mod",
    "InstallLocation": "C:\\Whole world", "HelpLink": "http://help.whole.example/?a=1&b=%20",
    "Contact": "desk@whole.example", "URLInfoAbout": "www.whole.example",
    "URLUpdateInfo": "FTP://ftp.whole.example/new", "Comments": "c" * 1000})
OTHERS = Key("user", "Others", {
    "DisplayName": "Others", "InstallDate": "20260104", "Contact": "desk@whole",
    "HelpLink": "https://help.others.example/", "URLInfoAbout": "MailTo:me@others.example",
    "URLUpdateInfo": "x http://others.example/", "InstallLocation": "C:\\gone away",
    "Comments": "write to me.at@home"})
KEYS = [
    WHOLE, OTHERS,
    Key("user", PRODUCT, {
        "DisplayName": "Product", "InstallDate": "20260103", "WindowsInstaller": 1}),
    Key("user", "Modify only", {
        "DisplayName": "Modify only", "InstallDate": "20260102", "ModifyPath": f"{SETUP} /mod"}),
    Key("user", "Kept", {
        "DisplayName": "Kept", "InstallDate": "20260101", "UninstallString": f"{SETUP} /un",
        "ModifyPath": f"{SETUP} /mod", "NoRemove": 1, "NoModify": 1}),
    Key("user", "Arrow", {"DisplayName": " -->", "InstallDate": "20251231",
                          "UninstallString": f"{SETUP} /un"}),
    Key("user", "Bare", {"DisplayName": "Bare", "InstallDate": "20251230"}),
]

# In their order, English and German.
ITEMS = [
    (COPY, "C&opy to Clipboard", "&Kopiere in Zwischenablage"),
    (LAUNCH_URL, "&Launch URL...", "&URL-Aufruf..."),
    (UNINSTALL, "&Uninstall...", "&Deinstallation..."),
    (MODIFY, "&Modify...", "&\u00c4ndern..."),
    (REPAIR, "R&epair...", "&Reparieren..."),
    (PATCHES, "&Patches...", "&Patches..."),
    (FEATURES, "MSI &features...", "MSI-&Features..."),
    (MSI_CONTENT, "M&SI content...", "&MSI-Inhalt..."),
    (OPEN_WITH_ORCA, "Open MSI with OR&CA...", "\u00d6ffne mit &ORCA..."),
    (OPEN_FOLDER, "Open Installation Fol&der", "\u00d6ffne Installations&verzeichnis"),
    (REMOVE, "&Remove", "&Entfernen"),
]

BROWSER, EXPLORER = "C:\\Setups\\browser.exe", "C:\\Setups\\folders.exe"


@pytest.fixture(scope="module")
def prepared(module_setups):
    module_setups.desk.prefix.import_registry(handlers.reg_text(
        *(handlers.scheme(name, BROWSER) for name in ("http", "https", "ftp", "mailto")),
        handlers.handler("Folder", EXPLORER)))
    module_setups.desk.prefix.make_file("C:\\Whole world\\a file.txt")
    seed(module_setups.desk, KEYS)
    module_setups.installer(BROWSER)
    module_setups.installer(EXPLORER)
    return module_setups


@pytest.fixture(params=["english"])
def window(request, prepared, setups):
    window = Window(setups.desk, request.param)
    window.wait_filled(len(KEYS))
    yield window


@pytest.fixture
def browser(setups):
    return setups.installer(BROWSER)


both_languages = pytest.mark.parametrize("window", ["english", "german"], indirect=True)


def name_of(key):
    return key.values["DisplayName"]


def gray_in(items):
    return {item["id"] for item in items if item["gray"]}


# What it offers.

@both_languages
def test_the_menu_has_its_items_in_both_languages(window):
    window.click_cell(name_of(WHOLE), NAME_COLUMN, button=3)
    items = window.wait_for_popup()
    which = {"english": 1, "german": 2}[window.language]
    assert [(item["id"], item["text"]) for item in items] == [
        (row[0], row[which]) for row in ITEMS]
    window.program.picture(SCREENSHOTS / f"{window.language}-popup.png")
    window.leave_popup()
    assert window.program.close() == 0


LATER = {PATCHES, FEATURES, MSI_CONTENT, OPEN_WITH_ORCA}


@pytest.mark.parametrize("name, column, gray", [
    (name_of(WHOLE), NAME_COLUMN, {LAUNCH_URL, REPAIR}),
    (name_of(WHOLE), HELP, {REPAIR}),
    ("Product", NAME_COLUMN, {LAUNCH_URL, OPEN_FOLDER}),
    ("Modify only", NAME_COLUMN, {LAUNCH_URL, UNINSTALL, REPAIR, OPEN_FOLDER}),
    ("Kept", NAME_COLUMN, {LAUNCH_URL, UNINSTALL, MODIFY, REPAIR, OPEN_FOLDER}),
    ("Bare", NAME_COLUMN, {LAUNCH_URL, UNINSTALL, MODIFY, REPAIR, OPEN_FOLDER}),
])
def test_gray_is_what_can_do_nothing_for_the_package(window, name, column, gray):
    window.click_cell(name, column, button=3)
    assert gray_in(window.wait_for_popup()) == gray | LATER
    window.leave_popup()


# Where it opens.

def test_it_opens_at_the_mouse_and_leaves_by_escape(window):
    window.click_cell("Product", NAME_COLUMN, button=3)
    window.wait_for_popup()
    left, top, right, bottom = window.cell_rect(window.row_of("Product"), NAME_COLUMN)
    frame = window.popup_frame()
    assert frame[0] == pytest.approx((left + right) // 2, abs=4)
    assert frame[1] == pytest.approx((top + bottom) // 2, abs=4)
    window.leave_popup()
    assert window.program.close() == 0


@pytest.mark.parametrize("name", ["Product", "Bare"])
@pytest.mark.parametrize("key", ["Menu", "shift+F10"])
def test_it_opens_by_key_at_the_chosen_row(window, key, name):
    window.click_cell(name_of(WHOLE), CONTACT, button=3)
    window.wait_for_popup()
    window.leave_popup()
    window.choose(name)
    window.program.press_key(key)
    items = window.wait_for_popup()
    assert (UNINSTALL in gray_in(items)) == (name == "Bare")
    # What was clicked before doesn't count.
    assert LAUNCH_URL in gray_in(items)
    _, top, _, bottom = window.cell_rect(window.row_of(name), NAME_COLUMN)
    left, _, right, _ = window.program.control(LIST)["screen"]
    frame = window.popup_frame()
    assert left <= frame[0] < right and top - 2 <= frame[1] <= bottom + 2
    window.choose_in_popup(COPY)
    eventually(lambda: window.desk.driver("clipboard-text") == name, "the name is copied")
    assert window.program.close() == 0


def to_the_list(window):
    window.program.activate()
    for _ in range(3):
        window.program.press_key("Tab")
    eventually(lambda: window.program.ask("focus") == LIST, "the list has the focus")


def check_launched_alone(window, browser):
    """That what was asked for before has launched nothing: what is launched now comes alone."""
    window.click_cell(name_of(WHOLE), HELP, button=3, shift=8)
    window.choose_in_popup(LAUNCH_URL)
    browser.wait_for_starts(f'"{WHOLE.values["HelpLink"]}"')


def check_free(window):
    """No menu is open: the keys go to the list, which takes the next row."""
    before = window.program.chosen_row()

    def moved():
        window.program.press_key("Down")
        return window.program.chosen_row() != before
    eventually(moved, "the keys go to the list")
    assert window.popup() is None and window.boxes() == []


@pytest.mark.parametrize("key", ["Menu", "shift+F10"])
def test_no_menu_opens_by_key_where_nothing_is_chosen(window, key):
    to_the_list(window)
    window.program.press_key(key)
    check_free(window)
    assert window.program.close() == 0


@pytest.mark.parametrize("key", ["Menu", "shift+F10"])
def test_no_menu_opens_by_key_on_a_line_without_actions(window, key):
    to_the_list(window)
    window.choose(" -->")
    window.program.press_key(key)
    check_free(window)
    assert window.program.close() == 0


def test_a_double_click_on_a_line_without_actions_does_nothing(window, setups):
    window.click_cell(" -->", NAME_COLUMN, times=2)
    window.click_cell("Bare", NAME_COLUMN)
    eventually(lambda: window.program.chosen_row() == "Bare", "the next click has come")
    assert window.boxes() == []
    assert window.program.close() == 0
    assert setups.setup.lines() == []


# Copy.

@both_languages
@pytest.mark.parametrize("column, text", [
    (NAME_COLUMN, name_of(WHOLE)), (VERSION, "1.5"), (HELP, WHOLE.values["HelpLink"]),
    (COMMENT, "c" * 259), (0, "Whole")])
def test_copy_puts_the_clicked_cell_on_the_clipboard(window, column, text):
    window.desk.driver("clipboard-set", "before")
    window.click_cell(name_of(WHOLE), column, button=3)
    window.choose_in_popup(COPY)
    eventually(lambda: window.desk.driver("clipboard-text") != "before", "it is copied")
    assert window.desk.driver("clipboard-text") == text
    assert window.program.close() == 0
    # It outlasts the program.
    assert window.desk.driver("clipboard-text") == text


def test_an_empty_cell_leaves_the_clipboard_as_it_is(window):
    window.desk.driver("clipboard-set", "before")
    window.click_cell("Bare", VERSION, button=3)
    window.wait_for_popup()
    window.leave_popup()
    # Returns when it has been done.
    window.program.ask("command", COPY)
    assert window.desk.driver("clipboard-text") == "before"
    window.click_cell("Bare", NAME_COLUMN, button=3)
    window.choose_in_popup(COPY)
    eventually(lambda: window.desk.driver("clipboard-text") == "Bare", "the next one is copied")
    assert window.program.close() == 0


# Addresses.

@pytest.mark.parametrize("key, column, address", [
    (WHOLE, HELP, "http://help.whole.example/?a=1&b=%20"),
    (WHOLE, CONTACT, "mailto:desk@whole.example"),
    (WHOLE, UPDATE, "FTP://ftp.whole.example/new"),
    (OTHERS, ABOUT, "MailTo:me@others.example"),
])
def test_an_address_is_launched(window, browser, key, column, address):
    window.click_cell(name_of(key), column, button=3)
    window.choose_in_popup(LAUNCH_URL)
    browser.wait_for_starts(f'"{address}"')
    assert window.boxes() == []
    assert window.program.close() == 0


def test_a_text_with_at_and_dot_anywhere_is_an_address_of_mail(window):
    window.click_cell("Others", COMMENT, button=3)
    assert LAUNCH_URL not in gray_in(window.wait_for_popup())
    window.leave_popup()


@pytest.mark.parametrize("key, column", [
    (WHOLE, ABOUT), (OTHERS, CONTACT), (OTHERS, HELP), (OTHERS, UPDATE), (WHOLE, FOLDER)],
    ids=["bare host", "no dot", "https", "not at the beginning", "folder"])
def test_what_is_no_address_can_not_be_launched(window, browser, key, column):
    window.click_cell(name_of(key), column, button=3)
    assert LAUNCH_URL in gray_in(window.wait_for_popup())
    window.leave_popup()
    window.program.ask("command", LAUNCH_URL)
    assert window.boxes() == []
    check_launched_alone(window, browser)
    assert window.program.close() == 0


def test_a_right_click_on_empty_space_opens_no_menu_and_forgets_the_address(window, browser):
    window.click_cell(name_of(WHOLE), CONTACT, button=3)
    window.wait_for_popup()
    window.leave_popup()
    window.program.ask("command", LAUNCH_URL)
    browser.wait_for_starts('"mailto:desk@whole.example"')
    window.program.activate()
    left, _, right, bottom = window.program.control(LIST)["screen"]
    window.desk.screen.click((left + right) // 2, bottom - 60, button=3)
    check_free(window)
    window.program.ask("command", LAUNCH_URL)
    check_launched_alone(window, browser)
    assert window.program.close() == 0


# The folder.

@both_languages
def test_the_installation_folder_opens(window, setups):
    window.click_cell(name_of(WHOLE), NAME_COLUMN, button=3)
    window.choose_in_popup(OPEN_FOLDER)
    setups.installer(EXPLORER).wait_for_starts('"C:\\Whole world"')
    window.program.ask("settle")
    assert window.boxes() == []
    assert window.program.close() == 0


def test_an_installation_folder_that_is_gone_is_passed_over(window, setups):
    window.choose("Others")
    window.program.ask("command", OPEN_FOLDER)
    window.choose(name_of(WHOLE))
    window.program.ask("command", OPEN_FOLDER)
    setups.installer(EXPLORER).wait_for_starts('"C:\\Whole world"')
    assert window.boxes() == []
    assert window.program.close() == 0


# Actions, by mouse from the menu.

def test_modify_from_the_menu(window, setups):
    window.click_cell(name_of(WHOLE), NAME_COLUMN, button=3)
    window.choose_in_popup(MODIFY)
    setups.setup.wait_for_starts("/mod")
    assert window.program.close() == 0


def test_uninstall_from_the_menu(window, setups):
    window.click_cell(name_of(WHOLE), NAME_COLUMN, button=3)
    window.choose_in_popup(UNINSTALL)
    window.box("Uninstallation").answer(OK)
    setups.setup.wait_for_starts("/un")
    assert window.program.close() == 0


@both_languages
def test_a_package_without_any_command_is_told_of_on_a_double_click(window, setups):
    window.click_cell("Bare", NAME_COLUMN, times=2)
    box = window.box(TITLE)
    assert box.text == {
        "english": "There is no command to launch the installer of this entry.",
        "german": "Es ist kein Kommando zum Aufruf des Installers f\u00fcr diesen Eintrag "
                  "registriert."}[window.language]
    assert box.buttons == [OK]
    box.answer(OK)
    assert window.program.close() == 0
