"""The driver itself: what it tells can be trusted byte for byte, and its waits end."""

import time

import pytest

from conftest import BINARIES
from support.installers import Installer
from support.program import DriverError
from support.registry import UNINSTALL

KEY = "Left_behind"


@pytest.fixture(scope="module")
def driver(make_desk):
    with make_desk() as desk:
        yield desk.driver


def test_every_byte_arrives_as_it_was_sent(driver):
    every = bytes(range(256))
    assert driver.raw("echo", every).encode("latin-1") == every


def test_registry_data_keep_their_bytes(driver):
    data = bytes(range(255, -1, -1))
    driver("reg-set", "HKCU", 64, "Software\\Quarry", "v\u00e4lue", 3, data)
    read = driver.raw("reg-get", "HKCU", 64, "Software\\Quarry", "v\u00e4lue")
    assert (read["type"], read["data"].encode("latin-1")) == (3, data)


def test_the_two_views_of_the_registry_are_two(driver):
    driver("reg-create", "HKLM", 32, "Software\\Quarry\\Low")
    driver("reg-create", "HKLM", 64, "Software\\Quarry\\High")
    assert [key["name"] for key in driver("reg-keys", "HKLM", 32, "Software\\Quarry")] == ["Low"]
    assert [key["name"] for key in driver("reg-keys", "HKLM", 64, "Software\\Quarry")] == ["High"]


@pytest.mark.parametrize("question", [
    ("no-such-command",), ("window", 1), ("reg-keys", "HKCU", 64, "Software\\Not there"),
    ("start", "C:\\not there.exe"), ("wait-exit", 1, 0), ("mutex",), ("window", "one"),
])
def test_a_refusal_is_an_answer(driver, question):
    with pytest.raises(DriverError):
        driver(*question)
    assert driver("echo", "still there") == "still there"


def test_a_wait_ends_at_its_limit(driver):
    start = time.monotonic()
    with pytest.raises(DriverError, match="no window of class"):
        driver("wait-window", 0, "", "No such title", 300)
    assert 0.3 <= time.monotonic() - start < 30


def test_a_wait_for_a_window_ends_with_its_process(driver):
    pid = driver("start", "C:\\windows\\system32\\cmd.exe /c exit 7")
    with pytest.raises(DriverError, match="no window of class"):
        driver("wait-window", pid, "", "No such title", 60000)
    assert driver("wait-exit", pid, 5000) == 7


def test_running_programs_are_found_by_their_file_name(driver):
    assert driver("processes", "not there.exe") == []
    found = driver("processes", "zolvane-driver.exe")
    assert len(found) == 1 and driver("running", found[0])


def test_the_clipboard_of_one_program_is_that_of_another(make_desk, driver):
    text = "caf\u00e9 \u20ac\r\nsecond line"
    driver("clipboard-set", text)
    assert driver("clipboard-text") == text
    driver("clipboard-set", "")
    assert driver("clipboard-text") == ""


@pytest.fixture
def installer(make_desk):
    with make_desk() as desk:
        yield Installer(desk, BINARIES, "C:\\Set ups\\setup.exe")


def test_the_installer_notes_what_it_was_started_with_and_does_it(installer):
    ask = installer.desk.driver
    command = f'"{installer.path}"  /S "two words" /write:2 /delete:{KEY} %windir% /exit:3 '
    ask("reg-create", "HKCU", 64, f"Software\\{UNINSTALL}\\{KEY}")
    pid = ask("start", command)
    assert ask("wait-exit", pid, 20000) == 3
    assert installer.lines() == [command]
    assert [key["name"] for key in ask("reg-keys", "HKCU", 64, f"Software\\{UNINSTALL}")] == [
        "Written 1", "Written 2"]


def test_the_installer_waits_leaves_work_to_a_second_one_and_does_what_its_file_says(installer):
    ask = installer.desk.driver
    assert ask("wait-exit", ask("start", f'"{installer.path}" /again /window:Working /wait:go'),
               20000) == 0
    installer.wait_for_starts("/again /window:Working /wait:go", "/window:Working /wait:go")
    (second,) = installer.running()
    ask("wait-window", second, "", "Working", 20000)
    ask("event-set", "go")
    assert ask("wait-exit", second, 20000) == 0
    installer.always("/exit:5", "/forever")
    assert ask("wait-exit", ask("start", f'"{installer.path}" /n'), 20000) == 5
