"""The program with a server of the tests' own where the description of its newest version is."""

import re
import shutil
import subprocess
import time
from datetime import date

from .descriptions import Description
from .driver import DriverError
from .program import WINDOW_CLASS, Desk, eventually
from .registry import SZ
from .web_server import held_page, page, set_proxy
from .window import Window

OWN_KEY, LAST_CHECK = "Software\\Quillmere\\Zolvane", "last update check"
DESCRIPTION, SETUP = "/zolvane.xml", "/downloads/zolvane-setup.exe"
SETUP_NAME, MARKER = "zolvane-setup.exe", "zolvane.tmp"
CHECK_NOW, SHOW_DESCRIPTION = 32788, 2008
BAR = 1039

OFFER_TITLES = {"english": "Program Update Check", "german": "Suche nach Programm-Updates"}
MESSAGE_TITLES = {"english": "Message", "german": "Hinweismeldung"}
DOWNLOAD_TITLES = {"english": "Update Download", "german": "Update-Download"}

WM_CLOSE = 0x10
# An end that has been asked for comes within so many seconds.
ENDS_WITHIN = 5
# So long is looked out for what must not come, as there is no sign of its not coming.
MOMENT = 0.3


class Updates:
    def __init__(self, desk, near, binaries, server):
        self.desk = Desk(desk.screen, desk.prefix, desk.driver, near)
        self.driver, self.server, self._binaries = desk.driver, server, binaries
        self.temporary = desk.driver("temp-folder")
        self.temporary_files = desk.prefix.host_path(self.temporary.rstrip("\\"))
        self.settings = desk.prefix.kept / "zolvane-cfg.xml"
        # Before the first test: what the system itself has put there.
        self._first_files = set(self.temporary_files.iterdir())
        # Some systems have the client take a proxy from there.
        desk.driver("set-env", "http_proxy")
        self.be_at(server.address(DESCRIPTION))

    def be_at(self, address):
        """Where the programs that are started from here on look for the description."""
        self.driver("set-env", "ZOLVANE_NEAR", address)

    def publish(self, description=None, **fields):
        """The description that the server has, with its own setup to download."""
        fields = {"download": self.server.address(SETUP), **fields}
        self.serve(page((description or Description(**fields)).xml()))

    def serve(self, answer):
        self.server.answers[DESCRIPTION] = answer

    def serve_setup(self, filler=0, gate=None):
        """An installer of the tests' own as the new version's setup. With `filler`, so many bytes
        after it; with `gate`, in two halves."""
        body = (self._binaries / "zolvane-installer.exe").read_bytes() + bytes(filler)
        half = len(body) // 2 // 1024 * 1024
        self.server.answers[SETUP] = held_page(body, gate, half) if gate else page(body)
        return body

    def open(self, *switches, language="english"):
        window = Window(self.desk, language, switches=switches)
        window.wait_filled(0)
        return window

    def offer(self, window):
        return window.box(OFFER_TITLES[window.language])

    def message(self, window):
        return window.box(MESSAGE_TITLES[window.language])

    def dialog(self, window):
        """The download's, once it is there; its thread answers nothing."""
        title = DOWNLOAD_TITLES[window.language]
        return self.driver("wait-window", window.program.pid, WINDOW_CLASS, title, 20000)["handle"]

    def place(self, dialog, control):
        return self.driver("control-place", dialog, control)["screen"]

    def downloads(self):
        """The names of what has come into the folder for temporary files."""
        return {file.name for file in set(self.temporary_files.iterdir()) - self._first_files}

    def handed_over(self):
        """The setup as it was started; it notes that beside itself."""
        log = self.temporary_files / f"{SETUP_NAME}.log"
        eventually(lambda: log.exists() and log.read_bytes().endswith(b"\n"),
                   "the setup is started")
        # Some systems' shell puts a blank where arguments would be.
        return [line.rstrip(" ") for line in log.read_text("cp1252").splitlines()]

    def marker(self):
        return (self.temporary_files / MARKER).read_bytes()

    def last_check(self):
        """The value as it is in the registry; None if it isn't there."""
        try:
            return self.driver("reg-get", "HKCU", 64, OWN_KEY, LAST_CHECK)
        except DriverError:
            return None

    def set_last_check(self, text, kind=SZ):
        self.driver("reg-create", "HKCU", 64, OWN_KEY)
        self.driver("reg-set", "HKCU", 64, OWN_KEY, LAST_CHECK, kind, text.encode() + b"\0")

    def today(self, picture="%d/%m/%Y"):
        return date.today().strftime(picture)

    def system_id(self):
        """As a command prompt names the system."""
        shown = subprocess.run(["wine", "cmd", "/c", "ver"], env=self.desk.prefix.env, check=True,
                               stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, timeout=60).stdout.decode()
        return "WIN" + re.search(r"\d+\.\d+\.\d+", shown)[0]

    def check_silent(self, window):
        """For a moment no box comes, and the program lives."""
        end = time.monotonic() + MOMENT
        while time.monotonic() < end:
            assert window.boxes() == []
            time.sleep(0.05)
        assert window.program.window()["visible"]
        window.program.ask("settle")

    def check_closes(self, window):
        """The window is asked to close, and the process ends in time and well."""
        window.program.ask("post", WM_CLOSE, 0, 0)
        assert window.program.exit_code(ENDS_WITHIN) == 0

    def clear(self):
        """All that a test may have left."""
        self.desk.end_programs()
        for name in ("zolvane-setup.exe", "zolvane-installer.exe"):
            for pid in self.driver("processes", name):
                if self.driver("running", pid):
                    self.driver("kill", pid)
        for file in set(self.temporary_files.iterdir()) - self._first_files:
            shutil.rmtree(file) if file.is_dir() else file.unlink()
        try:
            self.driver("reg-delete", "HKCU", 64, OWN_KEY)
        except DriverError:
            pass
        shutil.rmtree(self.desk.prefix.kept, ignore_errors=True)
        set_proxy(self.desk, "")
        self.be_at(self.server.address(DESCRIPTION))
        self.server.forget()
