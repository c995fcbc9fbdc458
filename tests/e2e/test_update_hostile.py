"""The check for a newer version among servers, texts, files and moments that are against it."""

import contextlib
import time
from functools import partial

import pytest

from conftest import BINARIES
from support import web_server
from support.descriptions import Description, Message
from support.exports import SaveDialog
from support.program import SEARCH, DriverError, Program, eventually, wait_for_focus
from support.registry import SZ
from support.updates import (CHECK_NOW, DESCRIPTION, LAST_CHECK, MARKER, OFFER_TITLES, OWN_KEY, SETUP,
                             SETUP_NAME, Updates)
from support.web_server import Gate, WebServer, head, page
from support.window import NO, OK, WM_CLOSE, WM_COMMAND, YES, Box

ABOUT, SWITCH_LANGUAGE, EXPORT, REFRESH_KEY = 16, 32, 1024, 1007
WM_QUIT, WM_QUERYENDSESSION, WM_ENDSESSION, WM_CANCELMODE = 0x12, 0x11, 0x16, 0x1F
OFFER = OFFER_TITLES["english"]
BINARY, DWORD, MULTI_SZ = 3, 4, 7

LONGEST_DESCRIPTION = 4 << 20
GOOD = Description(version="5.3", messages=[Message("It is read.")]).xml()


def endlessly(data):
    def send(connection):
        while connection.pause(0):
            connection.send(data)
    return send


CHUNKED = head(Transfer_Encoding="chunked")
STALLING = {
    "within the status line": [b"HTTP/1.1 20", web_server.silence],
    "within the headers": [b"HTTP/1.1 200 OK\r\nContent-Le", web_server.silence],
    "within the body": [head(Content_Length=10 ** 6), bytes(5000), web_server.silence],
    "a byte of the body a second": [head(Content_Length=10 ** 6), web_server.drip(bytes(1000))],
    "an endless header": [b"HTTP/1.1 200 OK\r\nX: ", endlessly(b"x" * 10000)],
    "endless chunks": [CHUNKED, endlessly(b"1000\r\n%b\r\n" % bytes(0x1000))],
    "a chunk that is never full": [CHUNKED, b"7FFFFFFF\r\n", web_server.silence],
}
ODD = {
    "length of letters": page(GOOD, length="many"),
    "length of many zeros": page(GOOD, length="0" * 100 + str(len(GOOD))),
    "length below zero": page(GOOD, length=-1),
    "length without digits": page(GOOD, length=""),
    "a chunk larger than any number": [CHUNKED, b"F" * 40 + b"\r\n" + GOOD],
    "a thousand answers to come": [b"HTTP/1.1 100 Continue\r\n\r\n" * 1000, *page(GOOD)],
    "no body": [b"HTTP/1.1 204 No Content\r\n\r\n"],
    "not modified": page(b"", "304 Not Modified"),
    "a status that is no number": [b"HTTP/99999999999.1 -5 \xff\xff\r\n\r\n", GOOD],
    "a password": page(b"", "401 Unauthorized", WWW_Authenticate='Basic realm="x"'),
    "a cookie of 60,000 characters": page(GOOD, Set_Cookie="a=" + "b" * 60000),
    "a place among the files": web_server.redirect_to("file:///c:/windows/win.ini"),
    "a place that is a script": web_server.redirect_to("javascript:alert(1)"),
    "a place of 100,000 characters": web_server.redirect_to("/" + "a" * 100000),
    "a place without a name": web_server.redirect_to(""),
}


def grown(start, filler, end=b""):
    """As long as a description may be at most."""
    count = (LONGEST_DESCRIPTION - len(start) - len(end)) // len(filler)
    return start + filler * count + end


ROOT = b"<XML_DIZ_INFO>"
DESCRIPTIONS = {
    "nested": grown(ROOT, b"<a>"),
    "nested paths": grown(ROOT, b"<Program_Info>"),
    "comments": grown(ROOT, b"<!--"),
    "brackets": grown(ROOT + b"<![CDATA[", b"]"),
    "entities": b'<!DOCTYPE x [<!ENTITY a0 "aaaaaaaaaa">' + b"".join(
        b'<!ENTITY a%d "%s">' % (i, b"&a%d;" % (i - 1) * 10) for i in range(1, 12))
        + b"]>" + ROOT + b"<Program_Info><Program_Version>&a11;</Program_Version></Program_Info>",
    "attributes": grown(b"<XML_DIZ_INFO ", b"a='1' ", b"/>"),
    "elements": grown(ROOT, b"<a/>", b"</XML_DIZ_INFO>"),
    "zeros": bytes(LONGEST_DESCRIPTION),
    "one byte too many": ROOT + bytes(LONGEST_DESCRIPTION),
}


@pytest.fixture(scope="module")
def module_updates(make_desk):
    with make_desk() as desk, contextlib.closing(WebServer()) as server:
        yield Updates(desk, BINARIES / "zolvane-near.exe", BINARIES, server)


@pytest.fixture
def updates(module_updates):
    yield module_updates
    module_updates.clear()


def nobody_is_left(updates):
    assert not [pid for pid in updates.driver("processes", "zolvane-near.exe")
                if updates.driver("running", pid)]


def answer_all(window):
    """The boxes of a check on demand, one after the other: their titles. Between a message and what
    follows it the window is enabled for a moment."""
    boxes = {}
    while list(boxes.values())[-1:] in ([], ["Message"]) or not window.program.window()["enabled"]:
        for shown in window.boxes():
            boxes[shown["handle"]] = shown["title"]
            box = Box(window.desk, shown["handle"])
            with contextlib.suppress(DriverError):
                answer = NO if YES in box.buttons else OK
                window.desk.driver("post", box.handle, WM_COMMAND, answer, 0)
        time.sleep(0.02)
    return list(boxes.values())


def check_now(window):
    window.post(CHECK_NOW)
    return answer_all(window)


# Servers.

@pytest.mark.parametrize("name", STALLING)
@pytest.mark.parametrize("path", [DESCRIPTION, SETUP])
def test_closing_ends_the_program_where_the_server_stalls(updates, path, name):
    updates.publish()
    updates.server.answers[path] = STALLING[name]
    window = updates.open("-nopersist")
    if path == SETUP:
        updates.offer(window).answer(YES)
    updates.server.wait_for_requests(path)
    time.sleep(0.2)
    before = updates.driver("memory", window.program.pid)
    time.sleep(0.2)
    assert updates.driver("memory", window.program.pid) - before < 4 << 20
    assert window.program.is_running()
    updates.check_closes(window)
    nobody_is_left(updates)
    assert updates.downloads() <= {SETUP_NAME}


def test_odd_answers_are_told_or_used_and_leave_nothing_behind(updates):
    window = updates.open("-noupdate")
    sizes = []
    for _ in range(2):
        for name, answer in ODD.items():
            updates.serve(answer)
            titles = check_now(window)
            assert titles in (["Message", OFFER], [OFFER], ["Exception"]), name
        sizes.append([updates.driver(word, window.program.pid)
                      for word in ("threads", "next-handle", "memory")])
    (threads, handles, memory), last = sizes[0], sizes[-1]
    assert last[0] <= threads + 1
    assert last[1] <= handles + 8
    assert last[2] < memory + (1 << 20)
    assert window.program.close() == 0
    nobody_is_left(updates)


@pytest.mark.parametrize("name", DESCRIPTIONS)
def test_a_description_as_long_as_may_be_is_read_or_refused(updates, name):
    updates.serve(page(DESCRIPTIONS[name]))
    window = updates.open("-nopersist")
    updates.server.wait_for_requests(DESCRIPTION)
    titles = check_now(window)
    assert titles == [OFFER]
    assert window.program.close() == 0
    nobody_is_left(updates)


# Other dialogs.

def held_offer(updates, **fields):
    """A check whose answer is held; the program, and what lets it go."""
    gate = Gate()
    description = Description(download=updates.server.address(SETUP), **fields)
    updates.serve([gate, *page(description.xml())])
    window = updates.open("-nopersist")
    gate.wait()
    return window, gate


def open_about(window):
    known = {box["handle"] for box in window.boxes()}
    window.post(ABOUT)
    (about,) = eventually(lambda: [box for box in window.boxes() if box["handle"] not in known],
                          "the about box")
    return about["handle"]


def close(updates, handle):
    updates.driver("post", handle, WM_CLOSE, 0, 0)
    updates.driver("wait-gone", handle, 20000)


def check_usable(updates, window):
    """Enabled, and the keys go where they went before."""
    window.wait_usable()
    window.program.activate()
    updates.desk.screen.type_text("abc")
    eventually(lambda: window.program.ask("text", SEARCH) == "abc", "the keys reach the search")
    assert window.program.close() == 0


def click_search(updates, window):
    """When the second of two threads' dialogs goes just after the first one, the window manager may
    not yet take the window for one that can have the focus, and leaves it with nobody."""
    window.wait_usable()
    left, top, right, bottom = window.program.control(SEARCH)["screen"]
    updates.desk.screen.click((left + right) // 2, (top + bottom) // 2)


@pytest.mark.parametrize("first_opened", ["offer", "about"])
@pytest.mark.parametrize("first_closed", ["offer", "about"])
def test_an_offer_and_a_dialog_of_the_window_may_close_in_any_order(updates, first_opened,
                                                                    first_closed):
    window, gate = held_offer(updates)
    about = open_about(window) if first_opened == "about" else None
    gate.open()
    offer = updates.offer(window)
    about = about or open_about(window)
    ends = [partial(offer.answer, NO), partial(close, updates, about)]
    for end in ends if first_closed == "offer" else reversed(ends):
        end()
    click_search(updates, window)
    check_usable(updates, window)


def test_an_offer_and_the_dialog_for_a_files_name_may_be_open_at_once(updates):
    window, gate = held_offer(updates)
    dialog = SaveDialog.of(window)
    gate.open()
    updates.offer(window).answer(NO)
    close(updates, dialog.handle)
    click_search(updates, window)
    check_usable(updates, window)


def test_an_offer_may_come_while_a_menu_is_open(updates):
    window, gate = held_offer(updates)
    window.program.press_key("alt+h")
    eventually(lambda: window.program.ask("in-menu"), "the menu is open")
    gate.open()
    offer = updates.offer(window)
    offer.answer(NO)
    if window.program.ask("in-menu"):
        window.program.ask("send", WM_CANCELMODE, 0, 0)
    eventually(lambda: not window.program.ask("in-menu"), "the menu is closed")
    check_usable(updates, window)


@pytest.mark.parametrize("key", ["Escape", "Return"])
def test_keys_answer_the_boxes(updates, key):
    updates.publish(messages=[Message("read")])
    updates.server.answers[SETUP] = [web_server.reset]
    window = updates.open("-nopersist")
    updates.message(window).press_key(key)
    updates.offer(window)
    wait_for_focus(updates.desk.screen, OFFER)
    updates.desk.screen.press_key(key)
    eventually(lambda: window.boxes() == [], "the offer is gone")
    if key == "Escape":
        assert updates.server.asked_for(SETUP) == []
        check_usable(updates, window)
    else:
        updates.server.wait_for_requests(SETUP)
        updates.check_closes(window)


@pytest.mark.parametrize("texts", [{"name": "%s%n%n%1000000d"}, {"version": "6" + ".6" * 5000},
                                   {"author": ("%n" * 500, "\x7f")}, {"date": (99999, 99, 99)}],
                         ids=["format", "version", "author", "date"])
def test_hostile_texts_are_shown_as_they_are(updates, texts):
    updates.publish(messages=[Message("%n%s&amp;" * 1000)], **texts)
    window = updates.open("-nopersist")
    message = updates.message(window)
    assert message.text == "%n%s&amp;" * 1000
    message.answer(OK)
    offer = updates.offer(window)
    for value in texts.values():
        if isinstance(value, str):
            assert value in offer.text
    updates.check_closes(window)


# Ends.

def begin(updates, moment):
    """A program with its check at this moment."""
    gate = Gate()
    updates.publish(messages=[Message("read")] if moment == "message" else ())
    if moment == "fetch":
        updates.serve([gate])
    if moment == "download":
        updates.serve_setup(gate=gate)
    window = updates.open("-nopersist")
    if moment == "message":
        updates.message(window)
    elif moment != "fetch":
        offer = updates.offer(window)
        if moment == "download":
            offer.answer(YES)
    if moment in ("fetch", "download"):
        gate.wait()
    return window


MOMENTS = ["fetch", "message", "offer", "download"]


@pytest.mark.parametrize("moment", MOMENTS)
def test_the_end_of_its_thread_ends_the_program_at_any_moment(updates, moment):
    window = begin(updates, moment)
    window.program.ask("post-thread", WM_QUIT)
    assert window.program.exit_code(5) == 0
    nobody_is_left(updates)


@pytest.mark.parametrize("moment", MOMENTS[:3])
def test_the_end_of_the_session_is_not_refused(updates, moment):
    window = begin(updates, moment)
    for handle in [window.program.handle, *(box["handle"] for box in window.boxes())]:
        assert updates.driver("send", handle, WM_QUERYENDSESSION, 0, 0) == 1
        updates.driver("send", handle, WM_ENDSESSION, 1, 0)
    updates.check_closes(window)


@pytest.mark.parametrize("moment", MOMENTS[:3])
def test_the_language_can_be_switched_at_any_moment(updates, moment):
    window = begin(updates, moment)
    window.post(SWITCH_LANGUAGE)
    assert window.program.exit_code(5) == 0
    (other,) = eventually(lambda: [pid for pid in updates.driver("processes", "zolvane-near.exe")
                                   if pid != window.program.pid], "the other program")
    program = Program(updates.driver, updates.desk.screen, other)
    program.ask("post", WM_CLOSE, 0, 0)
    assert program.exit_code(5) == 0
    nobody_is_left(updates)


def test_two_programs_may_check_at_once(updates):
    first, gate = held_offer(updates)
    second = updates.open("-nopersist")
    updates.server.wait_for_requests(DESCRIPTION, 2)
    gate.open()
    for window in (first, second):
        updates.offer(window).answer(NO)
    for window in (first, second):
        assert window.program.close() == 0


def test_a_check_on_demand_beside_the_one_in_the_background_is_one_of_its_own(updates):
    window, gate = held_offer(updates)
    updates.serve(page(GOOD))
    assert check_now(window) == ["Message", OFFER]
    gate.open()
    updates.offer(window).answer(NO)
    assert window.program.close() == 0


def test_a_check_on_demand_during_a_refresh_does_no_harm(updates):
    updates.publish(version="5.3")
    window = updates.open("-noupdate")
    for _ in range(5):
        window.post(REFRESH_KEY)
        assert check_now(window) == [OFFER]
    assert window.program.close() == 0


# Addresses, files and the registry.

NAMES = ["..\\x.exe", "..%5Cx.exe", "C:x.exe", "NUL.exe", "con", "x.exe:stream", "a" * 240 + ".exe",
         "", "setup.exe?b", "?a/../x.exe", "trailing.", "trailing ", "*", "<>|", "\x01.exe"]
WHOLE_ADDRESSES = ["ftp://127.0.0.1:1/x.exe", "file:///c:/windows/notepad.exe",
                   "javascript:alert(1)/x.exe", "http://127.0.0.1:1/" + "a" * 10000,
                   "C:\\windows\\notepad.exe", "\\\\127.0.0.1\\x\\y.exe", "http://", "/", " ",
                   "http://[::1/x.exe", "http://127.0.0.1:99999/x.exe"]


def drive_files(updates):
    """The sizes of all files but the temporary ones, those that the program keeps, and the HTTP
    client's own copies."""
    drive = updates.desk.prefix.folder / "drive_c"
    return {file: file.stat().st_size for file in drive.rglob("*")
            if file.is_file() and not file.is_relative_to(updates.temporary_files)
            and not {"INetCache", "Quillmere"} & set(file.parts)}


def settled(window):
    """Whether a check on demand has come to its end, or to a box."""
    try:
        boxes = [box["title"] for box in window.boxes()]
        return "Exception" in boxes or (boxes == [] and window.program.window()["enabled"]
                                        and window.program.ask("ping", 1, 5000))
    except DriverError:
        return not window.program.is_running()


def test_no_address_of_a_setup_writes_or_starts_anything_elsewhere(updates):
    before = drive_files(updates)
    window = updates.open("-noupdate")
    addresses = [updates.server.address("/" + name) for name in NAMES] + WHOLE_ADDRESSES
    for address in addresses:
        updates.publish(download=address)
        window.post(CHECK_NOW)
        (box,) = eventually(window.boxes, address)
        if box["title"] != OFFER:
            answer_all(window)
            continue
        updates.offer(window).answer(YES)
        eventually(lambda: settled(window), address)
        if not window.program.is_running():
            window = updates.open("-noupdate")
        elif window.boxes():
            answer_all(window)
    assert drive_files(updates) == before
    assert window.program.close() == 0


def download_now(updates, window):
    """Yes to what a check on demand offers; until the window can be used again."""
    updates.publish()
    window.post(CHECK_NOW)
    updates.offer(window).answer(YES)
    eventually(lambda: settled(window), "the download has ended")
    if window.program.is_running() and window.boxes():
        return answer_all(window)
    return []


@pytest.mark.parametrize("folder", ["C:\\nowhere", "C:\\windows\\notepad.exe", "Q:\\",
                                    "C:\\" + "long\\" * 60],
                         ids=["missing", "a file", "no drive", "long"])
def test_without_a_folder_for_temporary_files_nothing_is_started(updates, folder):
    updates.serve_setup()
    updates.driver("set-env", "TMP", folder)
    updates.driver("set-env", "TEMP", folder)
    try:
        window = updates.open("-noupdate")
        before = drive_files(updates)
        assert download_now(updates, window) == []
        window.wait_usable()
        assert drive_files(updates) == before
        assert window.program.close() == 0
    finally:
        for name in ("TMP", "TEMP"):
            updates.driver("set-env", name, updates.temporary.rstrip("\\"))
    assert updates.downloads() == set()


def test_a_folder_of_the_setups_name_stays_and_nothing_is_started(updates):
    (updates.temporary_files / SETUP_NAME).mkdir()
    updates.serve_setup()
    window = updates.open("-noupdate")
    download_now(updates, window)
    assert list((updates.temporary_files / SETUP_NAME).iterdir()) == []
    updates.desk.end_programs()


@pytest.mark.parametrize("held", [SETUP_NAME, MARKER])
def test_a_file_that_somebody_holds_is_left_as_it_is(updates, held):
    (updates.temporary_files / held).write_bytes(b"held")
    path = updates.temporary + held
    body = updates.serve_setup()
    updates.driver("hold-file", path)
    try:
        window = updates.open("-noupdate")
        download_now(updates, window)
        assert (updates.temporary_files / held).read_bytes() == b"held"
        if held == SETUP_NAME:
            window.wait_usable()
            assert window.program.close() == 0
        else:
            updates.handed_over()
            assert (updates.temporary_files / SETUP_NAME).read_bytes() == body
    finally:
        updates.driver("let-file-go", path)


VALUES = {"a number": (DWORD, b"\1\0\0\0"), "bytes": (BINARY, bytes(range(256))),
          "texts": (MULTI_SZ, b"a\0b\0\0"), "nothing": (SZ, b""), "no end": (SZ, b"x" * 1000),
          "a megabyte": (SZ, b"x" * (1 << 20))}


def test_what_stands_in_the_days_place_does_not_keep_it_from_checking(updates):
    for count, (kind, data) in enumerate(VALUES.values(), 1):
        updates.driver("reg-create", "HKCU", 64, OWN_KEY)
        updates.driver("reg-set", "HKCU", 64, OWN_KEY, LAST_CHECK, kind, data)
        updates.publish(version="5.3")
        window = updates.open()
        updates.server.wait_for_requests(DESCRIPTION, count)
        assert updates.last_check() == {"type": SZ, "data": f"{updates.today()}\0"}
        assert window.program.close() == 0
