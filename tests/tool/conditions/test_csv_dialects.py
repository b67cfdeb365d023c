"""Tables of values as spreadsheets and numpy write them, in --fix-file and --load."""

import io

import numpy
import pytest

import shapes

GRID = shapes.grid(4, 3)
ROWS = [(0, 1.5), (7, -2.25), (19, 5.0)]


def savetxt(rows, **options):
    file = io.BytesIO()
    numpy.savetxt(file, rows, **options)
    return file.getvalue()


def table(separator, decimal=".", header="", form="{}"):
    lines = [header.replace(",", separator)] if header else []
    lines += [separator.join((form.format(v), str(x).replace(".", decimal))) for v, x in ROWS]
    return "\n".join(lines) + "\n"


HEADER = "vertex,value"
WIDE = [(v, v / 2, 0.0, 0.0, x) for v, x in ROWS]
DIALECTS = {
    "semicolons": table(";"),
    "semicolons_commas": table(";", ",", HEADER),
    "tabs": table("\t", header=HEADER),
    "tabs_commas": table("\t", ","),
    "blanks": table("   ").replace("\n", "  \n"),
    "blanks_commas": table(" ", ",", HEADER),
    "blanks_around_commas": table(" , ", header=HEADER),
    "capitals": table(",", header="Vertex,VALUE"),
    "quotes": '"vertex","value"\n' + "".join(f'"{v}","{x}"\n' for v, x in ROWS),
    "exponents": table(",", form="{:.3e}"),
    "points": table(";", form="{}.0"),
    "utf8_mark": "\ufeff" + table(",", header=HEADER),
    "utf16": (table("\t", ",", HEADER).replace("\n", "\r\n")).encode("utf-16"),
    "utf16_big": b"\xfe\xff" + table(",", header=HEADER).encode("utf-16-be"),
    "utf16_comment": ("# \U0001f4a7 \u00e9 \u20ac\n" + table(";")).encode("utf-16"),
    "savetxt": savetxt(ROWS),
    "savetxt_commas": savetxt(ROWS, delimiter=","),
    "savetxt_header": savetxt(ROWS, header="vertex value"),
    "savetxt_columns": savetxt(WIDE, header="vertex x y z value"),
    "savetxt_csv": savetxt(WIDE, delimiter=",", header="vertex,x,y,z,value", comments=""),
}


@pytest.fixture
def grid(qelm):
    return qelm.write("grid.obj", shapes.obj(GRID))


@pytest.mark.parametrize("dialect", DIALECTS)
def test_values_to_hold_are_read(qelm, grid, dialect):
    qelm.write("fixed.csv", DIALECTS[dialect])
    qelm.ok("solve", grid, "--fix-file", "fixed.csv", "-o", "field.csv")
    field = qelm.field()
    assert [(v, field[v]) for v, _ in ROWS] == ROWS
    summary = qelm.json("solve", grid, "--fix-file", "fixed.csv")
    assert summary["fixFileVertices"] == 3


@pytest.mark.parametrize("dialect", DIALECTS)
def test_loads_are_read(qelm, grid, dialect):
    fix = ["--fix", "vertex:4=0"]
    fields = []
    for content in (DIALECTS[dialect], table(",")):
        qelm.write("load.csv", content)
        qelm.ok("solve", grid, *fix, "--load", "load.csv", "-o", "field.csv")
        fields.append(qelm.field())
    assert fields[0] == fields[1] and any(fields[0])


def test_tags_and_a_load_for_every_vertex_may_have_exponents(qelm, grid):
    qelm.write("fixed.csv", savetxt([(v, x, 2) for v, x in ROWS]))
    qelm.ok("solve", grid, "--fix-file", "fixed.csv", "-o", "field.csv")
    load = numpy.linspace(-1, 1, len(GRID[0]))
    qelm.write("a.csv", savetxt(load))
    qelm.write("b.csv", "".join(f"{x!r}\n" for x in load.tolist()))
    for name in ("a", "b"):
        qelm.ok("solve", grid, "--fix", "vertex:0=0", "--load", f"{name}.csv", "-o", f"{name}.out.csv")
    assert (qelm.folder / "a.out.csv").read_text() == (qelm.folder / "b.out.csv").read_text()


REFUSED = {
    "half": ("0.5e0,1\n", "fixed.csv:1: there is no vertex '0.5e0'; the mesh has 20 vertices, numbered 0 to 19"),
    "huge": ("1e300,1\n", "fixed.csv:1: there is no vertex '1e300'"),
    "infinite": ("inf,1\n", "fixed.csv:1: there is no vertex 'inf'"),
    "tag": ("0,1,1.5\n", "fixed.csv:1: '1.5' is not a tag; give 1, 2 or 3"),
    "changes": ("0;1\n1,2\n", "fixed.csv:2: 1 columns instead of 2, separated by semicolons"),
    "decimal_comma": ("0,1,5\n1,2,25,7\n", "fixed.csv:1: '5' is not a tag"),
    "two_numbers": ("0,1\n1,2 3\n", "fixed.csv:2: '2 3' is not a number; the first line says that fields are separated by commas"),
    "two_commas": ("0;1\n1;1,000,5\n", "fixed.csv:2: '1,000,5' is not a number; the first line says that fields are separated by semicolons"),
    "wide": (savetxt(WIDE), "fixed.csv:1: 5 columns need a header line with 'vertex' and 'value'"),
    "half_a_pair": ("vertex;value\n0;\ud83d\n".encode("utf-16", "surrogatepass"), "fixed.csv:2: '\ufffd' is not a number"),
}  # fmt: skip


@pytest.mark.parametrize("case", REFUSED)
def test_what_was_expected_is_said(qelm, grid, case):
    content, message = REFUSED[case]
    qelm.write("fixed.csv", content)
    assert message in qelm.fails(3, "solve", grid, "--fix-file", "fixed.csv")
