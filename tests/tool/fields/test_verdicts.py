"""check and solve judge a mesh alike, in three grades; a field outside its range is said."""

import json
import math
import re

import pytest

import shapes

GRID = shapes.grid(6, 6)
SIDES = ["--fix", "box:0,-9,0,0,9,0=0", "--fix", "box:6,-9,0,6,9,0=1"]


def needle(height):
    """A good grid with one needle: the middle of an edge, off by a height, has a vertex of its own."""
    points, faces = GRID
    a, b = 3 * 7 + 3, 4 * 7 + 3  # the edge from (3, 3) to (3, 4)
    m = len(points)
    right = next(f for f in faces if a in f and b in f and any(points[v][0] > 3 for v in f))
    c = next(v for v in right if v not in (a, b))
    others = [f for f in faces if f is not right]
    return [*points, (3 + height, 3.5, 0)], [*others, (a, m, b), (a, c, m), (c, b, m)]


def thin(width):
    """A grid of slivers only, far from square and far from the axes."""
    return [(x + 0.3, (y + 0.3) * width, 0) for x, y, _ in GRID[0]], GRID[1]


def far(offset):
    # Rows shifted, so that no height lies along an axis.
    return [(x + 0.3 * (y % 2) * (0 < x < 6) + offset, y + 0.7 * offset, 0) for x, y, _ in GRID[0]], GRID[1]


def two_parts():
    return shapes.joined(GRID, shapes.moved(shapes.SQUARE, (20, 0, 0)))


def ends(mesh):
    """Both ends held at their x, from 0: the field is linear."""
    points = mesh[0]
    low, high = min(p[0] for p in points), max(p[0] for p in points)
    held = [(i, p[0] - low) for i, p in enumerate(points) if p[0] in (low, high)]
    return "".join(f"{i},{value!r}\n" for i, value in held), [p[0] - low for p in points]


FINE, WITH_ERROR, NOT = "fine", "will work, but with an error", "will not work"
MESHES = {
    "good": (GRID, FINE),
    "one needle does no harm": (needle(1e-9), FINE),
    "a flat triangle": (needle(0.0), NOT),
    "slivers": (thin(1e-3), FINE),
    "thinner slivers": (thin(1e-6), WITH_ERROR),
    "far away": (far(1e6), FINE),
    "very far away": (far(1e11), WITH_ERROR),
    "hopelessly far away": (far(1e15), NOT),
    "slivers that leave nothing": (thin(1e-9), NOT),
    "too large": (([tuple(1e70 * c for c in p) for p in GRID[0]], GRID[1]), NOT),
    "a part without a fixed vertex": (two_parts(), NOT),
}


@pytest.mark.parametrize("name", MESHES)
def test_check_and_solve_say_the_same(qelm, name):
    mesh, grade = MESHES[name]
    qelm.write("mesh.obj", shapes.obj(mesh))
    fixes, exact = ends(mesh)
    if grade == NOT and "part" in name:
        fixes = "0,0\n"
    qelm.write("ends.csv", fixes)
    check = qelm.run("check", "mesh.obj", "--fix-file", "ends.csv", "--json")
    report = json.loads(check.stdout)
    solve = qelm.run("solve", "mesh.obj", "--fix-file", "ends.csv", "-o", "field.csv")
    assert report["grade"] == grade
    assert check.returncode == solve.returncode
    text = qelm.run("check", "mesh.obj", "--fix-file", "ends.csv").stdout
    assert f"Verdict: {report['verdict']}\n" in text
    if grade == NOT:
        assert report["verdict"].startswith("will not work: ")
        assert f"qelm: error: mesh.obj: {report['verdict']}\n" == solve.stderr
        assert check.returncode in (4, 5)
        return
    assert check.returncode == 0
    off = max(abs(a - b) for a, b in zip(qelm.field(), exact)) / max(exact)
    if grade == WITH_ERROR:
        assert f"note: mesh.obj: {report['verdict']}\n" in solve.stderr
        said = float(re.search(r"will work, but with an error of about (\S+) of the largest value", solve.stderr)[1])
        assert said == pytest.approx(report["error"], rel=0.6)
        assert off < 3 * said, "what is said is not too small"
        assert said < 100 * off, "nor is it pulled out of the air"
    else:
        assert report["error"] == 0 and "will work" not in solve.stderr
        assert off < 1e-5


def test_without_conditions_one_vertex_of_every_part_counts_as_fixed(qelm):
    qelm.write("mesh.obj", shapes.obj(two_parts()))
    assert qelm.ok("check", "mesh.obj").stdout.endswith("Verdict: fine, once every part has a fixed vertex\n")
    qelm.write("mesh.obj", shapes.obj(thin(1e-9)))
    assert "Verdict: will not work: rounding leaves nothing" in qelm.run("check", "mesh.obj").stdout


def sheared(by):
    return [(x + by * y, y, 0) for x, y, _ in GRID[0]], GRID[1]


PEAK = ["--fix", "boundary=4", "--fix", "vertex:24=8"]


def test_a_field_that_leaves_the_range_of_its_fixed_values_is_said(qelm):
    qelm.write("sheared.obj", shapes.obj(sheared(2.5)))
    done = qelm.ok("solve", "sheared.obj", *PEAK, "-o", "field.csv")
    field = qelm.field()
    lowest = min(range(len(field)), key=field.__getitem__)
    assert field[lowest] < 4 and max(field) == 8
    x, y, z = qelm.points()[lowest]
    said = f"by {4 - field[lowest]:.3g}: it is {field[lowest]:.4f} at vertex {lowest} ({x:g}, {y:g}, {z:g}); "
    assert f"note: the field leaves the range of the fixed values, 4 to 8, {said}" in done.stderr
    assert "triangles without obtuse angles" in done.stderr
    outside = qelm.json("solve", "sheared.obj", *PEAK)["outside"]
    assert (outside["vertex"], outside["value"]) == (lowest, field[lowest])
    assert outside["by"] == pytest.approx(4 - field[lowest])


def test_a_field_within_its_range_or_with_a_load_is_not_blamed(qelm):
    qelm.write("grid.obj", shapes.obj(GRID))
    assert "leaves the range" not in qelm.ok("solve", "grid.obj", *PEAK).stderr
    qelm.write("sheared.obj", shapes.obj(sheared(2.5)))
    qelm.write("load.csv", "24,0\n")
    assert "leaves the range" not in qelm.ok("solve", "sheared.obj", *PEAK, "--load", "load.csv").stderr
    # Rounding is no overshoot.
    assert "leaves the range" not in qelm.ok("solve", "grid.obj", "--fix", "boundary=0.1").stderr


def test_of_several_fields_the_one_that_leaves_is_named(qelm):
    qelm.write("sheared.obj", shapes.obj(sheared(2.5)))
    done = qelm.ok("solve", "sheared.obj", "--fix", "boundary=4", "--fix", "vertex:24=4,8")
    assert "note: field 2: the field leaves the range" in done.stderr and "field 1: the" not in done.stderr


def plain_not_delaunay(points, faces):
    """Edges whose opposite angles are more than 180 degrees together, by the angles themselves."""
    angles = {}
    for face in faces:
        for k in range(3):
            p, a, b = (points[face[(k + i) % 3]] for i in range(3))
            u, v = ([s - t for s, t in zip(q, p)] for q in (a, b))
            cosine = sum(s * t for s, t in zip(u, v)) / math.hypot(*u) / math.hypot(*v)
            edge = frozenset((face[(k + 1) % 3], face[(k + 2) % 3]))
            angles.setdefault(edge, []).append(math.acos(cosine))
    return [e for e, list_ in angles.items() if sum(1 / math.tan(a) for a in list_) < -1e-9]


@pytest.mark.parametrize("by", [0, 0.5, 2.5])
def test_edges_that_are_not_delaunay_are_counted(qelm, by):
    mesh = sheared(by)
    qelm.write("mesh.obj", shapes.obj(mesh))
    edges = plain_not_delaunay(*mesh)
    found = json.loads(qelm.ok("check", "mesh.obj", *PEAK, "--json").stdout)["information"]["notDelaunayEdge"]
    assert found["count"] == len(edges)
    assert found["canMatter"] == (len(edges) > 0)
    text = qelm.ok("check", "mesh.obj", *PEAK).stdout
    if edges:
        low, high = min(sorted(e) for e in edges)
        assert f"{len(edges)} edges that are not Delaunay; the first: {low} to {high}\n" in text
        assert "near them a field may leave the range of its fixed values a little" in text
    else:
        assert "0 edges that are not Delaunay: a field without load stays within its fixed values" in text


def test_edges_between_fixed_vertices_cannot_matter(qelm):
    # Two flat triangles on their long edge, all of whose ends are held.
    points = [(0, 0, 0), (4, 0, 0), (2, 0.5, 0), (2, -0.5, 0)]
    qelm.write("m.obj", shapes.obj((points, [(0, 1, 2), (1, 0, 3)])))
    text = qelm.ok("check", "m.obj", "--fix", "vertex:0,1=0").stdout
    assert "1 edge that is not Delaunay; the first: 0 to 1\n          both ends of each are fixed" in text
