"""Installers of the tests' own in a prefix: what they were started with, and how they go on."""

import shutil

from .program import eventually


class Installer:
    """One copy of zolvane-installer.exe; see installer/installer_win.cpp for the words it knows."""

    def __init__(self, desk, binaries, path):
        self.desk, self.path = desk, path
        folder, _, self.name = path.rpartition("\\")
        if desk.prefix.host_path(folder) is None:
            desk.prefix.make_file(path)
        self.file = desk.prefix.host_path(folder) / self.name
        # The system's folders share their files with other prefixes.
        self.file.unlink(missing_ok=True)
        shutil.copyfile(binaries / "zolvane-installer.exe", self.file)

    def _beside(self, ending):
        """The program gives its name in the letters that it was started by."""
        wanted = (self.name + ending).lower()
        return next((file for file in self.file.parent.iterdir() if file.name.lower() == wanted),
                    self.file.with_name(self.name + ending))

    def always(self, *words):
        """What it does at each start from here on, after what it is told by its command line."""
        self._beside(".steps").write_text(" ".join(words))

    def lines(self):
        """The whole command line of each start."""
        log = self._beside(".log")
        text = log.read_text("cp1252") if log.exists() else ""
        return text.split("\n")[:-1]

    def starts(self):
        """The arguments of each start: what stands behind the program and one blank."""
        return [arguments_in(line) for line in self.lines()]

    def wait_for_starts(self, *wanted):
        """Until it has been started with just these arguments since the last call."""
        eventually(lambda: len(self.lines()) >= len(wanted),
                   lambda: f"{self.name} is started {len(wanted)} times, not {self.lines()}")
        assert self.starts() == list(wanted)
        self._beside(".log").unlink()

    def running(self):
        """The ids of its processes."""
        return [pid for pid in self.desk.driver("processes", self.name)
                if self.desk.driver("running", pid)]

    def end_all(self):
        """By force; what they have left goes too."""
        for pid in self.running():
            self.desk.driver("kill", pid)
        for ending in (".log", ".steps"):
            self._beside(ending).unlink(missing_ok=True)


def arguments_in(command_line):
    if command_line.startswith('"'):
        rest = command_line[command_line.index('"', 1) + 1:]
    else:
        _, blank, rest = command_line.partition(" ")
        rest = blank + rest
    return rest.removeprefix(" ")
