"""What is new or changed since the last run, and the file that remembers."""

import os
import shutil
from pathlib import Path

import pytest

from conftest import BINARIES
from support.held import HeldDesk
from support.program import (ALL_PACKAGES, REFRESH, WINDOW_CLASS, eventually, wait_for_focus)
from support.registry import BINARY, SZ, UNINSTALL, USAGE_CACHE, Key, Usage, usage_bytes
from support.watching import PLACES, shows_by_itself

GOLDEN = Path(__file__).parent / "golden/history.xml"
QUIET = "-noupdate"
WM_CLOSE, WM_QUIT, WM_COMMAND = 0x10, 0x12, 0x111
BOX_LIMIT = 30000

# Dates far from any key's last write, so that they stay as they are told.
KEYS = [
    Key("local", "Alpha", {"DisplayName": "Alpha <&> \"one\" 'two'", "InstallDate": "20011231",
                           "DisplayVersion": "1.0", "Publisher": "M\u00fcller & S\u00f6hne",
                           "EstimatedSize": 2048, "NoRemove": 1}),
    Key("local64", "Beta", {"DisplayName": "Beta", "InstallDate": "20020102",
                            "UninstallString": "C:\\beta\\gone.exe /x"}),
    Key("user", "Gamma", {"DisplayName": "Gamma", "InstallDate": "20030304"}),
]
LAST_USE, FREQUENCY = 15, 21
NAMES = ["Alpha <&> \"one\" 'two'", "Beta", "Gamma"]


class Memory:
    """A prefix whose program remembers its runs."""

    def __init__(self, desk):
        self.desk, self.driver = desk, desk.driver
        self.file = desk.prefix.kept / "zolvane-hist.xml"

    def open(self, *switches, count=len(KEYS)):
        program = self.desk.open(QUIET, *switches)
        if count is not None:
            program.wait_filled(count)
        return program

    def run(self, *switches, count=len(KEYS)):
        """A whole run; the marks that it has shown."""
        program = self.open(*switches, count=count)
        shown = marks(program)
        assert program.close() == 0
        return shown

    def set(self, place, key, name, text):
        self.driver("reg-set", *PLACES[place], f"Software\\{UNINSTALL}\\{key}", name, SZ,
                    text.encode("cp1252") + b"\0")

    def use(self, key, usage):
        """Makes the system's record of how a package is used."""
        self.driver("reg-set", *PLACES["local"], f"Software\\{USAGE_CACHE}\\{key}", "SlowInfoCache",
                    BINARY, usage_bytes(usage))

    def delete(self, place, key):
        self.driver("reg-delete", *PLACES[place], f"Software\\{UNINSTALL}\\{key}")

    def content(self):
        return self.file.read_bytes()


def marks(program):
    """What the column of changes says of each package that it says something of."""
    return {row[2]: row[-1] for row in program.rows() if row[-1]}


def names(program):
    return [row[2] for row in program.rows()]


def answer_boxes_until_filled(memory, program):
    """A document that no program has written may fail an assertion, which is told and passed."""
    def filled():
        for window in memory.desk.windows_of(program.pid):
            if window["class"] == WINDOW_CLASS and window["handle"] != program.handle:
                memory.driver("post", window["handle"], WM_COMMAND, 1, 0)
        return program.status() == f"{len(KEYS)} / {len(KEYS)} packages"

    eventually(filled, "the list is filled")


@pytest.fixture
def memory(make_desk):
    """For tests that change the registry."""
    with make_desk(KEYS) as desk:
        yield Memory(desk)


@pytest.fixture(scope="module")
def common_desk(make_desk):
    with make_desk(KEYS) as desk:
        yield desk


@pytest.fixture
def files(common_desk):
    """For tests that change nothing but the files."""
    yield Memory(common_desk)
    common_desk.end_programs()
    shutil.rmtree(common_desk.prefix.kept, ignore_errors=True)


def test_the_first_run_marks_nothing_and_writes_the_history(files):
    assert files.run() == {}
    assert files.content() == GOLDEN.read_bytes()


def test_a_run_without_a_change_marks_nothing_and_leaves_the_file_alone(files):
    files.run()
    os.utime(files.file, (0, 0))
    assert files.run() == {}
    assert files.file.stat().st_mtime == 0
    assert files.content() == GOLDEN.read_bytes()


def test_new_and_changed_packages_are_marked_once(memory):
    memory.run()
    memory.set("local", "Alpha", "DisplayVersion", "1.1")
    memory.set("user", "Delta", "DisplayName", "Delta")
    memory.delete("local64", "Beta")
    assert memory.run() == {NAMES[0]: "changed", "Delta": "new"}
    assert b"Delta" in memory.content() and b"Beta" not in memory.content()
    assert memory.run() == {}


def test_a_removed_package_stays_in_the_file_until_another_change(memory):
    memory.run()
    memory.delete("user", "Gamma")
    assert memory.run(count=2) == {}
    assert memory.content() == GOLDEN.read_bytes()
    # It comes back before that, and so is no news.
    memory.set("user", "Gamma", "DisplayName", "Gamma")
    memory.set("user", "Gamma", "InstallDate", "20030304")
    assert memory.run() == {}


def test_a_removed_package_that_comes_again_after_another_change_is_new(memory):
    memory.run()
    memory.delete("user", "Gamma")
    memory.set("local64", "Beta", "Comments", "now")
    assert memory.run(count=2) == {"Beta": "changed"}
    memory.set("user", "Gamma", "DisplayName", "Gamma")
    assert memory.run() == {"Gamma": "new"}


def test_what_changes_meanwhile_shows_without_a_mark(memory):
    program = memory.open()
    memory.set("local64", "Beta", "Comments", "now")
    shows_by_itself(memory.desk, "local64",
                    lambda: any("now" in row for row in program.rows()), "the comment")
    # The package has its line, and with it no mark.
    assert marks(program) == {}
    assert program.close() == 0
    assert memory.run() == {}


MORNING_OF_13_JANUARY_2009 = 128763036000000000  # 07:00 UTC
A_DAY = 24 * 3600 * 10 ** 7
USED = Usage(used=MORNING_OF_13_JANUARY_2009, frequency=3)


@pytest.mark.parametrize("column, usage, shown, kept", [
    (FREQUENCY, Usage(used=USED.used, frequency=4), "4", b'frequency="4"'),
    (LAST_USE, Usage(used=USED.used + A_DAY, frequency=USED.frequency), "14.01.2009",
     b'"14.01.2009'),
], ids=["count", "last use"])
def test_mere_use_between_two_runs_is_a_change(memory, column, usage, shown, kept):
    memory.use("Alpha", USED)
    memory.run()
    assert kept not in memory.content()
    memory.use("Alpha", usage)
    program = memory.open()
    assert marks(program) == {NAMES[0]: "changed"}
    assert [shown in row[column] for row in program.rows() if row[2] == NAMES[0]] == [True]
    assert program.close() == 0
    assert kept in memory.content()
    assert memory.run() == {}


def test_the_first_use_is_a_change_of_the_packages_that_it_is_carried_over_to_as_well(memory):
    memory.set("local", "Alpine", "DisplayName", "Alpine")
    memory.run(count=4)
    memory.use("Alpha", USED)
    assert memory.run(count=4) == {NAMES[0]: "changed", "Alpine": "changed"}
    assert memory.run(count=4) == {}


def test_use_while_it_runs_shows_without_a_mark(memory):
    memory.use("Alpha", USED)
    program = memory.open()
    memory.use("Alpha", Usage(used=USED.used, frequency=4))
    # Nothing watches those records: they are read again with the key.
    shows_by_itself(memory.desk, "local",
                    lambda: "4" in [row[FREQUENCY] for row in program.rows()], "the count")
    assert marks(program) == {}
    assert program.close() == 0
    assert memory.run() == {}


@pytest.mark.parametrize("persist", [True, False], ids=["persist", "nopersist"])
def test_a_package_that_arrives_shows_as_new(memory, persist):
    held = HeldDesk(memory.desk, BINARIES / "zolvane-held.exe")
    # The second pass is held before it reads anything, and fails behind its first place: while its
    # box is open, no other refresh can take the marks away again.
    program = held.start("hold@source4 fail@source5", persist=persist)
    program.wait_filled(len(KEYS))
    assert marks(program) == {}
    memory.set("user", "Gamma", "Comments", "now")
    shows_by_itself(memory.desk, "user", held.has_reached, "the second pass")
    memory.set("local", "Delta", "DisplayName", "Delta")
    held.go()
    box = held.wait_for_box(program.pid)
    assert program.status() == "4 / 4 packages"
    assert marks(program) == {"Delta": "new"}
    held.answer_box(box)
    shows_by_itself(memory.desk, "local", lambda: marks(program) == {}, "no mark is left")
    assert program.close() == 0
    if persist:
        assert b"Delta" in memory.content()
    else:
        assert not memory.file.parent.exists()


def test_a_run_that_must_not_persist_neither_reads_nor_writes(memory):
    assert memory.run("-nopersist") == {}
    assert not memory.file.parent.exists()
    memory.run()
    memory.set("user", "Delta", "DisplayName", "Delta")
    assert memory.run("-nopersist", count=4) == {}
    assert memory.content() == GOLDEN.read_bytes()


def test_an_arrival_in_a_run_that_must_not_persist_leaves_the_file_alone(memory):
    memory.run()
    os.utime(memory.file, (0, 0))
    program = memory.open("-nopersist")
    # It may meet the key before it has a name, and would go on hiding it.
    program.select_type(ALL_PACKAGES)
    memory.set("user", "Delta", "DisplayName", "Delta")
    shows_by_itself(memory.desk, "user", lambda: "Delta" in names(program), "the new package")
    assert program.close() == 0
    assert memory.file.stat().st_mtime == 0
    assert memory.content() == GOLDEN.read_bytes()
    # So the next run that remembers still has it as news.
    assert memory.run(count=4) == {"Delta": "new"}


def test_refresh_accepts_the_present_state(memory):
    memory.run()
    memory.set("user", "Delta", "DisplayName", "Delta")
    program = memory.open(count=4)
    assert marks(program) == {"Delta": "new"}
    os.utime(memory.file, (0, 0))
    program.click(REFRESH)
    eventually(lambda: memory.file.stat().st_mtime != 0, "the history is written anew")
    program.wait_filled(4)
    assert marks(program) == {}
    assert program.close() == 0


def test_a_history_of_another_version_is_none_and_is_replaced(files):
    files.run()
    for version in (b"5.2", b"5.4"):
        files.file.write_bytes(GOLDEN.read_bytes().replace(b"5.3", version)
                               .replace(b"Beta", b"Else"))
        assert files.run() == {}
        assert files.content() == GOLDEN.read_bytes()


@pytest.mark.parametrize("content", [
    b"", b"\0" * 4096, b"<", b"<zolvane", b"</zolvane>", b"\xff\xfe<\0a\0>\0", b"no markup",
    b"<zolvane version='5.3'><last-entries><row keyName=x/></last-entries></zolvane>",
    b"<a>" * 100000,
], ids=["empty", "zeros", "bracket", "open", "close", "16 bits", "text", "malformed", "deep"])
def test_a_file_that_is_no_history_is_replaced(files, content):
    files.file.parent.mkdir()
    files.file.write_bytes(content)
    program = files.open(count=None)
    answer_boxes_until_filled(files, program)
    assert marks(program) == {}
    assert program.close() == 0
    assert files.content() == GOLDEN.read_bytes()


def test_a_history_larger_than_the_memory_is_none_and_is_replaced(files):
    files.file.parent.mkdir()
    with files.file.open("wb") as file:
        file.truncate(3 << 29)
    assert files.run() == {}
    assert files.content() == GOLDEN.read_bytes()


@pytest.mark.parametrize("part", [0.1, 0.3, 0.5, 0.7, 0.97])
def test_after_a_cut_history_it_starts_and_leaves_a_good_one(files, part):
    files.file.parent.mkdir()
    golden = GOLDEN.read_bytes()
    files.file.write_bytes(golden[:int(len(golden) * part)])
    program = files.open(count=None)
    answer_boxes_until_filled(files, program)
    assert program.close() == 0
    assert files.content() == golden
    assert files.run() == {}


def test_an_unknown_attribute_is_told_and_the_list_stays_empty_until_a_refresh(files):
    files.run()
    files.file.write_bytes(GOLDEN.read_bytes().replace(b"<row ", b"<row colour=\"red\" ", 2))
    program = files.open(count=None)
    box = files.driver("wait-window", program.pid, WINDOW_CLASS, "Exception", BOX_LIMIT)["handle"]
    texts = [control["text"] for control in files.driver("controls", box)]
    assert any("column not found" in text for text in texts), texts
    wait_for_focus(files.desk.screen, "Exception")
    files.driver("post", box, WM_COMMAND, 1, 0)
    files.driver("wait-gone", box, BOX_LIMIT)
    assert names(program) == []
    program.press_key("F5")
    program.wait_filled(len(KEYS))
    assert marks(program) == {}
    assert program.close() == 0
    assert files.content() == GOLDEN.read_bytes()


def test_after_an_unknown_attribute_it_ends_as_ever_and_leaves_the_file(files):
    files.run()
    foreign = GOLDEN.read_bytes().replace(b"<row ", b"<row colour=\"red\" ", 1)
    files.file.write_bytes(foreign)
    program = files.open(count=None)
    box = files.driver("wait-window", program.pid, WINDOW_CLASS, "Exception", BOX_LIMIT)["handle"]
    files.driver("post", box, WM_COMMAND, 1, 0)
    files.driver("wait-gone", box, BOX_LIMIT)
    assert program.close() == 0
    assert files.content() == foreign


def test_rows_that_nobody_has_written_do_no_harm(files):
    foreign = b"".join(b"<row keyName=\"%d\" size=\"%d\"><row MSI=\"1\"/></row>" % (number, number ** 9)
                       for number in range(20000))
    foreign += b"<row keyName=\"a\0b\" comments=\"" + b"x" * 1000000 + b"\" comments=\"\"/>"
    files.file.parent.mkdir()
    content = GOLDEN.read_bytes().replace(b"<last-entries>", b"<last-entries>" + foreign)
    files.file.write_bytes(content)
    assert files.run() == {}
    assert files.content() == content


def test_without_the_folder_of_the_user_nothing_is_written_anywhere(memory):
    # Wine may make the folder anew for its own files: with the desktop, or for the internet cache,
    # which comes along with Windows Installer.
    memory.run()
    shutil.rmtree(memory.file.parent.parent)
    assert memory.run() == {}
    assert not any(folder.exists() for folder in (
        Path("/Quillmere"), memory.desk.prefix.folder / "drive_c/Quillmere",
        memory.file.parent))


def test_a_history_that_cannot_be_written_is_no_trouble(files):
    files.file.parent.mkdir()
    # A folder in its place: no rights help against that.
    files.file.mkdir()
    assert files.run() == {}
    files.file.rmdir()
    assert files.run() == {}
    assert files.content() == GOLDEN.read_bytes()


def test_a_full_disk_is_no_trouble(files):
    held = HeldDesk(files.desk, BINARIES / "zolvane-held.exe")
    program = held.start("hold@source1", persist=True)
    held.reached()
    settings = files.file.parent / "zolvane-cfg.xml"
    files.file.parent.mkdir()
    for file in (files.file, settings):
        file.symlink_to("/dev/full")
    held.go()
    program.wait_filled(len(KEYS))
    assert program.close() == 0
    # Reading these would never end.
    assert files.file.is_symlink() and settings.is_symlink()
    files.file.unlink()
    settings.unlink()
    assert files.run() == {}
    assert files.content() == GOLDEN.read_bytes()


def test_two_programs_write_the_same_files_and_the_last_one_wins(memory):
    first, second = memory.open(), memory.open()
    first.ask("move", 40, 50, 800, 700)
    second.ask("move", 140, 150, 900, 720)
    for program in (first, second):
        # One may meet the key before it has a name, and would go on hiding it.
        program.select_type(ALL_PACKAGES)
    memory.set("user", "Delta", "DisplayName", "Delta")
    for program in (first, second):
        shows_by_itself(memory.desk, "user", lambda: "Delta" in names(program), "the new package")
    for program in (first, second):
        assert program.close() == 0
    program = memory.open(count=4)
    assert marks(program) == {}
    left, top, _, _ = program.window()["frame"]
    assert (left, top) == (140, 150)
    assert program.close() == 0


@pytest.mark.parametrize("point", ["source2", "product1"])
def test_a_close_during_the_first_pass_leaves_no_history_and_the_next_run_a_whole_one(files, point):
    held = HeldDesk(files.desk, BINARIES / "zolvane-held.exe")
    program = held.start(f"hold@{point}", persist=True)
    held.reached()
    # It has been heard when this comes back.
    program.ask("send", WM_CLOSE, 0, 0)
    held.go()
    assert program.exit_code() == 0
    # What a pass has read of the machine by then is no state of it.
    assert not files.file.exists()
    assert files.run() == {}
    assert files.content() == GOLDEN.read_bytes()


POINTS = ["source2", "hand-over"]


@pytest.fixture
def hold_with_news(memory):
    """Starts the program with a history that knows nothing of Delta, to be held at a point."""
    memory.run()
    memory.set("user", "Delta", "DisplayName", "Delta")
    held = HeldDesk(memory.desk, BINARIES / "zolvane-held.exe")

    def hold(point):
        program = held.start(f"hold@{point}", persist=True)
        held.reached()
        return held, program

    return hold


def test_a_close_in_the_middle_of_a_hand_over_still_keeps_the_news(memory, hold_with_news):
    held, program = hold_with_news("hand-over")
    program.ask("post", WM_CLOSE, 0, 0)
    held.go()
    assert program.exit_code() == 0
    assert b"Delta" in memory.content()
    assert memory.run(count=4) == {}


@pytest.mark.parametrize("point", POINTS)
def test_a_refresh_in_the_middle_accepts_the_present_state(memory, hold_with_news, point):
    held, program = hold_with_news(point)
    program.ask("post", WM_COMMAND, REFRESH, 0)
    held.go()
    eventually(lambda: b"Delta" in memory.content() and program.status() == "4 / 4 packages"
               and marks(program) == {}, "all is there, without a mark")
    assert program.close() == 0
    assert memory.run(count=4) == {}


@pytest.mark.parametrize("end", [
    lambda program: program.ask("send", WM_CLOSE, 0, 0),
    lambda program: program.ask("post-thread", WM_QUIT),
], ids=["close", "quit"])
@pytest.mark.parametrize("point", ["source2", "product1"])
def test_an_end_in_the_middle_of_a_pass_leaves_the_news_to_the_next_run(memory, hold_with_news,
                                                                        point, end):
    held, program = hold_with_news(point)
    end(program)
    # A close has been heard by now; a pass that ends before a quit is heard isn't handed over either.
    held.go()
    assert program.exit_code() == 0
    assert memory.content() == GOLDEN.read_bytes()
    assert memory.run(count=4) == {"Delta": "new"}


def test_a_pass_that_fails_leaves_the_history_alone(files):
    files.run()
    held = HeldDesk(files.desk, BINARIES / "zolvane-held.exe")
    program = held.start("fail@source1", persist=True)
    box = held.wait_for_box(program.pid)
    program.ask("post", WM_CLOSE, 0, 0)
    held.answer_box(box)
    assert program.exit_code() == 0
    assert files.content() == GOLDEN.read_bytes()
    assert files.run() == {}


def test_the_language_of_the_texts_changes_no_package(files):
    files.run("-eng")
    program = files.desk.open(QUIET, "-ger")
    program.wait_for_status("3 / 3 Pakete")
    assert marks(program) == {}
    assert program.close() == 0
