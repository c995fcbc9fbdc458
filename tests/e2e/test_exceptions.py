"""What becomes of failures that nobody has foreseen, shown by a program that fails on purpose."""

import shutil

import pytest

from conftest import BINARIES, SCREENSHOTS
from support.program import Desk, eventually, wait_for_focus

ACCESS_VIOLATION = 0xC0000005
CPP_EXCEPTION = 0xE06D7363
FLOAT_DIVISION = 0xC000008E
SURVIVED = 7
EXIT_MINUS_1 = 0xFFFFFFFF

OK, CANCEL = 1, 2
WM_CLOSE, WM_COMMAND = 0x0010, 0x0111
SS_TYPEMASK, SS_ICON = 0x1F, 0x03
BOX_LIMIT = 30


class Box:
    def __init__(self, driver, handle, pid):
        self._driver = driver
        self.handle = handle
        self.pid = pid

    def controls(self):
        return self._driver("controls", self.handle)

    def buttons(self):
        return [control["text"] for control in self.controls() if control["class"] == "Button"]

    def text(self):
        return next(control["text"] for control in self.controls()
                    if control["class"] == "Static" and control["style"] & SS_TYPEMASK != SS_ICON)

    def press(self, button):
        self._driver("post", self.handle, WM_COMMAND, button, 0)
        self._driver("wait-gone", self.handle, BOX_LIMIT * 1000)


class Faults(Desk):
    """A desk for the program that fails."""

    def box(self, pid, title="Exception", but=()):
        known = {box.handle for box in but}

        def find():
            return next((window for window in self.windows_of(pid)
                         if window["title"] == title and window["handle"] not in known), None)

        return Box(self.driver, eventually(find, f"a box {title!r}", BOX_LIMIT)["handle"], pid)

    def exit_code(self, pid):
        return self.driver("wait-exit", pid, BOX_LIMIT * 1000) & 0xFFFFFFFF


@pytest.fixture(scope="module")
def faults_desk(make_desk):
    with make_desk() as desk:
        yield desk


@pytest.fixture
def bare(faults_desk):
    """The program as it is, with no module of texts."""
    desk = Faults(faults_desk.screen, faults_desk.prefix, faults_desk.driver,
                  BINARIES / "zolvane-faults.exe")
    yield desk
    desk.end_programs()


@pytest.fixture
def with_texts(faults_desk, tmp_path):
    """The program with the module beside it."""
    shutil.copy2(BINARIES / "zolvane-faults.exe", tmp_path)
    shutil.copy2(BINARIES / "orlocore/ORLOCORE.dll", tmp_path)
    desk = Faults(faults_desk.screen, faults_desk.prefix, faults_desk.driver,
                  tmp_path / "zolvane-faults.exe")
    yield desk
    desk.end_programs()


def test_a_null_read_in_a_worker_thread_ends_in_a_box(bare):
    pid = bare.start("null-in-worker")
    box = bare.box(pid)
    assert box.text() == "exception code: 0xC0000005"
    assert len(box.buttons()) == 1
    box.press(OK)
    assert bare.exit_code(pid) == ACCESS_VIOLATION


def test_a_null_read_is_told_in_the_words_of_the_text_module(with_texts):
    pid = with_texts.start("null-in-worker")
    box = with_texts.box(pid)
    assert (box.text(), box.buttons()) == ("core: read at null", ["Fine"])
    box.press(OK)
    assert with_texts.exit_code(pid) == ACCESS_VIOLATION


@pytest.mark.parametrize("texts", [False, True])
def test_a_cpp_exception_that_nobody_catches_ends_in_a_box(bare, with_texts, texts):
    desk = with_texts if texts else bare
    pid = desk.start("uncaught")
    box = desk.box(pid)
    assert box.text() == ("core: C++ exception" if texts else "exception code: 0xE06D7363")
    box.press(OK)
    assert desk.exit_code(pid) == CPP_EXCEPTION


def test_a_second_failure_during_the_box_is_told_as_one(bare):
    pid = bare.start("null-in-two-workers")
    second_text = ("An uncontinuable exception occured\n"
                   "while processing an previous exception!")
    first = bare.box(pid)
    second = bare.box(pid, but=[first])
    assert {first.text(), second.text()} == {"exception code: 0xC0000005", second_text}
    assert bare.driver("running", pid)


def test_a_failure_during_shut_down_ends_in_silence(bare):
    pid = bare.start("null-in-shutdown")
    shown = []

    def has_ended():
        shown.extend(bare.windows_of(pid))
        return not bare.driver("running", pid)

    eventually(has_ended, "the process ends")
    assert bare.exit_code(pid) == EXIT_MINUS_1
    assert shown == []


def test_out_of_memory_is_reported_and_ends_only_the_thread(bare):
    pid = bare.start("out-of-memory-in-worker")
    box = bare.box(pid)
    assert box.text().startswith("Ein Fehler trat auf während -NO-CONTEXT-:\n")
    assert "unknown error" not in box.text()
    box.press(OK)
    assert bare.exit_code(pid) == SURVIVED


@pytest.mark.parametrize("texts, text", [
    (False, "Ein Fehler trat auf während -NO-CONTEXT-:\nerror 0x42FF0001"),
    (True, "core: failed during <-NO-CONTEXT->:\nThe format has a conversion that nobody knows."),
])
def test_a_library_error_is_told_with_and_without_the_text_module(bare, with_texts, texts, text):
    desk = with_texts if texts else bare
    pid = desk.start("library-error-in-worker")
    box = desk.box(pid)
    assert box.text().replace("\r", "").rstrip("\n") == text
    box.press(OK)
    assert desk.exit_code(pid) == SURVIVED


def test_a_floating_point_exception_answered_with_ok_is_not_asked_again(with_texts):
    pid = with_texts.start("divide-by-zero")
    box = with_texts.box(pid)
    assert box.text() == "core: floating division by zero, go on?"
    assert box.buttons() == ["Fine", "&Leave"]
    box.press(OK)
    # It fails at the same place twice more.
    assert with_texts.exit_code(pid) == SURVIVED


def test_a_floating_point_exception_answered_with_cancel_ends_the_process(bare):
    pid = bare.start("divide-by-zero")
    box = bare.box(pid)
    assert box.text() == "exception code: 0xC000008E - Continue execution?"
    box.press(CANCEL)
    assert bare.exit_code(pid) == FLOAT_DIVISION


def test_the_librarys_box_obeys_the_keyboard(with_texts):
    pid = with_texts.start("ask")
    box = with_texts.box(pid, "Asking")
    assert box.text() == "Text & more"
    assert box.buttons() == ["&Yes, please", "&No, thanks", "&Leave", "&More"]
    wait_for_focus(with_texts.screen, "Asking")
    with_texts.screen.picture(SCREENSHOTS / "message_box.png")
    with_texts.screen.press_key("Return")
    assert with_texts.exit_code(pid) == 7, "the second button is the default one"


def test_the_librarys_box_with_ok_alone_does_not_obey_escape(with_texts):
    pid = with_texts.start("tell")
    box = with_texts.box(pid, "Telling")
    assert box.text() == "One line\nand another"
    wait_for_focus(with_texts.screen, "Telling")
    with_texts.screen.press_key("Escape")
    # Keys arrive in their order: Return ends what Escape has left open.
    with_texts.screen.press_key("Return")
    assert with_texts.exit_code(pid) == OK


def test_the_librarys_box_obeys_a_close_where_it_can_be_cancelled(with_texts):
    pid = with_texts.start("ask")
    box = with_texts.box(pid, "Asking")
    with_texts.driver("post", box.handle, WM_CLOSE, 0, 0)
    assert with_texts.exit_code(pid) == CANCEL
