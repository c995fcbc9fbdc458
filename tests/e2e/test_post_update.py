"""The start with -postupdate: it cleans up behind a self-update and shows nothing."""

import subprocess
from pathlib import Path

import pytest

from support.driver import DriverError
from support.prefix import wait_for_server
from support.program import eventually

SESSION_MANAGER = "System\\CurrentControlSet\\Control\\Session Manager"
MULTI_SZ = 7
SETUP = "zolvane setup \u00e4.exe"


@pytest.fixture
def desk(make_desk):
    with make_desk() as made:
        yield made


@pytest.fixture
def temporary(desk):
    """The temporary folder of the prefix: (its path for us, its path for the program)."""
    shown = subprocess.run(["wine", "cmd", "/c", "echo %TEMP%"], env=desk.prefix.env, check=True,
                           stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                           stderr=subprocess.DEVNULL, timeout=60).stdout.decode().strip()
    folder = desk.prefix.host_path(shown)
    assert folder is not None, shown
    return folder, shown


def run_to_its_end(desk):
    """The exit code of such a start, which must not show a window."""
    pid = desk.start("-postupdate")
    shown = []

    def has_ended():
        shown.extend(desk.windows_of(pid))
        return not desk.driver("running", pid)

    eventually(has_ended, "the process ends")
    assert shown == []
    return desk.driver("wait-exit", pid, 0)


def removed_at_next_start(desk):
    """The paths that the system will remove: pairs of a path and an empty new name."""
    try:
        value = desk.driver("reg-get", "HKLM", 64, SESSION_MANAGER, "PendingFileRenameOperations")
    except DriverError:
        return []
    assert value["type"] == MULTI_SZ
    # Two NULs end a pair, one more ends the list.
    return [path for path in value["data"].removesuffix("\0").split("\0\0") if path]


def user_files(desk):
    users = desk.prefix.folder / "drive_c" / "users"
    return {path.relative_to(users) for path in users.rglob("*") if path.is_file()}


def test_without_a_marker_it_ends_with_1_and_leaves_all_as_it_is(desk, temporary):
    before = user_files(desk)
    assert run_to_its_end(desk) == 1
    assert removed_at_next_start(desk) == []
    assert user_files(desk) == before


def test_an_empty_marker_stays_and_it_ends_with_1(desk, temporary):
    marker = Path(temporary[0], "zolvane.tmp")
    marker.write_bytes(b"")
    assert run_to_its_end(desk) == 1
    assert marker.exists()
    assert removed_at_next_start(desk) == []


def test_the_marker_goes_now_and_the_setup_at_the_next_start(desk, temporary):
    marker, setup = (Path(temporary[0], name) for name in ("zolvane.tmp", SETUP))
    path = f"{temporary[1]}\\{SETUP}"
    setup.write_bytes(b"MZ")
    marker.write_bytes(f"{path}\n".encode("cp1252"))

    assert run_to_its_end(desk) == 0
    assert not marker.exists()
    assert setup.exists(), "it may still be in use"
    assert [entry.removeprefix("\\??\\") for entry in removed_at_next_start(desk)] == [path]

    assert run_to_its_end(desk) == 1, "there is nothing more to do"
    assert setup.exists()


def test_the_next_start_of_the_system_removes_the_setup(desk, temporary):
    setup = desk.prefix.folder / "drive_c" / "setup.exe"
    setup.write_bytes(b"MZ")
    Path(temporary[0], "zolvane.tmp").write_bytes(b"C:\\setup.exe\n")
    assert run_to_its_end(desk) == 0
    assert setup.exists()

    desk.driver.close()
    wait_for_server(desk.prefix.env, "-k")
    wait_for_server(desk.prefix.env, "-w")
    subprocess.run(["wine", "wineboot"], env=desk.prefix.env, check=True, timeout=120,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    eventually(lambda: not setup.exists(), "the system has removed it")
