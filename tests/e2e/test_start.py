"""Switches, language, marks of the running process, and the ways out."""

import pytest

from conftest import ENGLISH, GERMAN
from support.program import REFRESH, SEARCH, eventually
from support.registry import Key

MUTEXES = ("Quillmere-Zolvane", "Global\\Quillmere-Zolvane")
QUIET = ("-nopersist", "-noupdate")

# A label and a column title that no two languages share.
LANGUAGES = {
    "English": ("Uninstall-Cmd.:", "Uninstall Entry"),
    "German": ("Uninstall-Befehl:", "Uninstall-Eintrag"),
}


def language_of(program):
    seen = (program.ask("text", 1012), program.columns()[0]["title"])
    return next((name for name, texts in LANGUAGES.items() if texts == seen), seen)


@pytest.fixture(scope="module")
def english_desk(make_desk):
    with make_desk(lc_all=ENGLISH) as desk:
        yield desk


@pytest.fixture(scope="module")
def german_desk(make_desk):
    with make_desk(lc_all=GERMAN) as desk:
        yield desk


@pytest.fixture
def desks(english_desk, german_desk):
    yield {"english": english_desk, "german": german_desk}
    english_desk.end_programs()
    german_desk.end_programs()


@pytest.fixture
def desk(desks):
    return desks["english"]


@pytest.mark.parametrize("locale, switches, language", [
    ("english", "", "English"),
    ("german", "", "German"),
    ("english", "-ger", "German"),
    ("german", "-eng", "English"),
    ("english", "-eng -ger", "German"),
    ("german", "-ger -eng", "German"),
    ("german", "/first:x-english", "English"),
])
def test_the_language_follows_the_switches_and_then_the_locale(desks, locale, switches, language):
    program = desks[locale].open(*QUIET, switches)
    assert language_of(program) == language
    assert program.close() == 0


def test_both_mutexes_exist_while_it_runs(desk):
    assert [desk.has_mutex(name) for name in MUTEXES] == [False, False]
    program = desk.open(*QUIET)
    assert [desk.has_mutex(name) for name in MUTEXES] == [True, True]
    program.close()
    assert [desk.has_mutex(name) for name in MUTEXES] == [False, False]


def test_a_second_start_opens_a_second_window(desk):
    first, second = desk.open(*QUIET), desk.open(*QUIET)
    assert first.handle != second.handle
    assert first.window()["visible"] and second.window()["visible"]
    assert first.close() == 0
    assert all(desk.has_mutex(name) for name in MUTEXES), "the second still holds them"
    assert second.close() == 0


def test_closing_ends_with_0(desk):
    assert desk.open(*QUIET).close() == 0


def test_escape_ends_with_0(desk):
    program = desk.open(*QUIET)
    program.press_key("Escape")
    assert program.exit_code() == 0


def test_enter_does_not_close(desk):
    program = desk.open(*QUIET)
    eventually(lambda: program.ask("focus") == SEARCH, "the search text has the focus")
    program.press_key("Return")
    # The keys arrive in their order: when Tab has moved the focus, Enter has had its effect.
    program.press_key("Tab")
    eventually(lambda: program.ask("focus") != SEARCH, "Tab has moved the focus")
    program.ask("command", 1)
    assert program.is_running()
    assert program.window()["visible"]
    program.close()


def user_files(desk):
    users = desk.prefix.folder / "drive_c" / "users"
    return {path.relative_to(users): path.stat().st_mtime_ns
            for path in users.rglob("*") if path.is_file()}


def test_nopersist_leaves_no_file(make_desk):
    with make_desk([Key("user", "Only", {"DisplayName": "Only"})]) as desk:
        before = user_files(desk)
        program = desk.open(*QUIET)
        program.wait_filled(1)
        program.click(REFRESH)
        program.close()
        assert user_files(desk) == before
