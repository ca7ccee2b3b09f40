"""Models of nodes, materials, skins and animations, and how they become binary glTF 2.0 files."""

import json
import math
import struct

from .curves import cross, sub, times, unit
from .mesh import Mesh
from .picture import rgb

FLOAT, UNSIGNED_SHORT, UNSIGNED_BYTE = 5126, 5123, 5121
COMPONENTS = {"SCALAR": 1, "VEC2": 2, "VEC3": 3, "VEC4": 4, "MAT4": 16}
LETTERS = {FLOAT: "f", UNSIGNED_SHORT: "H", UNSIGNED_BYTE: "B"}
ARRAY_BUFFER, ELEMENT_ARRAY_BUFFER = 34962, 34963
LINEAR, LINEAR_MIPMAP_LINEAR, CLAMP_TO_EDGE = 9729, 9987, 33071


class Material:
    """Colours are 0xRRGGBB as on a screen. An `alpha` below 1 lets light through."""

    def __init__(self, name, color=0xFFFFFF, metallic=0.0, roughness=0.5, alpha=1.0, emissive=0x000000, texture=None,
                 emissive_texture=None, two_sided=False):
        self.name, self.color, self.metallic, self.roughness, self.alpha = name, color, metallic, roughness, alpha
        self.emissive, self.texture, self.emissive_texture = emissive, texture, emissive_texture
        self.two_sided = two_sided


class Node:
    """`bulge`, if any, makes the point where a point moves to at weight 1 of a morph target."""

    def __init__(self, name, translation=(0.0, 0.0, 0.0)):
        self.name, self.translation = name, translation
        self.children, self.parts = [], []
        self.skin = None
        self.bulge = None

    def add(self, mesh, material, crease=40.0):
        """Meshes of one material and crease become one primitive."""
        for part in self.parts:
            if part[1] is material and part[2] == crease:
                part[0] = part[0] + mesh
                return self
        self.parts.append([mesh, material, crease])
        return self

    def child(self, name, translation=(0.0, 0.0, 0.0)):
        self.children.append(Node(name, translation))
        return self.children[-1]


class Model:
    """`scale` is metres per unit of the nodes, which are put together around the origin."""

    def __init__(self, name, scale):
        self.name, self.scale = name, scale
        self.nodes = []
        self.animations = []

    def node(self, name, translation=(0.0, 0.0, 0.0)):
        self.nodes.append(Node(name, translation))
        return self.nodes[-1]

    def animate(self, node, property, keys):
        """`keys` are (seconds, value) from 0 on; `property` is "rotation", "translation" or "weights"."""
        self.animations.append((node, property, keys))

    def glb(self):
        return Writer(self).file()


class Skin:
    """`weights` makes up to four (number of the joint, weight) of a point, weights adding up to 1."""

    def __init__(self, joints, weights):
        self.joints, self.weights = joints, weights


def swing(angle, seconds, steps):
    """Keys of a rotation about z; `angle` makes degrees of the share of the time."""
    halves = [math.radians(angle(step / steps)) / 2 for step in range(steps + 1)]
    return [(seconds * step / steps, (0.0, 0.0, math.sin(half), math.cos(half))) for step, half in enumerate(halves)]


def _single(value):
    """The nearest number of 32 bits, so that the bounds are those of the data."""
    return struct.unpack("<f", struct.pack("<f", value))[0] + 0.0


def _linear(channel):
    return channel / 12.92 if channel <= 0.04045 else ((channel + 0.055) / 1.055) ** 2.4


def _factors(code):
    return [round(_linear(channel), 5) for channel in rgb(code)]


class Writer:
    def __init__(self, model):
        self.model = model
        self.binary = bytearray()
        self.json = {"asset": {"version": "2.0", "generator": "Flarebox sample content"}, "scene": 0}
        self.materials, self.textures, self.numbers = {}, {}, {}

    def file(self):
        model = self.model
        low, high = self._bounds()
        self.middle = times([a + b for a, b in zip(low, high)], 0.5)
        for node in model.nodes:
            self._number(node)
        for node in model.nodes:
            self._write_node(node, top=True)
        self.json["scenes"] = [{"name": model.name, "nodes": [self.numbers[node] for node in model.nodes]}]
        self._write_animations()
        self.json["buffers"] = [{"byteLength": len(self.binary)}]
        text = json.dumps(self.json, separators=(",", ":")).encode()
        text += b" " * (-len(text) % 4)
        total = 12 + 8 + len(text) + 8 + len(self.binary)
        return (struct.pack("<4sII", b"glTF", 2, total) + struct.pack("<I4s", len(text), b"JSON") + text
                + struct.pack("<I4s", len(self.binary), b"BIN\0") + bytes(self.binary))

    def _bounds(self):
        points = []

        def collect(node, offset):
            place = (0.0, 0.0, 0.0) if node.skin else tuple(a + b for a, b in zip(offset, node.translation))
            for mesh, _, _ in node.parts:
                for bound in mesh.bounds():
                    points.append(tuple(a + b for a, b in zip(bound, place)))
            for child in node.children:
                collect(child, place)

        for node in self.model.nodes:
            collect(node, (0.0, 0.0, 0.0))
        return Mesh(points).bounds()

    def _number(self, node):
        self.numbers[node] = len(self.numbers)
        self.json.setdefault("nodes", []).append({"name": node.name})
        for child in node.children:
            self._number(child)

    def _write_node(self, node, top=False):
        entry = self.json["nodes"][self.numbers[node]]
        translation = sub(node.translation, self.middle) if top else node.translation
        if not node.skin and any(translation):
            entry["translation"] = [_single(value * self.model.scale) for value in translation]
        if node.parts:
            entry["mesh"] = self._mesh(node)
        if node.skin:
            entry["skin"] = self._skin(node.skin)
        if node.children:
            entry["children"] = [self.numbers[child] for child in node.children]
        for child in node.children:
            self._write_node(child)

    def _mesh(self, node):
        mesh = {"name": node.name, "primitives": [self._primitive(node, *part) for part in node.parts]}
        if node.bulge:
            mesh["weights"] = [0]
        return self._append("meshes", mesh)

    def _primitive(self, node, mesh, material, crease):
        points, normals, uvs, indices = mesh.shaded(crease)
        if not indices:
            raise ValueError(f"{node.name}: nothing left of a part of {material.name}")
        if len(points) > 65535:
            raise ValueError(f"{node.name}: more points than 16 bits can number")
        attributes = {"POSITION": self._accessor("VEC3", FLOAT, [times(p, self.model.scale) for p in points],
                                                 ARRAY_BUFFER, bounded=True),
                      "NORMAL": self._accessor("VEC3", FLOAT, normals, ARRAY_BUFFER)}
        if material.texture or material.emissive_texture:
            attributes["TEXCOORD_0"] = self._accessor("VEC2", FLOAT, uvs, ARRAY_BUFFER)
        if node.skin:
            self._add_weights(attributes, node.skin, points)
        primitive = {"attributes": attributes, "indices": self._accessor("SCALAR", UNSIGNED_SHORT, indices,
                                                                         ELEMENT_ARRAY_BUFFER),
                     "material": self._material(material)}
        if node.bulge:
            primitive["targets"] = [self._target(node.bulge, points, normals, indices)]
        return primitive

    def _add_weights(self, attributes, skin, points):
        joints, weights = [], []
        for point in points:
            pairs = [pair for pair in skin.weights(*point) if pair[1] > 0]
            pairs += [(0, 0.0)] * (4 - len(pairs))
            joints.append([joint for joint, _ in pairs])
            weights.append([weight for _, weight in pairs])
        attributes["JOINTS_0"] = self._accessor("VEC4", UNSIGNED_BYTE, joints, ARRAY_BUFFER)
        attributes["WEIGHTS_0"] = self._accessor("VEC4", FLOAT, weights, ARRAY_BUFFER)

    def _target(self, bulge, points, normals, indices):
        moved = [bulge(*point) for point in points]
        faces = [tuple(indices[i : i + 3]) for i in range(0, len(indices), 3)]
        after = _normal_changes(Mesh(moved, [], faces), Mesh(points, [], faces), normals)
        return {"POSITION": self._accessor("VEC3", FLOAT, [times(sub(m, p), self.model.scale)
                                                           for m, p in zip(moved, points)], ARRAY_BUFFER, bounded=True),
                "NORMAL": self._accessor("VEC3", FLOAT, after, ARRAY_BUFFER)}

    def _skin(self, skin):
        places = {}

        def place(node, offset):
            places[node] = tuple(a + b for a, b in zip(offset, node.translation))
            for child in node.children:
                place(child, places[node])

        for node in self.model.nodes:
            place(node, (0.0, 0.0, 0.0))
        matrices = []
        for joint in skin.joints:
            x, y, z = times(places[joint], -self.model.scale)
            matrices.append([1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1])
        return self._append("skins", {"joints": [self.numbers[joint] for joint in skin.joints],
                                      "inverseBindMatrices": self._accessor("MAT4", FLOAT, matrices)})

    def _write_animations(self):
        if not self.model.animations:
            return
        channels, samplers = [], []
        for node, property, keys in self.model.animations:
            kind = {"rotation": "VEC4", "translation": "VEC3", "weights": "SCALAR"}[property]
            values = [times(value, self.model.scale) if property == "translation" else value for _, value in keys]
            samplers.append({"input": self._accessor("SCALAR", FLOAT, [time for time, _ in keys], bounded=True),
                             "output": self._accessor(kind, FLOAT, values), "interpolation": "LINEAR"})
            channels.append({"sampler": len(samplers) - 1, "target": {"node": self.numbers[node], "path": property}})
        self.json["animations"] = [{"name": self.model.name, "channels": channels, "samplers": samplers}]

    def _material(self, material):
        if material in self.materials:
            return self.materials[material]
        surface = {"metallicFactor": material.metallic, "roughnessFactor": material.roughness}
        if material.color != 0xFFFFFF or material.alpha < 1:
            surface["baseColorFactor"] = _factors(material.color) + [material.alpha]
        if material.texture:
            surface["baseColorTexture"] = {"index": self._texture(material.texture)}
        entry = {"name": material.name, "pbrMetallicRoughness": surface}
        if material.emissive:
            entry["emissiveFactor"] = _factors(material.emissive)
        if material.emissive_texture:
            entry["emissiveTexture"] = {"index": self._texture(material.emissive_texture)}
        if material.alpha < 1:
            entry["alphaMode"] = "BLEND"
        if material.two_sided:
            entry["doubleSided"] = True
        self.materials[material] = self._append("materials", entry)
        return self.materials[material]

    def _texture(self, picture):
        if picture not in self.textures:
            self.json["samplers"] = [{"magFilter": LINEAR, "minFilter": LINEAR_MIPMAP_LINEAR, "wrapS": CLAMP_TO_EDGE,
                                      "wrapT": CLAMP_TO_EDGE}]
            image = self._append("images", {"mimeType": "image/png", "bufferView": self._view(picture.png())})
            self.textures[picture] = self._append("textures", {"sampler": 0, "source": image})
        return self.textures[picture]

    def _accessor(self, kind, component, rows, target=None, bounded=False):
        rows = [[row] if isinstance(row, (int, float)) else list(row) for row in rows]
        if component == FLOAT:
            rows = [[_single(value) for value in row] for row in rows]
        data = struct.pack(f"<{len(rows) * COMPONENTS[kind]}{LETTERS[component]}", *(v for row in rows for v in row))
        accessor = {"bufferView": self._view(data, target), "componentType": component, "count": len(rows),
                    "type": kind}
        if bounded:
            accessor["min"] = [min(column) for column in zip(*rows)]
            accessor["max"] = [max(column) for column in zip(*rows)]
        return self._append("accessors", accessor)

    def _view(self, data, target=None):
        view = {"buffer": 0, "byteOffset": len(self.binary), "byteLength": len(data)}
        if target:
            view["target"] = target
        self.binary += data + bytes(-len(data) % 4)
        return self._append("bufferViews", view)

    def _append(self, array, entry):
        entries = self.json.setdefault(array, [])
        entries.append(entry)
        return len(entries) - 1


def _normal_changes(after, before, normals):
    """How much each normal changes when the points move, by the change of the plain mean of the faces around."""

    def means(mesh):
        sums = [(0.0, 0.0, 0.0)] * len(mesh.points)
        for face in mesh.faces:
            a, b, c = (mesh.points[index] for index in face)
            normal = cross(sub(b, a), sub(c, a))
            for index in face:
                sums[index] = tuple(a + b for a, b in zip(sums[index], normal))
        return [unit(total) for total in sums]

    return [sub(unit(tuple(n + a - b for n, a, b in zip(normal, moved, rest))), normal)
            for normal, moved, rest in zip(normals, means(after), means(before))]
