"""qelm info: counts, sizes, parts, and the loops that --fix loop:K takes."""

import math

import pytest

import shapes


def test_tells_people_on_the_standard_output(qelm):
    qelm.write("ring.obj", shapes.obj(shapes.moved(shapes.annulus(1, 2), (5, 0, 1))))
    done = qelm.ok("info", "ring.obj")
    outer, inner = (24 * r * math.sin(math.pi / 12) for r in (2, 1))
    diagonal = (5 - 4 * math.cos(math.pi / 6)) ** 0.5
    mean = (outer + inner + 12 + 12 * diagonal) / 48
    assert done.stderr == ""
    lines = done.stdout.splitlines()
    assert lines[:9] == [
        "ring.obj",
        "vertices   24",
        "triangles  24",
        "box        3,-2,1 to 7,2,1",
        "size       4 x 4 x 0",
        "area       9",
        f"edges      48, {inner / 12:.9g} to {diagonal:.9g} long, {mean:.9g} on average",
        "parts      1",
        "boundary   2 loops, longest first",
    ]
    assert lines[9].startswith(f"  loop:0   {outer:.9g} long, 12 vertices, round (5, ")
    assert lines[10].startswith(f"  loop:1   {inner:.9g} long, 12 vertices, round (5, ")
    assert len(lines) == 11


def test_loops_have_the_numbers_that_fix_takes(qelm):
    holes = shapes.joined(shapes.annulus(1, 2), shapes.moved(shapes.annulus(0.5, 1.5), (9, 0, 4)))
    qelm.write("two.obj", shapes.obj(holes))
    loops = qelm.json("info", "two.obj")["loops"]
    assert [loop["selector"] for loop in loops] == [f"loop:{k}" for k in range(4)]
    assert [loop["length"] for loop in loops] == sorted((l["length"] for l in loops), reverse=True)
    assert [loop["middle"][2] for loop in loops] == pytest.approx([0, 4, 0, 4])
    assert all(loop["closed"] and loop["vertices"] == 12 for loop in loops)
    # The third is the smaller circle of the first ring.
    summary = qelm.json("solve", "two.obj", "--fix", "vertex:0,24=0", "--fix", f"{loops[2]['selector']}=5")
    assert summary["max"]["vertex"] == 12


def test_parts_and_unused_vertices_are_counted_apart(qelm):
    points, faces = shapes.joined(shapes.grid(4, 3), shapes.moved(shapes.SQUARE, (9, 0, 0)))
    qelm.write("m.obj", shapes.obj((points + [(0, 0, 7)], faces)))
    facts = qelm.json("info", "m.obj")
    assert facts["parts"] == [
        {"selector": "part:0", "lowestVertex": 0, "vertices": 20, "triangles": 24},
        {"selector": "part:1", "lowestVertex": 20, "vertices": 4, "triangles": 2},
    ]
    assert facts["unusedVertices"] == 1
    assert facts["box"] == {"min": [0, 0, 0], "max": [10, 3, 7]}
    assert facts["area"] == pytest.approx(13)
    assert facts["edges"]["count"] == 43 + 5
    assert (facts["edges"]["shortest"], facts["edges"]["longest"]) == (1, pytest.approx(2**0.5))
    text = qelm.ok("info", "m.obj").stdout
    assert "parts      2\n  part:0   24 triangles, 20 vertices, with vertex 0 (0, 0, 0)\n" in text
    assert "unused     1, the first is vertex 24 (0, 0, 7)\n" in text


def test_what_the_file_names_is_listed_as_conditions_take_it(qelm):
    qelm.write("m.obj", shapes.obj(shapes.SQUARE).replace("f 1", "g left\nusemtl red\nf 1", 1))
    text = qelm.ok("info", "m.obj").stdout
    assert "groups     1\n  group:left  4 vertices\nmaterials  1\n  material:red  4 vertices\n" in text
    facts = qelm.json("info", "m.obj")
    assert (facts["groups"], facts["properties"]) == ([{"name": "left", "vertices": 4}], [])
    ply = shapes.ply_text(shapes.SQUARE).replace("double z\n", "double z\nproperty float t\n")
    for k, point in enumerate(shapes.SQUARE[0]):
        ply = ply.replace("\n%r %r %r\n" % point, "\n%r %r %r %d\n" % (*point, k - 1), 1)
    qelm.write("m.ply", ply)
    assert "properties 1\n  property:t  -1 to 2\n" in qelm.ok("info", "m.ply").stdout
    assert qelm.json("info", "m.ply")["properties"] == [{"name": "t", "min": -1, "max": 2}]


def test_a_closed_mesh_has_no_loop(qelm):
    qelm.write("t.obj", shapes.obj(shapes.tetrahedron()))
    assert "boundary   none: the mesh is closed\n" in qelm.ok("info", "t.obj").stdout
    assert qelm.json("info", "t.obj")["loops"] == []


def test_an_open_boundary_curve_is_called_so(qelm):
    points = [(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, -2, 0), (0, 0, 3)]
    qelm.write("fan.obj", shapes.obj((points, [(0, 1, 2), (0, 1, 3), (0, 1, 4)])))
    assert [loop["closed"] for loop in qelm.json("info", "fan.obj")["loops"]] == [False] * 3
    assert "open: it ends where three triangles meet" in qelm.ok("info", "fan.obj").stdout


def test_stl_files_are_welded_as_they_are_for_a_solve(qelm):
    qelm.write("s.stl", shapes.stl_text(shapes.grid(4, 3)))
    done = qelm.ok("info", "s.stl")
    assert "vertices   20\n" in done.stdout and "loop:0   14 long, 14 vertices" in done.stdout
    assert "note: s.stl: welded within" in done.stderr
    assert qelm.ok("info", "s.stl", "-q").stderr == ""


def test_a_mesh_that_cannot_be_solved_on_is_described_all_the_same(qelm):
    flat = [(0, 0, 0), (1, 0, 0), (2, 0, 0)]
    qelm.write("flat.obj", shapes.obj((flat, [(0, 1, 2), (0, 1, 1)])))
    facts = qelm.json("info", "flat.obj")
    assert facts["area"] == 0 and facts["edges"]["count"] == 3


def test_refusals(qelm):
    assert "none.obj: no such file" in qelm.fails(3, "info", "none.obj")
    assert "mesh is required" in qelm.fails(2, "info")
    qelm.write("nan.off", shapes.off(shapes.SQUARE).replace("1 1 0", "1 nan 0"))
    assert "nan.off: vertex 2 (1, nan, 0): coordinates not finite" in qelm.fails(4, "info", "nan.off")
