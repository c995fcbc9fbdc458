#!/usr/bin/env python3
"""Draws zolvane.ico, a parcel with a tick: each size has a drawing of its own, on its own pixel grid.
And packages.bmp with packages_mask.bmp, the small pictures of packages, side by side: any package,
an installed one, a missing one. Their mask is of one bit, so they are drawn pixel by pixel.

Usage: draw_icon.py [FOLDER]   (default: the one of this script)
"""
import pathlib
import struct
import sys
import zlib

OUTLINE = (0x6E, 0x46, 0x1C)
LID = (0xF0, 0xC9, 0x8C)
FRONT = (0xDD, 0xA7, 0x5E)
SHADE = (0xC6, 0x8B, 0x42)
TAPE = (0xFB, 0xF0, 0xD8)
RIM = (0xFF, 0xFF, 0xFF)
BADGE = (0x17, 0x7E, 0x63)
TICK = (0xFF, 0xFF, 0xFF)
MAGENTA = (0xFF, 0x00, 0xFF)


class Polygon:
    """Corners in pixels of the drawing; filled by the even-odd rule."""

    def __init__(self, color, *corners):
        self.color = color
        self.edges = list(zip(corners, corners[1:] + corners[:1]))
        xs, ys = zip(*corners)
        self.box = (min(xs), min(ys), max(xs), max(ys))

    def covers(self, x, y):
        inside = False
        for (x1, y1), (x2, y2) in self.edges:
            if (y1 > y) != (y2 > y) and x < x1 + (y - y1) * (x2 - x1) / (y2 - y1):
                inside = not inside
        return inside


class Disc:
    def __init__(self, color, x, y, radius):
        self.color, self.x, self.y, self.radius = color, x, y, radius
        self.box = (x - radius, y - radius, x + radius, y + radius)

    def covers(self, x, y):
        return (x - self.x) ** 2 + (y - self.y) ** 2 <= self.radius ** 2


class Stroke:
    """A line of round ends through the points."""

    def __init__(self, color, width, *points):
        self.color, self.half, self.points = color, width / 2, points
        xs, ys = zip(*points)
        self.box = (min(xs) - self.half, min(ys) - self.half,
                    max(xs) + self.half, max(ys) + self.half)

    def covers(self, x, y):
        for (x1, y1), (x2, y2) in zip(self.points, self.points[1:]):
            dx, dy = x2 - x1, y2 - y1
            along = ((x - x1) * dx + (y - y1) * dy) / (dx * dx + dy * dy)
            along = max(0.0, min(1.0, along))
            if (x - x1 - along * dx) ** 2 + (y - y1 - along * dy) ** 2 <= self.half ** 2:
                return True
        return False


def rectangle(color, left, top, right, bottom):
    return Polygon(color, (left, top), (right, top), (right, bottom), (left, bottom))


def small():
    """16 pixels: whole-pixel edges, the tick as large as it can be."""
    return [
        Polygon(OUTLINE, (3, 0), (12, 0), (15, 4), (15, 14), (0, 14), (0, 4)),
        Polygon(LID, (3.4, 1), (11.6, 1), (13.6, 4), (1.4, 4)),
        rectangle(FRONT, 1, 5, 14, 13),
        rectangle(TAPE, 6, 1, 9, 4),
        rectangle(TAPE, 6, 5, 9, 8),
        Disc(RIM, 11, 11, 5),
        Disc(BADGE, 11, 11, 4.2),
        Stroke(TICK, 1.5, (8.9, 11.1), (10.4, 12.7), (13.1, 9.4)),
    ]


def medium():
    """32 pixels."""
    return [
        Polygon(OUTLINE, (7, 2), (24, 2), (30, 9), (30, 28), (1, 28), (1, 9)),
        Polygon(LID, (7.5, 3), (23.5, 3), (28.4, 9), (2.6, 9)),
        rectangle(FRONT, 2, 10, 29, 27),
        rectangle(SHADE, 2, 24, 29, 27),
        Polygon(TAPE, (13.4, 3), (17.6, 3), (18, 9), (13, 9)),
        rectangle(TAPE, 13, 10, 18, 15),
        Disc(RIM, 22.8, 22.8, 9.2),
        Disc(BADGE, 22.8, 22.8, 7.8),
        Stroke(TICK, 2.4, (18.9, 23.1), (21.7, 26.0), (26.7, 20.1)),
    ]


def large():
    """48 pixels: room for the lines of a list on the parcel's label."""
    return [
        Polygon(OUTLINE, (11, 4), (36, 4), (45, 14), (45, 42), (2, 42), (2, 14)),
        Polygon(LID, (11.5, 5), (35.5, 5), (43.4, 14), (3.6, 14)),
        rectangle(FRONT, 3, 15, 44, 41),
        rectangle(SHADE, 3, 37, 44, 41),
        Polygon(TAPE, (20.6, 5), (26.4, 5), (27, 14), (20, 14)),
        rectangle(TAPE, 20, 15, 27, 22),
        rectangle(OUTLINE, 7, 27, 19, 29),
        rectangle(OUTLINE, 7, 31, 16, 33),
        Disc(RIM, 35, 34.5, 13),
        Disc(BADGE, 35, 34.5, 11.4),
        Stroke(TICK, 3.4, (29.4, 35.1), (33.4, 39.2), (40.7, 30.6)),
    ]


def huge():
    """256 pixels."""
    return [
        Polygon(OUTLINE, (58, 22), (196, 22), (242, 78), (242, 226), (12, 226), (12, 78)),
        Polygon(LID, (61, 27), (193, 27), (235, 76), (19, 76)),
        rectangle(FRONT, 17, 81, 237, 221),
        rectangle(SHADE, 17, 201, 237, 221),
        Polygon(TAPE, (110, 27), (144, 27), (147, 76), (107, 76)),
        Polygon(TAPE, (107, 81), (147, 81), (147, 120), (137, 113), (127, 120), (117, 113),
                (107, 120)),
        Stroke(OUTLINE, 9, (40, 142), (108, 142)),
        Stroke(OUTLINE, 9, (40, 162), (92, 162)),
        Stroke(OUTLINE, 9, (40, 182), (100, 182)),
        Disc(RIM, 184, 184, 72),
        Disc(BADGE, 184, 184, 63),
        Stroke(TICK, 18, (153, 187), (175, 209), (216, 161)),
    ]


def render(shapes, size, samples):
    """Rows of (red, green, blue, alpha), each pixel the mean of samples x samples points."""
    rows = []
    for py in range(size):
        row = []
        for px in range(size):
            near = [s for s in shapes
                    if s.box[0] < px + 1 and s.box[2] > px and s.box[1] < py + 1 and s.box[3] > py]
            row.append(pixel(near, px, py, samples))
        rows.append(row)
    return rows


def pixel(shapes, px, py, samples):
    total, hits = [0, 0, 0], 0
    for sy in range(samples):
        for sx in range(samples):
            x, y = px + (sx + 0.5) / samples, py + (sy + 0.5) / samples
            top = next((s for s in reversed(shapes) if s.covers(x, y)), None)
            if top is not None:
                hits += 1
                total = [t + c for t, c in zip(total, top.color)]
    if hits == 0:
        return (0, 0, 0, 0)
    return tuple(round(t / hits) for t in total) + (round(255 * hits / samples ** 2),)


def bitmap(rows):
    """A 32-bit icon bitmap: header, colours from the bottom up, mask."""
    size = len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    colors = b"".join(bytes((b, g, r, a)) for row in reversed(rows) for r, g, b, a in row)
    stride = (size + 31) // 32 * 4
    mask = b""
    for row in reversed(rows):
        bits = 0
        for _, _, _, alpha in row:
            bits = bits << 1 | (alpha == 0)
        bits <<= stride * 8 - size
        mask += bits.to_bytes(stride, "big")
    return header + colors + mask


def png(rows):
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data +
                struct.pack(">I", zlib.crc32(kind + data)))

    size = len(rows)
    lines = b"".join(b"\0" + bytes(c for color in row for c in color) for row in rows)
    return (b"\x89PNG\r\n\x1a\n" +
            chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


def icon(images):
    """`images`: pairs of size and encoded picture."""
    data = struct.pack("<HHH", 0, 1, len(images))
    offset = len(data) + 16 * len(images)
    for size, picture in images:
        data += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(picture), offset)
        offset += len(picture)
    return data + b"".join(picture for _, picture in images)


# What the letters of the pixel drawings stand for; a dot is see-through.
INKS = {
    "o": OUTLINE, "l": LID, "f": FRONT, "s": SHADE, "t": TAPE,
    "O": (0x5C, 0x5C, 0x5C), "L": (0xE4, 0xE4, 0xE4), "F": (0xC8, 0xC8, 0xC8),
    "S": (0xB0, 0xB0, 0xB0), "T": (0xF4, 0xF4, 0xF4),
    "d": (0x0D, 0x54, 0x41), "g": BADGE, "w": TICK,
    "D": (0x7C, 0x14, 0x14), "r": (0xC8, 0x2C, 0x2C),
}

PARCEL = """
................
...oooooooooo...
..ollllttllllo..
..ollllttllllo..
.olllllttlllllo.
.oooooooooooooo.
.offfffttfffffo.
.offfffttfffffo.
.offfffttfffffo.
.offffffffffffo.
.offffffffffffo.
.offffffffffffo.
.offffffffffffo.
.osssssssssssso.
.oooooooooooooo.
................
""".split()

TICKED = """
..ddddd..
.dgggggd.
dggggggwd
dgggggwwd
dwgggwwgd
dwwgwwggd
dgwwwgggd
.dgwgggd.
..ddddd..
""".split()

CROSSED = """
..DDDDD..
.DrrrrrD.
DrwrrrwrD
DrwwrwwrD
DrrwwwrrD
DrwwrwwrD
DrwrrrwrD
.DrrrrrD.
..DDDDD..
""".split()


def greyed(drawing):
    return [line.translate(str.maketrans("olfst", "OLFST")) for line in drawing]


def badged(drawing, badge):
    """The badge covers the lower right corner."""
    rows = [list(line) for line in drawing]
    top, left = len(rows) - len(badge), len(rows[0]) - len(badge[0])
    for y, line in enumerate(badge):
        for x, ink in enumerate(line):
            if ink != ".":
                rows[top + y][left + x] = ink
    return ["".join(row) for row in rows]


def packages():
    """The three drawings as one, from left to right."""
    drawings = [PARCEL, badged(PARCEL, TICKED), badged(greyed(PARCEL), CROSSED)]
    return ["".join(lines) for lines in zip(*drawings)]


def bitmap_file(rows, width, bits, palette):
    """`rows`: encoded, from the top down, each of whole bytes."""
    offset = 14 + 40 + len(palette)
    data = b"".join(row + bytes(-len(row) % 4) for row in reversed(rows))
    header = struct.pack("<2sIHHI", b"BM", offset + len(data), 0, 0, offset)
    colors = len(palette) // 4
    info = struct.pack("<IiiHHIIiiII", 40, width, len(rows), 1, bits, 0, len(data), 0, 0, colors, 0)
    return header + info + palette + data


def color_bitmap(drawing):
    """Magenta where it is see-through: what has no mask at hand knows it by that."""
    rows = [b"".join(bytes(reversed(INKS.get(ink, MAGENTA))) for ink in line) for line in drawing]
    return bitmap_file(rows, len(drawing[0]), 24, b"")


def mask_bitmap(drawing):
    """White where it is see-through."""
    width = len(drawing[0])
    rows = [int("".join("1" if ink == "." else "0" for ink in line), 2).to_bytes(width // 8, "big")
            for line in drawing]
    return bitmap_file(rows, width, 1, bytes((0, 0, 0, 0, 255, 255, 255, 0)))


def main():
    here = pathlib.Path(__file__).parent
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here
    (folder / "packages.bmp").write_bytes(color_bitmap(packages()))
    (folder / "packages_mask.bmp").write_bytes(mask_bitmap(packages()))
    (folder / "zolvane.ico").write_bytes(icon([
        (16, bitmap(render(small(), 16, 8))),
        (32, bitmap(render(medium(), 32, 8))),
        (48, bitmap(render(large(), 48, 8))),
        (256, png(render(huge(), 256, 4))),
    ]))


if __name__ == "__main__":
    main()
