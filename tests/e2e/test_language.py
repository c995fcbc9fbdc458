"""The change of language: the program starts itself anew in the other one, at the same place."""

import shutil

import pytest

from conftest import BINARIES, ENGLISH, GERMAN, SCREENSHOTS
from support.held import HeldDesk
from support.program import Desk, Program, eventually
from support.registry import Key

SWITCH_LANGUAGE = 32
COMMAND_LABEL = 1012
WM_COMMAND = 0x111
# MAX_PATH without the NUL.
LONGEST_PATH = 259
SW_MAXIMIZE, SW_RESTORE = 3, 9

KEYS = [Key("user", "Only", {"DisplayName": "Only"})]
LABELS = {"Uninstall-Cmd.:": "english", "Uninstall-Befehl:": "german"}
FILLED = {"english": "1 / 1 packages", "german": "1 / 1 Pakete"}
ITEMS = {"english": "Switch to &German", "german": "Umschalten zu &Englisch"}
PLACE = (90, 120, 760, 610)


def language_of(program):
    return LABELS[program.ask("text", COMMAND_LABEL)]


def item_of(program):
    return next(item["text"] for popup in program.ask("menu") for item in popup["items"]
                if item["id"] == SWITCH_LANGUAGE)


class Restarting:
    """A program of its own file, and the ones that it starts."""

    def __init__(self, desk, path):
        self.screen, self.driver, self.path = desk.screen, desk.driver, path
        self._desk = Desk(desk.screen, desk.prefix, desk.driver, path)

    def open(self, *switches):
        return self._desk.open("-noupdate", *switches)

    def pids(self):
        return self.driver("processes", self.path.name)

    def switch(self, program):
        """Gives the command, and waits for the other program and for the end of the first."""
        program.ask("post", WM_COMMAND, SWITCH_LANGUAGE, 0)
        other = self.other(program)
        assert program.exit_code() == 0
        return other

    def other(self, program):
        others = eventually(lambda: [pid for pid in self.pids() if pid != program.pid],
                            "another program starts")
        assert len(others) == 1
        return Program(self.driver, self.screen, others[0])

    def end_programs(self):
        for pid in self.pids():
            self.driver("kill", pid)


def put_into(desk, folder, name="zolvane.exe"):
    path = desk.prefix.folder / "drive_c" / folder / name
    path.parent.mkdir(parents=True, exist_ok=True)
    shutil.copy(BINARIES / "zolvane.exe", path)
    return path


@pytest.fixture(scope="module")
def english_desk(make_desk):
    with make_desk(KEYS, lc_all=ENGLISH) as desk:
        yield desk


@pytest.fixture(scope="module")
def german_desk(make_desk):
    with make_desk(KEYS, lc_all=GERMAN) as desk:
        yield desk


@pytest.fixture
def make_restarting():
    """Makes a Restarting; none of its programs outlives the test."""
    made = []

    def make(desk, path):
        # No place that an earlier test's window had.
        shutil.rmtree(desk.prefix.kept, ignore_errors=True)
        made.append(Restarting(desk, path))
        return made[-1]

    yield make
    for restarting in made:
        restarting.end_programs()


@pytest.fixture
def restarting(english_desk, make_restarting):
    return make_restarting(english_desk, BINARIES / "zolvane.exe")


def move_to_place(program):
    left, top, right, bottom = PLACE
    program.ask("move", left, top, right - left, bottom - top)
    eventually(lambda: program.window()["frame"] == list(PLACE), "the window is at its place")


def test_it_restarts_in_the_other_language_and_back_again(restarting):
    program = restarting.open()
    program.wait_for_status(FILLED["english"])
    assert (language_of(program), item_of(program)) == ("english", ITEMS["english"])
    german = restarting.switch(program)
    german.wait_for_status(FILLED["german"])
    assert (language_of(german), item_of(german)) == ("german", ITEMS["german"])
    english = restarting.switch(german)
    english.wait_for_status(FILLED["english"])
    assert (language_of(english), item_of(english)) == ("english", ITEMS["english"])
    assert english.close() == 0
    assert restarting.pids() == []


def test_it_restarts_once_however_often_it_is_told(restarting):
    program = restarting.open()
    program.wait_for_status(FILLED["english"])
    for _ in range(3):
        program.ask("post", WM_COMMAND, SWITCH_LANGUAGE, 0)
    assert program.exit_code() == 0
    german = restarting.other(program)
    german.wait_for_status(FILLED["german"])
    assert german.close() == 0
    assert restarting.pids() == []


def test_a_german_system_gets_english_just_as_well(german_desk, make_restarting):
    restarting = make_restarting(german_desk, BINARIES / "zolvane.exe")
    program = restarting.open()
    program.wait_for_status(FILLED["german"])
    english = restarting.switch(program)
    english.wait_for_status(FILLED["english"])
    assert language_of(english) == "english"
    assert english.close() == 0


def test_the_menu_item_switches_by_its_keys(restarting):
    program = restarting.open()
    program.wait_for_status(FILLED["english"])
    program.press_key("alt+e")
    restarting.driver("wait-window", program.pid, "#32768", "", 20000)
    restarting.screen.press_key("g")
    german = restarting.other(program)
    assert program.exit_code() == 0
    german.wait_for_status(FILLED["german"])
    assert german.close() == 0


def test_it_restarts_at_the_same_place(restarting):
    program = restarting.open()
    program.wait_for_status(FILLED["english"])
    move_to_place(program)
    program.picture(SCREENSHOTS / "language-before.png")
    german = restarting.switch(program)
    german.wait_for_status(FILLED["german"])
    assert german.window()["frame"] == list(PLACE)
    german.picture(SCREENSHOTS / "language-after.png")
    english = restarting.switch(german)
    english.wait_for_status(FILLED["english"])
    assert english.window()["frame"] == list(PLACE)
    assert english.close() == 0


def test_a_minimised_window_gives_no_place(restarting):
    program = restarting.open()
    program.wait_for_status(FILLED["english"])
    first = program.window()["frame"]
    move_to_place(program)
    program.minimise()
    german = restarting.switch(program)
    german.wait_for_status(FILLED["german"])
    assert not german.window()["iconic"]
    assert german.window()["frame"] == first
    assert german.close() == 0


def test_a_run_that_must_not_persist_switches_and_gives_no_place(restarting):
    program = restarting.open("-nopersist")
    program.wait_for_status(FILLED["english"])
    first = program.window()["frame"]
    move_to_place(program)
    german = restarting.switch(program)
    german.wait_for_status(FILLED["german"])
    assert german.window()["frame"] == first
    assert german.close() == 0


def test_it_restarts_from_a_folder_with_a_blank(english_desk, make_restarting):
    # What a path that is cut at its blank would start.
    decoy = put_into(english_desk, "", "My.exe")
    restarting = make_restarting(english_desk, put_into(english_desk, "My Tools"))
    program = restarting.open()
    program.wait_for_status(FILLED["english"])
    german = restarting.switch(program)
    german.wait_for_status(FILLED["german"])
    assert restarting.driver("processes", decoy.name) == []
    assert german.close() == 0


def test_it_restarts_from_the_longest_path_that_there_is(english_desk, make_restarting):
    around = len("Z:" + str(english_desk.prefix.folder / "drive_c") + "//zolvane.exe")
    path = put_into(english_desk, "x" * (LONGEST_PATH - around))
    restarting = make_restarting(english_desk, path)
    program = restarting.open()
    program.wait_for_status(FILLED["english"])
    german = restarting.switch(program)
    german.wait_for_status(FILLED["german"])
    assert german.close() == 0


def test_it_goes_on_in_its_language_if_nothing_can_be_started(english_desk, make_restarting):
    path = put_into(english_desk, "Moved")
    restarting = make_restarting(english_desk, path)
    program = restarting.open()
    program.wait_for_status(FILLED["english"])
    path.rename(path.with_name("elsewhere.exe"))
    # Answered once the command has been carried out.
    program.ask("command", SWITCH_LANGUAGE)
    assert restarting.pids() == [program.pid]
    assert program.window()["visible"] and language_of(program) == "english"
    program.press_key("F5")
    program.wait_for_status(FILLED["english"])
    assert program.close() == 0


@pytest.fixture
def held(english_desk, make_restarting):
    """The program held in its first pass, what holds it, and what it restarts as."""
    path = BINARIES / "zolvane-held.exe"
    restarting = make_restarting(english_desk, path)
    hold = HeldDesk(english_desk, path)
    program = hold.start("hold@source2", persist=True)
    hold.reached()
    yield program, hold, restarting
    hold.go()


def both_go_on(hold, program, german):
    def gone_on():
        # Each signal frees one of the two.
        hold.go()
        return not program.is_running() and german.status() == FILLED["german"]

    eventually(gone_on, "the first ends and the other fills its list")
    assert program.exit_code() == 0


def test_it_restarts_during_a_pass_and_leaves_no_process_behind(held):
    program, hold, restarting = held
    move_to_place(program)
    program.ask("post", WM_COMMAND, SWITCH_LANGUAGE, 0)
    german = restarting.other(program)
    # It is held in its own first pass, just as the one that has started it still is.
    hold.reached()
    assert not program.window()["visible"]
    assert language_of(german) == "german"
    assert german.window()["frame"] == list(PLACE)
    both_go_on(hold, program, german)
    assert german.close() == 0
    assert restarting.pids() == []


def test_a_maximised_window_comes_back_maximised_and_knows_its_former_place(held):
    # In its first pass, since Wine makes every dialog's window a normal one soon after.
    program, hold, restarting = held
    move_to_place(program)
    program.ask("show", SW_MAXIMIZE)
    eventually(lambda: program.window()["zoomed"], "it is maximised")
    program.ask("post", WM_COMMAND, SWITCH_LANGUAGE, 0)
    german = restarting.other(program)
    hold.reached()
    assert german.window()["zoomed"]
    german.ask("show", SW_RESTORE)
    eventually(lambda: german.window()["frame"] == list(PLACE), "it is back at its place")
    both_go_on(hold, program, german)
    assert german.close() == 0
