"""Meshes of triangles, before they are split for shading."""

import math

from .curves import cross, dot, length, sub, unit

AXES = {"x": 0, "y": 1, "z": 2}


class Mesh:
    """Points with texture coordinates, u to the right and v downwards, and triangles that are counter-clockwise seen
    from outside. Operations return new meshes."""

    def __init__(self, points=(), uvs=(), faces=()):
        self.points = list(points)
        self.uvs = list(uvs) or [(0.0, 0.0)] * len(self.points)
        self.faces = list(faces)

    def __add__(self, other):
        base = len(self.points)
        shifted = [tuple(index + base for index in face) for face in other.faces]
        return Mesh(self.points + other.points, self.uvs + other.uvs, self.faces + shifted)

    def mapped(self, change):
        return Mesh([change(*point) for point in self.points], self.uvs, self.faces)

    def moved(self, x=0.0, y=0.0, z=0.0):
        return self.mapped(lambda a, b, c: (a + x, b + y, c + z))

    def scaled(self, x, y=None, z=None):
        y, z = (x if y is None else y), (x if z is None else z)
        result = self.mapped(lambda a, b, c: (a * x, b * y, c * z))
        return result if x * y * z > 0 else result.flipped()

    def turned(self, axis, degrees):
        """Right-handed about an axis through the origin."""
        i, j = [(1, 2), (2, 0), (0, 1)][AXES[axis]]
        c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))

        def turn(*point):
            result = list(point)
            result[i], result[j] = c * point[i] - s * point[j], s * point[i] + c * point[j]
            return tuple(result)

        return self.mapped(turn)

    def mirrored(self, axis="x"):
        factors = [-1 if AXES[axis] == k else 1 for k in range(3)]
        return self.scaled(*factors)

    def with_mirror(self, axis="x"):
        return self + self.mirrored(axis)

    def flipped(self):
        return Mesh(self.points, self.uvs, [(a, c, b) for a, b, c in self.faces])

    def with_uvs(self, projection):
        """`projection` makes (u, v) of a point."""
        return Mesh(self.points, [projection(*point) for point in self.points], self.faces)

    def parted(self, test):
        """Two meshes: the faces whose middle passes the test, and the rest."""
        chosen, rest = [], []
        for face in self.faces:
            middle = (sum(self.points[index][k] for index in face) / 3 for k in range(3))
            (chosen if test(*middle) else rest).append(face)
        return Mesh(self.points, self.uvs, chosen), Mesh(self.points, self.uvs, rest)

    def bounds(self):
        return [min(p[k] for p in self.points) for k in range(3)], [max(p[k] for p in self.points) for k in range(3)]

    def shaded(self, crease=40.0):
        """The mesh for a renderer: points, normals, uvs and indices. Faces that meet at less than `crease` degrees
        share a normal along their edge."""
        spots = {}
        spot_of = [spots.setdefault(tuple(round(x, 6) for x in point), len(spots)) for point in self.points]
        faces = [face for face in self.faces if len({spot_of[index] for index in face}) == 3]
        face_normals = []
        around = [[] for _ in spots]
        for face in faces:
            a, b, c = (self.points[index] for index in face)
            normal = unit(cross(sub(b, a), sub(c, a)))
            for index, corner, first, second in zip(face, (a, b, c), (b, c, a), (c, a, b)):
                cosine = dot(unit(sub(first, corner)), unit(sub(second, corner)))
                around[spot_of[index]].append((normal, math.acos(max(-1.0, min(1.0, cosine)))))
            face_normals.append(normal)

        limit = math.cos(math.radians(crease))
        numbers = {}
        points, normals, uvs, indices = [], [], [], []
        for face, own in zip(faces, face_normals):
            for index in face:
                total = (0.0, 0.0, 0.0)
                for normal, weight in around[spot_of[index]]:
                    if dot(normal, own) >= limit:
                        total = tuple(t + n * weight for t, n in zip(total, normal))
                normal = unit(total) if length(total) > 1e-9 else own
                key = (spot_of[index], tuple(round(x, 2) for x in normal), self.uvs[index])
                if key not in numbers:
                    numbers[key] = len(points)
                    points.append(self.points[index])
                    normals.append(normal)
                    uvs.append(self.uvs[index])
                indices.append(numbers[key])
        return points, normals, uvs, indices


def joined(meshes):
    result = Mesh()
    for mesh in meshes:
        result = result + mesh
    return result
