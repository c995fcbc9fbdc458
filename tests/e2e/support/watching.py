"""Waiting for what the program shows by itself after a change in the registry."""

import itertools
import time

from .program import eventually
from .registry import SZ, UNINSTALL

PLACES = {"local": ("HKLM", 32), "local64": ("HKLM", 64), "user": ("HKCU", 64)}
TOUCH_EVERY = 2

touches = itertools.count()


def touch(desk, place):
    """Changes the place's own key, which no row stands for: only the watcher of that place can
    tell of it. The text is another one each time, because an equal one is no change."""
    desk.driver("reg-set", *PLACES[place], f"Software\\{UNINSTALL}", "touched", SZ,
                b"%d\0" % next(touches))


def shows_by_itself(desk, place, condition, what, limit=60):
    """A change that comes while a pass runs starts none, and a pass may have read the place before
    the change. So the place is touched again now and then."""
    touched = time.monotonic()

    def seen():
        nonlocal touched
        result = condition()
        if not result and time.monotonic() - touched > TOUCH_EVERY:
            touch(desk, place)
            touched = time.monotonic()
        return result

    return eventually(seen, what, limit)
