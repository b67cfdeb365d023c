"""Meshes as (points, faces), and the texts of mesh files."""

import math
import struct

SQUARE = (
    [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)],
    [(0, 1, 2), (0, 2, 3)],
)


def grid(columns, rows):
    """columns x rows unit cells in the plane z = 0, numbered row by row."""
    points = [(x, y, 0) for y in range(rows + 1) for x in range(columns + 1)]
    faces = []
    for y in range(rows):
        for x in range(columns):
            a = y * (columns + 1) + x
            d = a + columns + 1
            faces += [(a, a + 1, d + 1), (a, d + 1, d)]
    return points, faces


def annulus(inner, outer, segments=12):
    """A flat ring; the outer circle's vertices come first."""
    turn = [2 * math.pi * k / segments for k in range(segments)]
    points = [(outer * math.cos(t), outer * math.sin(t), 0) for t in turn]
    points += [(inner * math.cos(t), inner * math.sin(t), 0) for t in turn]
    faces = []
    for k in range(segments):
        after = (k + 1) % segments
        faces += [(k, after, segments + k), (after, segments + after, segments + k)]
    return points, faces


def tetrahedron():
    points = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1)]
    return points, [(0, 2, 1), (0, 1, 3), (1, 2, 3), (0, 3, 2)]


def moved(mesh, by):
    return [tuple(c + d for c, d in zip(p, by)) for p in mesh[0]], mesh[1]


def joined(*meshes):
    points, faces = [], []
    for mesh in meshes:
        shift = len(points)
        points += mesh[0]
        faces += [tuple(v + shift for v in face) for face in mesh[1]]
    return points, faces


def obj(mesh):
    lines = ["v %r %r %r" % tuple(p) for p in mesh[0]]
    lines += ["f " + " ".join(str(v + 1) for v in face) for face in mesh[1]]
    return "\n".join(lines) + "\n"


def stl_text(mesh, name="shape"):
    lines = [f"solid {name}"]
    for face in mesh[1]:
        lines += ["facet normal 0 0 0", "  outer loop"]
        lines += ["    vertex %r %r %r" % tuple(mesh[0][v]) for v in face]
        lines += ["  endloop", "endfacet"]
    return "\n".join([*lines, f"endsolid {name}"]) + "\n"


def stl_binary(mesh, header=b"made by a test"):
    parts = [header.ljust(80, b" "), struct.pack("<I", len(mesh[1]))]
    for face in mesh[1]:
        parts.append(struct.pack("<3f", 0, 0, 1))
        parts += [struct.pack("<3f", *mesh[0][v]) for v in face]
        parts.append(b"\0\0")
    return b"".join(parts)


def ply_text(mesh):
    points, faces = mesh
    head = [
        "ply",
        "format ascii 1.0",
        f"element vertex {len(points)}",
        *(f"property double {axis}" for axis in "xyz"),
        f"element face {len(faces)}",
        "property list uchar int vertex_indices",
        "end_header",
    ]
    head += ["%r %r %r" % tuple(p) for p in points]
    head += [" ".join(map(str, (len(face), *face))) for face in faces]
    return "\n".join(head) + "\n"


def ply_binary(mesh, endian="little"):
    points, faces = mesh
    mark = "<" if endian == "little" else ">"
    head = ply_text((points, faces)).split("end_header\n")[0] + "end_header\n"
    body = b"".join(struct.pack(mark + "3d", *p) for p in points)
    body += b"".join(struct.pack(mark + "B%di" % len(f), len(f), *f) for f in faces)
    return head.replace("ascii", f"binary_{endian}_endian").encode() + body


def off(mesh):
    lines = ["OFF", f"{len(mesh[0])} {len(mesh[1])} 0"]
    lines += ["%r %r %r" % tuple(p) for p in mesh[0]]
    lines += [" ".join(map(str, (len(face), *face))) for face in mesh[1]]
    return "\n".join(lines) + "\n"
