"""Pixels of the screen."""

import subprocess


class Picture:
    def __init__(self, size, rgb):
        self.width, self.height = size
        self._rgb = rgb

    @classmethod
    def of_root(cls, env, size):
        made = subprocess.run(["import", "-window", "root", "-depth", "8", "rgb:-"], env=env,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=True,
                              timeout=60)
        if len(made.stdout) != size[0] * size[1] * 3:
            raise RuntimeError("the screen has another size")
        return cls(size, made.stdout)

    def save(self, path):
        path.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["convert", "-size", f"{self.width}x{self.height}", "-depth", "8", "rgb:-",
                        str(path)], input=self._rgb, check=True, timeout=60)

    def __eq__(self, other):
        return self._rgb == other._rgb

    def row(self, y, left, right):
        """Colours from left to right, right not counted."""
        start = (y * self.width + left) * 3
        line = self._rgb[start:start + (right - left) * 3]
        return [tuple(line[i:i + 3]) for i in range(0, len(line), 3)]

    def cropped(self, rect):
        left, top, right, bottom = rect
        lines = [self._rgb[(y * self.width + left) * 3:(y * self.width + right) * 3]
                 for y in range(top, bottom)]
        return Picture((right - left, bottom - top), b"".join(lines))

    def ink(self, rect):
        """The box, on the screen, of what differs from the rectangle's commonest colour; None if
        nothing does."""
        left, top, right, bottom = rect
        rows = [self.row(y, left, right) for y in range(top, bottom)]
        counts = {}
        for row in rows:
            for colour in row:
                counts[colour] = counts.get(colour, 0) + 1
        ground = max(counts, key=counts.get)
        marks = [(x, y) for y, row in enumerate(rows) for x, colour in enumerate(row)
                 if colour != ground]
        if not marks:
            return None
        xs, ys = [x for x, _ in marks], [y for _, y in marks]
        return (left + min(xs), top + min(ys), left + max(xs) + 1, top + max(ys) + 1)
