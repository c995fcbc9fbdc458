"""The dialogs that look into a package: its database, its features, its patches."""

from .program import eventually, focus_on
from .window import Box

PATCHES, FEATURES, MSI_CONTENT = 1032, 1023, 2013
TABLES, ROWS = 1029, 1030
TREE = 1022
PATCH_LIST = 1033
INSTALLED, MISSING = 1, 2

TITLES = {
    MSI_CONTENT: {"english": "Zolvane - MSI Content", "german": "Zolvane - MSI-Inhalt"},
    FEATURES: {"english": "Zolvane - Package Features", "german": "Zolvane - Paket-Features"},
    PATCHES: {"english": "Zolvane - Patches", "german": "Zolvane - Patches"},
}

LB_SETCURSEL, LBN_SELCHANGE = 0x186, 1
WM_SYSCOMMAND, SC_MAXIMIZE = 0x112, 0xF030


class Inspection(Box):
    def __init__(self, window, command, subject):
        self.window = window
        self.title = f"{TITLES[command][window.language]}: {subject}"
        super().__init__(window.desk, window.box(self.title).handle)

    def ask(self, command, *arguments):
        return self.desk.driver(command, self.handle, *arguments)

    def frame_size(self):
        left, top, right, bottom = self.frame()
        return right - left, bottom - top

    def place(self, control):
        """In the dialog."""
        return self.ask("control", control)["rect"]

    def activate(self):
        has_focus = focus_on(self.desk.screen, self.title)
        eventually(lambda: has_focus() and self.ask("window")["foreground"],
                   "the dialog is active")

    def press(self, key):
        """A key that doesn't close it."""
        self.activate()
        self.desk.screen.press_key(key)

    def headings(self, control):
        return [(column["title"], column["width"], column["align"])
                for column in self.ask("list-columns", control)]

    def cells(self, control):
        return self.ask("list-cells", control)

    # The database.

    def tables(self):
        return self.ask("list-box", TABLES)["items"]

    def chosen_table(self):
        box = self.ask("list-box", TABLES)
        return box["items"][box["selected"]]

    def show_table(self, name):
        """Chosen as a user's choice is told to the dialog."""
        self.desk.driver("send", self.ask("control", TABLES)["handle"], LB_SETCURSEL,
                         self.tables().index(name), 0)
        self.ask("command", TABLES, LBN_SELCHANGE)

    def click_table(self, name, shift=0):
        """`shift`: a second click at the very same place would count as a double click."""
        self.activate()
        left, top, right, bottom = self.ask(
            "list-box-rect", TABLES, self.tables().index(name))["screen"]
        self.desk.screen.click((left + right) // 2 + shift, (top + bottom) // 2)

    def shown_columns(self):
        return [(title, align) for title, _, align in self.headings(ROWS)]

    def wait_for_columns(self, *titles):
        eventually(lambda: [column[0] for column in self.shown_columns()] == list(titles),
                   lambda: f"columns {titles}, which are {self.shown_columns()}")

    # Sizes.

    def resize(self, width, height):
        self.ask("move", *self.frame()[:2], width, height)

    def maximise(self):
        self.ask("post", WM_SYSCOMMAND, SC_MAXIMIZE, 0)
        eventually(lambda: self.ask("window")["zoomed"], "it is maximised")

    def picture(self, place):
        self.window.program.picture(place)


def inspect(window, command, name, subject=None):
    """Opens a dialog about a package by its command. `subject`: what its title names, the package's
    name if it isn't told."""
    window.choose(name)
    window.post(command)
    return Inspection(window, command, name if subject is None else subject)
