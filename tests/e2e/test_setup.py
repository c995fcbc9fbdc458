"""Zolvane's own setup: what it installs, repairs, updates and removes, silently and by its pages."""

import contextlib
from datetime import date

import pytest

from conftest import BINARIES, SCREENSHOTS
from support.driver import DriverError
from support.installation import CANCEL, ENTRY, FILES, NEXT, PLACES, Installation
from support.program import TITLE, Program, eventually
from support.registry import SZ
from support.releases import NEXT as NEXT_VERSION
from support.releases import THIS, setups_of
from support.window import Window

CANCELLED, RUNNING, NOT_WRITTEN = 1, 3, 5
OWN_KEY = "Software\\Quillmere\\Zolvane"


@pytest.fixture(scope="module")
def module_setup(make_desk):
    with make_desk() as desk:
        yield Installation(desk, setups_of(BINARIES))


def end_all(installation):
    for pid in installation.programs():
        installation.driver("kill", pid)


@pytest.fixture
def setup(module_setup):
    yield module_setup
    end_all(module_setup)
    for scope in PLACES:
        if module_setup.value("UninstallString", scope):
            module_setup.uninstall("/SETTINGS", "/WAIT=5", scope=scope)
            eventually(lambda: module_setup.value("UninstallString", scope) is None,
                       "the entry is gone")


def wait_removed(setup, folder, scope="user"):
    """The uninstaller goes on by a copy of itself."""
    eventually(lambda: setup.value("UninstallString", scope) is None, "the entry is gone")
    eventually(lambda: not setup.files(folder), "the files are gone")


def version_of(setup, folder):
    """By the version resource of the program."""
    content = (setup.desk.prefix.host_path(folder) / "zolvane.exe").read_bytes()
    at = content.index("ProductVersion".encode("utf-16-le")) + 30
    return content[at:at + 14].decode("utf-16-le").strip("\0")


def test_a_silent_setup_for_one_user_installs_program_help_and_start_menu_entry(setup):
    assert setup.run(THIS) == 0
    folder = setup.folder()
    assert folder.endswith("\\Programs\\Zolvane")
    assert setup.files(folder) == FILES
    assert len(setup.shortcuts()) == 1
    assert (setup.desk.prefix.host_path(folder) / "zolvane.exe").read_bytes() == (
        BINARIES / "zolvane.exe").read_bytes()
    assert setup.programs() == []


def test_the_entry_has_what_the_list_shows(setup):
    before = date.today()
    assert setup.run(THIS) == 0
    folder = setup.folder()
    expected = {
        "DisplayName": "Zolvane", "DisplayVersion": "5.3", "Publisher": "Quillmere",
        "DisplayIcon": folder + "\\zolvane.exe",
        "Comments": "Shows what is installed on this computer",
        "Contact": "zolvane@example.org", "HelpLink": "https://example.org/zolvane/issues",
        "URLInfoAbout": "https://example.org/zolvane", "NoModify": 1, "NoRepair": 1,
        "UninstallString": f'"{folder}\\uninstall.exe"',
        "QuietUninstallString": f'"{folder}\\uninstall.exe" /S'}
    assert {name: setup.value(name) for name in expected} == expected
    assert setup.value("InstallDate") in {f"{day:%Y%m%d}" for day in (before, date.today())}
    assert 1000 < setup.value("EstimatedSize") < 4000


def test_the_installed_program_lists_itself(setup):
    assert setup.run(THIS) == 0
    window = Window(setup.desk)
    row = window.row_of("Zolvane")
    texts = {window.program.column(column)[row] for column in range(31)}
    assert {"5.3", "Quillmere", "OK", setup.folder(), "https://example.org/zolvane"} <= texts
    window.program.close()


def test_a_silent_setup_starts_the_program_after_it_has_cleaned_up(setup):
    marker = setup.desk.prefix.host_path(setup.driver("temp-folder").rstrip("\\")) / "zolvane.tmp"
    marker.write_bytes(b"C:\\no\\such\\setup.exe\n")
    pid = setup.start(THIS, "/S")
    assert setup.driver("wait-exit", pid, 60000) == 0
    (program,) = eventually(setup.programs, "the program runs")
    assert not marker.exists()
    assert Program(setup.driver, setup.desk.screen, program).window()["title"] == TITLE


def test_a_setup_for_all_users_writes_the_machines_entry(setup):
    assert setup.run(THIS, "/AllUsers") == 0
    assert setup.value("DisplayName", "machine") == "Zolvane"
    assert setup.value("DisplayName") is None
    folder = setup.folder("machine")
    assert "Program Files" in folder
    assert setup.files(folder) == FILES
    setup.uninstall(scope="machine")
    wait_removed(setup, folder, "machine")


def test_a_folder_can_be_chosen_and_the_program_moves_to_another_one(setup):
    assert setup.run(THIS, "/D=C:\\Tools\\First") == 0
    assert setup.files("C:\\Tools\\First") == FILES
    assert setup.run(THIS, "/D=C:\\Tools\\Second") == 0
    assert setup.folder() == "C:\\Tools\\Second"
    assert setup.files("C:\\Tools\\Second") == FILES
    assert not setup.files("C:\\Tools\\First")


def test_a_second_run_repairs_what_is_there(setup):
    assert setup.run(THIS) == 0
    folder = setup.folder()
    place = setup.desk.prefix.host_path(folder)
    (place / "zolvane.chm").unlink()
    (place / "zolvane.exe").write_bytes(b"damaged")
    assert setup.run(THIS) == 0
    assert setup.files(folder) == FILES
    assert version_of(setup, folder) == "5.3.0.0"


def test_the_next_version_takes_the_place_of_this_one(setup):
    assert setup.run(THIS, "/D=C:\\Tools\\Zolvane") == 0
    assert version_of(setup, "C:\\Tools\\Zolvane") == "5.3.0.0"
    assert setup.run(NEXT_VERSION) == 0
    assert setup.folder() == "C:\\Tools\\Zolvane"
    assert setup.value("DisplayVersion") == "5.4"
    assert version_of(setup, "C:\\Tools\\Zolvane") == "5.4.0.0"
    assert len(setup.shortcuts()) == 1


def test_a_silent_setup_leaves_a_program_that_goes_on_running_as_it_is(setup):
    assert setup.run(THIS) == 0
    window = Window(setup.desk)
    assert setup.run(NEXT_VERSION, "/WAIT=1") == RUNNING
    assert version_of(setup, setup.folder()) == "5.3.0.0"
    assert setup.value("DisplayVersion") == "5.3"
    window.program.close()


def test_a_silent_setup_waits_for_the_programs_end(setup):
    assert setup.run(THIS) == 0
    window = Window(setup.desk)
    pid = setup.start(NEXT_VERSION, "/S", "/NOSTART", "/WAIT=60")
    with pytest.raises(DriverError):
        setup.driver("wait-exit", pid, 1500)
    assert version_of(setup, setup.folder()) == "5.3.0.0"
    window.program.close()
    assert setup.driver("wait-exit", pid, 60000) == 0
    assert version_of(setup, setup.folder()) == "5.4.0.0"


def test_the_start_menu_entry_starts_the_program(setup):
    assert setup.run(THIS) == 0
    (entry,) = setup.shortcuts()
    path = "\\".join(entry.relative_to(setup.desk.prefix.folder / "drive_c").parts)
    setup.driver("start", f'C:\\windows\\system32\\start.exe "C:\\{path}"')
    (program,) = eventually(setup.programs, "the program runs")
    assert Program(setup.driver, setup.desk.screen, program).close() == 0


def test_a_user_may_have_a_version_beside_that_of_all_users(setup):
    assert setup.run(THIS, "/AllUsers") == 0
    assert setup.run(NEXT_VERSION, "/CurrentUser") == 0
    assert [setup.value("DisplayVersion", scope) for scope in ("machine", "user")] == ["5.3", "5.4"]
    setup.uninstall()
    wait_removed(setup, setup.folder())
    assert setup.files(setup.folder("machine")) == FILES
    assert len(setup.shortcuts()) == 1


def test_a_file_that_can_not_be_written_is_told_by_the_exit_code(setup):
    setup.desk.prefix.make_file("C:\\Odd\\zolvane.chm\\in the way.txt")
    assert setup.run(THIS, "/D=C:\\Odd") == NOT_WRITTEN
    assert setup.value("UninstallString") is None
    assert setup.shortcuts() == []
    assert setup.desk.prefix.host_path("C:\\Odd\\zolvane.chm\\in the way.txt").exists()


def test_an_uninstaller_removes_nothing_while_the_program_runs(setup):
    assert setup.run(THIS) == 0
    window = Window(setup.desk)
    assert setup.uninstall_in_place("/WAIT=0") == RUNNING
    assert setup.files(setup.folder()) == FILES
    assert setup.value("DisplayVersion") == "5.3"
    assert len(setup.shortcuts()) == 1
    window.program.close()


def keep_settings(setup):
    """Settings of a user, and what isn't ours beside them."""
    kept = setup.desk.prefix.kept
    kept.mkdir(parents=True, exist_ok=True)
    names = ("zolvane-cfg.xml", "zolvane-hist.xml", "zolvane-imagelist.dat",
             "zolvane-imagepaths.txt")
    for name in names:
        (kept / name).write_bytes(b"x")
    setup.driver("reg-create", "HKCU", 64, OWN_KEY)
    setup.driver("reg-set", "HKCU", 64, OWN_KEY, "last update check", SZ, b"1\0")
    return kept, set(names)


def has_own_key(setup):
    with contextlib.suppress(DriverError):
        return bool(setup.driver("reg-get", "HKCU", 64, OWN_KEY, "last update check"))
    return False


def test_a_silent_uninstall_keeps_the_settings_and_leaves_nothing_else(setup):
    assert setup.run(THIS) == 0
    folder = setup.folder()
    kept, names = keep_settings(setup)
    setup.uninstall()
    wait_removed(setup, folder)
    assert setup.desk.prefix.host_path(folder) is None or not setup.files(folder)
    assert setup.shortcuts() == []
    assert {file.name for file in kept.iterdir()} == names
    assert has_own_key(setup)


def test_an_uninstall_removes_the_settings_where_it_is_told_to_and_no_foreign_files(setup):
    assert setup.run(THIS) == 0
    folder = setup.folder()
    kept, _ = keep_settings(setup)
    foreign = setup.desk.prefix.host_path(folder) / "notes.txt"
    foreign.write_bytes(b"mine")
    setup.uninstall("/SETTINGS")
    eventually(lambda: setup.value("UninstallString") is None, "the entry is gone")
    eventually(lambda: not kept.exists(), "the settings are gone")
    eventually(lambda: not has_own_key(setup), "the registry key is gone")
    assert setup.files(folder) == {"notes.txt"}
    foreign.unlink()


PAGES = {
    "english": ("en_GB.UTF-8", "Welcome", "Only for me", "Destination", "Start Zolvane",
                "Remove my settings"),
    "german": ("de_DE.UTF-8", "Willkommen", "Nur f\u00fcr mich", "Zielverzeichnis",
               "Zolvane starten", "Auch meine Einstellungen"),
}


@pytest.mark.parametrize("language", PAGES)
def test_the_pages_lead_through_setup_and_uninstall(make_desk, language):
    locale, welcome, scope, folder_page, start, settings = PAGES[language]
    with make_desk(lc_all=locale) as desk:
        setup = Installation(desk, setups_of(BINARIES))
        wizard = setup.wizard(THIS)
        for name, text in (("welcome", welcome), ("scope", scope), ("folder", folder_page)):
            wizard.find(text)
            wizard.picture(SCREENSHOTS / f"{language}-setup-{name}.png")
            wizard.press(NEXT)
        wizard.find(start)
        wizard.picture(SCREENSHOTS / f"{language}-setup-finish.png")
        wizard.press(NEXT)
        (program,) = eventually(setup.programs, "the program runs")
        assert wizard.exit_code() == 0
        assert Program(desk.driver, desk.screen, program).close() == 0
        folder = setup.folder()
        assert setup.files(folder) == FILES
        kept, _ = keep_settings(setup)
        remover = setup.remover()
        remover.find(settings)
        remover.picture(SCREENSHOTS / f"{language}-setup-remove.png")
        remover.click(settings)
        remover.press(NEXT)
        wait_removed(setup, folder)
        eventually(lambda: not kept.exists(), "the settings are gone")
        remover.press(NEXT)


SETUP_PAGES = ("Welcome", "Only for me", "Destination")


@pytest.mark.parametrize("page", range(3))
def test_a_setup_that_is_cancelled_on_any_page_installs_nothing(setup, page):
    wizard = setup.wizard(THIS)
    for text in SETUP_PAGES[:page]:
        wizard.find(text)
        wizard.press(NEXT)
    wizard.find(SETUP_PAGES[page])
    wizard.press(CANCEL)
    assert wizard.exit_code() == CANCELLED
    assert [setup.value("UninstallString", scope) for scope in PLACES] == [None, None]
    assert setup.shortcuts() == []


def test_the_uninstaller_that_is_cancelled_removes_nothing(setup):
    assert setup.run(THIS) == 0
    kept, names = keep_settings(setup)
    remover = setup.remover()
    remover.find("Remove my settings")
    remover.press(CANCEL)
    assert remover.exit_code() == CANCELLED
    assert setup.files(setup.folder()) == FILES
    assert len(setup.shortcuts()) == 1
    assert {file.name for file in kept.iterdir()} == names


def test_by_its_pages_the_setup_installs_for_all_users_without_a_start_if_that_is_chosen(setup):
    wizard = setup.wizard(THIS)
    wizard.find("Welcome")
    wizard.press(NEXT)
    wizard.click("For all users")
    wizard.press(NEXT)
    wizard.find("Destination")
    wizard.press(NEXT)
    wizard.click("Start Zolvane")
    wizard.press(NEXT)
    assert wizard.exit_code() == 0
    assert setup.files(setup.folder("machine")) == FILES
    assert setup.value("UninstallString") is None
    assert setup.programs() == []


FIRST_PAGES = {
    "english": {THIS: ("This version is installed already", "Choose Install to repair it."),
                NEXT_VERSION: ("Zolvane 5.3 is installed",
                               "Choose Install to replace it with version 5.4.")},
    "german": {THIS: ("Diese Version ist bereits installiert",
                      "Klicken Sie auf Installieren, um sie zu reparieren."),
               NEXT_VERSION: ("Zolvane 5.3 ist installiert", "Klicken Sie auf Installieren, um es "
                              "durch die Version 5.4 zu ersetzen.")}}
INSTALL = {"english": "&Install", "german": "&Installieren"}


@pytest.mark.parametrize("language", PAGES)
def test_where_it_is_installed_the_first_page_and_its_button_say_what_comes(make_desk, language):
    with make_desk(lc_all=PAGES[language][0]) as desk:
        setup = Installation(desk, setups_of(BINARIES))
        assert setup.run(THIS) == 0
        for version, (start, end) in FIRST_PAGES[language].items():
            (setup.desk.prefix.host_path(setup.folder()) / "zolvane.chm").unlink()
            wizard = setup.wizard(version, "/NOSTART")
            text = wizard.find(start)["text"]
            assert setup.folder() in text and end in text
            assert wizard.wait_enabled(NEXT)["text"] == INSTALL[language]
            wizard.picture(SCREENSHOTS / f"{language}-setup-over-{version}.png")
            wizard.press(NEXT)
            wizard.find(PAGES[language][4])
            wizard.press(NEXT)
            assert wizard.exit_code() == 0
            assert setup.files(setup.folder()) == FILES
            assert setup.value("DisplayVersion") == version


def test_by_its_pages_the_setup_asks_to_close_the_program(setup):
    assert setup.run(THIS) == 0
    window = Window(setup.desk)
    wizard = setup.wizard(NEXT_VERSION, "/NOSTART")
    wizard.find("Zolvane 5.3 is installed")
    wizard.press(NEXT)
    box = wizard.box()
    assert window.program.close() == 0
    wizard.answer(box, 4)  # Retry
    wizard.find("Start Zolvane")
    wizard.press(NEXT)
    assert wizard.exit_code() == 0
    assert version_of(setup, setup.folder()) == "5.4.0.0"
