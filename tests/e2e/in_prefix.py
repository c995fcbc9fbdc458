#!/usr/bin/python3
"""Runs a command on a virtual screen with a fresh Wine prefix, and ends with its exit code."""

import contextlib
import os
import subprocess
import sys
from pathlib import Path

from support.prefix import Prefix, make_template
from support.screen import Screen

BUILD = Path(__file__).resolve().parents[2] / "build/e2e"


def main():
    with contextlib.ExitStack() as stack:
        screen = stack.enter_context(contextlib.closing(Screen()))
        template = make_template(BUILD, screen.env)
        lc_all = os.environ.get("LC_ALL", "en_GB.UTF-8")
        prefix = stack.enter_context(contextlib.closing(Prefix(template, screen.env, lc_all)))
        return subprocess.run(sys.argv[1:], env=prefix.env).returncode


if __name__ == "__main__":
    sys.exit(main())
