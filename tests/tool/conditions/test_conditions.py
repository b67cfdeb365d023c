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
