"""What the list shows of the three Uninstall keys."""

import pytest

from conftest import ENGLISH, GERMAN
from support import rules, samples
from support.program import ALL_PACKAGES

NAME, PROGRAM, VERSION, PARENT_NAME, DATE, SIZE = 0, 2, 3, 5, 6, 8
UNINSTALL_COMMAND, INSTALLER, CHECK, ICON, LAST_USE, BIT64, FREQUENCY = 9, 11, 12, 13, 15, 19, 21

COLUMNS = [
    ("Uninstall Entry", "Uninstall-Eintrag", 20, "left"),
    ("Source", "Quelle", 0, "left"),
    ("Program Name", "Programmname", 220, "left"),
    ("Version", "Version", 90, "right"),
    ("Parent entry", "Parent-Eintrag", 0, "left"),
    ("Parent", "Parent", 120, "left"),
    ("Installation Date", "Installations-Datum", 114, "left"),
    ("Uninstall Date", "Deinstallations-Datum", 0, "left"),
    ("Size", "Gr\u00f6\u00dfe", 70, "right"),
    ("Uninstall Command", "Uninstall-Kommando", 200, "left"),
    ("Modify Command", "Modify-Kommando", 200, "left"),
    ("Installer path", "Installer-Pfad", 0, "left"),
    ("Check", "Pr\u00fcfung", 30, "left"),
    ("Icon", "Icon", 200, "left"),
    ("Install Location", "Installationspfad", 200, "left"),
    ("last usage", "letzter Start", 120, "left"),
    ("Package path", "Paketpfad", 200, "left"),
    ("Features", "Features", 50, "right"),
    ("Patches", "Patches", 50, "right"),
    ("64 Bit", "64 Bit", 50, "left"),
    ("System Component", "Systemkomponente", 50, "left"),
    ("Usage Frequency", "H\u00e4ufigkeit", 50, "left"),
    ("Comment", "Kommentar", 200, "left"),
    ("User", "User", 150, "left"),
    ("Publisher", "Hersteller", 150, "left"),
    ("Contact", "Kontakt", 120, "left"),
    ("Help URL", "Support-URL", 150, "left"),
    ("Help phone", "Support-Telefonnr.", 100, "left"),
    ("About URL", "Info-URL", 150, "left"),
    ("Update URL", "Update-URL", 150, "left"),
    ("changes", "\u00c4nderungen", 50, "left"),
]


def str_id(value):
    return str(value)[:24]


class Filled:
    """The program over the whole sample, with what it has to show."""

    def __init__(self, desk, packages):
        self.program = desk.open("-nopersist", "-noupdate")
        self.program.select_type(ALL_PACKAGES)
        world = rules.world_of(desk, samples.KEYS, samples.USAGES)
        self.expected = rules.expected_list(world)
        count = len(self.expected)
        self.program.wait_for_status(f"{count} / {count} {packages}")
        self.rows = self.program.rows()

    def row(self, name, source=None):
        """The row with this text in the first column."""
        found = [row for row in self.rows if row[NAME] == name and source in (None, row[1])]
        assert len(found) == 1, f"{len(found)} rows named {name!r}"
        return found[0]


@pytest.fixture(scope="module")
def english(make_desk):
    with make_desk(samples.KEYS, samples.USAGES, samples.FILES, ENGLISH) as desk:
        yield Filled(desk, "packages")


@pytest.fixture(scope="module")
def german(make_desk):
    with make_desk(samples.KEYS, samples.USAGES, samples.FILES, GERMAN) as desk:
        yield Filled(desk, "Pakete")


def test_every_cell_is_as_the_rules_have_it(english):
    assert english.rows == english.expected


def test_every_cell_is_as_the_rules_have_it_in_german(german):
    assert german.rows == german.expected


def test_a_plain_program_shows_all_that_its_key_tells(english):
    folder = "C:\\Program Files (x86)\\Birchwood\\"
    assert english.row("Birchwood Editor_is1") == [
        "Birchwood Editor_is1", "HKLM Uninstall", "Birchwood Editor 4", "4.10.2", "", "",
        "08/01/2026", "31.12.2099", "20.00 MB", f'"{folder}unins000.exe" /SILENT',
        f'"{folder}unins000.exe" /MODIFY', f"{folder}unins000.exe", "OK", f"{folder}birch.exe,0",
        folder, "", "", "0", "0", "no", "no", "", "Writes letters", "", "Birchwood Software",
        "Support desk", "http://help.birchwood.example/", "+44 1632 960123",
        "http://www.birchwood.example/", "http://www.birchwood.example/new", ""]


@pytest.mark.parametrize("name, column, text", [
    (samples.SUITE, CHECK, "OK"),
    (samples.SUITE, INSTALLER, "C:\\windows\\system32\\MsiExec.exe"),
    (samples.SUITE, SIZE, "1.00 MB"),
    (samples.READER, CHECK, "fix"),
    ("{00000000-AAAA-BBBB-CCCC-000000000001}", CHECK, "fix"),
    ("Keeper", CHECK, "-"),
    ("Keeper without command", CHECK, ""),
    ("Nothing to run", CHECK, ""),
    ("Modify only", INSTALLER, "C:\\windows\\lumen-un.exe"),
    ("Harbour Tools", INSTALLER, "C:\\Program Files (x86)\\Harbour Tools\\setup\\un.exe"),
    ("Ghost", INSTALLER, "C:\\gone away\\uninstall.exe"),
    ("Lumen", UNINSTALL_COMMAND, '"%windir%\\lumen-un.exe" /x'),
    ("Lumen", INSTALLER, "C:\\windows\\lumen-un.exe"),
    ("Bare name", INSTALLER, "C:\\windows\\lumen-un.exe"),
    (f"{samples.SUITE}.KB912812", 4, samples.SUITE[1:-1]),
    (f"{samples.SUITE}.KB912812", PROGRAM, "   Update for Quarry Suite"),
    ("Harbour Charts", PARENT_NAME, "Harbour Tools"),
    ("{1234}.", 4, "1234"),
    ("x{1}.y", 4, ""),
    ("Nameless", PROGRAM, "Nameless"),
    ("Nameless", 20, "yes"),
    ("Long", 22, "tale " * 300),
    ("Several", 22, "first"),
    ("T\u00f6nning", PROGRAM, "T\u00f6nning Kalender \u20ac"),
    ("Size none", SIZE, ""),
    ("Size zero", SIZE, "0.00 MB"),
    ("Lantern", BIT64, "yes"),
    ("Cache 1", LAST_USE, "01.07.2024 12:30:00"),
    ("Cache 1", FREQUENCY, "42"),
    ("Cache 1", SIZE, "4.77 MB"),
    ("Cache 2", FREQUENCY, "42"),
    ("Cache 2", LAST_USE, "01.07.2024 12:30:00"),
    ("Cache 3", ICON, "C:\\windows\\lumen-un.exe,3"),
    ("Cache 4", ICON, "C:\\elsewhere\\main.exe"),
    ("Cache 4", LAST_USE, "16.01.2024 00:30:00"),
    ("Cache 5", FREQUENCY, "3"),
    ("Cache 5", SIZE, "0.50 MB"),
    ("Date 00", DATE, "05/01/2009"),
    ("Date 03", DATE, "25/12/2009"),
    ("Date 04", DATE, ""),
    ("Date 14", DATE, "01/01/1970"),
], ids=str_id)
def test_notable_cells(english, name, column, text):
    assert english.row(name)[column] == text


def test_one_name_in_two_views_is_one_row_from_the_64_bit_one(english):
    assert english.row("Twin", "HKLM Uninstall")[PROGRAM] == "Twin of 64"
    assert english.row("Twin", "HKLM Uninstall")[BIT64] == "yes"
    assert english.row("Twin", "HKCU Uninstall")[PROGRAM] == "Twin of the user"


@pytest.mark.parametrize("language", ["english", "german"])
def test_newest_stands_first_and_a_tie_keeps_the_order_of_keys(request, language):
    names = [row[NAME] for row in request.getfixturevalue(language).rows]
    ordered = [name[-1] for name in names if name.startswith("Order ")]
    # With slashes a date is shown day first and read month first: 11/10 counts as November.
    assert ordered == {"english": ["c", "f", "b", "d", "a", "e"],
                       "german": ["c", "b", "d", "f", "a", "e"]}[language]


def test_rows_without_a_date_stand_before_all_others(german):
    names = [row[NAME] for row in german.rows]
    assert names.index("Date 04") < names.index("Order c")


@pytest.mark.parametrize("language", ["english", "german"])
def test_columns_have_their_titles_widths_and_alignments(request, language):
    columns = request.getfixturevalue(language).program.columns()
    shown = [(column["title"], column["width"], column["align"]) for column in columns]
    wanted = [(row[language == "german"], *row[2:]) for row in COLUMNS]
    assert shown == wanted
    assert [column["order"] for column in columns] == list(range(len(COLUMNS)))


def test_no_header_shows_an_arrow_at_the_start(english):
    assert {column["arrow"] for column in english.program.columns()} == {""}
