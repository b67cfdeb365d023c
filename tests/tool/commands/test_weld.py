"""qelm weld, and the welding that solve does by itself."""

import math
import re

import pytest

import shapes

GRID = shapes.grid(4, 3)


def soup(mesh, jitter=0.0):
    """Every triangle with corners of its own, the n-th of them off by n times jitter."""
    points, faces = mesh
    corners = [points[v] for face in faces for v in face]
    moved = [(x + jitter * (k % 3), y, z) for k, (x, y, z) in enumerate(corners)]
    return moved, [(3 * k, 3 * k + 1, 3 * k + 2) for k in range(len(faces))]


def read_obj(path):
    points, faces = [], []
    for line in path.read_text().splitlines():
        kind, *rest = line.split()
        if kind == "v":
            points.append(tuple(map(float, rest)))
        else:
            faces.append(tuple(int(v) - 1 for v in rest))
    return points, faces


@pytest.mark.parametrize("kind", ["obj", "stl_text", "stl_binary", "ply_text", "ply_binary"])
def test_a_soup_of_every_format_becomes_one_mesh(qelm, kind):
    name = "soup." + kind[:3]
    qelm.write(name, getattr(shapes, kind)(soup(GRID)))
    done = qelm.ok("weld", name, "-o", "mesh.obj")
    lines = done.stderr.splitlines()
    assert lines[0] == f"mesh     {name}: 72 vertices, 24 triangles"
    assert lines[1] == "welded   20 vertices, 24 triangles, within 5e-06"
    assert re.fullmatch(r"time     read \d+\.\d+ s, weld \d+\.\d+ s, write \d+\.\d+ s", lines[3])
    assert lines[4] == "result   mesh.obj"
    points, faces = read_obj(qelm.folder / "mesh.obj")
    assert sorted(points) == sorted(tuple(map(float, p)) for p in GRID[0])
    corners = [tuple(points[v] for v in face) for face in faces]
    assert corners == [tuple(tuple(map(float, GRID[0][v])) for v in face) for face in GRID[1]]


def test_the_tolerance_decides(qelm):
    qelm.write("soup.obj", shapes.obj(soup(GRID, 0.01)))
    counts = [
        qelm.json("weld", "soup.obj", "-o", "mesh.obj", "--tolerance", tolerance)["after"]
        for tolerance in ("0", "0.015", "0.03")
    ]
    assert counts[0] == {"vertices": 72, "triangles": 24}
    assert 20 < counts[1]["vertices"] <= 72
    assert counts[2] == {"vertices": 20, "triangles": 24}


def test_numbers_are_true_and_collapsed_or_repeated_triangles_go(qelm):
    points = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 1e-9, 0), (5, 5, 5)]
    faces = [(0, 1, 2), (0, 2, 3), (2, 1, 4), (0, 4, 5)]
    qelm.write("m.obj", shapes.obj((points, faces)))
    summary = qelm.json("weld", "m.obj", "-o", "w.obj", "--tolerance", "1e-6")
    assert summary["before"] == {"vertices": 6, "triangles": 4}
    assert summary["after"] == {"vertices": 4, "triangles": 2}
    assert (summary["droppedTriangles"], summary["droppedVertices"]) == (2, 1)
    assert read_obj(qelm.folder / "w.obj")[1] == [(0, 1, 2), (0, 2, 3)]


def test_every_double_is_kept_in_obj_and_ply(qelm):
    points = [(0.1 + 0.2, -1 / 3, 1e-300), (2 / 3, math.pi, 0), (1.1, 0.7, 12345.678901234567)]
    qelm.write("t.obj", shapes.obj((points, [(0, 1, 2)])))
    qelm.ok("weld", "t.obj", "-o", "t.ply")
    qelm.ok("weld", "t.ply", "-o", "u.obj")
    assert read_obj(qelm.folder / "u.obj") == (points, [(0, 1, 2)])


def test_stl_output_reads_back(qelm):
    qelm.write("grid.obj", shapes.obj(GRID))
    qelm.ok("weld", "grid.obj", "-o", "grid.stl")
    assert (qelm.folder / "grid.stl").read_bytes()[84:96] == shapes.stl_binary(GRID)[84:96]
    summary = qelm.json("weld", "grid.stl", "-o", "again.obj")
    assert summary["before"] == {"vertices": 72, "triangles": 24}
    assert summary["after"] == {"vertices": 20, "triangles": 24}


def test_a_mesh_may_be_welded_to_the_standard_output(qelm):
    qelm.write("m.obj", shapes.obj(soup(GRID)))
    done = qelm.ok("weld", "m.obj", "-o", "-", "-q")
    assert done.stderr == "" and done.stdout.count("v ") == 20
    qelm.ok("weld", "m.obj", "-o", "w.obj")
    assert (qelm.folder / "w.obj").read_text() == done.stdout


def test_what_single_precision_loses_is_said(qelm):
    # Steps of 0.1 at 6.5e6, where neighbouring numbers of single precision are 0.5 apart.
    fine = [(6.5e6 + x / 10, y, 0) for x, y, _ in GRID[0]]
    qelm.write("far.obj", shapes.obj((fine, GRID[1])))
    done = qelm.ok("weld", "far.obj", "--tolerance", "0", "-o", "far.stl")
    lost = len({tuple(sorted(f)) for f in GRID[1] if len({(round(fine[v][0] * 2), fine[v][1]) for v in f}) < 3})
    assert lost > 0
    assert f"note: far.stl: STL holds single precision, in which neighbouring vertices fall together: {lost} of 24 " in done.stderr
    assert "triangles are lost; write .ply or .obj" in done.stderr
    assert qelm.json("weld", "far.obj", "--tolerance", "0", "-o", "far.stl")["lostToSinglePrecision"] == lost
    assert "single precision" not in qelm.ok("weld", "far.obj", "--tolerance", "0", "-o", "far.ply").stderr
    qelm.write("near.obj", shapes.obj(GRID))
    assert "single precision" not in qelm.ok("weld", "near.obj", "-o", "near.stl").stderr


def test_what_is_too_large_for_single_precision_is_refused(qelm):
    qelm.write("huge.obj", shapes.obj(([(1e40 * c for c in p) for p in GRID[0]], GRID[1])))
    message = qelm.fails(4, "weld", "huge.obj", "-o", "huge.stl")
    assert "vertex 1 (1e+40, 0, 0): too large for single precision, which STL and binary OFF hold; write .ply or .obj" in message


def test_what_a_solve_would_refuse_is_noted(qelm):
    flat = [(0, 0, 0), (1, 0, 0), (2, 0, 0), (0, 1, 0)]
    qelm.write("m.obj", shapes.obj((flat, [(0, 1, 3), (0, 1, 2)])))
    done = qelm.ok("weld", "m.obj", "-o", "w.obj")
    assert "note: the result will not work: triangle 1 (0, 1, 2): zero area; remove such" in done.stderr


def test_refusals(qelm):
    qelm.write("m.obj", shapes.obj(soup(GRID)))
    qelm.write("nan.ply", shapes.ply_binary(([(0, 0, 0), (1, math.nan, 0), (0, 1, 0)], [(0, 1, 2)])))
    cases = [
        (2, ["m.obj"], "--output is required"),
        (2, ["m.obj", "-o", "w.step"], "-o w.step: .step is not written here; meshes are written as .obj, .off, .ply, .stl, .vtp or .vtu"),
        (2, ["m.obj", "-o", "w.obj", "--tolerance", "-1"], "--tolerance -1: a distance is needed"),
        (2, ["m.obj", "-o", "w.obj", "--tolerance", "nan"], "--tolerance nan: a distance is needed"),
        (2, ["m.obj", "-o", "w.obj", "--tolerance", "1mm"], "--tolerance 1mm: a distance is needed"),
        (2, ["m.obj", "-o", "-", "--json"], "not both"),
        (4, ["m.obj", "-o", "w.obj", "--tolerance", "100"], "m.obj: welding within 100 leaves no triangle"),
        (4, ["nan.ply", "-o", "w.obj"], "nan.ply: vertex 1 (1, nan, 0): coordinates not finite"),
        (3, ["none.obj", "-o", "w.obj"], "none.obj: no such file"),
        (1, ["m.obj", "-o", "nowhere/w.obj"], "nowhere/w.obj: cannot be written"),
    ]  # fmt: skip
    for code, arguments, message in cases:
        assert message in qelm.fails(code, "weld", *arguments)


def test_solve_welds_stl_files_by_itself_and_says_so(qelm):
    jittered = soup(GRID, 1e-6)
    qelm.write("soup.stl", shapes.stl_binary(jittered))
    fix = ["--fix", "box:0,0,0,0.001,9,0=0", "--fix", "box:3.999,0,0,9,9,0=1"]
    done = qelm.ok("solve", "soup.stl", *fix, "-o", "field.csv")
    assert (
        "note: soup.stl: welded within 5e-06: 72 vertices became 20, 24 triangles became 24; "
        "'qelm weld' takes another tolerance" in done.stderr
    )
    assert "mesh     soup.stl: 20 vertices, 24 triangles" in done.stderr
    assert qelm.field() == pytest.approx([p[0] / 4 for p in qelm.points()], abs=1e-5)


def test_a_soup_in_another_format_is_recognised_by_every_command(qelm):
    for jitter in (0, 1e-5):
        qelm.write("soup.obj", shapes.obj(soup(GRID, jitter)))
        runs = [["info"], ["check"], ["solve", "--fix", "vertex:0=1"], ["curves", "--fix", "vertex:0=1", "-o", "c.csv"]]
        for command, *more in runs:
            note = qelm.run(command, "soup.obj", *more).stderr
            assert "soup.obj: this looks like a triangle soup: it has 24 parts, and 52 of 72 vertices lie" in note
        remedy = re.search(r"join them with: qelm (weld soup.obj --tolerance \S+ -o welded.obj)\n", note)[1]
        qelm.ok(*remedy.split())
        done = qelm.ok("solve", "welded.obj", "--fix", "vertex:0=1")
        assert "20 vertices, 24 triangles" in done.stderr and "soup" not in done.stderr
    qelm.write("soup.obj", shapes.obj(soup(GRID)))
    done = qelm.run("solve", "soup.obj", "--fix", "vertex:0=1")
    assert done.returncode == 5
    assert "has no fixed vertex (and 22 more)" in done.stderr
    assert "or join the parts with 'qelm weld'" in done.stderr


def test_parts_that_do_not_touch_are_no_soup(qelm):
    apart = shapes.joined(*(shapes.moved(shapes.SQUARE, (3 * k, 0, 0)) for k in range(20)))
    qelm.write("many.obj", shapes.obj(apart))
    assert "soup" not in qelm.ok("check", "many.obj").stderr
    # One vertex in common of each two: a few of many.
    chain = shapes.joined(*(shapes.moved(shapes.SQUARE, (k, k, 0)) for k in range(20)))
    qelm.write("chain.obj", shapes.obj(chain))
    assert "soup" not in qelm.ok("check", "chain.obj").stderr


def test_off_keeps_every_bit_and_is_read_by_another_program(qelm):
    meshio = pytest.importorskip("meshio")
    points = [(x / 3 + 6.5e6, y * 1e-7, 1e-300) for x, y, _ in GRID[0]]
    qelm.write("m.obj", shapes.obj((points, GRID[1])))
    qelm.ok("weld", "m.obj", "--tolerance", "0", "-o", "m.off")
    other = meshio.read(qelm.folder / "m.off")
    assert [tuple(point) for point in other.points.tolist()] == points
    assert [tuple(face) for face in other.cells_dict["triangle"].tolist()] == GRID[1]
    qelm.ok("weld", "m.off", "--tolerance", "0", "-o", "again.obj")
    assert read_obj(qelm.folder / "again.obj") == (points, GRID[1])


OTHERS = {
    "textured.obj": (
        "v 0 0 0 1 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvn 0 0 1\ng front\nusemtl red\nf 1/1/1 2/1/1 3/1/1\nl 1 2\n",
        "colours, groups, lines, materials, normals, texture coordinates",
    ),
    "plain.obj": ("# by hand\ns off\n" + shapes.obj(shapes.SQUARE), None),
    "smooth.obj": ("s 1\n" + shapes.obj(shapes.SQUARE), "smoothing groups"),
    "coloured.off": (shapes.off(shapes.SQUARE).replace("3 0 1 2", "3 0 1 2 255 0 0"), "colours"),
    "all.off": (
        "STCNOFF\n3 1 0\n" + "".join(f"{x} 0 {y} 0 0 1 1 0 0 1 0 0\n" for x, y in ((0, 0), (1, 0), (0, 1))) + "3 0 1 2\n",
        "colours, normals, texture coordinates",
    ),
    "plain.off": (shapes.off(shapes.SQUARE), None),
    "scan.ply": (
        "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\nproperty float nx\n"
        "property uchar red\nproperty float quality\nelement face 1\nproperty list uchar int vertex_index\n"
        "element edge 1\nproperty int vertex1\nend_header\n0 0 0 1 9 0.5\n1 0 0 1 9 0.5\n0 1 0 1 9 0.5\n3 0 1 2\n0\n",
        "colours, normals, the elements 'edge', the property 'quality'",
    ),
    "plain.ply": (shapes.ply_binary(shapes.SQUARE), None),
    "plain.stl": (shapes.stl_binary(shapes.SQUARE), None),
    "coloured.stl": (shapes.stl_binary(shapes.SQUARE)[:-2] + b"\x1f\x80", "colours"),
    "text.stl": (shapes.stl_text(shapes.SQUARE), None),
}


@pytest.mark.parametrize("command", ["weld", "repair"])
def test_what_is_not_carried_over_is_said(qelm, command):
    for name, (content, lost) in OTHERS.items():
        qelm.write(name, content)
        done = qelm.ok(command, name, "-o", f"{name}.out.obj")
        assert ("not carried over" in done.stderr) == (lost is not None), name
        if lost is not None:
            assert f"note: {name}: not carried over: {lost}\n" in done.stderr
        assert "not carried over" not in qelm.ok("info", name).stderr
