"""Workbooks of any cells: told here, written by the program's own writer in zolvane-sheets.exe."""

import subprocess


class Wide(str):
    """A text in 16-bit characters; other texts are in 8-bit ones."""


def _cell(value):
    if isinstance(value, Wide):
        return "wide", value.encode("utf-16-le").hex()
    if isinstance(value, str):
        return "narrow", value.encode("latin-1").hex()
    return ("integer", value) if isinstance(value, int) else ("real", repr(value))


def _lines(path, sheets):
    yield f"book {path}"
    for number, sheet in enumerate(sheets):
        if number:
            yield "sheet"
        for row, line in enumerate(sheet):
            for column, value in enumerate(line):
                kind, data = _cell(value)
                yield f"{kind} {row} {column} {data}"


def write(desk, program, books):
    """Workbooks by their names, each a list of sheets, a sheet a list of lines of cells. Returns
    their files."""
    told = [line for name, sheets in books.items()
            for line in _lines(f"C:\\books\\{name}.xls", sheets)]
    desk.prefix.make_file("C:\\books\\books.txt", "\n".join(told).encode())
    subprocess.run(["wine", str(program), "C:\\books\\books.txt"], env=desk.prefix.env, check=True,
                   stdin=subprocess.DEVNULL, timeout=120)
    return {name: desk.prefix.host_path(f"C:\\books\\{name}.xls") for name in books}
