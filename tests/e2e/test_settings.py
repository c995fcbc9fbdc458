"""The settings that outlive a run, and the file that keeps them."""

import shutil

import pytest

from conftest import GERMAN, SCREENSHOTS
from support.held import BOX_LIMIT
from support.program import WINDOW_CLASS, Program, eventually
from support.registry import Key
from support.screen import SIZE

KEYS = [Key("user", "Only", {"DisplayName": "Only"})]
PLACE = (90, 120, 860, 710)
FRAME = 4
DECLARATION = '<?xml version="1.0" encoding="utf-8"?>'
FILLED = {"english": "1 / 1 packages", "german": "1 / 1 Pakete"}


class Settings:
    def __init__(self, desk):
        self.desk, self.screen = desk, desk.screen
        self.file = desk.prefix.kept / "zolvane-cfg.xml"

    def open(self, *switches, language="english"):
        program = self.desk.open("-noupdate", *switches)
        program.wait_for_status(FILLED[language])
        return program

    def write(self, ui="", flags="", version=' version="5.3"'):
        self.file.parent.mkdir(exist_ok=True)
        self.file.write_text(f"{DECLARATION}<zolvane{version}>{ui}{flags}</zolvane>\n")

    def content(self):
        return self.file.read_text()


def text_of(place, language=9, colours="true"):
    left, top, right, bottom = place
    return (f'{DECLARATION}<zolvane version="5.3"><ui lang-id="{language}" '
            f'window-pos="{left}/{top}/{right}/{bottom} - 1"/>'
            f'<flags color-bkgnd="{colours}"/></zolvane>\n')


def move(program, place):
    left, top, right, bottom = place
    program.ask("move", left, top, right - left, bottom - top)
    eventually(lambda: program.window()["frame"] == list(place), "the window is at its place")


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk(KEYS) as desk:
        yield desk


@pytest.fixture
def settings(desk):
    yield Settings(desk)
    desk.end_programs()
    shutil.rmtree(desk.prefix.kept, ignore_errors=True)


def test_the_file_is_written_at_the_end_and_brings_the_window_back(settings):
    program = settings.open()
    move(program, PLACE)
    assert not settings.file.exists()
    assert program.close() == 0
    assert settings.content() == text_of(PLACE)
    program = settings.open()
    assert program.window()["frame"] == list(PLACE)
    program.picture(SCREENSHOTS / "settings-place.png")
    assert program.close() == 0
    assert settings.content() == text_of(PLACE)


def test_a_window_that_is_minimised_at_the_end_keeps_its_former_place(settings):
    settings.write(f'<ui lang-id="9" window-pos="{"/".join(map(str, PLACE))} - 1"/>')
    program = settings.open()
    move(program, (200, 200, 900, 800))
    program.minimise()
    assert program.close() == 0
    assert settings.content() == text_of(PLACE)


def test_the_first_end_while_minimised_leaves_no_place(settings):
    program = settings.open()
    program.minimise()
    assert program.close() == 0
    assert settings.content() == (f'{DECLARATION}<zolvane version="5.3"><ui lang-id="9"/>'
                                  '<flags color-bkgnd="true"/></zolvane>\n')


@pytest.mark.parametrize("end", ["Escape", "alt+F4"])
def test_every_way_out_keeps_the_settings(settings, end):
    program = settings.open()
    move(program, PLACE)
    program.press_key(end)
    assert program.exit_code() == 0
    assert settings.content() == text_of(PLACE)


def test_a_run_that_must_not_persist_neither_reads_nor_writes(settings):
    settings.write('<ui lang-id="7" window-pos="1/2/3/4 - 1"/>')
    before = settings.content()
    program = settings.open("-nopersist")
    assert program.close() == 0
    assert settings.content() == before


def test_the_language_of_a_switch_is_kept(settings):
    assert settings.open("-ger", language="german").close() == 0
    assert settings.open(language="german").close() == 0
    assert settings.open("-eng").close() == 0
    assert settings.open().close() == 0


def test_the_language_of_the_system_is_the_first(make_desk):
    with make_desk(KEYS, lc_all=GERMAN) as desk:
        settings = Settings(desk)
        assert settings.open(language="german").close() == 0
        assert 'lang-id="7"' in settings.content()
        settings.write('<ui lang-id="9"/>')
        assert settings.open().close() == 0


def test_a_language_that_there_is_not_means_english_and_is_kept(settings):
    settings.write('<ui lang-id="12"/>')
    assert settings.open().close() == 0
    assert 'lang-id="12"' in settings.content()


def test_settings_of_a_newer_version_are_passed_over_and_replaced(settings):
    settings.write('<ui lang-id="7" window-pos="1/2/3/4 - 1"/>', "<flags/>", ' version="5.4"')
    program = settings.open()
    move(program, PLACE)
    assert program.close() == 0
    assert settings.content() == text_of(PLACE)


@pytest.mark.parametrize("version", ["", ' version="5.2"'], ids=["none", "older"])
def test_settings_of_an_older_version_are_read(settings, version):
    settings.write('<ui lang-id="7"/>', version=version)
    assert settings.open(language="german").close() == 0


@pytest.mark.parametrize("content", [
    b"", b"<", b"<zolvane><ui lang-id=7/></zolvane>", b"\0" * 2000, b"\xff\xfe<\0z\0", b"<a>" * 50000,
    b"<zolvane><ui window-pos='99999999999/a'/></zolvane>", b"<zolvane version='5.3'><ui lang-id='9'",
    b"<zolvane><ui window-pos='90/120/860'/></zolvane>",
    b"<zolvane><ui window-pos='90/120/860/710'/></zolvane>",
], ids=["empty", "bracket", "malformed", "zeros", "16 bits", "deep", "no place", "cut",
        "three numbers", "four numbers"])
def test_it_starts_in_the_middle_with_settings_that_are_none(settings, content):
    program = settings.open("-nopersist")
    middle = program.window()["frame"]
    assert program.close() == 0
    settings.file.parent.mkdir(exist_ok=True)
    settings.file.write_bytes(content)
    program = settings.open()
    assert program.window()["frame"] == middle
    move(program, PLACE)
    assert program.close() == 0
    assert settings.content() == text_of(PLACE)


def test_an_end_tag_too_many_is_told_before_there_is_a_window_and_passed_over(settings):
    settings.file.parent.mkdir()
    settings.file.write_text("</zolvane>" + text_of(PLACE, language=7))
    pid = settings.desk.start("-noupdate")
    driver = settings.desk.driver
    box = driver("wait-window", pid, WINDOW_CLASS, "Exception", BOX_LIMIT)["handle"]
    assert [window["handle"] for window in settings.desk.windows_of(pid)] == [box]
    driver("post", box, 0x111, 1, 0)
    program = Program(driver, settings.screen, pid)
    program.wait_for_status(FILLED["german"])
    assert program.window()["frame"] == list(PLACE)
    assert program.close() == 0
    assert settings.content() == text_of(PLACE, language=7)


def test_it_starts_with_settings_that_are_larger_than_its_memory(settings):
    settings.file.parent.mkdir()
    with settings.file.open("wb") as file:
        file.truncate(3 << 29)
    program = settings.open()
    move(program, PLACE)
    assert program.close() == 0
    assert settings.content() == text_of(PLACE)


@pytest.mark.parametrize("part", [0.2, 0.4, 0.6, 0.8, 0.97])
def test_after_a_cut_it_starts_and_leaves_good_settings(settings, part):
    settings.file.parent.mkdir()
    whole = text_of(PLACE)
    settings.file.write_text(whole[:int(len(whole) * part)])
    program = settings.open()
    move(program, PLACE)
    assert program.close() == 0
    assert settings.content() in (whole, text_of(PLACE, colours="false"))


@pytest.mark.parametrize("place", [
    "5000/5000/5900/5700 - 1", "-3000/10/-2100/700 - 1", "100/-500/1000/200 - 1",
    "2147483647/2147483647/-2147483648/-2147483648 - 1",
    "-2147483648/-2147483648/2147483647/2147483647 - 1",
])
def test_a_place_out_of_reach_brings_the_window_onto_the_screen(settings, place):
    settings.write(f'<ui lang-id="9" window-pos="{place}"/>')
    program = settings.open()
    left, top, right, bottom = program.window()["frame"]
    # A window as large as the screen is moved a little by the window manager.
    assert -FRAME <= left < right <= SIZE[0] + FRAME
    assert -FRAME <= top < bottom <= SIZE[1] + FRAME
    assert program.close() == 0


def test_a_file_that_cannot_be_written_is_no_trouble(settings):
    settings.file.mkdir(parents=True)
    assert settings.open().close() == 0
    assert settings.file.is_dir()
