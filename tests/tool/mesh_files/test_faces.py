"""Faces that are no clean triangles: split, mended or left out, with a note; --strict refuses them."""

import json

import numpy
import pytest

import shapes

DART = [(0, 0, 0), (4, 0, 0), (2, 1, 0), (2, 4, 0)], [(0, 1, 2, 3)]  # corner 2 bends inwards
# Vertex 2 is in no triangle; the square is 0 1 3 4.
STRAY = [(0, 0, 0), (1, 0, 0), (9, 9, 9), (1, 1, 0), (0, 1, 0)], [(0, 1, 3), (0, 3, 4)]
FIX = ["--fix", "vertex:0=1", "--fix", "vertex:3=3"]
FIELD = [1, 2, None, 3, 2]


def values(qelm, name="field.csv"):
    rows = (qelm.folder / name).read_text().splitlines()[1:]
    return [float(row.split(",")[4]) if row.split(",")[4] else None for row in rows]


def area(qelm, name):
    return qelm.json("info", name)["area"]


def test_concave_polygons_are_split_inside(qelm):
    qelm.write("dart.obj", shapes.obj(DART))
    done = qelm.ok("info", "dart.obj")
    assert "note: dart.obj: 1 of 1 faces have more than three corners and were split" in done.stderr
    assert area(qelm, "dart.obj") == pytest.approx(5)
    assert "not convex" in qelm.fails(4, "info", "dart.obj", "--strict")


def test_an_outline_with_a_hole_keeps_its_hole(qelm):
    points = [(0, 0, 0), (4, 0, 0), (4, 4, 0), (0, 4, 0), (1, 1, 0), (3, 1, 0), (3, 3, 0), (1, 3, 0)]
    qelm.write("ring.obj", shapes.obj((points, [(0, 1, 2, 3, 0, 4, 7, 6, 5, 4)])))
    info = qelm.json("info", "ring.obj")
    assert info["area"] == pytest.approx(12)
    assert [loop["vertices"] for loop in info["loops"]] == [4, 4]


def test_crossing_and_bent_polygons_are_split_with_a_note(qelm):
    bow = [(0, 0, 0), (2, 1, 0), (2, 0, 0), (0, 2, 0)]
    saddle = [(5, 0, 0), (6, 0, 1), (6, 1, 0), (5, 1, 1)]
    qelm.write("a.obj", shapes.obj((bow + saddle, [(0, 1, 2, 3), (4, 5, 6, 7)])))
    done = qelm.ok("check", "a.obj", "--fix", "vertex:0,4=0")
    assert "2 of 2 faces have more than three corners and were split" in done.stderr
    assert "; 1 not flat (the first is 1; at most 58% of its size off its plane)" in done.stderr
    assert "note: a.obj: face 0 crosses or touches itself, or is without area; split as well" in done.stderr


def test_a_quadrilateral_that_repeats_a_corner_is_a_triangle(qelm):
    qelm.write("a.obj", shapes.obj(([(0, 0, 0), (1, 0, 0), (0, 1, 0)], [(0, 1, 2, 2)])))
    qelm.write("b.obj", shapes.obj(([(0, 0, 0), (1, 0, 0), (0, 1, 0)], [(0, 1, 2)])))
    for name in ("a", "b"):
        done = qelm.ok("solve", f"{name}.obj", "--fix", "vertex:0=1", "--fix", "vertex:1=2", "-o", f"{name}.csv")
        assert ("note: a.obj: face 0 names a vertex twice in a row; it lost that corner" in done.stderr) == (name == "a")
    assert (qelm.folder / "a.csv").read_text() == (qelm.folder / "b.csv").read_text()
    assert "names a vertex twice" in qelm.fails(4, "info", "a.obj", "--strict")


def test_triangles_that_repeat_a_vertex_are_left_out_and_counted(qelm):
    points, faces = shapes.SQUARE
    mesh = points, [(1, 2, 1), *faces, (3, 3, 0)]
    qelm.write("a.obj", shapes.obj(mesh))
    qelm.write("b.obj", shapes.obj(shapes.SQUARE))
    fix = ["--fix", "vertex:0=0", "--fix", "vertex:2=1"]
    done = qelm.ok("solve", "a.obj", *fix, "-o", "a.csv")
    assert "note: a.obj: 2 faces (the first is 0) have fewer than three different corners" in done.stderr
    assert "a.obj: 4 vertices, 2 triangles" in done.stderr
    qelm.ok("solve", "b.obj", *fix, "-o", "b.csv")
    assert (qelm.folder / "a.csv").read_text() == (qelm.folder / "b.csv").read_text()
    done = qelm.ok("check", "a.obj")
    assert "        2 faces of fewer than three different corners, left out\n" in done.stdout
    # Triangles are named with their face, as their numbers are others now.
    assert "triangle 0 (0, 1, 2) of face 1" in done.stdout
    assert qelm.json("check", "a.obj")["information"]["leftOutFaces"] == 2
    assert "names vertex 1 twice" in qelm.fails(4, "solve", "a.obj", *fix, "--strict")


def refused(qelm, code, *arguments):
    """As Tool.fails(), but after notes."""
    done = qelm.run(*arguments)
    assert (done.returncode, done.stdout) == (code, "")
    return done.stderr


@pytest.fixture
def stray(qelm):
    return qelm.write("stray.obj", shapes.obj(STRAY))


def test_a_vertex_in_no_triangle_keeps_its_number_and_has_no_value(qelm, stray):
    done = qelm.ok("solve", stray, *FIX, "-o", "field.csv")
    assert "note: stray.obj: vertex 2 (9, 9, 9) is in no triangle; it gets no value" in done.stderr
    assert values(qelm) == pytest.approx(FIELD)
    assert (qelm.folder / "field.csv").read_text().splitlines()[3] == "2,9,9,9,"
    qelm.ok("solve", stray, *FIX, "-o", "robust.csv", "--robust")
    assert values(qelm, "robust.csv") == pytest.approx(FIELD)
    qelm.ok("solve", stray, "--fix", "vertex:0=1,2", "--fix", "vertex:3=3,6", "-o", "two.csv")
    rows = [row.split(",")[4:] for row in (qelm.folder / "two.csv").read_text().splitlines()]
    assert rows[0] == ["value1", "value2"] and rows[3] == ["", ""]
    assert [float(row[1]) for row in rows[1:] if row[1]] == pytest.approx([2, 4, 6, 4])
    assert "in no triangle" in qelm.fails(4, "solve", stray, *FIX, "-o", "x.csv", "--strict")


def test_many_vertices_in_no_triangle_are_one_note(qelm):
    qelm.write("a.obj", shapes.obj(shapes.SQUARE) + "v 5 6 7\nv 0 0 8\n")
    done = qelm.ok("solve", "a.obj", "--fix", "vertex:0=0", "--fix", "vertex:2=1")
    assert "note: a.obj: 2 vertices are in no triangle, the first is vertex 4 (5, 6, 7); they get" in done.stderr


def test_a_field_with_such_a_vertex_can_be_read_again(qelm, stray):
    qelm.ok("solve", stray, *FIX, "-o", "field.csv")
    qelm.ok("solve", stray, "--fix-file", "field.csv", "-o", "again.csv")
    assert (qelm.folder / "again.csv").read_text() == (qelm.folder / "field.csv").read_text()
    qelm.ok("solve", stray, *FIX, "--load", "field.csv", "-o", "loaded.csv")
    assert values(qelm, "loaded.csv")[2] is None
    # Where a triangle is, a value must be.
    qelm.write("gap.csv", "vertex,value\n0,1\n1,\n")
    assert "gap.csv:3: '' is not a number" in refused(qelm, 3, "solve", stray, "--fix-file", "gap.csv")
    qelm.write("more.csv", "0,1\n2,7\n3,3\n")
    done = qelm.ok("solve", stray, "--fix-file", "more.csv")
    assert "note: the file holds values at 1 vertices that are in no triangle" in done.stderr


def test_conditions_do_not_select_such_a_vertex(qelm, stray):
    message = refused(qelm, 2, "solve", stray, "--fix", "vertex:2=1")
    assert "--fix vertex:2: vertex 2 is in no triangle, so nothing depends on its value" in message
    done = qelm.json("solve", stray, "--fix", "near:9,9,9=1", "--fix", "box:0,0,0,9,9,9=2")
    assert done["fix"][0]["vertex"] == 3
    assert done["fix"][1]["vertices"] == 4


def test_every_output_does_without_its_value(qelm, stray):
    qelm.ok("heatmap", stray, *FIX, "-o", "heat.obj")
    lines = (qelm.folder / "heat.obj").read_text().splitlines()
    assert sum(line.startswith("v ") for line in lines) == sum(line.startswith("vt ") for line in lines) == 4
    assert "nan" not in " ".join(lines)
    qelm.ok("heatmap", stray, *FIX, "-o", "heat.ply")
    body = (qelm.folder / "heat.ply").read_bytes().partition(b"end_header\n")[2]
    vertices = numpy.frombuffer(body, "<f8,<f8,<f8,u1,u1,u1,<f8", 5)
    assert [tuple(v)[:3] for v in vertices] == [tuple(map(float, p)) for p in STRAY[0]]
    assert [tuple(v)[6] for v in vertices] == pytest.approx([1, 2, numpy.nan, 3, 2], nan_ok=True)
    assert tuple(vertices[2])[3:6] == (128, 128, 128)
    qelm.write("square.obj", shapes.obj(([STRAY[0][k] for k in (0, 1, 3, 4)], [(0, 1, 2), (0, 2, 3)])))
    square = ["--fix", "vertex:0=1", "--fix", "vertex:2=3"]
    for name, fix in (("stray", FIX), ("square", square)):
        outputs = [f"{name}.{ending}" for ending in ("csv", "json", "svg")]
        qelm.ok("curves", f"{name}.obj", *fix, "--at", "1.5,2.5", *(a for o in outputs for a in ("-o", o)))
    for ending in ("csv", "json", "svg"):
        written = (qelm.folder / f"stray.{ending}").read_text().replace("stray", "square")
        assert written == (qelm.folder / f"square.{ending}").read_text(), ending


def test_what_is_said_about_a_mesh_with_such_a_vertex(qelm, stray):
    done = qelm.ok("check", stray)
    assert "Defects: none" in done.stdout
    assert "        1 vertex is in no triangle, and gets no value: vertex 2 (9, 9, 9)\n" in done.stdout
    assert done.stdout.endswith("Verdict: fine, once every part has a fixed vertex\n")
    report = qelm.json("check", stray, "--fix", "vertex:0=1")
    assert (report["grade"], report["code"]) == ("fine", 0)
    assert report["information"]["unusedVertex"] == {"count": 1, "firstVertex": 2}
    assert report["information"]["robust"]["changed"] is False
    done = qelm.run("check", stray, "--strict", "--json")
    assert done.returncode == 4
    assert json.loads(done.stdout)["defects"]["unusedVertex"] == {"count": 1, "firstVertex": 2}


def test_numbers_in_a_report_are_the_files_behind_such_a_vertex(qelm):
    # Vertex 0 is in no triangle; vertex 5 lies on vertex 4, the part with 6 is held by nobody.
    points = [(8, 8, 8), (0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 1, 0), (5, 0, 0), (6, 0, 0), (5, 1, 0)]
    qelm.write("a.obj", shapes.obj((points, [(1, 2, 3), (1, 3, 4), (2, 3, 5), (6, 7, 8)])))
    done = qelm.run("check", "a.obj", "--fix", "vertex:1=0", "--json")
    report = json.loads(done.stdout)
    assert report["information"]["coincidentVertex"] == {"count": 1, "firstVertex": 5}
    assert report["defects"]["untaggedPart"] == {"count": 1, "firstVertex": 6}
    assert "with vertex 6 (5, 0, 0)" in report["verdict"]


def test_stl_facets_without_area_are_welded_away_as_ever(qelm):
    facets = shapes.SQUARE[0], [*shapes.SQUARE[1], (0, 0, 1)]
    qelm.write("a.stl", shapes.stl_binary(facets))
    done = qelm.ok("info", "a.stl")
    assert "9 vertices became 4, 3 triangles became 2" in done.stderr
    assert "left out" not in done.stderr
