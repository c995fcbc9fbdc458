"""The check for a newer version, its boxes, and the download, on the real program and a server."""

import contextlib
import time

import pytest

from conftest import BINARIES, SCREENSHOTS
from support import handlers, web_server
from support.descriptions import Description, Message
from support.installers import Installer
from support.program import DriverError, eventually
from support.registry import EXPAND_SZ, SZ
from support.updates import (BAR, CHECK_NOW, DESCRIPTION, MARKER, MESSAGE_TITLES, OFFER_TITLES,
                             SETUP, SETUP_NAME, SHOW_DESCRIPTION, Updates)
from support.web_server import Gate, WebServer, page
from support.window import NO, OK, YES

ISO_DATE = "%Y-%m-%d"
INTERNATIONAL = "Control Panel\\International"

HEADLINES = {
    "english": 'There is available a new program version 5.4 (01/12/2026) of "Zolvane" from '
               'Ada Quill',
    "german": 'Eine neue Progamm-Version  5.4 (01/12/2026) des "Zolvane" von Ada Quill ist '
              'verf\u00fcgbar.'}
ASKS_TO_RUN = {"english": '\n\nDo you want to run the setup from "%s"?',
               "german": '\n\nM\u00f6chten Sie das Setup von "%s" einspielen?'}
ASKS_TO_LOOK = {
    "english": '\n\nDo you want to open the web page "" to download the new version?',
    "german": '\n\nM\u00f6chten Sie die Web-Seite "" \u00f6ffnen, um die neue Version '
              'herunterzuladen?'}
STATUSES = {
    "english": "Active version: 5.3\n\nThe newest version of Zolvane is %s (01/12/2026)",
    "german": "derzeit aktive Version: 5.3\n\nDer neueste Zolvane ist die Version %s vom "
              "01/12/2026."}
NOT_NEEDED = {"english": "\n\nNo update is needed.",
              "german": "\n\nEs ist keine Aktualisierung erforderlich."}
FAILURES = {"english": "The check for the current version using the internet failed.",
            "german": "Die aktuelle Version konnte nicht aus dem Internet ermittelt werden."}

GOOD = Description(version="5.3", messages=[Message("It is read.")]).xml()
# What can't be used, told as such or as what has failed: systems differ in where they give up.
BROKEN = {
    "reset before headers": [web_server.reset],
    "reset within headers": [b"HTTP/1.1 200 OK\r\nContent-Le", web_server.reset],
    "reset within body": [*page(GOOD[:100], length=len(GOOD)), web_server.reset],
    "end before headers": [],
    "end within headers": [b"HTTP/1.1 200 OK\r\nContent-Le"],
    "no HTTP": [b"SSH-2.0-server\r\n"],
    "redirect to itself": web_server.redirect_to(DESCRIPTION),
}
UNUSABLE = {
    "short": page(GOOD, length=len(GOOD) + 1),
    "404": web_server.NOT_FOUND,
    "407": web_server.ASKS_FOR_PASSWORD,
    "packed": web_server.page_packed(GOOD),
    "empty": page(b""),
    "another root": page(b"<XML_DIZ/>"),
}
USABLE = {
    "no length": web_server.page_without_length(GOOD),
    "without its end": page(GOOD[:-20]),
    "500": page(GOOD, "500 Internal Server Error"),
    "length too large for any number": page(GOOD, length=10 ** 30),
}
STALLING = {
    "never an answer": [web_server.silence],
    "never a body": [web_server.head(Content_Length=1000), web_server.silence],
    "a byte a second": [web_server.drip(page(GOOD)[0])],
    "endless": [web_server.head(), web_server.endless],
}


@pytest.fixture(scope="module")
def module_updates(make_desk):
    with make_desk() as desk, contextlib.closing(WebServer()) as server:
        yield Updates(desk, BINARIES / "zolvane-near.exe", BINARIES, server)


@pytest.fixture
def updates(module_updates):
    yield module_updates
    module_updates.clear()


languages = pytest.mark.parametrize("language", ["english", "german"])


# Once a day.

@pytest.mark.parametrize("way", ["directly", "by a proxy"])
def test_the_first_start_of_a_day_asks_once_and_says_who_asks(updates, way):
    if way == "by a proxy":
        updates.be_at(f"http://updates.example.org{DESCRIPTION}")
        updates.server.be_proxy(updates.desk)
    updates.publish(version="5.3", messages=[Message("read")])
    window = updates.open()
    updates.message(window).answer(OK)
    updates.check_silent(window)
    (request,) = updates.server.requests
    # A proxy is told the port, too.
    assert (request.method, request.target) == (
        "GET", DESCRIPTION if way == "directly" else f"http://updates.example.org:80{DESCRIPTION}")
    assert request.headers["user-agent"] == "zolvane 5.3"
    assert request.headers["referer"] == f"zolvane 5.3 update check {updates.system_id()}"
    assert request.headers["pragma"] == "no-cache"
    assert window.program.close() == 0


def test_the_day_of_the_check_is_noted_as_this_user_writes_dates(updates):
    updates.publish(version="5.3")
    assert updates.last_check() is None
    before = updates.today()
    window = updates.open()
    updates.server.wait_for_requests(DESCRIPTION)
    assert updates.last_check() in [{"type": SZ, "data": f"{day}\0"}
                                    for day in (before, updates.today())]
    assert window.program.close() == 0


def test_the_day_is_noted_even_if_the_check_fails(updates):
    with web_server.refusing_port() as port:
        updates.be_at(f"http://127.0.0.1:{port}{DESCRIPTION}")
        window = updates.open()
        eventually(updates.last_check, "the day is noted")
        updates.check_silent(window)
        assert window.program.close() == 0
    assert updates.last_check()["data"] == f"{updates.today()}\0"


def test_the_second_start_of_a_day_asks_nothing_and_writes_the_day_again(updates):
    updates.publish()
    first = updates.open()
    updates.offer(first).answer(NO)
    assert first.program.close() == 0
    # Of another type, so that its being written again shows.
    updates.set_last_check(updates.today(), EXPAND_SZ)
    second = updates.open()
    eventually(lambda: updates.last_check()["type"] == SZ, "the day is written again")
    updates.check_silent(second)
    assert len(updates.server.requests) == 1
    assert second.program.close() == 0


def test_the_first_start_of_the_next_day_asks_again(updates):
    updates.publish()
    updates.set_last_check("21/11/1999")
    window = updates.open()
    updates.offer(window).answer(NO)
    assert updates.last_check()["data"] == f"{updates.today()}\0"
    assert window.program.close() == 0


def test_another_format_of_dates_brings_one_more_check(updates):
    updates.publish()
    updates.set_last_check(updates.today())
    former = updates.driver("reg-get", "HKCU", 64, INTERNATIONAL, "sShortDate")["data"]

    def write_dates_as(picture):
        updates.driver("reg-set", "HKCU", 64, INTERNATIONAL, "sShortDate", SZ,
                       picture.rstrip("\0").encode() + b"\0")

    write_dates_as("yyyy-MM-dd")
    try:
        window = updates.open()
        box = updates.offer(window)
        assert "5.4 (2026-12-01)" in box.text
        box.answer(NO)
        assert updates.last_check()["data"] == f"{updates.today(ISO_DATE)}\0"
        assert window.program.close() == 0
    finally:
        write_dates_as(former)
    assert len(updates.server.requests) == 1


def test_a_run_that_keeps_nothing_always_asks_and_notes_no_day(updates):
    updates.publish()
    for count, noted in enumerate((None, {"type": EXPAND_SZ, "data": f"{updates.today()}\0"}), 1):
        if noted:
            updates.set_last_check(updates.today(), EXPAND_SZ)
        window = updates.open("-nopersist")
        updates.offer(window).answer(NO)
        assert window.program.close() == 0
        assert len(updates.server.requests) == count
        assert updates.last_check() == noted


@pytest.mark.parametrize("switches", [["-noupdate"], ["-noupdate", "-nopersist"]],
                         ids=["alone", "with nopersist"])
def test_a_run_that_must_not_check_asks_nothing_and_notes_nothing(updates, switches):
    updates.publish()
    window = updates.open(*switches)
    updates.check_silent(window)
    assert window.program.close() == 0
    assert updates.server.requests == []
    assert updates.last_check() is None


# Messages and the offer.

@languages
def test_a_message_comes_first_and_then_the_offer(updates, language):
    updates.publish(messages=[Message("Mind the gap.\nAnd the step.")])
    window = updates.open(language=language)
    message = updates.message(window)
    assert message.text == "Mind the gap.\nAnd the step."
    assert message.buttons == [OK]
    assert updates.driver("window", message.handle)["owner"] == window.program.handle
    assert len(window.boxes()) == 1
    window.program.picture(SCREENSHOTS / f"{language}-update-message.png")
    message.answer(OK)
    offer = updates.offer(window)
    address = updates.server.address(SETUP)
    assert offer.text == HEADLINES[language] + ASKS_TO_RUN[language] % address
    assert offer.buttons == [YES, NO]
    assert updates.driver("window", offer.handle)["owner"] == window.program.handle
    window.program.picture(SCREENSHOTS / f"{language}-update-offer.png")
    offer.answer(NO)
    assert window.program.close() == 0


def test_messages_go_to_the_version_and_the_system_that_they_name(updates):
    system = updates.system_id()
    updates.publish(version="5.3", messages=[
        Message("all"), Message("5.3", "5.3"), Message("no: 5.30", "5.30"), Message("no: 5", "5"),
        Message("this system", system=system), Message("no: another build", system=system + "1"),
        Message("both", "5.3", system), Message("no: one of both", "5.2", system),
        Message("empty", "", "")])
    window = updates.open()
    message = updates.message(window)
    assert message.text == "all\n\n5.3\n\nthis system\n\nboth\n\nempty"
    message.answer(OK)
    updates.check_silent(window)
    assert window.program.close() == 0


@pytest.mark.parametrize("version", ["5.10", "5.3.1"])
def test_a_greater_number_is_newer(updates, version):
    updates.publish(version=version)
    window = updates.open()
    offer = updates.offer(window)
    assert f" {version} (01/12/2026)" in offer.text
    offer.answer(NO)
    assert window.program.close() == 0


@pytest.mark.parametrize("version", ["5.3", "5.2.9", ""])
def test_the_same_an_older_and_no_version_are_not_offered(updates, version):
    updates.publish(version=version, messages=[Message("read")])
    window = updates.open()
    updates.message(window).answer(OK)
    updates.check_silent(window)
    assert window.program.close() == 0


def test_no_leaves_all_as_it_is(updates):
    updates.publish()
    window = updates.open()
    updates.offer(window).answer(NO)
    window.wait_usable()
    updates.check_silent(window)
    assert len(updates.server.requests) == 1
    assert updates.downloads() == set()
    assert window.program.close() == 0
    assert updates.settings.exists()


@languages
def test_without_an_address_the_question_names_an_empty_page(updates, language):
    updates.publish(download="")
    window = updates.open(language=language)
    offer = updates.offer(window)
    assert offer.text == HEADLINES[language] + ASKS_TO_LOOK[language]
    assert offer.buttons == [YES, NO]
    offer.answer(NO)
    updates.check_silent(window)
    assert window.program.close() == 0


# The download.

def filled_part(updates, dialog):
    """How much of the bar is filled, from 0 to 1, as it is seen."""
    left, top, right, bottom = updates.place(dialog, BAR)
    row = updates.desk.screen.picture().row((top + bottom) // 2, left + 3, right - 3)
    empty = row[-1]
    return max((x for x, colour in enumerate(row, 1) if colour != empty), default=0) / len(row)


def check_handed_over(updates, window, body):
    assert window.program.exit_code() == 0
    path = updates.temporary + SETUP_NAME
    assert updates.handed_over() == [f'"{path}"']
    assert updates.marker() == f"{path}\n".encode("cp1252")
    assert (updates.temporary_files / SETUP_NAME).read_bytes() == body


@languages
def test_yes_downloads_with_a_bar_that_moves_and_hands_over_to_the_setup(updates, language):
    gate = Gate()
    updates.publish()
    body = updates.serve_setup(filler=1 << 20, gate=gate)
    window = updates.open(language=language)
    updates.offer(window).answer(YES)
    dialog = updates.dialog(window)
    gate.wait()
    eventually(lambda: 0.4 < filled_part(updates, dialog) < 0.6,
               lambda: f"the bar is in its middle, not at {filled_part(updates, dialog)}")
    assert not window.program.window()["visible"]
    assert updates.driver("window", dialog)["owner"] == window.program.handle
    updates.desk.screen.picture(SCREENSHOTS / f"{language}-update-download.png")
    gate.open()
    check_handed_over(updates, window, body)
    (request,) = updates.server.asked_for(SETUP)
    assert request.headers["user-agent"] == "zolvane 5.3"
    assert request.headers["referer"] == "zolvane 5.3 download"
    # The settings are written by an end of any other kind.
    assert not updates.settings.exists()


def test_without_a_length_the_bar_stays_and_the_download_counts(updates):
    gate = Gate()
    updates.publish()
    body = updates.serve_setup(filler=1 << 20)
    updates.server.answers[SETUP] = [web_server.head(), body[:600000], gate, body[600000:]]
    window = updates.open()
    updates.offer(window).answer(YES)
    dialog = updates.dialog(window)
    gate.wait()
    assert filled_part(updates, dialog) == 0
    gate.open()
    check_handed_over(updates, window, body)


def test_a_short_download_leaves_the_window_hidden_and_a_part_of_the_file(updates):
    updates.publish()
    updates.server.answers[SETUP] = page(b"MZ and no more", length=100)
    window = updates.open()
    updates.offer(window).answer(YES)
    updates.server.wait_for_requests(SETUP)
    dialog_gone(updates, window)
    assert not window.program.window()["visible"]
    assert window.program.is_running()
    assert updates.downloads() == {SETUP_NAME}
    assert (updates.temporary_files / SETUP_NAME).read_bytes() == b"MZ and no more"
    updates.check_closes(window)


def dialog_gone(updates, window):
    """Waits until the program shows nothing at all."""
    eventually(lambda: updates.desk.windows_of(window.program.pid) == [], "nothing is shown")


def test_a_download_that_breaks_off_leaves_the_window_hidden(updates):
    updates.publish()
    updates.server.answers[SETUP] = [*page(b"MZ", length=5000), web_server.reset]
    window = updates.open()
    updates.offer(window).answer(YES)
    updates.server.wait_for_requests(SETUP)
    dialog_gone(updates, window)
    assert window.program.is_running()
    assert MARKER not in updates.downloads()
    updates.check_closes(window)


def test_a_download_that_never_begins_leaves_the_window_hidden(updates):
    updates.publish()
    updates.server.answers[SETUP] = [web_server.reset]
    window = updates.open()
    updates.offer(window).answer(YES)
    updates.server.wait_for_requests(SETUP)
    dialog_gone(updates, window)
    assert window.program.is_running()
    # Some systems take it for an empty page at times. Then there is a marker, and still no setup.
    assert updates.downloads() <= {SETUP_NAME, MARKER}
    updates.check_closes(window)


def test_a_name_that_is_no_file_name_writes_nothing(updates):
    updates.publish(download=updates.server.address("/a:b.exe"))
    updates.server.answers["/a:b.exe"] = page(b"MZ")
    window = updates.open()
    updates.offer(window).answer(YES)
    updates.server.wait_for_requests("/a:b.exe")
    dialog_gone(updates, window)
    assert updates.downloads() == set()
    updates.check_closes(window)


def test_an_address_that_ends_in_a_slash_writes_no_setup(updates):
    updates.publish(download=updates.server.address("/downloads/"))
    updates.server.answers["/downloads/"] = page(b"MZ")
    window = updates.open()
    updates.offer(window).answer(YES)
    updates.server.wait_for_requests("/downloads/")
    # What the shell is asked for is the folder itself.
    eventually(lambda: updates.downloads() == {MARKER}, "the marker is there")
    eventually(lambda: updates.marker() == f"{updates.temporary}\n".encode("cp1252"),
               lambda: f"it names the folder: {updates.marker()}")


def test_a_setup_that_is_no_program_leaves_the_marker_and_the_window_hidden(updates):
    updates.publish()
    window = updates.open()
    updates.offer(window).answer(YES)
    eventually(lambda: MARKER in updates.downloads(), "the marker is there")
    assert window.program.is_running()
    assert not window.program.window()["visible"]
    assert (updates.temporary_files / SETUP_NAME).read_bytes() == web_server.NOT_FOUND[1]
    updates.check_closes(window)


def test_a_setup_and_a_marker_of_an_earlier_download_are_replaced(updates):
    for name in (SETUP_NAME, MARKER):
        (updates.temporary_files / name).write_bytes(b"old" * 100000)
    updates.publish()
    body = updates.serve_setup()
    window = updates.open()
    updates.offer(window).answer(YES)
    check_handed_over(updates, window, body)


# On demand.

def check_now(window, title):
    window.post(CHECK_NOW)
    return window.box(title)


@languages
def test_on_demand_it_tells_that_no_update_is_needed(updates, language):
    updates.publish(version="5.3")
    window = updates.open("-noupdate", language=language)
    box = check_now(window, OFFER_TITLES[language])
    assert box.text == STATUSES[language] % "5.3" + NOT_NEEDED[language]
    assert box.buttons == [OK]
    assert not window.program.window()["enabled"]
    window.program.picture(SCREENSHOTS / f"{language}-update-none.png")
    box.answer(OK)
    window.wait_usable()
    (request,) = updates.server.requests
    assert request.headers["user-agent"] == "zolvane 5.3"
    assert request.headers["referer"] == "zolvane 5.3 update check "
    assert request.headers["pragma"] == "no-cache"
    assert updates.last_check() is None
    assert window.program.close() == 0


@languages
def test_on_demand_it_offers_what_is_newer_and_no_leaves_all_as_it_is(updates, language):
    updates.publish(messages=[Message("first")])
    window = updates.open("-noupdate", language=language)
    window.post(CHECK_NOW)
    message = updates.message(window)
    assert message.text == "first"
    message.answer(OK)
    offer = updates.offer(window)
    address = updates.server.address(SETUP)
    assert offer.text == STATUSES[language] % "5.4" + ASKS_TO_RUN[language] % address
    assert offer.buttons == [YES, NO]
    window.program.picture(SCREENSHOTS / f"{language}-update-on-demand.png")
    offer.answer(NO)
    window.wait_usable()
    updates.check_silent(window)
    assert updates.downloads() == set()
    assert window.program.close() == 0


def test_on_demand_yes_downloads_and_hands_over(updates):
    gate = Gate()
    updates.publish()
    body = updates.serve_setup(filler=1 << 20, gate=gate)
    window = updates.open("-noupdate")
    check_now(window, OFFER_TITLES["english"]).answer(YES)
    dialog = updates.dialog(window)
    gate.wait()
    eventually(lambda: 0.4 < filled_part(updates, dialog) < 0.6, "the bar is in its middle")
    gate.open()
    check_handed_over(updates, window, body)


def told_on_demand(updates, window, name):
    """Which box tells of the failure, and its text."""
    window.post(CHECK_NOW)
    (shown,) = eventually(window.boxes, f"a box for: {name}")
    box = window.box(shown["title"])
    assert box.buttons == [OK], name
    text = box.text
    box.answer(OK)
    window.wait_usable()
    return shown["title"], text


def says_what_failed(text, address):
    return "looking for a new version" in text and address in text


def test_on_demand_each_failure_is_told_and_the_program_goes_on(updates):
    window = updates.open("-noupdate")
    unusable = (OFFER_TITLES["english"], FAILURES["english"])
    for name, answer in UNUSABLE.items():
        updates.serve(answer)
        assert told_on_demand(updates, window, name) == unusable, name
    for name, answer in BROKEN.items():
        updates.serve(answer)
        title, text = told_on_demand(updates, window, name)
        if title == "Exception":
            assert says_what_failed(text, updates.server.address(DESCRIPTION)), (name, text)
        else:
            assert (title, text) == unusable, name
    assert window.program.close() == 0


def test_on_demand_what_is_odd_but_whole_is_used(updates):
    window = updates.open("-noupdate")
    for name, answer in USABLE.items():
        updates.serve(answer)
        window.post(CHECK_NOW)
        (box,) = eventually(window.boxes, f"a box for: {name}")
        assert box["title"] == MESSAGE_TITLES["english"], (name, window.box(box["title"]).text)
        message = updates.message(window)
        assert message.text == "It is read.", name
        message.answer(OK)
        updates.offer(window).answer(OK)
        window.wait_usable()
    assert window.program.close() == 0


@languages
def test_on_demand_a_description_that_is_none_is_told(updates, language):
    updates.serve(page(b"<html>Nothing here</html>"))
    window = updates.open("-noupdate", language=language)
    box = check_now(window, OFFER_TITLES[language])
    assert box.text == FAILURES[language]
    assert box.buttons == [OK]
    window.program.picture(SCREENSHOTS / f"{language}-update-failed.png")
    box.answer(OK)
    window.wait_usable()
    assert window.program.close() == 0


@pytest.mark.parametrize("host", ["127.0.0.1:%d", "nobody.invalid"],
                         ids=["refused", "not resolved"])
def test_on_demand_a_server_that_is_not_reached_is_told(updates, host):
    with web_server.refusing_port() as port:
        address = f"http://{host}{DESCRIPTION}".replace("%d", str(port))
        updates.be_at(address)
        window = updates.open("-noupdate")
        box = check_now(window, "Exception")
        assert says_what_failed(box.text, address), box.text
        window.program.picture(SCREENSHOTS / f"english-update-{host[:3]}.png")
        box.answer(OK)
    window.wait_usable()
    updates.check_silent(window)
    assert window.program.close() == 0


def test_the_descriptions_page_is_opened(updates):
    browser = Installer(updates.desk, BINARIES, "C:\\Setups\\browser.exe")
    updates.desk.prefix.import_registry(handlers.reg_text(
        handlers.scheme("http", browser.path)))
    window = updates.open("-noupdate")
    window.program.ask("command", SHOW_DESCRIPTION)
    browser.wait_for_starts(f'"{updates.server.address(DESCRIPTION)}"')
    assert window.boxes() == []
    assert window.program.close() == 0
    browser.end_all()


# What servers do wrong.

@pytest.mark.parametrize("name", ["reset within body", "short", "404"])
def test_in_the_background_what_can_not_be_used_is_passed_over(updates, name):
    updates.serve({**BROKEN, **UNUSABLE}[name])
    window = updates.open("-nopersist")
    updates.server.wait_for_requests(DESCRIPTION)
    updates.check_silent(window)
    assert window.program.close() == 0


def test_a_redirect_is_followed(updates):
    updates.server.answers["/moved.xml"] = page(GOOD)
    updates.serve(web_server.redirect_to("/moved.xml"))
    window = updates.open("-nopersist")
    updates.message(window).answer(OK)
    assert window.program.close() == 0


@pytest.mark.parametrize("address", ["http://nobody.invalid/x.xml", "no address at all", ""])
def test_an_address_that_nobody_answers_at_is_passed_over(updates, address):
    updates.be_at(address)
    window = updates.open()
    eventually(updates.last_check, "the check begins")
    updates.check_silent(window)
    assert window.program.close() == 0


# Closing meanwhile.

@pytest.mark.parametrize("name", STALLING)
def test_closing_ends_the_program_whatever_the_server_does(updates, name):
    updates.serve(STALLING[name])
    window = updates.open("-nopersist")
    updates.server.wait_for_requests(DESCRIPTION)
    window.wait_usable()
    updates.check_closes(window)


def test_closing_while_a_message_is_shown_ends_the_program(updates):
    updates.publish(messages=[Message("read")])
    window = updates.open()
    updates.message(window)
    updates.check_closes(window)


@pytest.mark.parametrize("fields", [{}, {"download": ""}], ids=["setup", "page"])
def test_closing_while_the_offer_is_shown_ends_the_program_and_downloads_nothing(updates, fields):
    updates.publish(**fields)
    window = updates.open()
    updates.offer(window)
    updates.check_closes(window)
    assert updates.downloads() == set()
    assert updates.server.asked_for(SETUP) == []


def test_closing_during_the_download_ends_the_program_and_starts_no_setup(updates):
    gate = Gate()
    updates.publish()
    updates.serve_setup(gate=gate)
    window = updates.open()
    updates.offer(window).answer(YES)
    updates.dialog(window)
    gate.wait()
    updates.check_closes(window)
    gate.open()
    assert updates.downloads() <= {SETUP_NAME}


@pytest.mark.parametrize("box", ["message", "offer"])
def test_closing_while_a_box_on_demand_is_shown_ends_the_program(updates, box):
    updates.publish(messages=[Message("read")])
    window = updates.open("-noupdate")
    window.post(CHECK_NOW)
    message = updates.message(window)
    if box == "offer":
        message.answer(OK)
        updates.offer(window)
    updates.check_closes(window)
    assert updates.server.asked_for(SETUP) == []


def test_closing_while_the_check_on_demand_waits_ends_it_after_the_answer(updates):
    gate = Gate()
    updates.serve([gate, *page(GOOD)])
    window = updates.open("-noupdate")
    window.post(CHECK_NOW)
    gate.wait()
    with contextlib.suppress(DriverError):
        window.program.ask("post", 0x10, 0, 0)
    time.sleep(0.2)
    gate.open()
    assert window.program.exit_code(5) == 0
