"""--field: numbers per vertex from elsewhere, in place of a solve; numpy's files in and out."""

import json

import pytest

import built
import shapes

np = pytest.importorskip("numpy")

GRID = shapes.grid(4, 3)
FIX = ["--fix", "xmin=0", "--fix", "near:4,3,0=1"]
VALUES = [x * x - y / 3 for x, y, _ in GRID[0]]


@pytest.fixture
def grid(qelm):
    return qelm.write("grid.obj", shapes.obj(GRID))


def with_values(mesh, values, name="value"):
    text = shapes.ply_text(mesh).replace("double z\n", f"double z\nproperty double {name}\n")
    head, body = text.split("end_header\n")
    lines = body.splitlines()
    lines[: len(values)] = [f"{line} {value!r}" for line, value in zip(lines, values)]
    return head + "end_header\n" + "\n".join(lines) + "\n"


def written_by_numpy(array):
    return lambda qelm: np.save(qelm.folder / "f.npy", array)


def text(name, content):
    return lambda qelm: qelm.write(name, content)


COLUMN = np.array(VALUES)
FORMS = {
    "f.csv": text("f.csv", "".join(f"{v!r}\n" for v in VALUES)),
    "f.csv:1": text("f.csv", "".join(f"{k},{v!r}\n" for k, v in enumerate(VALUES))),
    "f.csv:u": text("f.csv", "u,vertex\n" + "".join(f"{v!r},{k}\n" for k, v in reversed(list(enumerate(VALUES))))),
    "field": text("field", "# from elsewhere\n\nvalue\n" + "".join(f" {v!r} # here\r\n" for v in VALUES)),
    "C:f.csv": text("C:f.csv", "".join(f"{v!r}\n" for v in VALUES)),
    "f.npy": written_by_numpy(COLUMN),
    "f.npy:2": written_by_numpy(np.stack([COLUMN + 1, COLUMN + 2, COLUMN], axis=1)),
    "f.npy:1": written_by_numpy(np.asfortranarray(np.stack([COLUMN + 1, COLUMN], axis=1))),
    "f.npy:0": written_by_numpy(COLUMN.astype(">f8").reshape(-1, 1)),
    "f.ply": text("f.ply", with_values(GRID, VALUES)),
    "f.ply:t": text("f.ply", with_values(GRID, VALUES, "t")),
}


@pytest.mark.parametrize("source", FORMS)
def test_a_field_from_a_file_is_cut_with_the_bits_it_has(qelm, grid, source):
    if source.startswith("C:") and built.IS_WINDOWS:
        pytest.skip("no file can be called so")
    FORMS[source](qelm)
    summary = qelm.json("curves", grid, "--field", source, "--at", "2.5", "-o", "c.json")
    assert summary["field"] == source and summary["fix"] == []
    assert (summary["min"]["value"], summary["max"]["value"]) == (min(VALUES), max(VALUES))
    (curve,) = json.loads((qelm.folder / "c.json").read_text())["curves"]
    for x, y, z in curve["points"]:
        low = int(x) if x < 4 else 3
        assert 1 <= x <= 2 and low in (1, 2) and z == 0


@pytest.mark.parametrize("kind", ["f4", "<f4", ">f4", "i1", "u1", "i2", ">i2", "u2", "i4", ">u4", "i8", "u8", "?"])
def test_numbers_of_every_size_and_order_are_read(qelm, grid, kind):
    values = np.arange(20).astype(kind)
    np.save(qelm.folder / "f.npy", values)
    summary = qelm.json("heatmap", grid, "--field", "f.npy", "-o", "h.ply")
    assert summary["max"]["value"] == values.max() and summary["max"]["vertex"] == values.argmax()


def test_heat_maps_take_a_field_and_keep_it(qelm, grid):
    qelm.write("f.csv", "".join(f"{v!r}\n" for v in VALUES))
    qelm.ok("heatmap", grid, "--field", "f.csv", "-o", "h.ply")
    qelm.ok("curves", "h.ply", "--field", "h.ply", "-o", "a.csv")
    qelm.ok("curves", grid, "--field", "f.csv", "-o", "b.csv")
    assert (qelm.folder / "a.csv").read_text() == (qelm.folder / "b.csv").read_text()
    qelm.ok("heatmap", grid, "--field", "f.csv", "-o", "h")
    places = [line.split()[1:] for line in (qelm.folder / "h.obj").read_text().splitlines() if line.startswith("v ")]
    assert [tuple(map(float, place)) for place in places] == GRID[0]


@pytest.mark.skipif(not built.HAS_VIEW_PAGE, reason="built without the page")
def test_pages_take_a_field(qelm, grid):
    qelm.write("f.csv", "".join(f"{v!r}\n" for v in VALUES))
    qelm.ok("view", grid, "--field", "f.csv", "-o", "p.html")
    page = (qelm.folder / "p.html").read_text(encoding="utf-8")
    assert '"conditions":[]' in page
    message = qelm.fails(2, "view", grid, "--field", "f.csv", "--page", "p.html", "-o", "q.html")
    assert "--page fills in a page that solves" in message


def test_a_field_is_as_good_solved_as_read(qelm, grid):
    qelm.ok("solve", grid, *FIX, "-o", "f.csv")
    qelm.ok("curves", grid, *FIX, "-o", "a.json")
    qelm.ok("curves", grid, "--field", "f.csv", "-o", "b.json")
    assert (qelm.folder / "a.json").read_text() == (qelm.folder / "b.json").read_text()


def test_fields_are_written_for_numpy(qelm, grid):
    qelm.ok("solve", grid, *FIX, "-o", "f.csv")
    qelm.ok("solve", grid, *FIX, "-o", "f.npy")
    array = np.load(qelm.folder / "f.npy")
    assert array.dtype == np.float64 and array.tolist() == qelm.field("f.csv")
    qelm.ok("solve", grid, "--fix", "xmin=0,5", "--fix", "near:4,3,0=1,7", "-o", "two.npy")
    two = np.load(qelm.folder / "two.npy")
    assert two.shape == (20, 2) and two[:, 0].tolist() == qelm.field("f.csv")
    assert (two[0, 1], two[19, 1]) == (5, 7)
    qelm.ok("curves", grid, "--field", "two.npy:1", "-o", "c.csv")


def test_conditions_and_loads_come_from_numpy(qelm, grid):
    held = np.full(20, np.nan)
    held[[0, 5, 10, 15]], held[19] = 0, 1
    np.save(qelm.folder / "held.npy", held)
    np.save(qelm.folder / "load.npy", np.array(VALUES))
    qelm.write("load.csv", "".join(f"{v!r}\n" for v in VALUES))
    qelm.ok("solve", grid, *FIX, "--load", "load.csv", "-o", "field.csv")
    expected = qelm.field()
    qelm.ok("solve", grid, "--fix-file", "held.npy", "--load", "load.npy", "-o", "field.csv")
    assert qelm.field() == expected
    for bad, message in ((np.full(20, np.nan), "no vertex to fix: all values are nan"),
                         (np.full(20, np.inf), "vertex 0: the value inf is not finite"),
                         (np.zeros((10, 2)), "an array of 10 by 2; 20 by 1 is needed")):  # fmt: skip
        np.save(qelm.folder / "held.npy", bad)
        assert message in qelm.fails(3, "solve", grid, "--fix-file", "held.npy")


BAD = {
    "f.csv": ("1\n2\n", "f.csv: 2 values for 20 vertices; give one for each"),
    "g.csv": ("1\n" * 21, "g.csv:21: more than 20 values"),
    "h.csv": ("1,2\n" * 20, "h.csv:1: 2 columns without a header line; name one by number, as in h.csv:0"),
    "i.csv:w": ("u,v\n1,2\n", "i.csv:1: there is no column 'w'; the file has u, v"),
    "j.csv": ("vertex,value\n20,1\n", "j.csv:2: there is no vertex '20'"),
    "k.csv": ("vertex,value\n3,1\n3,1\n", "k.csv:3: vertex 3 has a value already"),
    "m.csv": ("1\n" * 19 + "nan\n", "m.csv: vertex 19: the value nan is not finite"),
    "n.npy": ("text", "n.npy: not an NPY file"),
    "o.npy": (b"\x93NUMPY\x01\x00\xff\xff{}", "the file ends within its header"),
    "p.npy": (b"\x93NUMPY\x01\x00\x3f\x00" + b"{'descr': '<f8', 'fortran_order': False, 'shape': (20,), }".ljust(63), "an array of 20 by 1 is announced, but the file is too short"),
    "q.npy": (b"\x93NUMPY\x01\x00\x3f\x00" + b"{'descr': '<c8', 'fortran_order': False, 'shape': (20,), }".ljust(63), "numbers of the type '<c8' cannot be read"),
    "r.npy": (b"\x93NUMPY\x01\x00\x3f\x00" + b"{'descr': '<f8', 'fortran_order': False, 'shape': (2,2,5)}".ljust(63), "the array has 3 axes"),
    "s.npy": (b"\x93NUMPY\x01\x00\x4f\x00" + b"{'descr': '<f8', 'fortran_order': False, 'shape': (9999999999, 9999999999), }".ljust(79), "is announced, but the file is too short"),
    "t.ply:u": (with_values(GRID, VALUES, "t"), "t.ply: its vertices have no property 'u', but t"),
    "u.ply": (shapes.ply_text(shapes.SQUARE), "u.ply: 4 vertices, but the mesh has 20"),
}  # fmt: skip


@pytest.mark.parametrize("source", BAD)
def test_bad_fields_are_refused_with_their_line(qelm, grid, source):
    content, message = BAD[source]
    qelm.write(source.partition(":")[0], content)
    assert message in qelm.fails(3, "curves", grid, "--field", source, "-o", "c.csv")


def test_a_field_takes_the_place_of_conditions_and_is_not_written_over(qelm, grid):
    qelm.write("f.csv", "vertex,value\n" + "".join(f"{k},{v!r}\n" for k, v in enumerate(VALUES)))
    message = qelm.fails(2, "curves", grid, "--field", "f.csv", *FIX, "-o", "c.csv")
    assert "--field takes the place of a solve: leave out --fix, --fix-file, --load and --robust" in message
    message = qelm.fails(2, "curves", grid, "--field", "f.csv:value", "-o", "f.csv")
    assert "-o f.csv would overwrite f.csv, which is read" in message
    qelm.write("flat.csv", "3\n" * 20)
    message = qelm.fails(2, "curves", grid, "--field", "flat.csv", "-o", "c.csv")
    assert "the field is 3 everywhere, so there is no range to cut\n" in message
