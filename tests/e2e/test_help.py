"""The help file: what is in it, and how the program shows it."""

import html
import re
import shutil
import subprocess
from html.parser import HTMLParser
from pathlib import Path, PurePosixPath

import pytest

from conftest import BINARIES, ROOT
from support.program import Desk, eventually
from support.registry import Key

HELP_FILE = BINARIES / "zolvane.chm"
SOURCES = ROOT / "help"
LANGUAGES = ("en", "de")
HELP_COMMAND = 57670
SHOW_CONTENTS = 1
KEYS = [Key("user", "Only", {"DisplayName": "Only"})]


class Page(HTMLParser):
    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.links, self.parameters, self.text = [], [], ""
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.links += [values[name] for name in ("href", "src") if name in values]
        if tag == "param":
            self.parameters.append((values["name"], values["value"]))

    def handle_data(self, data):
        self.text += data


@pytest.fixture(scope="module")
def unpacked(tmp_path_factory):
    """The files of the help file by their names in it, without the format's own."""
    folder = tmp_path_factory.mktemp("help")
    subprocess.run(["extract_chmLib", str(HELP_FILE), str(folder)], check=True, timeout=60,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    files = {str(path.relative_to(folder)): path.read_bytes()
             for path in folder.rglob("*") if path.is_file()}
    return {name: data for name, data in files.items() if name[0] not in "#$_"}


@pytest.fixture(scope="module")
def pages(unpacked):
    return {name: Page(data.decode("cp1252")) for name, data in unpacked.items()
            if name.endswith(".htm")}


def topics(pages, language):
    return {PurePosixPath(name).name for name in pages if name.startswith(f"{language}/")}


def test_it_holds_every_topic_as_written(unpacked):
    written = {str(path.relative_to(SOURCES)): path.read_bytes() for path in SOURCES.rglob("*")
               if path.suffix in (".htm", ".css", ".hhc")}
    assert unpacked == written


def test_it_is_there_in_both_languages(pages):
    assert topics(pages, "en") == topics(pages, "de")
    assert len(topics(pages, "en")) == 11


def test_every_link_leads_to_a_file_of_it(pages, unpacked):
    for name, page in pages.items():
        assert page.links, name
        for link in page.links:
            parts = []
            for part in (PurePosixPath(name).parent / link).parts:
                parts = parts[:-1] if part == ".." else [*parts, part]
            assert "/".join(parts) in unpacked, (name, link)


def test_every_topic_can_be_reached_from_the_overview_of_its_language(pages):
    for language in LANGUAGES:
        assert f"{language}/overview.htm" in pages["index.htm"].links
        others = topics(pages, language) - {"overview.htm"}
        assert set(pages[f"{language}/overview.htm"].links) - {"../style.css"} == others


def test_the_contents_list_every_topic_by_its_title(pages, unpacked):
    values = Page(unpacked["zolvane.hhc"].decode("cp1252")).parameters
    assert [name for name, _ in values] == ["Name", "Local"] * (len(values) // 2)
    entries = [(title, local) for (_, title), (_, local) in zip(values[::2], values[1::2])]
    titles = {name: re.search("<title>(.*?)</title>", unpacked[name].decode("cp1252"))[1]
              for name in pages if "/" in name}
    languages = [("English", "en/overview.htm"), ("Deutsch", "de/overview.htm")]
    assert [entry for entry in entries if entry in languages] == languages
    listed = [(title, local) for title, local in entries if (title, local) not in languages]
    assert sorted(listed) == sorted((title, name) for name, title in titles.items())


# Words that a topic can't do without, in English and in German.
NEEDED = {
    "colours.htm": (["yellow", "light blue", "cream", "red", "grey"],
                    ["gelb", "hellblau", "creme", "rot", "grau"]),
    "filters.htm": (["normal packages", "+ sub packets", "+ system components", "+ OS updates",
                     "all packages", "MS"],
                    ["normale Pakete", "+ Unterpakete", "+ Systemkomponenten", "+ OS Updates",
                     "alle Pakete", "MS"]),
    "removing.htm": (["can't be removed", "64-bit part of the registry", "administrator",
                      "double click", "Shift+F10"],
                     ["nicht entfernen", "64-Bit-Teil der Registry", "Administrator",
                      "Doppelklick", "Umschalt+F10"]),
    "inside.htm": (["MSI content...", "MSI features...", "Patches...", "<binary>", "1,023",
                    "row 1, then 10, 11", "tick", "cross", "applied", "superseded", "obsoleted",
                    "registered", "broken", "without a date first", "32-bit part", "grey"],
                   ["MSI-Inhalt...", "MSI-Features...", "Patches...", "<binary>", "1.023",
                    "Zeile 1, dann 10, 11", "Haken", "Kreuz", "installiert", "\xfcberschrieben",
                    "veraltet", "registriert", "defekt", "ohne Datum stehen vorn", "32-Bit-Teil",
                    "grau"]),
    "export.htm": (["xls", "semicolon", "65,535", "code page", "-export", ".ndjson", "with 2"],
                   ["xls", "Semikolon", "65.535", "Codepage", "-export", ".ndjson", "mit 0, oder mit 2"]),
    "files.htm": (["%LOCALAPPDATA%\\Quillmere", "zolvane-cfg.xml", "zolvane-hist.xml",
                   "zolvane-imagelist.dat", "zolvane-imagepaths.txt"],) * 2,
    "updates.htm": (["first start of a day", "-noupdate", "-nopersist", "Message",
                     "Show PAD information ..."],
                    ["ersten Start am Tag", "-noupdate", "-nopersist", "Hinweismeldung",
                     "PAD-Anzeige ..."]),
    "limits.htm": (["other users", "only one line can show", "what an installer registered"],
                   ["anderer Benutzer", "nur eine Zeile erscheinen kann",
                    "was ein Installationsprogramm"]),
    "keys.htm": (["F1", "F5", "Escape", "-eng", "-ger", "-nopersist", "-noupdate", "-export"],) * 2,
}


@pytest.mark.parametrize("topic", NEEDED)
def test_a_topic_says_what_it_is_for(pages, topic):
    for language, words in zip(LANGUAGES, NEEDED[topic]):
        text = " ".join(pages[f"{language}/{topic}"].text.split())
        assert [word for word in words if word not in text] == []


# Wine prefers its own viewer to one that lies beside the program.
NATIVE_VIEWER = """Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\\Software\\Wine\\DllOverrides]
"*hhctrl.ocx"="native"
"""


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk(KEYS) as made:
        made.prefix.import_registry(NATIVE_VIEWER)
        yield made


class Viewed:
    """The program in a folder of its own, with a viewer beside it that notes its calls."""

    def __init__(self, desk, viewer):
        self._folder = desk.prefix.folder / "drive_c" / "Viewed"
        self._folder.mkdir(exist_ok=True)
        self._calls = self._folder / "calls.txt"
        self._calls.unlink(missing_ok=True)
        shutil.copy(BINARIES / "zolvane.exe", self._folder)
        shutil.copy(viewer, self._folder / "hhctrl.ocx")
        desk.driver("set-env", "ZOLVANE_VIEWER", "C:\\Viewed\\calls.txt")
        self._desk = Desk(desk.screen, desk.prefix, desk.driver, self._folder / "zolvane.exe")

    def open(self, *switches):
        return self._desk.open("-nopersist", "-noupdate", *switches)

    def calls(self):
        return self._calls.read_text().splitlines() if self._calls.exists() else []

    def end_programs(self):
        self._desk.end_programs()


@pytest.fixture
def view(desk):
    made = []

    def make(viewer):
        made.append(Viewed(desk, viewer))
        return made[-1]

    yield make
    for viewed in made:
        viewed.end_programs()


def wanted_call(program):
    return f"{program.handle} zolvane.chm {SHOW_CONTENTS} 0"


@pytest.mark.parametrize("switch", ["-eng", "-ger"])
def test_f1_and_the_menu_show_its_contents_above_the_window(view, switch):
    viewed = view(BINARIES / "viewer/hhctrl.ocx")
    program = viewed.open(switch)
    program.press_key("F1")
    eventually(viewed.calls, "the viewer is called")
    assert viewed.calls() == [wanted_call(program)]
    program.ask("command", HELP_COMMAND)
    assert viewed.calls() == [wanted_call(program)] * 2
    assert program.close() == 0


def test_without_a_viewer_nothing_happens(view, tmp_path):
    broken = Path(tmp_path / "no module")
    broken.write_text("no module")
    program = view(broken).open()
    program.ask("command", HELP_COMMAND)
    assert program.window()["enabled"] and program.window()["visible"]
    assert program.close() == 0


def test_the_systems_viewer_opens_it_and_keeps_no_process_alive(make_desk):
    with make_desk(KEYS) as desk:
        # One of the folders in which the viewer looks for its file.
        desk.prefix.make_file("C:\\windows\\help\\zolvane.chm", HELP_FILE.read_bytes())
        program = desk.open("-nopersist", "-noupdate")
        program.press_key("F1")
        viewer = desk.driver("wait-window", program.pid, "HH Parent", "Zolvane", 30000)

        def classes_within():
            return {inner["class"] for pane in desk.driver("controls", viewer["handle"])
                    for inner in desk.driver("controls", pane["handle"])}

        eventually(lambda: classes_within() >= {"SysTabControl32", "SysTreeView32"},
                   lambda: f"the contents, where there is {classes_within()}")
        assert program.close() == 0
        assert desk.driver("processes", "zolvane.exe") == []


def columns_told(page):
    """The columns in the order of the table; some stand together in one line of it."""
    cells = re.findall("<tr><td>(.*?)</td>", page, re.DOTALL)
    return [title for cell in cells for title in " ".join(html.unescape(cell).split()).split(", ")]


def test_it_tells_of_every_column_of_the_list(view, unpacked):
    viewed = view(BINARIES / "viewer/hhctrl.ocx")
    for language, switch in zip(LANGUAGES, ("-eng", "-ger")):
        program = viewed.open(switch)
        titles = [column["title"] for column in program.columns()]
        assert columns_told(unpacked[f"{language}/columns.htm"].decode("cp1252")) == titles
        assert program.close() == 0
