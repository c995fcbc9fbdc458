"""Icon files of one plain colour, which tests know again by pixel. By hand, COLOUR.ico as the
installer has it: icons.py RED GREEN BLUE FILE"""

import struct
import sys
from pathlib import Path

SIZES = (16, 32)


def _image(size, colour):
    """A bitmap of one bit for each pixel, all of them on, and the mask, all of it off."""
    line = 4 * ((size + 31) // 32)
    red, green, blue = colour
    palette = bytes(4) + bytes([blue, green, red, 0])
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 1, 0, 2 * line * size, 0, 0, 2, 0)
    return header + palette + b"\xff" * (line * size) + bytes(line * size)


def icon_file(colour, sizes=SIZES):
    """The bytes of an .ico file with one image of each size."""
    images = [_image(size, colour) for size in sizes]
    offset = 6 + 16 * len(images)
    folder = struct.pack("<HHH", 0, 1, len(images))
    for size, image in zip(sizes, images):
        folder += struct.pack("<BBBBHHII", size, size, 2, 0, 1, 1, len(image), offset)
        offset += len(image)
    return folder + b"".join(images)


def nth_colour(number):
    """Another colour for each number below 4,000; far from grey, white and the rows' colours."""
    return (250, 2 + number % 64, 120 + number // 64 * 2)


if __name__ == "__main__":
    Path(sys.argv[4]).write_bytes(icon_file(tuple(int(word) for word in sys.argv[1:4])))
