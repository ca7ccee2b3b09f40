"""A watch and sunglasses."""

import math

from modelling.curves import arc, path, rectangle, rounded, spline
from modelling.model import Material, Model
from modelling.picture import Picture, darker, gradient, lighter, rgb
from modelling.shapes import ball, box, capsule, disc, extrude, lathe, sweep

STEEL, LEATHER, CREAM, CORAL = 0xD8DDE5, 0xB5703C, 0xF6F1E6, 0xFF8A5C
DIAL = 0.485


def watch():
    model = Model("Meridian 40", 0.034)
    brushed = Material("brushed steel", 0xB9C0CA, metallic=1.0, roughness=0.42)
    polished = Material("polished steel", STEEL, metallic=1.0, roughness=0.16)
    leather = Material("leather", LEATHER, roughness=0.7)
    thread = Material("thread", 0xF2D9B8, roughness=0.9)
    enamel = Material("hands", CREAM, roughness=0.4)
    coral = Material("coral", CORAL, roughness=0.4)
    glass = Material("sapphire", 0xFFFFFF, roughness=0.03, alpha=0.06)
    picture = _dial_picture()
    dial = Material("sunray dial", metallic=0.3, roughness=0.3, texture=picture)

    body = model.node("watch")
    body.add(_facing(lathe([(0.0, -0.17), (0.48, -0.17), (0.55, -0.13), (0.585, -0.06), (0.59, 0.03), (0.575, 0.05)],
                           72)), brushed)
    bezel = spline([(0.575, 0.05), (0.562, 0.09), (0.53, 0.115), (0.50, 0.115), (0.488, 0.10), (DIAL, 0.04)], 3)
    body.add(_facing(lathe(bezel, 72)), polished)
    face = extrude(arc(0, 0, DIAL, 0, 360, 64)[:-1], 0.01)
    body.add(face.with_uvs(lambda x, y, z: picture.uv(x, y)).moved(0, 0, 0.045), dial)
    for hour in range(12):
        mark = box(0.036, 0.105 if hour % 3 == 0 else 0.075, 0.016, 0.006, 2)
        body.add(mark.moved(0, 0.385, 0.055).turned("z", -30 * hour), enamel)
    body.add(_hand(0.26, 0.05).moved(0, 0, 0.068).turned("z", 54), enamel)
    body.add(_hand(0.38, 0.038).moved(0, 0, 0.080).turned("z", -54), enamel)

    for side in (1, -1):
        lug = spline([(0.29, side * 0.38, -0.03), (0.29, side * 0.54, -0.04), (0.29, side * 0.64, -0.14)], 6)
        body.add(sweep(rectangle(0.10, 0.11, 0.035, 3), lug).with_mirror(), polished)
        body.add(capsule((-0.27, side * 0.60, -0.12), (0.27, side * 0.60, -0.12), 0.022), brushed)
    crown = lathe(rounded([(0.0, 0.0), (0.078, 0.0), (0.078, 0.12), (0.0, 0.12)], 0.02, 3), 48)
    crown = crown.mapped(lambda x, y, z: _fluted(x, y, z, 24)).turned("z", -90)
    body.add(crown.moved(0.58, 0, -0.05), polished)

    wrist = _wrist(0.0)
    body.add(sweep(rectangle(0.46, 0.075, 0.03, 3), wrist, scale=_taper), leather)
    for side in (1, -1):
        for start in range(2, 92, 4):
            piece = [(side * 0.195 * _taper(k / 96)[0], y, z) for k, (_, y, z) in
                     enumerate(_wrist(0.038)) if start <= k <= start + 2]
            body.add(sweep(rectangle(0.022, 0.016), piece), thread)
    crystal = _facing(lathe([(0.49, 0.105), (0.46, 0.122), (0.30, 0.132), (0.0, 0.135)], 64))

    seconds = model.node("seconds", (0, 0, 0.092))
    seconds.add(box(0.014, 0.50, 0.008, 0.003, 1).moved(0, 0.14, 0), coral)
    seconds.add(_facing(disc(0.034, -0.006, 0.01, 0.004, 24)), coral)
    model.animate(seconds, "rotation", [(5.0 * k, (0.0, 0.0, -math.sin(math.pi * k / 12), math.cos(math.pi * k / 12)))
                                        for k in range(13)])
    model.node("crystal").add(crystal, glass)
    return model


def _facing(mesh):
    """What was made along y looks to the front."""
    return mesh.turned("x", 90)


def _fluted(x, y, z, count):
    factor = 1 - 0.05 * (0.5 + 0.5 * math.cos(count * math.atan2(x, z)))
    return (x * factor, y, z * factor)


def _hand(length, width):
    outline = [(-width * 0.3, -0.06), (width * 0.3, -0.06), (width / 2, length * 0.62), (0, length),
               (-width / 2, length * 0.62)]
    return extrude(outline, 0.010, 0.004, 1)


def _wrist(outwards):
    """Around the arm, from one pair of lugs to the other."""
    return [(0, (0.90 + outwards) * math.sin(a), -0.72 + (0.78 + outwards) * math.cos(a))
            for a in (math.radians(42 + 276 * k / 96) for k in range(97))]


def _taper(share):
    return (1 - 0.22 * math.sin(math.pi * share), 1.0)


def _dial_picture():
    picture = Picture(360, 360, -0.5, -0.5, 0.5, 0.5)
    blue = rgb(0x1E3A5F)

    def sunray(x, y):
        shine = math.cos(2 * (math.atan2(y, x) - math.radians(135)))
        return lighter(blue, 0.28 * shine) if shine > 0 else darker(blue, -0.30 * shine)

    picture.paint(sunray)
    for minute in range(60):
        angle = math.radians(6 * minute)
        if minute % 5:
            picture.stroke([(r * math.sin(angle), r * math.cos(angle)) for r in (0.420, 0.436)], 0.009, (1, 1, 1), 0.7)
    picture.circle(0, -0.20, 0.110, rgb(0x93A5BB))
    picture.circle(0, -0.20, 0.102, rgb(0x14283F))
    picture.stroke([(0, -0.20), (0.045, -0.135)], 0.012, rgb(CORAL))
    return picture


def sunglasses():
    model = Model("Solstice", 0.078)
    acetate = Material("recycled nets", CREAM, roughness=0.32)
    hinge = Material("hinges", 0xD9C08A, metallic=1.0, roughness=0.3)
    picture = Picture(64, 128, -0.4, -0.4, 0.4, 0.4)
    dusk = gradient([(0, rgb(0xFFAE63)), (0.5, rgb(0x8A3F5C)), (1, rgb(0x1F2A44))])
    picture.paint(lambda x, y: dusk((y + 0.4) / 0.8))
    lens = Material("polarised lens", roughness=0.06, alpha=0.84, texture=picture, two_sided=True)

    frame = model.node("frame")
    for side in (1, -1):
        rim = [(0.475 * side + x, y - 0.05, 0) for x, y in arc(0, 0, 0.405, 0, 360, 56)[:-1]]
        frame.add(_worn(sweep(rectangle(0.085, 0.09, 0.03, 4), rim, closed=True)), acetate)
        temple = spline([(0.90 * side, 0.10, -0.05), (0.93 * side, 0.11, -0.16), (0.93 * side, 0.11, -0.50),
                         (0.91 * side, 0.11, -1.05), (0.88 * side, 0.04, -1.32), (0.85 * side, -0.16, -1.55)], 8)
        frame.add(_worn(sweep(rectangle(0.05, 0.085, 0.02, 3), temple, up=(0, 1, 0), cap="round")), acetate)
        frame.add(_worn(box(0.13, 0.11, 0.07, 0.025).moved(0.87 * side, 0.10, -0.01)), acetate)
        frame.add(_worn(disc(0.014, -0.05, 0.05, 0.004, 16).moved(0.90 * side, 0.10, -0.065)), hinge)
        for x in (0.845, 0.875):
            frame.add(_worn(ball(0.011, 10, 6).moved(x * side, 0.10, 0.026)), hinge)
        pad = ball(1, 14, 10).scaled(0.025, 0.07, 0.05).turned("y", 25 * side)
        frame.add(_worn(pad.moved(0.105 * side, -0.16, -0.06)), acetate)
    bridge = [(x, y, 0) for x, y in path("M -0.13 -0.09 C -0.06 -0.21 0.06 -0.21 0.13 -0.09", 16)]
    frame.add(_worn(sweep(rectangle(0.08, 0.085, 0.03, 4), bridge)), acetate)

    for name, x in (("left lens", -0.475), ("right lens", 0.475)):
        glass = _facing(lathe([(0.375 * (1 - k / 8), 0.06 - 0.06 * (1 - k / 8) ** 2) for k in range(9)], 48))
        glass = glass.with_uvs(lambda px, py, pz: picture.uv(px, py))
        model.node(name).add(_worn(glass.moved(x, -0.05, -0.03)), lens)
    return model


def _worn(mesh):
    """Curved around a face, and a little askew as if put down."""
    return mesh.mapped(lambda x, y, z: (x, y, z - 0.10 * x * x)).moved(0, 0, 0.6).turned("x", 12).turned("z", 8)
