"""Uninstall, modify, repair and remove on the real program, with installers of the tests' own."""

import time

import pytest

from conftest import SCREENSHOTS
from support import handlers
from support.exports import EXPORT, SaveDialog
from support.program import ALL_PACKAGES, LIST, REFRESH, SEARCH, STATUS, eventually
from support.registry import Key
from support.seeding import has_key, path_of, seed, set_value
from support.setups import OTHER, SETUP
from support.watching import PLACES, shows_by_itself
from support.window import (BUTTONS, CANCEL, MODIFY, OK, OPEN_FOLDER, REMOVE, REPAIR, UNINSTALL,
                            WM_CLOSE, Window)

WM_QUIT, WM_CANCELMODE, WM_SYSCOMMAND, WM_APP = 0x12, 0x1F, 0x112, 0x8000
SC_MAXIMIZE, SC_KEYMENU = 0xF030, 0xF100
ESCAPE_COMMAND, INFO = 2, 2005
ENDS_WITHIN = 5

PRODUCTS = ["{5F0C1B6A-11D4-4C0E-9D4E-6A1B2C3D4E5%d}" % number for number in range(4)]
BARE_PRODUCT, INSTALL_PRODUCT, REMOVE_PRODUCT, KEPT_PRODUCT = PRODUCTS

EDITOR = Key("user", "Editor", {
    "DisplayName": "Birchwood Editor", "DisplayVersion": "4.10.2", "InstallDate": "20260110",
    "UninstallString": f'"{SETUP}" /S "two words" %windir% /delete:Editor',
    "ModifyPath": f"{SETUP} /modify"})
SUITE = Key("user", BARE_PRODUCT, {
    "DisplayName": "Quarry Suite", "InstallDate": "20260109", "WindowsInstaller": 1})
READER = Key("user", INSTALL_PRODUCT, {
    "DisplayName": "Quarry Reader", "InstallDate": "20260108", "WindowsInstaller": 1,
    "UninstallString": f"MsiExec.exe /I{INSTALL_PRODUCT}"})
WRITER = Key("user", REMOVE_PRODUCT, {
    "DisplayName": "Quarry Writer", "InstallDate": "20260107", "WindowsInstaller": 1,
    "UninstallString": f"MsiExec.exe /X{REMOVE_PRODUCT} /qb", "ModifyPath": f"{SETUP} /change"})
KEPT = Key("user", KEPT_PRODUCT, {
    "DisplayName": "Quarry Keeper", "InstallDate": "20260106", "WindowsInstaller": 1,
    "NoRemove": 1, "UninstallString": f"MsiExec.exe /I{KEPT_PRODUCT}"})
LANTERN = Key("local64", "Lantern", {"DisplayName": "Lantern", "InstallDate": "20260105"})
NEST = Key("user", "Nest", {"DisplayName": "Nest", "InstallDate": "20260104"})
LOCAL = Key("local", "Harbour", {"DisplayName": "Harbour", "InstallDate": "20260103"})
KEYS = [EDITOR, SUITE, READER, WRITER, KEPT, LANTERN, NEST, LOCAL]

TITLES = {UNINSTALL: "Uninstallation", REPAIR: "Repair",
          REMOVE: "Entfernen des Registry-Eintrags"}
TEXTS = {
    "english": {
        UNINSTALL: 'Are you sure, you want to remove the program "%s"\n[Identifier: "%s"] ?',
        REPAIR: 'Are you sure, you want to repair the program "%s"\n[Identifier: "%s"] ?',
        REMOVE: 'Are you sure, you want to remove the uninstall entry of the programm "%s" [%s] '
                'from the registry?\n\nStill existing files will remain!'},
    "german": {
        UNINSTALL: 'Sind Sie sicher, da\u00df Sie die Deinstallation des Programms "%s"\n'
                   '[Identifier: "%s"]\nstarten m\u00f6chten?',
        REPAIR: 'Sind Sie sicher, da\u00df Sie die Reparatur des Programms "%s"\n'
                '[Identifier: "%s"]\nstarten m\u00f6chten?',
        REMOVE: 'Sind Sie sicher, da\u00df Sie den Eintrag f\u00fcr das Programm "%s"\n'
                '[unique name: "%s"] aus der Registry entfernen m\u00f6chten?\n\n'
                'Noch installierte Dateien bleiben damit erhalten!'},
}
# How the user says no to a box.
REFUSALS = {"button": lambda box: box.answer(CANCEL), "Escape": lambda box: box.press_key("Escape"),
            "close": lambda box: box.close()}


@pytest.fixture(params=["english"])
def window(request, setups):
    seed(setups.desk, KEYS)
    window = Window(setups.desk, request.param)
    window.wait_filled(len(KEYS))
    return window


both_languages = pytest.mark.parametrize("window", ["english", "german"], indirect=True)


def act(window, key, command, answer=OK):
    """Chooses a package and gives a command, whose question, if it has one, is answered."""
    window.choose(key.values["DisplayName"])
    window.post(command)
    if command in TITLES:
        window.box(TITLES[command]).answer(answer)


def wait_gone(window, key):
    name = key.values["DisplayName"]
    eventually(lambda: name not in window.names(), f"{name} is gone from the list")


def check_alive(window):
    """It answers, searches and counts while an installer runs."""
    program = window.program
    program.ask("settle")
    count = len(window.names())
    program.ask("set-text", SEARCH, "lantern")
    eventually(lambda: window.names() == ["Lantern"], "what is searched for")
    program.ask("set-text", SEARCH, "")
    window.wait_filled(count)


# Asking first.

@both_languages
@pytest.mark.parametrize("command, key", [(UNINSTALL, EDITOR), (REPAIR, SUITE), (REMOVE, EDITOR)])
def test_what_can_not_be_undone_is_asked_for(window, command, key):
    window.choose(key.values["DisplayName"])
    window.post(command)
    box = window.box(TITLES[command])
    assert box.text == TEXTS[window.language][command] % (key.values["DisplayName"], key.name)
    assert box.buttons == [OK, CANCEL]
    assert not window.program.window()["enabled"]
    window.program.picture(SCREENSHOTS / f"{window.language}-ask-{command}.png")
    box.close()
    assert window.program.close() == 0


@pytest.mark.parametrize("refusal", REFUSALS)
@pytest.mark.parametrize("command, key", [(UNINSTALL, EDITOR), (REPAIR, SUITE), (REMOVE, EDITOR)])
def test_a_no_changes_nothing_and_starts_no_cycle(setups, command, key, refusal):
    window = setups.open_held(KEYS)
    before = setups.begin_count(window)
    window.choose(key.values["DisplayName"])
    window.program.activate()
    window.post(command)
    REFUSALS[refusal](window.box(TITLES[command]))
    window.wait_usable()
    setups.check_passes(window, 0, before)
    assert setups.setup.lines() == setups.msiexec.lines() == []
    assert has_key(setups.desk, key)
    assert window.program.close() == 0


# What is started.

@both_languages
def test_uninstall_starts_what_the_package_registered_and_the_row_goes(window, setups):
    act(window, EDITOR, UNINSTALL)
    # Variables in the arguments stay as they are.
    setups.setup.wait_for_starts('/S "two words" %windir% /delete:Editor')
    wait_gone(window, EDITOR)
    window.wait_filled(len(KEYS) - 1)
    assert window.program.close() == 0


@pytest.mark.parametrize("command, arguments", [
    (f"{OTHER} -all -quiet", "-all -quiet"),
    (f'"{OTHER}" -all  -quiet ', "-all  -quiet "),
    (f'"%SystemDrive%\\Set ups\\un install.exe" /x %SystemDrive%', "/x %SystemDrive%"),
    ("%SystemDrive%\\Set ups\\un install.exe", ""),
    ("C:\\Set ups\\un install /x", "/x"),
    (f" {OTHER} /x", "/x"),
])
def test_each_form_of_a_command_finds_its_program(setups, command, arguments):
    key = Key("user", "Form", {"DisplayName": "Form", "UninstallString": command})
    seed(setups.desk, [key])
    window = Window(setups.desk)
    window.wait_filled(1)
    act(window, key, UNINSTALL)
    setups.other.wait_for_starts(arguments)
    assert window.program.close() == 0


@pytest.mark.parametrize("key, command, arguments", [
    (SUITE, UNINSTALL, f"/x {BARE_PRODUCT}"),
    (SUITE, MODIFY, f"/i {BARE_PRODUCT}"),
    (SUITE, REPAIR, f"/f {BARE_PRODUCT}"),
    # Its command would install.
    (READER, UNINSTALL, f"/x {INSTALL_PRODUCT}"),
    (WRITER, UNINSTALL, f"/X{REMOVE_PRODUCT} /qb"),
    (WRITER, REPAIR, f"/f {REMOVE_PRODUCT}"),
    (KEPT, MODIFY, f"/i {KEPT_PRODUCT}"),
])
def test_products_are_handed_to_the_systems_installer(window, setups, key, command, arguments):
    act(window, key, command)
    setups.msiexec.wait_for_starts(arguments)
    window.wait_usable()
    assert window.program.close() == 0


@pytest.mark.parametrize("key, arguments", [(EDITOR, "/modify"), (WRITER, "/change")])
def test_modify_starts_at_once(window, setups, key, arguments):
    window.choose(key.values["DisplayName"])
    window.post(MODIFY)
    setups.setup.wait_for_starts(arguments)
    assert window.boxes() == []
    assert window.program.close() == 0


@pytest.mark.parametrize("command, key", [(MODIFY, EDITOR), (REPAIR, SUITE), (UNINSTALL, SUITE)])
def test_the_list_is_read_again_when_an_installer_has_ended(setups, command, key):
    window = setups.open_held(KEYS)
    before = setups.begin_count(window)
    installer = setups.setup if key is EDITOR else setups.msiexec
    installer.always("/wait:installer-go")
    act(window, key, command)
    eventually(lambda: installer.lines(), "the installer runs")
    check_alive(window)
    assert setups.begin_count(window) == before
    setups.desk.driver("event-set", "installer-go")
    eventually(lambda: setups.passes() == before + 1, "it is read again")
    setups.check_passes(window, 1, before)
    assert window.program.close() == 0


@pytest.mark.parametrize("command, more", [(UNINSTALL, 0), (MODIFY, 1)])
def test_uninstall_alone_is_content_with_a_change_that_was_seen_meanwhile(setups, command, more):
    words = "/delete:Nest /wait:installer-go"
    key = Key("user", "Editor", dict(EDITOR.values, UninstallString=f"{SETUP} {words}",
                                     ModifyPath=f"{SETUP} {words}"))
    window = setups.open_held([key, NEST])
    act(window, key, command)
    wait_gone(window, NEST)
    window.wait_filled(1)
    before = setups.begin_count(window)
    setups.desk.driver("event-set", "installer-go")
    eventually(lambda: not setups.setup.running(), "the installer has ended")
    if more:
        eventually(lambda: setups.passes() == before + more, "it is read again")
    setups.check_passes(window, more, before)
    assert window.program.close() == 0


def test_the_window_lives_while_an_installer_runs_and_the_buttons_follow(window, setups):
    setups.setup.always("/window:Installing", "/wait:installer-go")
    act(window, EDITOR, MODIFY)
    window.desk.driver("wait-window", 0, "", "Installing", 20000)
    check_alive(window)
    window.choose("Quarry Suite")
    assert window.enabled_buttons() == set(BUTTONS)
    window.choose("Lantern")
    assert window.enabled_buttons() == set()
    window.program.ask("command", REFRESH)
    window.wait_filled(len(KEYS))
    window.desk.driver("event-set", "installer-go")
    eventually(lambda: not setups.setup.running(), "the installer has ended")
    check_alive(window)
    assert window.program.close() == 0


def test_a_package_that_goes_while_it_is_asked_about_is_uninstalled_all_the_same(window, setups):
    window.choose("Birchwood Editor")
    window.post(UNINSTALL)
    box = window.box(TITLES[UNINSTALL])
    window.desk.driver("reg-delete", "HKCU", 64, path_of("Editor"))
    window.wait_filled(len(KEYS) - 1)
    box.answer(OK)
    setups.setup.wait_for_starts('/S "two words" %windir% /delete:Editor')
    check_alive(window)
    assert window.program.close() == 0


def wait_met(window):
    """Until all that has been posted is met: messages are, in their order, in a menu's
    loop, too."""
    window.program.ask("post", WM_SYSCOMMAND, SC_MAXIMIZE, 0)
    eventually(lambda: window.program.window()["zoomed"], "it is maximised")


def menu_opened(window):
    """The system menu, whose loop keeps every refresh waiting."""
    window.program.activate()
    window.program.ask("post", WM_SYSCOMMAND, SC_KEYMENU, ord(" "))
    window.desk.driver("wait-window", window.program.pid, "#32768", "", 20000)


def menu_closed(window):
    window.program.ask("post", WM_CANCELMODE, 0, 0)
    eventually(lambda: not window.program.ask("in-menu"), "the menu is closed")


def test_a_change_that_waits_for_a_menus_end_counts_as_seen(setups):
    """For Modify it may be one pass or two: its own refresh and the one that has waited meet."""
    command, cycles = UNINSTALL, 1
    words = "/wait:installer-go"
    key = Key("user", "Editor", dict(EDITOR.values, UninstallString=f"{SETUP} {words}",
                                     ModifyPath=f"{SETUP} {words}"))
    window = setups.open_held([key, NEST])
    act(window, key, command)
    eventually(setups.setup.lines, "the installer runs")
    before, watches = setups.passes(), setups.watches()
    menu_opened(window)
    window.desk.driver("reg-delete", "HKCU", 64, path_of("Nest"))
    eventually(lambda: setups.watches() > watches, "the change is told of")
    wait_met(window)
    window.desk.driver("event-set", "installer-go")
    eventually(lambda: not setups.setup.running(), "the installer has ended")
    assert setups.passes() == before
    menu_closed(window)
    wait_gone(window, NEST)
    eventually(lambda: setups.passes() >= before + cycles, "it is read again")
    setups.check_passes(window, cycles, before)
    assert window.program.close() == 0


# During a refresh.

def open_in_second_pass(setups, key, *more):
    """Held in it, with the list of the first one."""
    window = setups.open_held([key, *more], "hold@source5")
    window.choose(key.values["DisplayName"])
    window.program.ask("post", WM_APP, 0, 0)
    setups.held.reached()
    return window


def check_nothing_started(window, setups):
    wait_met(window)
    window.program.ask("settle")
    assert window.boxes() == [] and setups.setup.lines() == setups.msiexec.lines() == []


@pytest.mark.parametrize("times", [1, 3])
def test_modify_during_a_refresh_starts_once_after_it(setups, times):
    window = open_in_second_pass(setups, EDITOR, SUITE)
    before = setups.passes()
    for _ in range(times):
        window.post(MODIFY)
    check_nothing_started(window, setups)
    setups.held.go()
    eventually(setups.setup.lines, "the installer is started")
    eventually(lambda: setups.passes() == before + 1, "it is read again")
    setups.check_passes(window, 1, before)
    assert setups.setup.starts() == ["/modify"]
    assert window.program.close() == 0


def test_an_export_asks_for_its_file_after_the_refresh(setups):
    """Its dialog would keep the refresh from handing over, and the file would lack what it found."""
    window = open_in_second_pass(setups, EDITOR)
    window.post(EXPORT)
    check_nothing_started(window, setups)
    setups.held.go()
    SaveDialog(window).close()
    window.wait_usable()
    assert window.boxes() == []
    assert window.program.close() == 0


@pytest.mark.parametrize("command, key", [(UNINSTALL, EDITOR), (REPAIR, SUITE), (REMOVE, EDITOR)])
def test_what_asks_asks_after_the_refresh(setups, command, key):
    window = open_in_second_pass(setups, key, NEST)
    window.post(command)
    check_nothing_started(window, setups)
    setups.held.go()
    box = window.box(TITLES[command])
    assert box.text == TEXTS["english"][command] % (key.values["DisplayName"], key.name)
    # The refresh has ended: nothing is held any more, and another one runs beneath the question.
    window.program.ask("set-text", STATUS, "")
    window.program.ask("command", REFRESH)
    window.wait_filled(2)
    assert setups.setup.lines() == setups.msiexec.lines() == []
    box.answer(OK)
    if command == UNINSTALL:
        setups.setup.wait_for_starts('/S "two words" %windir% /delete:Editor')
    elif command == REPAIR:
        setups.msiexec.wait_for_starts(f"/f {BARE_PRODUCT}")
    if command != REPAIR:
        wait_gone(window, key)
    window.wait_usable()
    assert window.boxes() == []
    assert window.program.close() == 0
    assert setups.setup.lines() == setups.msiexec.lines() == []


def has_started_nothing(setups):
    """Of a program that has ended. An installer that runs may not have noted its start yet; one that
    has gone has."""
    return all(not installer.running() and not installer.lines()
               for installer in (setups.setup, setups.msiexec))


@pytest.mark.parametrize("end", ["close", "Escape", "quit"])
@pytest.mark.parametrize("command, key", [
    (MODIFY, EDITOR), (UNINSTALL, EDITOR), (REPAIR, SUITE), (REMOVE, EDITOR)])
def test_an_action_that_waits_for_a_refresh_goes_with_the_window(setups, command, key, end):
    window = open_in_second_pass(setups, key, NEST)
    window.post(command)
    if end == "quit":
        wait_met(window)
        window.program.ask("post-thread", WM_QUIT)
        # Met once the window goes; a refresh that ended before would be followed by the action.
        eventually(lambda: not window.program.window()["visible"], "the quit is met")
        setups.held.go()
        assert window.program.exit_code() == 0
        assert has_started_nothing(setups)
        return
    if end == "close":
        window.program.ask("post", WM_CLOSE, 0, 0)
    else:
        window.post(ESCAPE_COMMAND)
    check_nothing_started(window, setups)
    start = time.monotonic()
    setups.held.go()
    assert window.program.exit_code() == 0
    assert time.monotonic() - start < ENDS_WITHIN
    assert has_started_nothing(setups) and has_key(setups.desk, key)


def test_tools_and_folders_wait_for_no_refresh(setups):
    info = setups.system("msinfo32.exe")
    setups.desk.prefix.import_registry(handlers.reg_text(handlers.handler("Folder", SETUP)))
    key = Key("user", "Placed", dict(EDITOR.values, InstallLocation="C:\\Setups"))
    window = open_in_second_pass(setups, key)
    window.post(OPEN_FOLDER)
    setups.setup.wait_for_starts('"C:\\Setups"')
    window.post(INFO)
    info.wait_for_starts("")
    assert window.program.status() == "1 / 1 packages" and not setups.held.has_reached()
    setups.held.go()
    assert window.program.close() == 0


# The entry alone.

@pytest.mark.parametrize("key", [EDITOR, LOCAL], ids=["user", "machine"])
def test_remove_deletes_the_key_and_the_row(window, setups, key):
    act(window, key, REMOVE)
    wait_gone(window, key)
    assert not has_key(window.desk, key)
    window.wait_filled(len(KEYS) - 1)
    assert window.program.close() == 0
    assert setups.setup.lines() == []


def subkey_below_nest(desk):
    desk.driver("reg-create", *PLACES["user"], path_of("Nest\\Egg"))


@both_languages
@pytest.mark.parametrize("key, before", [(LANTERN, None), (NEST, subkey_below_nest)],
                         ids=["64-bit view", "subkeys"])
def test_a_key_that_can_not_be_deleted_is_told_and_its_row_stays(window, key, before):
    if before:
        before(window.desk)
    act(window, key, REMOVE)
    box = window.box("Exception")
    assert box.text and box.buttons == [OK]
    window.program.picture(SCREENSHOTS / f"{window.language}-remove-{key.name}.png")
    box.answer(OK)
    window.wait_usable()
    assert has_key(window.desk, key) and key.values["DisplayName"] in window.names()
    assert window.program.close() == 0


def test_a_key_that_can_not_be_deleted_starts_no_cycle(setups):
    window = setups.open_held(KEYS)
    before = setups.begin_count(window)
    act(window, LANTERN, REMOVE)
    window.box("Exception").answer(OK)
    window.wait_usable()
    setups.check_passes(window, 0, before)
    assert window.program.close() == 0


# What installers do to those who start them.

USELESS = {
    "empty": "", "blank": "   ", "quotes": '""""""""', "one quote": '"', "long": "x" * 32000,
    "long with blanks": "x " * 16000, "missing": "C:\\gone away\\un.exe /S",
    "missing in quotes": '"C:\\gone away\\un.exe" /S', "variable": "%nowhere%\\un.exe",
    "percents": "%" * 2000, "no document": "C:\\Setups\\strange.zolvaneunknown",
    "drive": "Q:\\un.exe", "share": "\\\\nowhere.invalid\\share\\un.exe",
}


@pytest.mark.parametrize("name", USELESS)
def test_a_command_that_starts_nothing_is_passed_over_and_the_list_read_again(setups, name):
    key = Key("user", "Useless", {"DisplayName": "Useless", "UninstallString": USELESS[name]})
    setups.desk.prefix.make_file("C:\\Setups\\strange.zolvaneunknown", b"text")
    window = setups.open_held([key])
    before = setups.begin_count(window)
    act(window, key, UNINSTALL)
    eventually(lambda: setups.passes() == before + 1, "it is read again", limit=60)
    assert window.boxes() == []
    window.program.ask("settle")
    setups.check_passes(window, 1, before)
    assert window.program.close() == 0


@pytest.mark.parametrize("command", ["C:\\Setups\\read me.zolvanedoc", "C:\\Setups"],
                         ids=["document", "folder"])
def test_a_command_that_is_no_program_is_opened_by_what_its_kind_is_opened_with(setups, command):
    key = Key("user", "Useless", {"DisplayName": "Useless", "UninstallString": command})
    setups.desk.prefix.import_registry(handlers.reg_text(
        handlers.document("zolvanedoc", SETUP), handlers.handler("Folder", SETUP)))
    setups.desk.prefix.make_file("C:\\Setups\\read me.zolvanedoc", b"text")
    window = setups.open_held([key])
    before = setups.begin_count(window)
    act(window, key, UNINSTALL)
    setups.setup.wait_for_starts(f'"{command}"')
    eventually(lambda: setups.passes() == before + 1, "it is read again")
    assert window.boxes() == []
    assert window.program.close() == 0


def open_with_words(setups, words, count=1):
    """A window with packages whose uninstall command has these words."""
    keys = [Key("user", f"P{number}", {
        "DisplayName": f"P{number}", "UninstallString": f"{SETUP} {words}",
        "InstallDate": f"2026010{number + 1}"}) for number in range(count)]
    seed(setups.desk, keys)
    window = Window(setups.desk)
    window.wait_filled(count)
    return window, keys


def seconds_to_end(window):
    start = time.monotonic()
    assert window.program.close() == 0
    return time.monotonic() - start


def test_an_installer_that_starts_a_second_one_and_ends(setups):
    window, (key,) = open_with_words(setups, "/again /wait:installer-go /delete:P0")
    act(window, key, UNINSTALL)
    setups.setup.wait_for_starts("/again /wait:installer-go /delete:P0",
                                 "/wait:installer-go /delete:P0")
    window.program.ask("settle")
    window.desk.driver("event-set", "installer-go")
    # The change in the registry tells.
    wait_gone(window, key)
    assert window.program.close() == 0


@pytest.mark.parametrize("count", [1, 3])
def test_installers_that_never_end_do_not_keep_the_window(setups, count):
    window, keys = open_with_words(setups, "/forever", count)
    for number, key in enumerate(keys, 1):
        act(window, key, UNINSTALL)
        eventually(lambda: len(setups.setup.lines()) == number, f"{number} run")
    window.program.ask("settle")
    assert seconds_to_end(window) < ENDS_WITHIN
    assert len(setups.setup.running()) == count


def test_different_actions_in_one_another_end_with_the_window(window, setups):
    setups.setup.always("/forever")
    setups.msiexec.always("/forever")
    for number, (key, command, installer) in enumerate(
            [(EDITOR, UNINSTALL, setups.setup), (SUITE, REPAIR, setups.msiexec),
             (WRITER, MODIFY, setups.setup)]):
        act(window, key, command)
        eventually(lambda: len(setups.setup.lines()) + len(setups.msiexec.lines()) == number + 1,
                   "the installer runs")
    check_alive(window)
    assert seconds_to_end(window) < ENDS_WITHIN


@pytest.mark.parametrize("way", ["Escape", "question open"])
def test_the_window_ends_otherwise_with_an_installer_running(setups, way):
    window, keys = open_with_words(setups, "/forever", 2)
    act(window, keys[0], UNINSTALL)
    eventually(setups.setup.lines, "the installer runs")
    if way == "Escape":
        start = time.monotonic()
        window.program.ask("post", 0x111, ESCAPE_COMMAND, 0)
        assert window.program.exit_code() == 0
        assert time.monotonic() - start < ENDS_WITHIN
    else:
        window.choose("P1")
        window.post(UNINSTALL)
        window.box(TITLES[UNINSTALL])
        assert seconds_to_end(window) < ENDS_WITHIN
        assert len(setups.setup.lines()) == 1


def test_an_inner_action_that_ends_first_leaves_the_outer_one_waiting(setups):
    keys = [Key("user", name, {"DisplayName": name, "InstallDate": f"2026010{day}",
                               "UninstallString": f"{SETUP} /wait:{name} /delete:{name}"})
            for day, name in enumerate(("Outer", "Inner"), 1)]
    window = setups.open_held(keys)
    for number, key in enumerate(keys, 1):
        act(window, key, UNINSTALL)
        eventually(lambda: len(setups.setup.lines()) == number, f"{number} run")
    for key, left in zip(keys[::-1], (1, 0)):
        window.desk.driver("event-set", key.name)
        wait_gone(window, key)
        window.wait_filled(left)
    assert window.program.close() == 0


def test_an_outer_action_that_ends_first_is_followed_once_the_inner_one_has_ended(setups):
    keys = [Key("user", name, {"DisplayName": name, "InstallDate": f"2026010{day}",
                               "ModifyPath": f"{SETUP} /wait:{name}"})
            for day, name in enumerate(("Outer", "Inner"), 1)]
    window = setups.open_held(keys)
    before = setups.begin_count(window)
    for number, key in enumerate(keys, 1):
        act(window, key, MODIFY)
        eventually(lambda: len(setups.setup.lines()) == number, f"{number} run")
    window.desk.driver("event-set", "Outer")
    eventually(lambda: len(setups.setup.running()) == 1, "one installer is left")
    window.program.ask("settle")
    window.desk.driver("event-set", "Inner")
    eventually(lambda: setups.passes() > before, "it is read again")
    window.program.ask("settle")
    assert window.program.close() == 0


def test_an_installer_that_deletes_its_key_and_sleeps(setups):
    window, keys = open_with_words(setups, "/delete:P0 /forever", 2)
    act(window, keys[0], UNINSTALL)
    wait_gone(window, keys[0])
    window.wait_filled(1)
    assert setups.setup.running()
    window.choose("P1")
    assert window.enabled_buttons() == {UNINSTALL}
    assert seconds_to_end(window) < ENDS_WITHIN


def test_an_installer_that_writes_ten_keys(setups):
    window, (key,) = open_with_words(setups, "/write:10 /delete:P0")
    # A key that is read before its name is written stays hidden among the normal packages.
    window.program.select_type(ALL_PACKAGES)
    act(window, key, UNINSTALL)
    written = sorted(f"Written {number}" for number in range(1, 11))
    shows_by_itself(window.desk, "user", lambda: sorted(window.names()) == written, "all of them")
    assert window.program.close() == 0


@pytest.mark.parametrize("words", ["/close", "/close /wait:installer-go", "/delete:P0 /close"])
def test_an_installer_that_closes_the_window(setups, words):
    window, (key,) = open_with_words(setups, words)
    act(window, key, UNINSTALL)
    assert window.program.exit_code() == 0
    window.desk.driver("event-set", "installer-go")


def test_the_exit_code_of_an_installer_changes_nothing(setups):
    window, (key,) = open_with_words(setups, "/exit:1603")
    act(window, key, UNINSTALL)
    setups.setup.wait_for_starts("/exit:1603")
    window.wait_usable()
    assert window.boxes() == [] and window.names() == ["P0"]
    assert window.program.close() == 0


@pytest.mark.parametrize("language", ["english", "german"])
def test_a_question_about_a_name_without_end_can_be_read_and_answered(setups, language):
    seed(setups.desk, [Key("user", "Endless", {
        "DisplayName": "Endless " + "name " * 20000, "UninstallString": SETUP})])
    window = Window(setups.desk, language)
    window.wait_filled(1)
    window.program.choose_row(0)
    window.post(UNINSTALL)
    box = window.box(TITLES[UNINSTALL])
    assert box.text.startswith(TEXTS[window.language][UNINSTALL].split("%s")[0] + "Endless name")
    assert "Endless" in box.text.split("[Identifier")[-1]
    window.program.picture(SCREENSHOTS / f"{window.language}-ask-endless.png")
    for number in (OK, CANCEL):
        left, top, right, bottom = box.button(number)["screen"]
        assert 0 <= left < right <= 1280 and 0 <= top < bottom <= 1024, number
    left, top, right, bottom = box.button(OK)["screen"]
    window.desk.screen.click((left + right) // 2, (top + bottom) // 2)
    box.wait_gone()
    setups.setup.wait_for_starts("")
    assert window.program.close() == 0


ENDLESS = {
    "letters": "x" * 400, "wide letters": "W" * 2000, "line breaks": "x" + "\r\n" * 400 + "x",
    "breaks alone": "\n" * 400 + "x", "words": "name " * 20000, "tabs": "\t" * 400 + "x",
    "ampersands": "&" * 2000, "wide words": "W" * 99 + (" " + "W" * 99) * 20}
LONG_NAMES = {"short": "Endless", "letters": "W" * 200, "words": ("W" * 49 + " ") * 4 + "W"}


def check_on_screen(rect, what):
    left, top, right, bottom = rect
    assert 0 <= left < right <= 1280 and 0 <= top < bottom <= 1024, (what, rect)


@pytest.mark.parametrize("name", LONG_NAMES)
@pytest.mark.parametrize("display_name", ENDLESS)
@pytest.mark.parametrize("language", ["english", "german"])
def test_no_name_moves_a_question_off_the_screen(setups, language, display_name, name):
    key = Key("user", LONG_NAMES[name], {
        "DisplayName": ENDLESS[display_name], "UninstallString": SETUP, "WindowsInstaller": 1})
    seed(setups.desk, [key])
    window = Window(setups.desk, language)
    window.wait_filled(1)
    window.program.choose_row(0)
    for command, title in TITLES.items():
        window.post(command)
        box = window.box(title)
        # Where it lies is known once the window manager has given it a frame.
        picture = f"{language}-box-{display_name}-{name}-{command}.png".replace(" ", "-")
        window.program.picture(SCREENSHOTS / picture)
        check_on_screen(box.frame(), title)
        for number in (OK, CANCEL):
            check_on_screen(box.button(number)["screen"], (title, number))
        box.press_key("Escape")
    window.wait_usable()
    assert setups.setup.lines() == setups.msiexec.lines() == [] and has_key(setups.desk, key)
    assert window.program.close() == 0


# Without a mouse.

KEYS_OF = {"english": {"uninstall": "u", "button": "alt+u"},
           "german": {"uninstall": "d", "button": "alt+d"}}


@both_languages
@pytest.mark.parametrize("way", ["Menu", "shift+F10", "button", "walk"])
def test_from_start_to_uninstalled_by_keyboard_alone(window, setups, way):
    screen, keys = window.desk.screen, KEYS_OF[window.language]
    window.program.activate()
    screen.type_text("birch")
    window.wait_filled(1, len(KEYS))
    for _ in range(3):
        window.program.press_key("Tab")
    eventually(lambda: window.program.ask("focus") == LIST, "the list has the focus")
    window.program.press_key("Down")
    eventually(lambda: window.enabled_buttons() == {UNINSTALL, MODIFY}, "the package is chosen")
    if way == "button":
        window.program.press_key(keys["button"])
    elif way == "walk":
        # Past the name, Refresh, the icon's path, version, date and Modify.
        for _ in range(7):
            window.program.press_key("Tab")
        eventually(lambda: window.program.ask("focus") == UNINSTALL, "the button has the focus")
        window.program.press_key("space")
    else:
        window.program.press_key(way)
        window.wait_for_popup()
        left, top, _, _ = window.popup_frame()
        _, row_top, _, row_bottom = window.cell_rect(0, 2)
        list_left, _, list_right, _ = window.program.control(LIST)["screen"]
        assert list_left <= left < list_right and row_top - 2 <= top <= row_bottom + 2
        screen.press_key(keys["uninstall"])
    window.box(TITLES[UNINSTALL]).press_key("Return")
    setups.setup.wait_for_starts('/S "two words" %windir% /delete:Editor')
    wait_gone(window, EDITOR)
    window.program.press_key("Escape")
    assert window.program.exit_code() == 0


# Refresh, and what the buttons say.

@pytest.mark.parametrize("code, counts", [(0, 1), (1, 0), (5, 0), (6, 0), (7, 0)])
def test_refresh_acts_on_its_click_alone(setups, code, counts):
    """0: clicked, 1: to be drawn, 5: clicked twice, 6 and 7: the focus comes and goes."""
    window = setups.open_held(KEYS)
    before = setups.begin_count(window)
    window.program.ask("command", REFRESH, code)
    setups.check_passes(window, counts, before)
    assert window.program.close() == 0


@pytest.mark.parametrize("way", ["F5", "click"])
def test_refresh_by_key_and_by_mouse(setups, way):
    window = setups.open_held(KEYS)
    before = setups.begin_count(window)
    window.program.activate()
    if way == "F5":
        window.program.press_key("F5")
    else:
        window.program.click(REFRESH)
    window.wait_filled(len(KEYS))
    setups.check_passes(window, 1, before)
    assert window.program.close() == 0


def test_the_buttons_follow_the_chosen_package_after_a_refresh_too(window):
    window.choose("Quarry Suite")
    assert window.enabled_buttons() == set(BUTTONS)
    window.program.ask("set-text", STATUS, "")
    window.program.ask("command", REFRESH)
    window.wait_filled(len(KEYS))
    # Nothing is chosen any more.
    assert window.enabled_buttons() == set()
    for command in (*BUTTONS, REMOVE):
        window.program.ask("command", command)
        assert window.boxes() == [], command
    window.choose("Birchwood Editor")
    assert window.enabled_buttons() == {UNINSTALL, MODIFY}
    assert window.program.close() == 0


def test_the_buttons_follow_what_changes_of_the_chosen_package(window):
    window.choose("Nest")
    assert window.enabled_buttons() == set()
    for value, data, left in (("UninstallString", SETUP, {UNINSTALL}),
                              ("ModifyPath", SETUP, {UNINSTALL, MODIFY}),
                              ("NoRemove", 1, {MODIFY}), ("NoModify", 1, set()),
                              ("WindowsInstaller", 1, set())):
        set_value(window.desk, NEST, value, data)
        shows_by_itself(window.desk, "user", lambda: window.enabled_buttons() == left,
                        f"the buttons after {value}")
    assert window.program.close() == 0


def test_the_buttons_go_off_with_the_chosen_package(window):
    window.choose("Birchwood Editor")
    window.desk.driver("reg-delete", "HKCU", 64, path_of("Editor"))
    wait_gone(window, EDITOR)
    eventually(lambda: window.enabled_buttons() == set(), "no button is left on")
    assert window.program.close() == 0


# By mouse, from where one looks.

@pytest.mark.parametrize("values, arguments", [
    ({"UninstallString": f"{SETUP} /un", "ModifyPath": f"{SETUP} /mod"}, "/un"),
    ({"ModifyPath": f"{SETUP} /mod"}, "/mod"),
    ({"UninstallString": f"{SETUP} /un", "ModifyPath": f"{SETUP} /mod", "NoRemove": 1}, "/mod"),
], ids=["uninstall", "modify", "not removable"])
def test_a_double_click_uninstalls_or_else_modifies(setups, values, arguments):
    key = Key("user", "Twice", {"DisplayName": "Twice", **values})
    seed(setups.desk, [key])
    window = Window(setups.desk)
    window.wait_filled(1)
    window.click_cell("Twice", 2, times=2)
    if arguments == "/un":
        window.box(TITLES[UNINSTALL]).answer(OK)
    setups.setup.wait_for_starts(arguments)
    assert window.program.close() == 0


@pytest.mark.parametrize("command, key, arguments", [
    (UNINSTALL, EDITOR, '/S "two words" %windir% /delete:Editor'), (MODIFY, EDITOR, "/modify")])
def test_a_button_acts_by_a_click(window, setups, command, key, arguments):
    window.choose(key.values["DisplayName"])
    window.program.click(command)
    if command in TITLES:
        window.box(TITLES[command]).answer(OK)
    setups.setup.wait_for_starts(arguments)
    assert window.program.close() == 0




def test_a_whole_day_leaves_nothing_behind(setups):
    """What is live at the beginning of each pass, of the key F5 and of what follows an installer,
    once the first turns have filled what is filled once."""
    window = setups.open_held(KEYS, LIVE="C:\\Setups\\live.txt")
    live_file = setups.desk.prefix.host_path("C:\\Setups\\live.txt")
    live = []
    for _ in range(20):
        window.choose("Birchwood Editor")
        window.program.press_key("shift+F10")
        window.wait_for_popup()
        window.leave_popup()
        window.program.ask("set-text", SEARCH, "birch")
        window.wait_filled(1, len(KEYS))
        window.program.ask("set-text", SEARCH, "")
        window.wait_filled(len(KEYS))
        before = setups.passes()
        window.program.press_key("F5")
        eventually(lambda: setups.passes() == before + 1, "it is read again")
        window.wait_filled(len(KEYS))
        act(window, EDITOR, MODIFY)
        setups.setup.wait_for_starts("/modify")
        eventually(lambda: setups.passes() == before + 2, "it is read again")
        window.wait_filled(len(KEYS))
        live.append(tuple(live_file.read_text().split("\n")[-3:-1]))
    assert len(set(live[2:])) == 1, live
    assert window.program.close() == 0
