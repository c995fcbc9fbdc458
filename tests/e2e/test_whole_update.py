"""The whole way of an update: from the installed version, by its check, to the next one."""

import contextlib
import shutil

from conftest import BINARIES, SCREENSHOTS
from support.descriptions import Message
from support.installation import FILES, Installation, Wizard
from support.program import Program, eventually
from support.releases import NEXT as NEXT_VERSION
from support.releases import THIS, setups_of
from support.updates import DESCRIPTION, MARKER, Updates
from support.web_server import Gate, WebServer, held_page
from support.window import NO, OK, YES, Window

SETUP_PATH = "/downloads/zolvane-5.4-setup.exe"
ABOUT = 16
NEXT_BUTTON = 1


def check_own_entry(setup, window):
    row = window.row_of("Zolvane")
    texts = {window.program.column(column)[row] for column in range(31)}
    assert {NEXT_VERSION, "Quillmere", "OK", setup.folder()} <= texts


def test_an_installed_version_finds_the_next_one_fetches_it_and_hands_over(make_desk):
    with make_desk() as desk, contextlib.closing(WebServer()) as server:
        setups = setups_of(BINARIES)
        setup = Installation(desk, setups)
        assert setup.run(THIS) == 0
        program = desk.prefix.host_path(setup.folder()) / "zolvane.exe"
        # The same program, but that it looks for the description at the test's server.
        shutil.copy(BINARIES / "zolvane-near.exe", program)
        updates = Updates(desk, program, BINARIES, server)
        gate = Gate()
        body = setups[NEXT_VERSION].read_bytes()
        server.answers[SETUP_PATH] = held_page(body, gate, len(body) // 2)
        updates.publish(version=NEXT_VERSION, download=server.address(SETUP_PATH),
                        messages=[Message("Read this first.", version=THIS)])

        # The first start of a day: message and offer; No leaves all as it is.
        window = Window(updates.desk, switches=())
        box = updates.message(window)
        assert box.text == "Read this first."
        box.answer(OK)
        updates.offer(window).answer(NO)
        updates.check_silent(window)
        assert window.program.close() == 0
        assert len(server.asked_for(DESCRIPTION)) == 1

        # The second start of that day asks nobody.
        window = Window(updates.desk, switches=())
        window.row_of("Zolvane")
        updates.check_silent(window)
        assert window.program.close() == 0
        assert len(server.asked_for(DESCRIPTION)) == 1

        # Another day, and Yes.
        updates.set_last_check("01/01/2020")
        settings = updates.settings.read_bytes()
        window = Window(updates.desk, switches=())
        updates.message(window).answer(OK)
        updates.offer(window).answer(YES)
        updates.dialog(window)
        gate.wait()
        assert not window.program.window()["visible"]
        desk.screen.picture(SCREENSHOTS / "whole-update-download.png")
        gate.open()
        assert window.program.exit_code() == 0
        assert updates.settings.read_bytes() == settings
        fetched = updates.temporary + "zolvane-5.4-setup.exe"
        assert updates.marker() == f"{fetched}\n".encode("cp1252")
        assert desk.prefix.host_path(fetched).read_bytes() == body

        # The setup takes it from here, by its pages.
        (pid,) = eventually(lambda: setup.programs("zolvane-5.4-setup.exe"), "the setup runs")
        wizard = Wizard(desk, pid)
        wizard.find(f"Zolvane {THIS} is installed")
        wizard.picture(SCREENSHOTS / "whole-update-setup.png")
        wizard.press(NEXT_BUTTON)
        wizard.find("Start Zolvane")
        assert not (updates.temporary_files / MARKER).exists()
        wizard.press(NEXT_BUTTON)
        (new,) = eventually(setup.programs, "the new version runs")
        assert wizard.exit_code() == 0
        assert setup.files(setup.folder()) == FILES

        window = Window(desk, program=Program(desk.driver, desk.screen, new))
        check_own_entry(setup, window)
        window.post(ABOUT)
        about = window.box("Info about Zolvane")
        assert f"Zolvane {NEXT_VERSION}" in {label["text"]
                                             for label in desk.driver("controls", about.handle)}
        window.program.picture(SCREENSHOTS / "whole-update-new.png")
        about.close()
        assert window.program.close() == 0
        assert len(server.asked_for(DESCRIPTION)) == 2
