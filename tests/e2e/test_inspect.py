"""The dialogs that look into a package: what they show and how they are used, in both languages, at
each size, and while the program goes on beneath them."""

import contextlib

import pytest

from conftest import BINARIES, ENGLISH, GERMAN, SCREENSHOTS, desk_on
from support import databases, dates, packages
from support.held import HeldDesk
from support.inspection import (FEATURES, INSTALLED, MISSING, MSI_CONTENT, PATCH_LIST, PATCHES,
                                ROWS, TABLES, TITLES, TREE, Inspection, inspect)
from support.packages import MEADOW, numbered_code, seed_patch
from support.program import LIST, REFRESH, STATUS, eventually
from support.registry import UNINSTALL
from support.screen import Screen
from support.sources import HKLM32, delete, put
from support.watching import shows_by_itself
from support.window import OK, Window

LOCALES = {"english": ENGLISH, "german": GERMAN}
LARGE, SMALL = (1760, 1240), (1024, 768)
EXCEPTION = "Exception"
WM_APP = 0x8000

ORCHARD, GARDEN = "Orchard & Sons 100 %", "Garden"
NUMBERS = next(fixture for fixture in databases.MADE if fixture.file == "numbers.msi")
DOZEN = next(fixture for fixture in databases.MADE if fixture.file == "rows.msi")
BROKEN = {
    "Gone": "C:\\Broken\\gone.msi", "Folder": "C:\\Broken", "Text": "C:\\Broken\\text.msi",
    "Truncated": "C:\\Broken\\truncated.msi", "Empty": "C:\\Broken\\empty.msi",
    "No such drive": "Q:\\nowhere\\gone.msi",
}
DATE = "20010203"
ORCHARD_CODE, GARDEN_CODE, PASSING_CODE = (numbered_code(number) for number in (100, 101, 200))
NEWCOMER = f"Software\\{UNINSTALL}\\Newcomer"

# Keys in another order than their dates.
PATCHES_OF_ORCHARD = {
    "C" * 32: {"DisplayName": "Third key", "Installed": "20110301", "State": 1,
               "Uninstallable": 1},
    "A" * 32: {"DisplayName": "First key", "Installed": "20120505", "State": 2},
    "B" * 32: {"DisplayName": "Second key", "Installed": "20100101", "State": 3,
               "Uninstallable": 0},
    "E" * 32: {"DisplayName": "Same date, later key", "Installed": "20110301", "State": 0},
    "D" * 32: {"DisplayName": "No date", "State": 8, "Uninstallable": 1},
    "F" * 32: {"DisplayName": "K\u00e4fer patch", "Installed": "20130102", "State": 4},
}
STATES = {
    "english": {0: "broken", 1: "applied", 2: "superseded", 4: "obsoleted", 8: "registered"},
    "german": {0: "defekt", 1: "installiert", 2: "\u00fcberschrieben", 4: "veraltet",
               8: "registriert"},
}
PATCH_PACKAGE = "C:\\Windows\\Installer\\orchard.msp"
PATCH_HEADINGS = {
    "english": [("Patch ID", 50), ("Patch name", 200), ("Path", 200), ("Installation date", 114),
                ("State", 100), ("removeable", 50)],
    "german": [("Patch-ID", 50), ("Patch-Name", 200), ("Pfad", 200), ("Installationsdatum", 114),
               ("Status", 100), ("entfernbar", 50)],
}
COUNT = 3 + len(BROKEN)


def seed(desk):
    """A product that is really installed, and some that are only noted."""
    packages.install(desk, MEADOW, "ADDLOCAL=Complete,Maps")
    packages.register(desk, ORCHARD_CODE, ORCHARD, DATE, NUMBERS.path)
    packages.register(desk, GARDEN_CODE, GARDEN, DATE, DOZEN.path)
    for fixture in (NUMBERS, DOZEN):
        fixture.write(desk)
    whole = desk.prefix.host_path("C:\\meadow.msi").read_bytes()
    desk.prefix.make_file(BROKEN["Text"], b"This is no database.\r\n" * 100)
    desk.prefix.make_file(BROKEN["Truncated"], whole[:len(whole) // 2])
    desk.prefix.make_file(BROKEN["Empty"])
    for number, (name, path) in enumerate(BROKEN.items()):
        packages.register(desk, numbered_code(number), name, DATE, path)
    for key, values in PATCHES_OF_ORCHARD.items():
        seed_patch(desk, ORCHARD_CODE, key, values, PATCH_PACKAGE if key[0] == "C" else None)


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk() as made:
        seed(made)
        yield made


@pytest.fixture(params=["english"])
def window(request, desk):
    made = Window(desk, request.param)
    made.wait_filled(COUNT)
    yield made
    desk.end_programs()
    delete(desk, HKLM32, NEWCOMER)
    packages.unregister(desk, PASSING_CODE)


def refresh(window, count):
    window.program.ask("set-text", STATUS, "")
    window.program.ask("command", REFRESH)
    window.wait_filled(count)


def wait_for_newcomer(window, count):
    """Until it knows so many packages by itself. One that was read before it had its name stays
    hidden until Refresh."""
    shows_by_itself(window.desk, "local",
                    lambda: window.program.status() in (window.status_of(count),
                                                        window.status_of(count - 1, count)),
                    lambda: f"{count} packages, not {window.program.status()}")


def wait_for_count(window, count):
    """Until it shows so many packages by itself."""
    shows_by_itself(window.desk, "local",
                    lambda: window.program.status() == window.status_of(count),
                    lambda: f"{count} packages, not {window.program.status()}")


both_languages = pytest.mark.parametrize("window", ["english", "german"], indirect=True)
each_dialog = pytest.mark.parametrize("command, name, subject, control", [
    (MSI_CONTENT, GARDEN, DOZEN.path, ROWS), (FEATURES, MEADOW.name, None, TREE),
    (PATCHES, ORCHARD, None, PATCH_LIST)], ids=["content", "features", "patches"])


# What they show.

@both_languages
def test_the_tables_of_a_package_are_browsed_by_mouse(window):
    dialog = inspect(window, MSI_CONTENT, GARDEN, DOZEN.path)
    dozen = databases.counted(12)
    assert dialog.tables() == sorted(dialog.tables(), key=str.lower)
    dialog.click_table("Dozen")
    dialog.wait_for_columns(*dozen.names)
    assert dialog.headings(ROWS) == [("Name", 100, "left"), ("Number", 100, "right"),
                                     ("Half", 100, "right"), ("Remark", 100, "left")]
    assert [row[1] for row in dialog.cells(ROWS)] == [
        "1", "10", "11", "12", "2", "3", "4", "5", "6", "7", "8", "9"]
    dialog.click_table("_Tables", shift=8)
    dialog.wait_for_columns("Name")
    dialog.click_table("None", shift=-8)
    dialog.wait_for_columns(*dozen.names)
    assert dialog.cells(ROWS) == []
    dialog.close()
    assert window.program.close() == 0


@both_languages
def test_features_of_an_installed_product_stand_by_name_with_their_marks(window):
    dialog = inspect(window, FEATURES, MEADOW.name)
    assert [(item["text"], item["depth"], item["image"], item["selected_image"])
            for item in dialog.ask("tree", TREE)] == [
        (name, 0, mark, mark) for name, mark in (
            ("Complete", INSTALLED), ("Contours", MISSING), ("Maps", INSTALLED),
            ("Tables", MISSING))]
    dialog.close()
    assert window.program.close() == 0


def test_a_product_without_features_shows_an_empty_tree(window):
    dialog = inspect(window, FEATURES, ORCHARD)
    assert dialog.ask("tree", TREE) == []
    dialog.close()
    assert window.program.close() == 0


def patch_row(key, language, picture):
    values = PATCHES_OF_ORCHARD[key]
    date, state = values.get("Installed"), values["State"]
    return [key, values["DisplayName"], PATCH_PACKAGE if key[0] == "C" else "",
            "" if date is None else dates.shown(dates.parse(date), picture),
            STATES[language].get(state, str(state)),
            "yes" if values.get("Uninstallable") else "no"]


def patch_rows(desk, language):
    """Each goes up from the end past the rows whose shown date is a later one. Where shown dates
    can't be read back, as 5.5.2012, the rows stay in the order of their keys."""
    picture = desk.driver("short-date")
    rows = []
    for key in sorted(PATCHES_OF_ORCHARD):
        row = patch_row(key, language, picture)
        place = 0 if row[3] == "" else len(rows)
        own = PATCHES_OF_ORCHARD[key].get("Installed", "")
        while place > 0 and dates.parse(own) < dates.parse(rows[place - 1][3][:15]):
            place -= 1
        rows.insert(place, row)
    return rows


def test_dates_that_can_be_read_back_put_patches_in_ascending_order(desk):
    assert [row[0][0] for row in patch_rows(desk, "english")] == list("DBCEAF")


@both_languages
def test_patches_are_listed_by_date_with_what_is_known_of_them(window, desk):
    dialog = inspect(window, PATCHES, ORCHARD)
    assert dialog.headings(PATCH_LIST) == [
        (title, width, "left") for title, width in PATCH_HEADINGS[window.language]]
    assert dialog.cells(PATCH_LIST) == patch_rows(desk, window.language)
    dialog.close()
    assert window.program.close() == 0


def test_a_product_whose_patches_have_gone_shows_six_columns_and_no_rows(window, desk):
    key = "F" * 32
    seed_patch(desk, GARDEN_CODE, key, {"DisplayName": "Passing", "State": 1})
    refresh(window, COUNT)
    packages.delete(desk, HKLM32, f"{packages.INSTALLER}\\UserData\\S-1-5-18\\Products"
                    f"\\{packages.packed(GARDEN_CODE)}")
    dialog = inspect(window, PATCHES, GARDEN)
    assert len(dialog.headings(PATCH_LIST)) == 6
    assert dialog.cells(PATCH_LIST) == []
    dialog.close()
    assert window.program.close() == 0


@pytest.mark.parametrize("command, name", [
    (PATCHES, GARDEN), (PATCHES, MEADOW.name)], ids=["noted", "installed"])
def test_what_a_package_does_not_have_opens_nothing(window, command, name):
    window.choose(name)
    window.program.ask("command", command)
    assert window.boxes() == [] and window.program.window()["enabled"]
    assert window.program.close() == 0


# By keyboard alone.

@pytest.mark.parametrize("key", ["Escape", "Return"])
@pytest.mark.parametrize("window, letter", [("english", "s"), ("german", "m")],
                         indirect=["window"])
def test_a_package_is_browsed_by_keys_alone(window, letter, key):
    window.choose(GARDEN)
    go_to_the_list(window)
    window.program.press_key("Menu")
    press_in_popup(window, letter, MSI_CONTENT)
    dialog = Inspection(window, MSI_CONTENT, DOZEN.path)
    dialog.activate()
    eventually(lambda: dialog.ask("focus") == TABLES, "the list of tables has the focus")
    names = dialog.tables()
    assert dialog.chosen_table() == names[0]
    for name in names[1:4]:
        dialog.press("Down")
        eventually(lambda name=name: dialog.chosen_table() == name, f"{name} is chosen")
        wanted = columns_of(window.desk, DOZEN, name)
        dialog.wait_for_columns(*wanted)
    dialog.press("Tab")
    eventually(lambda: dialog.ask("focus") == ROWS, "the rows have the focus")
    dialog.press("Down")
    eventually(lambda: dialog.ask("list-state", ROWS)["focused"] >= 0, "a row has the focus")
    dialog.press_key(key)
    window.wait_usable()
    assert window.program.close() == 0


def columns_of(desk, fixture, table):
    return databases.read_table(desk.prefix.host_path(fixture.path), table).names


def go_to_the_list(window):
    window.program.activate()

    def is_there():
        if window.program.ask("focus") == LIST:
            return True
        window.program.press_key("Tab")
        return False

    eventually(is_there, "the list has the focus")


def press_in_popup(window, letter, command):
    """By the item's letter."""
    (item,) = [item for item in window.wait_for_popup() if item["id"] == command]
    assert f"&{letter}" in item["text"].lower() and not item["gray"]
    window.desk.screen.press_key(letter)
    eventually(lambda: window.popup() is None, "the popup is closed")


@each_dialog
@pytest.mark.parametrize("key", ["Escape", "Return"])
def test_a_key_closes_each_dialog(window, command, name, subject, control, key):
    dialog = inspect(window, command, name, subject)
    if command == MSI_CONTENT:
        control = TABLES
    eventually(lambda: dialog.ask("focus") == control, "the first control has the focus")
    dialog.press_key(key)
    window.wait_usable()
    assert window.boxes() == []
    assert window.program.close() == 0


# What can't be read.

@pytest.mark.parametrize("name", BROKEN)
def test_a_package_that_can_not_be_read_is_reported_once_and_shows_nothing(window, name):
    window.choose(name)
    window.post(MSI_CONTENT)
    report = window.box(EXCEPTION)
    assert BROKEN[name] in report.text
    report.answer(OK)
    dialog = Inspection(window, MSI_CONTENT, BROKEN[name])
    dialog.activate()
    assert [box["title"] for box in window.boxes()] == [dialog.title]
    assert dialog.tables() == [] and dialog.headings(ROWS) == [] and dialog.cells(ROWS) == []
    if name == "Text":
        dialog.picture(SCREENSHOTS / "inspect-nothing.png")
    dialog.press_key("Escape")
    window.wait_usable()
    assert window.program.close() == 0


# While the program goes on.

@each_dialog
def test_the_end_of_the_program_closes_the_dialog_first(window, command, name, subject, control):
    inspect(window, command, name, subject)
    assert window.program.close() == 0


def test_the_end_of_the_program_closes_the_report_of_a_package_too(window):
    window.choose("Text")
    window.post(MSI_CONTENT)
    window.box(EXCEPTION)
    assert window.program.close() == 0


@each_dialog
def test_a_refresh_goes_on_beneath_the_dialog(window, desk, command, name, subject, control):
    dialog = inspect(window, command, name, subject)
    before = dialog.ask("tree", TREE) if command == FEATURES else dialog.cells(control)
    put(desk, HKLM32, NEWCOMER, {"DisplayName": "Newcomer", "InstallDate": DATE})
    wait_for_newcomer(window, COUNT + 1)
    refresh(window, COUNT + 1)
    delete(desk, HKLM32, NEWCOMER)
    wait_for_count(window, COUNT)
    after = dialog.ask("tree", TREE) if command == FEATURES else dialog.cells(control)
    assert after == before
    assert not window.program.window()["enabled"]
    assert [box["title"] for box in window.boxes()] == [dialog.title]
    dialog.close()
    window.wait_usable()
    assert window.program.close() == 0


def test_a_dialog_outlives_the_row_of_its_package(window, desk):
    code = PASSING_CODE
    packages.register(desk, code, "Passing", DATE, NUMBERS.path)
    wait_for_newcomer(window, COUNT + 1)
    # What else the installer tells of it comes with the next pass.
    refresh(window, COUNT + 1)
    dialog = inspect(window, MSI_CONTENT, "Passing", NUMBERS.path)
    packages.unregister(desk, code)
    wait_for_count(window, COUNT)
    dialog.show_table("Numbers")
    assert dialog.cells(ROWS) == databases.NUMBERS.shown_rows()
    dialog.close()
    assert window.program.close() == 0


@each_dialog
def test_a_dialog_asked_for_during_a_refresh_opens_after_it(desk, command, name, subject, control):
    held = HeldDesk(desk, BINARIES / "zolvane-held.exe")
    try:
        window = Window(desk, program=held.start("hold@product2"))
        window.wait_filled(COUNT)
        window.choose(name)
        window.program.ask("post", WM_APP, 0, 0)
        held.reached()
        window.post(command)
        window.program.ask("settle")
        assert window.boxes() == []
        held.go()
        dialog = Inspection(window, command, name if subject is None else subject)
        dialog.close()
        window.wait_usable()
        assert window.boxes() == []
        assert window.program.close() == 0
    finally:
        held.end_programs()


# Sizes.

GROWTH = {MSI_CONTENT: (400, 300), FEATURES: (0, 200), PATCHES: (400, 300)}


@both_languages
@each_dialog
def test_a_dialog_is_no_smaller_than_its_template_and_fills_what_it_is_given(
        window, command, name, subject, control):
    dialog = inspect(window, command, name, subject)
    if command == MSI_CONTENT:
        dialog.show_table("Dozen")
    kind = {MSI_CONTENT: "content", FEATURES: "features", PATCHES: "patches"}[command]
    sizes = {"default": dialog.frame_size()}
    margins = {"default": check_laid_out(dialog, command, control)}
    dialog.picture(SCREENSHOTS / f"inspect-{kind}-{window.language}-default.png")
    dialog.resize(10, 10)
    sizes["minimum"] = dialog.frame_size()
    margins["minimum"] = check_laid_out(dialog, command, control)
    dialog.picture(SCREENSHOTS / f"inspect-{kind}-{window.language}-minimum.png")
    grown = tuple(big - small for big, small in zip(sizes["default"], sizes["minimum"]))
    assert grown == GROWTH[command]
    assert dialog.ask("min-size") == list(sizes["minimum"])
    assert margins["default"] == margins["minimum"]
    dialog.maximise()
    # Its controls follow once it is maximised.
    eventually(lambda: check_laid_out(dialog, command, control) == margins["default"],
               lambda: f"margins {margins}, not {check_laid_out(dialog, command, control)}")
    dialog.picture(SCREENSHOTS / f"inspect-{kind}-{window.language}-maximum.png")
    dialog.close()
    assert window.program.close() == 0


def check_laid_out(dialog, command, control):
    """What stays the same at each size: the margins of the control that takes what the dialog has,
    and the place and width of the list beside it."""
    left, top, right, bottom = dialog.place(control)
    _, _, width, height = dialog.ask("window")["client"]
    margins = [left, top, width - right, height - bottom]
    if command == MSI_CONTENT:
        box_left, box_top, box_right, _ = dialog.place(TABLES)
        margins += [box_left, box_top, box_right]
    assert all(margin >= 0 for margin in margins)
    return margins


@each_dialog
def test_a_dialog_opens_over_the_middle_of_the_window(window, command, name, subject, control):
    window.program.activate()
    left, top, right, bottom = window.program.window()["frame"]
    window.program.ask("move", left + 60, top - 40, right - left, bottom - top)
    dialog = inspect(window, command, name, subject)
    dialog.activate()
    for low, high in ((0, 2), (1, 3)):
        over, under = dialog.frame(), window.program.window()["frame"]
        assert abs(over[low] + over[high] - under[low] - under[high]) <= 2
    dialog.close()
    assert window.program.close() == 0


@pytest.fixture(scope="module")
def large_screen():
    with contextlib.closing(Screen(LARGE)) as made:
        yield made


@pytest.mark.parametrize("language", ["english", "german"])
def test_dialogs_grow_with_the_resolution(large_screen, template, language):
    with desk_on(large_screen, template, lc_all=LOCALES[language], dpi=144) as desk:
        seed(desk)
        window = Window(desk, language)
        window.wait_filled(COUNT)
        for command, name, subject, control in (
                (MSI_CONTENT, GARDEN, DOZEN.path, ROWS), (FEATURES, MEADOW.name, None, TREE),
                (PATCHES, ORCHARD, None, PATCH_LIST)):
            dialog = inspect(window, command, name, subject)
            kind = {MSI_CONTENT: "content", FEATURES: "features", PATCHES: "patches"}[command]
            if command == MSI_CONTENT:
                dialog.show_table("Dozen")
                assert [width for _, width, _ in dialog.headings(ROWS)] == [150] * 4
            if command == PATCHES:
                assert [width for _, width, _ in dialog.headings(PATCH_LIST)] == [
                    width * 3 // 2 for _, width in PATCH_HEADINGS[language]]
                assert dialog.cells(PATCH_LIST) == patch_rows(desk, language)
            dialog.picture(SCREENSHOTS / f"inspect-{kind}-{language}-144-dpi.png")
            size = dialog.frame_size()
            dialog.resize(10, 10)
            assert tuple(big - small for big, small in zip(size, dialog.frame_size())) == tuple(
                length * 3 // 2 for length in GROWTH[command])
            dialog.close()
        assert window.program.close() == 0


@pytest.fixture(scope="module")
def small_screen():
    with contextlib.closing(Screen(SMALL)) as made:
        yield made


def test_dialogs_open_no_larger_than_the_screen(small_screen, template):
    with desk_on(small_screen, template, dpi=144) as desk:
        seed(desk)
        window = Window(desk)
        window.wait_filled(COUNT)
        for command, name, subject, control in (
                (MSI_CONTENT, GARDEN, DOZEN.path, ROWS), (FEATURES, MEADOW.name, None, TREE),
                (PATCHES, ORCHARD, None, PATCH_LIST)):
            dialog = inspect(window, command, name, subject)
            left, top, right, bottom = dialog.frame()
            assert left >= 0 and top >= 0 and right <= SMALL[0] and bottom <= SMALL[1]
            check_laid_out(dialog, command, control)
            dialog.close()
        assert window.program.close() == 0
