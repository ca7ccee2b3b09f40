"""A can, an insulated bottle and a gift card."""

import math

from modelling.curves import circle, path, rectangle, rounded, smoothstep, spline
from modelling.model import Material, Model, swing
from modelling.picture import Picture, darker, gradient, lighter, mix, rgb
from modelling.shapes import disc_profile, extrude, lathe, sweep, torus

NIGHT, BERRY, LIME = 0x241B4B, 0xFF4F93, 0xC8F25A


def can():
    model = Model("Nightberry", 0.068)
    picture = _can_picture()
    label = Material("printed aluminium", metallic=0.35, roughness=0.30, texture=picture)
    metal = Material("aluminium", 0xD5DAE2, metallic=1.0, roughness=0.28)
    opening = Material("scored lid", 0xAEB5C0, metallic=1.0, roughness=0.4)

    node = model.node("can")
    node.add(lathe([(0.40, -0.74), (0.40, 0.68)], 72), label)
    base = spline([(0.27, -0.875), (0.295, -0.905), (0.32, -0.90), (0.36, -0.845), (0.392, -0.78), (0.40, -0.74)], 5)
    node.add(lathe([(0.0, -0.80), (0.12, -0.81), (0.22, -0.84)] + base, 64), metal)
    shoulder = spline([(0.40, 0.68), (0.392, 0.715), (0.35, 0.80), (0.327, 0.84), (0.32, 0.87)], 5)
    node.add(lathe(shoulder, 64), metal)
    node.add(torus(0.316, 0.02, 64, 12).moved(0, 0.88, 0), metal)
    node.add(lathe([(0.305, 0.885), (0.292, 0.82), (0.28, 0.815), (0.265, 0.835), (0.0, 0.84)], 56), metal)
    node.add(_lying(extrude([(x * 0.10, y * 0.085) for x, y in circle(1, 28)], 0.006, 0.002, 1), 0.843, 0.14), opening)
    node.add(_lying(_tab(), 0.858, -0.03), metal)
    node.add(lathe(disc_profile(0.022, 0.84, 0.872, 0.008), 16), metal)
    return model


def _lying(mesh, y, z):
    return mesh.turned("x", -90).moved(0, y, z)


def _tab():
    """A ring that is swept flat, and the tongue that presses the lid in."""
    ring = [(x * 0.062, y * 0.075 - 0.045, 0) for x, y in circle(1, 28)]
    tongue = extrude(rectangle(0.09, 0.11, 0.04, 5, y=0.045), 0.014, 0.005, 2)
    return sweep(rectangle(0.03, 0.016, 0.007, 3), ring, closed=True) + tongue


def _berry(picture, x, y, radius, code):
    color = rgb(code)
    tones = gradient([(0, lighter(color, 0.45)), (0.5, color), (1, darker(color, 0.35))])
    picture.circle(x, y, radius, lambda px, py: tones(math.hypot(px - x + radius * 0.35, py - y - radius * 0.4)
                                                      / (radius * 1.5)))
    picture.circle(x - radius * 0.38, y + radius * 0.42, radius * 0.15, (1, 1, 1), 0.7, radius * 0.1)


def _can_picture():
    half = math.pi * 0.40
    picture = Picture(768, 432, -half, -0.74, half, 0.68)
    sky = gradient([(0, rgb(NIGHT)), (1, rgb(0x33286E))])
    picture.paint(lambda x, y: sky((y + 0.74) / 1.42))
    for index in range(60):
        x, y = -half + (index * 37 % 61) / 61 * 2 * half, -0.25 + (index * 23 % 59) / 59 * 0.92
        picture.circle(x, y, 0.004 + index * 11 % 5 * 0.0018, (1, 1, 1), 0.55)

    def wave(height, depth, shift):
        line = [(-half + 2 * half * k / 120, height + depth * math.sin(4 * math.pi * k / 120 + shift))
                for k in range(121)]
        return [(-half, -0.8)] + line + [(half, -0.8)]

    pink = gradient([(0, rgb(0x9E2884)), (1, rgb(BERRY))])
    picture.fill(wave(-0.32, 0.075, 0.4), lambda x, y: pink((y + 0.74) / 0.5))
    picture.fill(wave(-0.46, 0.06, 1.4), rgb(0x7B1F78), 0.65)
    for side in (-half, 0.0, half):
        for x, y, radius, code in ((-0.17, -0.42, 0.13, 0x5A2CC0), (0.11, -0.47, 0.16, 0x4524A8),
                                   (-0.06, -0.60, 0.11, 0x6D35D0)):
            _berry(picture, side + x, y, radius, code)
        bolt = path("M 0.10 -0.56 L -0.20 -0.06 L -0.01 -0.06 L -0.10 0.30 L 0.21 -0.20 L 0.03 -0.20 Z")
        glow = gradient([(0, rgb(0x5FD98A)), (0.5, rgb(LIME)), (1, lighter(rgb(LIME), 0.5))])
        picture.fill([(side + x, y) for x, y in bolt], lambda x, y: glow((y + 0.30) / 0.86))
    for height in (0.62, 0.645):
        picture.box(-half, height, half, height + 0.008, rgb(LIME))
    return picture


def bottle():
    model = Model("Coldbrook", 0.14)
    picture = _bottle_picture()
    coat = Material("powder coat", metallic=0.15, roughness=0.42, texture=picture)
    steel = Material("steel", 0xC7CDD5, metallic=1.0, roughness=0.25)
    cap = Material("cap", 0x2F363F, roughness=0.55)
    groove = Material("seal", 0xD98A1E, roughness=0.6)

    node = model.node("bottle")
    side = spline([(0.27, -0.74), (0.27, -0.5), (0.27, -0.1), (0.27, 0.34), (0.262, 0.40), (0.235, 0.46), (0.185, 0.54),
                   (0.155, 0.60), (0.148, 0.645)], 4)
    body = lathe(side, 64)
    body.uvs = [(u, picture.uv(0, point[1])[1]) for (u, _), point in zip(body.uvs, body.points)]
    node.add(body, coat)
    node.add(lathe([(0.0, -0.925), (0.17, -0.93)] + rounded([(0.19, -0.95), (0.265, -0.95), (0.27, -0.76)], 0.05, 5)
                   + [(0.27, -0.752)], 64), steel)
    node.add(lathe([(0.27, -0.752), (0.266, -0.75), (0.266, -0.742), (0.27, -0.74)], 64), groove)
    node.add(lathe([(0.148, 0.645), (0.14, 0.65), (0.14, 0.665)], 48), steel)
    node.add(_ribbed_cap(), cap)
    loop = [(x, y, 0) for x, y in path("M -0.125 -0.84 C -0.15 -1.10 0.15 -1.10 0.125 -0.84", 24)]
    node.add(sweep(rectangle(0.045, 0.09, 0.02, 3), loop), cap)
    return model


def _ribbed_cap():
    profile = disc_profile(0.158, 0.665, 0.89, 0.03, 4)

    def rib(x, y, z):
        grip = smoothstep(0.69, 0.72, y) * (1 - smoothstep(0.82, 0.85, y))
        factor = 1 - 0.03 * grip * (0.5 + 0.5 * math.cos(32 * math.atan2(x, z)))
        return (x * factor, y, z * factor)

    # Rows of points for the ribs to begin and end on.
    wall = [(0.158, 0.70 + 0.02 * k) for k in range(8)]
    mesh = lathe([p for p in profile if p[1] < 0.70] + wall + [p for p in profile if p[1] > 0.84], 96)
    return mesh.mapped(rib)


def _bottle_picture():
    half = math.pi * 0.27
    picture = Picture(512, 420, -half, -0.74, half, 0.66)
    low, high = rgb(0xF59A22), rgb(0xFFB640)
    picture.paint(lambda x, y: mix(low, high, smoothstep(-0.74, 0.5, y)))
    cream = rgb(0xFFF4DC)
    mountain = path("M -0.15 0.22 L 0.0 -0.04 L 0.06 0.06 L 0.10 0.0 L 0.19 0.22 Z")
    for middle in (-half, 0.0, half):
        picture.fill([(middle + x * 1.15, y * 1.15 + 0.05) for x, y in mountain], cream)
        picture.circle(middle - 0.115, 0.10, 0.04, cream)
    return picture


def gift_card():
    model = Model("Gift Card", 0.054)
    picture = _card_picture()
    printed = Material("print", roughness=0.3, texture=picture)
    plum = Material("plum", 0x7A2488, roughness=0.35)
    night = Material("night", 0x2E2163, roughness=0.35)
    stripe = Material("stripe", 0x14101F, roughness=0.5)
    satin = Material("satin", 0xC8F25A, roughness=0.4, two_sided=True)

    behind = model.node("envelope", (0, 0, -0.05))
    behind.add(_card(), night)
    model.animate(behind, "rotation", swing(_fanning, 5.0, 20))

    front = model.node("card")
    face, rest = _card().parted(lambda x, y, z: z > 0.0139)
    front.add(_leaning(face.with_uvs(lambda x, y, z: picture.uv(x, y))), printed)
    front.add(_leaning(rest), plum)
    front.add(_leaning(extrude(rectangle(1.6, 0.17, y=0.26), 0.004).moved(0, 0, -0.015)), stripe)
    front.add(_leaning(extrude(rectangle(0.13, 1.02, 0.01, 1, x=-0.435), 0.036, 0.008, 2)), satin)
    for part in _bow():
        front.add(_leaning(part.with_mirror().moved(-0.435, 0.16, 0.02)), satin, 70)
    return model


def _card():
    return extrude(rectangle(1.60, 1.0, 0.11, 6), 0.028, 0.008, 2)


def _leaning(mesh):
    return mesh.turned("z", 8)


def _fanning(share):
    """The second card leans out a little further and back."""
    return -9 - 1.25 * (1 - math.cos(2 * math.pi * share))


def _bow():
    """The right half: a loop, an end and half of the knot."""
    ribbon = rectangle(0.13, 0.012, 0.005, 1)
    loop = spline([(0.0, 0.0, 0.03), (0.12, 0.07, 0.12), (0.26, 0.13, 0.13), (0.34, 0.12, 0.08), (0.30, 0.09, 0.035),
                   (0.16, 0.04, 0.02), (0.0, 0.0, 0.02)], 5)
    yield sweep(ribbon, loop, up=(0, 0, 1), scale=lambda share: (0.5 + 0.9 * math.sin(math.pi * share), 1.0))
    end = spline([(0.0, 0.0, 0.03), (0.10, -0.12, 0.05), (0.19, -0.29, 0.02)], 6)
    yield sweep(ribbon, end, up=(0, 0, 1), scale=lambda share: (0.6 + 0.4 * share, 1.0))
    yield lathe([(0.058 * math.cos(a), 0.058 * math.sin(a)) for a in (math.pi * (k / 10 - 0.5) for k in range(11))],
                20).moved(0, 0, 0.045)


def _card_picture():
    picture = Picture(512, 320, -0.80, -0.50, 0.80, 0.50)
    pink = gradient([(0, rgb(0xFF6FA5)), (1, rgb(0x9C2D9A))])
    picture.paint(lambda x, y: pink((x / 1.6 - y + 1) / 2))
    picture.fill(path("M -0.9 0.30 C -0.4 0.02 0.2 0.56 0.9 0.10 L 0.9 0.7 L -0.9 0.7 Z", 16), rgb(0x5A2CC0), 0.55)
    _berry(picture, 0.56, -0.28, 0.17, 0x5A2CC0)
    _berry(picture, 0.36, -0.36, 0.13, 0x4524A8)
    picture.fill(path("M 0.16 -0.34 L -0.06 0.02 L 0.08 0.02 L 0.01 0.28 L 0.24 -0.08 L 0.11 -0.08 Z"), (1, 1, 1), 0.95)
    return picture
