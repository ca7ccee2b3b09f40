"""Surfaces of functions that are negative inside a body, for shapes that flow into each other."""

import math

from .curves import clamp, length
from .mesh import Mesh


def blend(a, b, radius):
    """The union of two bodies, its inner edge filled by about `radius`."""
    share = clamp(0.5 + 0.5 * (b - a) / radius)
    return b + (a - b) * share - radius * share * (1 - share)


def cut(a, b, radius):
    """The common part of two bodies, its outer edge rounded by about `radius`."""
    return -blend(-a, -b, radius)


def ellipsoid(point, middle, radii):
    """Exact only near the surface."""
    scaled = [(p - m) / r for p, m, r in zip(point, middle, radii)]
    gradient = [s / r for s, r in zip(scaled, radii)]
    size = length(scaled)
    return size * (size - 1) / (length(gradient) or 1e-9)


def isosurface(body, low, high, cell):
    """A mesh of body(x, y, z) = 0 inside the box. One vertex a cell, drawn onto the surface afterwards."""
    counts = [int(math.ceil((b - a) / cell)) + 1 for a, b in zip(low, high)]
    nx, ny, nz = counts

    def corner(i, j, k):
        return (low[0] + i * cell, low[1] + j * cell, low[2] + k * cell)

    values = [[[body(*corner(i, j, k)) for k in range(nz)] for j in range(ny)] for i in range(nx)]
    corners = [(a, b, c) for a in (0, 1) for b in (0, 1) for c in (0, 1)]
    edges = [(p, q) for p in corners for q in corners if p < q and sum(abs(x - y) for x, y in zip(p, q)) == 1]
    numbers, points = {}, []
    for i in range(nx - 1):
        for j in range(ny - 1):
            for k in range(nz - 1):
                around = {c: values[i + c[0]][j + c[1]][k + c[2]] for c in corners}
                inside = sum(value < 0 for value in around.values())
                if inside in (0, 8):
                    continue
                crossings = []
                for p, q in edges:
                    if (around[p] < 0) != (around[q] < 0):
                        share = around[p] / (around[p] - around[q])
                        crossings.append([a + (b - a) * share for a, b in zip(p, q)])
                middle = [sum(crossing[d] for crossing in crossings) / len(crossings) for d in range(3)]
                numbers[i, j, k] = len(points)
                points.append(_drawn_on(body, tuple(start + (number + share) * cell for start, number, share
                                                    in zip(low, (i, j, k), middle)), cell))

    faces = []
    for i in range(1, nx - 1):
        for j in range(1, ny - 1):
            for k in range(1, nz - 1):
                here = values[i][j][k] < 0
                for axis, other in ((0, values[i + 1][j][k]), (1, values[i][j + 1][k]), (2, values[i][j][k + 1])):
                    if here == (other < 0):
                        continue
                    ring = []
                    for p, q in ((0, 0), (-1, 0), (-1, -1), (0, -1)):
                        place = [i, j, k]
                        place[(axis + 1) % 3] += p
                        place[(axis + 2) % 3] += q
                        ring.append(numbers[tuple(place)])
                    a, b, c, d = ring if here else ring[::-1]
                    # The shorter diagonal keeps the triangles even.
                    if _apart(points[a], points[c]) <= _apart(points[b], points[d]):
                        faces += [(a, b, c), (a, c, d)]
                    else:
                        faces += [(a, b, d), (b, c, d)]
    return Mesh(points, [], faces)


def _apart(a, b):
    return sum((p - q) ** 2 for p, q in zip(a, b))


def _drawn_on(body, point, cell):
    step = cell * 0.05
    start = point
    for _ in range(3):
        value = body(*point)
        slope = []
        for d in range(3):
            ahead = tuple(p + step * (d == axis) for axis, p in enumerate(point))
            slope.append((body(*ahead) - value) / step)
        square = sum(s * s for s in slope)
        if square < 1e-6:
            break
        point = tuple(p - s * value / square for p, s in zip(point, slope))
    return point if _apart(point, start) < cell * cell else start
