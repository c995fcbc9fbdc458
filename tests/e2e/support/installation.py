"""Zolvane's own setup in a prefix, silently or page by page, and what it leaves there."""

import contextlib

from .driver import DriverError
from .program import WINDOW_CLASS, Desk, eventually
from .registry import SZ
from .window import Window

ENTRY = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Zolvane"
PLACES = {"user": ("HKCU", 64), "machine": ("HKLM", 32)}
FILES = {"licences.txt", "uninstall.exe", "zolvane.chm", "zolvane.exe"}
# An uninstaller removes itself by a copy of this name, which the system removes at its next start.
COPY_NAME = "Un.exe"
NEXT, CANCEL = 1, 2
WM_COMMAND = 0x111
LIMIT = 60


class Wizard:
    """A setup or an uninstaller by its pages."""

    def __init__(self, desk, pid):
        self.desk, self.driver, self.pid = desk, desk.driver, pid
        self.handle = self.driver("wait-window", pid, WINDOW_CLASS, "", LIMIT * 1000)["handle"]

    def window(self):
        return self.driver("window", self.handle)

    def _controls(self, dialog):
        """All that are seen, pages in the window included."""
        for control in self.driver("controls", dialog):
            if control["visible"]:
                yield control
                if control["class"] == WINDOW_CLASS:
                    yield from self._controls(control["handle"])

    def controls(self):
        # A page may go while it is read.
        with contextlib.suppress(DriverError):
            return list(self._controls(self.handle))
        return []

    def texts(self):
        return [control["text"] for control in self.controls() if control["text"]]

    def find(self, start):
        """The control whose text begins so, once it is there."""
        return eventually(
            lambda: next((control for control in self.controls()
                          if control["text"].replace("&", "").startswith(start)), None),
            lambda: f"{start!r} among {self.texts()}")

    def wait_enabled(self, number):
        return eventually(
            lambda: next((control for control in self.controls()
                          if control["id"] == number and control["enabled"]), None),
            lambda: f"button {number} among {self.texts()}")

    def press(self, number):
        self.wait_enabled(number)
        self.driver("post", self.handle, WM_COMMAND, number, 0)

    def click(self, start):
        """With the mouse, on the control whose text begins so."""
        left, top, right, bottom = self.find(start)["screen"]
        self.desk.screen.click(left + 8, (top + bottom) // 2)

    def picture(self, path):
        eventually(lambda: self.driver("drawn", self.pid), "nothing waits to be drawn")
        self.desk.screen.move_mouse(0, 0)
        pictures = [self.desk.screen.picture()]

        def is_still():
            pictures.append(self.desk.screen.picture())
            return pictures[-1] == pictures[-2]

        eventually(is_still, "the page has finished drawing")
        pictures[-1].save(path)

    def boxes(self):
        return [window for window in self.desk.windows_of(self.pid)
                if window["class"] == WINDOW_CLASS and window["handle"] != self.handle]

    def box(self):
        return eventually(self.boxes, "a box")[0]

    def answer(self, box, number):
        self.driver("post", box["handle"], WM_COMMAND, number, 0)
        self.driver("wait-gone", box["handle"], LIMIT * 1000)

    def exit_code(self):
        return self.driver("wait-exit", self.pid, LIMIT * 1000)


class Installation:
    def __init__(self, desk, setups):
        """`setups`: their paths by their versions."""
        self.desk, self.driver, self._setups = desk, desk.driver, setups

    # What is run.

    def start(self, version, *switches):
        path = "Z:" + str(self._setups[version]).replace("/", "\\")
        return self.driver("start", " ".join([f'"{path}"', *switches]))

    def run(self, version, *switches):
        """Silently, without the program's start; the exit code."""
        return self.driver("wait-exit", self.start(version, "/S", "/NOSTART", *switches),
                           LIMIT * 1000)

    def wizard(self, version, *switches):
        return Wizard(self.desk, self.start(version, *switches))

    def uninstall(self, *switches, scope="user"):
        """Silently, as the system does by the entry. It goes on by a copy of itself."""
        command = self.value("QuietUninstallString", scope)
        self.driver("start", " ".join([command, *switches]))

    def uninstall_in_place(self, *switches):
        """Silently and without a copy, which can't remove itself; the exit code."""
        pid = self.driver("start", " ".join([self.value("QuietUninstallString"), *switches,
                                             f"_?={self.folder()}"]))
        return self.driver("wait-exit", pid, LIMIT * 1000)

    def remover(self):
        """The uninstaller's pages; those of its copy."""
        self.driver("start", self.value("UninstallString"))
        (pid,) = eventually(lambda: self.programs(COPY_NAME), "the uninstaller's copy runs")
        return Wizard(self.desk, pid)

    def programs(self, name="zolvane.exe"):
        """The ids of those that run."""
        return [pid for pid in self.driver("processes", name) if self.driver("running", pid)]

    # What is there.

    def folder(self, scope="user"):
        return self.value("InstallLocation", scope)

    def files(self, folder):
        """The names of the files in a folder, None if it isn't there."""
        place = self.desk.prefix.host_path(folder)
        return None if place is None else {file.name for file in place.iterdir()}

    def value(self, name, scope="user"):
        """A value of the entry; None if it isn't there."""
        try:
            found = self.driver("reg-get", *PLACES[scope], ENTRY, name)
        except DriverError:
            return None
        return self.read_value(found)

    @staticmethod
    def read_value(found):
        data = found["data"]
        if found["type"] == SZ:
            return data.removesuffix("\0")
        return int.from_bytes(data.encode("cp1252", "surrogateescape"), "little")

    def shortcuts(self):
        return sorted(path for path in self.desk.prefix.folder.glob("drive_c/**/Zolvane.lnk"))
