"""qelm repair: what it mends, how it counts, and that the result can be solved on."""

import math

import pytest

import shapes

# The last vertex lies on the side from 0 to 1, in a triangle without area; its other side is (1, 0, 3).
CAP = [(0, 0, 0), (4, 0, 0), (0, 4, 0), (4, -4, 0), (2, 0, 0)], [(0, 1, 4), (0, 4, 2), (4, 1, 2), (1, 0, 3)]
KINDS = [
    "mergedVertices", "collapsedEdges", "splitSides", "closedTJoints", "droppedTriangles", "droppedVertices",
    "turnedTriangles", "flatTrianglesLeft", "opposedEdgesLeft",
]  # fmt: skip


def counts(summary):
    return {kind: summary[kind] for kind in KINDS if summary[kind]}


def repaired(qelm, name, *arguments):
    """What was done; `check` is content with the result."""
    summary = qelm.json("repair", name, "-o", "out.ply", *arguments)
    assert qelm.json("check", "out.ply")["grade"] == "fine"
    return counts(summary)


def test_a_cap_goes_and_its_neighbour_is_split(qelm):
    qelm.write("cap.obj", shapes.obj(CAP))
    fix = ["--fix", "near:0,4,0=0", "--fix", "near:4,-4,0=1"]
    assert "zero area" in qelm.fails(4, "solve", "cap.obj", *fix)
    assert repaired(qelm, "cap.obj") == {"splitSides": 1}
    qelm.ok("solve", "out.ply", *fix)
    info = qelm.json("info", "out.ply")
    assert (info["vertices"], info["triangles"], len(info["loops"])) == (5, 4, 1)
    assert info["area"] == pytest.approx(16)


def test_a_needle_collapses_to_its_short_side(qelm):
    points, faces = shapes.grid(3, 3)
    # Vertex 5 is torn in two, 1e-9 apart, with a needle between them.
    points = [*points, (1 + 1e-9, 1, 0)]
    faces = [tuple(16 if v == 5 and k in (9, 10) else v for v in face) for k, face in enumerate(faces)]
    qelm.write("needle.obj", shapes.obj((points, [*faces, (5, 16, 10), (5, 6, 16)])))
    assert repaired(qelm, "needle.obj") == {"mergedVertices": 1, "droppedTriangles": 2}
    assert counts(qelm.json("repair", "needle.obj", "-o", "o.ply", "--tolerance", "0")) != {}
    assert qelm.json("info", "out.ply")["area"] == pytest.approx(9)


def test_patches_with_t_joints_become_one_piece(qelm):
    # Each was triangulated for itself; the finer one has vertices on the other's sides.
    fine = [(x / 4, y, 0) for y in (1, 2) for x in range(13)]
    coarse = [(float(x), y, 0) for y in (0, 1) for x in range(4)]
    strip = lambda n: [t for k in range(n - 1) for t in ((k, k + 1, k + 1 + n), (k, k + 1 + n, k + n))]
    mesh = shapes.joined((fine, strip(13)), (coarse, strip(4)))
    qelm.write("patches.stl", shapes.stl_binary(mesh))
    before = qelm.json("info", "patches.stl")
    assert len(before["loops"]) == 2
    done = repaired(qelm, "patches.stl")
    # The three triangles of the coarse patch pass three vertices each.
    assert done == {"mergedVertices": 3 * (24 + 6) - 30, "closedTJoints": 9}
    info = qelm.json("info", "out.ply")
    assert len(info["parts"]) == len(info["loops"]) == 1
    assert info["area"] == pytest.approx(6)
    qelm.ok("solve", "out.ply", "--fix", "near:0,0,0=0", "--fix", "near:3,2,0=1")


def test_repeated_triangles_unused_vertices_and_orientation(qelm):
    points, faces = shapes.grid(3, 2)
    faces = [face[::-1] if k == 4 else face for k, face in enumerate(faces)]
    qelm.write("a.obj", shapes.obj(([*points, (9, 9, 9)], [*faces, faces[2][::-1], (faces[0][1], faces[0][2], faces[0][0])])))
    assert repaired(qelm, "a.obj") == {"droppedTriangles": 2, "droppedVertices": 1, "turnedTriangles": 1}
    report = qelm.json("check", "out.ply")["information"]
    assert report["opposedEdge"]["count"] == report["repeatedTriangle"]["count"] == 0
    assert qelm.json("info", "out.ply")["unusedVertices"] == 0


def test_polygons_and_repeated_corners_are_mended_as_everywhere(qelm):
    qelm.write("a.obj", shapes.obj(([(0, 0, 0), (4, 0, 0), (2, 1, 0), (2, 4, 0)], [(0, 1, 2, 3), (0, 1, 1), (0, 1, 2, 2)])))
    done = qelm.ok("repair", "a.obj", "-o", "a.ply")
    assert "1 of 3 faces have more than three corners" in done.stderr
    assert "face 2 names a vertex twice in a row" in done.stderr
    assert "not convex" in qelm.fails(4, "repair", "a.obj", "-o", "b.ply", "--strict")


def test_a_good_mesh_stays_as_it_is(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(5, 4)))
    done = qelm.ok("repair", "grid.obj", "-o", "out.obj")
    assert (qelm.folder / "out.obj").read_text() == (qelm.folder / "grid.obj").read_text().replace(".0", "")
    assert "note" not in done.stderr
    lines = done.stderr.splitlines()
    assert "mesh     grid.obj: 30 vertices, 40 triangles" in lines
    assert "repaired 30 vertices, 40 triangles, within 6.40312424e-06" in lines
    assert "        0 vertices set into sides that pass them (T-joints)" in lines
    assert lines[-1] == "result   out.obj"


def test_what_cannot_be_mended_is_said(qelm):
    # A Moebius strip of nine squares, round a circle.
    turn = [2 * math.pi * k / 9 for k in range(9)]
    points = []
    for t in turn:
        for side in (-1, 1):
            r = 3 + side * math.cos(t / 2)
            points.append((r * math.cos(t), r * math.sin(t), side * math.sin(t / 2)))
    ring = [*range(18), 1, 0]
    faces = [f for k in range(0, 18, 2) for f in ((ring[k], ring[k + 2], ring[k + 3]), (ring[k], ring[k + 3], ring[k + 1]))]
    qelm.write("moebius.obj", shapes.obj((points, faces)))
    done = qelm.ok("repair", "moebius.obj", "-o", "out.obj")
    assert "note: the triangles at 1 sides cannot be oriented alike, as on a Moebius strip" in done.stderr
    qelm.write("line.obj", shapes.obj(([(0, 0, 0), (1, 0, 0), (2, 0, 0)], [(0, 1, 2)])))
    assert "line.obj: no triangle has any height" in qelm.fails(4, "repair", "line.obj", "-o", "x.obj")
    points, faces = shapes.grid(8, 8)
    far = [(0.7 * x + 2e10 + 1 / 3, 0.7 * y + 2e10 / 3, 0) for x, y, _ in points], faces
    qelm.write("far.obj", shapes.obj(far))
    done = qelm.ok("repair", "far.obj", "-o", "far.ply")
    assert "note: the result will work, but with an error" in done.stderr


def test_an_stl_result_that_loses_triangles_says_so(qelm):
    qelm.write("far.obj", shapes.obj(shapes.moved(shapes.grid(4, 4), (1e9, 0, 0))))
    done = qelm.ok("repair", "far.obj", "-o", "far.stl")
    assert "STL holds single precision" in done.stderr


def test_refusals(qelm):
    qelm.write("a.obj", shapes.obj(shapes.SQUARE))
    assert "a distance is needed" in qelm.fails(2, "repair", "a.obj", "-o", "b.obj", "--tolerance", "-1")
    assert "not both" in qelm.fails(2, "repair", "a.obj", "-o", "-", "--json")
    assert "none.obj: no such file" in qelm.fails(3, "repair", "none.obj", "-o", "b.obj")
    assert "name that ends in" in qelm.fails(2, "repair", "a.obj", "-o", "b")


def test_a_refusal_for_flat_triangles_leads_here(qelm):
    qelm.write("cap.obj", shapes.obj(CAP))
    advice = "zero area; remove such triangles with 'qelm repair', or solve with --robust"
    assert advice in qelm.fails(4, "solve", "cap.obj", "--fix", "vertex:0=0")
    done = qelm.run("check", "cap.obj")
    assert advice in done.stdout and "remove such triangles with 'qelm repair'" in done.stdout.split("Verdict")[0]
