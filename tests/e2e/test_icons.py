"""Icons of packages: in the list, in the pane, and those that are kept for the next run."""

import os
import random
import time

import pytest

from conftest import BINARIES, SCREENSHOTS
from support.held import HeldDesk
from support.icons import icon_file, nth_colour
from support.installers import Installer
from support.program import LIST, REFRESH, SEARCH, STATUS, DriverError, eventually
from support.registry import Key
from support.seeding import seed
from support.window import NAME_COLUMN, PANE_ICON, STM_GETICON, Window

SAVING = ("-noupdate",)
RED, GREEN, BLUE, ORANGE = (200, 0, 40), (0, 150, 60), (30, 40, 220), (250, 120, 10)
SETUP = "C:\\Setups\\setup.exe"
# How often a pass is closed in.
CLOSES = int(os.environ.get("ZOLVANE_CLOSES", "60"))


def package(number, name, icon, **more):
    return Key("user", name, {"DisplayName": name, "InstallDate": f"202601{31 - number:02d}",
                              "DisplayIcon": icon, **more})


# What each shows: a colour, or None for the default image.
SHOWN = [
    (package(0, "File", "C:\\Icons\\orange.ico"), ORANGE),
    (package(1, "Same file", "C:\\Icons\\orange.ico"), ORANGE),
    (package(2, "First", SETUP), RED),
    (package(3, "Second", f"{SETUP},1"), GREEN),
    (package(4, "By id", f"{SETUP},-7"), BLUE),
    (package(5, "Quoted", f'"{SETUP}",1'), GREEN),
    (package(6, "Variable", "%SystemDrive%\\Setups\\setup.exe,2"), BLUE),
    (package(7, "Missing", "C:\\gone away\\x.exe,1"), None),
    (package(8, "Fallback", "C:\\gone away\\y.exe,1", UninstallString=SETUP), RED),
    (package(9, "Later fallback", "C:\\gone away\\z.exe", UninstallString=f"{SETUP} /un",
             ModifyPath=SETUP), RED),
    (package(10, "Folder", "C:\\Icons"), None),
    (package(11, "Empty file", "C:\\Icons\\empty.ico"), None),
    (package(12, "Text file", "C:\\Icons\\text.exe"), None),
    (package(14, "Share", "\\\\nowhere.invalid\\share\\x.exe"), None),
    (package(15, "No such index", f"{SETUP},99"), None),
    (package(16, "None", ""), None),
]
KEYS = [key for key, _ in SHOWN]
EXPECTED = {key.name: colour for key, colour in SHOWN}
COUNT = len(KEYS)


def furnish(desk):
    Installer(desk, BINARIES, SETUP)
    for name, content in (("orange.ico", icon_file(ORANGE)), ("empty.ico", b""),
                          ("text.exe", b"no program\n" * 100)):
        desk.prefix.make_file(f"C:\\Icons\\{name}", content)
    seed(desk, KEYS)


@pytest.fixture
def desk(make_desk):
    with make_desk() as made:
        furnish(made)
        yield made
        made.end_programs()


def images(window):
    """The image of each package by its name."""
    return dict(zip(window.names(), window.program.ask_list("list-images")))


def wait_for_images(window, wanted):
    """Until the packages show an image of their own, all but the default ones."""
    def come():
        seen = images(window)
        return all(seen.get(name, 0) > 0 for name, colour in wanted.items() if colour)
    eventually(come, lambda: f"the images of {wanted}, which are {images(window)}", limit=60)


def plain_colour(picture, rect):
    """The colour of what lies in the middle of a rectangle; None for several."""
    left, top, right, bottom = rect
    x, y = (left + right) // 2, (top + bottom) // 2
    colours = {colour for line in range(y - 4, y + 4) for colour in picture.row(line, x - 4, x + 4)}
    return colours.pop() if len(colours) == 1 else None


def row_colours(window, picture):
    return {name: plain_colour(picture, window.program.ask("list-icon-rect", LIST, row)["screen"])
            for row, name in enumerate(window.names())}


def pane_colour(window, picture):
    left, top, _, _ = window.program.control(PANE_ICON)["screen"]
    return plain_colour(picture, (left, top, left + 32, top + 32))


def shown_wrongly(window, wanted=None):
    """The packages whose image on the screen is another one than it should be."""
    picture = window.program.picture()
    seen = row_colours(window, picture)
    return {name: (seen[name], colour) for name, colour in (wanted or EXPECTED).items()
            if seen[name] != colour}


@pytest.fixture
def window(desk):
    window = Window(desk)
    window.wait_filled(COUNT)
    return window


# In the list.

def test_each_row_shows_its_icon(window):
    wait_for_images(window, EXPECTED)
    assert shown_wrongly(window) == {}
    window.program.picture(SCREENSHOTS / "list-icons.png")
    seen = images(window)
    assert seen["File"] == seen["Same file"]
    # What is asked for in other words is another image.
    assert seen["Second"] != seen["Quoted"]
    assert {name for name, image in seen.items() if image == 0} == {
        name for name, colour in EXPECTED.items() if colour is None}
    assert window.program.close() == 0


def test_a_package_that_comes_later_gets_its_icon_too(window):
    wait_for_images(window, EXPECTED)
    key = package(20, "Newcomer", f"{SETUP},-2")
    window.desk.prefix.make_file("C:\\Icons\\blue.ico", icon_file(BLUE))
    for name, value in key.values.items():
        data = value.encode() + b"\0"
        window.desk.driver(
            "reg-set", "HKCU", 64,
            f"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\{key.name}", name, 1, data)
    window.wait_filled(COUNT + 1)
    wait_for_images(window, {"Newcomer": GREEN})
    assert shown_wrongly(window, {"Newcomer": GREEN}) == {}
    assert window.program.close() == 0


@pytest.mark.parametrize("way", ["sort", "search", "refresh"])
def test_icons_stay_with_their_packages(window, way):
    wait_for_images(window, EXPECTED)
    if way == "sort":
        window.program.click_header(NAME_COLUMN)
        eventually(lambda: window.names()[0] == "By id", "the list is sorted by name")
    elif way == "search":
        for text, count in (("second", 1), ("", COUNT)):
            window.program.ask("set-text", 1026, text)
            window.wait_filled(count, COUNT)
    else:
        window.program.ask("set-text", STATUS, "")
        window.program.ask("command", REFRESH)
        window.wait_filled(COUNT)
        wait_for_images(window, EXPECTED)
    assert shown_wrongly(window) == {}
    assert window.program.close() == 0


def cut_at(part):
    return lambda whole: whole[:int(len(whole) * part)]


def icons_without_end(whole):
    return whole[:4] + b"\xff\xff" + whole[6:]


def image_far_outside(whole):
    return whole[:18] + b"\0\0\0\x07" + whole[22:]


def resources_far_outside(whole):
    """By what the section's header says of its place in the file."""
    at = whole.index(b".rsrc\0\0\0") + 20
    return whole[:at] + b"\0\0\0\x07" + whole[at + 4:]


def old_program(whole):
    """With tables of 16-bit programs, or so it says."""
    return whole.replace(b"PE\0\0", b"NE\0\0", 1)


@pytest.mark.parametrize("name, harm", [
    ("cut.exe", cut_at(0.5)), ("cut.exe", cut_at(0.99)), ("cut.exe", cut_at(0.001)),
    ("cut.ico", cut_at(0.5)), ("cut.ico", cut_at(0.1)), ("count.ico", icons_without_end),
    ("far.ico", image_far_outside), ("far.exe", resources_far_outside), ("old.exe", old_program),
], ids=["program 50%", "program 99%", "program 0.1%", "icon 50%", "icon 10%", "count", "image",
        "resources", "16-bit"])
def test_a_harmed_file_costs_its_own_icon_alone(desk, name, harm):
    whole = desk.prefix.host_path(SETUP).read_bytes() if name.endswith(".exe") else icon_file(BLUE)
    desk.prefix.make_file(f"C:\\Icons\\{name}", harm(whole))
    seed(desk, [package(0, "A harmed one", f"C:\\Icons\\{name}"), package(1, "Whole", SETUP)])
    window = Window(desk)
    window.wait_filled(2)
    wait_for_images(window, {"Whole": RED})
    for chosen in ("A harmed one", "Whole"):
        window.choose(chosen)
    assert pane_colour(window, window.program.picture()) == RED
    assert window.boxes() == []
    assert window.program.close() == 0


# In the pane.

def test_the_pane_shows_the_icon_of_the_chosen_package(window):
    # Without a usable file it is that of a command, else none.
    for name in ("First", "Second", "By id", "File", "Missing", "Fallback", "None", "Quoted"):
        window.choose(name)
        picture = window.program.picture()
        has_icon = window.program.send_to(PANE_ICON, STM_GETICON) != 0
        assert has_icon == (EXPECTED[name] is not None), name
        assert pane_colour(window, picture) == EXPECTED[name] or not has_icon, name
    window.choose("Second")
    window.program.picture(SCREENSHOTS / "pane-icon.png")
    assert window.program.close() == 0


def test_the_pane_lets_go_of_its_icons(desk):
    held = HeldDesk(desk, BINARIES / "zolvane-held.exe")
    window = Window(desk, program=held.start("", LIVE="C:\\live.txt"))
    window.wait_filled(COUNT)

    def live_handles():
        """At the beginning of a pass, with one icon in the pane."""
        wait_for_images(window, EXPECTED)
        window.choose("Second")
        assert pane_colour(window, window.program.picture()) == GREEN
        window.program.ask("set-text", STATUS, "")
        window.program.ask("command", REFRESH)
        window.wait_filled(COUNT)
        wait_for_images(window, EXPECTED)
        return desk.prefix.host_path("C:\\live.txt").read_text().split("\n")[-2]

    before = live_handles()
    rows = [window.row_of(name) for name in ("First", "Missing", "Second", "File")]
    for turn in range(500):
        window.program.ask("list-select", LIST, rows[turn % 4])
    assert live_handles() == before
    assert window.program.close() == 0
    held.end_programs()


# Kept for the next run.

def paths_file(desk):
    return desk.prefix.kept / "zolvane-imagepaths.txt"


def images_file(desk):
    return desk.prefix.kept / "zolvane-imagelist.dat"


def kept_settings(desk):
    return (desk.prefix.kept / "zolvane-cfg.xml").read_bytes()


def open_saving(desk):
    window = Window(desk, switches=SAVING)
    window.wait_filled(COUNT)
    return window


def specifications():
    return {key.values["DisplayIcon"] for key in KEYS} - {""}


def all_kept(desk):
    """The paths file is written last, at the end of a pass; by then no line has a -1."""
    if not paths_file(desk).exists():
        return None
    lines = paths_file(desk).read_bytes().split(b"\n")
    return lines if len(lines) == len(specifications()) + 1 else None


def fill_cache(desk):
    """One run, whose settings, icons and paths are kept; the images by their names."""
    window = open_saving(desk)
    wait_for_images(window, EXPECTED)
    eventually(lambda: all_kept(desk), "the paths are kept")
    seen = images(window)
    assert window.program.close() == 0
    return seen


def lose_icons(desk):
    for path in ("C:\\Icons\\orange.ico", SETUP):
        desk.prefix.host_path(path).unlink()


def test_what_was_extracted_is_kept_in_two_files(desk):
    seen = fill_cache(desk)
    lines = paths_file(desk).read_bytes().split(b"\n")
    assert lines[-1] == b""
    kept = dict(line.split(b" ", 1)[::-1] for line in lines[:-1])
    assert {path.decode(): int(image) for path, image in kept.items()} == {
        key.values["DisplayIcon"]: seen[key.name] for key in KEYS if key.values["DisplayIcon"]}
    assert list(kept) == sorted(kept)
    assert images_file(desk).read_bytes()[:2] == b"IL"


def test_the_next_run_shows_them_without_their_files(desk):
    seen = fill_cache(desk)
    lose_icons(desk)
    window = open_saving(desk)
    wait_for_images(window, EXPECTED)
    assert images(window) == seen
    assert shown_wrongly(window) == {}
    assert window.program.close() == 0


def test_without_persistence_no_file_is_written_or_read(desk):
    window = Window(desk)
    window.wait_filled(COUNT)
    wait_for_images(window, EXPECTED)
    assert window.program.close() == 0
    assert not paths_file(desk).exists() and not images_file(desk).exists()
    fill_cache(desk)
    kept = paths_file(desk).read_bytes(), images_file(desk).read_bytes()
    lose_icons(desk)
    window = Window(desk)
    window.wait_filled(COUNT)
    # A Refresh waits for the pass that runs.
    window.program.ask("set-text", STATUS, "")
    window.program.ask("command", REFRESH)
    window.wait_filled(COUNT)
    assert set(images(window).values()) == {0}
    assert window.program.close() == 0
    assert kept == (paths_file(desk).read_bytes(), images_file(desk).read_bytes())


def icon_pixels(window, picture):
    """What the middle of each package's icon looks like."""
    found = {}
    for row, name in enumerate(window.names()):
        left, top, _, _ = window.program.ask("list-icon-rect", LIST, row)["screen"]
        found[name] = tuple(tuple(picture.row(line, left + 2, left + 14))
                            for line in range(top + 2, top + 14))
    return found


# What is read all the same.
HARMLESS = ("large after its mark",)
DAMAGE = {
    "random": lambda content: random.Random(4).randbytes(len(content)),
    "random after its mark": lambda content: content[:4] + random.Random(5).randbytes(5000),
    "truncated": lambda content: content[:len(content) // 2],
    "one byte short": lambda content: content[:-1],
    "header alone": lambda content: content[:28],
    "zero": lambda content: b"",
    "one byte": lambda content: b"I",
    "missing": None,
    "large": lambda content: bytes(100_000_000),
    "large after its mark": lambda content: content + bytes(100_000_000),
}


@pytest.mark.parametrize("damage", DAMAGE)
def test_a_damaged_image_file_costs_icons_alone(desk, damage):
    fill_cache(desk)
    settings = kept_settings(desk)
    if DAMAGE[damage]:
        images_file(desk).write_bytes(DAMAGE[damage](images_file(desk).read_bytes()))
    else:
        images_file(desk).unlink()
    written = paths_file(desk).stat().st_mtime_ns
    window = open_saving(desk)
    window.program.ask("settle")
    if damage in HARMLESS:
        wait_for_images(window, EXPECTED)
        assert shown_wrongly(window) == {}
    else:
        # The numbers that are known lead beyond the images: every row shows the default one, at
        # the end of a pass, too.
        eventually(lambda: paths_file(desk).stat().st_mtime_ns != written, "a pass has ended")
        assert set(images(window).values()) == {0}
        pixels = icon_pixels(window, window.program.picture())
        assert len(set(pixels.values())) == 1, pixels
        assert set(row_colours(window, window.program.picture()).values()) == {None}
    window.choose("Second")
    assert pane_colour(window, window.program.picture()) == GREEN
    window.program.picture(SCREENSHOTS / f"damaged-{damage.replace(' ', '-')}.png")
    assert window.boxes() == []
    assert window.program.close() == 0
    assert kept_settings(desk) == settings
    # Without the paths file all is extracted again.
    paths_file(desk).unlink(missing_ok=True)
    window = open_saving(desk)
    wait_for_images(window, EXPECTED)
    assert shown_wrongly(window) == {}
    assert window.program.close() == 0


@pytest.mark.parametrize("before, after", [(192, None), (None, 192), (120, 192)])
def test_images_of_another_resolution_are_loaded_anew(make_desk, before, after):
    with make_desk(dpi=before) as old, make_desk(dpi=after) as new:
        furnish(old)
        furnish(new)
        fill_cache(old)
        new.prefix.kept.mkdir(parents=True, exist_ok=True)
        for file in (paths_file, images_file):
            file(new).write_bytes(file(old).read_bytes())
        kept = images_file(new).read_bytes()
        window = open_saving(new)
        wait_for_images(window, EXPECTED)
        assert shown_wrongly(window) == {}
        assert window.program.close() == 0
        # Kept in their new size from here on.
        assert images_file(new).read_bytes()[10:14] != kept[10:14]


GARBAGE = {
    "random": random.Random(6).randbytes(100_000),
    "no lines": b"1" * 1_000_000,
    "numbers": b"99999999999999999999 C:\\Icons\\orange.ico\n-5 " + SETUP.encode() + b"\n",
    "empty": b"", "line ends": b"\n" * 100_000, "zeros": bytes(100_000),
    "megabytes": b"1 x\n" * 2_500_000,
}


@pytest.mark.parametrize("name", GARBAGE)
def test_a_damaged_paths_file_costs_icons_alone(desk, name):
    fill_cache(desk)
    settings = kept_settings(desk)
    paths_file(desk).write_bytes(GARBAGE[name])
    window = open_saving(desk)
    window.program.ask("settle")
    wait_for_images(window, {"File": ORANGE, "First": RED})
    assert shown_wrongly(window, {"File": ORANGE, "First": RED, "Second": GREEN}) == {}
    assert window.program.close() == 0
    assert kept_settings(desk) == settings


def test_an_index_beyond_the_images_shows_the_default_image(desk):
    fill_cache(desk)
    text = paths_file(desk).read_text("cp1252")
    (line,) = [line for line in text.split("\n") if line.endswith("orange.ico")]
    paths_file(desk).write_bytes(text.replace(line, "4711 C:\\Icons\\orange.ico").encode("cp1252"))
    window = open_saving(desk)
    wait_for_images(window, {"First": RED})
    assert shown_wrongly(window, {"First": RED, "Second": GREEN}) == {}
    seen = row_colours(window, window.program.picture())
    assert seen["File"] == seen["Same file"] == seen["Missing"]
    assert images(window)["File"] == images(window)["Missing"] == 0
    assert window.program.close() == 0


# A pass in the middle.

MANY = 500


@pytest.fixture(scope="module")
def crowded(make_desk):
    with make_desk() as made:
        keys = []
        for number in range(MANY):
            path = f"C:\\Icons\\{number:03d}.ico"
            made.prefix.make_file(path, icon_file(nth_colour(number)))
            keys.append(Key("user", f"P{number:03d}", {
                "DisplayName": f"P{number:03d}", "InstallDate": "20260101", "DisplayIcon": path}))
        seed(made, keys)
        yield made


@pytest.fixture
def many(crowded):
    yield crowded
    crowded.end_programs()


def shown_count(window):
    try:
        return sum(image > 0 for image in window.program.ask("list-images", LIST))
    except DriverError:
        # The list has changed meanwhile.
        return 0


def test_every_row_of_many_gets_its_own_icon(many):
    window = Window(many)
    window.wait_filled(MANY)
    eventually(lambda: shown_count(window) == MANY, lambda: f"{shown_count(window)} icons", 120)
    seen = images(window)
    assert len(set(seen.values())) == MANY
    picture = window.program.picture()
    top = window.program.ask("list-state", LIST)["top"]
    names = window.names()
    for row in range(top, top + 10):
        rect = window.program.ask("list-icon-rect", LIST, row)["screen"]
        assert plain_colour(picture, rect) == nth_colour(int(names[row][1:])), row
    assert window.program.close() == 0


def open_in_the_middle(desk):
    """Some rows have their icon by now, and others haven't."""
    window = Window(desk)
    shown = eventually(lambda: shown_count(window), "the pass has begun")
    assert 0 < shown < MANY
    return window


def wait_for_all(window):
    eventually(lambda: shown_count(window) == MANY, lambda: f"{shown_count(window)} icons", 120)


@pytest.mark.parametrize("number", [2, MANY // 2, MANY])
def test_a_refresh_in_the_middle_of_a_pass(many, number):
    """Before the icon of this number is loaded."""
    held = HeldDesk(many, BINARIES / "zolvane-held.exe")
    trace = held.drive_c / "trace.txt"
    trace.unlink(missing_ok=True)
    window = Window(many, program=held.start(f"hold@icon{number}", TRACE="C:\\trace.txt"))
    held.reached()
    assert 0 < shown_count(window) == number - 1 < MANY
    window.wait_filled(MANY)
    window.program.ask("set-text", STATUS, "")
    window.post(REFRESH)
    held.go()
    window.wait_filled(MANY)
    window.program.ask("settle")
    wait_for_all(window)
    assert len(set(images(window).values())) == MANY
    assert window.program.close() == 0
    # Nothing is extracted twice.
    assert sum(line.startswith("icon") for line in trace.read_text().split()) == MANY
    held.end_programs()


FILTERS_WITHIN = 1
EM_SETSEL = 0xB1


def seconds_to_filter(window, typed, count):
    window.desk.screen.type_text(typed)
    typed_at = time.monotonic()
    window.wait_filled(count, MANY)
    return time.monotonic() - typed_at


def test_what_is_typed_during_a_pass_filters_at_once(many):
    """Or nearly as fast as without a pass, on a machine that is busy otherwise."""
    window = open_in_the_middle(many)
    window.program.activate()
    steps = (("p1", 100), ("2", 10), ("7", 1))
    during = [seconds_to_filter(window, *step) for step in steps]
    assert window.names() == ["P127"]
    window.program.ask("set-text", SEARCH, "")
    window.wait_filled(MANY)
    # The pass was broken off and goes on.
    wait_for_all(window)
    window.program.send_to(SEARCH, EM_SETSEL, 0, -1)
    idle = [seconds_to_filter(window, *step) for step in steps]
    assert max(during) < max(FILTERS_WITHIN, 3 * max(idle)), (during, idle)
    assert window.program.close() == 0


def test_nothing_that_is_typed_during_a_pass_is_lost(many):
    window = open_in_the_middle(many)
    window.program.activate()
    text = "p1 the quick brown fox jumps over the lazy dog 0123456789"
    many.screen.type_text(text)
    eventually(lambda: window.program.ask("text", SEARCH) == text,
               lambda: f"what is typed, which is {window.program.ask('text', SEARCH)!r}")
    window.wait_filled(0, MANY)
    window.program.ask("set-text", SEARCH, "")
    window.wait_filled(MANY)
    wait_for_all(window)
    assert window.program.close() == 0


def test_it_closes_at_any_moment_of_a_pass(many):
    """Spread from the first row to the last icon; where each close has hit is printed."""
    hit = []
    for number in range(CLOSES):
        window = Window(many)
        window.wait_filled(MANY)
        moment = MANY * (number * 37 % CLOSES) // CLOSES
        eventually(lambda: shown_count(window) >= moment, f"{moment} icons", limit=120)
        hit.append(shown_count(window))
        assert window.program.close() == 0
    print(f"icons at the close: {sorted(hit)}")
    assert sum(0 < shown < MANY for shown in hit) > CLOSES / 6, sorted(hit)
