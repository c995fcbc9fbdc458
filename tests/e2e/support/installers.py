"""Installers of the tests' own in a prefix: what they were started with, and how they go on."""

import shutil

from .program import eventually


class Installer:
    """One copy of zolvane-installer.exe; see installer/installer_win.cpp for the words it knows."""

    def __init__(self, desk, binaries, path):
        self.desk, self.path = desk, path
        desk.prefix.make_file(path)
        self.file = desk.prefix.host_path(path)
        shutil.copyfile(binaries / "zolvane-installer.exe", self.file)
        self.name = self.file.name
        self._log = self.file.with_name(self.name + ".log")

    def always(self, *words):
        """What it does at each start from here on; nothing without words."""
        self.file.with_name(self.name + ".steps").write_text(" ".join(words))

    def lines(self):
        """The whole command line of each start up to now."""
        text = self._log.read_text("cp1252") if self._log.exists() else ""
        return text.split("\n")[:-1]

    def starts(self):
        """The arguments of each start: what stands behind the program and one blank."""
        return [arguments_in(line) for line in self.lines()]

    def wait_for_starts(self, *wanted):
        """Until it has been started with just these arguments since the last call."""
        eventually(lambda: len(self.lines()) >= len(wanted),
                   lambda: f"{self.name} is started {len(wanted)} times, not {self.lines()}")
        starts = self.starts()
        assert starts == list(wanted)
        self._log.unlink()

    def running(self):
        return self.desk.driver("processes", self.name)

    def end_all(self):
        """By force."""
        for pid in self.running():
            if self.desk.driver("running", pid):
                self.desk.driver("kill", pid)
        for left in (self._log, self.file.with_name(self.name + ".steps")):
            left.unlink(missing_ok=True)


def arguments_in(command_line):
    if command_line.startswith('"'):
        rest = command_line[command_line.index('"', 1) + 1:]
    else:
        program, blank, rest = command_line.partition(" ")
        rest = blank + rest
    return rest.removeprefix(" ")
