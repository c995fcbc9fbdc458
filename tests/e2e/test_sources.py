"""What the list shows of the sources beside the Uninstall keys: the installer's products, and what
the system tells of its updates."""

import os
from pathlib import Path

import pytest

from conftest import BINARIES, GERMAN
from support import dates, filters, packages, rules, source_rules, sources
from support.icons import icon_file
from support.packages import CELLAR, MEADOW, WICKET
from support.program import (ALL_PACKAGES, MICROSOFT, NORMAL_PACKAGES, REFRESH, STATUS, Desk,
                             eventually)
from support.registry import EXPAND_SZ, Key
from support.seeding import set_value
from support.sources import HKLM32, success
from support.watching import shows_by_itself
from test_history import Memory, marks
from test_language import SWITCH_LANGUAGE, Restarting, put_into

SOURCE, NAME, DATE, ICON, PACKAGE_PATH, FEATURES, PATCHES = 1, 2, 6, 13, 16, 17, 18

# Dates far from any key's last write, so that they stay as they are told.
KEYS = [Key("local", "Alpha", {"DisplayName": "Alpha", "InstallDate": "20011231"}),
        Key("user", "Gamma", {"DisplayName": "Gamma", "InstallDate": "20030304"})]
ICON_FILE = "C:\\windows\\there.ico"


def expected_list(desk, keys, products=None, others=()):
    """`products`: how many patches each package has. `others`: the rows of the other sources, in
    the order of a pass. They all have one key in the table, and so the last one stands."""
    rows = rules.read_all(rules.world_of(desk, keys, {}))
    found = [*source_rules.product_rows(desk, products or {}, rows), *others]
    return [rules.cells(row) for row in rules.newest_first(found[-1:] + rows)]


def check_shown(program, wanted):
    """Neither more nor less than these rows, once a refresh is through."""
    program.wait_filled(len(wanted))
    shown = []

    def is_as_wanted():
        shown[:] = program.rows()
        return shown == wanted

    eventually(is_as_wanted, lambda: "the list is as the rules have it; too many are "
               f"{[row for row in shown if row not in wanted]}, missing are "
               f"{[row for row in wanted if row not in shown]}")


def refresh(program):
    program.ask("set-text", STATUS, "")
    program.ask("command", REFRESH)


def open_all(desk):
    program = desk.open("-nopersist", "-noupdate")
    program.select_type(ALL_PACKAGES)
    return program


def row_of(program, name):
    found = [row for row in program.rows() if row[0] == name]
    assert len(found) == 1, f"{len(found)} rows named {name!r}"
    return found[0]


def sources_of(program):
    return {row[SOURCE] for row in program.rows()}


# The installer's products.

@pytest.fixture
def with_products(make_desk):
    """Makes a desk with packages installed in it."""
    opened = []

    def make(*installed, **options):
        opened.append(make_desk(KEYS, **options))
        desk = opened[-1].__enter__()
        for package in installed:
            packages.install(desk, package)
        return desk

    yield make
    for desk in reversed(opened):
        desk.__exit__(None, None, None)


def keys_of(desk, *announced):
    return [*KEYS, *(source_rules.key_of(desk, package) for package in announced)]


def test_products_keep_what_their_keys_tell_and_show_features_patches_and_package(with_products):
    desk = with_products(MEADOW, WICKET, CELLAR)
    packages.seed_patches(desk, MEADOW, ["A" * 32, "B" * 32])
    packages.seed_patches(desk, CELLAR, ["B" * 32])
    program = open_all(desk)
    check_shown(program, expected_list(desk, keys_of(desk, MEADOW, WICKET, CELLAR),
                                       {MEADOW: 2, WICKET: 0, CELLAR: 1}))
    shown = {package: row_of(program, package.code) for package in (MEADOW, WICKET, CELLAR)}
    assert [(row[FEATURES], row[PATCHES]) for row in shown.values()] == [
        ("4", "2"), ("1", "0"), ("2", "1")]
    assert {row[SOURCE] for row in shown.values()} == {"HKLM Uninstall"}
    assert all(desk.prefix.host_path(row[PACKAGE_PATH]).is_file() for row in shown.values())
    assert shown[MEADOW][ICON].endswith("\\Almanac.ico") and shown[WICKET][ICON] == ""


def test_a_product_without_a_key_is_a_row_of_its_own(with_products):
    desk = with_products(MEADOW, WICKET)
    packages.forget(desk, MEADOW)
    packages.seed_patches(desk, MEADOW, ["A" * 32])
    program = open_all(desk)
    check_shown(program, expected_list(desk, keys_of(desk, WICKET), {MEADOW: 1, WICKET: 0}))
    row = row_of(program, MEADOW.code)
    assert (row[SOURCE:NAME + 2], row[FEATURES:PATCHES + 1]) == (
        ["MSI", "Meadow Almanac", "2.5.1"], ["4", "1"])
    assert row[DATE] == dates.shown(
        dates.parse(packages.property_of(desk, MEADOW, "InstallDate")), desk.driver("short-date"))
    # The date that a key would have had is gone with it, and with that the time of day.
    assert ":" not in row[DATE] and row[7] == ""


def test_of_two_products_without_keys_the_last_one_is_shown(with_products):
    desk = with_products(MEADOW, CELLAR, WICKET)
    for package in (MEADOW, CELLAR):
        packages.forget(desk, package)
    program = open_all(desk)
    check_shown(program, expected_list(desk, keys_of(desk, WICKET),
                                       {MEADOW: 0, CELLAR: 0, WICKET: 0}))
    # By their packed codes, 07E5... and 706F....
    assert [row[0] for row in program.rows() if row[SOURCE] == "MSI"] == [CELLAR.code]


def test_a_key_keeps_its_own_name_version_date_and_icon(with_products):
    desk = with_products(MEADOW)
    desk.prefix.make_file(ICON_FILE, icon_file((10, 120, 250)))
    told = {"DisplayName": "Renamed", "DisplayVersion": "9", "InstallDate": "20010203",
            "DisplayIcon": ICON_FILE, "WindowsInstaller": 0}
    sources.put(desk, HKLM32, MEADOW.key, told)
    program = open_all(desk)
    check_shown(program, expected_list(desk, keys_of(desk, MEADOW), {MEADOW: 0}))
    row = row_of(program, MEADOW.code)
    assert (row[NAME], row[3], row[ICON], row[FEATURES]) == ("Renamed", "9", ICON_FILE, "4")


@pytest.mark.parametrize("icon, is_kept", [
    ("C:\\gone.ico,2", False),
    ("%SystemRoot%\\there.ico,2", True),
    ((EXPAND_SZ, "%SystemRoot%\\gone.ico"), False),
    (f'"{ICON_FILE}" /quiet,1', True),
    (f' "{ICON_FILE}"', True),
    ("C:\\windows", True),
    ("", False),
], ids=["gone", "variable", "gone variable", "quotes", "blank", "folder", "empty"])
def test_an_icon_whose_file_is_gone_gives_way_to_the_products(products_desk, icon, is_kept):
    desk, program = products_desk
    sources.put(desk, HKLM32, MEADOW.key, {"DisplayIcon": icon})
    refresh(program)
    wanted = icon if is_kept else packages.product_icon(desk, MEADOW)
    check_shown(program, expected_list(desk, keys_of(desk, MEADOW), {MEADOW: 0}))
    assert row_of(program, MEADOW.code)[ICON] == wanted


@pytest.fixture(scope="module")
def products_desk(make_desk):
    """With one product, for tests that change its key or its patches."""
    with make_desk(KEYS) as desk:
        packages.install(desk, MEADOW)
        desk.prefix.make_file(ICON_FILE, icon_file((10, 120, 250)))
        yield desk, open_all(desk)


def test_a_key_that_tells_nothing_shows_what_the_installer_knows(products_desk):
    desk, program = products_desk
    sources.delete(desk, HKLM32, MEADOW.key)
    sources.put(desk, HKLM32, MEADOW.key, {"Publisher": "Meadow Press"})
    refresh(program)
    check_shown(program, expected_list(desk, keys_of(desk, MEADOW), {MEADOW: 0}))
    row = row_of(program, MEADOW.code)
    assert row[SOURCE:4] == ["HKLM Uninstall", "Meadow Almanac", "2.5.1"]


def test_a_code_in_small_letters_is_the_same_product(products_desk):
    desk, program = products_desk
    sources.delete(desk, HKLM32, MEADOW.key)
    key = Key("local", MEADOW.code.lower(), {"DisplayName": "Small", "InstallDate": "20020203"})
    for name, value in key.values.items():
        set_value(desk, key, name, value)
    refresh(program)
    check_shown(program, expected_list(desk, [*KEYS, key], {MEADOW: 0}))
    assert row_of(program, key.name)[FEATURES] == "4"
    sources.delete(desk, HKLM32, MEADOW.key)


def test_a_patch_counts_once_whoever_has_it_and_only_where_it_is_applied(products_desk):
    desk, program = products_desk
    sources.put(desk, HKLM32, MEADOW.key, {"DisplayName": "Patched"})
    for sid, patches in (("S-1-5-18", "A"), ("S-1-5-21-7", "AB")):
        packages.seed_patches(desk, MEADOW, [letter * 32 for letter in patches], sid)
    packages.seed_patches(desk, WICKET, ["C" * 32])
    sources.put(desk, HKLM32, f"{packages.MACHINE}\\Patches\\{'D' * 32}", {"LocalPackage": "x"})
    refresh(program)
    check_shown(program, expected_list(desk, keys_of(desk, MEADOW), {MEADOW: 2}))
    packages.clear_patches(desk)
    refresh(program)
    check_shown(program, expected_list(desk, keys_of(desk, MEADOW), {MEADOW: 0}))


def test_a_package_is_shown_when_it_is_installed_and_gone_when_it_is_removed(with_products):
    desk = with_products()
    program = open_all(desk)
    check_shown(program, expected_list(desk, KEYS))
    packages.install(desk, WICKET)
    # The key comes before its values, and both before the installer knows the product, which is not
    # watched. And the first pass that meets it marks it as new.
    wanted = expected_list(desk, keys_of(desk, WICKET), {WICKET: 0})
    shows_by_itself(desk, "local", lambda: program.rows() == wanted, lambda: f"{wanted[0]}, not "
                    f"{program.rows()}")
    packages.remove(desk, WICKET)
    shows_by_itself(desk, "local", lambda: len(program.rows()) == len(KEYS), "it is gone")
    check_shown(program, expected_list(desk, KEYS))
    assert program.close() == 0


# What the system tells of its updates: each time only the last row can be seen.

@pytest.fixture(scope="module")
def plain_program(make_desk):
    with make_desk(KEYS) as desk:
        yield desk, open_all(desk)


@pytest.fixture
def plain(plain_program):
    """A desk and the program on it, with none of these sources."""
    yield plain_program
    desk, program = plain_program
    sources.clear(desk)
    refresh(program)
    check_shown(program, expected_list(desk, KEYS))


FIX = {"PackageName": "Fix for Garden", "PackageVersion": "3", "InstalledBy": "me",
       "InstallerName": "update.exe", "InstallerVersion": "6.1.22.4", "ReleaseType": "Hotfix",
       "InstalledDate": "8/14/2003", "Publisher": "Larkfield", "PublishingGroup": "Joinery"}

UPDATE_TREES = {
    "all values": ({"Garden\\SP2\\KB77001": FIX}, "KB77001"),
    "at the top": ({"KB77001": FIX}, "KB77001"),
    "only a name": ({"Garden\\KB77002": {"PackageName": "Bare"}}, "KB77002"),
    "the last of them": ({"Garden\\KB1": FIX, "Garden\\KB2": dict(FIX, PackageName="Second"),
                          "Arbour\\KB3": FIX}, "KB2"),
    "this version": ({"Garden\\KB1": dict(FIX, ThisVersionInstalled="y")}, "KB1"),
    "another version, but one below it": (
        {"Garden": dict(FIX, ThisVersionInstalled="N"), "Garden\\KB4\\Part": FIX}, "Part"),
    "no name, but one below it": ({"Garden": {"Publisher": "x"}, "Garden\\KB5": FIX}, "KB5"),
    "one above another": ({"Garden": FIX, "Garden\\KB6": dict(FIX, InstalledDate="")}, "KB6"),
    "none": ({"Garden": dict(FIX, ThisVersionInstalled="N"), "Garden\\KB7": {"Publisher": "x"}},
             None),
    "deep": ({"\\".join(map(str, range(30))): FIX}, "29"),
    "letters": ({"G\u00e4rten": dict(FIX, PackageName="Gr\u00fcner \u20ac", InstalledDate="")},
                "G\u00e4rten"),
}


@pytest.mark.parametrize("name", UPDATE_TREES)
def test_the_last_update_of_the_tree_is_shown(plain, name):
    desk, program = plain
    tree, shown = UPDATE_TREES[name]
    sources.seed_updates(desk, tree)
    refresh(program)
    rows = source_rules.update_rows(desk, tree)
    assert [row["name"] for row in rows[-1:]] == ([shown] if shown else [])
    check_shown(program, expected_list(desk, KEYS, others=rows))


def test_an_update_of_the_tree_shows_all_that_its_values_tell(plain):
    desk, program = plain
    sources.seed_updates(desk, {"Garden\\SP2\\KB77001": FIX})
    refresh(program)
    program.wait_filled(len(KEYS) + 1)
    assert row_of(program, "KB77001") == [
        "KB77001", "MS Updates: update.exe 6.1.22.4 Hotfix", "   Fix for Garden", "3",
        "Garden\\SP2", "Garden\\SP2", "14/08/2003", *[""] * 10, "0", "0", "no", "no", "", "", "me",
        "Larkfield Joinery", "", "", "", "", "", ""]


LOGS = {
    "one": [success("Fix for Garden (KB2345678)")],
    "the last of them": [success("Fix for Garden (KB1)"), success("Fix for Arbour (KB2)"), "noise"],
    "a definition": [success("Definitions for Garden - KB915597 (Definition 1.105.1116.0)")],
    "no number": [success("Garden Picture Service Pack 2")],
    "no digits": [success("The KB of Garden")],
    "a version": [success("Fix KB77 2.0 and more")],
    "no long phrase": [success("Driver for Garden", wording="Installation Successful: ")],
    "letters": [success("Fix f\u00fcr G\u00e4rten \u20ac 5")],
    "no time": ["2025-08-14 " + success("Lost", when=""), "Installation Successful: Lost"],
    "in winter": [success("Snow", when="2025-01-14\t23:59:59:999")],
    "no date": [success("Undated", when="some\tday")],
    "a failure after it": [success("Good"), success("Bad", wording="Installation Failure: ")],
    "none": ["noise", success("Bad", wording="Installation Failure: ")],
}


@pytest.mark.parametrize("name", LOGS)
def test_the_last_success_of_the_log_is_shown(plain, name):
    desk, program = plain
    sources.write_log(desk, *LOGS[name])
    refresh(program)
    rows = source_rules.log_rows(desk)
    assert bool(rows) == (name != "none")
    check_shown(program, expected_list(desk, KEYS, others=rows))


@pytest.mark.parametrize("title, name, version", [
    ("Definitions for Garden - KB915597 (Definition 1.105.1116.0)", "KB915597", "1.105.1116.0"),
    ("Fix for Garden (KB2345678)", "KB2345678", ""),
    ("The KB of Garden", "KB", ""),
    ("Garden Picture", "Garden Picture", ""),
])
def test_a_success_of_the_log_shows_number_title_and_version(plain, title, name, version):
    desk, program = plain
    sources.write_log(desk, success(title, when="2025-01-14\t10:20:30:400"))
    refresh(program)
    program.wait_filled(len(KEYS) + 1)
    assert row_of(program, name) == [
        name, "Windows Update", title, version, "", "", "14/01/2025 10:20", *[""] * 10, "0", "0",
        "no", "no", *[""] * 10]


@pytest.mark.skipif("ZOLVANE_REALDATA" not in os.environ,
                    reason="ZOLVANE_REALDATA names no folder with the logs of real machines")
def test_the_log_of_a_real_machine_shows_its_last_success(plain):
    desk, program = plain
    logs = list(Path(os.environ["ZOLVANE_REALDATA"]).glob("log/*_WindowsUpdate.log"))
    assert logs
    for log in logs:
        desk.prefix.make_file(sources.LOG, log.read_bytes())
        refresh(program)
        rows = source_rules.log_rows(desk)
        assert len(rows) > 200
        check_shown(program, expected_list(desk, KEYS, others=rows))


SUMMER_2020 = 0x01D64A6F_12345678
SERVICED = {"InstallClient": "DISM Package Manager Provider", "InstallName": "Garden-Pack~31~x86",
            "InstallLocation": "\\\\?\\C:\\windows\\CbsTemp\\", "InstallUser": "S-1-5-18",
            "InstallTimeHigh": SUMMER_2020 >> 32, "InstallTimeLow": SUMMER_2020 & 0xFFFFFFFF}

SERVICING = {
    "all values": {"Garden~31~x86~~6.1": SERVICED},
    "a file's name": {"Package_for_KB1~31bf~x86~~6.1": dict(SERVICED, InstallName="update.mum")},
    "no time": {"Garden": {"InstallName": "x", "InstallClient": "WindowsUpdateAgent"}},
    "half a time": {"Garden": {"InstallTimeLow": 5}},
    "a time of another type": {"Garden": dict(SERVICED, InstallTimeHigh="1")},
    "nobody known": {"Garden": dict(SERVICED, InstallUser="S-1-5-21-1-2-3-1000")},
    "a group": {"Garden": dict(SERVICED, InstallUser="S-1-5-32-544")},
    "no account": {"Garden": dict(SERVICED, InstallUser="some one")},
    "the last of them": {"Arbour": SERVICED, "Garden": dict(SERVICED, InstallName="Garden"),
                         "Fence": SERVICED},
    "nothing": {"Garden": {}},
}


@pytest.mark.parametrize("name", SERVICING)
def test_the_last_serviced_package_is_shown(plain, name):
    desk, program = plain
    sources.seed_servicing(desk, SERVICING[name])
    refresh(program)
    rows = source_rules.servicing_rows(desk, SERVICING[name])
    assert len(rows) == len(SERVICING[name])
    check_shown(program, expected_list(desk, KEYS, others=rows))


def test_a_serviced_package_shows_all_that_its_values_tell(plain):
    desk, program = plain
    sources.seed_servicing(desk, SERVICING["a file's name"])
    refresh(program)
    program.wait_filled(len(KEYS) + 1)
    row = row_of(program, "Package_for_KB1~31bf~x86~~6.1")
    assert row[SOURCE:4] == ["DISM Package Manager Provider",
                             "Package_for_KB1 31bf x86  6.1 - update.mum", ""]
    assert (row[14], row[23]) == ("\\\\?\\C:\\windows\\CbsTemp\\", "NT AUTHORITY\\SYSTEM")


def test_a_hotfix_that_the_system_tells_of_is_shown(make_desk):
    with make_desk(KEYS, wmi=True) as desk:
        program = open_all(desk)
        check_shown(program, expected_list(desk, KEYS, others=source_rules.hotfix_rows(desk)))
        row = row_of(program, "KB1234567")
        assert row[SOURCE:NAME + 1] == ["WMI QFE", "Update KB1234567"]
        refresh(program)
        check_shown(program, expected_list(desk, KEYS, others=source_rules.hotfix_rows(desk)))
        assert program.close() == 0


# All of them.

TREE, PACKAGES = {"Garden\\KB77001": FIX}, {"Garden~31~x86~~6.1": SERVICED}
LINE = success("Fix for Arbour (KB2345678)")


def seed_all(desk):
    """All but the installer's products."""
    sources.seed_updates(desk, TREE)
    sources.seed_servicing(desk, PACKAGES)
    sources.write_log(desk, LINE)


def test_of_all_sources_the_last_that_has_a_row_is_shown(with_products):
    desk = with_products(MEADOW, WICKET)
    packages.forget(desk, MEADOW)
    seed_all(desk)
    program = open_all(desk)
    keys, products = keys_of(desk, WICKET), {MEADOW: 0, WICKET: 0}

    def check(*others):
        check_shown(program, expected_list(desk, keys, products, others))
        assert len(sources_of(program)) == 3

    updates, logged = source_rules.update_rows(desk, TREE), source_rules.log_rows(desk)
    check(*updates, *logged, *source_rules.servicing_rows(desk, PACKAGES))
    sources.delete(desk, sources.HKLM64, sources.SERVICING)
    refresh(program)
    check(*updates, *logged)
    desk.prefix.host_path(sources.LOG).unlink()
    refresh(program)
    check(*updates)
    sources.delete(desk, HKLM32, sources.UPDATES)
    refresh(program)
    check()
    assert "MSI" in sources_of(program)
    packages.remove(desk, MEADOW)
    refresh(program)
    check_shown(program, expected_list(desk, keys, {WICKET: 0}))
    assert program.close() == 0


def test_with_every_source_the_hotfix_is_shown(with_products):
    desk = with_products(MEADOW, WICKET, wmi=True)
    packages.forget(desk, MEADOW)
    seed_all(desk)
    program = open_all(desk)
    check_shown(program, expected_list(
        desk, keys_of(desk, WICKET), {MEADOW: 0, WICKET: 0}, source_rules.hotfix_rows(desk)))
    assert sources_of(program) == {"HKLM Uninstall", "HKCU Uninstall", "WMI QFE"}
    assert program.close() == 0


def test_the_filter_hides_an_update_where_the_rules_say_so(plain):
    desk, program = plain
    sources.write_log(desk, LINE)
    refresh(program)
    rows = source_rules.log_rows(desk)
    check_shown(program, expected_list(desk, KEYS, others=rows))
    everything = rows + rules.read_all(rules.world_of(desk, KEYS, {}))
    try:
        for microsoft in (1, 0):
            program.ask("check", MICROSOFT, microsoft)
            for kind in range(NORMAL_PACKAGES, ALL_PACKAGES + 1):
                program.select_type(kind)
                wanted = {row["name"] for row in everything
                          if filters.accepts(row, kind, microsoft, "", rules.size_text)}
                assert set(program.column(0)) == wanted, (kind, microsoft)
                assert (rows[0]["name"] in wanted) == (kind >= 3 and microsoft == 1)
                assert program.status() == f"{len(wanted)} / {len(everything)} packages"
    finally:
        program.ask("check", MICROSOFT, 1)
        program.select_type(ALL_PACKAGES)


def test_an_update_that_has_the_name_of_a_key_shares_its_line(make_desk):
    key = Key("local", "KB2345678", {"DisplayName": "By its key", "InstallDate": "20040506",
                                     "Publisher": "Larkfield"})
    with make_desk([*KEYS, key]) as desk:
        sources.write_log(desk, success("Fix (KB2345678)", when="2025-01-14\t10:20:30:400"))
        program = open_all(desk)
        program.wait_filled(len(KEYS) + 1)
        row = row_of(program, key.name)
        # Its row comes first, by its empty key: the other's texts win, the date apart.
        assert row[:4] == [key.name, "Windows Update, HKLM Uninstall", "By its key", ""]
        assert (row[DATE], row[24]) == ("14/01/2025 10:20", "Larkfield")
        assert program.close() == 0


def test_a_row_that_another_takes_the_place_of_stays_until_a_refresh(plain):
    desk, program = plain
    sources.write_log(desk, success("First"))
    refresh(program)
    program.wait_filled(len(KEYS) + 1)
    sources.write_log(desk, success("First"), success("Second"))
    # No registry key tells of the log: another change has it read.
    shows_by_itself(desk, "local", lambda: "Second" in program.column(0), "the second")
    assert set(program.column(0)) == {"Alpha", "Gamma", "First", "Second"}
    refresh(program)
    check_shown(program, expected_list(desk, KEYS, others=source_rules.log_rows(desk)))


def test_a_row_whose_source_is_gone_stays_until_a_refresh(plain):
    desk, program = plain
    sources.write_log(desk, success("First"))
    refresh(program)
    program.wait_filled(len(KEYS) + 1)
    late = Key("local", "Late", {"DisplayName": "Late", "InstallDate": "20040506"})
    sources.clear(desk)
    try:
        for name, value in late.values.items():
            set_value(desk, late, name, value)
        shows_by_itself(desk, "local", lambda: "Late" in program.column(0), "the change")
        assert set(program.column(0)) == {"Alpha", "Gamma", "First", "Late"}
        refresh(program)
        check_shown(program, expected_list(desk, [*KEYS, late]))
    finally:
        sources.delete(desk, HKLM32, f"Software\\{packages.UNINSTALL}\\Late")
        shows_by_itself(desk, "local", lambda: "Late" not in program.column(0), "it is gone")


# Over restarts.

@pytest.fixture
def memory(make_desk):
    with make_desk(KEYS) as desk:
        yield Memory(desk)


def run(memory, count):
    """A whole run over everything; the marks that it has shown."""
    program = memory.open(count=None)
    program.select_type(ALL_PACKAGES)
    program.wait_filled(count)
    shown = marks(program)
    assert program.close() == 0
    return shown


def test_the_first_run_marks_no_source_and_the_next_none_without_a_change(memory):
    sources.write_log(memory.desk, LINE)
    assert run(memory, 3) == {}
    kept = memory.content()
    assert b'source="Windows Update"' in kept and b'name="KB2345678"' in kept
    os.utime(memory.file, (0, 0))
    assert run(memory, 3) == {}
    assert memory.file.stat().st_mtime == 0 and memory.content() == kept


def test_a_source_that_has_come_is_new_and_one_with_another_row_has_changed(memory):
    run(memory, 2)
    sources.write_log(memory.desk, success("First"))
    assert run(memory, 3) == {"First": "new"}
    assert run(memory, 3) == {}
    sources.write_log(memory.desk, success("First"), success("Second"))
    assert run(memory, 3) == {"Second": "changed"}
    assert b"Second" in memory.content() and b"First" not in memory.content()
    # All of these sources have one key: the row of another one is a change of that.
    sources.seed_servicing(memory.desk, {"Garden": dict(SERVICED, InstallName="Third")})
    assert run(memory, 3) == {"Third": "changed"}
    assert run(memory, 3) == {}


def test_a_source_that_has_gone_leaves_no_mark(memory):
    sources.seed_updates(memory.desk, TREE)
    run(memory, 3)
    kept = memory.content()
    sources.clear(memory.desk)
    assert run(memory, 2) == {}
    assert memory.content() == kept
    # It comes back before another change, and so is no news.
    sources.seed_updates(memory.desk, TREE)
    assert run(memory, 3) == {}


def test_what_the_installer_tells_of_a_product_is_remembered(memory):
    packages.install(memory.desk, MEADOW)
    run(memory, 3)
    kept = memory.content()
    assert b'MSI="1"' in kept and b'features="4"' in kept and b'patches="0"' in kept
    assert packages.property_of(memory.desk, MEADOW, "LocalPackage").encode() in kept
    assert run(memory, 3) == {}
    packages.seed_patches(memory.desk, MEADOW, ["A" * 32])
    assert run(memory, 3) == {MEADOW.name: "changed"}
    assert run(memory, 3) == {}


def test_a_product_that_loses_its_key_is_new(memory):
    packages.install(memory.desk, MEADOW)
    run(memory, 3)
    packages.forget(memory.desk, MEADOW)
    assert run(memory, 3) == {MEADOW.name: "new"}
    assert run(memory, 3) == {}
    packages.remove(memory.desk, MEADOW)
    assert run(memory, 2) == {}


# In German.

def test_every_source_in_german_and_after_a_change_of_language(make_desk):
    with make_desk(KEYS, lc_all=GERMAN) as desk:
        packages.install(desk, MEADOW)
        programs = Restarting(desk, put_into(desk, "Own"))
        try:
            program = programs.open()
            program.select_type(ALL_PACKAGES)
            keys = keys_of(desk, MEADOW)
            wanted = []
            for seed, rows in (
                    (lambda: sources.seed_updates(desk, TREE),
                     lambda: source_rules.update_rows(desk, TREE)),
                    (lambda: sources.write_log(desk, LINE), lambda: source_rules.log_rows(desk)),
                    (lambda: sources.seed_servicing(desk, PACKAGES),
                     lambda: source_rules.servicing_rows(desk, PACKAGES))):
                seed()
                refresh(program)
                wanted[:] = expected_list(desk, keys, {MEADOW: 0}, rows())
                program.wait_for_status(f"{len(wanted)} / {len(wanted)} Pakete")
                assert program.rows() == wanted
            program = programs.switch(program)
            program.select_type(ALL_PACKAGES)
            # The texts of these rows know no language, and nothing has changed.
            check_shown(program, wanted)
            assert program.close() == 0
        finally:
            programs.end_programs()
