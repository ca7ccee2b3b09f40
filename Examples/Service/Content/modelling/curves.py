"""Points, curves and outlines. Points are tuples of two or three numbers."""

import math
import re


def add(a, b):
    return tuple(p + q for p, q in zip(a, b))


def sub(a, b):
    return tuple(p - q for p, q in zip(a, b))


def times(a, factor):
    return tuple(p * factor for p in a)


def dot(a, b):
    return sum(p * q for p, q in zip(a, b))


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def length(a):
    return math.sqrt(dot(a, a))


def unit(a):
    size = length(a)
    return times(a, 1 / size) if size > 1e-12 else a


def mix(a, b, share):
    """Numbers or points: `a` for share 0, `b` for share 1."""
    if isinstance(a, (int, float)):
        return a + (b - a) * share
    return tuple(p + (q - p) * share for p, q in zip(a, b))


def clamp(value, low=0.0, high=1.0):
    return max(low, min(high, value))


def smoothstep(low, high, value):
    share = clamp((value - low) / (high - low))
    return share * share * (3 - 2 * share)


def path(data, steps=8):
    """Path data with the commands M, L, C, Q and Z, all absolute, as one list of points. Where the data has y grow
    downwards, the points have it grow upwards."""
    points = []
    last = (0.0, 0.0)
    for command, arguments in re.findall(r"([MLCQZ])([^MLCQZ]*)", data):
        numbers = [float(text) for text in arguments.split()]
        given = [(numbers[i], -numbers[i + 1]) for i in range(0, len(numbers), 2)]
        if command in "ML":
            points += given
        elif command == "C":
            for i in range(0, len(given), 3):
                points += bezier([last] + given[i : i + 3], steps)[1:]
                last = given[i + 2]
        elif command == "Q":
            for i in range(0, len(given), 2):
                points += bezier([last] + given[i : i + 2], steps)[1:]
                last = given[i + 1]
        if given:
            last = given[-1]
    if len(points) > 1 and length(sub(points[0], points[-1])) < 1e-9:
        points.pop()
    return points


def bezier(controls, steps):
    """A curve of any degree, both ends included."""

    def at(share):
        level = controls
        while len(level) > 1:
            level = [mix(a, b, share) for a, b in zip(level, level[1:])]
        return level[0]

    return [at(i / steps) for i in range(steps + 1)]


def spline(points, steps=6, closed=False):
    """A smooth curve through all the points."""
    count = len(points)
    result = []
    for i in range(count if closed else count - 1):
        if closed:
            p0, p1, p2, p3 = (points[(i + k) % count] for k in (-1, 0, 1, 2))
        else:
            p0, p1, p2, p3 = (points[max(0, min(count - 1, i + k))] for k in (-1, 0, 1, 2))
        for step in range(steps):
            t = step / steps
            weights = (
                (-t + 2 * t * t - t**3) / 2,
                (2 - 5 * t * t + 3 * t**3) / 2,
                (t + 4 * t * t - 3 * t**3) / 2,
                (-t * t + t**3) / 2,
            )
            result.append(tuple(sum(w * p[k] for w, p in zip(weights, (p0, p1, p2, p3))) for k in range(len(p1))))
    if not closed:
        result.append(points[-1])
    return result


def rounded(points, radius, steps=4, closed=False):
    """The polyline with its corners rounded. `radius` is one number or one for each point."""
    count = len(points)
    radii = [radius] * count if isinstance(radius, (int, float)) else radius
    result = []
    for i, point in enumerate(points):
        if radii[i] <= 0 or (not closed and i in (0, count - 1)):
            result.append(point)
            continue
        before, after = points[i - 1], points[(i + 1) % count]
        room = min(length(sub(before, point)), length(sub(after, point))) * 0.499
        reach = min(radii[i], room)
        start = add(point, times(unit(sub(before, point)), reach))
        end = add(point, times(unit(sub(after, point)), reach))
        result += bezier([start, point, end], steps)
    return result


def arc(x, y, radius, start, end, steps):
    """Angles in degrees, counter-clockwise from the right; both ends included."""
    angles = (math.radians(start + (end - start) * i / steps) for i in range(steps + 1))
    return [(x + radius * math.cos(angle), y + radius * math.sin(angle)) for angle in angles]


def circle(radius, steps, x=0.0, y=0.0):
    return arc(x, y, radius, 0, 360, steps)[:-1]


def rectangle(width, height, radius=0.0, steps=4, x=0.0, y=0.0):
    """Around (x, y), counter-clockwise."""
    w, h = width / 2, height / 2
    corners = [(x - w, y - h), (x + w, y - h), (x + w, y + h), (x - w, y + h)]
    return rounded(corners, radius, steps, closed=True) if radius > 0 else corners


def area(outline):
    """Positive when counter-clockwise."""
    return sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(outline, outline[1:] + outline[:1])) / 2


def counter_clockwise(outline):
    return outline if area(outline) > 0 else outline[::-1]


def inset(outline, distance):
    """A counter-clockwise outline moved inwards; keeps the number of points."""
    result = []
    for i, point in enumerate(outline):
        before, after = outline[i - 1], outline[(i + 1) % len(outline)]
        first, second = unit(sub(point, before)), unit(sub(after, point))
        normal = unit((-first[1] - second[1], first[0] + second[0]))
        miter = max(0.5, dot(normal, (-first[1], first[0])))
        result.append(add(point, times(normal, distance / miter)))
    return result


def triangles(outline):
    """Cuts ears off a counter-clockwise outline without crossings; index triples."""
    left = list(range(len(outline)))
    result = []

    def turn(a, b, c):
        return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0])

    def is_ear(k):
        i, j, m = left[k - 1], left[k], left[(k + 1) % len(left)]
        a, b, c = outline[i], outline[j], outline[m]
        if turn(a, b, c) <= 1e-14:
            return False
        return not any(
            turn(a, b, p) >= 0 and turn(b, c, p) >= 0 and turn(c, a, p) >= 0
            for p in (outline[k] for k in left if k not in (i, j, m))
        )

    while len(left) > 3:
        # The fattest ear first, so that no slivers are left over.
        ears = [k for k in range(len(left)) if is_ear(k)]
        if not ears:
            break
        best = min(ears, key=lambda k: length(sub(outline[left[k - 1]], outline[left[(k + 1) % len(left)]])))
        result.append((left[best - 1], left[best], left[(best + 1) % len(left)]))
        left.pop(best)
    if len(left) == 3:
        result.append(tuple(left))
    return result


class Outline:
    """How far points are from a closed outline, negative inside, looked up in a raster."""

    def __init__(self, points, cell=0.02, margin=0.3):
        self.cell = cell
        self.left = min(p[0] for p in points) - margin
        self.bottom = min(p[1] for p in points) - margin
        self.columns = int((max(p[0] for p in points) + margin - self.left) / cell) + 2
        self.rows = int((max(p[1] for p in points) + margin - self.bottom) / cell) + 2
        self.values = [
            [self._exact(points, self.left + i * cell, self.bottom + j * cell) for i in range(self.columns)]
            for j in range(self.rows)
        ]

    @staticmethod
    def _exact(points, x, y):
        nearest = math.inf
        inside = False
        ax, ay = points[-1]
        for bx, by in points:
            dx, dy = bx - ax, by - ay
            share = clamp(((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy or 1))
            nearest = min(nearest, (ax + dx * share - x) ** 2 + (ay + dy * share - y) ** 2)
            if (ay > y) != (by > y) and x < ax + (y - ay) * dx / dy:
                inside = not inside
            ax, ay = bx, by
        return -math.sqrt(nearest) if inside else math.sqrt(nearest)

    def distance(self, x, y):
        column = clamp((x - self.left) / self.cell, 0, self.columns - 1.001)
        row = clamp((y - self.bottom) / self.cell, 0, self.rows - 1.001)
        i, j = int(column), int(row)
        s, t = column - i, row - j
        low, high = self.values[j], self.values[j + 1]
        return mix(mix(low[i], low[i + 1], s), mix(high[i], high[i + 1], s), t)
