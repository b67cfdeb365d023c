"""Mesh files of every kind and habit give the same mesh."""

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
