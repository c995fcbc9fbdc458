"""The start with -export: a file from a script or a scheduled task, and nothing to be seen."""

import json
import os
import re
import shutil
import subprocess
import time

import pytest
import xlrd

from conftest import BINARIES
from support import packages
from support.packages import MEADOW
from support.registry import Key, Usage
from support.releases import THIS
from support.seeding import set_value

DONE, FAILED = 0, 2
LIMIT = 120

DIRTY = 'a;b "c" \\d\\ \u00e4\u00d6\u00df\u20ac\ttab\r\nline \x01\x1f end'
KEYS = [
    Key("local", "Alpha", {"DisplayName": "Alpha", "InstallDate": "20030814",
                           "DisplayVersion": "1.0", "EstimatedSize": 2048, "NoRemove": 1,
                           "Publisher": "M\u00fcller & S\u00f6hne"}),
    Key("local64", "Beta", {"DisplayName": "Beta \u20ac", "InstallDate": "20030304"}),
    Key("user", "Gamma", {"DisplayName": "Gamma", "SystemComponent": 1}),
    Key("local", "Unnamed", {"Publisher": "x"}),
]
USED = {"Alpha": Usage(size=1 << 20, used=0x01D64A6F_12345678, frequency=7)}
COLUMNS = """name source displayName displayVersion parent parentName displayIcon installLocation
    installDate uninstallDate uninstallCmd modifyCmd noRemove noModify systemComponent comments size
    lastUseDate features patches frequency installerPath packagePath MSI OK 64bit user publisher
    contact helpURL helpPhone aboutURL updateURL keyName HKEY_ROOT changed""".split()
NUMBERS = {"noRemove", "noModify", "systemComponent", "size", "features", "patches", "frequency",
           "MSI", "OK", "64bit", "HKEY_ROOT"}


class Run:
    def __init__(self, code, output, error):
        self.code, self.output, self.error = code, output, error


class Exports:
    """Runs of the program in one prefix, and the folder C:\\out that they write to."""

    def __init__(self, desk):
        self.desk, self.prefix = desk, desk.prefix
        self.folder = desk.prefix.folder / "drive_c/out"
        self.folder.mkdir()

    def begin(self, *switches, program="zolvane.exe", env=None, output=None,
              cwd=None):
        """Its streams are files, as other processes of Wine may keep a pipe open."""
        name = f"{time.monotonic_ns()}"
        files = [self.prefix.folder / f"{name}.{kind}" for kind in ("out", "err")]
        streams = [open(file, "wb") for file in files]
        process = subprocess.Popen(
            ["wine", str(BINARIES / program), *switches], env=env or self.prefix.env,
            stdin=subprocess.DEVNULL, stdout=output or streams[0], stderr=streams[1],
            cwd=cwd)
        for stream in streams:
            stream.close()

        def end():
            code = process.wait(timeout=LIMIT)
            texts = [file.read_bytes() for file in files]
            for file in files:
                file.unlink()
            return Run(code, *texts)

        return end

    def run(self, *switches, **options):
        return self.begin(*switches, **options)()

    def path(self, name):
        return f"C:\\out\\{name}"

    def export(self, name, *switches, **options):
        return self.run("-export", self.path(name), *switches, **options)

    def names(self):
        return sorted(file.name for file in self.folder.iterdir())

    def clear(self):
        for file in self.folder.iterdir():
            if file.is_dir():
                shutil.rmtree(file)
            else:
                file.chmod(0o600)
                file.unlink()


@pytest.fixture(scope="module")
def module_exports(make_desk):
    with make_desk(KEYS, USED) as desk:
        set_value(desk, KEYS[1], "Comments", DIRTY)
        yield Exports(desk)


@pytest.fixture
def exports(module_exports):
    yield module_exports
    module_exports.clear()


def check_done(run, output=b""):
    assert (run.code, run.output, run.error) == (DONE, output, b"")


def check_failed(run, text):
    """One line on the standard error, and nothing else."""
    assert (run.code, run.output) == (FAILED, b"")
    assert run.error.startswith(b"zolvane: ") and run.error.endswith(b"\n")
    assert run.error.count(b"\n") == 1 and b"\r" not in run.error
    assert text in run.error.decode("cp1252"), run.error


def lines(data):
    """The objects of JSON lines, by name."""
    assert data.endswith(b"\n")
    objects = [json.loads(line) for line in data.decode("utf-8").split("\n")[:-1]]
    assert all(list(entry) == ["hostName", "passTime", "programVersion", *COLUMNS]
               for entry in objects)
    return {entry["name"]: entry for entry in objects}


def csv_titles(data):
    return data.split(b"\n")[0].decode("cp1252").split(";")


def test_a_name_that_ends_in_json_gets_every_package(exports):
    for name in ("list.json", "LIST.NDJSON"):
        check_done(exports.export(name))
        found = lines((exports.folder / name).read_bytes())
        assert set(found) == {"Alpha", "Beta", "Gamma", "Unnamed"}
    alpha, beta = found["Alpha"], found["Beta"]
    assert {key for key in COLUMNS if isinstance(alpha[key], int)} == NUMBERS
    assert (alpha["installDate"], alpha["size"], alpha["frequency"]) == ("2003-08-14", 1024, 7)
    assert alpha["lastUseDate"].startswith("2020-06-24T")
    assert alpha["publisher"] == "M\u00fcller & S\u00f6hne"
    assert (alpha["noRemove"], alpha["64bit"], alpha["changed"]) == (1, 0, None)
    assert (beta["installDate"], beta["size"], beta["frequency"]) == ("2003-03-04", None, None)
    assert (beta["64bit"], beta["displayName"]) == (1, "Beta \u20ac")
    # The time at which its key was written last.
    assert re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:00", found["Gamma"]["installDate"])
    assert found["Gamma"]["systemComponent"] == 1 and found["Unnamed"]["displayName"] == ""


def test_each_line_tells_host_time_and_version(exports):
    before = time.time()
    found = lines(exports.run("-export", "-").output)
    for entry in found.values():
        assert entry["hostName"]
        assert re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", entry["passTime"])
        then = time.mktime(time.strptime(entry["passTime"], "%Y-%m-%dT%H:%M:%SZ")) - time.timezone
        assert abs(then - before) < LIMIT
        assert entry["programVersion"] == THIS


def test_dirty_texts_are_read_back_by_python_and_jq(exports):
    output = exports.run("-export", "-").output
    assert lines(output)["Beta"]["comments"] == DIRTY
    asked = subprocess.run(["jq", "-c", "select(.name == \"Beta\") | .comments"], input=output,
                           stdout=subprocess.PIPE, check=True, timeout=LIMIT)
    assert json.loads(asked.stdout) == DIRTY


def test_other_names_get_the_lists_rows_as_csv(exports):
    for name in ("list.csv", "list.txt", "list", "list.xlsx", "list.json.csv"):
        check_done(exports.export(name, "-eng"))
        data = (exports.folder / name).read_bytes()
        assert csv_titles(data)[:3] == ["Program Name", "Uninstall Entry", "Source"]
        rows = data.split(b"\n", 1)[1]
        assert rows.count(b"Uninstall;") == 2 and b"Gamma" not in rows and b"Unnamed" not in rows
        assert ('"' + DIRTY + '";').encode("cp1252") in rows


def test_a_name_that_ends_in_xls_gets_a_workbook(exports):
    for name, language, title in (("one.xls", "-eng", "Program Name"),
                                  ("TWO.XLS", "-ger", "Programmname")):
        check_done(exports.export(name, language))
        sheet = xlrd.open_workbook(exports.folder / name).sheet_by_index(0)
        assert sheet.row_values(0)[0] == title and sheet.row_len(0) == 29
        assert sheet.nrows == 3 and sheet.cell_value(1, 0) == "Alpha"
        assert "M\u00fcller & S\u00f6hne" in sheet.row_values(1)
    assert exports.names() == ["TWO.XLS", "one.xls"]


def test_the_language_of_titles_is_that_of_the_switches(exports):
    for switches, title in ((("-ger",), "Programmname"), (("-eng",), "Program Name"),
                            (("-eng", "-ger"), "Programmname")):
        check_done(exports.export("list.csv", *switches))
        assert csv_titles((exports.folder / "list.csv").read_bytes())[0] == title
        check_done(exports.run(*switches, "-export", exports.path("list.csv")))
        assert csv_titles((exports.folder / "list.csv").read_bytes())[0] == title


def test_the_files_name_is_no_switch_and_may_have_blanks(exports):
    for name in ("x-german list.csv", "x-postupdate.csv", "-nopersist\u00e4 (2).csv"):
        check_done(exports.export(name, "-eng"))
        assert csv_titles((exports.folder / name).read_bytes())[0] == "Program Name"
    assert len(exports.names()) == 3


def test_a_clean_up_after_an_update_comes_first(exports):
    run = exports.export("list.csv", "-postupdate")
    assert (run.code, exports.names()) == (1, [])


def test_without_a_file_it_tells_so(exports):
    for switches in (("-export",), ("-ger", "-export"), ("-export", "")):
        check_failed(exports.run(*switches), "-export needs the name of a file after it")


def test_a_missing_folder_is_told_and_not_made(exports):
    check_failed(exports.export("none\\list.csv"),
                 "can't write C:\\out\\none\\list.csv: there is no such folder")
    assert exports.names() == []


@pytest.mark.parametrize("name", ["list.csv", "list.json", "list.xls"])
def test_a_target_that_may_only_be_read_stays(exports, name):
    target = exports.folder / name
    target.write_bytes(b"old")
    target.chmod(0o444)
    check_failed(exports.export(name), "access is denied")
    assert (target.read_bytes(), exports.names()) == (b"old", [name])


@pytest.mark.parametrize("name", ["list.csv", "list.json", "list.xls"])
def test_a_target_that_another_program_has_open_stays(exports, name):
    target = exports.folder / name
    target.write_bytes(b"old")
    exports.desk.driver("hold-file", exports.path(name))
    try:
        check_failed(exports.export(name), f"can't write {exports.path(name)}: ")
        assert (target.read_bytes(), exports.names()) == (b"old", [name])
    finally:
        exports.desk.driver("let-file-go", exports.path(name))
    check_done(exports.export(name))
    assert target.read_bytes() != b"old" and exports.names() == [name]


def test_a_folder_of_the_targets_name_stays(exports):
    (exports.folder / "list.csv").mkdir()
    check_failed(exports.export("list.csv"), "can't write C:\\out\\list.csv: ")
    assert exports.names() == ["list.csv"]


def test_a_path_that_is_too_long_is_told_and_nothing_is_made(exports):
    folder = exports.folder / ("y" * 240)
    folder.mkdir()
    check_failed(exports.export(f"{folder.name}\\list.json"), "the name is too long (error 206)")
    assert list(folder.iterdir()) == []
    folder.rename(exports.folder / ("y" * 238))
    check_done(exports.export("y" * 238 + "\\list.json"))


def test_what_no_file_can_be_called_is_told(exports):
    for name in ("*.csv", "a?.json", "a|b.xls"):
        check_failed(exports.export(name), "that is no file name (error 123)")
        assert exports.names() == []


def test_what_is_there_is_replaced_whole(exports):
    (exports.folder / "list.json").write_bytes(b"x" * 1_000_000)
    check_done(exports.export("list.json"))
    assert len(lines((exports.folder / "list.json").read_bytes())) == len(KEYS)
    assert exports.names() == ["list.json"]


def test_two_exports_into_one_file_leave_one_of_them_whole(exports):
    ends = [exports.begin("-export", exports.path("list.json")) for _ in range(3)]
    for end in ends:
        check_done(end())
    assert len(lines((exports.folder / "list.json").read_bytes())) == len(KEYS)
    assert exports.names() == ["list.json"]


def test_a_relative_name_lies_in_the_current_folder(exports):
    for name in ("list.csv", "list.json"):
        check_done(exports.run("-export", name, cwd=exports.folder))
    assert exports.names() == ["list.csv", "list.json"]


def test_the_standard_output_may_be_full_or_closed(exports):
    with open("/dev/full", "wb") as full:
        check_failed(exports.run("-export", "-", output=full), "the disk is full")
    read_end, write_end = os.pipe()
    os.close(read_end)
    try:
        check_failed(exports.run("-export", "-", output=write_end), "the reader is gone")
    finally:
        os.close(write_end)


def test_the_standard_output_is_appended_to(exports):
    target = exports.folder / "list.log"
    target.write_bytes(b'{"before": 1}\n')
    with open(target, "ab") as output:
        assert exports.run("-export", "-", output=output).code == DONE
    first, rest = target.read_bytes().split(b"\n", 1)
    assert first == b'{"before": 1}' and len(lines(rest)) == len(KEYS)


def kept_files(prefix):
    users = prefix.folder / "drive_c/users"
    # The system itself looks after the users' folders.
    return {path.relative_to(users): path.stat().st_mtime_ns for path in users.rglob("*")
            if path.is_file()}


def test_settings_and_history_are_neither_made_nor_read_nor_written(exports):
    before = kept_files(exports.prefix)
    check_done(exports.export("list.csv", "-eng"))
    assert kept_files(exports.prefix) == before and not exports.prefix.kept.exists()
    # Settings in German, and a history that would make each package a new one.
    folder = exports.prefix.kept
    folder.mkdir()
    try:
        for name, text in (("zolvane-cfg.xml", "<config langId=\"7\"/>"),
                           ("zolvane-hist.xml", "<history><row name=\"gone\"/></history>"),
                           ("zolvane-imagelist.dat", "x"), ("zolvane-imagepaths.txt", "x")):
            (folder / name).write_text(text)
            (folder / name).chmod(0o000)
        before = kept_files(exports.prefix)
        check_done(exports.export("list.csv"))
        data = (exports.folder / "list.csv").read_bytes()
        assert csv_titles(data)[0] == "Program Name"
        assert all(line.endswith(b";;") for line in re.findall(rb"(?m)^Alpha.*$", data))
        assert kept_files(exports.prefix) == before
    finally:
        shutil.rmtree(folder)


def without_display(exports):
    env = dict(exports.prefix.env)
    env.pop("DISPLAY")
    return env


@pytest.mark.parametrize("name", ["list.csv", "list.json", "list.xls"])
def test_it_needs_no_screen(exports, name):
    check_done(exports.export(name, env=without_display(exports)))
    assert exports.names() == [name]


def test_with_products_and_wmi_it_needs_no_screen(make_desk):
    with make_desk(KEYS, wmi=True) as desk:
        packages.install(desk, MEADOW)
        exports = Exports(desk)
        run = exports.run("-export", "-", env=without_display(exports))
        assert (run.code, run.error) == (DONE, b"")
        found = lines(run.output)
        assert found[MEADOW.code]["MSI"] == 1 and found[MEADOW.code]["features"] == 4
        assert found["KB1234567"]["source"] == "WMI QFE"


def held(exports, points, *switches):
    env = dict(without_display(exports), ZOLVANE_HELD=points)
    return exports.run(*switches, program="zolvane-held.exe", env=env)


@pytest.mark.parametrize("points, text", [
    ("fail@source1", "held at source1"),
    ("die@source2", "generic exception"),
    ("die@start", ""),
    ("crash@source1", "exception code: 0xC0000005"),
    ("crash@start", "exception code: 0xC0000005"),
    ("fail@wmi1", "held at wmi1"),
])
def test_a_pass_that_fails_writes_nothing_and_ends_with_2(exports, points, text):
    (exports.folder / "list.csv").write_bytes(b"old")
    for name in (exports.path("list.csv"), "-"):
        check_failed(held(exports, points, "-export", name), text)
    assert exports.names() == ["list.csv"]
    assert (exports.folder / "list.csv").read_bytes() == b"old"


def test_no_window_is_ever_made(exports):
    """Not even a hidden one, while the sources are being read."""
    driver = exports.desk.driver
    for event in ("reached", "go"):
        driver("event-set", f"zolvane-held-{event}")
        driver("event-wait", f"zolvane-held-{event}", 0)
    env = dict(exports.prefix.env, ZOLVANE_HELD="hold@source1")
    end = exports.begin("-export", exports.path("list.csv"), program="zolvane-held.exe", env=env)
    driver("event-wait", "zolvane-held-reached", 30000)
    (pid,) = driver("processes", "zolvane-held.exe")
    assert driver("windows", pid) == []
    assert driver("mutex", "Quillmere-Zolvane")
    assert exports.names() == [], "nothing is begun before the pass is over"
    driver("event-set", "zolvane-held-go")
    check_done(end())
    assert exports.names() == ["list.csv"]
