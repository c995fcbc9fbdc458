"""A virtual screen of the tests' own: an X server, a window manager, real mouse and keys."""

import os
import subprocess

from .picture import Picture

SIZE = (1280, 1024)


class Screen:
    def __init__(self):
        read_end, write_end = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{SIZE[0]}x{SIZE[1]}x24",
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
        picture = Picture.of_root(self.env, SIZE)
        if save_to is not None:
            picture.save(save_to)
        return picture

    def _xdotool(self, *words):
        subprocess.run(["xdotool", *(str(word) for word in words)], env=self.env, check=True,
                       stdin=subprocess.DEVNULL, timeout=20)

    def move_mouse(self, x, y):
        self._xdotool("mousemove", x, y)

    def click(self, x, y):
        self._xdotool("mousemove", x, y, "click", 1)

    def press_key(self, key):
        """A key by its X name, to whatever has the focus."""
        self._xdotool("key", key)

    def resize_window(self, start, end):
        """Drags with Alt and the right button: the window manager moves the nearest corner."""
        self._xdotool("mousemove", *start, "keydown", "alt", "mousedown", 3, "mousemove", *end,
                      "mouseup", 3, "keyup", "alt")
