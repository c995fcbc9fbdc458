"""The dialogs that look into a package against hostile packages, and against users and programs
that don't wait: nothing of this may hang the program, end it or hold a file."""

import subprocess

import pytest

from support import databases, packages
from support.databases import Fixture, Table, database
from support.inspection import (FEATURES, MSI_CONTENT, PATCHES, ROWS, TABLES, Inspection,
                                inspect)
from support.packages import numbered_code, seed_patch
from support.program import REFRESH, DriverError, eventually
from support.registry import UNINSTALL
from support.sources import HKLM32, delete, put
from support.window import CANCEL, OK, WM_CLOSE, WM_COMMAND, Window

WM_QUIT, WM_KEYDOWN, VK_DOWN = 0x12, 0x100, 0x28
EXCEPTION = "Exception"
DATE = "20010203"
HUGE = 500 << 20

# What stands where a package's file should be named.
NO_FILES = {
    "Serial port": "COM1", "Nothing": "NUL", "Drive": "\\\\.\\C:", "Drive alone": "C:",
    "Host alone": "\\\\10.255.255.1", "Silent host": "\\\\10.255.255.1\\share\\gone.msi",
    "Address": "http://127.0.0.1:9/gone.msi", "Formats": "C:\\%s%n%99999d\\gone.msi",
    "Pattern": "C:\\Packages\\*.msi", "Quoted": '"C:\\Packages\\numbers.msi"',
    "Long": "C:\\" + "abcdefghi\\" * 90 + "gone.msi",
}
NUMBERS = next(fixture for fixture in databases.MADE if fixture.file == "numbers.msi")
ODD_FILES = {
    "Signs": "C:\\Packages\\K\u00e4fer \u20ac & %s%n [1].msi",
    "Long name": "C:\\Packages\\" + "n" * 230 + ".msi",
    "Huge": "C:\\Packages\\huge.msi",
}
PASSING = "C:\\Packages\\passing.msi"
ODD_NAMES = ["It's", "[br]", "a,b", 'a"b', "a b", "%s%n%99999d", "a;b", "x=1", "(x)", "&amp",
             "Tab\tle", "1", "-", "*", "?", "select", "\u00c4rger", "A\\B", "a.b", "#"]
NAMES = Fixture("names.msi", database({}, queries=[
    query for name in ODD_NAMES for query in (
        f"CREATE TABLE `{name}` (`Key` SHORT NOT NULL, `{name}` CHAR(0) PRIMARY KEY `Key`)",
        f"INSERT INTO `{name}` (`Key`, `{name}`) VALUES (1, '%s%n & %99999d')")]))
WIDE = Fixture("wide.msi", database({"Wide": Table(
    [f"Column{number:03d}" for number in range(300)], ["i2"] + ["S0"] * 299,
    [[str(key)] + [f"value {key}"] * 299 for key in range(3)])}))
CROWD = 200
MANY = Fixture("many.msi", database({}, queries=[
    query for number in range(CROWD) for query in (
        f"CREATE TABLE `Table{number:03d}` (`Key` SHORT NOT NULL PRIMARY KEY `Key`)",
        f"INSERT INTO `Table{number:03d}` (`Key`) VALUES ({number})")]))
FIXTURES = {"Numbers": NUMBERS, "Names": NAMES, "Wide": WIDE, "Many": MANY}
PATHS = {**NO_FILES, **ODD_FILES, "Passing": PASSING,
         **{name: made.path for name, made in FIXTURES.items()}}
COUNT = len(PATHS)


def seed(desk):
    for number, (name, path) in enumerate(PATHS.items()):
        packages.register(desk, numbered_code(number), name, DATE, path)
    for fixture in FIXTURES.values():
        fixture.write(desk)
    whole = desk.prefix.host_path(NUMBERS.path).read_bytes()
    for path in (*ODD_FILES.values(), PASSING):
        desk.prefix.make_file(path, whole)
    with open(desk.prefix.host_path(ODD_FILES["Huge"]), "r+b") as file:
        file.truncate(HUGE)
    code = numbered_code(list(PATHS).index("Numbers"))
    seed_patch(desk, code, "A" * 32, {"DisplayName": "First", "State": 1})


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk() as made:
        seed(made)
        yield made


@pytest.fixture
def window(desk):
    made = Window(desk)
    made.wait_filled(COUNT)
    yield made
    desk.end_programs()


each_dialog = pytest.mark.parametrize("command", [MSI_CONTENT, FEATURES, PATCHES],
                                      ids=["content", "features", "patches"])


def open_dialog(window, command):
    window.choose("Numbers")
    window.post(command)
    return eventually(window.boxes, "the dialog is open")[0]["handle"]


# Packages.

def test_what_is_no_file_is_reported_and_never_waited_for(window):
    for name, path in NO_FILES.items():
        window.choose(name)
        window.post(MSI_CONTENT)
        report = window.box(EXCEPTION)
        assert path in report.text
        report.answer(OK)
        (box,) = eventually(window.boxes, f"the dialog about {path}")
        dialog = Inspection(window, MSI_CONTENT, box["title"].partition(": ")[2])
        assert path.startswith(dialog.title.partition(": ")[2])
        assert dialog.tables() == []
        dialog.close()
        window.wait_usable()
    assert window.program.close() == 0


def test_a_file_with_an_odd_name_or_of_any_size_shows_its_tables(window):
    for name, path in ODD_FILES.items():
        dialog = inspect(window, MSI_CONTENT, name, path[:255 - len("Zolvane - MSI Content: ")])
        dialog.show_table("Numbers")
        assert dialog.cells(ROWS) == databases.NUMBERS.shown_rows()
        dialog.close()
        window.wait_usable()
    assert window.program.close() == 0


def test_names_and_texts_with_odd_signs_are_shown_as_they_are(window):
    dialog = inspect(window, MSI_CONTENT, "Names", NAMES.path)
    assert set(ODD_NAMES) <= set(dialog.tables())
    for name in ODD_NAMES:
        dialog.show_table(name)
        assert [column[0] for column in dialog.headings(ROWS)] == ["Key", name]
        assert dialog.cells(ROWS) == [["1", "%s%n & %99999d"]]
    dialog.close()
    assert window.program.close() == 0


def test_three_hundred_columns_stand_side_by_side(window):
    dialog = inspect(window, MSI_CONTENT, "Wide", WIDE.path)
    dialog.show_table("Wide")
    assert [column[0] for column in dialog.headings(ROWS)] == [
        f"Column{number:03d}" for number in range(300)]
    # What builds the file loses values of tables with more than 31 columns.
    written = databases.read_table(window.desk.prefix.host_path(WIDE.path), "Wide")
    assert any("value 0" in row for row in written.rows)
    assert dialog.cells(ROWS) == written.shown_rows()
    dialog.close()
    assert window.program.close() == 0


def test_hundreds_of_tables_are_gone_through_with_a_key_held_down(window):
    dialog = inspect(window, MSI_CONTENT, "Many", MANY.path)
    tables = dialog.ask("control", TABLES)["handle"]
    for _ in range(CROWD + 20):
        window.desk.driver("post", tables, WM_KEYDOWN, VK_DOWN, 0)
    last = dialog.tables()[-1]
    eventually(lambda: dialog.chosen_table() == last, "the last table is chosen")
    assert last == f"Table{CROWD - 1:03d}"
    eventually(lambda: dialog.cells(ROWS) == [[str(CROWD - 1)]], "the last table is shown")
    dialog.close()
    assert window.program.close() == 0


def test_the_file_of_a_package_is_free_while_its_tables_are_shown(window, desk):
    dialog = inspect(window, MSI_CONTENT, "Passing", PASSING)
    # As the system lets nobody do while another has it open.
    subprocess.run(["wine", "cmd", "/c", "ren", PASSING, "moved.msi"], env=desk.prefix.env,
                   check=True, timeout=60, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    moved = desk.prefix.host_path("C:\\Packages\\moved.msi")
    assert moved is not None and desk.prefix.host_path(PASSING) is None
    dialog.show_table("Numbers")
    assert dialog.cells(ROWS) == databases.NUMBERS.shown_rows()
    dialog.close()
    moved.rename(moved.with_name("passing.msi"))
    assert window.program.close() == 0


# Impatience.

@each_dialog
def test_closes_and_ends_in_quick_turns_end_the_program_once(desk, command):
    # C and Q: the main window is closed, quits; d and E: the dialog is closed, left by Escape;
    # R: a refresh.
    for turns in ("CC", "QC", "CQ", "dQ", "dCQ", "EC", "CdQdC", "RC"):
        window = Window(desk)
        window.wait_filled(COUNT)
        dialog = open_dialog(window, command)
        main = window.program.handle
        messages = {"C": (main, WM_CLOSE, 0), "Q": (main, WM_QUIT, 0),
                    "R": (main, WM_COMMAND, REFRESH),
                    "d": (dialog, WM_CLOSE, 0), "E": (dialog, WM_COMMAND, CANCEL)}
        for turn in turns:
            if not post_if_there(desk, *messages[turn]):
                break
        assert window.program.exit_code() == 0, turns


def post_if_there(desk, handle, message, wparam):
    """False once the window has gone."""
    try:
        desk.driver("post", handle, message, wparam, 0)
    except DriverError:
        return False
    return True


def test_closes_while_a_broken_package_is_reported_end_the_program_once(desk):
    # O: the command once more, beneath the report; K: the report is closed.
    for turns in ("C", "QC", "CC", "RC", "OOC", "KC"):
        window = Window(desk)
        window.wait_filled(COUNT)
        window.choose("Nothing")
        window.post(MSI_CONTENT)
        report = window.box(EXCEPTION).handle
        main = window.program.handle
        messages = {"C": (main, WM_CLOSE, 0), "Q": (main, WM_QUIT, 0),
                    "R": (main, WM_COMMAND, REFRESH),
                    "O": (main, WM_COMMAND, MSI_CONTENT), "K": (report, WM_CLOSE, 0)}
        for turn in turns:
            if not post_if_there(desk, *messages[turn]):
                break
        assert window.program.exit_code() == 0, turns


def test_commands_by_the_dozen_open_what_can_be_closed_again(window, desk):
    window.choose("Numbers")
    for command in (MSI_CONTENT, FEATURES, PATCHES) * 4:
        window.post(command)
    eventually(window.boxes, "a dialog is open")

    def close_all():
        for dialog in window.dialogs():
            post_if_there(desk, dialog["handle"], WM_CLOSE, 0)
        return not window.dialogs() and window.program.window()["enabled"]

    eventually(close_all, "all are closed")
    dialog = inspect(window, MSI_CONTENT, "Numbers", NUMBERS.path)
    dialog.close()
    window.wait_usable()
    assert window.program.close() == 0


@each_dialog
def test_a_storm_of_changes_and_sizes_leaves_the_dialog_as_it_is(window, desk, command):
    dialog = open_dialog(window, command)
    for turn in range(100):
        key = f"Software\\{UNINSTALL}\\Storm{turn % 5}"
        put(desk, HKLM32, key, {"DisplayName": f"Storm {turn}", "InstallDate": DATE})
        desk.driver("move", dialog, turn % 50, turn % 40, 1 + turn * 137 % 1500,
                    1 + turn * 253 % 1200)
        if turn % 20 == 0:
            window.post(REFRESH)
    assert [box["handle"] for box in window.boxes()] == [dialog]
    assert not window.program.window()["enabled"]
    for number in range(5):
        delete(desk, HKLM32, f"Software\\{UNINSTALL}\\Storm{number}")
    desk.driver("post", dialog, WM_CLOSE, 0, 0)
    window.wait_usable()
    window.post(REFRESH)
    window.wait_filled(COUNT)
    assert window.program.close() == 0


@each_dialog
def test_a_dialog_leaves_nothing_in_memory(window, desk, command):
    def open_and_close(times):
        for _ in range(times):
            desk.driver("post", open_dialog(window, command), WM_CLOSE, 0, 0)
            eventually(lambda: not window.boxes(), "the dialog is closed")
            window.wait_usable()
        return desk.driver("memory", window.program.pid)

    before = open_and_close(5)
    after = open_and_close(20)
    # A dialog's icons, marks and rows take more than this each time.
    assert after - before < 20 * 8192
    assert window.program.close() == 0
