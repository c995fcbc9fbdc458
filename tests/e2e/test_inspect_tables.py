"""The tables of packages' databases as the program shows them, compared cell by cell with what
msiinfo tells of the same files."""

import pytest

from support import databases, packages
from support.inspection import MSI_CONTENT, ROWS, inspect
from support.packages import numbered_code
from support.window import Window

REAL = databases.real_files()
FIXTURES = {fixture.file: fixture for fixture in databases.MADE + REAL}
NO_REAL = pytest.param(None, id="of other makers", marks=pytest.mark.skip(
    f"{databases.REALDATA} doesn't tell where packages of other makers are"))
DATE = "20010203"


@pytest.fixture(scope="module")
def desk(make_desk):
    """With a product for each fixture, named after its file."""
    with make_desk() as made:
        for number, fixture in enumerate(FIXTURES.values()):
            fixture.write(made)
            packages.register(made, numbered_code(number), fixture.file, DATE, fixture.path)
        yield made


@pytest.fixture(scope="module")
def browser(desk):
    """One program for all that only looks."""
    window = Window(desk)
    window.wait_filled(len(FIXTURES))
    yield window
    desk.end_programs()


@pytest.mark.parametrize("file", [*FIXTURES, *([] if REAL else [NO_REAL])])
def test_each_table_shows_what_msiinfo_tells_of_it(browser, desk, file):
    fixture = FIXTURES[file]
    place = desk.prefix.host_path(fixture.path)
    dialog = inspect(browser, MSI_CONTENT, file, fixture.path)
    names = databases.table_names(place)
    assert sorted(dialog.tables()) == sorted([*names, *databases.SYSTEM_TABLES])
    for name in dialog.tables():
        table = fixture.told.get(name) or databases.read_table(place, name)
        dialog.show_table(name)
        assert dialog.shown_columns() == table.shown_columns(), name
        assert dialog.cells(ROWS) == table.shown_rows(), name
    dialog.close()
