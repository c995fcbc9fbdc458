"""The command that exports the list: its dialog, its files, its failures."""

import contextlib
import os
import subprocess

import olefile
import pytest

from conftest import BINARIES, SCREENSHOTS
from support import handlers
from support.exports import (DIALOG_TITLES, FILE_TYPE, NO, READERS, YES, SaveDialog,
                             csv_bytes, read_by_xlrd, sheet_of)
from support.installers import Installer
from support.program import ALL_PACKAGES, SEARCH, eventually, wait_for_focus
from support.registry import Key
from support.rules import read_all, world_of
from support.samples import FILES, KEYS, USAGES
from support.seeding import seed, set_value
from support.window import WM_CLOSE, Window

VIEWER = "C:\\Setups\\viewer.exe"
EXCEPTION = "Exception"
OLD = b"what was there before"

ODD = [
    Key("user", "Semicolons", {"DisplayName": "Semi;colon", "Comments": "a;b;\"c\"",
                               "InstallDate": "20260101"}),
    # With a line end in it, which the text of a .reg file can't hold.
    Key("user", "Quotes", {"DisplayName": "A \"quoted\" name", "Comments": "two\r\nlines",
                           "InstallDate": "20260101"}),
    Key("user", "Signs", {"DisplayName": "\u20ac\u2122 \u2013 \u00e4\u00f6\u00fc",
                          "InstallDate": "20260101"}),
]
ALL_KEYS = KEYS + ODD


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk(ALL_KEYS, USAGES, FILES) as made:
        made.prefix.import_registry(handlers.reg_text(handlers.document("xls", VIEWER)))
        made.prefix.make_file("C:\\Lists\\.keep")
        set_value(made, ODD[1], "Comments", ODD[1].values["Comments"])
        yield made


@pytest.fixture(scope="module")
def world(desk):
    return world_of(desk, ALL_KEYS, USAGES)


@pytest.fixture
def viewer(desk):
    made = Installer(desk, BINARIES, VIEWER)
    yield made
    made.end_all()


@pytest.fixture
def folder(desk):
    """Empty but for one file."""
    found = desk.prefix.host_path("C:\\Lists")
    yield found
    for file in found.iterdir():
        if file.name != ".keep":
            file.unlink()


@pytest.fixture(params=["english"])
def window(request, desk, world):
    made = Window(desk, request.param)
    count = len(read_all(world))
    eventually(lambda: f" / {count} " in made.program.status(),
               lambda: f"{count} packages, not {made.program.status()}")
    yield made
    desk.end_programs()


both_languages = pytest.mark.parametrize("window", ["english", "german"], indirect=True)


def export(window, name):
    dialog = SaveDialog.of(window)
    dialog.save_as(name)
    dialog.wait_gone()


def wait_for_bytes(file, expected):
    """The file is still being written when the dialog has gone."""
    eventually(lambda: file.exists() and file.read_bytes() == expected,
               lambda: f"{file.name} holds what it should, not {len(file.read_bytes())} bytes")


@both_languages
def test_the_dialog_of_the_system_asks_for_a_name(window, folder):
    dialog = SaveDialog.of(window)
    window.program.picture(SCREENSHOTS / f"export-{window.language}.png")
    types = [control["text"] for control in window.desk.driver("controls", dialog.handle)
             if control["id"] == FILE_TYPE]
    assert types == ["Excel Sheet (*.xls)"]
    assert not window.program.window()["enabled"]
    dialog.close()
    window.wait_usable()
    assert [file.name for file in folder.iterdir()] == [".keep"]
    assert window.boxes() == []


@both_languages
def test_a_text_file_holds_the_packages_byte_by_byte(window, world, folder):
    export(window, "C:\\Lists\\list.csv")
    sheet = sheet_of(world, window.language)
    wait_for_bytes(folder / "list.csv", csv_bytes(sheet))
    assert len(sheet) > 20
    assert window.boxes() == []


@both_languages
def test_a_workbook_holds_the_packages_and_is_opened(window, world, folder, viewer):
    export(window, "C:\\Lists\\My list.XLS")
    viewer.wait_for_starts('"C:\\Lists\\My list.XLS"')
    assert read_by_xlrd(folder / "My list.XLS") == [
        [READERS["xlrd"].shows(cell) for cell in line] for line in sheet_of(world, window.language)]


def test_what_the_type_selection_hides_as_nameless_or_component_is_left_out(window, world, folder):
    window.program.select_type(ALL_PACKAGES)
    export(window, "C:\\Lists\\all.csv")
    everything = sheet_of(world, unnamed=True, components=True)
    wait_for_bytes(folder / "all.csv", csv_bytes(everything))
    assert len(everything) > len(sheet_of(world))


def test_neither_the_search_nor_the_order_of_the_list_plays_a_part(window, world, folder):
    window.program.ask("set-text", SEARCH, "nothing is called so")
    window.program.click_header(2)
    export(window, "C:\\Lists\\list.txt")
    wait_for_bytes(folder / "list.txt", csv_bytes(sheet_of(world)))


def test_the_name_alone_decides_and_not_the_chosen_type(window, world, folder, viewer):
    dialog = SaveDialog.of(window)
    window.desk.driver("combo-select", dialog.handle, FILE_TYPE, 1)
    dialog.save_as("C:\\Lists\\chosen.xls")
    dialog.wait_gone()
    viewer.wait_for_starts('"C:\\Lists\\chosen.xls"')
    assert len(read_by_xlrd(folder / "chosen.xls")) == len(sheet_of(world))


def test_a_name_without_an_extension_becomes_a_workbook(window, folder, viewer):
    """The system appends what the dialog was given for that."""
    export(window, "C:\\Lists\\plain")
    eventually(viewer.lines, "the viewer")
    (made,) = [file for file in folder.iterdir() if file.name != ".keep"]
    assert made.name.lower().endswith("xls")
    viewer.wait_for_starts(f'"C:\\Lists\\{made.name}"')


def test_a_workbook_holds_one_stream_and_nothing_else(window, folder, viewer):
    export(window, "C:\\Lists\\one.xls")
    viewer.wait_for_starts('"C:\\Lists\\one.xls"')
    with olefile.OleFileIO(str(folder / "one.xls")) as file:
        assert file.listdir(streams=True, storages=True) == [["Workbook"]]
    listed = subprocess.run(["gsf", "list", str(folder / "one.xls")], check=True, timeout=60,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE).stdout.decode()
    assert [line.split()[-1] for line in listed.splitlines()[1:] if "Workbook" in line] == \
        ["Workbook"]
    assert "SummaryInformation" not in listed


@pytest.mark.parametrize("name", ["old.csv", "old.xls"])
def test_an_existing_file_is_replaced_only_if_the_user_agrees(window, folder, viewer, name):
    file = folder / name
    file.write_bytes(OLD)
    dialog = SaveDialog.of(window)
    dialog.save_as(f"C:\\Lists\\{name}")
    dialog.question().answer(NO)
    assert file.read_bytes() == OLD
    dialog.save_as(f"C:\\Lists\\{name}")
    dialog.question().answer(YES)
    dialog.wait_gone()
    eventually(lambda: OLD not in file.read_bytes(), "it is replaced")
    if name.endswith("xls"):
        viewer.wait_for_starts(f'"C:\\Lists\\{name}"')


@contextlib.contextmanager
def taken(desk, path):
    """A file that is open in another program, which lets nobody write it."""
    desk.driver("hold-file", path)
    try:
        yield
    finally:
        desk.driver("let-file-go", path)


@pytest.mark.parametrize("name", ["taken.csv", "taken.xls"])
def test_a_file_that_another_program_holds_is_told_and_stays(window, folder, viewer, name):
    file = folder / name
    file.write_bytes(OLD)
    with taken(window.desk, f"C:\\Lists\\{name}"):
        dialog = SaveDialog.of(window)
        dialog.save_as(f"C:\\Lists\\{name}")
        dialog.question().answer(YES)
        box = window.box(EXCEPTION)
        assert box.text != ""
        window.program.picture(SCREENSHOTS / f"export-{name}.png")
        box.close()
        window.wait_usable()
    assert file.read_bytes() == OLD
    assert viewer.lines() == []
    # The program goes on.
    export(window, "C:\\Lists\\next.csv")
    eventually((folder / "next.csv").exists, "the next file")


def close_program(window):
    window.program.ask("post", WM_CLOSE, 0, 0)
    assert window.program.exit_code() == 0


def test_closing_the_program_closes_the_dialog(window, folder):
    SaveDialog.of(window)
    close_program(window)
    assert [file.name for file in folder.iterdir()] == [".keep"]


@pytest.mark.parametrize("name", ["old.csv", "old.xls"])
def test_closing_the_program_at_the_question_leaves_the_file(window, folder, viewer, name):
    (folder / name).write_bytes(OLD)
    dialog = SaveDialog.of(window)
    dialog.save_as(f"C:\\Lists\\{name}")
    dialog.question()
    close_program(window)
    assert (folder / name).read_bytes() == OLD
    assert viewer.lines() == []


def test_closing_the_program_closes_the_box_about_a_workbook(window, folder):
    (folder / "taken.xls").write_bytes(OLD)
    with taken(window.desk, "C:\\Lists\\taken.xls"):
        dialog = SaveDialog.of(window)
        dialog.save_as("C:\\Lists\\taken.xls")
        dialog.question().answer(YES)
        window.box(EXCEPTION)
        close_program(window)
    assert (folder / "taken.xls").read_bytes() == OLD


def test_the_dialog_is_operated_by_the_keyboard_alone(window, world, folder):
    dialog = SaveDialog.of(window)
    screen = window.desk.screen
    wait_for_focus(screen, DIALOG_TITLES["english"])
    screen.press_key("ctrl+a")
    screen.type_text("C:\\Lists\\typed.csv")
    eventually(lambda: dialog.name() == "C:\\Lists\\typed.csv", lambda: f"typed {dialog.name()!r}")
    screen.press_key("Return")
    dialog.wait_gone()
    window.wait_usable()
    wait_for_bytes(folder / "typed.csv", csv_bytes(sheet_of(world)))


def test_a_second_export_follows_the_first(window, world, folder):
    for name in ("first.csv", "second.csv"):
        export(window, f"C:\\Lists\\{name}")
        wait_for_bytes(folder / name, csv_bytes(sheet_of(world)))
    assert os.listdir(folder).count("first.csv") == 1


@pytest.mark.parametrize("language, mark", [("english", "new"), ("german", "neu")])
def test_the_last_column_tells_what_is_new_in_the_language_of_the_window(make_desk, language,
                                                                         mark):
    old, new = (Key("user", name, {"DisplayName": name, "InstallDate": "20260101"})
                for name in ("Old", "New"))
    with make_desk([old]) as desk:
        desk.prefix.make_file("C:\\Lists\\.keep")
        first = Window(desk, language, switches=("-noupdate",))
        first.wait_filled(1)
        assert first.program.close() == 0
        seed(desk, [old, new])
        second = Window(desk, language, switches=("-noupdate",))
        second.wait_filled(2)
        export(second, "C:\\Lists\\marks.csv")
        file = desk.prefix.host_path("C:\\Lists") / "marks.csv"
        eventually(lambda: file.exists() and file.read_bytes().count(b"\n") == 3, "three lines")
        marks = {line.split(";")[0]: line.split(";")[28]
                 for line in file.read_text("cp1252").splitlines()[1:]}
        assert marks == {"Old": "", "New": mark}
        assert second.program.close() == 0
