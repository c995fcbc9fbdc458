"""The Refresh command reads everything anew."""

import pytest

from support.program import REFRESH, eventually
from support.registry import SZ, UNINSTALL, Key

KEYS = [Key("local", "Stays", {"DisplayName": "Stays", "InstallDate": "20251112"}),
        Key("local64", "Goes", {"DisplayName": "Goes", "InstallDate": "20251111"}),
        Key("user", "Mine", {"DisplayName": "Mine", "InstallDate": "20251110"})]
PLACES = {"local": ("HKLM", 32), "local64": ("HKLM", 64), "user": ("HKCU", 64)}


def set_value(desk, place, key, name, text):
    desk.driver("reg-set", *PLACES[place], f"Software\\{UNINSTALL}\\{key}", name, SZ,
                text.encode("cp1252") + b"\0")


def names(program):
    return [row[2] for row in program.rows()]


@pytest.fixture
def desk(make_desk):
    with make_desk(KEYS) as made:
        yield made


@pytest.fixture
def program(desk):
    program = desk.open("-nopersist", "-noupdate")
    program.wait_filled(3)
    assert names(program) == ["Stays", "Goes", "Mine"]
    return program


@pytest.mark.parametrize("refresh", [
    lambda program: program.click(REFRESH),
    lambda program: program.press_key("F5"),
    lambda program: program.ask("command", REFRESH),
], ids=["button", "F5", "command"])
def test_refresh_shows_what_was_added_changed_and_removed(desk, program, refresh):
    set_value(desk, "user", "Newest", "DisplayName", "Newest")
    set_value(desk, "user", "Newest", "InstallDate", "20251212")
    set_value(desk, "local", "Oldest", "DisplayName", "Oldest")
    set_value(desk, "local", "Oldest", "InstallDate", "20011010")
    set_value(desk, "local", "Stays", "DisplayName", "Stays, renamed")
    desk.driver("reg-delete", *PLACES["local64"], f"Software\\{UNINSTALL}\\Goes")
    refresh(program)
    wanted = ["Newest", "Stays, renamed", "Mine", "Oldest"]
    # The watchers refresh too, so the list may be met while it is filled again.
    eventually(lambda: names(program) == wanted, lambda: f"{wanted}, but {names(program)}")
    program.wait_filled(4)


def test_a_refresh_of_an_empty_machine_shows_nothing(desk, program):
    for place, key in (("local", "Stays"), ("local64", "Goes"), ("user", "Mine")):
        desk.driver("reg-delete", *PLACES[place], f"Software\\{UNINSTALL}\\{key}")
    program.click(REFRESH)
    program.wait_filled(0)
    assert names(program) == []


def test_a_source_that_was_absent_at_the_start_stays_absent(make_desk):
    with make_desk(KEYS[:1]) as desk:
        program = desk.open("-nopersist", "-noupdate")
        program.wait_filled(1)
        set_value(desk, "user", "Late", "DisplayName", "Late")
        set_value(desk, "local", "New", "DisplayName", "New")
        program.click(REFRESH)
        program.wait_filled(2)
        assert "Late" not in names(program)
