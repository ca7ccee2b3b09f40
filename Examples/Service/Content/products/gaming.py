"""A racing wheel and a controller."""

import functools
import math

from modelling.curves import Outline, arc, circle, clamp, path, rectangle, rounded, smoothstep
from modelling.implicit import isosurface
from modelling.model import Material, Model, swing
from modelling.picture import Picture, mix, rgb
from modelling.shapes import box, disc, disc_profile, extrude, facing, fluted, lathe, sweep, torus, tube

AMBER, MINT, CORAL, SKY = 0xFFC857, 0x5BE0B0, 0xFF7058, 0x6DB9FF


def racing_wheel():
    model = Model("Apex R1", 0.17)
    leather = Material("leather", 0x1E2027, roughness=0.6)
    suede = Material("suede", 0x33363F, roughness=0.95)
    stitches = Material("stitches", CORAL, roughness=0.6)
    amber = Material("amber", 0xF2B23E, roughness=0.45)
    carbon = Material("carbon", 0x2A2D36, metallic=0.4, roughness=0.35)
    steel = Material("anodised", 0x9AA0AC, metallic=1.0, roughness=0.32)
    black = Material("housing", 0x14161B, roughness=0.5)
    screen = _screen_picture()
    glass = Material("screen", 0x000000, roughness=0.1, emissive=0xFFFFFF, emissive_texture=screen)

    motor = model.node("motor", (0, 0, -0.42))
    motor.add(facing(lathe(rounded([(0.0, -0.30), (0.33, -0.30), (0.33, 0.14), (0.22, 0.16), (0.22, 0.2), (0.0, 0.2)],
                                    0.03, 3), 40)), black)
    for z in (-0.20, -0.12, -0.04, 0.04):
        motor.add(torus(0.325, 0.018, 40, 8).turned("x", 90).moved(0, 0, z), carbon)

    wheel = model.node("wheel")
    wheel.add(facing(disc(0.15, -0.26, -0.02, 0.02)), steel)
    wheel.add(sweep(_oval(0.088, 0.098), _rim(), closed=True), leather)
    for start in (-36, 144):
        grip = [(x, y, 0) for x, y in arc(0, 0, 0.80, start, start + 72, 22)]
        wheel.add(sweep(_oval(0.105, 0.118), grip, cap="round"), suede)
        seam = [(x, y, 0.06) for x, y in arc(0, 0, 0.708, start + 2, start + 70, 22)]
        wheel.add(tube(seam, 0.012, 6), stitches)
    wheel.add(sweep(_oval(0.096, 0.106), [(x, y, 0) for x, y in arc(0, 0, 0.80, 84, 96, 6)]), amber)

    for part, material in _hub(screen, (carbon, steel, black, amber, glass)):
        wheel.add(part, material)
    for x, y, color in ((-0.33, 0.16, SKY), (-0.33, 0.0, AMBER), (0.33, 0.16, MINT), (0.33, 0.0, CORAL)):
        wheel.add(_button(0.046, 0.03).moved(x, y, 0.115), _plastic(color))
    model.animate(wheel, "rotation", swing(_steering, 6.0, 36))
    return model


def _oval(a, b, sides=14):
    return [(a * x, b * y) for x, y in circle(1, sides)]


def _rim():
    ring = arc(0, 0, 0.80, -46, 226, 44)
    left, right = ring[-1], ring[0]
    corner = [(-0.50, -0.63), (0.50, -0.63)]
    bottom = rounded([left, *corner, right], 0.13, 5)
    return [(x, y, 0) for x, y in ring + bottom[1:-1]]


def _button(radius, height):
    return facing(lathe(disc_profile(radius, -0.02, height, radius * 0.35, 4), 22))


@functools.cache
def _plastic(color):
    return Material(f"button {color:06x}", color, roughness=0.3)


def _hub(screen, materials):
    carbon, steel, black, amber, glass = materials
    yield extrude(rectangle(0.84, 0.58, 0.16, 7), 0.20, 0.035, 3).moved(0, 0.02, 0.02), carbon
    yield extrude(rectangle(0.52, 0.28, 0.045, 4), 0.03, 0.008, 2).moved(0, 0.11, 0.12), black
    face = extrude(rectangle(0.47, 0.23, 0.03, 3), 0.01).with_uvs(lambda x, y, z: screen.uv(x, y))
    yield face.moved(0, 0.11, 0.133), glass
    spoke = path("M 0.28 -0.14 C 0.48 -0.14 0.62 -0.12 0.76 -0.14 L 0.78 0.08 C 0.62 0.08 0.48 0.14 0.28 0.20 Z")
    yield extrude(spoke, 0.07, 0.018, 2).with_mirror(), steel
    yield extrude(path("M -0.16 0.16 L 0.16 0.16 L 0.27 0.66 L -0.27 0.66 Z"), 0.07, 0.018, 2), steel
    yield extrude(rectangle(0.13, 0.22, 0.064, 6), 0.02, 0.006, 2).moved(0, -0.45, 0.034), black
    paddle = path("M 0.26 -0.30 L 0.50 -0.42 C 0.58 -0.44 0.62 -0.34 0.60 -0.26 L 0.54 -0.02 L 0.26 0.02 Z", 5)
    yield extrude(paddle, 0.03, 0.01, 2).turned("y", 8).moved(0, 0, -0.12).with_mirror(), amber
    for x in (-0.17, 0.0, 0.17):
        knob = fluted(lathe(disc_profile(0.05, 0.0, 0.07, 0.012, 2), 28), 14, 0.05)
        yield facing(knob).moved(x, -0.14, 0.12), steel
        yield facing(disc(0.062, 0.0, 0.012, 0.004, 24)).moved(x, -0.14, 0.118), black
        yield box(0.012, 0.036, 0.008, 0.003, 1).moved(x + 0.004, -0.122, 0.191), _plastic(0xFFFFFF)


def _screen_picture():
    picture = Picture(256, 128, -0.235, -0.115, 0.235, 0.115, rgb(0x05070A))
    for bar in range(9):
        color = rgb(MINT if bar < 5 else AMBER if bar < 7 else CORAL)
        x = -0.205 + bar * 0.047
        picture.box(x, -0.085, x + 0.03, -0.045 + bar * 0.013, color)
    picture.stroke([(-0.195, 0.07), (-0.09, 0.07)], 0.028, (0.8, 0.84, 0.9))
    picture.stroke([(0.05, 0.07), (0.19, 0.07)], 0.010, rgb(SKY))
    return picture


def _steering(share):
    turn = 2 * math.pi * share
    return 26 * math.sin(turn) - 9 * math.sin(2 * turn)


class Shell:
    """The controller's body: a cushion on its outline, thicker in the grips, which bend backwards."""

    def __init__(self):
        half = ("M 0 -0.42 C 0.24 -0.42 0.36 -0.50 0.54 -0.44 C 0.82 -0.36 0.96 0.14 0.98 0.44 "
                "C 0.99 0.70 0.74 0.74 0.62 0.56 C 0.54 0.43 0.48 0.33 0.32 0.33 L 0 0.33")
        right = path(half, 12)
        self.outline = Outline(right + [(-x, y) for x, y in reversed(right[1:-1])])

    def _bend(self, y):
        return -0.34 * clamp(0.05 - y, 0, 1) ** 1.6

    def _thickness(self, x, y):
        return 0.155 + 0.055 * smoothstep(0.42, 0.75, abs(x)) * smoothstep(0.2, -0.3, y)

    def value(self, x, y, z):
        depth = clamp(1 + self.outline.distance(x, y) / 0.20, 0, 3)
        thick = self._thickness(x, y)
        return math.hypot(thick * depth, z - self._bend(y)) - thick

    def front(self, x, y):
        """How far the front reaches there."""
        depth = clamp(1 + self.outline.distance(x, y) / 0.20)
        return self._bend(y) + self._thickness(x, y) * math.sqrt(1 - depth * depth)


def controller():
    model = Model("Grandstand", 0.08)
    picture = _controller_picture()
    shell_material = Material("shell", roughness=0.42, texture=picture)
    dark = Material("dark", 0x2A2735, roughness=0.55)
    rubber = Material("rubber", 0x1B1922, roughness=0.85)
    ring = Material("ring", 0xB9AECB, roughness=0.4)
    steel = Material("stem", 0x8D8A99, metallic=1.0, roughness=0.35)
    light = Material("light", MINT, emissive=MINT)

    shell = Shell()
    node = model.node("controller")
    body = isosurface(shell.value, (-1.08, -0.74, -0.62), (1.08, 0.58, 0.26), 0.043)
    node.add(body.with_uvs(lambda x, y, z: picture.uv(x, y)), shell_material, 75)

    trigger = path("M 0.30 -0.42 C 0.34 -0.58 0.50 -0.60 0.62 -0.52 C 0.70 -0.46 0.72 -0.38 0.70 -0.30 "
                   "L 0.30 -0.34 Z", 5)
    node.add(extrude(trigger, 0.16, 0.04, 3).turned("x", -12).moved(0, -0.035, 0.01).with_mirror(), dark)
    node.add(extrude(trigger, 0.12, 0.04, 3).moved(0, -0.06, -0.16).with_mirror(), rubber)
    node.add(extrude(rectangle(0.38, 0.25, 0.05, 5), 0.03, 0.012, 2).moved(0, 0.215, 0.157), dark)
    node.add(box(0.30, 0.018, 0.012, 0.005, 1).moved(0, 0.105, 0.172), light)
    node.add(_button(0.042, 0.012).moved(0, -0.02, 0.155), _plastic(CORAL))
    cross = [(-0.13, -0.045), (-0.045, -0.045), (-0.045, -0.13), (0.045, -0.13), (0.045, -0.045), (0.13, -0.045),
             (0.13, 0.045), (0.045, 0.045), (0.045, 0.13), (-0.045, 0.13), (-0.045, 0.045), (-0.13, 0.045)]
    node.add(extrude(rounded(cross, 0.022, 3, closed=True), 0.07, 0.012, 2).moved(-0.47, 0.18, 0.15), dark)
    for x, y, color in ((0.47, 0.30, AMBER), (0.47, 0.06, MINT), (0.35, 0.18, SKY), (0.59, 0.18, CORAL)):
        node.add(_button(0.054, 0.045).moved(x, y, shell.front(x, y) - 0.008), _plastic(color))
    for x in (-0.27, 0.27):
        for part, material in _stick((ring, rubber, steel)):
            node.add(part.moved(x, -0.13, shell.front(x, -0.13)), material)
    back = extrude(rectangle(0.09, 0.26, 0.04, 5), 0.05, 0.018, 3).turned("z", 14)
    node.add(back.moved(0.40, -0.02, -0.185).with_mirror(), dark)
    for x in (-0.11, 0.11):
        node.add(_button(0.018, 0.01).moved(x, -0.16, shell.front(x, -0.16)), dark)
    return model


def _stick(materials):
    ring, rubber, steel = materials
    yield facing(lathe([(0.158, -0.02), (0.158, 0.006), (0.15, 0.014), (0.14, 0.008), (0.13, -0.01), (0.0, -0.012)],
                        36)), ring
    yield facing(lathe([(0.05, -0.02), (0.045, 0.09)], 20)), steel
    cap = rounded([(0.045, 0.075), (0.115, 0.085), (0.12, 0.115), (0.10, 0.128), (0.0, 0.108)], 0.012, 3)
    yield facing(lathe(cap, 36)), rubber
    yield facing(torus(0.085, 0.007, 32, 6)).moved(0, 0, 0.124), rubber


def _controller_picture():
    picture = Picture(512, 328, -1.03, -0.74, 1.03, 0.58, rgb(0xF5F1FA))
    dark, coral = rgb(0x2C2938), rgb(CORAL)
    grip = path("M 1.1 0.02 C 0.86 0.10 0.70 0.30 0.60 0.80 L 1.1 0.9 Z", 16)
    line = path("M 1.1 0.02 C 0.86 0.10 0.70 0.30 0.60 0.80", 16)
    for side in (1, -1):
        picture.fill([(side * x, y) for x, y in grip], lambda x, y: mix(dark, (0.05, 0.05, 0.07), clamp(-y - 0.3)))
        picture.stroke([(side * x, y) for x, y in line], 0.03, coral)
    return picture
