"""Every selector beyond vertices, loops and boxes, and what joins them."""

import math

import pytest

import shapes

GRID = shapes.grid(4, 3)  # vertex 5 * row + column, at (column, row)


@pytest.fixture
def grid(qelm):
    return qelm.write("grid.obj", shapes.obj(GRID))


def selected(qelm, mesh, selectors, value="7"):
    """The vertices that a condition takes, from what becomes of them, and its line of the summary."""
    done = qelm.ok("solve", mesh, "--fix", f"{selectors}={value}:2", "--fix-file", all_of(qelm, mesh), "-o", "f.csv")
    fixed = [v for v, value in enumerate(qelm.field("f.csv")) if value != -99]
    (line,) = [line for line in done.stderr.splitlines() if line.startswith(f"         {selectors} = {value}: ")]
    return fixed, line.rpartition(f" = {value}: ")[2]


def all_of(qelm, mesh):
    """A file that holds every vertex at a value that no condition here gives."""
    count = qelm.json("info", mesh)["vertices"]
    return qelm.write("all.csv", "".join(f"{v},-99\n" for v in range(count)))


def where(holds, points=GRID[0]):
    return [v for v, point in enumerate(points) if holds(*point)]


PLACES = {
    "vertex:3-5,0": lambda x, y, z: (x, y) in [(3, 0), (4, 0), (0, 1), (0, 0)],
    "sphere:1,1,0,1": lambda x, y, z: math.hypot(x - 1, y - 1) <= 1,
    "xmin": lambda x, y, z: x == 0,
    "xmax": lambda x, y, z: x == 4,
    "ymin": lambda x, y, z: y == 0,
    "ymax": lambda x, y, z: y == 3,
    "zmin": lambda x, y, z: True,
    "plane:0,0,0,5,5,0": lambda x, y, z: x + y == 0,
    "plane:2,2,0,-1,1,0": lambda x, y, z: x == y,
    "plane:2,2,0,1,-1,0,0.8": lambda x, y, z: abs(x - y) <= 1,
    "above:2,0,0,1,0,0": lambda x, y, z: x >= 2,
    "below:2,0,0,1e-300,0,0": lambda x, y, z: x <= 2,
    "xmin & ymin": lambda x, y, z: x == 0 and y == 0,
    "xmin|ymin": lambda x, y, z: x == 0 or y == 0,
    "!xmin": lambda x, y, z: x != 0,
    "!!xmin": lambda x, y, z: x == 0,
    "xmin | ymin & xmax": lambda x, y, z: x == 0 or (x == 4 and y == 0),
    "(xmin | ymin) & !(xmax | ymax)": lambda x, y, z: (x == 0 or y == 0) and x != 4 and y != 3,
    "boundary & !(vertex:0)": lambda x, y, z: (x in (0, 4) or y in (0, 3)) and (x, y) != (0, 0),
}


@pytest.mark.parametrize("selectors", PLACES)
def test_places(qelm, grid, selectors):
    assert selected(qelm, grid, selectors)[0] == where(PLACES[selectors])


def test_tolerances_are_a_part_of_the_box_and_printed(qelm):
    # The box's diagonal is 5: its millionth.
    points = [(x + (4e-6 if (x, y) == (0, 1) else 6e-6 if (x, y) == (0, 2) else 0), y, z) for x, y, z in GRID[0]]
    qelm.write("m.obj", shapes.obj((points, GRID[1])))
    vertices, line = selected(qelm, "m.obj", "xmin")
    assert vertices == [0, 5, 15] and line == "3 (x = 0 within 5e-06)"
    vertices, line = selected(qelm, "m.obj", "plane:0,0,0,2,0,0")
    assert vertices == [0, 5, 15] and line == "3 (within 5e-06)"
    assert selected(qelm, "m.obj", "plane:0,0,0,2,0,0,7e-6") == ([0, 5, 10, 15], "4")
    found = qelm.json("solve", "m.obj", "--fix", "xmin=1")["fix"][0]["found"]
    assert found == ["x = 0 within 5e-06"]


def test_loops_and_parts_are_found_by_a_point(qelm):
    rings = shapes.joined(shapes.annulus(1, 2), shapes.moved(shapes.annulus(1, 2), (9, 0, 0)))
    qelm.write("two.obj", shapes.obj(rings))
    loops = qelm.json("info", "two.obj")["loops"]
    middle = [loop["middle"][0] for loop in loops]
    for k, loop in enumerate(loops):
        x = round(middle[k]) + (2 if loop["length"] > 9 else 1)
        vertices, line = selected(qelm, "two.obj", f"loop:near:{x},0,0.25")
        assert line == f"12 (loop:{k}, 0.25 away)"
        assert vertices == selected(qelm, "two.obj", f"loop:{k}")[0]
    assert selected(qelm, "two.obj", "part:1")[0] == list(range(24, 48))
    assert selected(qelm, "two.obj", "part:near:1,0,0") == (list(range(24)), "24 (part:0, 0 away)")
    assert "there is no part 2; the mesh has 2, numbered 0 to 1" in qelm.fails(2, "solve", "two.obj", "--fix", "part:2=1")


GROUPED = """v 0 0 0\nv 1 0 0\nv 2 0 0\nv 0 1 0\nv 1 1 0\nv 2 1 0
o a house with (odd) & "signs"
usemtl red stone
g left both
f 1 2 5
f 1 5 4
g right both
usemtl glass
f 2 3 6\nf 2 6 5
"""


def test_groups_objects_and_materials_take_the_vertices_of_their_faces(qelm):
    qelm.write("m.obj", GROUPED)
    assert selected(qelm, "m.obj", "group:left")[0] == [0, 1, 3, 4]
    assert selected(qelm, "m.obj", "group:right & !group:left")[0] == [2, 5]
    assert selected(qelm, "m.obj", "group:both")[0] == list(range(6))
    assert selected(qelm, "m.obj", "material:red stone")[0] == [0, 1, 3, 4]
    message = qelm.fails(2, "solve", "m.obj", "--fix", "group:top=1")
    assert "there is no group 'top'; the file has left, both, right, a house with" in message
    assert "the file has no property of this or another name" in qelm.fails(2, "solve", "m.obj", "--fix", "property:t=1")
    qelm.write("n.obj", GROUPED.replace("left both", "a=(b)"))
    assert selected(qelm, "n.obj", 'group:"a=(b)" & xmin')[0] == [0, 3]


def with_property(mesh, values):
    text = shapes.ply_text(mesh).replace("double z\n", "double z\nproperty double t\n")
    head, body = text.split("end_header\n")
    lines = body.splitlines()
    lines[: len(values)] = [f"{line} {value!r}" for line, value in zip(lines, values)]
    return head + "end_header\n" + "\n".join(lines) + "\n"


def test_a_property_selects_where_it_is_not_zero_and_may_give_the_values(qelm):
    values = [0.0] * 20
    values[3], values[7], values[9] = 2.5, -1, math.nan
    qelm.write("m.ply", with_property(GRID, values))
    assert selected(qelm, "m.ply", "property:t")[0] == [3, 7]
    qelm.ok("solve", "m.ply", "--fix", "property:t=*", "-o", "f.csv")
    field = qelm.field("f.csv")
    assert [field[v] for v in range(20) if v != 9] == [values[v] for v in range(20) if v != 9]
    # The free one: between its neighbours.
    assert -1 < field[9] < 2.5
    fix = qelm.json("solve", "m.ply", "--fix", "property:t & xmin=*")["fix"][0]
    assert (fix["vertices"], fix["value"]) == (4, "*")
    message = qelm.fails(2, "solve", "m.ply", "--fix", "xmin=*")
    assert "the value * is that of a property; name one" in message


def test_features_are_edges_whatever_the_orientation_of_their_triangles(qelm):
    # A roof: 45 degrees up, 45 degrees down.
    points = [(x, y, 1 - abs(x - 1)) for y in (0, 1) for x in range(3)]
    faces = [(0, 1, 4), (0, 4, 3), (1, 2, 5), (5, 1, 4)]
    for changed in (faces, [faces[0][::-1], *faces[1:]], [face[::-1] for face in faces]):
        qelm.write("m.obj", shapes.obj((points, changed)))
        assert selected(qelm, "m.obj", "feature:80")[0] == [1, 4]
    message = qelm.fails(2, "solve", "m.obj", "--fix", "feature:100=1")
    assert "--fix feature:100: no edge is sharper than 100 degrees" in message
    done = qelm.ok("solve", "m.obj", "--fix", "xmin & !feature:100=1")
    assert "note: --fix xmin & !feature:100: no edge is sharper than 100 degrees" in done.stderr


CURVES = {
    "rail.csv": "0,0.9,0\n3,1.2,0\n",
    "rail.obj": "v 9 9 9\nv 0 0.9 0\nv 3 1.2 0\nl -2 -1\n",
    "header.csv": "curve,level,value,closed,x,y,z\n0,0,1,0,0,0.9,0\n0,0,1,0,3,1.2,0\n",
}


@pytest.mark.parametrize("name", CURVES)
def test_a_curve_takes_a_chain_without_gaps(qelm, grid, name):
    qelm.write(name, CURVES[name])
    vertices, line = selected(qelm, grid, f"curve:{name}")
    assert vertices == [5, 6, 7, 8] and line == "4 (at most 0.199007 away)"
    steep = qelm.write("steep.csv", "0,0,0\n1,3,0\n")
    vertices, _ = selected(qelm, grid, f"curve:{steep}")
    edges = {frozenset((f[k], f[k - 1])) for f in GRID[1] for k in range(3)}
    reached = {0}
    for _ in vertices:
        reached |= {v for v in vertices if any(frozenset((v, r)) in edges for r in reached)}
    assert {0, 16} <= reached == set(vertices)


def test_curves_that_cannot_be_read_are_refused_with_their_line(qelm, grid):
    for name, text, message in (
        ("a.csv", "1,2,3\n1,b,3\n", "a.csv:2: 'b' is not a coordinate"),
        ("b.csv", "x,y\n1,2\n", "b.csv:1: the header has no columns 'x', 'y' and 'z'"),
        ("c.csv", "1,2,3\n1,2\n", "c.csv:2: 2 columns, but 3 before"),
        ("d.csv", "# none\n", "d.csv: not a curve: no points"),
        ("e.obj", "v 0 0 0\nl 1 2\n", "e.obj:2: '2' is no vertex of a line; 1 come before it"),
        ("f.obj", "v 0 0 0\nv 1 0\n", "f.obj:2: a point needs three coordinates"),
        ("g.obj", "v 0 0 0\n", "g.obj: not a curve: no polyline (l)"),
    ):
        qelm.write(name, text)
        assert message in qelm.fails(3, "solve", grid, "--fix", f"curve:{name}=1")
    assert "none.csv: no such file" in qelm.fails(3, "solve", grid, "--fix", "curve:none.csv=1")


def test_a_curve_is_not_written_over(qelm, grid):
    qelm.write("rail.csv", CURVES["rail.csv"])
    message = qelm.fails(2, "solve", grid, "--fix", "curve:rail.csv & !xmin=1", "--fix", "xmin=0", "-o", "rail.csv")
    assert "-o rail.csv would overwrite rail.csv, which is read" in message


BAD = {
    "vertex:5-3=1": "the range '5-3' ends before it begins",
    "vertex:1--3=1": "'-3' is not a number counted from 0",
    "vertex:0-99999999999999=1": "there is no vertex 99999999999999; the mesh has 20 vertices",
    "sphere:0,0,0,-1=1": "the radius is negative",
    "sphere:0,0,0=1": "4 numbers are needed here, 3 given",
    "plane:0,0,0,0,0,0=1": "the normal 0,0,0 has no direction",
    "plane:0,0,0,1=1": "6 or 7 numbers are needed here, 4 given",
    "plane:0,0,0,1,0,0,-1=1": "the tolerance is negative",
    "above:0,0,0,1,0,0,1=1": "6 numbers are needed here, 7 given",
    "feature:180=1": "an angle from 0 to less than 180 is needed",
    "group:=1": "group: a name is needed",
    "xmid=1": "write vertex:I",
    "(xmin=1": "a bracket is not closed",
    "xmin)=1": "a bracket is closed that was not opened: ')'",
    "xmin & =1": "write vertex:I",
    "xmin & xmax=1": "the selectors together select no vertex",
    "sphere:9,9,9,1=1": "no vertex lies in this sphere; the mesh spans 0,0,0 to 4,3,0",
    "above:9,0,0,1,0,0=1": "no vertex lies above this plane",
    "(" * 200 + "xmin" + ")" * 200 + "=1": "the brackets are too deep",
    "!" * 200 + "xmin=1": "the brackets are too deep",
}


@pytest.mark.parametrize("condition", BAD, ids=[text[:20] for text in BAD])
def test_bad_selectors_are_refused(qelm, grid, condition):
    assert BAD[condition] in qelm.fails(2, "solve", grid, "--fix", condition)
