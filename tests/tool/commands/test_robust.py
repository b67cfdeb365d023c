"""--robust of every command with a field, --compare-plain, and what qelm check says of it."""

import json

import pytest

import shapes

# A free vertex that sees a distant one past two at flat angles: its plain value is below 0.
FLAT = "v 0 0 0\nv 10 0 0\nv 1 0.2 0\nv -1 0 0\nv 1 -0.2 0\nf 1 2 3\nf 1 3 4\nf 1 4 5\nf 1 5 2\n"
FIXES = ["--fix", "vertex:1=1", "--fix", "vertex:2,3,4=0"]
# Vertex 3 lies on the edge from 0 to 1, in a triangle without area.
T_JOINT = "v 0 0 0\nv 2 0 0\nv 1 1.5 0\nv 1 0 0\nv 1 -1 0\nf 1 2 3\nf 1 4 2\nf 1 5 4\nf 5 2 4\n"


def test_keeps_the_field_in_range(qelm):
    qelm.write("flat.obj", FLAT)
    qelm.ok("solve", "flat.obj", *FIXES, "-o", "field.csv")
    assert qelm.field()[0] < -0.01
    for option in (["--robust"], ["--robust", "auto"], ["--robust=auto"]):
        done = qelm.ok("solve", "flat.obj", *FIXES, "-o", "field.csv", *option)
        assert 0 <= qelm.field()[0] <= 1
        assert "matrix   robust: 1 edge not Delaunay, 0 triangles without height, " in done.stderr


def test_says_where_the_plain_matrix_is_good(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    plain = qelm.ok("solve", "grid.obj", "--fix", "vertex:0=1", "--fix", "vertex:9=2", "-o", "field.csv")
    field = qelm.field()
    assert "matrix" not in plain.stderr
    for option in (["--robust"], ["--robust", "auto"]):
        done = qelm.ok(
            "solve", "grid.obj", "--fix", "vertex:0=1", "--fix", "vertex:9=2", "-o", "field.csv", *option
        )
        assert "matrix   plain, which is good here\n" in done.stderr
        assert qelm.field() == field


def test_solves_where_a_triangle_has_no_area(qelm):
    qelm.write("joint.obj", T_JOINT)
    fixes = ["--fix", "vertex:0=0", "--fix", "vertex:1=2"]
    refused = qelm.fails(4, "solve", "joint.obj", *fixes)
    assert "zero area" in refused and "--robust" in refused
    for option in (["--robust"], ["--robust", "auto"]):
        summary = qelm.json("solve", "joint.obj", *fixes, "-o", "field.csv", *option)
        assert summary["robust"]["changed"] is True
        assert summary["robust"]["flatTriangles"] == 1
        assert qelm.field()[2:] == pytest.approx([1, 1, 1], abs=1e-7)


def test_every_command_with_a_field_has_it(qelm):
    qelm.write("joint.obj", T_JOINT)
    fixes = ["--fix", "vertex:0=0", "--fix", "vertex:1=2", "--robust"]
    qelm.ok("heatmap", "joint.obj", *fixes, "-o", "heat.ply")
    qelm.ok("curves", "joint.obj", *fixes, "--levels", "3", "-o", "curves.obj")
    assert "--robust" in qelm.ok("view", "--help").stdout


def test_compares_with_the_plain_field(qelm):
    qelm.write("flat.obj", FLAT)
    several = ["--fix", "vertex:1=1,3", "--fix", "vertex:2,3,4=0,0"]
    qelm.ok("solve", "flat.obj", *several, "-o", "field.csv")
    done = qelm.ok("solve", "flat.obj", *several, "--robust", "--compare-plain")
    assert "at vertex 0 (0, 0, 0) of field 2; from -0." in done.stderr
    summary = qelm.json("solve", "flat.obj", *several, "--robust", "--compare-plain")["plain"]
    assert (summary["vertex"], summary["field"], summary["max"]) == (0, 1, 3)
    assert summary["min"] < 0 < summary["difference"]
    assert "compare" in done.stderr.partition("time ")[2]


def test_comparing_says_where_there_is_no_plain_field(qelm):
    qelm.write("joint.obj", T_JOINT)
    done = qelm.ok(
        "solve", "joint.obj", "--fix", "vertex:0=0", "--fix", "vertex:1=2", "--robust", "--compare-plain"
    )
    assert "plain    no field: " in done.stderr


def test_wrong_use_is_refused(qelm):
    qelm.write("flat.obj", FLAT)
    assert "--robust takes nothing or auto, not 'x'" in qelm.fails(2, "solve", "flat.obj", *FIXES, "--robust=x")
    assert "needs --robust" in qelm.fails(2, "solve", "flat.obj", *FIXES, "--compare-plain")


def test_defects_that_remain_are_named(qelm):
    qelm.write("twice.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 1 2 2\n")
    assert "names vertex 1 twice" in qelm.fails(4, "solve", "twice.obj", "--fix", "vertex:0=1", "--robust", "--strict")
    qelm.write("two.obj", shapes.obj(shapes.joined(shapes.SQUARE, shapes.moved(shapes.SQUARE, (5, 0, 0)))))
    assert "has no fixed vertex" in qelm.fails(5, "solve", "two.obj", "--fix", "vertex:0=1", "--robust")


def test_check_says_what_it_would_do(qelm):
    qelm.write("flat.obj", FLAT)
    text = qelm.run("check", "flat.obj").stdout
    assert "weights: some negative; --robust mends them (" in text and " not Delaunay, 0 triangles" in text
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    assert "weights: good; --robust would change nothing" in qelm.run("check", "grid.obj").stdout
    qelm.write("thin.obj", "v 0 0 0\nv 2 0.02 0\nv 2 -0.02 0\nf 1 2 3\n")
    assert "weights: none negative, but angles below 1.8 degrees" in qelm.run("check", "thin.obj").stdout
    qelm.write("joint.obj", T_JOINT)
    report = json.loads(qelm.run("check", "joint.obj", "--json").stdout)
    assert report["information"]["robust"]["flatTriangles"] == 1
    # Weights between fixed vertices do not matter.
    report = json.loads(qelm.run("check", "flat.obj", "--json", "--fix", "vertex:0,1,2,3,4=1").stdout)
    assert report["information"]["robust"]["changed"] is False
    qelm.write("twice.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 1 2 2\n")
    report = json.loads(qelm.run("check", "twice.obj", "--json", "--strict").stdout)
    assert report["information"]["robust"] is None
