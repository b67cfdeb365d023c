"""qelm gradient and solve --gradient: exact on linear fields, on any triangles."""

import csv
import math
import os
import struct

import pytest

import built
import shapes

np = pytest.importorskip("numpy")

SEED = int(os.environ.get("QELM_TEST_SEED", "1"))
SEEDS = range(SEED, SEED + (1 if built.IS_WINDOWS else 4))  # programs start slowly under Wine
SLOPE = (3.0, -2.0, 0.5)
GRID = shapes.grid(4, 3)
FIX = ["--fix", "xmin=0", "--fix", "xmax=1"]


def rows(qelm, name="g.csv"):
    with open(qelm.folder / name, newline="") as file:
        table = list(csv.DictReader(file))
    return table, np.array([[float(row[c] or "nan") for c in ("gx", "gy", "gz", "slope")] for row in table])


def linear(qelm, mesh):
    """A mesh and the field SLOPE . p, written down; (points, corners) as arrays."""
    points, faces = np.array(mesh[0], dtype=float), np.array(mesh[1])
    qelm.write("mesh.obj", shapes.obj((points.tolist(), faces.tolist())))
    np.save(qelm.folder / "f.npy", points @ SLOPE)
    return points, faces


def expected(points, faces):
    """What lies of SLOPE in each triangle's plane; how much rounding may disturb it; its area."""
    a, b, c = points[faces[:, 0]], points[faces[:, 1]], points[faces[:, 2]]
    normals = np.cross(b - a, c - a)
    twice = np.linalg.norm(normals, axis=1)
    unit = normals / twice[:, None]
    longest = np.max([np.linalg.norm(s, axis=1) for s in (b - a, c - b, a - c)], axis=0)
    # The values are rounded to 2^-53 of the largest; over a height of 2A / longest.
    noise = 64 * 2.0**-53 * np.linalg.norm(SLOPE) * (1 + np.abs(points).max()) * longest / twice * (1 + longest**2 / twice)
    return np.array(SLOPE) - unit * (unit @ SLOPE)[:, None], noise, twice / 2


def random_mesh(seed):
    """Triangles over random points in space: of any shape, folded, crossing, with edges of three and more."""
    random = np.random.default_rng(seed)
    points = random.normal(size=(40, 3)) * 10.0 ** random.integers(-3, 4)
    return points, np.array([random.choice(40, 3, replace=False) for _ in range(120)])


@pytest.mark.parametrize("seed", SEEDS)
def test_a_linear_fields_gradient_is_its_part_in_each_triangle(qelm, seed):
    points, faces = linear(qelm, random_mesh(seed))
    wanted, noise, areas = expected(points, faces)
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "-o", "g.npy")
    found = np.load(qelm.folder / "g.npy")
    assert found.shape == (120, 3)
    worst = np.argmax(np.abs(found - wanted).max(axis=1) / noise)
    assert np.all(np.abs(found - wanted).max(axis=1) <= noise), f"seed {seed}, triangle {worst}"
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "--per", "vertex", "-o", "v.npy")
    means = np.load(qelm.folder / "v.npy")
    for v in range(40):
        own = np.flatnonzero((faces == v).any(axis=1))
        mean = (areas[own, None] * found[own]).sum(axis=0) / areas[own].sum() if len(own) else np.full(3, np.nan)
        np.testing.assert_allclose(means[v], mean, rtol=1e-12, atol=1e-12)


def test_in_a_plane_every_vertex_has_the_gradient_itself(qelm):
    linear(qelm, GRID)
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "-o", "g.csv")
    table, found = rows(qelm)
    assert list(table[0]) == ["triangle", "x", "y", "z", "gx", "gy", "gz", "slope"] and len(table) == 24
    assert (found == [3, -2, 0, math.sqrt(13)]).all()
    assert [float(table[0][c]) for c in "xyz"] == pytest.approx([2 / 3, 1 / 3, 0])
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "--per", "vertex", "-o", "v.csv")
    table, found = rows(qelm, "v.csv")
    assert list(table[0]) == ["vertex", "x", "y", "z", "value", "gx", "gy", "gz", "slope"] and len(table) == 20
    np.testing.assert_allclose(found, np.tile([3, -2, 0, math.sqrt(13)], (20, 1)), rtol=1e-14)


def test_orientation_and_a_constant_make_no_difference(qelm):
    points, faces = random_mesh(SEED)
    linear(qelm, (points, faces))
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "-o", "a.npy")
    qelm.write("turned.obj", shapes.obj((points.tolist(), faces[:, ::-1].tolist())))
    qelm.ok("gradient", "turned.obj", "--field", "f.npy", "-o", "b.npy")
    wanted, noise, _ = expected(points, faces)
    a, b = np.load(qelm.folder / "a.npy"), np.load(qelm.folder / "b.npy")
    assert np.all(np.abs(a - b).max(axis=1) <= 2 * noise)
    np.save(qelm.folder / "f.npy", np.full(40, 1 / 3))
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "-o", "c.npy")
    assert not np.load(qelm.folder / "c.npy").any()


def test_the_slope_of_a_ring_is_that_of_the_logarithm(qelm):
    """u = log r / log 2 between circles of radius 1 and 2: slope 1 / (r log 2), along the radius."""
    rings, segments = 24, 96
    points = [(2 ** (k / rings) * math.cos(t), 2 ** (k / rings) * math.sin(t), 0)
              for k in range(rings + 1) for t in (2 * math.pi * j / segments for j in range(segments))]  # fmt: skip
    faces = []
    for k in range(rings):
        for j in range(segments):
            a, b = k * segments + j, k * segments + (j + 1) % segments
            faces += [(a, b, a + segments), (b, b + segments, a + segments)]
    qelm.write("ring.obj", shapes.obj((points, faces)))
    qelm.ok("solve", "ring.obj", "--fix", "loop:0=1", "--fix", "loop:1=0", "--gradient", "-o", "g.csv")
    table, found = rows(qelm)
    for row, (gx, gy, gz, slope) in zip(table[segments:-segments], found[segments:-segments]):
        x, y = float(row["x"]), float(row["y"])
        r = math.hypot(x, y)
        assert slope == pytest.approx(1 / (r * math.log(2)), rel=3e-3)
        assert (gx * x + gy * y) / (r * slope) > 0.999 and gz == 0


def test_solve_writes_the_gradients_of_several_fields_beside_them(qelm):
    qelm.write("grid.obj", shapes.obj(GRID))
    qelm.ok("solve", "grid.obj", "--fix", "xmin=0,4", "--fix", "xmax=4,0", "--gradient", "-o", "g.csv")
    with open(qelm.folder / "g.csv") as file:
        assert file.readline().strip() == "vertex,x,y,z,value1,value2,gx1,gy1,gz1,slope1,gx2,gy2,gz2,slope2"
    qelm.ok("solve", "grid.obj", "--fix", "xmin=0,4", "--fix", "xmax=4,0", "--gradient", "-o", "g.npy")
    array = np.load(qelm.folder / "g.npy")
    np.testing.assert_allclose(array[:, 2:], np.tile([1, 0, 0, 1, -1, 0, 0, 1], (20, 1)), atol=1e-14)
    np.testing.assert_allclose(array[:, 0], [x for x, _, _ in GRID[0]], atol=1e-14)
    # What it writes is read again: a column by its name, and the values themselves.
    qelm.ok("solve", "grid.obj", *FIX, "--gradient", "-o", "one.csv")
    qelm.ok("heatmap", "grid.obj", "--field", "one.csv:value", "-o", "h.ply")
    assert qelm.json("solve", "grid.obj", "--fix-file", "one.csv")["fixedVertices"] == 20


def test_ply_has_it_as_properties_of_faces_or_vertices(qelm):
    linear(qelm, GRID)
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "-o", "g.ply")
    head, body = (qelm.folder / "g.ply").read_bytes().split(b"end_header\n")
    size = struct.calcsize("<4d")
    vertices = list(struct.iter_unpack("<4d", body[: 20 * size]))
    faces = list(struct.iter_unpack("<B3i4d", body[20 * size :]))
    assert [vertex[:3] for vertex in vertices] == GRID[0] and [face[1:4] for face in faces] == GRID[1]
    assert all(face[4:] == (3, -2, 0, math.sqrt(13)) for face in faces)
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "--per", "vertex", "-o", "v.ply")
    mesh = pytest.importorskip("meshio").read(qelm.folder / "v.ply")
    assert mesh.point_data["gx"] == pytest.approx([3] * 20) and mesh.point_data["slope"] == pytest.approx([math.sqrt(13)] * 20)
    assert mesh.cells[0].data.tolist() == [list(face) for face in GRID[1]]
    qelm.ok("heatmap", "v.ply", "--field", "v.ply:value", "-o", "h.ply")
    qelm.ok("curves", "g.ply", "--field", "g.ply", "-o", "c.csv")


@pytest.mark.parametrize("ending", [".vtp", ".vtu"])
def test_vtk_has_the_vectors_of_triangles_and_of_vertices(qelm, ending):
    pytest.importorskip("vtkmodules")
    import outside

    points, faces = random_mesh(SEED)
    linear(qelm, (points, faces))
    for per in ("triangle", "vertex"):
        qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "--per", per, "-o", f"{per}.npy")
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "-o", "g" + ending)
    triangles, vertices = np.load(qelm.folder / "triangle.npy"), np.load(qelm.folder / "vertex.npy")
    found = outside.read_vtk_data(qelm.folder / ("g" + ending))
    assert list(found.points) == ["value", "gradient", "slope"] and list(found.cells) == ["gradient", "slope"]
    np.testing.assert_array_equal(found.points["value"], np.load(qelm.folder / "f.npy"))
    np.testing.assert_array_equal(found.points["gradient"], vertices)
    np.testing.assert_array_equal(found.cells["gradient"], triangles)
    assert found.active == ("value", "gradient", "slope", "gradient")
    for of, vectors in ((found.points, vertices), (found.cells, triangles)):
        np.testing.assert_allclose(of["slope"], np.linalg.norm(vectors, axis=1), rtol=1e-15)
    if ending == ".vtu":  # meshio reads no .vtp
        mesh = pytest.importorskip("meshio").read(qelm.folder / "g.vtu")
        np.testing.assert_array_equal(mesh.points, points)
        np.testing.assert_array_equal(mesh.cells_dict["triangle"], faces)
        np.testing.assert_array_equal(mesh.point_data["gradient"], vertices)
        np.testing.assert_array_equal(mesh.cell_data_dict["gradient"]["triangle"], triangles)
    # And what is written is read here.
    qelm.ok("heatmap", "mesh.obj", "--field", f"g{ending}:gradient.1", "-o", "y.ply")
    qelm.ok("curves", "g" + ending, "--field", f"g{ending}:slope", "-o", "c.csv")


def test_solve_writes_mesh_field_and_gradient_for_vtk(qelm):
    pytest.importorskip("vtkmodules")
    import outside

    qelm.write("grid.obj", shapes.obj(GRID))
    qelm.ok("solve", "grid.obj", *FIX, "-o", "field.csv")
    qelm.ok("solve", "grid.obj", *FIX, "-o", "u.vtp")
    found = outside.read_vtk_data(qelm.folder / "u.vtp")
    assert list(found.points) == ["value"] and list(found.cells) == []
    assert found.points["value"].tolist() == qelm.field()
    qelm.ok("solve", "grid.obj", "--fix", "xmin=0,4", "--fix", "xmax=4,0", "--gradient", "-o", "g.vtu")
    found = outside.read_vtk_data(qelm.folder / "g.vtu")
    assert list(found.points) == ["value1", "value2", "gradient1", "slope1", "gradient2", "slope2"]
    np.testing.assert_allclose(found.cells["gradient2"], np.tile([-1, 0, 0], (24, 1)), atol=1e-14)
    np.testing.assert_allclose(found.points["value2"], [4 - x for x, _, _ in GRID[0]], atol=1e-14)


FLAT = ([*GRID[0], (0.5, 0, 0), (9, 9, 9), (10, 10, 10), (11, 11, 11)], [*GRID[1], (0, 20, 1), (21, 22, 23)])


def test_triangles_without_area_have_none_and_it_is_said(qelm):
    linear(qelm, FLAT)
    done = qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "-o", "g.csv")
    assert "2 triangles without area have no gradient and do not count in any mean: triangle 24 (0, 20, 1)" in done.stderr
    assert "gradient at most 3.60555128, at triangle 0 (0, 1, 6)" in done.stderr
    table, found = rows(qelm)
    assert np.isnan(found[24:]).all() and (found[:24] == [3, -2, 0, math.sqrt(13)]).all()
    assert [table[25][c] for c in ("gx", "gy", "gz", "slope")] == [""] * 4
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "--per", "vertex", "-o", "v.npy")
    means = np.load(qelm.folder / "v.npy")
    assert np.isnan(means[20:]).all()  # all of their triangles are flat
    np.testing.assert_allclose(means[:20], np.tile([3, -2, 0], (20, 1)), atol=1e-13)
    summary = qelm.json("gradient", "mesh.obj", "--field", "f.npy")
    assert summary["gradient"] == [{"slope": math.sqrt(13), "triangle": 0, "withoutArea": 2}]


def test_a_vertex_in_no_triangle_has_none(qelm):
    linear(qelm, ([*GRID[0], (7, 7, 7)], GRID[1]))
    qelm.ok("gradient", "mesh.obj", "--field", "f.npy", "--per", "vertex", "-o", "v.csv")
    table, found = rows(qelm, "v.csv")
    assert table[20]["value"] == "" and np.isnan(found[20]).all()


def test_wrong_words_are_refused(qelm):
    message = qelm.fails(2, "gradient", "none.obj", *FIX, "--per", "edge", "-o", "g.csv")
    assert "--per edge: give triangle or vertex" in message
    assert "'gradient' writes .csv, .npy, .ply, .vtp and .vtu" in qelm.fails(2, "gradient", "none.obj", *FIX, "-o", "g.vtk")
    assert "-o -) or --json, not both" in qelm.fails(2, "gradient", "none.obj", *FIX, "-o", "-", "--json")
    qelm.write("grid.obj", shapes.obj(GRID))
    assert "this command takes one field" in qelm.fails(2, "gradient", "grid.obj", "--fix", "xmin=0,1", "-o", "g.csv")
