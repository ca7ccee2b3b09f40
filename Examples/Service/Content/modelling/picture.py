"""Pictures painted pixel by pixel, for textures."""

import math
import struct
import zlib

from .curves import clamp, mix


def rgb(code):
    """From 0xRRGGBB, each 0 to 1."""
    return ((code >> 16 & 255) / 255, (code >> 8 & 255) / 255, (code & 255) / 255)


def lighter(color, share):
    return mix(color, (1.0, 1.0, 1.0), share)


def darker(color, share):
    return mix(color, (0.0, 0.0, 0.0), share)


def gradient(stops):
    """A function of 0 to 1 that goes through (offset, colour) stops."""

    def at(share):
        for (low, first), (high, second) in zip(stops, stops[1:]):
            if share <= high:
                return mix(first, second, clamp((share - low) / (high - low)))
        return stops[-1][1]

    return at


class Picture:
    """Opaque pixels; drawn on in units of its own that have y grow upwards."""

    def __init__(self, width, height, left=0.0, bottom=0.0, right=1.0, top=1.0, background=(1.0, 1.0, 1.0)):
        self.width, self.height = width, height
        self.left, self.bottom, self.right, self.top = left, bottom, right, top
        self.rows = [[background] * width for _ in range(height)]

    def uv(self, x, y):
        """Texture coordinates of a point."""
        return ((x - self.left) / (self.right - self.left), (self.top - y) / (self.top - self.bottom))

    def point(self, column, row):
        return (self.left + (column + 0.5) / self.width * (self.right - self.left),
                self.top - (row + 0.5) / self.height * (self.top - self.bottom))

    def paint(self, color):
        """Every pixel anew: `color` makes one of (x, y)."""
        for row, pixels in enumerate(self.rows):
            pixels[:] = [color(*self.point(column, row)) for column in range(self.width)]

    def fill(self, outline, color, opacity=1.0):
        """The inside of a closed outline; `color` is one or makes one of (x, y)."""
        samples = 4
        points = [((x - self.left) / (self.right - self.left) * self.width,
                   (self.top - y) / (self.top - self.bottom) * self.height) for x, y in outline]
        first = max(0, int(min(y for _, y in points)))
        last = min(self.height - 1, int(max(y for _, y in points)))
        for row in range(first, last + 1):
            cover = {}
            for sample in range(samples):
                for start, end in self._spans(points, row + (sample + 0.5) / samples):
                    self._add_span(cover, start, end, 1 / samples)
            pixels = self.rows[row]
            for column, share in cover.items():
                new = color(*self.point(column, row)) if callable(color) else color
                pixels[column] = mix(pixels[column], new, min(1.0, share) * opacity)

    @staticmethod
    def _spans(points, y):
        crossings = []
        ax, ay = points[-1]
        for bx, by in points:
            if (ay > y) != (by > y):
                crossings.append(ax + (y - ay) * (bx - ax) / (by - ay))
            ax, ay = bx, by
        crossings.sort()
        return zip(crossings[::2], crossings[1::2])

    def _add_span(self, cover, start, end, weight):
        start, end = max(0.0, start), min(float(self.width), end)
        for column in range(int(start), int(math.ceil(end))):
            share = min(end, column + 1) - max(start, column)
            cover[column] = cover.get(column, 0.0) + share * weight

    def circle(self, x, y, radius, color, opacity=1.0, radius_y=None):
        steps = 24 if radius < 0.1 else 64
        angles = (2 * math.pi * i / steps for i in range(steps))
        self.fill([(x + radius * math.cos(a), y + (radius_y or radius) * math.sin(a)) for a in angles], color, opacity)

    def box(self, left, bottom, right, top, color, opacity=1.0):
        self.fill([(left, bottom), (right, bottom), (right, top), (left, top)], color, opacity)

    def stroke(self, line, width, color, opacity=1.0):
        """A line of straight pieces, each with its own round ends."""
        for (ax, ay), (bx, by) in zip(line, line[1:]):
            angle = math.atan2(by - ay, bx - ax)
            ends = [(bx, by, angle - math.pi / 2), (ax, ay, angle + math.pi / 2)]
            self.fill([(x + width / 2 * math.cos(turn + math.pi * i / 6),
                        y + width / 2 * math.sin(turn + math.pi * i / 6))
                       for x, y, turn in ends for i in range(7)], color, opacity)

    def png(self):
        raw = bytearray()
        before = bytes(self.width * 3)
        for pixels in self.rows:
            line = bytes(int(clamp(channel) * 255 + 0.5) for pixel in pixels for channel in pixel)
            raw += _smallest_filter(line, before)
            before = line
        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        return (b"\x89PNG\r\n\x1a\n" + _chunk(b"IHDR", header) + _chunk(b"IDAT", zlib.compress(bytes(raw), 9))
                + _chunk(b"IEND", b""))


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def _smallest_filter(line, before):
    """The line after whichever PNG filter of none, left and above leaves the least to compress."""
    left = bytes(3) + line[:-3]
    choices = [(0, line), (1, bytes((a - b) & 255 for a, b in zip(line, left))),
               (2, bytes((a - b) & 255 for a, b in zip(line, before)))]
    kind, data = min(choices, key=lambda choice: sum(min(byte, 256 - byte) for byte in choice[1]))
    return bytes([kind]) + data
