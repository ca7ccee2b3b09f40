"""A running shoe, a skateboard and a match ball."""

import math

from modelling.curves import Outline, add, dot, mix, path, rectangle, rounded, smoothstep, spline, times, unit
from modelling.implicit import cut, ellipsoid, isosurface
from modelling.mesh import Mesh, joined
from modelling.model import Material, Model
from modelling.picture import Picture, darker, gradient, lighter, rgb
from modelling.shapes import box, disc, extrude, lathe, surface, sweep, tube

CREAM, CORAL, AMBER, NIGHT = 0xF7F2E8, 0xFF6B40, 0xFFC045, 0x1C2A3A

UPPER = ("M -0.92 0.36 C -0.97 0.10 -0.95 -0.18 -0.88 -0.44 C -0.86 -0.53 -0.76 -0.54 -0.72 -0.46 "
         "C -0.66 -0.33 -0.58 -0.26 -0.46 -0.27 C -0.34 -0.28 -0.26 -0.38 -0.20 -0.50 "
         "C -0.16 -0.58 -0.04 -0.58 0.02 -0.50 C 0.14 -0.30 0.30 -0.10 0.52 -0.01 "
         "C 0.72 0.06 0.97 0.02 1.00 0.24 C 1.02 0.32 1.00 0.45 0.96 0.58 L -0.88 0.58 Z")
SOLE = ("M -0.95 0.28 C -1.00 0.48 -0.95 0.62 -0.80 0.63 L 0.42 0.63 C 0.74 0.63 1.02 0.54 1.06 0.32 "
        "C 0.98 0.29 0.80 0.34 0.60 0.32 L -0.95 0.26 Z")


class Foot:
    """The shoe's bodies: the outlines from the side and from above, cut with each other and rounded."""

    def __init__(self):
        self.upper_side = Outline(path(UPPER, 10))
        self.sole_side = Outline(path(SOLE, 10))
        right = [(-0.97, 0.0), (-0.92, 0.16), (-0.75, 0.265), (-0.45, 0.265), (-0.05, 0.25), (0.30, 0.32), (0.58, 0.36),
                 (0.83, 0.30), (1.0, 0.16), (1.055, 0.0)]
        self.plan = Outline(spline(right + [(x, -z) for x, z in right[-2:0:-1]], 4, closed=True))

    def sole(self, x, y, z):
        flare = 1.04 - 0.07 * smoothstep(-0.6, -0.28, y)
        return cut(self.sole_side.distance(x, y), self.plan.distance(x, z / flare), 0.09)

    def outer(self, x, y, z):
        narrow = mix(0.97, 0.60, smoothstep(-0.35, 0.5, y))
        return cut(self.upper_side.distance(x, y), self.plan.distance(x, z / narrow) * narrow + 0.012, 0.24)

    def hole(self, x, y, z):
        narrow = mix(0.97, 0.60, smoothstep(-0.35, 0.5, y))
        wall = self.plan.distance(x, z / narrow) * narrow + 0.125
        return cut(wall, ellipsoid((x, y, z), (-0.47, 0.42, 0), (0.31, 0.62, 0.30)), 0.06)

    def upper(self, x, y, z):
        return cut(self.outer(x, y, z), -self.hole(x, y, z), 0.05)

    def top(self, x, z):
        """The height of the upper without its opening, found from above."""
        low, high = -0.3, 0.8
        while self.outer(x, high, z) > 0 and high > low:
            high -= 0.02
        low, high = high, high + 0.02
        for _ in range(8):
            middle = (low + high) / 2
            low, high = (middle, high) if self.outer(x, middle, z) < 0 else (low, middle)
        return high

    def rim(self):
        """The line that the padded collar follows: the edge of the opening, seen from above."""
        line = []
        for k in range(36):
            angle = 2 * math.pi * k / 36
            low, high = 0.0, 0.6
            for _ in range(12):
                middle = (low + high) / 2
                x, z = -0.47 + middle * math.cos(angle), middle * math.sin(angle)
                low, high = (middle, high) if self.hole(x, self.top(x, z), z) < 0 else (low, middle)
            line.append((x, self.top(x, z) - 0.012, z))
        return line


def running_shoe():
    model = Model("Volt Runner", 0.14)
    picture = _shoe_picture()
    knit = Material("knit", roughness=0.85, texture=picture)
    foam = Material("foam", roughness=0.6, texture=picture)
    lining = Material("lining", 0x141D28, roughness=1.0)
    tongue = Material("tongue", 0xA93F22, roughness=0.9)
    lace = Material("laces", 0xFFFFFF, roughness=0.7)

    foot = Foot()
    shoe = model.node("shoe")
    upper = isosurface(foot.upper, (-1.06, -0.46, -0.42), (1.12, 0.64, 0.42), 0.05)
    inside, outside = upper.parted(lambda x, y, z: foot.outer(x, y, z) < -0.022 and foot.hole(x, y, z) < 0.02)
    shoe.add(_tilted(outside.with_uvs(lambda x, y, z: picture.uv(x, y))), knit, 60)
    shoe.add(_tilted(inside), lining, 60)
    shoe.add(_tilted(tube(foot.rim(), 0.05, 9, closed=True, up=(0.1, 1, 0))), lining)
    sole = isosurface(foot.sole, (-1.1, -0.72, -0.46), (1.14, -0.18, 0.46), 0.052)
    shoe.add(_tilted(sole.with_uvs(lambda x, y, z: picture.uv(x, y))), foam, 60)

    def on_top(x, z, raised):
        return (x, foot.top(x, z) + raised, z)

    shoe.add(_tilted(surface(lambda u, v: on_top(mix(-0.13, 0.44, u), mix(0.10, -0.10, v) * (1 - 0.35 * u), 0.006),
                             16, 6)), tongue, 60)
    for index in range(5):
        x = -0.06 + index * 0.098
        for side in (1, -1):
            line = []
            for k in range(9):
                share = k / 8
                z = side * mix(-0.15, 0.15, share) * (1 - 0.06 * index)
                raised = 0.012 + 0.014 * math.sin(math.pi * share) * (1.6 if side > 0 else 0.4)
                line.append(on_top(x + mix(-0.035, 0.035, share), z, raised))
            shoe.add(_tilted(tube(line, 0.021, 7, up=(0.2, 1, 0))), lace)
    for side in (1, -1):
        shoe.add(_tilted(_bow(on_top(-0.07, 0, 0.03), side)), lace)
    return model


def _bow(knot, side):
    loop = [(0, 0, 0), (-0.02, 0.05, 0.08), (0.02, 0.055, 0.18), (0.07, 0.0, 0.21), (0.07, -0.03, 0.14),
            (0.02, 0.0, 0.02)]
    end = [(0, 0, 0), (0.06, 0.03, 0.06), (0.12, -0.03, 0.14), (0.17, -0.14, 0.19)]
    return joined([tube([add(knot, (x, y, side * z)) for x, y, z in spline(line, 4)], 0.016, 6, up=(0.3, 0.9, 0.1))
                   for line in (loop, end)])


def _tilted(mesh):
    return mesh.turned("z", 5)


def _shoe_picture():
    picture = Picture(512, 288, -1.06, -0.66, 1.10, 0.58)
    coral, night, cream = rgb(CORAL), rgb(NIGHT), rgb(CREAM)
    warm = gradient([(0, darker(coral, 0.16)), (0.5, coral), (1, lighter(coral, 0.12))])
    picture.paint(lambda x, y: warm((y + 0.4) / 0.9))
    for row in range(26):
        line = [(x / 20, 0.50 - row * 0.035 - 0.05 * (x / 20 + 0.4) - 0.014 * math.sin(x * 0.55))
                for x in range(-22, 23)]
        picture.stroke(line, 0.008, lighter(coral, 0.35), 0.45)
    picture.fill(path("M 0.66 -0.10 C 0.58 0.10 0.62 0.30 0.74 0.44 L 1.2 0.44 L 1.2 -0.2 Z"), darker(coral, 0.26))
    picture.fill(path("M -1.2 -0.12 C -0.78 -0.14 -0.62 0.10 -0.66 0.44 L -1.2 0.44 Z"), night)
    sun = gradient([(0, rgb(AMBER)), (1, lighter(rgb(AMBER), 0.5))])
    picture.fill(path("M -0.62 0.34 C -0.34 0.30 -0.06 0.10 0.12 -0.20 L 0.30 -0.08 "
                      "C 0.16 0.16 0.00 0.32 -0.14 0.40 Z"),
                 lambda x, y: sun((x + 0.5) / 0.7))
    collar = path("M -0.90 -0.48 C -0.72 -0.28 -0.56 -0.20 -0.44 -0.21 C -0.30 -0.23 -0.22 -0.36 -0.10 -0.56", 12)
    picture.stroke(collar, 0.10, night)
    picture.fill(path("M -1.2 0.27 L 0.60 0.305 C 0.80 0.325 0.98 0.275 1.2 0.29 L 1.2 0.8 L -1.2 0.8 Z"),
                 lambda x, y: mix(cream, (1, 1, 1), smoothstep(-0.5, -0.3, y)))
    picture.fill(path("M -1.2 0.50 C -0.93 0.58 -0.86 0.555 -0.74 0.555 L 0.42 0.555 C 0.70 0.555 0.90 0.53 1.2 0.36 "
                      "L 1.2 0.8 L -1.2 0.8 Z"), night)
    picture.stroke(path("M -0.90 0.42 C -0.55 0.35 -0.30 0.50 0.02 0.45 C 0.30 0.41 0.55 0.44 0.84 0.41", 12), 0.034,
                   coral)
    return picture


def skateboard():
    model = Model("Driftline 8.25", 0.40)
    picture = _deck_picture()
    graphic = Material("lacquered graphic", roughness=0.25, texture=picture)
    maple = Material("maple", 0xC98B52, roughness=0.5)
    ply = Material("coral ply", 0xD8613F, roughness=0.5)
    grip = Material("grip tape", 0x17181C, roughness=1.0)
    steel = Material("trucks", 0xC9CED7, metallic=1.0, roughness=0.33)
    bolt = Material("bolts", 0x4A515C, metallic=1.0, roughness=0.4)
    wheel = Material("wheels", 0xF6F1E6, roughness=0.45)
    bushing = Material("bushings", CORAL, roughness=0.5)

    node = model.node("skateboard")

    def place(mesh):
        return mesh.turned("z", -38)

    bottom = surface(lambda u, v: _deck_point(u, v, 0.0), 16, 44)
    node.add(place(bottom.with_uvs(lambda x, y, z: picture.uv(x, y))), graphic, 60)
    node.add(place(surface(lambda u, v: _deck_point(1 - u, v, -0.042), 16, 44)), grip, 60)
    for depth, height, material in ((0.0, 0.012, maple), (-0.012, 0.006, ply), (-0.018, 0.006, maple),
                                    (-0.024, 0.006, ply), (-0.030, 0.012, maple)):
        node.add(place(_edge(depth, height)), material, 60)
    for y in (-0.56, 0.56):
        for mesh, material in _truck((steel, bolt, wheel, bushing)):
            node.add(place((mesh if y > 0 else mesh.turned("z", 180)).moved(0, y, 0)), material)
    return model


def _deck_point(u, v, depth):
    """The lower face looks forwards; nose and tail bend away behind."""
    y = -math.cos(math.pi * v)
    y = mix(2 * v - 1, y, 0.6)
    overhang = max(0.0, abs(y) - 0.715)
    half = math.sqrt(max(0.0, 0.285**2 - overhang**2))
    x = (2 * u - 1) * half
    return (x, y, depth - 0.62 * max(0.0, abs(y) - 0.60) ** 1.6 - 0.022 * (x / 0.285) ** 2)


def _edge(depth, height):
    front = [(1, k / 44) for k in range(45)] + [(0, 1 - k / 44) for k in range(45)]

    def at(u, v):
        share = front[round(u * 90) % 90]
        return _deck_point(*share, depth - height * (1 - v))

    return surface(at, 90, 1, wrap=True)


def _truck(materials):
    steel, bolt, wheel, bushing = materials
    yield extrude(rectangle(0.22, 0.34, 0.05, 4), 0.036, 0.012, 2).moved(0, 0, 0.018), steel
    yield box(0.11, 0.20, 0.10, 0.03).moved(0, 0.02, 0.07), steel
    thick = sweep([(0.055 * math.cos(a), 0.05 * math.sin(a)) for a in (math.pi * k / 7 for k in range(14))],
                  [(x, 0, 0.15) for x in (-0.245, -0.16, -0.08, 0.0, 0.08, 0.16, 0.245)],
                  scale=lambda share: 0.72 + 0.75 * (1 - abs(2 * share - 1)) ** 1.3, cap="round")
    yield thick, steel
    yield disc(0.058, -0.025, 0.025, 0.015, 20).turned("x", 90).moved(0, -0.01, 0.225), bushing
    yield disc(0.038, -0.02, 0.02, 0.008, 6).turned("x", 90).moved(0, -0.01, 0.262), bolt
    yield tube([(-0.43, 0, 0.15), (0.43, 0, 0.15)], 0.018, 10), steel
    for side in (-1, 1):
        profile = rounded([(0.04, -0.085), (0.075, -0.085), (0.108, -0.05), (0.108, 0.05), (0.075, 0.085),
                           (0.04, 0.085)], 0.03, 3)
        yield lathe(profile, 32).turned("z", 90).moved(side * 0.335, 0, 0.15), wheel
        yield disc(0.05, -0.075, 0.075, 0.01, 20).turned("z", 90).moved(side * 0.335, 0, 0.15), bolt
    for x in (-0.08, 0.08):
        for y in (-0.135, 0.135):
            yield disc(0.017, 0.0, 0.014, 0.005, 10).turned("x", 90).moved(x, y, 0.036), bolt


def _deck_picture():
    picture = Picture(256, 900, -0.285, -1, 0.285, 1)
    sea = gradient([(0, rgb(0x123F5C)), (1, rgb(0x1E7F86))])
    picture.paint(lambda x, y: sea((y + 1) / 2))
    sun = gradient([(0, rgb(0xFF7A52)), (1, rgb(0xFFC45C))])
    picture.circle(0, -0.02, 0.225, lambda x, y: sun((y + 0.25) / 0.47))
    for wave in range(5):
        lower = -(0.10 + wave * 0.20)
        shape = path("M -0.4 0.06 C -0.25 -0.10 -0.10 -0.02 0 0.05 C 0.12 0.13 0.25 0.02 0.4 -0.06 "
                     "L 0.4 1.2 L -0.4 1.2 Z", 14)
        picture.fill([(x, y + lower) for x, y in shape],
                     mix(rgb(0xF2E6CF), rgb(0x1B5F79), 0.12 + wave * 0.21))
    for star in range(9):
        picture.circle(-0.18 + (star * 7 % 9) * 0.045, 0.92 - star * 0.075, 0.008 + star % 3 * 0.005, (1, 1, 1), 0.85)
    return picture


def match_ball():
    model = Model("Matchday", 0.134)
    white = Material("white panels", 0xFAF8F2, roughness=0.42)
    night = Material("dark panels", 0x22314A, roughness=0.38)
    corners = _icosahedron()
    node = model.node("ball")

    def neighbours(a, b):
        return abs(dot(a, b) - 0.4472135955) < 1e-6

    for corner in corners:
        ring = [unit(add(times(corner, 2), other)) for other in corners if neighbours(corner, other)]
        node.add(_panel(corner, ring), night, 24)
    for i, a in enumerate(corners):
        for j, b in enumerate(corners[:i]):
            for c in corners[:j]:
                if neighbours(a, b) and neighbours(b, c) and neighbours(a, c):
                    ring = [unit(add(times(p, 2), q)) for p in (a, b, c) for q in (a, b, c) if p != q]
                    node.add(_panel(unit(add(add(a, b), c)), ring), white, 24)
    return model


def _icosahedron():
    golden = (1 + math.sqrt(5)) / 2
    corners = []
    for a in (-1.0, 1.0):
        for b in (-golden, golden):
            corners += [(0.0, a, b), (a, b, 0.0), (b, 0.0, a)]

    def turned(point):
        pitch, yaw = 0.42, 0.36
        x, y, z = unit(point)
        x, z = x * math.cos(yaw) + z * math.sin(yaw), z * math.cos(yaw) - x * math.sin(yaw)
        return (x, y * math.cos(pitch) - z * math.sin(pitch), z * math.cos(pitch) + y * math.sin(pitch))

    return [turned(corner) for corner in corners]


def _panel(middle, ring, steps=6):
    """A cushion between its seams."""
    right = unit((middle[2], 0.0, -middle[0]))
    above = (middle[1] * right[2] - middle[2] * right[1], middle[2] * right[0] - middle[0] * right[2],
             middle[0] * right[1] - middle[1] * right[0])
    ring = sorted(ring, key=lambda p: math.atan2(dot(p, above), dot(p, right)))
    result = Mesh()
    for a, b in zip(ring, ring[1:] + ring[:1]):
        rows, faces = [], []
        for i in range(steps + 1):
            inward = (i / steps) ** 1.5
            for j in range(steps - i + 1):
                along = j / (steps - i) if i < steps else 0.0
                point = unit(mix(mix(a, b, along), middle, inward))
                rows.append(times(point, 0.82 * (1 - 0.035 * (1 - smoothstep(0.0, 0.28, inward)) ** 2)))
        number = 0
        for i in range(steps):
            count = steps - i + 1
            for j in range(count - 1):
                faces.append((number + j, number + j + 1, number + count + j))
                if j < count - 2:
                    faces.append((number + j + 1, number + count + j + 1, number + count + j))
            number += count
        result = result + Mesh(rows, [], faces)
    return result
