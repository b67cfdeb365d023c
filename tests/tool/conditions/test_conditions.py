"""Boundary conditions beyond a selector and a value: files, tags, the whole boundary."""

import pytest

import shapes

GRID = shapes.grid(4, 3)


@pytest.fixture
def grid(qelm):
    return qelm.write("grid.obj", shapes.obj(GRID))


def field_of(qelm, grid, *arguments):
    qelm.ok("solve", grid, *arguments, "-o", "field.csv")
    return qelm.field()


FORMS = [
    "0,1.5\n19,-2\n",
    "# held\n\n 19 , -2 # here\r\n0,+1.5",
    "0,1.5,1\n19,-2,3\n",
    "vertex,value\n0,1.5\n19,-2\n",
    "tag,value,note,vertex\n2,1.5,left,0\n1,-2,right,19\n",
]


@pytest.mark.parametrize("form", range(len(FORMS)))
def test_a_file_means_the_same_as_options_in_every_form(qelm, grid, form):
    expected = field_of(qelm, grid, "--fix", "vertex:0=1.5", "--fix", "vertex:19=-2")
    qelm.write("fixed.csv", FORMS[form])
    assert field_of(qelm, grid, "--fix-file", "fixed.csv") == expected


def test_options_come_after_the_file_and_a_note_says_so(qelm, grid):
    qelm.write("fixed.csv", "0,1\n1,1\n19,5\n")
    done = qelm.ok("solve", grid, "--fix-file", "fixed.csv", "--fix", "vertex:1,19=7", "-o", "field.csv")
    field = qelm.field()
    assert [field[v] for v in (0, 1, 19)] == [1, 7, 7]
    assert "note: vertex:1,19=7 holds instead of an earlier value at 2 vertices, the first is vertex 1" in done.stderr
    assert "fixed    3 vertices\n         from the file: 3\n         vertex:1,19 = 7: 2\n" in done.stderr
    summary = qelm.json("solve", grid, "--fix-file", "fixed.csv", "--fix", "vertex:1=7:2")
    assert (summary["fixedVertices"], summary["fixFileVertices"]) == (3, 3)
    assert summary["fix"] == [{"selector": "vertex:1", "value": 7, "tag": 2, "vertices": 1}]


def test_a_file_holds_in_all_of_several_fields(qelm, grid):
    qelm.write("fixed.csv", "0,1\n")
    qelm.ok("solve", grid, "--fix-file", "fixed.csv", "--fix", "vertex:19=5,6", "-o", "f.csv")
    rows = [line.split(",") for line in (qelm.folder / "f.csv").read_text().splitlines()[1:]]
    assert [rows[0][4:], rows[19][4:]] == [["1", "1"], ["5", "6"]]


def test_a_written_field_can_be_held(qelm, grid):
    field = field_of(qelm, grid, "--fix", "vertex:0=1", "--fix", "vertex:19=5")
    (qelm.folder / "field.csv").rename(qelm.folder / "held.csv")
    assert field_of(qelm, grid, "--fix-file", "held.csv") == field


def test_every_command_with_a_field_takes_the_file(qelm, grid):
    qelm.write("fixed.csv", "0,1\n19,5\n")
    qelm.ok("heatmap", grid, "--fix-file", "fixed.csv", "-o", "heat")
    qelm.ok("curves", grid, "--fix-file", "fixed.csv", "--levels", "3", "-o", "c.csv")
    assert "        2 fixed vertices\n" in qelm.ok("check", grid, "--fix-file", "fixed.csv").stdout


BAD_FILES = {
    "empty": ("# nothing\n", "fixed.csv: no vertex to fix; give lines of VERTEX,VALUE"),
    "one_column": ("1\n2\n", "fixed.csv:1: 1 column needs a header line with 'vertex' and 'value'"),
    "no_such_vertex": ("0,1\n20,1\n", "fixed.csv:2: there is no vertex '20'; the mesh has 20 vertices"),
    "twice": ("3,1\n3,2\n", "fixed.csv:2: vertex 3 has a value already"),
    "word": ("0,1\n1,one\n", "fixed.csv:2: 'one' is not a number"),
    "infinite": ("0,1e999\n", "fixed.csv:1: '1e999' is not finite"),
    "tag": ("0,1,4\n", "fixed.csv:1: '4' is not a tag; give 1, 2 or 3"),
    "header_without_vertex": ("point,value\n0,1\n", "fixed.csv:1: the header has no column 'vertex'"),
}


def test_bad_files_are_refused_with_their_line(qelm, grid):
    for content, message in BAD_FILES.values():
        qelm.write("fixed.csv", content)
        assert message in qelm.fails(3, "solve", grid, "--fix-file", "fixed.csv")
    assert "none.csv: no such file" in qelm.fails(3, "solve", grid, "--fix-file", "none.csv")


def test_the_boundary_is_every_loop(qelm):
    qelm.write("ring.obj", shapes.obj(shapes.joined(shapes.annulus(1, 2), shapes.moved(shapes.grid(2, 2), (9, 0, 0)))))
    summary = qelm.json("solve", "ring.obj", "--fix", "boundary=3", "--fix", "loop:0=5")
    assert [fix["vertices"] for fix in summary["fix"]] == [24 + 8, 12]
    assert summary["fixedVertices"] == 32
    qelm.write("t.obj", shapes.obj(shapes.tetrahedron()))
    message = qelm.fails(2, "solve", "t.obj", "--fix", "boundary=0")
    assert "t.obj: --fix boundary: the mesh is closed: it has no boundary" in message


def test_a_part_without_a_condition_is_a_singular_system(qelm):
    two = shapes.joined(GRID, shapes.moved(GRID, (9, 0, 0)))
    qelm.write("two.obj", shapes.obj(two))
    message = qelm.fails(5, "solve", "two.obj", "--fix", "vertex:0=1")
    assert "the connected part with vertex 20 (9, 0, 0), 20 vertices in all, has no fixed vertex" in message


def test_near_says_which_vertex_it_took_and_how_far_away_that_is(qelm, grid):
    done = qelm.ok("solve", grid, "--fix", "near:1.25,2,0=5", "--fix", "vertex:0=1")
    assert "         near:1.25,2,0 = 5: vertex 11 (1, 2, 0), 0.25 away\n" in done.stderr
    assert "note" not in done.stderr
    fix = qelm.json("solve", grid, "--fix", "near:1.25,2,0=5", "--fix", "vertex:0=1")["fix"]
    assert (fix[0]["vertex"], fix[0]["distance"]) == (11, 0.25)
    assert "vertex" not in fix[1]


@pytest.mark.parametrize("x, is_far", [(8.9, False), (9.1, True), (-5.1, True), (1e300, True)])
def test_near_a_point_that_is_nowhere_near_is_noted(qelm, grid, x, is_far):
    # The box is 4 x 3: its diagonal is 5.
    done = qelm.ok("check", grid, "--fix", f"near:{x!r},1,0=5")
    assert ("outside of the mesh's box, whose diagonal is 5; is it in another unit" in done.stderr) == is_far


def test_a_condition_that_takes_the_whole_mesh_is_noted(qelm, grid):
    done = qelm.ok("solve", grid, "--fix", "box:-9,-9,-9,9,9,9=1")
    note = "note: --fix box:-9,-9,-9,9,9,9 takes every vertex of the mesh: nothing is left to solve\n"
    assert note in done.stderr
    assert "every vertex" not in qelm.ok("solve", grid, "--fix", "boundary=1").stderr
    qelm.write("all.csv", "".join(f"{v},1\n" for v in range(len(GRID[0]))))
    done = qelm.ok("solve", grid, "--fix-file", "all.csv", "--fix", "vertex:0=1")
    assert "note: every vertex of the mesh is fixed: nothing is left to solve\n" in done.stderr
    points, faces = GRID
    soup = [points[v] for face in faces for v in face], [(3 * k, 3 * k + 1, 3 * k + 2) for k in range(len(faces))]
    qelm.write("soup.obj", shapes.obj(soup))
    done = qelm.ok("solve", "soup.obj", "--fix", "boundary=1")
    assert "--fix boundary takes every vertex of the mesh: nothing is left to solve; it has 24 boundary loops" in done.stderr


def test_a_printed_box_can_be_pasted(qelm):
    far = [(6.5e6 + x / 10, 4.9e6 + y / 3, 1 / 7) for x, y, _ in GRID[0]]
    qelm.write("far.obj", shapes.obj((far, GRID[1])))
    line = next(line for line in qelm.ok("info", "far.obj").stdout.splitlines() if line.startswith("box"))
    low, high = line.split()[1], line.split()[3]
    fix = qelm.json("solve", "far.obj", "--fix", f"box:{low},{high}=1")["fix"]
    assert fix[0]["vertices"] == len(far)
    message = qelm.fails(2, "solve", "far.obj", "--fix", "box:0,0,0,1,1,1=1")
    assert f"the mesh spans {low} to {high}" in message


def test_neighbouring_vertices_are_told_apart(qelm):
    far = [(6.5e6 + x / 1000, y, 0) for x, y, _ in GRID[0]]
    qelm.write("far.obj", shapes.obj((far, GRID[1])))
    done = qelm.ok("solve", "far.obj", "--fix", "box:0,0,0,6500000.001,9,0=1000000.25", "--fix",
                   "box:6500000.003,0,0,9e6,9,0=1000000.125")
    assert "minimum  1000000.125 at vertex 3 (6500000.003, 0, 0)" in done.stderr
    assert "maximum  1000000.25 at vertex 0 (6500000, 0, 0)" in done.stderr
