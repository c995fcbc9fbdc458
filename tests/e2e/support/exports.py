"""What an export has to hold, worked out apart from the program's code; readers of workbooks that
come from elsewhere; and the dialog that asks for the file's name."""

import csv
import io
import os
import subprocess
import tempfile
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path

import xlrd

from . import rules
from .program import eventually
from .window import CANCEL, NO, OK, WM_COMMAND, YES, Box

EXPORT = 1024
DIALOG_TITLES = {"english": "Export software list...", "german": "Export der Software-Liste..."}
FILE_NAME, FILE_TYPE = 1148, 1136

TITLES = {
    "english": [
        "Program Name", "Uninstall Entry", "Source", "Version", "Parent entry", "Parent",
        "Installation Date", "Uninstall Date", "Size", "Uninstall Command", "Modify Command",
        "Icon", "Installer path", "last usage", "Package path", "Features", "Patches", "64 Bit",
        "System Component", "Usage Frequency", "Comment", "User", "Publisher", "Contact",
        "Help URL", "Help phone", "About URL", "Update URL", "changes"],
    "german": [
        "Programmname", "Uninstall-Eintrag", "Quelle", "Version", "Parent-Eintrag", "Parent",
        "Installations-Datum", "Deinstallations-Datum", "Gr\u00f6\u00dfe", "Uninstall-Kommando",
        "Modify-Kommando", "Icon", "Installer-Pfad", "letzter Start", "Paketpfad", "Features",
        "Patches", "64 Bit", "Systemkomponente", "H\u00e4ufigkeit", "Kommentar", "User",
        "Hersteller", "Kontakt", "Support-URL", "Support-Telefonnr.", "Info-URL", "Update-URL",
        "\u00c4nderungen"],
}


def cells(row):
    """The texts of the 29 columns of a row of the rules."""
    return [
        row["displayName"], row["name"], row["source"], row["displayVersion"], row["parent"],
        row["parentName"], row["installDate"], row["uninstallDate"], rules.size_text(row["size"]),
        row["uninstallCmd"], row["modifyCmd"], row["displayIcon"], row["installLocation"],
        row["lastUseDate"], row["packagePath"], str(row["features"]), str(row["patches"]),
        rules.yes_no(row["is64"]), rules.yes_no(row["systemComponent"]), row["frequency"],
        row["comments"], row["user"], row["publisher"], row["contact"], row["helpURL"],
        row["helpPhone"], row["aboutURL"], row["updateURL"], "",
    ]


def sheet_of(world, language="english", unnamed=False, components=False):
    """The lines of an export, that of the titles first; packages stand in the order in which the
    first refresh has brought them."""
    return [TITLES[language]] + [
        cells(row) for row in rules.read_all(world)
        if (unnamed or row["displayName"]) and (components or not row["systemComponent"])]


def csv_bytes(sheet):
    """A field with a semicolon in quotes, each followed by a semicolon."""
    return "".join(
        "".join(f'"{field}";' if ";" in field else f"{field};" for field in line) + "\n"
        for line in sheet).encode("cp1252")


def run(*command):
    return subprocess.run([str(word) for word in command], check=True, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=300).stdout


def parsed(data):
    return list(csv.reader(io.StringIO(data.decode(), newline="")))


def read_by_xlrd(file):
    """The first sheet, as the cells have it."""
    return xlrd_sheets([file])[0][0]


def xlrd_sheets(files):
    return [[[[cell.value for cell in line] for line in sheet.get_rows()]
             for sheet in xlrd.open_workbook(str(file)).sheets()] for file in files]


def gnumeric_sheets(files):
    """Each sheet becomes a file with its number as the name."""
    def sheets(file):
        with tempfile.TemporaryDirectory() as folder:
            run("ssconvert", "-S", "-T", "Gnumeric_stf:stf_assistant", "-O",
                "separator=, format=raw quoting-mode=always charset=UTF-8 eol=unix", file,
                f"{folder}/%n")
            return [parsed(Path(folder, name).read_bytes())
                    for name in sorted(os.listdir(folder), key=int)]

    return [sheets(file) for file in files]


def libreoffice_sheets(files):
    """One start for all files. Separator, quote, UTF-8, from line 1; texts in quotes, cells as they
    are and not as shown, no formulas, blanks kept, all sheets: FILE-SHEET.csv for each."""
    with tempfile.TemporaryDirectory() as folder:
        run("soffice", f"-env:UserInstallation=file://{folder}/profile", "--headless",
            "--convert-to",
            "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,true,false,false,false,false,-1",
            "--outdir", f"{folder}/made", *files)
        return [[parsed(made.read_bytes())
                 for made in sorted(Path(folder, "made").glob(f"{Path(file).stem}-Sheet*.csv"))]
                for file in files]


def catdoc_sheets(files):
    """A form feed ends each sheet. One without any cell isn't shown at all."""
    return [[parsed(sheet) for sheet in
             run("xls2csv", "-q", "3", "-b", "\f", "-d", "utf-8", file).split(b"\f")[:-1]]
            for file in files]


@dataclass(frozen=True)
class Reader:
    """A program that reads workbooks. Nothing in a workbook names a code page for 8-bit
    characters: some take them for the first 256 of Unicode, others for Windows-1252."""

    sheets: Callable  # of some files: for each its sheets, lines of texts
    characters: str = "latin-1"
    own_line_ends: bool = False  # makes one kind of all
    misread: str = ""  # characters that it takes for something else, or from which on it is lost
    trusts_positions: bool = False  # looks for a sheet only where the table of sheets says

    def shows(self, text):
        """What it makes of a text of the program."""
        return self.ends(text.encode("cp1252").decode(self.characters))

    def ends(self, text):
        """A text with such line ends as it shows."""
        return text.replace("\r\n", "\n").replace("\r", "\n") if self.own_line_ends else text


READERS = {
    "xlrd": Reader(xlrd_sheets, trusts_positions=True),
    "Gnumeric": Reader(gnumeric_sheets, characters="cp1252"),
    "LibreOffice": Reader(libreoffice_sheets, own_line_ends=True),
    # A byte 1 inside a text means to it that 16-bit characters follow; two others are a tab and a
    # line end.
    "catdoc": Reader(catdoc_sheets, characters="cp1252", misread="\x01\x1c\x1e"),
}


class SaveDialog(Box):
    """The system's dialog for the name of a file, open above the window."""

    def __init__(self, window):
        self.window = window
        super().__init__(window.desk, window.box(DIALOG_TITLES[window.language]).handle)
        # Until all of it is there.
        eventually(lambda: self.name() == "Software.xls", lambda: f"the name {self.name()!r}")

    @classmethod
    def of(cls, window):
        window.post(EXPORT)
        return cls(window)

    def name(self):
        return self.desk.driver("text", self.handle, FILE_NAME)

    def save_as(self, name):
        """Presses Save without waiting for the dialog's end."""
        self.desk.driver("set-text", self.handle, FILE_NAME, name)
        self.desk.driver("post", self.handle, WM_COMMAND, OK, 0)

    def question(self):
        """The box that asks whether a file is to be replaced."""
        def found():
            return [box for box in self.window.boxes() if box["owner"] == self.handle]
        return Box(self.desk, eventually(found, "a question above the dialog")[0]["handle"])


__all__ = ["CANCEL", "NO", "YES", "SaveDialog", "sheet_of", "csv_bytes"]
