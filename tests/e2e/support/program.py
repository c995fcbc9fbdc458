"""The program under test: started, asked and operated from outside."""

import itertools
import time

from .driver import DriverError

WINDOW_LIMIT = 60
WINDOW_CLASS = "#32770"
TITLE = "Zolvane"
# Looks at the focus before the window manager is asked: some seconds.
FOCUS_PATIENCE = 100
MINIMISED_PLACE = [-32000, -32000]

LIST = 1001
REFRESH = 1007
TYPE = 1016
SEARCH = 1026
MICROSOFT = 1028
STATUS = 1031
GROUP = 1040

NORMAL_PACKAGES, ALL_PACKAGES = 0, 4

WM_SYSCOMMAND, WM_TIMER = 0x112, 0x113
SC_MINIMIZE, SC_MAXIMIZE = 0xF020, 0xF030
NOBODYS_TIMER = 4242


def eventually(condition, what, limit=30):
    """Asks until the condition gives something true, and returns that. `what` is the text for a
    failure, or gives it."""
    end = time.monotonic() + limit
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise AssertionError(f"not within {limit} s: {what() if callable(what) else what}")
        # Between two looks at the condition; the wait's end is the condition.
        time.sleep(0.02)


def wait_for_focus(screen, title):
    """Until a window of this title gets the keys. A box that is closed before is one that nobody
    can have seen: if it comes before the program's window has had the focus, the window manager
    has nothing to give back, and no window gets the keys any more."""
    eventually(focus_on(screen, title),
               lambda: f"{title!r} has the focus, which {screen.focus_title()!r} has")


def focus_on(screen, title):
    """A condition for `eventually`. Windows come and go faster here than a window manager expects:
    once in some thousand times it leaves the focus where it was, or with nobody. A user would
    click on the window."""
    looks = itertools.count(1)

    def has_focus():
        if screen.focus_title() == title:
            return True
        if next(looks) % FOCUS_PATIENCE == 0:
            screen.activate(title)
        return False

    return has_focus


class Program:
    def __init__(self, driver, screen, pid, visible=True):
        self._driver = driver
        self._screen = screen
        self.pid = pid
        self.handle = eventually(
            lambda: self._find(visible),
            lambda: f"the program's window; running: {self.is_running()}, it has "
            f"{driver('windows', pid)}", WINDOW_LIMIT)

    def _find(self, visible):
        for window in self._driver("windows", self.pid):
            if (window["class"], window["title"]) == (WINDOW_CLASS, TITLE):
                if window["visible"] or not visible:
                    return window["handle"]
        return None

    def ask(self, command, *arguments):
        """A command of the driver about this window."""
        return self._driver(command, self.handle, *arguments)

    def window(self):
        return self.ask("window")

    def control(self, control_id):
        return self.ask("control", control_id)

    def controls(self):
        return {control["id"]: control for control in self.ask("controls")}

    def send_to(self, control_id, message, wparam=0, lparam=0):
        """A message to a control."""
        return self._driver("send", self.control(control_id)["handle"], message, wparam, lparam)

    def status(self):
        return self.ask("text", STATUS)

    def ask_list(self, command, *arguments):
        """What the driver reads row by row: asked again where the list has changed meanwhile."""
        refusals = []

        def answer():
            try:
                return [self.ask(command, LIST, *arguments)]
            except DriverError as refusal:
                refusals.append(refusal)
                return None

        return eventually(answer, lambda: "the list stays as it is while it is read; "
                          f"{len(refusals)} times not, last: {refusals[-1]}")[0]

    def rows(self):
        """The texts of every row, from the top."""
        return [row["cells"] for row in self.ask_list("list-rows")]

    def column(self, number):
        """The texts of one column, from the top."""
        return self.ask_list("list-column", number)

    def select_type(self, index):
        self.ask("combo-select", TYPE, index)

    def choose_row(self, row):
        """Gives a row selection, focus and the selection mark, as a click does."""
        self.ask("list-select", LIST, row)
        self.send_to(LIST, 0x1043, 0, row)  # LVM_SETSELECTIONMARK

    def chosen_row(self):
        """The first text of the selected row, None for none."""
        return next((row["cells"][0] for row in self.ask_list("list-rows") if row["selected"]),
                    None)

    def columns(self):
        return self.ask("list-columns", LIST)

    def arrows(self):
        """The columns whose header shows an arrow, with its direction."""
        return {number: column["arrow"] for number, column in enumerate(self.columns())
                if column["arrow"]}

    def _header(self, column):
        return self.ask("header-rect", LIST, column)["screen"]

    def click_header(self, column, shift=-3):
        """`shift`: a second click at the very same place would count as a double click."""
        self.activate()
        left, _, right, _ = self.control(LIST)["screen"]
        middle = sum(self._header(column)[::2]) // 2
        if not left + 20 < middle < right - 20:
            self.send_to(LIST, 0x1014, middle - (left + right) // 2)  # LVM_SCROLL
        header = self._header(column)
        self._screen.click((header[0] + header[2]) // 2 + shift, (header[1] + header[3]) // 2)

    def wait_for_status(self, text):
        seen = []

        def has_come():
            seen.append(self.status())
            return seen[-1] == text

        eventually(has_come, lambda: f"status line {text!r}, which says {seen[-1]!r}")

    def wait_filled(self, count):
        """Until a refresh cycle has ended with this many rows."""
        self.wait_for_status(f"{count} / {count} packages")

    def activate(self):
        """Waits until the window manager has given the window the focus, and the window knows. By
        then it also knows where the manager has put it: places are read afterwards."""
        has_focus = focus_on(self._screen, TITLE)
        eventually(lambda: has_focus() and self.window()["foreground"], "the window is active")

    def minimise(self):
        """Minimised for good, and where minimised windows lie: it gets there in a second step, in
        which places of controls can't be told from outside."""
        self._size_for_good(SC_MINIMIZE)

        def is_minimised():
            window = self.window()
            return window["iconic"] and window["frame"][:2] == MINIMISED_PLACE

        eventually(is_minimised, lambda: f"it is minimised: {self.window()}")

    def maximise(self):
        """Maximised for good, and on the screen too, where the mouse acts."""
        self._size_for_good(SC_MAXIMIZE)
        eventually(lambda: self.window()["zoomed"]
                   and self._screen.frame_of(TITLE) == (0, 0, *self._screen.size),
                   "it is maximised")

    def _size_for_good(self, command):
        """Wine makes a dialog's window a normal one when its loop first finds the queue empty or
        meets a timer's message: after the end of the first refresh, and under load long after
        it. So the loop is given such a message, and then the command. The first refresh has
        to be over, as its wait would take the message for itself."""
        self.ask("post", WM_TIMER, NOBODYS_TIMER, 0)
        self.ask("post", WM_SYSCOMMAND, command, 0)

    def press_key(self, key):
        self.activate()
        self._screen.press_key(key)

    def click(self, control_id):
        self.activate()
        left, top, right, bottom = self.control(control_id)["screen"]
        self._screen.click((left + right) // 2, (top + bottom) // 2)

    def close(self):
        self.ask("post", 0x0010, 0, 0)  # WM_CLOSE
        return self.exit_code()

    def exit_code(self, limit=30):
        return self._driver("wait-exit", self.pid, limit * 1000)

    def is_running(self):
        return self._driver("running", self.pid)

    def picture(self, save_to=None):
        """The screen without the mouse on the window, once two looks at it are alike."""
        self._screen.move_mouse(0, 0)
        # Two looks may be alike, too, while the program has had no time to draw between them.
        eventually(lambda: self._driver("drawn", self.pid), "nothing waits to be drawn")
        pictures = [self._screen.picture()]

        def is_still():
            pictures.append(self._screen.picture())
            return pictures[-1] == pictures[-2]

        eventually(is_still, "the window has finished drawing")
        if save_to is not None:
            pictures[-1].save(save_to)
        return pictures[-1]


class Desk:
    """One prefix on the screen with one driver in it."""

    def __init__(self, screen, prefix, driver, program_path):
        self.screen = screen
        self.prefix = prefix
        self.driver = driver
        self._command = '"Z:' + str(program_path).replace("/", "\\") + '"'
        self._started = []

    def start(self, *switches):
        """Starts the program without waiting for its window; its process id."""
        self._started.append(self.driver("start", " ".join([self._command, *switches])))
        return self._started[-1]

    def end_programs(self):
        """Ends by force what a failed test has left running."""
        for pid in self._started:
            if self.driver("running", pid):
                self.driver("kill", pid)
        self._started.clear()

    def open(self, *switches):
        """Starts the program and waits for its window."""
        return Program(self.driver, self.screen, self.start(*switches))

    def windows_of(self, pid):
        return [window for window in self.driver("windows", pid) if window["visible"]]

    def has_mutex(self, name):
        return self.driver("mutex", name)


__all__ = ["Desk", "DriverError", "Program", "eventually", "focus_on", "wait_for_focus"]
