"""A mug and a desk lamp."""

import math

from modelling.curves import length, path, rectangle, rounded, smoothstep, spline, sub
from modelling.model import Material, Model, Skin, swing
from modelling.picture import Picture, darker, gradient, lighter, rgb
from modelling.shapes import ball, disc_profile, lathe, sweep, tube

STONEWARE, GLAZE, BRASS = 0xF1E6D6, 0x2C6A78, 0xD9AE5F
JOINTS = (0, 13, 27, 40)  # of the lamp, by the points of its arm


def mug():
    model = Model("Slow Morning", 0.075)
    picture = _mug_picture()
    outside = Material("glazed stoneware", roughness=0.32, texture=picture)
    clay = Material("stoneware", STONEWARE, roughness=0.4)
    inside = Material("glaze", 0x235765, roughness=0.18)
    coffee = Material("coffee", 0x4A2512, roughness=0.06)
    foam = Material("crema", 0xA8693C, roughness=0.4)

    node = model.node("mug")
    wall = spline([(0.36, -0.715), (0.42, -0.66), (0.455, -0.52), (0.485, -0.25), (0.497, 0.05), (0.50, 0.44)], 5)
    foot = [(0.0, -0.725), (0.30, -0.725), (0.31, -0.74), (0.335, -0.74)]
    node.add(_around(lathe(foot + wall, 64), picture), outside)
    lip = [(0.50, 0.44), (0.502, 0.46), (0.495, 0.478), (0.478, 0.485), (0.461, 0.478), (0.453, 0.46)]
    well = [(0.45, 0.40), (0.447, -0.2), (0.42, -0.5), (0.32, -0.62), (0.0, -0.64)]
    node.add(lathe(lip + well, 64), inside)
    node.add(lathe([(0.449, 0.315), (0.445, 0.303), (0.40, 0.30)], 56), foam)
    node.add(lathe([(0.40, 0.30), (0.0, 0.30)], 56), coffee)

    handle = [(x + 0.05, y, 0) for x, y in path("M 0.40 -0.24 C 0.94 -0.38 1.00 0.42 0.36 0.40", 28)]

    def swell(share):
        return 1 + 0.35 * abs(2 * share - 1) ** 3

    node.add(sweep(rectangle(0.105, 0.15, 0.05, 4), handle, scale=swell), clay)
    return model


def _around(mesh, picture):
    """Texture rows by height instead of by the way along the profile."""
    mesh.uvs = [(u, picture.uv(0, point[1])[1]) for (u, _), point in zip(mesh.uvs, mesh.points)]
    return mesh


def _mug_picture():
    picture = Picture(512, 256, 0, -0.75, 1, 0.5)
    clay, glaze = rgb(STONEWARE), rgb(GLAZE)
    picture.paint(lambda x, y: darker(clay, 0.10 * smoothstep(-0.45, -0.75, y)))
    for index in range(170):
        x, y = (index * 41 % 97) / 97 + index * 0.0007, -0.72 + (index * 29 % 83) / 83 * 0.75
        picture.circle(x % 1, y, 0.0011 + index % 3 * 0.0009, rgb(0x8A6A4C), 0.6, 0.0034 + index % 3 * 0.0026)
    tones = gradient([(0, lighter(glaze, 0.26)), (0.25, glaze), (1, lighter(glaze, 0.06))])
    drips = [(0.02, 0.10), (0.11, 0.30), (0.19, 0.08), (0.30, 0.22), (0.385, 0.07), (0.48, 0.36), (0.565, 0.13),
             (0.645, 0.27), (0.73, 0.08), (0.81, 0.19), (0.91, 0.38)]

    def edge(u):
        drop = 0.0
        for middle, depth in drips:
            away = abs((u - middle + 0.5) % 1 - 0.5) / 0.034
            if away < 1:
                drop = max(drop, depth - 0.085 * (1 - math.sqrt(1 - away * away)) - 0.06 * away**4)
        return 0.06 - drop

    line = [(k / 256, edge(k / 256)) for k in range(257)]
    picture.fill([(x, y - 0.022) for x, y in line] + [(1, 0.6), (0, 0.6)], darker(clay, 0.30), 0.5)
    picture.fill(line + [(1, 0.6), (0, 0.6)], lambda x, y: tones((y - edge(x)) / 0.55))
    return picture


def lamp():
    model = Model("Arc", 0.24)
    brass = Material("brass", BRASS, metallic=1.0, roughness=0.28)
    shade = Material("shade", 0xF4694A, roughness=0.42)
    lining = Material("lining", 0xFFF3DC, roughness=0.6, emissive=0xB88A4A)
    bulb = Material("bulb", 0xFFF4D8, emissive=0xFFEBC0)
    cable = Material("felt", 0x2A2018, roughness=1.0)

    curve = path("M -0.22 0.80 C -1.00 0.20 -0.66 -1.06 0.36 -0.80", 40)
    at = [curve[joint] for joint in JOINTS]
    steps = [(*sub(b, a), 0.0) for a, b in zip(at, at[1:])]
    base = model.node("base", (*at[0], 0.0))
    knee = base.child("knee", steps[0])
    wrist = knee.child("wrist", steps[1])
    head = wrist.child("head", steps[2])

    body = model.node("lamp")
    body.add(lathe(disc_profile(0.40, -0.055, 0.025, 0.03, 4), 64).moved(-0.22, -0.83, 0), brass)
    body.add(lathe([(0.0, -0.893), (0.37, -0.893), (0.375, -0.885)], 48).moved(-0.22, 0, 0), cable)
    body.add(lathe([(0.11, -0.81), (0.06, -0.785), (0.034, -0.74), (0.032, -0.70)], 32).moved(-0.22, 0, 0), brass)
    body.add(tube([(x, y, 0) for x, y in curve], 0.026, 14), brass)
    for part, material in ((_neck(), brass), (_dome(), shade), (_lining(), lining), (_diffuser(), bulb)):
        body.add(part.turned("z", -14).moved(0.30, 0.50, 0), material)
    body.skin = Skin([base, knee, wrist, head], _bending(curve))

    for joint, degrees in ((knee, 3.0), (wrist, -4.0), (head, 9.0)):
        model.animate(joint, "rotation", _nodding(degrees))
    return model


def _neck():
    return (lathe(rounded([(0.0, 0.225), (0.06, 0.225), (0.055, 0.34), (0.0, 0.34)], 0.012, 3), 24)
            + ball(0.045, 16, 10).moved(0.02, 0.315, 0))


def _dome():
    profile = spline([(0.44, -0.20), (0.428, -0.10), (0.37, 0.06), (0.25, 0.185), (0.12, 0.243), (0.0, 0.255)], 6)
    return lathe([(0.425, -0.205)] + profile, 56)


def _lining():
    profile = spline([(0.0, 0.225), (0.12, 0.215), (0.24, 0.16), (0.355, 0.04), (0.41, -0.10), (0.425, -0.205)], 5)
    return lathe(profile, 48)


def _diffuser():
    return lathe(spline([(0.0, -0.155), (0.15, -0.145), (0.27, -0.11), (0.36, -0.06)], 4), 40)


def _bending(curve):
    """Weights of the joints along the arm; what is not the arm goes whole with its end of it."""
    def weights(x, y, z):
        nearest = min(range(len(curve)), key=lambda k: length(sub(curve[k], (x, y))))
        if length((*sub(curve[nearest], (x, y)), z)) > 0.06 or y < -0.68:
            return [(0, 1.0)] if y < -0.6 else [(3, 1.0)]
        for joint in range(3):
            if nearest <= JOINTS[joint + 1]:
                share = smoothstep(JOINTS[joint] + 5, JOINTS[joint + 1], nearest)
                return [(joint, 1 - share), (joint + 1, share)]
        return [(3, 1.0)]

    return weights


def _nodding(degrees):
    return swing(lambda share: degrees * math.sin(2 * math.pi * share), 6.0, 24)
