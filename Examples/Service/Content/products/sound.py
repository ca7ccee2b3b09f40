"""Headphones and a speaker."""

import math

from modelling.curves import circle, path, rectangle, rounded, spline
from modelling.mesh import joined
from modelling.model import Material, Model
from modelling.picture import Picture, darker, lighter, rgb
from modelling.shapes import ball, box, disc, extrude, lathe, surface, sweep, torus, tube

CREAM, INK, CORAL, STEEL, LED = 0xF4EEE4, 0x26243C, 0xFF7A4A, 0xC3C8D2, 0x3DDC97


def headphones():
    model = Model("Halo One", 0.1)
    cream = Material("shell", CREAM, roughness=0.38)
    cloth = Material("cushions", INK, roughness=0.85)
    coral = Material("ring", CORAL, roughness=0.35)
    steel = Material("steel", STEEL, metallic=1.0, roughness=0.25)
    dark = Material("driver cloth", 0x17162A, roughness=1.0)
    light = Material("light", LED, emissive=LED)

    node = model.node("headphones")
    band = path("M -0.65 0.02 C -0.80 -1.12 0.80 -1.12 0.65 0.02", 36)
    node.add(sweep(rectangle(0.10, 0.25, 0.045, 4), [(x, y, 0) for x, y in band], cap="round"), cream)
    pad = path("M -0.56 -0.36 C -0.42 -0.90 0.42 -0.90 0.56 -0.36", 32)

    def plump(share):
        return 0.55 + 0.45 * math.sin(math.pi * share) ** 0.4

    node.add(sweep(rectangle(0.12, 0.23, 0.055, 4), [(x, y, 0) for x, y in pad], scale=plump, cap="round"), cloth)
    for mesh, material in _ear_cup((cream, coral, cloth, steel, dark)):
        node.add(mesh.with_mirror(), material)
    node.add(ball(0.02, 12, 8).moved(-0.74, -0.62, 0.275), light)
    return model


def _ear_cup(materials):
    cream, coral, cloth, steel, dark = materials

    def cup(profile, segments=44):
        return lathe(profile, segments).turned("z", -90).scaled(1, 1, 0.92).moved(0, -0.35, 0)

    shell = spline([(0.385, 0.585), (0.41, 0.61), (0.405, 0.68), (0.375, 0.78), (0.31, 0.87), (0.235, 0.905)], 4)
    yield cup([(0.0, 0.585)] + shell + [(0.225, 0.90), (0.215, 0.905), (0.14, 0.93), (0.0, 0.94)]), cream
    yield cup([(0.0, 0.53)] + rounded([(0.385, 0.53), (0.408, 0.545), (0.408, 0.575), (0.385, 0.59)], 0.02, 3)
              + [(0.0, 0.59)]), coral
    ring = rectangle(0.19, 0.17, 0.075, 5, x=0.312, y=0.455)
    yield cup(ring + ring[:1]), cloth
    yield cup([(0.0, 0.44), (0.25, 0.44)], 28), dark
    yoke = [(0.69, -0.35 + 0.47 * math.sin(a), 0.445 * math.cos(a)) for a in (math.pi * k / 28 for k in range(29))]
    yield tube(yoke, 0.024, 10, up=(1, 0, 0)), steel
    pivots = [disc(0.05, 0.0, 0.05, 0.012, 20).turned("x", turn).moved(0.69, -0.35, z)
              for z, turn in ((0.40, 90), (-0.40, -90))]
    yield joined(pivots), steel
    yield tube([(0.655, 0.28, 0), (0.675, 0.10, 0)], 0.034, 14), steel
    yield torus(0.165, 0.007, 40, 8).turned("z", -90).moved(0.925, -0.35, 0), steel


def speaker():
    model = Model("Pebble", 0.075)
    cream = Material("shell", CREAM, roughness=0.45)
    coral = Material("strap", CORAL, roughness=0.7)
    rim = Material("rim", 0x14131F, roughness=0.6)
    steel = Material("button", STEEL, metallic=1.0, roughness=0.3)
    rubber = Material("feet", 0x2A2A33, roughness=0.9)
    light = Material("light", LED, emissive=LED)
    picture = _grille_picture()
    cloth = Material("grille", metallic=0.3, roughness=0.55, texture=picture)

    node = model.node("speaker")
    node.add(extrude(_squircle(0.86, 0.64, 72), 0.82, 0.15, 7, bevel_depth=0.34), cream, 60)
    node.add(sweep(circle(0.02, 8), [(x, y, 0.415) for x, y in _squircle(0.715, 0.505, 72)], closed=True), rim)
    node.add(_feet(), rubber)
    node.add(box(0.36, 0.09, 0.22, 0.04).moved(0, 0.655, 0), steel)
    for x in (-0.36, 0.36):
        node.add(disc(0.055, -0.03, 0.03, 0.015, 20).turned("z", -9 if x > 0 else 9).moved(x, 0.615, 0), rim)
    strap = path("M 0.60 -0.40 C 1.02 -0.46 1.12 0.02 0.74 0.20", 26)
    node.add(sweep(rectangle(0.045, 0.15, 0.02, 3), [(x, y, 0) for x, y in strap]), coral)
    node.add(ball(0.018, 12, 8).moved(0, -0.565, 0.40), light)

    membrane = model.node("membrane")
    membrane.add(surface(_dome, 56, 12, wrap=True).with_uvs(lambda x, y, z: picture.uv(x, y)), cloth)
    membrane.bulge = _beaten
    beats = [(0.0, 1.0), (0.5, 0.7), (0.75, 0.45), (1.0, 1.0), (1.5, 0.8), (2.0, 0.0)]
    keys = [(0.0, 0.0)]
    for start, strength in beats[:-1]:
        keys += [(start + 0.06, strength), (start + 0.22, -0.25 * strength), (start + 0.24, 0.0)]
    model.animate(membrane, "weights", keys + [(2.0, 0.0)])
    return model


def _beaten(x, y, z):
    return (x, y, z + 0.075 * max(0.0, 1 - (x / 0.7) ** 2 - (y / 0.5) ** 2) ** 2)


def _feet():
    return box(0.26, 0.06, 0.4, 0.025).moved(0.3, -0.635, 0).with_mirror()


def _squircle(width, height, steps):
    def bent(value):
        return math.copysign(abs(value) ** (2 / 2.9), value)

    return [(width * bent(math.cos(a)), height * bent(math.sin(a))) for a in
            (2 * math.pi * (k + 0.5) / steps for k in range(steps))]


def _dome(u, v):
    reach = 1 - v
    edge = _squircle(0.71, 0.50, 56)[round(u * 56) % 56]
    return (edge[0] * reach, edge[1] * reach, 0.412 + 0.045 * (1 - reach * reach))


def _grille_picture():
    picture = Picture(512, 368, -0.73, -0.525, 0.73, 0.525)
    ink = rgb(INK)
    picture.paint(lambda x, y: darker(lighter(ink, 0.07), 0.45 * (math.hypot(x / 0.8, y / 0.55) ** 2)))
    pitch = 0.05
    for row in range(-12, 13):
        for column in range(-15, 16):
            x, y = (column + (0.5 if row % 2 else 0)) * pitch, row * pitch * 0.87
            reach = math.hypot(x / 0.73, y / 0.52)
            if reach < 0.97:
                picture.circle(x, y, 0.0165 * (1.15 - 0.45 * reach), lighter(ink, 0.55 - 0.3 * reach))
    return picture
