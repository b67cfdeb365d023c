"""qelm check: what it finds, how it says so, and its exit codes."""

import json
import math
import re
import struct

import shapes


def check(qelm, content, *arguments, code):
    qelm.write("mesh.obj", content)
    done = qelm.run("check", "mesh.obj", *arguments)
    assert done.returncode == code, done.stdout + done.stderr
    return done


def found(done):
    """Names of the defects that were found, and what was first."""
    defects = json.loads(done.stdout)["defects"]
    return {
        name: (finding["count"], finding.get("firstVertex", finding.get("firstTriangle")))
        for name, finding in defects.items()
        if finding["count"] > 0
    }


def test_a_good_mesh_has_no_defect(qelm):
    done = check(qelm, shapes.obj(shapes.grid(4, 3)), code=0)
    assert done.stderr == ""
    lines = done.stdout.splitlines()
    assert lines[:3] == ["mesh.obj: 20 vertices, 24 triangles", "Defects: none", "For information"]
    assert "        1 connected part" in lines
    assert "        1 boundary loop" in lines
    assert lines[-1] == "Verdict: fine, once every part has a fixed vertex"


def test_conditions_are_looked_at_when_given(qelm):
    two = shapes.obj(shapes.joined(shapes.SQUARE, shapes.moved(shapes.SQUARE, (5, 0, 0))))
    assert "        2 connected parts" in check(qelm, two, code=0).stdout.splitlines()
    done = check(qelm, two, "--fix", "vertex:0=1", code=5)
    assert "        1 connected part has no fixed vertex: vertex 4 (5, 0, 0)\n" in done.stdout
    assert "fix a vertex in every part" in done.stdout
    assert "        1 fixed vertex\n" in done.stdout
    done = check(qelm, two, "--fix", "vertex:0,4=1", code=0)
    assert done.stdout.endswith("Verdict: fine\n")
    assert found(check(qelm, two, "--fix", "vertex:0=1", "--json", code=5)) == {"untaggedPart": (1, 4)}


def test_each_defect_is_counted_and_named(qelm):
    points = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 2 0 0\nv 1 1 0\n"
    cases = [
        (points + "f 1 2 3\nf 2 3 5\n", {"unusedVertex": (1, 3)}, "--strict"),
        (points + "f 1 2 3\nf 1 2 4\nf 1 4 5\n", {"nearZeroArea": (1, 1)}),
        (points + "f 1 2 3\nf 2 3 4\nf 1 5 5\n", {"repeatedVertex": (1, 2)}, "--strict"),
        ("v 0 0 0\nv 1e70 0 0\nv 0 1e70 0\nf 1 2 3\n", {"sizeOutOfRange": (1, 0)}),
    ]
    for content, expected, *strict in cases:
        assert found(check(qelm, content, "--json", *strict, code=4)) == expected
    text = check(qelm, cases[1][0], code=4).stdout
    assert "1 triangle has no area, or too little for its size and place: triangle 1 (0, 1, 3)" in text
    assert "Verdict: will not work: triangle 1 (0, 1, 3): zero area; remove" in text


def test_a_coordinate_that_is_not_finite_in_a_binary_file_is_a_defect(qelm):
    points, faces = shapes.SQUARE
    content = shapes.ply_binary((points, faces)).replace(
        struct.pack("<3d", 1, 1, 0), struct.pack("<3d", 1, math.nan, 0))
    qelm.write("mesh.ply", content)
    done = qelm.run("check", "mesh.ply", "--json")
    assert done.returncode == 4
    assert found(done) == {"notFinite": (1, 2)}


def test_what_the_library_solves_on_is_for_information(qelm):
    book = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 -1 0\nv 0 0 1\nv 0 0 1\nf 1 2 3\nf 1 2 4\nf 1 2 5\nf 2 5 6\nf 3 2 1\n"
    content = book.replace("v 0 0 1\nf", "v 3 3 3\nf", 1)
    done = check(qelm, content, "--json", code=0)
    information = json.loads(done.stdout)["information"]
    assert information["crowdedEdge"]["count"] >= 1
    assert information["repeatedTriangle"] == {"count": 1, "firstTriangle": 4}
    assert information["coincidentVertex"] == {"count": 0, "firstVertex": None}
    text = check(qelm, content, code=0).stdout
    assert "        1 triangle that repeats an earlier one: triangle 4 (2, 1, 0)\n" in text
    assert re.search(r"the thinnest for its size and place: triangle \d+ \(\d+, \d+, \d+\)", text)


def test_quiet_leaves_the_exit_code(qelm):
    done = check(qelm, shapes.obj(shapes.SQUARE), "-q", code=0)
    assert done.stdout == done.stderr == ""
    assert check(qelm, "v 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\n", "-q", code=4).stdout == ""


def test_json_has_the_code_of_the_first_defect(qelm):
    done = check(qelm, "v 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\n", "--json", code=4)
    report = json.loads(done.stdout)
    assert report["code"] == 103 and report["grade"] == "will not work"
    assert report["information"]["worstTriangle"] == 0
    assert report["information"]["worstQuality"] == 0
    assert "untaggedPart" not in report["defects"]


def test_soups_are_welded_first(qelm):
    qelm.write("part.stl", shapes.stl_text(shapes.grid(4, 3)))
    done = qelm.run("check", "part.stl")
    assert done.returncode == 0
    assert "part.stl: 20 vertices, 24 triangles" in done.stdout
    assert "welded" in done.stderr


def test_refusals(qelm):
    qelm.write("mesh.obj", shapes.obj(shapes.SQUARE))
    assert "none.obj" in qelm.fails(3, "check", "none.obj")
    assert "there is no vertex 9" in qelm.fails(2, "check", "mesh.obj", "--fix", "vertex:9=1")
    assert "mesh is required" in qelm.fails(2, "check")


def test_help_has_examples_that_run(qelm):
    examples = re.findall(r"^  qelm (check .*)$", qelm.ok("check", "--help").stdout, re.MULTILINE)
    assert len(examples) == 2
    qelm.write("roof.obj", shapes.obj(shapes.annulus(1, 2)))
    for example in examples:
        qelm.ok(*example.split())
