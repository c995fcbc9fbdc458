"""The program in a language, with the boxes and menus that it opens."""

from .program import LIST, TITLE, WINDOW_CLASS, DriverError, eventually, wait_for_focus

QUIET = ("-nopersist", "-noupdate")
SWITCHES = {"english": "-eng", "german": "-ger"}
PACKAGES = {"english": "packages", "german": "Pakete"}
NAME_COLUMN = 2

WM_CLOSE, WM_COMMAND = 0x10, 0x111
STM_GETICON = 0x170
OK, CANCEL, YES, NO = 1, 2, 6, 7
UNINSTALL, MODIFY, REPAIR, REMOVE = 1018, 1021, 2010, 1008
COPY, LAUNCH_URL, OPEN_FOLDER = 32774, 2012, 2003
PANE_ICON = 1019
BUTTONS = (UNINSTALL, MODIFY, REPAIR)
LIMIT = 20000


class Box:
    """A message box."""

    def __init__(self, desk, handle):
        self.desk, self.handle = desk, handle

    def _controls(self, window_class):
        return [control for control in self.desk.driver("controls", self.handle)
                if control["class"] == window_class and control["visible"]]

    @property
    def text(self):
        """The longest text of its labels; an icon's is none."""
        return max((label["text"] for label in self._controls("Static")), key=len)

    @property
    def buttons(self):
        return [button["id"] for button in self._controls("Button")]

    def button(self, number):
        (found,) = [button for button in self._controls("Button") if button["id"] == number]
        return found

    def frame(self):
        return self.desk.driver("window", self.handle)["frame"]

    def answer(self, number):
        self.desk.driver("post", self.handle, WM_COMMAND, number, 0)
        self.wait_gone()

    def close(self):
        self.desk.driver("post", self.handle, WM_CLOSE, 0, 0)
        self.wait_gone()

    def press_key(self, key):
        wait_for_focus(self.desk.screen, self.desk.driver("window", self.handle)["title"])
        self.desk.screen.press_key(key)
        self.wait_gone()

    def wait_gone(self):
        self.desk.driver("wait-gone", self.handle, LIMIT)


class Window:
    def __init__(self, desk, language="english", program=None, switches=QUIET):
        """`program`: where it is started already."""
        self.desk, self.language = desk, language
        self.program = program or desk.open(SWITCHES[language], *switches)

    def status_of(self, shown, count=None):
        return f"{shown} / {shown if count is None else count} {PACKAGES[self.language]}"

    def wait_filled(self, shown, count=None):
        self.program.wait_for_status(self.status_of(shown, count))

    def names(self):
        return self.program.column(NAME_COLUMN)

    def row_of(self, name):
        """Where a package stands now; waits until it is there."""
        return eventually(lambda: [row for row, there in enumerate(self.names()) if there == name],
                          lambda: f"{name!r} among {self.names()}")[0]

    def choose(self, name):
        self.program.choose_row(self.row_of(name))

    def post(self, command):
        self.program.ask("post", WM_COMMAND, command, 0)

    def enabled_buttons(self):
        controls = self.program.controls()
        return {number for number in BUTTONS if controls[number]["enabled"]}

    def dialogs(self):
        """All boxes that there are. One that opens while messages are waiting is hidden until its
        loop has seen to them."""
        return [window for window in self.desk.driver("windows", self.program.pid)
                if window["class"] == WINDOW_CLASS and window["handle"] != self.program.handle]

    def boxes(self):
        """Those that can be seen."""
        return [dialog for dialog in self.dialogs() if dialog["visible"]]

    def box(self, title=TITLE):
        """The one box of this title, once it is there."""
        (found,) = eventually(lambda: [box for box in self.boxes() if box["title"] == title],
                              lambda: f"a box {title!r} among {self.boxes()}")
        return Box(self.desk, found["handle"])

    def wait_usable(self):
        eventually(lambda: self.program.window()["enabled"], "the window can be used again")

    def popup(self):
        """The items of the popup menu that is open, None if none is."""
        try:
            return self.program.ask("popup")
        except DriverError:
            return None

    def popup_frame(self):
        (menu,) = [window for window in self.desk.windows_of(self.program.pid)
                   if window["class"] == "#32768"]
        return menu["frame"]

    def wait_for_popup(self):
        return eventually(self.popup, "the popup menu")

    def leave_popup(self):
        def left():
            if self.popup() is None:
                return True
            self.desk.screen.press_key("Escape")
            return self.popup() is None
        eventually(left, "the popup is closed")

    def choose_in_popup(self, command):
        """By a click on the item."""
        (item,) = [item for item in self.wait_for_popup() if item["id"] == command]
        left, top, right, bottom = item["screen"]
        self.desk.screen.click((left + right) // 2, (top + bottom) // 2)
        eventually(lambda: self.popup() is None, "the popup is closed")

    def cell_rect(self, row, column):
        return self.program.ask("list-cell-rect", LIST, row, column)["screen"]

    def click_cell(self, name, column, button=1, times=1, shift=0):
        """`shift`: a second click at the very same place would count as a double click."""
        self.program.activate()
        row = self.row_of(name)
        left, _, right, _ = self.program.control(LIST)["screen"]
        middle = sum(self.cell_rect(row, column)[::2]) // 2
        if not left + 20 < middle < right - 20:
            self.program.send_to(LIST, 0x1014, middle - (left + right) // 2)  # LVM_SCROLL
        cell = self.cell_rect(row, column)
        self.desk.screen.click(max((cell[0] + cell[2]) // 2, left + 4) + shift,
                               (cell[1] + cell[3]) // 2, button, times)

