"""The foundation's windows in their gallery, driven by real mouse and keys."""

import contextlib
import itertools
import time

import pytest

from conftest import BINARIES, SCREENSHOTS
from support.program import DriverError, eventually

LOG, CURSOR = 300, 301
PAD, DOUBLE_PAD, BAD_PAD = 310, 311, 312
(NOTE_DEMO, LINKS_DEMO, ROWS_DEMO, WAIT_DEMO, GO_DEMO, FILE_DEMO, FAIL_DEMO, BAD_PAINT_DEMO,
 OBJECT_DEMO, CROWD_DEMO) = range(200, 210)

NOTE, SWATCHES, COLOURED, FRAME_ABOUT, FRAME_CLOSE = 10, 11, 12, 0x8000, 0x8001
TEXT_LINK, STRING_LINK, BROKEN_LINK, GREY_BUTTON = 1011, 1012, 1013, 20
ROWS, ADD, ADD_FAILING = 40, 41, 42
NAMES, CELLS, TREE = 50, 51, 52
OK, CANCEL = 1, 2

PAD_COLOUR, PRESSED_COLOUR = (40, 160, 90), (200, 120, 20)
GROUND = (255, 230, 120)
SWATCH_COLOURS = [(200, 30, 60), (30, 60, 200), (20, 140, 80)]
LINK_COLOUR, VISITED_COLOUR = (0, 0, 255), (128, 0, 128)
BUTTON_REST, BUTTON_ACTIVE = (0, 0, 128), (0, 0, 255)

LIMIT = 20000  # ms

HANDLER = r"""Windows Registry Editor Version 5.00

[HKEY_LOCAL_MACHINE\Software\Classes\gallery]
"URL Protocol"=""

[HKEY_LOCAL_MACHINE\Software\Classes\gallery\shell\open\command]
@="\"%s\" --opened %%1"
"""


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class Pane:
    """A window of the gallery."""

    def __init__(self, gallery, handle):
        self.gallery = gallery
        self.handle = handle

    def ask(self, command, *arguments):
        return self.gallery.driver(command, self.handle, *arguments)

    def state(self):
        return self.ask("window")

    def is_open(self):
        try:
            return self.state()["visible"]
        except DriverError:
            return False

    def text(self, control):
        return self.ask("text", control)

    def place(self, control):
        """On the screen."""
        return self.ask("control", control)["screen"]

    def centre(self, control):
        left, top, right, bottom = self.place(control)
        return (left + right) // 2, (top + bottom) // 2

    def activate(self):
        """Waits until the program and the window manager agree that the window is active: a click
        before that may fall through to what lies below."""
        def is_active():
            state = self.state()
            return state["foreground"] and self.gallery.screen.active_title() == state["title"]

        eventually(is_active, "the window is active")

    def click(self, control, button=1, times=1):
        self.activate()
        self.gallery.screen.click(*self.centre(control), button, times)

    def hover(self, control):
        self.activate()
        self.gallery.screen.move_mouse(*self.centre(control))

    def key(self, key):
        self.activate()
        self.gallery.screen.press_key(key)

    def colours(self, control, inset=0):
        left, top, right, bottom = self.place(control)
        picture = self.gallery.screen.picture()
        return {colour for y in range(top + inset, bottom - inset)
                for colour in picture.row(y, left + inset, right - inset)}

    def pixel(self, x, y):
        return self.gallery.screen.picture().row(y, x, x + 1)[0]

    def longest_run(self, control, colour):
        """The most pixels of a colour side by side in a control."""
        left, top, right, bottom = self.place(control)
        picture = self.gallery.screen.picture()
        return max(len(list(group)) if same else 0
                   for y in range(top, bottom)
                   for same, group in itertools.groupby(picture.row(y, left, right),
                                                        lambda seen: seen == colour))

    def wait_colours(self, control, wanted, unwanted=()):
        """Until a control shows all of `wanted` and none of `unwanted`."""
        def shows():
            seen = self.colours(control)
            return set(wanted) <= seen and not seen & set(unwanted)

        eventually(shows, f"{control} shows {wanted} without {unwanted}", limit=10)

    def wait_closed(self):
        eventually(lambda: not self.is_open(), "the window has closed", limit=10)


class Gallery(Pane):
    def __init__(self, desk, *switches):
        self.screen, self.driver = desk.screen, desk.driver
        # Outside all windows: a mouse left on one would make things active.
        self.screen.move_mouse(1270, 1010)
        command = " ".join(['"' + windows_path(BINARIES / "zolvane-gallery.exe") + '"', *switches])
        self.pid = desk.driver("start", command)
        super().__init__(self, self.driver("wait-window", self.pid, "ORLOGenericWindow", "Gallery",
                                           LIMIT)["handle"])
        self.activate()
        steps = itertools.count()

        def notices_the_mouse():
            x, y = self.centre(PAD)
            self.screen.move_mouse(x + next(steps) % 2, y)
            return self.text(CURSOR) == "arrow"

        eventually(notices_the_mouse, "the window has the mouse")

    def windows(self):
        def listed():
            try:
                return [self.driver("windows", self.pid)]
            except DriverError:  # a window has gone while it was asked
                return None

        return [window for window in eventually(listed, "a list of windows")[0]
                if window["visible"]]

    def lines(self):
        return self.text(LOG).splitlines()

    def wait_for(self, *lines):
        """Until the log holds these lines, in any order."""
        eventually(lambda: set(lines) <= set(self.lines()),
                   lambda: f"log with {lines}, which holds {self.lines()}", limit=10)

    def dialog(self, title):
        window = self.driver("wait-window", self.pid, "#32770", title, LIMIT)
        pane = Pane(self, window["handle"])
        pane.activate()
        return pane

    def open(self, demo, title):
        self.click(demo)
        return self.dialog(title)

    def dialogs(self):
        return [window["title"] for window in self.windows() if window["class"] == "#32770"]

    def exit_code(self):
        return self.driver("wait-exit", self.pid, LIMIT)

    def end(self):
        if self.driver("running", self.pid):
            self.driver("kill", self.pid)

    def picture(self, name):
        self.screen.picture(SCREENSHOTS / f"gallery-{name}.png")


@pytest.fixture(scope="module")
def desk(make_desk):
    with make_desk() as made:
        program = windows_path(BINARIES / "zolvane-gallery.exe").replace("\\", "\\\\")
        made.prefix.import_registry(HANDLER % program)
        yield made


@pytest.fixture
def start(desk):
    """Starts a gallery that is gone when the test is."""
    with contextlib.ExitStack() as stack:
        def started(*switches):
            gallery = Gallery(desk, *switches)
            stack.callback(gallery.end)
            return gallery
        yield started


@pytest.fixture
def gallery(start):
    return start()


def test_controls_paint_themselves_and_take_the_mouse(gallery):
    gallery.wait_colours(PAD, [PAD_COLOUR])
    gallery.picture("main")
    gallery.click(PAD)
    gallery.wait_for("pad press")
    gallery.wait_colours(PAD, [PRESSED_COLOUR], [PAD_COLOUR])
    gallery.click(PAD, button=3)
    gallery.wait_for("command 70001 9", "pad got 31")
    gallery.click(PAD, button=2)
    gallery.wait_for("frame 66", "pad got 32")


def test_only_the_double_click_control_gets_double_clicks(gallery):
    gallery.click(PAD, times=2)
    gallery.click(DOUBLE_PAD, times=2)
    gallery.wait_for("double pad double")
    assert gallery.lines() == ["pad press", "pad press", "double pad press", "double pad double"]


def test_a_window_claims_a_key_before_its_controls(gallery):
    gallery.click(LOG)
    gallery.key("F5")
    gallery.wait_for("gallery F5")


def test_closing_the_main_window_ends_the_program(gallery):
    gallery.key("alt+F4")
    assert gallery.exit_code() == 0


def test_an_object_in_use_hides_the_main_window_instead(gallery):
    gallery.click(OBJECT_DEMO)
    gallery.wait_for("object made")
    gallery.key("alt+F4")
    eventually(lambda: not gallery.windows(), "the window is hidden")
    assert gallery.driver("running", gallery.pid)
    assert gallery.lines() == ["object made"]


def test_the_note_is_stored_by_ok_and_by_enter(gallery):
    note = gallery.open(NOTE_DEMO, "Note")
    assert note.text(NOTE) == "hello"
    note.click(NOTE)
    note.key("ctrl+a")
    gallery.screen.type_text("good bye")
    note.key("Return")
    gallery.wait_for("note good bye", "note ended 1")
    gallery.open(NOTE_DEMO, "Note").click(OK)
    gallery.wait_for("note hello")


def test_an_empty_note_is_reported_and_the_dialog_stays(gallery):
    note = gallery.open(NOTE_DEMO, "Note")
    note.click(NOTE)
    note.key("ctrl+a")
    note.key("Delete")
    note.click(OK)
    box = gallery.dialog("Exception")
    assert box.state()["owner"] == note.handle
    gallery.picture("empty-note")
    box.key("Return")
    box.wait_closed()
    assert note.is_open() and not gallery.lines()
    note.key("Escape")
    gallery.wait_for("note ended 2")
    assert gallery.lines() == ["note ended 2"]


def test_a_modal_dialog_claims_its_keys_and_its_owner_gets_none(gallery):
    note = gallery.open(NOTE_DEMO, "Note")
    assert not gallery.state()["enabled"]
    note.click(NOTE)
    note.key("F5")
    gallery.wait_for("note F5")
    note.click(FRAME_CLOSE)
    gallery.wait_for("note ended 2")
    assert gallery.lines() == ["note F5", "note ended 2"]
    assert gallery.state()["enabled"]


def test_owner_drawing_and_colours_reach_the_controls(gallery):
    note = gallery.open(NOTE_DEMO, "Note")
    note.wait_colours(COLOURED, [GROUND])
    note.wait_colours(SWATCHES, SWATCH_COLOURS)
    gallery.picture("note")
    left, top, right, bottom = note.place(SWATCHES)
    picture, middle = gallery.screen.picture(), (left + right) // 2
    column = [picture.row(y, middle, middle + 1)[0] for y in range(top, bottom)]
    first = column.index(SWATCH_COLOURS[0])
    assert [column[first + 30 * i + j] for i in range(3) for j in (0, 29)] == \
        [colour for colour in SWATCH_COLOURS for _ in range(2)]


def test_a_resizing_dialog_lays_its_controls_out_and_keeps_its_smallest_size(gallery):
    note = gallery.open(NOTE_DEMO, "Note")
    ids = (NOTE, COLOURED, SWATCHES, FRAME_ABOUT, OK)
    before = {control: note.ask("control", control)["rect"] for control in ids}
    frame = note.state()["frame"]
    width, height = frame[2] - frame[0], frame[3] - frame[1]
    minimum = note.ask("min-size")
    # It opens larger than its template, which stays its smallest size.
    assert [width - minimum[0], height - minimum[1]] == [40, 20]
    x, y = gallery.screen.corner_of("Note")

    def size():
        left, top, right, bottom = note.state()["frame"]
        return [right - left, bottom - top]

    def drag_towards(target_x, target_y):
        gallery.screen.move_mouse(target_x - 5, target_y - 5)
        gallery.screen.move_mouse(target_x, target_y)
        return size()

    with gallery.screen.button_held(x, y):
        eventually(lambda: drag_towards(x + 60, y + 50) == [width + 60, height + 50],
                   "the dialog has grown with the mouse")

    def growth():
        return {control: [new - old for old, new in
                          zip(before[control], note.ask("control", control)["rect"])]
                for control in ids}

    # The controls follow the frame, a moment later.
    eventually(lambda: growth() == {NOTE: [0, 0, 60, 0], COLOURED: [60, 0, 60, 0],
                                    SWATCHES: [0, 0, 60, 50], FRAME_ABOUT: [0, 50, 0, 50],
                                    OK: [60, 50, 60, 50]},
               lambda: f"each control's own growth, not {growth()}", limit=10)
    # The last stretch to the right has been drawn too.
    right = note.place(SWATCHES)[2]
    eventually(lambda: note.pixel(right - 10, note.place(SWATCHES)[1] + 10) == SWATCH_COLOURS[0]
               and len(note.colours(OK)) > 2, "the dialog is drawn", limit=10)
    gallery.picture("note-large")
    x, y = gallery.screen.corner_of("Note")
    with gallery.screen.button_held(x, y):
        eventually(lambda: drag_towards(x - 300, y - 300) == minimum, "the smallest size")


def test_the_library_shows_its_about_box_where_its_module_is(start):
    gallery = start("--core=" + windows_path(BINARIES / "gallery-core"))
    note = gallery.open(NOTE_DEMO, "Note")
    note.click(FRAME_ABOUT)
    about = gallery.dialog("About the foundation")
    assert about.state()["owner"] == note.handle
    gallery.picture("about")
    about.key("Return")
    about.wait_closed()
    assert note.is_open()


def test_without_its_module_the_library_has_no_about_box(gallery):
    note = gallery.open(NOTE_DEMO, "Note")
    note.click(FRAME_ABOUT)
    # The click has been handled when the next key has.
    note.key("F5")
    gallery.wait_for("note F5")
    assert gallery.dialogs() == ["Note"]


def test_hyperlinks_open_their_targets_and_show_that_they_were_visited(gallery):
    links = gallery.open(LINKS_DEMO, "Links")
    for link in (TEXT_LINK, STRING_LINK, BROKEN_LINK):
        links.wait_colours(link, [LINK_COLOUR], [VISITED_COLOUR])
        # Only a line below the text is as long as that.
        assert links.longest_run(link, LINK_COLOUR) > 60
    links.hover(TEXT_LINK)
    eventually(lambda: gallery.text(CURSOR) == "hand", "the hand over a link")
    links.click(TEXT_LINK)
    gallery.wait_for("opened gallery:from-text")
    links.click(STRING_LINK)
    gallery.wait_for("opened gallery:from-string")
    links.click(BROKEN_LINK)
    for link in (TEXT_LINK, STRING_LINK, BROKEN_LINK):
        links.wait_colours(link, [VISITED_COLOUR], [LINK_COLOUR])
    gallery.picture("links")
    assert gallery.lines() == ["opened gallery:from-text", "opened gallery:from-string"]


def test_flat_buttons_show_the_mouse_and_their_keys(gallery):
    links = gallery.open(LINKS_DEMO, "Links")
    links.wait_colours(OK, [BUTTON_REST], [BUTTON_ACTIVE])
    links.hover(OK)
    links.wait_colours(OK, [BUTTON_ACTIVE], [BUTTON_REST])
    gallery.picture("flat-button")
    links.hover(GREY_BUTTON)
    links.wait_colours(OK, [BUTTON_REST], [BUTTON_ACTIVE])
    links.click(GREY_BUTTON)
    links.key("alt+o")
    gallery.wait_for("links ended 1")
    links.wait_closed()
    assert gallery.lines() == ["links ended 1"]


def test_a_named_dialog_opens_once_and_comes_to_the_front(gallery):
    links = gallery.open(LINKS_DEMO, "Links")
    # Modeless: the main window stays alive beside it.
    gallery.screen.click(*gallery.centre(PAD))
    gallery.wait_for("pad press")
    gallery.activate()
    gallery.click(LINKS_DEMO)
    gallery.wait_for("links ended 2")
    # The program's own view: the window manager keeps the window that was clicked last active.
    eventually(lambda: links.state()["foreground"], "the first one is in front")
    assert gallery.dialogs() == ["Links"]
    gallery.screen.press_key("Escape")
    links.wait_closed()


def test_the_wait_cursor_stands_over_all_while_messages_flow(gallery):
    gallery.hover(PAD)
    eventually(lambda: gallery.text(CURSOR) == "arrow", "the arrow over a pad")
    gallery.click(WAIT_DEMO)
    gallery.wait_for("waiting")
    gallery.hover(PAD)
    eventually(lambda: gallery.text(CURSOR) == "wait", "the wait cursor over a pad")
    gallery.click(PAD)
    gallery.wait_for("pad press")
    gallery.click(GO_DEMO)
    gallery.wait_for("waited")
    gallery.hover(PAD)
    eventually(lambda: gallery.text(CURSOR) == "arrow", "the arrow again")


def column(pane, index):
    return [row["cells"][index] for row in pane.ask("list-rows", ROWS)]


def click_header(pane, x):
    """At another place each time, or two clicks would make a double one."""
    left, top, _, _ = pane.place(ROWS)
    pane.activate()
    pane.gallery.screen.click(left + x, top + 12)


def test_rows_are_filled_when_they_are_shown_and_sort_by_a_column(gallery):
    rows = gallery.open(ROWS_DEMO, "Rows")
    gallery.wait_for(*(f"fill {i}" for i in range(1, 6)))
    assert column(rows, 0) == ["pear", "Apple", "fig", "Cherry", "banana"]
    by_word = ["Apple", "banana", "Cherry", "fig", "pear"]
    click_header(rows, 30)
    eventually(lambda: column(rows, 0) == by_word, "sorted by word")
    gallery.picture("rows")
    click_header(rows, 90)
    eventually(lambda: column(rows, 0) == by_word[::-1], "sorted the other way round")
    click_header(rows, 190)
    eventually(lambda: column(rows, 1) == sorted(column(rows, 1)), "sorted by number")
    assert column(rows, 0)[0] == "banana"
    rows.click(ADD)
    gallery.wait_for("fill 6")
    eventually(lambda: column(rows, 0)[0] == "pear", "the new row at the top")
    assert gallery.lines() == [f"fill {i}" for i in range(1, 7)]


def test_a_row_that_cannot_be_filled_is_reported_once(gallery):
    rows = gallery.open(ROWS_DEMO, "Rows")
    gallery.wait_for(*(f"fill {i}" for i in range(1, 6)))
    rows.click(ADD_FAILING)
    box = gallery.dialog("Exception")
    box.key("Return")
    box.wait_closed()
    rows.click(ADD)
    gallery.wait_for("fill 7")
    assert gallery.dialogs() == ["Rows"]
    assert column(rows, 0)[:2] == ["Apple", ""]
    assert gallery.lines().count("fill 6") == 1


def test_the_file_dialog_gives_the_name_chosen(gallery):
    dialog = gallery.open(FILE_DEMO, "Save a sample")
    gallery.picture("file")
    dialog.key("ctrl+a")
    gallery.screen.type_text("C:\\named")
    dialog.key("Return")
    gallery.wait_for("file C:\\named.txt")
    gallery.open(FILE_DEMO, "Save a sample").key("Escape")
    gallery.wait_for("file ")


def test_a_failing_handler_ends_in_one_report_and_the_window_lives(gallery):
    gallery.click(FAIL_DEMO)
    box = gallery.dialog("Exception")
    assert box.state()["owner"] == gallery.handle
    texts = [control["text"] for control in box.ask("controls")]
    assert any("so it was wanted" in text and "failing on purpose\nObject: the gallery" in
               text.replace("\r", "") for text in texts)
    gallery.picture("report")
    box.key("Return")
    box.wait_closed()
    gallery.click(PAD)
    gallery.wait_for("pad press")
    assert not gallery.dialogs()


def test_a_failing_paint_is_reported_once_and_not_repeated(gallery):
    gallery.wait_colours(BAD_PAD, [PAD_COLOUR])
    gallery.click(BAD_PAINT_DEMO)
    box = gallery.dialog("Exception")
    box.key("Return")
    box.wait_closed()
    gallery.click(PAD)
    gallery.wait_for("pad press")
    assert gallery.lines() == ["paint fails", "pad press"]
    assert not gallery.dialogs()


# What the driver reads of controls with much in them.

@pytest.fixture
def crowd(gallery):
    return gallery.open(CROWD_DEMO, "Crowd")


def test_a_list_box_is_read_and_a_click_chooses_an_item_wherever_it_stands(gallery, crowd):
    box = crowd.ask("list-box", NAMES)
    assert box == {"selected": -1, "items": [f"name {n:03d}" for n in range(1, 301)]}
    for index in (299, 0, 150):
        left, top, right, bottom = crowd.ask("list-box-rect", NAMES, index)["screen"]
        crowd.activate()
        # A second click at the very same place would count as a double click.
        gallery.screen.click((left + right) // 2 + index // 10, (top + bottom) // 2)
        gallery.wait_for(f"name {index}")
        assert crowd.ask("list-box", NAMES)["selected"] == index
    with pytest.raises(DriverError, match="no such item"):
        crowd.ask("list-box-rect", NAMES, 300)


def test_the_cells_of_a_long_list_are_read_whole_and_quickly(crowd):
    start = time.monotonic()
    rows = crowd.ask("list-cells", CELLS)
    # A message for each cell would take half a minute.
    assert time.monotonic() - start < 10
    assert len(rows) == 20000
    assert rows[1] == ["row 1", "same", "x" * 5000]
    del rows[1]
    assert rows == [[f"row {n}", "same", ""] for n in range(20000) if n != 1]
    columns = crowd.ask("list-columns", CELLS)
    assert [(column["title"], column["width"], column["align"]) for column in columns] == [
        ("Column 0", 60, "left"), ("Column 1", 70, "right"), ("Column 2", 80, "left")]


def test_a_tree_is_read_from_the_top_with_what_is_hidden_in_it(crowd):
    def item(text, depth, parent, image, **flags):
        return {"text": text, "depth": depth, "parent": parent, "image": image,
                "selected_image": image, "expanded": False, "selected": False, **flags}

    assert crowd.ask("tree", TREE) == [
        item("Roots", 0, -1, 1, expanded=True), item("Tap root", 1, 0, 2),
        item("Hair", 2, 1, 1), item("Runner", 1, 0, 2, selected=True),
        item("K\u00e4hne", 0, -1, 0)]
