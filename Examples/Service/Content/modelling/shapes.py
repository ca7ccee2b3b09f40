"""Shapes to build things of."""

import math

from .curves import add, circle, counter_clockwise, cross, inset, length, rounded, sub, times, triangles, unit
from .mesh import Mesh


def surface(at, columns, rows, wrap=False):
    """A sheet of (u, v) -> point, seen from outside with u to the right and v upwards. A wrapped one closes at
    u = 1."""
    points, uvs, faces = [], [], []
    for j in range(rows + 1):
        for i in range(columns + 1):
            u, v = i / columns, j / rows
            points.append(at(0.0 if wrap and i == columns else u, v))
            uvs.append((u, 1 - v))
    for j in range(rows):
        for i in range(columns):
            a = j * (columns + 1) + i
            b, c, d = a + 1, a + columns + 2, a + columns + 1
            faces += [(a, b, c), (a, c, d)]
    return Mesh(points, uvs, faces)


def lathe(profile, segments=48):
    """Turns a profile of (radius, y) about the y axis. The outside is on the right of a profile that goes upwards; the
    middle of its texture looks along +z."""
    reach = [0.0]
    for a, b in zip(profile, profile[1:]):
        reach.append(reach[-1] + length(sub(a, b)))

    def at(u, v):
        radius, y = profile[round(v * (len(profile) - 1))]
        angle = (u - 0.5) * 2 * math.pi
        return (radius * math.sin(angle), y, radius * math.cos(angle))

    mesh = surface(at, segments, len(profile) - 1, wrap=True)
    row = segments + 1
    mesh.uvs = [(u, 1 - reach[k // row] / reach[-1]) for k, (u, _) in enumerate(mesh.uvs)]
    return mesh


def disc_profile(radius, bottom, top, bevel, steps=3):
    """The profile of a solid round plate for `lathe`."""
    corners = [(0.0, bottom), (radius, bottom), (radius, top), (0.0, top)]
    return rounded(corners, bevel, steps)


def disc(radius, bottom, top, bevel, segments=32):
    return lathe(disc_profile(radius, bottom, top, bevel), segments)


def ball(radius, segments=24, rows=16):
    return lathe([(radius * math.cos(a), radius * math.sin(a))
                  for a in (math.pi * (j / rows - 0.5) for j in range(rows + 1))], segments)


def torus(radius, thickness, segments=48, sides=14):
    return lathe([(radius + thickness * math.cos(a), thickness * math.sin(a))
                  for a in (2 * math.pi * (j % sides) / sides for j in range(sides + 1))], segments)


def facing(mesh):
    """What was made along y looks to the front."""
    return mesh.turned("x", 90)


def fluted(mesh, ridges, depth):
    """Grooves along the y axis, `depth` of the radius deep."""

    def groove(x, y, z):
        factor = 1 - depth * (0.5 + 0.5 * math.cos(ridges * math.atan2(x, z)))
        return (x * factor, y, z * factor)

    return mesh.mapped(groove)


def _frames(line, closed, up):
    """(side, up) across the line at each of its points, without twist."""
    count = len(line)
    tangents = []
    for i in range(count):
        before = line[i - 1] if closed or i > 0 else line[i]
        after = line[(i + 1) % count] if closed or i < count - 1 else line[i]
        tangents.append(unit(sub(after, before)))
    frames = []
    current = up
    for tangent in tangents:
        side = unit(cross(tangent, current))
        current = unit(cross(side, tangent))
        frames.append((side, current))
    return frames


def sweep(section, line, closed=False, up=(0.0, 0.0, 1.0), scale=None, cap="flat"):
    """Draws a counter-clockwise section (across, up) along a line of points. `scale` makes a factor or two (across, up)
    of the share of the way. Open ends are capped "flat" or "round"."""
    section = counter_clockwise(section)
    line = [tuple(map(float, point)) for point in line]
    frames = _frames(line, closed, up)
    count, sides = len(line), len(section)
    rings = []
    for i, (point, (side, above)) in enumerate(zip(line, frames)):
        share = i / count if closed else i / (count - 1)
        factor = scale(share) if scale else 1.0
        across, upward = factor if isinstance(factor, tuple) else (factor, factor)
        rings.append([add(point, add(times(side, a * across), times(above, b * upward))) for a, b in section])
    if not closed and cap == "round":
        rings = _round_end(rings[::-1], line[::-1])[::-1]
        rings = _round_end(rings, line)
    if closed:
        rings.append(rings[0])

    points, uvs, faces = [], [], []
    for i, ring in enumerate(rings):
        for k in range(sides + 1):
            points.append(ring[k % sides])
            uvs.append((k / sides, i / (len(rings) - 1)))
    row = sides + 1
    for i in range(len(rings) - 1):
        for k in range(sides):
            a = i * row + k
            faces += [(a, a + row + 1, a + 1), (a, a + row, a + row + 1)]
    mesh = Mesh(points, uvs, faces)
    if not closed:
        caps = triangles(section)
        mesh = mesh + Mesh(rings[0], [], caps) + Mesh(rings[-1], [], caps).flipped()
    return mesh


def _round_end(rings, line):
    """Continues the rings by a half ball beyond the end of the line."""
    last, middle = rings[-1], line[-1]
    ahead = unit(sub(line[-1], line[-2]))
    reach = min(length(sub(point, middle)) for point in last)
    result = list(rings)
    for angle in (0.5, 0.95, 1.3, 1.52):
        result.append([add(add(middle, times(sub(p, middle), math.cos(angle))), times(ahead, reach * math.sin(angle)))
                       for p in last])
    return result


def tube(line, radius, sides=12, closed=False, up=(0.0, 0.0, 1.0), scale=None):
    return sweep(circle(radius, sides), line, closed, up, scale, cap="round")


def extrude(outline, depth, bevel=0.0, steps=3, bevel_depth=None):
    """A plate around z = 0 with the outline as its front, edges rounded by `bevel` in the plane and `bevel_depth`
    across it. Texture coordinates are the outline's own."""
    outline = counter_clockwise(outline)
    across = bevel if bevel_depth is None else bevel_depth
    half = depth / 2
    rings = [(outline, half - across)]
    if bevel > 0:
        for step in range(1, steps + 1):
            angle = math.pi / 2 * step / steps
            rings.append((inset(outline, bevel * (1 - math.cos(angle))), half - across + across * math.sin(angle)))
    levels = [(ring, -z) for ring, z in reversed(rings)] + rings
    count = len(outline)
    points = [(x, y, z) for ring, z in levels for x, y in ring]
    faces = []
    for level in range(len(levels) - 1):
        for k in range(count):
            a, b = level * count + k, level * count + (k + 1) % count
            faces += [(a, b, b + count), (a, b + count, a + count)]
    top = (len(levels) - 1) * count
    for a, b, c in triangles(rings[-1][0]):
        faces += [(a + top, b + top, c + top), (a, c, b)]
    return Mesh(points, [(x, y) for x, y, _ in points], faces)


def box(width, height, depth, radius, steps=3):
    """A box around the origin with round edges."""
    if radius >= min(width, height, depth) / 2:
        radius = min(width, height, depth) / 2 * 0.999
    sides = 4 * steps + 4

    def at(u, v):
        corner, step = divmod(round(u * sides), steps + 1)
        along = round(v * (2 * steps + 1))
        turn = math.pi / 2 * (corner + step / steps)
        upper = along > steps
        rise = math.pi / 2 * ((along - steps - 1) / steps if upper else along / steps - 1)
        ring = radius * math.cos(rise)
        middle = (width / 2 - radius) * (1 if corner in (0, 3) else -1), \
                 (height / 2 - radius) * (1 if corner in (0, 1) else -1)
        z = (depth / 2 - radius) * (1 if upper else -1) + radius * math.sin(rise)
        return (middle[0] + ring * math.cos(turn), middle[1] + ring * math.sin(turn), z)

    shell = surface(at, sides, 2 * steps + 1, wrap=True)
    row = sides + 1
    flat = _filled(shell.points[-row:-1]) + _filled(shell.points[: row - 1]).flipped()
    return shell + flat


def _filled(ring):
    """Fills a ring that is convex and counter-clockwise seen from outside."""
    return Mesh(ring, [], [(0, k, k + 1) for k in range(1, len(ring) - 1)])


def capsule(start, end, radius, sides=10):
    return tube([start, end], radius, sides, up=(0.31, 0.77, 0.56))
