"""Wine's trace of a desk's programs, with the tests' own steps in between; kept where a test fails.

Wine's clock is another one than that of the steps, but the lines stand in their order."""

import contextlib
import itertools
import os
import re
import subprocess
import time


class Trace:
    def __init__(self, folder, channels):
        self.channels = channels
        self._folder = folder
        self._files, self._ended = [], []
        self._numbers = itertools.count()

    @contextlib.contextmanager
    def open(self):
        """A file for a desk's programs to write to."""
        self._folder.mkdir(parents=True, exist_ok=True)
        file = self._folder / f"desk-{os.getpid()}-{next(self._numbers)}.log"
        self._files.append(file)
        with open(file, "ab") as stream:
            try:
                yield stream
            finally:
                self._ended.append(file)

    def note(self, text):
        for file in self._files[-1:]:
            with open(file, "a") as trace:
                trace.write(f"{time.monotonic():.3f} ---- {text}\n")

    def begin(self):
        """Nobody asks what led to a test that went well."""
        for file in self._ended:
            self._files.remove(file)
            file.unlink()
        self._ended.clear()
        for file in self._files:
            os.truncate(file, 0)

    def keep(self, name, screen):
        """What there is of a test that has failed, and the screen at that time."""
        folder = self._folder / re.sub(r"\W+", "_", name)
        folder.mkdir(parents=True, exist_ok=True)
        for file in self._files:
            if file.stat().st_size:
                (folder / file.name).write_bytes(file.read_bytes())
        if screen is not None:
            screen.picture(folder / "screen.png")


class NoTrace:
    """Where none is asked for."""

    channels = "-all"

    def open(self):
        return contextlib.nullcontext(subprocess.DEVNULL)

    def note(self, text):
        pass

    def begin(self):
        pass

    def keep(self, name, screen):
        pass


current = NoTrace()


def note(text):
    current.note(text)
