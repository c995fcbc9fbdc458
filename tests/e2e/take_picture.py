#!/usr/bin/python3
"""Opens the program on a virtual screen in the prefix of the environment, waits until its list is
filled, and writes a picture of the window: take_picture.py FOLDER-OF-PROGRAMS PICTURE"""

import contextlib
import os
import subprocess
import sys
from pathlib import Path

from support.driver import Driver
from support.program import TITLE, Program, eventually
from support.screen import Screen


def is_filled(program):
    shown, _, _ = program.status().partition(" ")
    return shown.isdigit() and int(shown) > 0


def main():
    folder, picture = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    with contextlib.ExitStack() as stack:
        screen = stack.enter_context(contextlib.closing(Screen()))
        env = dict(os.environ, DISPLAY=screen.env["DISPLAY"])
        driver = stack.enter_context(contextlib.closing(
            Driver(folder / "zolvane-driver.exe", env, subprocess.DEVNULL)))
        command = '"Z:' + str(folder / "zolvane.exe").replace("/", "\\") + '"'
        program = Program(driver, screen, driver("start", command))
        eventually(lambda: is_filled(program), "the list is filled", limit=120)
        program.activate()
        program.picture().cropped(screen.frame_of(TITLE)).save(picture)
        return program.close()


if __name__ == "__main__":
    sys.exit(main())
