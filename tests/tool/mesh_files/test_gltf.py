"""glTF files: as assimp writes them, and by hand in all the ways that the format has."""

import base64
import json
import struct
import subprocess

import meshio
import numpy
import pytest
import shapes

MESH = [(x / 4, y / 8, (x * y) / 16) for x, y, _ in shapes.grid(3, 2)[0]], shapes.grid(3, 2)[1]
FLOATS, SHORTS, BYTES, WORDS = 5126, 5123, 5121, 5125


class Gltf:
    """A file in the making."""

    def __init__(self):
        self.document = {"asset": {"version": "2.0"}, "accessors": [], "bufferViews": []}
        self.buffer = b""

    def view(self, data, **more):
        self.buffer += bytes(-len(self.buffer) % 4)
        entry = {"buffer": 0, "byteOffset": len(self.buffer), "byteLength": len(data), **more}
        self.document["bufferViews"].append(entry)
        self.buffer += data
        return len(self.document["bufferViews"]) - 1

    def accessor(self, data, component, kind, count, view=None, **more):
        entry = {"componentType": component, "type": kind, "count": count, **more}
        if data is not None:
            entry["bufferView"] = self.view(data, **(view or {}))
        self.document["accessors"].append(entry)
        return len(self.document["accessors"]) - 1

    def positions(self, points):
        data = b"".join(struct.pack("<3f", *p) for p in points)
        return self.accessor(data, FLOATS, "VEC3", len(points))

    def indices(self, numbers, component=WORDS):
        kind = {BYTES: "B", SHORTS: "H", WORDS: "I"}[component]
        return self.accessor(struct.pack(f"<{len(numbers)}{kind}", *numbers), component, "SCALAR", len(numbers))

    def primitive(self, **primitive):
        self.document["meshes"] = [{"primitives": [primitive]}]
        self.document.setdefault("nodes", [{"mesh": 0}])
        return self

    def text(self):
        uri = "data:application/octet-stream;base64," + base64.b64encode(self.buffer).decode()
        return json.dumps({**self.document, "buffers": [{"byteLength": len(self.buffer), "uri": uri}]})

    def binary(self):
        document = json.dumps({**self.document, "buffers": [{"byteLength": len(self.buffer)}]}).encode()
        document += b" " * (-len(document) % 4)
        buffer = self.buffer + bytes(-len(self.buffer) % 4)
        size = 28 + len(document) + len(buffer)
        return (struct.pack("<4sIIII", b"glTF", 2, size, len(document), 0x4E4F534A) + document
                + struct.pack("<II", len(buffer), 0x004E4942) + buffer)  # fmt: skip


def plain():
    file = Gltf()
    corners = [v for face in MESH[1] for v in face]
    return file.primitive(attributes={"POSITION": file.positions(MESH[0])}, indices=file.indices(corners))


def mesh_of(qelm, name, content):
    qelm.write(name, content)
    done = qelm.ok("weld", name, "--tolerance", "0", "-o", "out.ply")
    mesh = meshio.read(qelm.folder / "out.ply")
    return mesh.points, mesh.cells_dict["triangle"].tolist(), done.stderr


FACES = [list(face) for face in MESH[1]]


def test_text_and_binary_are_the_same(qelm):
    for name, content in (("a.gltf", plain().text()), ("a.glb", plain().binary())):
        points, faces, _ = mesh_of(qelm, name, content)
        assert points.tolist() == [list(p) for p in MESH[0]] and faces == FACES


def test_a_buffer_may_lie_beside_the_file(qelm):
    file = plain()
    (qelm.folder / "sub").mkdir()
    (qelm.folder / "sub" / "my buffer.bin").write_bytes(file.buffer)
    document = {**file.document, "buffers": [{"byteLength": len(file.buffer), "uri": "my%20buffer.bin"}]}
    qelm.write("sub/a.gltf", json.dumps(document))
    assert qelm.json("info", "sub/a.gltf")["vertices"] == 12
    for uri in ("../a.bin", "/etc/hostname", "http://a/b.bin", "C:a.bin", "sub/../../a.bin"):
        document["buffers"][0]["uri"] = uri
        qelm.write("sub/a.gltf", json.dumps(document))
        assert "is not a file in its folder or below" in qelm.fails(3, "info", "sub/a.gltf")
    document["buffers"][0]["uri"] = "other.bin"
    qelm.write("sub/a.gltf", json.dumps(document))
    assert "buffer 0: sub" in qelm.fails(3, "info", "sub/a.gltf")


@pytest.mark.parametrize("ending, kind", [("gltf", "gltf2"), ("glb", "glb2")])
def test_what_assimp_writes_is_read(qelm, ending, kind):
    qelm.write("m.obj", shapes.obj(MESH))
    done = subprocess.run(["assimp", "export", "m.obj", f"m.{ending}", f"-f{kind}"], cwd=qelm.folder, capture_output=True)
    assert done.returncode == 0, done.stdout
    summary = qelm.json("info", f"m.{ending}")
    assert (summary["vertices"], summary["triangles"]) == (12, 12)
    area = qelm.json("info", "m.obj")["area"]
    assert summary["area"] == pytest.approx(area, rel=1e-6)


@pytest.mark.parametrize("component", [BYTES, SHORTS, WORDS])
def test_strips_and_fans_of_any_indices_become_triangles(qelm, component):
    square = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (1, 1, 0)]
    for mode, order, expected in ((5, [0, 1, 2, 3], [[0, 1, 2], [1, 3, 2]]), (6, [0, 1, 3, 2], [[0, 1, 3], [0, 3, 2]])):
        file = Gltf()
        file.primitive(attributes={"POSITION": file.positions(square)}, indices=file.indices(order, component), mode=mode)
        _, faces, _ = mesh_of(qelm, "a.glb", file.binary())
        # The same triangles, each with the same side up, wherever they begin.
        turned = {tuple(f[k:] + f[:k]) for f in faces for k in range(3)}
        assert len(faces) == 2 and all(tuple(f) in turned for f in expected)


def test_vertices_that_are_repeated_become_one_and_a_note_says_so(qelm):
    file = Gltf()
    corners = [MESH[0][v] for face in MESH[1] for v in face]
    file.primitive(attributes={"POSITION": file.positions(corners)})
    points, faces, notes = mesh_of(qelm, "a.gltf", file.text())
    assert len(points) == 12 and len(faces) == 12
    assert "24 of 36 vertices lie exactly on another one and became one with it" in notes
    assert points[numpy.array(faces)].tolist() == numpy.array(corners).reshape(-1, 3, 3).tolist()


def test_nodes_place_meshes_and_a_mirror_keeps_their_outside(qelm):
    file = plain()
    file.document["nodes"] = [
        {"children": [1, 2], "translation": [10, 0, 0]},
        {"mesh": 0, "rotation": [0, 0, 0.7071067811865476, 0.7071067811865476], "scale": [2, 2, 2]},
        {"mesh": 0, "matrix": [-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 5, 1]},
        {"mesh": 0},
    ]
    file.document["scenes"] = [{"nodes": [3]}, {"nodes": [0]}]
    file.document["scene"] = 1
    points, faces, _ = mesh_of(qelm, "a.glb", file.binary())
    original = numpy.array(MESH[0])
    x, y, z = original.T
    expected = numpy.concatenate([numpy.array([10 - 2 * y, 2 * x, 2 * z]).T, numpy.array([10 - x, y, z + 5]).T])
    assert points == pytest.approx(expected, abs=1e-12)

    def up(part):
        a, b, c = points[numpy.array(part).T]
        return numpy.cross(b - a, c - a)[:, 2]

    assert (up(faces[:12]) > 0).all() and (up(faces[12:]) > 0).all()


def test_accessors_may_be_strided_sparse_quantised_and_named(qelm):
    file = Gltf()
    # Each place and, beside it, a number.
    data = b"".join(struct.pack("<3hh", 4 * k, k * k, 0, 1000 * k) for k in range(4))
    view = file.view(data, byteStride=8)
    positions = file.accessor(None, 5122, "VEC3", 4, bufferView=view)
    heat = file.accessor(None, 5122, "SCALAR", 4, bufferView=view, byteOffset=6, normalized=True)
    file.document["accessors"][positions]["sparse"] = {
        "count": 1,
        "indices": {"bufferView": file.view(b"\3"), "componentType": BYTES},
        "values": {"bufferView": file.view(struct.pack("<3h", 7, 7, 7))},
    }
    file.document["extensionsRequired"] = ["KHR_mesh_quantization", "KHR_materials_unlit"]
    file.primitive(attributes={"POSITION": positions, "_HEAT": heat}, indices=file.indices([0, 1, 3, 0, 3, 2]))
    qelm.write("a.glb", file.binary())
    qelm.ok("solve", "a.glb", "--fix", "property:_HEAT=*", "--fix", "vertex:0=0", "-o", "field.csv")
    assert qelm.points() == [(0, 0, 0), (4, 1, 0), (8, 4, 0), (7, 7, 7)]
    assert qelm.field() == [1000 * k / 32767 for k in range(4)]


def broken(change):
    file = plain()
    change(file.document)
    return file.binary()


def shown_often(times):
    points, faces = shapes.grid(30, 30)
    file = Gltf()
    corners = [v for face in faces for v in face]
    file.primitive(attributes={"POSITION": file.positions(points)}, indices=file.indices(corners))
    file.document["nodes"] = [{"mesh": 0}] * times
    return file.binary()


def set_in(*path):
    *keys, last, value = path

    def change(document):
        for key in keys:
            document = document[key]
        document[last] = value

    return change


@pytest.mark.parametrize(
    "content, says",
    [
        (broken(set_in("extensionsRequired", ["KHR_draco_mesh_compression"])), "the extension KHR_draco_mesh_compression, which is not read here; save it without compression"),
        (broken(set_in("asset", {"version": "1.0"})), "glTF 1.0 cannot be read"),
        (broken(set_in("accessors", 0, "count", 1 << 40)), "accessor 0: 1099511627776 elements are announced"),
        (broken(set_in("accessors", 0, {"componentType": 5126, "type": "VEC3", "count": 1 << 30})), "accessor 0: 1073741824 elements that are nowhere"),
        (broken(set_in("accessors", 0, "componentType", 5124)), "accessor 0: there are no numbers of type 5124"),
        (broken(set_in("accessors", 0, "type", "VEC2")), "accessor 0: 3 numbers for each element are needed"),
        (broken(set_in("accessors", 0, "bufferView", 9)), "'bufferViews' has 2 entries; there is none with the number 9"),
        (broken(set_in("bufferViews", 0, "byteLength", 10**9)), "accessor 0: beyond the end of its buffer"),
        (broken(set_in("bufferViews", 0, "byteStride", 4)), "accessor 0: elements overlap"),
        (broken(set_in("bufferViews", 0, "byteOffset", -4)), "'byteOffset' is not a count"),
        (broken(set_in("nodes", [{"children": [1]}, {"children": [0], "mesh": 0}])), "not a mesh"),
        (broken(set_in("nodes", [{"mesh": 0, "children": [0]}])), "not a mesh"),
        (broken(set_in("nodes", [{"mesh": 0, "matrix": [1]}])), "node 0: 'matrix' must be 16 numbers"),
        (shown_often(3000), "mesh 0, primitive 0: shown too often"),
        (plain().binary()[:200], "bytes are announced, 200 are there"),
        (plain().text()[:200], "damaged JSON"),
        ("[" * 100000, "damaged JSON"),
        ("7", "it names no version"),
    ],
    ids=lambda value: value if isinstance(value, str) and len(value) < 99 else "file",
)  # fmt: skip
def test_what_is_wrong_is_said_with_its_element(qelm, content, says):
    name = "a.glb" if content[:4] == b"glTF" else "a.gltf"
    qelm.write(name, content)
    done = qelm.run("info", name)
    assert done.returncode in (3, 4) and says in done.stderr, done.stderr


def test_a_corner_out_of_range_is_named(qelm):
    file = Gltf()
    file.primitive(attributes={"POSITION": file.positions(MESH[0])}, indices=file.indices([0, 1, 12]))
    qelm.write("a.glb", file.binary())
    assert "mesh 0, primitive 0: vertex index 12 is out of range" in qelm.fails(3, "info", "a.glb")
