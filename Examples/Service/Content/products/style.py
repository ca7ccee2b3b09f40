"""A watch, sunglasses and a day pack."""

import math

from modelling.curves import add, circle, cross, mix, path, rectangle, rounded, smoothstep, spline, sub, times, unit
from modelling.model import Material, Model, swing
from modelling.picture import Picture, darker, gradient, lighter, rgb
from modelling.shapes import box, capsule, disc, disc_profile, extrude, facing, fluted, lathe, sweep, tube

STEEL, LEATHER, CANVAS, CREAM, CORAL = 0xD8DDE5, 0xB5703C, 0xE2A93B, 0xF6F1E6, 0xFF8A5C


def watch():
    model = Model("Meridian 40", 0.034)
    picture = _dial_picture()
    dial = Material("sunray dial", metallic=0.5, roughness=0.35, texture=picture)
    steel = Material("polished steel", STEEL, metallic=1.0, roughness=0.2)
    brushed = Material("brushed steel", 0xAAB1BC, metallic=1.0, roughness=0.38)
    cream = Material("lume", CREAM, roughness=0.5)
    coral = Material("seconds", CORAL, roughness=0.4)
    leather = Material("leather", LEATHER, roughness=0.65)
    thread = Material("thread", 0xF2D9B8, roughness=0.9)
    glass = Material("sapphire", 0xE8F0FF, roughness=0.03, alpha=0.1)

    node = model.node("watch")
    case = rounded([(0.0, -0.14), (0.44, -0.14), (0.56, -0.09), (0.59, -0.03), (0.59, 0.05), (0.54, 0.115)], 0.03, 4)
    bezel = rounded([(0.54, 0.115), (0.50, 0.125), (0.486, 0.115), (0.482, 0.06), (0.0, 0.06)], 0.012, 3)
    node.add(facing(lathe(case, 72)), brushed)
    node.add(facing(lathe(bezel[:-1], 72)), steel)
    face = extrude(circle(0.487, 64), 0.01).with_uvs(lambda x, y, z: picture.uv(x, y))
    node.add(face.moved(0, 0, 0.058), dial)
    for lug in _lugs():
        node.add(lug, steel)
    node.add(fluted(lathe(disc_profile(0.075, 0.55, 0.68, 0.02, 3), 48), 16, 0.06).turned("z", -90), brushed)

    for hour in range(12):
        tall = 0.105 if hour % 3 == 0 else 0.075
        node.add(box(0.034, tall, 0.016, 0.006, 1).moved(0, 0.435 - tall / 2, 0.068).turned("z", -30 * hour), cream)
    node.add(_hand(0.24, 0.042, 0.06).turned("z", 54).moved(0, 0, 0.082), cream)
    node.add(_hand(0.36, 0.032, 0.06).turned("z", -54).moved(0, 0, 0.094), cream)
    node.add(_hand(0.085, 0.012, 0.0).turned("z", -35).moved(0, -0.20, 0.068), coral)
    seconds = model.node("seconds", (0, 0, 0.106))
    seconds.add(_hand(0.39, 0.013, 0.11) + facing(disc(0.03, -0.008, 0.008, 0.004, 24)), coral)
    model.animate(seconds, "rotation", swing(lambda share: -200 - 360 * share, 60.0, 24))

    strap = _strap_line()
    node.add(sweep(rectangle(0.46, 0.08, 0.035, 4), strap, scale=_tapering), leather, 50)
    for stitch in _stitches(strap):
        node.add(stitch, thread)
    frame = [(x, y, -1.29) for x, y in rectangle(0.50, 0.26, 0.06, 4)]
    node.add(tube(frame, 0.028, 10, closed=True), steel)
    node.add(capsule((0, 0.12, -1.33), (0, -0.12, -1.33), 0.018), steel)
    model.node("crystal").add(facing(lathe([(0.484, 0.118), (0.40, 0.130), (0.2, 0.138), (0.0, 0.14)], 48)), glass)
    return model


def _lugs():
    line = spline([(0, 0.38, 0.0), (0, 0.50, -0.01), (0, 0.60, -0.05), (0, 0.66, -0.13)], 4)
    lug = sweep(rectangle(0.10, 0.10, 0.03, 3), [(0.295, y, z) for _, y, z in line],
                scale=lambda share: 1 - 0.25 * share, cap="round").with_mirror()
    return lug, lug.mirrored("y")


def _hand(reach, width, tail):
    outline = [(-width / 2, -tail), (width / 2, -tail), (width * 0.35, reach * 0.92), (0, reach),
               (-width * 0.35, reach * 0.92)]
    return extrude(outline, 0.008, 0.002, 1)


def _strap_line():
    """From the upper lugs around an absent wrist to the lower ones."""
    upper = [(0, 0.57, -0.08), (0, 0.76, -0.20), (0, 0.90, -0.48), (0, 0.88, -0.80), (0, 0.66, -1.10), (0, 0.34, -1.24)]
    lower = [(x, -y, z) for x, y, z in reversed(upper)]
    return spline(upper + [(0, 0, -1.29)] + lower, 4)


def _tapering(share):
    return (0.80 + 0.28 * abs(2 * share - 1), 1.0)


def _stitches(line):
    step = 1 / (len(line) - 1)
    for index in range(2, len(line) - 4):
        here, ahead = line[index], line[index + 1]
        along = unit(sub(ahead, here))
        outwards = times(cross((1, 0, 0), along), 0.041)
        start, end = (add(mix(here, ahead, share), outwards) for share in (0.15, 0.75))
        across = 0.46 / 2 * _tapering(index * step)[0] - 0.045
        yield sweep(rectangle(0.016, 0.016), [add(start, (across, 0, 0)), add(end, (across, 0, 0))]).with_mirror()


def _dial_picture():
    picture = Picture(400, 400, -0.49, -0.49, 0.49, 0.49)
    blue, cream, steel = rgb(0x1E3A5F), rgb(CREAM), rgb(STEEL)

    def brushed(x, y):
        """Brushed metal answers the light in two opposite fans."""
        shine = math.cos(2 * (math.atan2(y, x) - math.radians(135)))
        return lighter(blue, 0.30 * shine) if shine > 0 else darker(blue, -0.30 * shine)

    picture.paint(brushed)
    for minute in range(60):
        angle = math.radians(6 * minute)
        way = (math.sin(angle), math.cos(angle))
        picture.stroke([times(way, 0.452), times(way, 0.468)], 0.008, cream, 0.8)
    picture.circle(0, -0.20, 0.109, mix(blue, steel, 0.7))
    picture.circle(0, -0.20, 0.101, rgb(0x14283F))
    for tick in range(12):
        way = (math.sin(math.pi * tick / 6), math.cos(math.pi * tick / 6))
        picture.stroke([add(times(way, reach), (0, -0.20)) for reach in (0.082, 0.092)], 0.006, cream, 0.7)
    picture.box(-0.07, 0.20, 0.07, 0.208, cream, 0.8)
    picture.box(-0.045, 0.178, 0.045, 0.184, cream, 0.6)
    return picture


def sunglasses():
    model = Model("Solstice", 0.08)
    picture = _lens_picture()
    lens = Material("gradient lens", metallic=0.35, roughness=0.06, alpha=0.93, texture=picture)
    frame = Material("frame", 0xF4EDDD, roughness=0.3)
    tips = Material("temple tips", 0xC9BBA0, roughness=0.5)
    brass = Material("hinges", 0xD9AE5F, metallic=1.0, roughness=0.3)
    pads = Material("nose pads", 0xE6DCC8, roughness=0.4)

    node = model.node("frame")
    rim = sweep(rectangle(0.085, 0.10, 0.032, 4), [(x, y, 0) for x, y in circle(0.405, 64)], closed=True)
    node.add(_seated(rim).with_mirror(), frame)
    bridge = path("M -0.13 -0.06 C -0.07 -0.19 0.07 -0.19 0.13 -0.06", 16)
    node.add(tube([(x, y, 0.02) for x, y in bridge], 0.038, 12), frame)
    node.add(box(0.13, 0.12, 0.10, 0.03).moved(0.90, 0.10, -0.035).with_mirror(), frame)
    node.add(box(0.045, 0.09, 0.12, 0.015).moved(0.925, 0.10, -0.12).with_mirror(), brass)
    temple = spline([(0.935, 0.10, -0.14), (0.95, 0.10, -0.6), (0.945, 0.08, -1.05), (0.92, 0.02, -1.32),
                     (0.90, -0.14, -1.55), (0.89, -0.30, -1.68)], 6)
    node.add(sweep(rectangle(0.05, 0.10, 0.02, 3), temple[:19], up=(0, 1, 0), cap="round").with_mirror(), frame)
    node.add(sweep(rectangle(0.056, 0.106, 0.024, 3), temple[18:], up=(0, 1, 0), scale=lambda share: 1 + 0.2 * share,
                   cap="round").with_mirror(), tips)
    pad = lathe(disc_profile(0.055, -0.02, 0.02, 0.018, 3), 20).scaled(1, 1, 1.6).turned("z", 62)
    node.add(pad.moved(0.085, -0.12, -0.10).with_mirror(), pads)
    node.add(tube([(0.10, -0.10, -0.03), (0.085, -0.11, -0.09)], 0.014, 8).with_mirror(), brass)

    glass = lathe([(0.0, -0.012), (0.385, -0.03), (0.385, -0.015), (0.26, 0.012), (0.13, 0.024), (0.0, 0.028)], 56)
    glass = facing(glass).with_uvs(lambda x, y, z: picture.uv(x, y))
    model.node("lenses").add(_seated(glass).with_mirror(), lens)
    return model


def _seated(mesh):
    """In the right half of the frame, which bends around the face."""
    return mesh.turned("y", 6).moved(0.475, -0.05, -0.03)


def _lens_picture():
    picture = Picture(192, 192, -0.4, -0.4, 0.4, 0.4)
    tint = gradient([(0, rgb(0xFFAE63)), (0.5, rgb(0x7A3F5C)), (1, rgb(0x1F2A44))])
    picture.paint(lambda x, y: tint((0.4 + y - 0.12 * x) / 0.8))
    picture.fill(path("M -0.46 0.10 L -0.02 -0.46 L 0.14 -0.46 L -0.42 0.30 Z"), (1, 1, 1), 0.16)
    picture.fill(path("M -0.28 0.36 L 0.32 -0.40 L 0.37 -0.36 L -0.22 0.42 Z"), (1, 1, 1), 0.10)
    return picture


PACK = ("M -0.50 -0.48 C -0.48 -0.80 -0.28 -0.88 0 -0.88 C 0.28 -0.88 0.48 -0.80 0.50 -0.48 "
        "L 0.57 0.60 C 0.58 0.80 0.46 0.87 0.30 0.87 L -0.30 0.87 C -0.46 0.87 -0.58 0.80 -0.57 0.60 Z")
FLAP = ("M -0.51 -0.40 C -0.50 -0.82 -0.28 -0.91 0 -0.91 C 0.28 -0.91 0.50 -0.82 0.51 -0.40 "
        "C 0.52 -0.16 0.42 -0.06 0.28 -0.04 L -0.28 -0.04 C -0.42 -0.06 -0.52 -0.16 -0.51 -0.40 Z")


def backpack():
    model = Model("Fieldpack 22", 0.27)
    picture = _canvas_picture()
    cloth = Material("waxed canvas", roughness=0.8, texture=picture)
    shade = Material("canvas in shade", 0xA87C28, roughness=0.85)
    leather = Material("leather", LEATHER, roughness=0.6)
    dark = Material("dark leather", 0x764826, roughness=0.65)
    mesh = Material("padding", 0x3B342C, roughness=1.0)
    steel = Material("buckles", 0xC4CAD2, metallic=1.0, roughness=0.3)
    zipper = Material("zip", 0x6B4A1C, roughness=0.7)
    cream = Material("label", CREAM, roughness=0.8)
    green = Material("mountain", 0x4F7A5A, roughness=0.8)

    def printed(part):
        return part.with_uvs(lambda x, y, z: picture.uv(x, y))

    node = model.node("pack")
    node.add(printed(extrude(path(PACK, 9), 0.66, 0.15, 6, bevel_depth=0.22)), cloth, 60)
    node.add(printed(extrude(path(FLAP, 9), 0.72, 0.10, 6, bevel_depth=0.14).scaled(1.02, 1, 1).moved(0, 0.01, 0.02)),
             cloth, 60)
    node.add(extrude(path(FLAP, 9), 0.012, 0.004, 1).scaled(1.035, 1.0, 1).moved(0, -0.004, 0.24), shade)
    node.add(printed(extrude(rectangle(0.76, 0.49, 0.10, 6, y=-0.435), 0.20, 0.06, 5).moved(0, 0, 0.30)), cloth, 60)
    node.add(tube([(-0.31, -0.41, 0.398), (0.31, -0.41, 0.398)], 0.014, 8), zipper)
    node.add(box(0.03, 0.10, 0.016, 0.006, 2).moved(0.24, -0.46, 0.406), dark)
    for part, material in _buckled_strap((leather, dark, steel)):
        node.add(part.with_mirror(), material)
    node.add(box(0.20, 0.17, 0.016, 0.007, 2).moved(0, 0.415, 0.385), cream)
    hill = path("M -0.065 -0.37 L 0 -0.465 L 0.025 -0.425 L 0.04 -0.445 L 0.07 -0.37 Z")
    node.add(extrude(hill, 0.008, 0.001, 1).moved(0, 0, 0.394), green)

    handle = path("M -0.17 -0.84 C -0.17 -1.08 0.17 -1.08 0.17 -0.84", 24)
    node.add(sweep(rectangle(0.09, 0.05, 0.02, 3), [(x, y, -0.12) for x, y in handle], up=(0, 1, 0)), dark)
    shoulder = spline([(0.16, 0.80, -0.24), (0.20, 0.82, -0.42), (0.25, 0.50, -0.60), (0.30, 0.0, -0.62),
                       (0.36, -0.42, -0.52), (0.42, -0.74, -0.30)], 6)
    node.add(sweep(rectangle(0.17, 0.05, 0.022, 3), shoulder, up=(0, 1, 0.2),
                   scale=lambda share: (1 - 0.55 * smoothstep(0.5, 0.8, share), 1.0)).with_mirror(), dark)
    node.add(extrude(rectangle(0.74, 1.2, 0.12, 5), 0.08, 0.03, 3).moved(0, -0.02, -0.34), mesh)
    side = rounded([(-0.2, -0.30), (0.2, -0.30), (0.2, 0.26), (-0.2, 0.20)], 0.07, 4, closed=True)
    pocket = extrude(side, 0.16, 0.06, 4)
    node.add(pocket.turned("y", 90).moved(0.545, -0.50, 0).with_mirror(), shade, 60)
    return model


def _buckled_strap(materials):
    leather, dark, steel = materials
    yield extrude(rectangle(0.13, 0.66, 0.03, 4), 0.03, 0.01, 2).moved(0.225, 0.0, 0.40), leather
    for y in (0.0, -0.05, 0.05):
        yield facing(disc(0.012, 0.0, 0.012, 0.004, 10)).moved(0.225, -0.24 + y, 0.409), dark
    frame = [(x, y, 0.418) for x, y in rectangle(0.175, 0.12, 0.03, 4, x=0.225, y=-0.105)]
    yield tube(frame, 0.014, 8, closed=True), steel
    yield capsule((0.225, -0.05, 0.424), (0.225, -0.165, 0.424), 0.010, 8), steel


def _canvas_picture():
    picture = Picture(256, 400, -0.6, -0.92, 0.6, 0.95)
    cloth, leather = rgb(CANVAS), rgb(LEATHER)
    tones = gradient([(0, darker(cloth, 0.14)), (0.5, cloth), (1, lighter(cloth, 0.12))])

    def woven(x, y):
        thread = 0.035 * ((int(x * 210 + 1000) + int(y * 210 + 1000)) % 2)
        return darker(tones((y + 0.9) / 1.8), thread)

    picture.paint(woven)
    picture.box(-0.6, -0.95, 0.6, -0.69, leather)
    for y, color in ((-0.685, darker(leather, 0.4)), (-0.705, rgb(0xF2D9B8))):
        for stitch in range(40):
            x = -0.6 + stitch * 0.03
            picture.stroke([(x, y), (x + (0.03 if y > -0.70 else 0.016), y)], 0.008, color)
    for x in (-0.345, 0.345):
        picture.stroke([(x, -0.22), (x, -0.65)], 0.006, darker(cloth, 0.3), 0.7)
    picture.stroke([(-0.345, -0.65), (0.345, -0.65)], 0.006, darker(cloth, 0.3), 0.7)
    return picture
