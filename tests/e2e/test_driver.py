"""The driver itself: what it tells can be trusted byte for byte, and its waits end."""

import time

import pytest

from support.program import DriverError


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
