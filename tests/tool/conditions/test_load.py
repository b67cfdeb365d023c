"""--load: its file's forms, its effect, its refusals."""

import pytest

import shapes

# Three cells in a row; the stiffness matrix of the inner vertices is known.
STRIP = shapes.grid(3, 1)
ENDS = ["--fix", "box:0,0,0,0,1,0=0", "--fix", "box:3,0,0,3,1,0=0"]
INNER = [1, 2, 5, 6]


def field_with(qelm, load, name="load.csv"):
    qelm.write("strip.obj", shapes.obj(STRIP))
    qelm.write(name, load)
    qelm.ok("solve", "strip.obj", *ENDS, "--load", name, "-o", "field.csv")
    return qelm.field()


def stiffness():
    """The matrix of the strip by cotangents: cells of two right isosceles triangles."""
    points, faces = STRIP
    n = len(points)
    k = [[0.0] * n for _ in range(n)]
    for face in faces:
        for c in range(3):
            a, b, apex = face[c - 2], face[c - 1], face[c]
            u = [points[a][i] - points[apex][i] for i in range(3)]
            v = [points[b][i] - points[apex][i] for i in range(3)]
            weight = 0.5 * sum(x * y for x, y in zip(u, v)) / abs(u[0] * v[1] - u[1] * v[0])
            k[a][b] -= weight
            k[b][a] -= weight
            k[a][a] += weight
            k[b][b] += weight
    return k


def test_the_field_balances_the_load_at_every_free_vertex(qelm):
    load = [0.5, -1, 2, 7, 7, 0.25, 3, 7]
    field = field_with(qelm, "\n".join(map(str, load)))
    for i in INNER:
        residual = sum(k * u for k, u in zip(stiffness()[i], field)) + load[i]
        assert residual == pytest.approx(0, abs=1e-13)
    assert [field[i] for i in range(8) if i not in INNER] == [0, 0, 0, 0]


def test_a_positive_load_lowers_the_field(qelm):
    field = field_with(qelm, "1\n" * 8)
    assert all(field[i] < 0 for i in INNER)


FORMS = [
    "0\n3\n0\n0\n0\n-9\n0\n0\n",
    "# loads\r\n\r\n0\r\n 3 # here\r\n0\r\n0\r\n0\r\n-9\r\n0\r\n0",
    "1,3\n5,-9\n",
    "5, -9\n1, +3.0\n",
    "vertex,value\n1,3\n5,-9\n",
    "value,x,vertex\n3,left,1\n-9,right,5\n",
    "name,value\na,0\nb,3\nc,0\nd,0\ne,0\nf,-9\ng,0\nh,0\n",
]


def test_all_forms_of_a_load_file_mean_the_same(qelm):
    fields = [field_with(qelm, form) for form in FORMS]
    assert any(fields[0])
    for form, field in zip(FORMS, fields):
        assert field == fields[0], form


def test_a_written_field_can_be_a_load(qelm):
    first = field_with(qelm, FORMS[0])
    written = (qelm.folder / "field.csv").read_bytes()
    again = field_with(qelm, written, "written.csv")
    assert again == field_with(qelm, "\n".join(map(repr, first)))


def test_zero_load_changes_nothing(qelm):
    qelm.write("strip.obj", shapes.obj(STRIP))
    fix = ["--fix", "vertex:0=1", "--fix", "vertex:7=3"]
    qelm.ok("solve", "strip.obj", *fix, "-o", "field.csv")
    without = qelm.field()
    qelm.write("zero.csv", "0,0\n")
    qelm.ok("solve", "strip.obj", *fix, "--load", "zero.csv", "-o", "field.csv")
    assert qelm.field() == without


BAD_LOADS = {
    "short": ("1\n2\n", "load.csv: 2 loads for 8 vertices; give one per vertex"),
    "empty": ("# nothing\n", "load.csv: 0 loads for 8 vertices"),
    "long": ("1\n" * 9, "load.csv:9: more than 8 loads"),
    "word": ("1\n2\nx\n", "load.csv:3: 'x' is not a number"),
    "nan": ("0,1\n1,nan\n", "load.csv:2: 'nan' is not finite"),
    "no_such_vertex": ("8,1\n", "load.csv:1: there is no vertex '8'; the mesh has 8 vertices, numbered 0 to 7"),
    "half_vertex": ("0.5,1\n", "load.csv:1: there is no vertex '0.5'"),
    "twice": ("3,1\n\n3,1\n", "load.csv:3: vertex 3 has a load already"),
    "ragged": ("3,1\n4\n", "load.csv:2: 1 columns instead of 2"),
    "three_columns": ("3,1,5\n", "load.csv:1: 3 columns need a header line"),
    "header_without_value": ("vertex,load\n0,1\n", "load.csv:1: neither a row of numbers nor a header with a column 'value'"),
}  # fmt: skip


def test_bad_loads_are_refused_with_their_line(qelm):
    qelm.write("strip.obj", shapes.obj(STRIP))
    for load, message in BAD_LOADS.values():
        qelm.write("load.csv", load)
        assert message in qelm.fails(3, "solve", "strip.obj", *ENDS, "--load", "load.csv")
    missing = qelm.fails(3, "solve", "strip.obj", *ENDS, "--load", "none.csv")
    assert "none.csv: no such file" in missing


def test_a_uniform_load_is_a_third_of_the_area_around_and_its_total_is_printed(qelm):
    qelm.write("strip.obj", shapes.obj(STRIP))
    done = qelm.ok("solve", "strip.obj", *ENDS, "--load", "uniform=-6", "-o", "u.csv")
    assert "load     -6 per area, -18 in all\n" in done.stderr
    # Of each vertex the triangles around it, half a unit large: thirds of six.
    counts = [sum(v in face for face in STRIP[1]) for v in range(8)]
    field_with(qelm, "\n".join(str(-count) for count in counts))
    assert qelm.field("u.csv") == qelm.field("field.csv")
    summary = qelm.json("solve", "strip.obj", *ENDS, "--load", "uniform=-6")
    assert summary["load"] == {"perArea": -6, "total": -18}
    for text in ("uniform=", "uniform=snow", "uniform=inf"):
        message = qelm.fails(2, "solve", "strip.obj", *ENDS, "--load", text)
        assert f"--load {text}: '{text[8:]}' is not a load per area; give a number, or the name" in message
    qelm.write("uniform=1", "1\n" * 8)
    assert "per area" not in qelm.ok("solve", "strip.obj", *ENDS, "--load", "./uniform=1").stderr
