"""What may happen, in each state that the program can be in: the table of docs/architecture.md."""

import collections
import contextlib
import os
import time

import pytest

from conftest import BINARIES
from support.held import HeldDesk, eventually
from support.icons import icon_file
from support.installers import Installer
from support.program import LIST, REFRESH, STATUS, TITLE, DriverError, wait_for_focus
from support.registry import Key
from support.window import CANCEL, MODIFY, UNINSTALL

WM_CLOSE, WM_QUIT, WM_CANCELMODE = 0x10, 0x12, 0x1F
WM_COMMAND, WM_SYSCOMMAND, WM_APP = 0x111, 0x112, 0x8000
MENU_LIMIT = 20000
SC_MAXIMIZE, SC_KEYMENU = 0xF030, 0xF100
QUESTION = "Uninstallation"
ESCAPE_COMMAND = 2
# How often each hold point is closed at.
CLOSES = int(os.environ.get("ZOLVANE_CLOSES", "10"))

# An end that has been asked for comes within so many seconds.
ENDS_WITHIN = 5

SETUP, ICON = "C:\\Setups\\setup.exe", "C:\\Icons\\orange.ico"
# Each with a time of day, so that the hand-over comes to the point where it is held; and with an
# icon of its own, for the pass that loads them.
KEYS = [Key(place, place, {"DisplayName": place, "InstallDate": "2025-11-12T10:20:30",
                           "UninstallString": SETUP, "ModifyPath": SETUP, "DisplayIcon": ICON})
        for place in ("local", "local64", "user")]
ALL = f"{len(KEYS)} / {len(KEYS)} packages"


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk(KEYS) as made:
        made.prefix.make_file(ICON, icon_file((250, 120, 10)))
        held = HeldDesk(made, BINARIES / "zolvane-held.exe")
        held.setup = Installer(made, BINARIES, SETUP)
        yield held


@pytest.fixture(autouse=True)
def cleared(desk):
    yield
    desk.end_programs()
    desk.setup.end_all()


class State:
    """The program in a state, and how that state ends by itself or by its user. `keys_go_to`: the
    title of the window that gets them, None while none is awake."""

    def __init__(self, desk, program, leave, keys_go_to=TITLE):
        self.desk, self.program, self._leave = desk, program, leave
        self.keys_go_to = keys_go_to
        self.popup = None

    def leave(self):
        self._leave()


def quietly(desk, program):
    """Gone with the program is answered, too."""
    def answer():
        for box in desk.boxes(program.pid):
            try:
                desk.answer_box(box)
            except DriverError:
                pass
    return answer


def starting(desk, points):
    program = desk.start("hold@start " + points, visible=False)
    return State(desk, program, desk.go, None)


def passing(desk, points):
    program = desk.start("hold@source2 " + points)
    desk.reached()
    return State(desk, program, desk.go)


def slow_source(desk, points):
    """A source that answers late: the installer, for one. The Uninstall keys have been read."""
    program = desk.start("hold@product1 " + points)
    desk.reached()
    return State(desk, program, desk.go)


def handing_over(desk, points):
    program = desk.start("hold@hand-over " + points)
    desk.reached()
    return State(desk, program, desk.go, None)


def idle(desk, points):
    program = desk.start(points)
    program.wait_for_status(ALL)
    return State(desk, program, lambda: None)


def box_on_main(desk, points):
    program = desk.start("fail@hand-over " + points)
    desk.wait_for_box(program.pid)
    return State(desk, program, quietly(desk, program), "Exception")


def box_on_reader(desk, points):
    program = desk.start("die@source1 " + points)
    desk.wait_for_box(program.pid)
    program.wait_for_status("0 / 0 packages")
    return State(desk, program, quietly(desk, program), "Exception")


def in_menu(program):
    try:
        return program.ask("in-menu")
    except DriverError:
        # The window is gone.
        return False


def menu_open(desk, points):
    state = idle(desk, points)
    state.program.activate()
    state.program.ask("post", WM_SYSCOMMAND, SC_KEYMENU, ord(" "))
    state.popup = desk.driver("wait-window", state.program.pid, "#32768", "", MENU_LIMIT)["handle"]

    def leave():
        # The menu bar that Escape has left open, too. No key: once the menu is closed, another Escape
        # closes the window.
        with contextlib.suppress(DriverError):
            state.program.ask("post", WM_CANCELMODE, 0, 0)
        eventually(lambda: not in_menu(state.program), "the menu is closed")
    state.leave = leave
    return state


def ending(desk, points):
    state = passing(desk, points)
    state.program.ask("post", WM_CLOSE, 0, 0)
    return state


def question_open(desk, points):
    """Whether a package is to be uninstalled."""
    state = idle(desk, points)
    state.program.choose_row(0)
    state.program.activate()
    state.program.ask("post", WM_COMMAND, UNINSTALL, 0)
    box = desk.wait_for_box(state.program.pid, QUESTION)

    def leave():
        # The end of the program, or a key, may have answered it.
        with contextlib.suppress(DriverError):
            desk.driver("post", box, WM_COMMAND, CANCEL, 0)
        desk.driver("wait-gone", box, MENU_LIMIT)
    state.leave, state.keys_go_to = leave, QUESTION
    return state


def installer_running(desk, points):
    """One that never ends by itself."""
    state = idle(desk, points)
    desk.setup.always("/forever")
    state.program.choose_row(0)
    state.program.activate()
    state.program.ask("post", WM_COMMAND, MODIFY, 0)
    eventually(desk.setup.lines, "the installer runs")
    state.leave = desk.setup.end_all
    return state


def icon_pass(desk, points):
    """The icons' thread is extracting one, which takes as long as its file lets it take."""
    program = desk.start("hold@icon1 " + points)
    desk.reached()
    program.wait_for_status(ALL)
    return State(desk, program, desk.go)


STATES = {"starting": starting, "pass": passing, "slow source": slow_source,
          "hand-over": handing_over, "idle": idle,
          "box-main": box_on_main, "box-reader": box_on_reader, "menu": menu_open,
          "question": question_open, "installer": installer_running, "icon pass": icon_pass,
          "ending": ending}


def post(message, wparam=0):
    return lambda state: state.program.ask("post", message, wparam, 0)


def escape(state):
    """The key, where a window is awake to get it."""
    title = state.keys_go_to
    if title is None:
        post(WM_COMMAND, ESCAPE_COMMAND)(state)
        return
    screen = state.desk.screen
    wait_for_focus(screen, title)
    screen.press_key("Escape")
    if state.popup is not None:
        state.desk.driver("wait-gone", state.popup, MENU_LIMIT)


EVENTS = {"close": post(WM_CLOSE), "escape": escape,
          "quit": lambda state: state.program.ask("post-thread", WM_QUIT),
          "refresh": post(WM_COMMAND, REFRESH), "notice": post(WM_APP)}

# What comes of it. "ends": the process has ended with 0 once the state is left; "lives": the window
# is there, and a Refresh brings the whole list.
ENDS, LIVES = "ends", "lives"
TABLE = {
    "starting": dict(close=ENDS, escape=ENDS, quit=ENDS, refresh=LIVES, notice=LIVES),
    "pass": dict(close=ENDS, escape=ENDS, quit=ENDS, refresh=LIVES, notice=LIVES),
    "slow source": dict(close=ENDS, escape=ENDS, quit=ENDS, refresh=LIVES, notice=LIVES),
    "hand-over": dict(close=ENDS, escape=ENDS, quit=ENDS, refresh=LIVES, notice=LIVES),
    "idle": dict(close=ENDS, escape=ENDS, quit=ENDS, refresh=LIVES, notice=LIVES),
    # The key goes to the box, or to the menu, and closes that alone.
    "box-main": dict(close=ENDS, escape=LIVES, quit=ENDS, refresh=LIVES, notice=LIVES),
    "box-reader": dict(close=ENDS, escape=LIVES, quit=ENDS, refresh=LIVES, notice=LIVES),
    # Under Wine the menu's own loop swallows a WM_QUIT.
    "menu": dict(close=ENDS, escape=LIVES, quit=LIVES, refresh=LIVES, notice=LIVES),
    # The key says no.
    "question": dict(close=ENDS, escape=LIVES, quit=ENDS, refresh=LIVES, notice=LIVES),
    "installer": dict(close=ENDS, escape=ENDS, quit=ENDS, refresh=LIVES, notice=LIVES),
    "icon pass": dict(close=ENDS, escape=ENDS, quit=ENDS, refresh=LIVES, notice=LIVES),
    "ending": dict(close=ENDS, escape=ENDS, quit=ENDS, refresh=ENDS, notice=ENDS),
}


def check_ends(state):
    assert state.program.exit_code() == 0


def check_lives(state):
    program = state.program
    assert state.desk.boxes(program.pid) == []
    # A request during a refresh is only counted, so this asks until one has been heard.
    def refreshed():
        program.ask("post", WM_COMMAND, REFRESH, 0)
        return program.status() == ALL and len(program.rows()) == len(KEYS)
    eventually(refreshed, "the whole list after a Refresh")
    assert program.close() == 0


@pytest.mark.parametrize("event", EVENTS)
@pytest.mark.parametrize("name", STATES)
def test_each_event_in_each_state(desk, name, event):
    state = STATES[name](desk, "")
    EVENTS[event](state)
    state.leave()
    {ENDS: check_ends, LIVES: check_lives}[TABLE[name][event]](state)
    if name == "question":
        assert desk.setup.lines() == []


# Where the end waits for nobody: neither for an answer nor for an installer. What an icon's file
# keeps the icons' thread with is not to be broken off.
ENDS_AT_ONCE = [("idle", "close"), ("idle", "escape"), ("idle", "quit"), ("menu", "close"),
                ("question", "close"), ("question", "quit"), ("installer", "close"),
                ("installer", "escape"), ("installer", "quit")]


@pytest.mark.parametrize("name, event", ENDS_AT_ONCE)
def test_an_end_that_waits_for_nobody_comes_at_once(desk, name, event):
    state = STATES[name](desk, "")
    start = time.monotonic()
    EVENTS[event](state)
    check_ends(state)
    assert time.monotonic() - start < ENDS_WITHIN
    # An installer is not ours to end, and none is started by a question that nobody has answered.
    assert len(desk.setup.running()) == len(desk.setup.lines()) == (name == "installer")


@pytest.mark.parametrize("event", ["close", "escape", "quit"])
def test_an_icon_that_is_being_extracted_is_all_that_the_end_waits_for(desk, event):
    state = icon_pass(desk, "")
    EVENTS[event](state)
    if event != "quit":
        # The thread has been told to end, but can't hear it.
        state.program.ask("settle")
    start = time.monotonic()
    state.leave()
    check_ends(state)
    assert time.monotonic() - start < ENDS_WITHIN


# Where a source is slow: the installer's, one between two others, and the last one, WMI's.
SLOW = ["product", "servicing", "wmi"]


def in_slow_source(desk, source, points=""):
    return traced(desk, f"{source}1", points)


def traced(desk, held, points=""):
    """With what tells the points that have been reached, those apart at which nothing is read."""
    trace = desk.drive_c / "trace.txt"
    trace.unlink(missing_ok=True)
    program = desk.start(f"hold@{held} {points}", TRACE="C:\\trace.txt")
    desk.reached()
    return State(desk, program, desk.go), lambda: [
        point for point in trace.read_text().split() if point not in ("start", "watch")]


@pytest.mark.parametrize("event", ["close", "escape", "quit", "refresh", "notice"])
@pytest.mark.parametrize("source", SLOW)
def test_the_window_is_alive_while_a_source_is_slow(desk, source, event):
    state, reached = in_slow_source(desk, source)
    program = state.program
    first = program.ask("focus")
    program.press_key("Tab")
    eventually(lambda: program.ask("focus") != first, "Tab moves the focus")
    EVENTS[event](state)
    if event != "quit":
        program.ask("settle")
        assert program.window()["visible"]
    # Nobody breaks the source off, nor goes on without it.
    assert program.is_running()
    assert reached()[-1] == f"{source}1"
    state.leave()
    {ENDS: check_ends, LIVES: check_lives}[TABLE["slow source"][event]](state)


# The Uninstall keys of the two views, the installer's products, the servicing packages, and WMI,
# which is asked last.
READ = ["source1", "source2", "source3", "product1", "servicing1", "wmi1", "wmi2"]


@pytest.mark.parametrize("event", ["close", "escape", "quit"])
@pytest.mark.parametrize("point", ["source2", "product1", "servicing1", "wmi1"])
def test_an_end_waits_for_the_source_under_way_alone(desk, point, event):
    state, reached = traced(desk, point)
    EVENTS[event](state)
    if event != "quit":
        state.program.ask("settle")
    start = time.monotonic()
    state.leave()
    check_ends(state)
    assert time.monotonic() - start < ENDS_WITHIN
    if event == "quit":
        # It may be heard only after the source has answered, and after the last one too late.
        assert point == "wmi1" or "hand-over" not in reached()
    elif point == "wmi1":
        # Nothing is left out by then: what has been read is the state of the machine.
        assert reached()[:len(READ)] == READ and set(reached()[len(READ):]) == {"hand-over"}
    else:
        assert reached() == READ[:READ.index(point) + 1]


def test_a_refresh_inside_a_slow_source_empties_the_tables_and_a_second_cycle_follows(desk):
    state, reached = in_slow_source(desk, "product", "hold@product2")
    EVENTS["refresh"](state)
    state.leave()
    desk.reached()
    # The rows of the keys had been read, and were forgotten.
    assert "hand-over" not in reached()
    assert state.program.rows() == []
    assert sum(point.startswith("source") for point in reached()) == 6
    state.leave()
    state.program.wait_for_status(ALL)
    assert sum(point.startswith("product") for point in reached()) == 2
    check_lives(state)


def test_a_notice_inside_a_slow_source_is_counted_and_starts_nothing(desk):
    state, reached = in_slow_source(desk, "product")
    for _ in range(3):
        EVENTS["notice"](state)
    state.program.ask("settle")
    state.leave()
    state.program.wait_for_status(ALL)
    assert sum(point.startswith("product") for point in reached()) == 1
    check_lives(state)


@pytest.mark.parametrize("source", SLOW)
@pytest.mark.parametrize("how, text", [("die", "generic exception"), ("fail", "held at %s1")])
def test_a_failure_inside_a_slow_source_is_told_once_and_leaves_what_was_read(desk, source, how,
                                                                              text):
    state, _ = in_slow_source(desk, source, f"{how}@{source}1")
    state.leave()
    program = state.program
    box = desk.wait_for_box(program.pid)
    texts = [control["text"] for control in desk.driver("controls", box)]
    assert any(text.replace("%s", source) in shown for shown in texts), texts
    assert len(desk.boxes(program.pid)) == 1
    # The keys were read before it.
    program.wait_for_status(ALL)
    assert len(program.rows()) == len(KEYS)
    desk.answer_box(box)
    check_lives(state)


@pytest.mark.parametrize("event", ["refresh", "notice"])
@pytest.mark.parametrize("name", ["question", "installer"])
def test_a_refresh_waits_neither_for_an_answer_nor_for_an_installer(desk, name, event):
    state = STATES[name](desk, "")
    state.program.ask("set-text", STATUS, "")
    EVENTS[event](state)
    state.program.wait_for_status(ALL)
    assert len(state.program.rows()) == len(KEYS)
    assert len(desk.boxes(state.program.pid)) == (name == "question")
    assert len(desk.setup.running()) == (name == "installer")
    state.leave()
    check_lives(state)


@pytest.mark.parametrize("event", ["refresh", "notice"])
def test_a_refresh_during_an_extraction_waits_for_it_with_the_window_alive(desk, event):
    state = icon_pass(desk, "")
    program = state.program
    program.ask("set-text", STATUS, "")
    EVENTS[event](state)
    first = program.ask("focus")
    program.press_key("Tab")
    eventually(lambda: program.ask("focus") != first, "Tab moves the focus")
    assert program.status() == ""
    state.leave()
    program.wait_for_status(ALL)
    check_lives(state)


@pytest.mark.parametrize("name", ["question", "installer"])
def test_the_death_of_the_reader_is_told_beneath_a_question_or_an_installer(desk, name):
    state = STATES[name](desk, "die@source4")
    program = state.program
    EVENTS["notice"](state)
    box = desk.wait_for_box(program.pid)
    assert len(desk.boxes(program.pid)) == 1 + (name == "question")
    desk.answer_box(box)
    state.leave()
    check_lives(state)


def test_an_icon_that_fails_is_told_by_nobody_and_tried_again(desk):
    program = desk.start("fail@icon1")
    program.wait_for_status(ALL)
    EVENTS["notice"](State(desk, program, None))
    eventually(lambda: min(program.ask_list("list-images")) > 0, "each row has its icon")
    assert desk.boxes(program.pid) == []
    assert program.close() == 0


def test_the_death_of_the_icons_thread_is_reported_once(desk):
    program = desk.start("die@icon1")
    box = desk.wait_for_box(program.pid)
    assert len(desk.boxes(program.pid)) == 1
    desk.answer_box(box)
    state = State(desk, program, None)
    EVENTS["notice"](state)
    check_lives(state)


# The reader dies of something unknown. It can only do so in a pass, so states without one are left
# for one first: by a change notice, while they last, or by a Refresh afterwards. What is reported:
# "once", or "never" where a report is open already.
DEATHS = {
    "starting": ("die@source1", None, LIVES),
    "pass": ("die@source2", None, LIVES),
    "slow source": ("die@product1", None, LIVES),
    "hand-over": ("die@source4", "after", LIVES),
    "idle": ("die@source4", "after", LIVES),
    "box-main": ("die@source4", "before", LIVES),
    "box-reader": ("die@source2", "after", LIVES),
    "menu": ("die@source4", "before", LIVES),
    "question": ("die@source4", "after", LIVES),
    "installer": ("die@source4", "after", LIVES),
    "icon pass": ("die@source4", "before", LIVES),
    "ending": ("die@source2", None, ENDS),
}


@pytest.mark.parametrize("name", STATES)
def test_the_death_of_the_reader_in_each_state(desk, name):
    points, request, outcome = DEATHS[name]
    state = STATES[name](desk, points)
    program = state.program
    if request == "before":
        EVENTS["notice"](state)
    if name == "box-main":
        # The box that is open keeps the reader's own from appearing.
        program.wait_for_status("0 / 0 packages")
        assert len(desk.boxes(program.pid)) == 1
        state.leave()
    else:
        state.leave()
        if request == "after":
            EVENTS["notice"](state)
        box = desk.wait_for_box(program.pid)
        assert len(desk.boxes(program.pid)) == 1
        desk.answer_box(box)
    {ENDS: check_ends, LIVES: check_lives}[outcome](state)


def test_the_report_of_a_dead_reader_says_what_happened(desk):
    program = box_on_reader(desk, "").program
    box = desk.wait_for_box(program.pid)
    texts = [control["text"] for control in desk.driver("controls", box)]
    assert "Ein Fehler trat auf w\u00e4hrend -NO-CONTEXT-:\ngeneric exception" in texts
    desk.answer_box(box)


def test_a_failed_pass_says_why_in_a_box_of_the_window(desk):
    program = desk.start("fail@source2")
    box = desk.wait_for_box(program.pid)
    texts = [control["text"] for control in desk.driver("controls", box)]
    assert "held at source2" in texts
    assert not program.window()["enabled"]
    # Rows of later places count as removed.
    program.wait_for_status("1 / 1 packages")
    desk.answer_box(box)
    program.ask("post", WM_COMMAND, REFRESH, 0)
    program.wait_for_status(ALL)
    assert program.close() == 0


@pytest.mark.parametrize("end", ["close", "escape"])
def test_the_window_stays_until_the_hand_over_that_it_is_closed_in_has_ended(desk, end):
    state = handing_over(desk, "")
    EVENTS[end](state)
    assert state.program.is_running() and state.program.window()["visible"]
    state.leave()
    check_ends(state)


# As letting go of Alt does, after an F4 that the window manager has taken; and of Alt and Space.
@pytest.mark.parametrize("key", [0, ord(" ")], ids=["bar", "system"])
def test_no_menu_keeps_an_end_waiting(desk, key):
    state = ending(desk, "")
    state.program.ask("post", WM_SYSCOMMAND, SC_KEYMENU, key)
    # Posted messages are met in their order, in a menu's loop, too.
    state.program.ask("post", WM_SYSCOMMAND, SC_MAXIMIZE, 0)
    eventually(lambda: state.program.window()["zoomed"], "it is maximised")
    assert not in_menu(state.program)
    state.leave()
    check_ends(state)


def test_no_popup_menu_keeps_an_end_waiting(desk):
    state = ending(desk, "")
    left, top, right, bottom = state.program.ask("header-rect", LIST, 2)["screen"]
    state.program.activate()
    desk.screen.click((left + right) // 2, (top + bottom) // 2, button=3)
    # What the user does next comes after that click; a menu would take the key for itself.
    first = state.program.ask("focus")
    state.program.press_key("Tab")
    eventually(lambda: state.program.ask("focus") != first, "Tab moves the focus")
    state.leave()
    check_ends(state)


def test_keys_work_during_the_first_pass(desk):
    state = passing(desk, "")
    program = state.program
    first = program.ask("focus")
    program.press_key("Tab")
    eventually(lambda: program.ask("focus") != first, "Tab moves the focus")
    program.press_key("shift+Tab")
    eventually(lambda: program.ask("focus") == first, "Shift and Tab move it back")
    program.press_key("F5")
    program.press_key("alt+r")
    program.press_key("Escape")
    state.leave()
    check_ends(state)


HOLDS = {"start": starting, "source 1": lambda desk, points: held_at(desk, "source1"),
         "source 2": lambda desk, points: held_at(desk, "source2"),
         "source 3": lambda desk, points: held_at(desk, "source3"),
         "installer's source": slow_source, "WMI": lambda desk, points: held_at(desk, "wmi1"),
         "hand-over": handing_over, "box": box_on_main, "menu": menu_open, "idle": idle,
         "question": question_open, "installer": installer_running, "icon": icon_pass}


def held_at(desk, point):
    program = desk.start("hold@" + point)
    desk.reached()
    return State(desk, program, desk.go)


@pytest.mark.parametrize("name", HOLDS)
def test_closes_wherever_it_is(desk, name):
    for _ in range(CLOSES):
        state = HOLDS[name](desk, "")
        EVENTS["close"](state)
        state.leave()
        check_ends(state)


def test_closes_at_any_moment(desk):
    """Spread over the first half second. Where each close has hit is printed as a histogram."""
    trace = desk.drive_c / "trace.txt"
    hit = collections.Counter()
    for i in range(CLOSES):
        trace.unlink(missing_ok=True)
        program = desk.start("", TRACE="C:\\trace.txt")
        time.sleep(0.5 * (i * 61 % CLOSES) / CLOSES)
        program.ask("post", WM_CLOSE, 0, 0)
        reached = trace.read_text().split() if trace.exists() else []
        hit[reached[-1] if reached else "before the start"] += 1
        assert program.exit_code() == 0
    for point, times in sorted(hit.items()):
        print(f"close behind {point:12} {times:4} {'#' * times}")


def test_what_waits_to_be_drawn_is_known_from_outside(desk):
    """What pictures of the window stand on."""
    state = handing_over(desk, "")
    program = state.program
    desk.driver("invalidate", program.handle)
    assert not desk.driver("drawn", program.pid)
    state.leave()
    eventually(lambda: desk.driver("drawn", program.pid), "it has been drawn")
