"""The program stopped, or failing, in the middle of what it does (zolvane-held.exe)."""

from .program import TITLE, WINDOW_CLASS, Desk, DriverError, Program, eventually

BOX_LIMIT = 30000


class HeldDesk:
    """A desk whose programs are held at named points; see held/main_win.cpp for these."""

    def __init__(self, desk, program_path):
        self._desk = Desk(desk.screen, desk.prefix, desk.driver, program_path)
        self.driver = desk.driver
        self.drive_c = desk.prefix.folder / "drive_c"
        self.screen = desk.screen

    def start(self, points, visible=True, persist=False, **variables):
        """Starts the program with `points` to come to."""
        for event in ("reached", "go"):
            # A signal that an earlier program has left must not count.
            self.driver("event-set", f"zolvane-held-{event}")
            self.driver("event-wait", f"zolvane-held-{event}", 0)
        for name, value in {"HELD": points, "TRACE": None, "LIVE": None, **variables}.items():
            self.driver("set-env", f"ZOLVANE_{name}", *([] if value is None else [value]))
        pid = self._desk.start("-noupdate", *([] if persist else ["-nopersist"]))
        if not visible:
            self.reached()
        return Program(self.driver, self.screen, pid, visible)

    def reached(self):
        """Waits until the program stands at a point where it is held."""
        self.driver("event-wait", "zolvane-held-reached", 30000)

    def has_reached(self):
        """Whether it stands at one by now; tells each only once."""
        try:
            return self.driver("event-wait", "zolvane-held-reached", 0)
        except DriverError:
            return False

    def go(self):
        self.driver("event-set", "zolvane-held-go")

    def boxes(self, pid):
        """The handles of the message boxes that a program shows."""
        return [window["handle"] for window in self.driver("windows", pid)
                if window["visible"] and window["class"] == WINDOW_CLASS
                and window["title"] != TITLE]

    def wait_for_box(self, pid, title="Exception"):
        return self.driver("wait-window", pid, WINDOW_CLASS, title, BOX_LIMIT)["handle"]

    def answer_box(self, box):
        """OK; the box may be gone already."""
        self.driver("post", box, 0x0111, 1, 0)
        self.driver("wait-gone", box, BOX_LIMIT)

    def end_programs(self):
        self.go()
        self._desk.end_programs()


__all__ = ["HeldDesk", "eventually"]
