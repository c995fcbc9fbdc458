"""The Tools menu: programs of the system, with stand-ins for them, or what is said without one."""

import pytest

from conftest import SCREENSHOTS
from support import handlers
from support.program import DriverError, eventually
from support.registry import SZ, Key
from support.seeding import seed
from support.setups import SETUP
from support.window import NO, YES, Window

CLEANUP, INFO, CONFIG, RESTORE, SOFTWARE, ORCA, OPEN_WITH_ORCA = (
    2004, 2005, 2006, 2007, 2011, 2014, 2016)
ORCA_PROGRAM = "C:\\Set ups\\orca tool.exe"
BROWSER = "C:\\Setups\\browser.exe"

PRODUCT = "{5F0C1B6A-11D4-4C0E-9D4E-6A1B2C3D4E5F}"
KEYS = [
    Key("user", PRODUCT, {
        "DisplayName": "Product", "InstallDate": "20260103", "WindowsInstaller": 1}),
    Key("user", "Bare", {"DisplayName": "Bare", "InstallDate": "20260102"}),
]
CLEANUP_KEY = "Software\\Microsoft\\Shared Tools\\MSInfo\\Tools\\MsiCU"
CLEANUP_TITLE = "launching msicuu.exe"
CLEANUP_TEXT = {
    "english": "MSICUU.exe is not yet installied.\nDo you want to open it's download page?",
    "german": "MSICUU.exe ist derzeit noch nicht installiert.\n"
              "M\u00f6chten Sie die Download-Seite \u00f6ffnen?"}
CLEANUP_PAGE = "https://example.org/zolvane/msi-cleanup"

@pytest.fixture(scope="module")
def prepared(module_setups):
    module_setups.desk.prefix.import_registry(
        handlers.reg_text(handlers.scheme("https", BROWSER)))
    seed(module_setups.desk, KEYS)
    for path in (BROWSER, ORCA_PROGRAM):
        module_setups.installer(path)
    return module_setups


@pytest.fixture
def clean(prepared, setups):
    """Without a cleanup tool and without an editor of MSI files."""
    for root, view, path in [("HKLM", 32, CLEANUP_KEY)] + [
            ("HKLM", 64, f"Software\\Classes\\{name}") for name in (".pcp", "Zolvane.Orca")]:
        try:
            setups.desk.driver("reg-delete", root, view, path)
        except DriverError:
            # There was none.
            pass
    return setups


def open_window(setups, language="english"):
    window = Window(setups.desk, language)
    window.wait_filled(len(KEYS))
    return window


def gray_tools(window):
    """The commands of the Tools menu that are gray."""
    (tools,) = [popup for popup in window.program.ask("menu")
                if any(item["id"] == INFO for item in popup["items"])]
    return {item["id"] for item in tools["items"] if item["gray"]}


@pytest.mark.parametrize("command, name, arguments", [
    (INFO, "msinfo32.exe", ""),
    (SOFTWARE, "rundll32.exe", "shell32.dll,Control_RunDLL appwiz.cpl"),
])
def test_a_tool_of_the_system_is_started(clean, command, name, arguments):
    tool = clean.system(name)
    tool.always("/forever")
    window = open_window(clean)
    window.post(command)
    tool.wait_for_starts(arguments)
    # Nobody waits for it.
    window.program.ask("settle")
    assert window.boxes() == []
    assert window.program.close() == 0


def test_what_a_32_bit_program_can_not_reach_on_a_64_bit_system_is_gray(clean):
    tool = clean.system("msconfig.exe")
    window = open_window(clean)
    assert gray_tools(window) == {CONFIG, RESTORE, ORCA}
    for command in (CONFIG, RESTORE):
        window.program.ask("command", command)
    assert window.boxes() == []
    assert window.program.close() == 0
    assert tool.lines() == []


@pytest.mark.parametrize("language", ["english", "german"])
@pytest.mark.parametrize("answer", [YES, NO])
def test_without_the_cleanup_tool_its_page_is_offered(clean, language, answer):
    browser = clean.installer(BROWSER)
    window = open_window(clean, language)
    window.post(CLEANUP)
    box = window.box(CLEANUP_TITLE)
    assert box.text == CLEANUP_TEXT[language]
    assert box.buttons == [YES, NO]
    window.program.picture(SCREENSHOTS / f"{language}-cleanup.png")
    box.answer(answer)
    window.wait_usable()
    if answer == YES:
        browser.wait_for_starts(f'"{CLEANUP_PAGE}"')
    window.program.ask("settle")
    assert window.program.close() == 0
    assert browser.lines() == []


@pytest.mark.parametrize("command, arguments", [
    (SETUP, ""), ('"%SystemDrive%\\Setups\\setup.exe" /tidy %SystemDrive%', "/tidy %SystemDrive%")])
def test_the_cleanup_tool_is_started_where_it_is(clean, command, arguments):
    clean.desk.driver("reg-set", "HKLM", 32, CLEANUP_KEY, "command", SZ, command.encode() + b"\0")
    window = open_window(clean)
    window.post(CLEANUP)
    clean.setup.wait_for_starts(arguments)
    assert window.boxes() == []
    assert window.program.close() == 0


@pytest.mark.parametrize("command", ["C:\\gone\\msicuu.exe", "   ", '"', "x" * 5000])
def test_a_cleanup_tool_that_is_gone_is_passed_over(clean, command):
    clean.desk.driver("reg-set", "HKLM", 32, CLEANUP_KEY, "command", SZ, command.encode() + b"\0")
    window = open_window(clean)
    window.program.ask("command", CLEANUP)
    assert window.boxes() == []
    assert window.program.close() == 0


def set_command(setups, class_name, command):
    path = f"Software\\Classes\\{class_name}\\shell\\edit\\command"
    setups.desk.driver("reg-set", "HKLM", 64, path, "", SZ, command.encode() + b"\0")


def orca_of_extension(setups, command):
    set_command(setups, ".pcp", command)


def orca_of_class(setups, command):
    name_class(setups)
    set_command(setups, "Zolvane.Orca", command)


@pytest.mark.parametrize("register", [orca_of_extension, orca_of_class],
                         ids=["extension", "class"])
@pytest.mark.parametrize("command, arguments", [
    (f'"{ORCA_PROGRAM}" "%1"', ""), (f"{ORCA_PROGRAM} %1", ""),
    (f'"{ORCA_PROGRAM}" /edit "%1" /x', "/edit /x")])
def test_the_editor_of_msi_files_opens_without_a_file(clean, register, command, arguments):
    register(clean, command)
    window = open_window(clean)
    assert ORCA not in gray_tools(window)
    window.post(ORCA)
    clean.installer(ORCA_PROGRAM).wait_for_starts(arguments)
    assert window.boxes() == []
    assert window.program.close() == 0


def test_a_package_opens_in_the_editor_of_msi_files(clean):
    """Nothing tells of a package's file yet, so none is named."""
    orca_of_extension(clean, f'"{ORCA_PROGRAM}" /edit "%1"')
    window = open_window(clean)
    window.program.ask("command", OPEN_WITH_ORCA)
    window.choose("Bare")
    window.program.ask("command", OPEN_WITH_ORCA)
    window.choose("Product")
    window.program.ask("command", OPEN_WITH_ORCA)
    clean.installer(ORCA_PROGRAM).wait_for_starts('/edit ""')
    window.click_cell("Product", 2, button=3)
    items = {item["id"]: item["gray"] for item in window.wait_for_popup()}
    assert not items[OPEN_WITH_ORCA]
    window.leave_popup()
    window.click_cell("Bare", 2, button=3)
    items = {item["id"]: item["gray"] for item in eventually(window.popup, "the popup menu")}
    assert items[OPEN_WITH_ORCA]
    window.leave_popup()
    assert window.program.close() == 0


def name_class(setups, name="Zolvane.Orca"):
    setups.desk.driver("reg-set", "HKLM", 64, "Software\\Classes\\.pcp", "", SZ,
                       name.encode() + b"\0")


def name_without_end(setups):
    name_class(setups, "n" * 300)


@pytest.mark.parametrize("register", [lambda setups: None, name_class, name_without_end],
                         ids=["none", "class without a command", "name without end"])
def test_without_an_editor_of_msi_files_its_items_are_gray(clean, register):
    register(clean)
    window = open_window(clean)
    assert ORCA in gray_tools(window)
    window.choose("Product")
    for command in (ORCA, OPEN_WITH_ORCA):
        window.program.ask("command", command)
        assert window.boxes() == []
    assert window.program.close() == 0
