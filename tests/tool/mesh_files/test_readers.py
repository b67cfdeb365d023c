"""Mesh files of every kind and habit give the same mesh."""

import struct
from random import Random

import pytest

import shapes

MESH = shapes.joined(shapes.grid(3, 2))
FIX = ["--fix", "vertex:0=0", "--fix", "vertex:11=1"]


def field_of(qelm, name, content, fix=FIX):
    qelm.write(name, content)
    qelm.ok("solve", name, *fix, "-o", "field.csv")
    return qelm.field()


def test_obj_and_ply_keep_the_order_of_vertices(qelm):
    expected = field_of(qelm, "a.obj", shapes.obj(MESH))
    assert field_of(qelm, "a.ply", shapes.ply_text(MESH)) == expected
    assert field_of(qelm, "b.PLY", shapes.ply_binary(MESH)) == expected
    assert qelm.points() == [tuple(map(float, p)) for p in MESH[0]]


@pytest.mark.parametrize(
    "name, content",
    [
        ("text.stl", shapes.stl_text(MESH)),
        ("capitals.stl", shapes.stl_text(MESH).upper()),
        ("binary.stl", shapes.stl_binary(MESH)),
        ("binary_called_solid.STL", shapes.stl_binary(MESH, b"solid but binary")),
        ("two_solids.stl", shapes.stl_text((MESH[0], MESH[1][:5])) + shapes.stl_text((MESH[0], MESH[1][5:]), "facet vertex")),
        ("one_line.stl", shapes.stl_text(MESH, "").replace("\n", " ").replace("solid ", "solid\n", 1)),
        ("windows.stl", shapes.stl_text(MESH).replace("\n", "\r\n")),
    ],
    ids=lambda value: value if str(value).lower().endswith(".stl") else "",
)
def test_stl_facets_share_their_equal_corners(qelm, name, content):
    fix = ["--fix", "near:0,0,0=0", "--fix", "near:3,2,0=1"]
    values = dict(zip(MESH[0], field_of(qelm, "a.obj", shapes.obj(MESH))))
    field = field_of(qelm, name, content, fix)
    points = qelm.points()
    assert len(points) == len(MESH[0])
    assert field == pytest.approx([values[p] for p in points], abs=1e-14)


@pytest.mark.parametrize(
    "content",
    [
        shapes.obj(MESH).replace("\n", "\r\n"),
        shapes.obj(MESH).replace(" ", "\t"),
        "# f 0 0 0\no name\ng group\nusemtl x y\nmtllib a b.mtl\ns off\nshading on\n"
        + shapes.obj(MESH)
        + "l 1 2 3\np 1\n",
        shapes.obj(MESH).replace("f ", "f\\\n "),
        shapes.obj(MESH).rstrip("\n"),
        "".join(sorted(shapes.obj(MESH).splitlines(True), key=lambda s: s[0] == "v")),
    ],
    ids=["windows_lines", "tabs", "other_keywords", "continued_lines", "no_last_newline", "faces_first"],
)
def test_obj_habits_do_not_matter(qelm, content):
    assert field_of(qelm, "b.obj", content) == field_of(qelm, "a.obj", shapes.obj(MESH))


def test_obj_corners_may_carry_texture_and_normal_and_be_relative(qelm):
    points, faces = MESH
    lines = ["v %r %r %r 1 0 0" % p for p in points] + ["vt 0 0", "vn 0 0 1"]
    n = len(points)
    forms = ["{}/1/1", "{}//1", "{}/1", "{}"]
    for k, face in enumerate(faces):
        numbers = [v - n if k % 2 else v + 1 for v in face]
        lines.append("f " + " ".join(forms[k % 4].format(v) for v in numbers) + " # a comment")
    expected = field_of(qelm, "a.obj", shapes.obj(MESH))
    assert field_of(qelm, "b.obj", "\n".join(lines)) == expected


OFF = shapes.off(MESH)
OFF_POINTS = "\n".join("%r %r %r" % p for p in MESH[0])
OFF_FACES = "\n".join("3 %d %d %d" % f for f in MESH[1])
COUNTS = f"{len(MESH[0])} {len(MESH[1])}"


def off_with(head, vertex_tail="", face_tail=""):
    points = OFF_POINTS.replace("\n", vertex_tail + "\n") + vertex_tail
    faces = OFF_FACES.replace("\n", face_tail + "\n") + face_tail
    return f"{head}\n{points}\n{faces}\n"


@pytest.mark.parametrize(
    "content",
    [
        OFF,
        OFF.replace("\n", "\r\n"),
        off_with(f"OFF {COUNTS} 0"),
        off_with(f"OFF\n{COUNTS}"),
        off_with(f"{COUNTS} 17"),
        off_with(f"# made by hand\n\n  OFF  # here\n\n# counts\n{COUNTS} 0 # edges\n"),
        off_with(f"COFF\n{COUNTS} 0", " 255 0 0 255", " 0.1 0.2 0.3"),
        off_with(f"NOFF\n{COUNTS} 0", " 0 0 1"),
        off_with(f"STCNOFF\n{COUNTS} 0", " 0 0 1 1 0 0 1 0.5 0.5", " 7"),
        off_with(f"OFF\n{COUNTS} 0").replace(" ", "\t"),
        off_with(f"OFF\n{COUNTS} 0", "", " # a face"),
        off_with(f"OFF\n{COUNTS} 0".replace(" ", "~")).replace(" ", "\n").replace("~", " "),
        OFF.rstrip("\n"),
        OFF + "# the end\n\n",
    ],
    ids=["plain", "windows_lines", "counts_beside_the_keyword", "no_edges", "no_keyword", "comments",
         "colours", "normals", "everything", "tabs", "comments_behind", "a_word_a_line", "no_last_newline",
         "more_lines"],
)  # fmt: skip
def test_off_habits_do_not_matter(qelm, content):
    assert field_of(qelm, "b.off", content) == field_of(qelm, "a.obj", shapes.obj(MESH))


def test_off_polygons_are_split_like_others(qelm):
    points = [(0, 0, 0), (2, 0, 0), (2, 1, 0), (1, 2, 0), (0, 1, 0)]
    mesh = points, [(0, 1, 2, 3, 4)]
    fix = ["--fix", "vertex:0=0", "--fix", "vertex:3=1"]
    assert field_of(qelm, "p.off", shapes.off(mesh), fix) == field_of(qelm, "p.obj", shapes.obj(mesh), fix)


def ply_of_every_type(mark):
    """Vertices among other things; the order and the types of properties are unusual."""
    points, faces = MESH
    head = f"""ply
format binary_{"little" if mark == "<" else "big"}_endian 1.0
comment vertices are not the first element
element material 2
property list ushort float weights
property char kind
element vertices {len(points)}
property double z
property uchar red
property double x
property list uint8 short notes
property double y
element faces {len(faces)}
property int material
property list int16 uint16 vertex_index
property float area
end_header
""".encode()
    body = struct.pack(mark + "H2fb", 2, 1, 2, -1) + struct.pack(mark + "Hb", 0, 3)
    for x, y, z in points:
        body += struct.pack(mark + "dBdB2hd", z, 200, x, 2, -5, 6, y)
    for face in faces:
        body += struct.pack(mark + "ih3Hf", 1, 3, *face, 0.5)
    return head + body


def test_ply_of_either_byte_order_and_any_type_is_read(qelm):
    expected = field_of(qelm, "a.obj", shapes.obj(MESH))
    assert field_of(qelm, "big.ply", shapes.ply_binary(MESH, "big")) == expected
    assert field_of(qelm, "odd.ply", ply_of_every_type("<")) == expected
    assert field_of(qelm, "odd_big.ply", ply_of_every_type(">")) == expected
    assert field_of(qelm, "lines.ply", shapes.ply_text(MESH).replace("\n", "\r\n")) == expected


def random_doubles(seed, count):
    """Doubles of all sizes that a mesh may have, most of them with all their digits."""
    random = Random(seed)
    return [random.uniform(-1, 1) * 10.0 ** random.randint(-12, 12) for _ in range(count)]


def test_every_format_keeps_the_order_and_every_double(qelm):
    # A fan over points that have nothing to do with each other.
    values = random_doubles(20261121, 3 * 300)
    points = [tuple(values[3 * k : 3 * k + 3]) for k in range(300)]
    faces = [(0, k, k + 1) for k in range(1, 299)]
    mesh = points, faces
    files = {
        "a.obj": shapes.obj(mesh),
        "a.off": shapes.off(mesh),
        "a.ply": shapes.ply_text(mesh),
        "little.ply": shapes.ply_binary(mesh),
        "big.ply": shapes.ply_binary(mesh, "big"),
    }
    for name, content in files.items():
        qelm.write(name, content)
        qelm.ok("weld", name, "--tolerance", "0", "-o", "out.obj")
        lines = [line.split() for line in (qelm.folder / "out.obj").read_text().splitlines()]
        assert [tuple(map(float, line[1:])) for line in lines if line[0] == "v"] == points, name
        assert [tuple(int(v) - 1 for v in line[1:]) for line in lines if line[0] == "f"] == faces, name


def test_stl_text_keeps_every_double_and_binary_every_float(qelm):
    values = random_doubles(7, 9 * 100)
    points = [tuple(values[3 * k : 3 * k + 3]) for k in range(300)]
    mesh = points, [(3 * k, 3 * k + 1, 3 * k + 2) for k in range(100)]
    rounded = [tuple(struct.unpack("<3f", struct.pack("<3f", *p))) for p in points]
    files = {"a.stl": (shapes.stl_text(mesh), points), "b.stl": (shapes.stl_binary(mesh), rounded)}
    for name, (content, expected) in files.items():
        qelm.write(name, content)
        qelm.ok("weld", name, "--tolerance", "0", "-o", "out.obj")
        lines = [line.split() for line in (qelm.folder / "out.obj").read_text().splitlines()]
        assert [tuple(map(float, line[1:])) for line in lines if line[0] == "v"] == expected, name


def test_coordinates_keep_every_bit(qelm):
    points = [(0.1 + 0.2, -1 / 3, 1e-310), (2 / 3, 1e22 / 3e22, 5e-324), (1.1, 0.7, 123456.789)]
    qelm.write("t.obj", shapes.obj((points, [(0, 1, 2)])))
    qelm.ok("solve", "t.obj", "--fix", "vertex:0=1", "-o", "field.csv")
    assert qelm.points() == points


def test_convex_polygons_are_split_and_a_note_says_so(qelm):
    # A quadrilateral with a straight corner, a hexagon, and a triangle.
    points = [(0, 0, 0), (1, 0, 0), (2, 0, 0), (1, 1, 0), (3, 1, 0), (3, 2, 0), (1, 2, 0), (0, 2, 0)]
    faces = [(0, 1, 2, 3), (2, 4, 5, 6, 7, 3), (0, 3, 7)]
    qelm.write("p.obj", shapes.obj((points, faces)))
    done = qelm.ok("solve", "p.obj", "--fix", "loop:0=0", "-o", "field.csv")
    assert "mesh     p.obj: 8 vertices, 7 triangles" in done.stderr
    assert "note: p.obj: 2 of 3 faces have more than three corners and were split" in done.stderr


def test_a_quadrilateral_is_split_along_its_better_diagonal(qelm):
    # A kite: the short diagonal 1-3 leaves far better triangles than 0-2. Fixing
    # 0 and 2 alone would make 1 and 3 depend on each other only when joined.
    points = [(0, 0, 0), (2, -0.5, 0), (4, 0, 0), (2, 0.5, 0)]
    qelm.write("kite.obj", shapes.obj((points, [(0, 1, 2, 3)])))
    qelm.write("split.obj", shapes.obj((points, [(0, 1, 3), (1, 2, 3)])))
    fix = ["--fix", "vertex:0=0", "--fix", "vertex:1=1"]
    qelm.ok("solve", "kite.obj", *fix, "-o", "field.csv")
    kite = qelm.field()
    qelm.ok("solve", "split.obj", *fix, "-o", "field.csv")
    assert kite == pytest.approx(qelm.field(), abs=1e-14)
