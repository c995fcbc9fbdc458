"""What a cell of a list looks like on the screen: its ground, its text's colour, how much ink."""

from dataclasses import dataclass

BLACK, WHITE = (0, 0, 0), (255, 255, 255)
GREY, RED = (128, 128, 128), (255, 0, 0)
YELLOW, BLUE, CREAM = (255, 255, 0), (228, 228, 255), (255, 255, 228)

# Bold strokes are nearly twice as wide; the same text on another ground differs by the rounding of
# the smoothed edges alone.
BOLD_FACTOR, SAME_TOLERANCE = 1.2, 0.05


def distance(a, b):
    return sum(abs(x - y) for x, y in zip(a, b))


@dataclass
class Look:
    ground: tuple
    text: tuple = None  # None where nothing is written
    ink: float = 0.0  # pixels, a smoothed one counted as the part that it is covered

    @classmethod
    def of(cls, picture, rect):
        """`rect` is a cell on the screen; the grid's lines at its edges don't count."""
        left, top, right, bottom = rect
        colours = {}
        for y in range(top + 1, bottom - 1):
            for colour in picture.row(y, left + 2, right - 2):
                colours[colour] = colours.get(colour, 0) + 1
        ground = max(colours, key=colours.get)
        if len(colours) == 1:
            return cls(ground)
        text = max(colours, key=lambda colour: distance(colour, ground))
        # Smoothed edges take equal steps from light to dark only, and every text is the darker one
        # in its green.
        ink = sum(count * (ground[1] - colour[1]) for colour, count in colours.items())
        return cls(ground, text, ink / (ground[1] - text[1]))

    def weight(self, normal):
        """"bold" or "normal", by the ink of the same text that is known to be normal; another text
        where it is neither."""
        factor = self.ink / normal.ink
        if factor > BOLD_FACTOR:
            return "bold"
        return "normal" if abs(factor - 1) <= SAME_TOLERANCE else f"{factor:.2f} of the normal ink"
