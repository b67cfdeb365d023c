"""qelm solve on good input: fields, selectors, what it prints and writes."""

import re

import pytest

import shapes

LEFT_RIGHT = ["--fix", "box:0,0,0,0,9,0=0", "--fix", "box:4,0,0,4,9,0=1"]


def test_reproduces_a_linear_field_between_two_sides(qelm):
    mesh = shapes.grid(4, 3)
    qelm.write("grid.obj", shapes.obj(mesh))
    qelm.ok("solve", "grid.obj", *LEFT_RIGHT, "-o", "field.csv")
    assert qelm.field() == pytest.approx([p[0] / 4 for p in mesh[0]], abs=1e-14)
    assert qelm.points() == [tuple(map(float, p)) for p in mesh[0]]
    assert qelm.files() == ["field.csv", "grid.obj"]


def test_prints_what_a_person_wants_to_know_on_the_error_stream(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    done = qelm.ok("solve", "grid.obj", *LEFT_RIGHT, "-o", "field.csv")
    assert done.stdout == ""
    lines = done.stderr.splitlines()
    assert lines[0] == "mesh     grid.obj: 20 vertices, 24 triangles"
    assert lines[1] == "fixed    8 vertices"
    assert lines[2] == "         box:0,0,0,0,9,0 = 0: 4"
    assert lines[3] == "         box:4,0,0,4,9,0 = 1: 4"
    assert lines[4] == "minimum  0 at vertex 0 (0, 0, 0)"
    assert lines[5] == "maximum  1 at vertex 4 (4, 0, 0)"
    seconds = r"\d+\.\d{3} s"
    steps = ", ".join(f"{s} {seconds}" for s in ("read", "check", "construct", "solve", "write"))
    assert re.fullmatch("time     " + steps, lines[6])
    assert lines[7] == "result   field.csv"
    assert len(lines) == 8
    assert "\x1b" not in done.stderr


def test_writes_the_field_and_nothing_else_to_the_standard_output_when_asked(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.SQUARE))
    done = qelm.ok("solve", "grid.obj", "--fix", "vertex:0=0.1", "-o", "-", "-q")
    assert done.stderr == ""
    assert done.stdout.splitlines()[:2] == ["vertex,x,y,z,value", "0,0,0,0,0.1"]
    assert qelm.files() == ["grid.obj"]


def test_summarises_as_json(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    summary = qelm.json("solve", "grid.obj", *LEFT_RIGHT, "-o", "field.csv")
    seconds = summary.pop("seconds")
    assert sorted(seconds) == ["check", "construct", "read", "solve", "write"]
    assert all(0 <= s < 60 for s in seconds.values())
    assert summary == {
        "mesh": "grid.obj",
        "vertices": 20,
        "triangles": 24,
        "fixedVertices": 8,
        "fixFileVertices": 0,
        "fix": [
            {"selector": "box:0,0,0,0,9,0", "value": 0, "tag": 1, "vertices": 4},
            {"selector": "box:4,0,0,4,9,0", "value": 1, "tag": 1, "vertices": 4},
        ],
        "min": {"value": 0, "vertex": 0, "point": [0, 0, 0]},
        "max": {"value": 1, "vertex": 4, "point": [4, 0, 0]},
        "outside": None,
        "error": 0,
        "results": ["field.csv"],
    }


def test_every_double_of_the_field_reads_back_and_the_prescribed_ones_are_exact(qelm):
    mesh = shapes.annulus(1 / 3, 1.7)
    qelm.write("ring.obj", shapes.obj(mesh))
    value = 0.1 + 0.2
    qelm.ok("solve", "ring.obj", "--fix", f"loop:0={value!r}", "--fix", "loop:1=-1e-7", "-o", "f.csv")
    field = qelm.field("f.csv")
    assert field == [value] * 12 + [-1e-7] * 12
    assert qelm.points("f.csv") == [tuple(map(float, p)) for p in mesh[0]]


def test_loops_are_counted_from_the_longest(qelm):
    qelm.write("ring.obj", shapes.obj(shapes.annulus(1, 2)))
    outer = qelm.json("solve", "ring.obj", "--fix", "loop:0=5", "--fix", "vertex:12=6")
    assert outer["fix"][0]["vertices"] == 12
    assert outer["min"] == {"value": 5, "vertex": 0, "point": [2, 0, 0]}


def test_loops_of_holes_that_touch_in_a_vertex_stay_apart(qelm):
    # A 5 x 4 grid with two cells taken out that share one corner, vertex 14.
    points, faces = shapes.grid(5, 4)
    gone = {(7, 8, 14), (7, 14, 13), (14, 15, 21), (14, 21, 20)}
    kept = [f for f in faces if f not in gone]
    qelm.write("holes.obj", shapes.obj((points, kept)))
    summary = qelm.json(
        "solve", "holes.obj", "--fix", "loop:0=0", "--fix", "loop:1=1", "--fix", "loop:2=2"
    )
    assert [fix["vertices"] for fix in summary["fix"]] == [18, 4, 4]
    assert summary["fixedVertices"] == 18 + 4 + 4 - 1


def test_loops_of_surfaces_that_touch_in_a_vertex_stay_apart(qelm):
    faces = [(0, 1, 2), (0, 3, 4)]
    points = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (-2, 0, 0), (-2, -2, 0)]
    qelm.write("bow.obj", shapes.obj((points, faces)))
    summary = qelm.json("solve", "bow.obj", "--fix", "loop:0=0", "--fix", "loop:1=1")
    assert summary["fixedVertices"] == 5
    assert summary["max"]["vertex"] == 0 and summary["min"]["vertex"] == 3


def test_a_boundary_curve_that_meets_a_branching_edge_ends_there(qelm):
    # Three triangles on the edge 0-1: three open curves, each over one tip.
    points = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, -2, 0), (0, 0, 3)]
    qelm.write("fan.obj", shapes.obj((points, [(0, 1, 2), (0, 1, 3), (0, 1, 4)])))
    fix = [word for k in range(3) for word in ("--fix", f"loop:{k}={k}")]
    summary = qelm.json("solve", "fan.obj", *fix)
    assert [f["vertices"] for f in summary["fix"]] == [3, 3, 3]
    message = qelm.fails(2, "solve", "fan.obj", "--fix", "loop:3=0")
    lengths = [3 + 10**0.5, 2 + 5**0.5, 1 + 2**0.5]
    for k, length in enumerate(lengths):
        assert f"loop:{k} ({length:.9g} long)" in message


def test_loops_do_not_depend_on_the_orientation_of_triangles(qelm):
    points, faces = shapes.annulus(1, 2)
    turned = [f[::-1] if k % 3 == 0 else f for k, f in enumerate(faces)]
    qelm.write("ring.obj", shapes.obj((points, turned)))
    summary = qelm.json("solve", "ring.obj", "--fix", "loop:0=0", "--fix", "loop:1=1")
    assert [fix["vertices"] for fix in summary["fix"]] == [12, 12]


def test_near_takes_the_nearest_vertex_and_of_equals_the_lowest(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    summary = qelm.json(
        "solve", "grid.obj", "--fix", "near:3.9,2.8,1=1", "--fix", "near:1.5,0,0=0"
    )
    assert summary["max"]["vertex"] == 19
    assert summary["min"]["vertex"] == 1


def test_boxes_include_their_sides_and_take_corners_in_any_order(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    one = qelm.json("solve", "grid.obj", "--fix", "box:1,1,0,3,2,0=1")
    other = qelm.json("solve", "grid.obj", "--fix", "box:3,1,0,1,2,-1=1")
    assert one["fixedVertices"] == other["fixedVertices"] == 6


def test_the_last_of_two_conditions_on_a_vertex_holds_and_a_note_says_so(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    arguments = ["--fix", "vertex:0,1,2=0", "--fix", "vertex:2,1,7=1", "--fix", "vertex:7=1"]
    done = qelm.ok("solve", "grid.obj", *arguments, "-o", "field.csv")
    field = qelm.field()
    assert [field[v] for v in (0, 1, 2, 7)] == [0, 1, 1, 1]
    notes = [line for line in done.stderr.splitlines() if "note" in line]
    assert notes == [
        "qelm: note: vertex:2,1,7=1 holds instead of an earlier value at 2 vertices, "
        "the first is vertex 1 (1, 0, 0)"
    ]
    assert "fixed    4 vertices" in done.stderr


def test_version_and_help_go_to_the_standard_output(qelm):
    assert re.fullmatch(r"qelm \d+\.\d+\.\d+\n", qelm.ok("--version").stdout)
    assert "solve" in qelm.ok("--help").stdout


def test_several_fields_are_those_of_single_solves_bit_for_bit(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.annulus(1, 2)))
    inner = ["3", "-1e-3", "7.25"]
    qelm.ok("solve", "grid.obj", "--fix", "loop:0=0,1,-0.1", "--fix", "loop:1=" + ",".join(inner),
            "-o", "all.csv")
    rows = [line.split(",") for line in (qelm.folder / "all.csv").read_text().splitlines()]
    assert rows[0] == ["vertex", "x", "y", "z", "value1", "value2", "value3"]
    for k, (a, b) in enumerate(zip(["0", "1", "-0.1"], inner)):
        qelm.ok("solve", "grid.obj", "--fix", f"loop:0={a}", "--fix", f"loop:1={b}", "-o", "one.csv")
        assert [float(row[4 + k]) for row in rows[1:]] == qelm.field("one.csv")


def test_a_single_value_is_for_all_fields_and_each_has_its_range(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    arguments = ["solve", "grid.obj", "--fix", "box:0,0,0,0,9,0=5", "--fix", "box:4,0,0,4,9,0=1,9"]
    summary = qelm.json(*arguments)
    assert summary["fix"][0]["value"] == 5 and summary["fix"][1]["values"] == [1, 9]
    assert [(f["min"]["value"], f["max"]["value"]) for f in summary["fields"]] == [(1, 5), (5, 9)]
    lines = qelm.ok(*arguments).stderr.splitlines()
    assert lines[3] == "         box:4,0,0,4,9,0 = 1,9: 4"
    assert lines[4:6] == ["field 1", "minimum  1 at vertex 4 (4, 0, 0)"]
    assert lines[7] == "field 2"


def test_several_fields_take_the_same_load(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.write("load.csv", "".join(f"{0.1 * v}\n" for v in range(20)))
    load = ["--load", "load.csv"]
    qelm.ok("solve", "grid.obj", "--fix", "vertex:0=0,2", *load, "-o", "both.csv")
    rows = [line.split(",") for line in (qelm.folder / "both.csv").read_text().splitlines()[1:]]
    for k, value in enumerate([0, 2]):
        qelm.ok("solve", "grid.obj", "--fix", f"vertex:0={value}", *load, "-o", "one.csv")
        assert [float(row[4 + k]) for row in rows] == qelm.field("one.csv")


def test_tags_1_to_3_give_the_same_field(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    fields = []
    for tag in ("", ":1", ":2", ":3"):
        qelm.ok("solve", "grid.obj", "--fix", "vertex:0=0" + tag, "--fix", "vertex:19=1" + tag,
                "-o", "field.csv")
        fields.append(qelm.field())
    assert fields[0] == fields[1] == fields[2] == fields[3]


def test_values_and_tags_that_do_not_fit_are_refused(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    cases = [
        (["vertex:0=0,1", "vertex:1=1,2,3"], "--fix vertex:0=0,1 has 2 values, --fix vertex:1=1,2,3 has 3"),
        (["vertex:0=0:4"], "the tag '4' is not 1, 2 or 3"),
        (["vertex:0=0:"], "the tag '' is not 1, 2 or 3"),
        (["vertex:0=0,"], "'' is not a number"),
        (["vertex:0=1,nan"], "'nan' is not finite"),
    ]
    for fixes, message in cases:
        arguments = [word for fix in fixes for word in ("--fix", fix)]
        assert message in qelm.fails(2, "solve", "grid.obj", *arguments)
    for command, name in (("heatmap", "out.obj"), ("gradient", "out.csv")):
        assert "takes one field" in qelm.fails(2, command, "grid.obj", "--fix", "vertex:0=0,1", "-o", name)
