"""A prefix in which the program starts nothing but installers of the tests' own."""

from .held import HeldDesk
from .installers import Installer
from .program import REFRESH, STATUS, Desk
from .registry import SZ
from .seeding import seed
from .window import Window

SETUP, OTHER = "C:\\Setups\\setup.exe", "C:\\Set ups\\un install.exe"
SYSTEM = "C:\\windows\\system32"
TRACE = "C:\\Setups\\trace.txt"


class Setups:
    """A prefix with an installer in two places, and a stand-in for the system's own."""

    def __init__(self, desk, binaries):
        self._binaries = binaries
        self._installers = {}
        self.desk = Desk(desk.screen, desk.prefix, desk.driver, binaries / "zolvane.exe")
        self.held = HeldDesk(desk, binaries / "zolvane-held.exe")
        self.setup = self.installer(SETUP)
        self.other = self.installer(OTHER)
        self.msiexec = self.system("msiexec.exe")
        self._trace = self.setup.file.with_name("trace.txt")

    def installer(self, path):
        """One at a path, the same one at each call."""
        if path not in self._installers:
            self._installers[path] = Installer(self.desk, self._binaries, path)
        return self._installers[path]

    def system(self, name):
        """One in the place of a program of the system."""
        self.desk.driver("reg-set", "HKCU", 64, "Software\\Wine\\DllOverrides", name, SZ,
                         b"native\0")
        return self.installer(f"{SYSTEM}\\{name}")

    def open_held(self, keys, points="", **variables):
        """The program with what counts its passes, filled with these keys."""
        seed(self.desk, keys)
        self._trace.unlink(missing_ok=True)
        window = Window(self.desk, program=self.held.start(points, TRACE=TRACE, **variables))
        window.wait_filled(len(keys))
        return window

    def _reached(self, point):
        """How often a point whose name begins so has been reached."""
        return sum(line.startswith(point) for line in self._trace.read_text().split())

    def passes(self):
        """How many have begun."""
        return (self._reached("source") + 2) // 3

    def watches(self):
        """How often a watcher has begun to wait: the notice of what it has seen is posted."""
        return self._reached("watch")

    def begin_count(self, window):
        """How many passes there have been; from here on the end of one shows."""
        window.program.ask("set-text", STATUS, "")
        return self.passes()

    def check_passes(self, window, count, before):
        """That there have been `count` since the counting began with `before`, none of which runs
        still or is to come: one that did would be followed by another, as a Refresh from scratch
        asks for its own."""
        shown = len(window.names())
        if count:
            window.wait_filled(shown)
        assert self.passes() == before + count
        window.program.ask("set-text", STATUS, "")
        window.program.ask("command", REFRESH)
        window.wait_filled(shown)
        assert self.passes() == before + count + 1

    def end(self):
        self.desk.end_programs()
        self.held.end_programs()
        for installer in self._installers.values():
            installer.end_all()
