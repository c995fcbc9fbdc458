"""A virtual screen of the tests' own: an X server, a window manager, real mouse and keys."""

import contextlib
import os
import re
import subprocess

from .picture import Picture
from .trace import note

SIZE = (1280, 1024)


class Screen:
    def __init__(self, size=SIZE):
        self.size = size
        read_end, write_end = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{size[0]}x{size[1]}x24",
             "-nolisten", "tcp"],
            pass_fds=[write_end], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        # The server writes the number that it found free once it takes connections.
        with os.fdopen(read_end) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.env = dict(os.environ, DISPLAY=":" + number)
        self.env.pop("XAUTHORITY", None)
        self._manager = subprocess.Popen(["openbox"], env=self.env, stdin=subprocess.DEVNULL,
                                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def close(self):
        for process in (self._manager, self._server):
            process.terminate()
            process.wait(timeout=20)

    def picture(self, save_to=None):
        """What the screen shows; also as a PNG file where a path is given."""
        picture = Picture.of_root(self.env, self.size)
        if save_to is not None:
            picture.save(save_to)
        return picture

    def _xdotool(self, *words):
        note(f"xdotool {words}")
        subprocess.run(["xdotool", *(str(word) for word in words)], env=self.env, check=True,
                       stdin=subprocess.DEVNULL, timeout=20)

    def move_mouse(self, x, y):
        self._xdotool("mousemove", x, y)

    def click(self, x, y, button=1, times=1):
        self._xdotool("mousemove", x, y, "click", "--repeat", times, "--delay", 40, button)

    def press_key(self, key):
        """A key by its X name, to whatever has the focus."""
        self._xdotool("key", key)

    def type_text(self, text):
        self._xdotool("type", "--delay", 10, text)

    def active_title(self):
        """The title of the window that the window manager has made the active one, which it does
        once the window can be seen; empty if there is none."""
        made = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], env=self.env,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, timeout=20)
        return made.stdout.decode().strip()

    def focus_title(self):
        """The title of the window that gets the keys; empty where none does."""
        asked = subprocess.run(["xdotool", "getwindowfocus", "getwindowname"], env=self.env,
                               stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, timeout=20)
        title = asked.stdout.decode().strip()
        note(f"focus on {title!r}")
        return title

    def activate(self, title):
        """Has the window manager give a window the focus, as a click into a taskbar does."""
        note(f"activate {title!r}")
        subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(title)}$",
                        "windowactivate"], env=self.env, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=20)

    def frame_of(self, title):
        """A window with the frame that the window manager has put around it."""
        def read(*command):
            return subprocess.run([*command, "-name", title], env=self.env, check=True,
                                  stdout=subprocess.PIPE, timeout=20).stdout.decode()

        info = read("xwininfo")
        left, top, width, height = (
            int(re.search(rf"{name}: +(-?\d+)", info)[1])
            for name in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
        extents = read("xprop", "_NET_FRAME_EXTENTS").split("=")[1]
        more_left, more_right, more_top, more_bottom = (int(word) for word in extents.split(","))
        return (left - more_left, top - more_top,
                left + width + more_right, top + height + more_bottom)

    def corner_of(self, title):
        """A point on the lower right corner of a window's frame, where the mouse resizes it."""
        _, _, right, bottom = self.frame_of(title)
        return right - 6, bottom - 3

    @contextlib.contextmanager
    def button_held(self, x, y):
        """The left mouse button pressed at a point and held."""
        self._xdotool("mousemove", x, y, "mousedown", 1)
        try:
            yield
        finally:
            self._xdotool("mouseup", 1)
