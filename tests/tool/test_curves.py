"""qelm curves: the levels, the four kinds of file, and what is refused."""

import csv
import json
import math
import re
import xml.etree.ElementTree as ElementTree

import pytest

import shapes

LEFT_RIGHT = ["--fix", "box:0,0,0,0,9,0=0", "--fix", "box:4,0,0,4,9,0=1"]
SVG = "{http://www.w3.org/2000/svg}"


@pytest.fixture
def grid(qelm):
    return qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))


def curves_of(qelm, *arguments):
    qelm.ok("curves", *arguments, "-o", "out.json")
    return json.loads((qelm.folder / "out.json").read_text())


def test_levels_divide_the_range_evenly_without_its_ends(qelm, grid):
    result = curves_of(qelm, grid, *LEFT_RIGHT, "--levels", "3")
    assert result["levels"] == [0.25, 0.5, 0.75]
    assert [c["level"] for c in result["curves"]] == [0, 1, 2]


def test_points_lie_where_the_field_has_the_level(qelm, grid):
    result = curves_of(qelm, grid, *LEFT_RIGHT, "--at", "0.1, 0.625")
    assert result["levels"] == [0.1, 0.625]
    for curve in result["curves"]:
        assert curve["value"] == result["levels"][curve["level"]]
        assert not curve["closed"]
        assert [p[0] for p in curve["points"]] == pytest.approx([4 * curve["value"]] * len(curve["points"]))
        assert sorted(p[1] for p in curve["points"])[0::len(curve["points"]) - 1] == [0, 3]


def test_curves_round_a_hole_are_closed(qelm):
    qelm.write("ring.obj", shapes.obj(shapes.annulus(1, 2)))
    fix = ["--fix", "loop:0=0", "--fix", "loop:1=1"]
    result = curves_of(qelm, "ring.obj", *fix, "--levels", "2")
    assert [c["closed"] for c in result["curves"]] == [True, True]
    assert all(len(c["points"]) == 24 for c in result["curves"])
    for format in ("obj", "csv", "svg"):
        qelm.ok("curves", "ring.obj", *fix, "--levels", "2", "-o", f"out.{format}")
    lines = [line for line in (qelm.folder / "out.obj").read_text().splitlines() if line[0] == "l"]
    assert [line.split()[1] for line in lines] == [line.split()[-1] for line in lines] == ["1", "25"]
    assert (qelm.folder / "out.svg").read_text().count('Z"') == 2


def test_every_format_holds_the_same_curves(qelm, grid):
    arguments = [grid, *LEFT_RIGHT, "--at", "0.7,0.3"]
    expected = curves_of(qelm, *arguments)["curves"]
    qelm.ok("curves", *arguments, "-o", "out.csv")
    with open(qelm.folder / "out.csv", newline="") as file:
        rows = list(csv.DictReader(file))
    qelm.ok("curves", *arguments, "-o", "out.obj")
    points, lines, groups = [], [], []
    for line in (qelm.folder / "out.obj").read_text().splitlines():
        words = line.split()
        if words[0] == "v":
            points.append([float(w) for w in words[1:]])
        elif words[0] == "l":
            lines.append([points[int(w) - 1] for w in words[1:]])
        elif words[0] == "g":
            groups.append(words[1])
    assert groups == ["level_0", "level_1"]
    assert lines == [c["points"] for c in expected]
    for k, curve in enumerate(expected):
        mine = [r for r in rows if int(r["curve"]) == k]
        assert [[float(r[a]) for a in "xyz"] for r in mine] == curve["points"]
        assert {(int(r["level"]), float(r["value"]), r["closed"]) for r in mine} == {
            (curve["level"], curve["value"], "0")
        }


def paths(qelm, *arguments):
    """The drawing's curves as lists of points, and its legend's texts."""
    qelm.ok("curves", *arguments, "-o", "out.svg")
    root = ElementTree.parse(qelm.folder / "out.svg").getroot()
    size = [float(w) for w in root.get("viewBox").split()[2:]]
    found = []
    for path in root.iter(SVG + "path"):
        if path.get("data-level"):
            numbers = [float(w) for w in re.findall(r"-?[\d.]+", path.get("d"))]
            found.append(list(zip(numbers[0::2], numbers[1::2])))
    texts = [t.text for t in root.iter(SVG + "text")]
    assert all(0 <= x <= size[0] and 0 <= y <= size[1] for p in found for x, y in p)
    return found, texts


def test_a_drawing_shows_the_curves_and_a_legend_from_high_to_low(qelm, grid):
    found, texts = paths(qelm, grid, *LEFT_RIGHT, "--levels", "3")
    assert texts == ["0.75", "0.5", "0.25"]
    # Looked at from above: x to the right, y upwards, 4 units on 900 pixels.
    for curve, level in zip(found, (0.25, 0.5, 0.75)):
        assert [x for x, _ in curve] == pytest.approx([40 + 900 * level] * len(curve), abs=0.01)
        assert sorted(y for _, y in curve)[0] == pytest.approx(40, abs=0.01)


def test_a_drawing_can_be_seen_from_another_side(qelm):
    upright = [(x, 0, y) for x, y, _ in shapes.grid(4, 3)[0]], shapes.grid(4, 3)[1]
    qelm.write("wall.obj", shapes.obj(upright))
    fix = ["--fix", "box:0,0,0,0,0,9=0", "--fix", "box:4,0,0,4,0,9=1", "--at", "0.25"]
    from_front = paths(qelm, "wall.obj", *fix, "--view=-y")[0]
    from_behind = paths(qelm, "wall.obj", *fix, "--view", "y")[0]
    assert [x for x, _ in from_front[0]] == pytest.approx([40 + 225] * len(from_front[0]), abs=0.01)
    assert [x for x, _ in from_behind[0]] == pytest.approx([40 + 675] * len(from_front[0]), abs=0.01)
    # The wall's triangles are counter-clockwise when seen from the front.
    assert paths(qelm, "wall.obj", *fix)[0] == from_front


def test_many_levels_have_a_legend_of_some(qelm, grid):
    found, texts = paths(qelm, grid, *LEFT_RIGHT, "--levels", "99")
    assert len(found) == 99
    assert len(texts) == 14
    assert texts[0] == "0.99" and texts[-1] == "0.01"


def test_says_what_was_cut(qelm, grid):
    done = qelm.ok("curves", grid, *LEFT_RIGHT, "--levels", "3", "-o", "out.csv")
    assert done.stdout == ""
    assert re.match(r"curves   3 at 3 levels, 0 of them closed; \d+ points\n", done.stderr)
    assert done.stderr.endswith("result   out.csv\n")
    summary = qelm.json("curves", grid, *LEFT_RIGHT, "--levels", "3", "-o", "out.csv")
    assert summary["levels"] == [0.25, 0.5, 0.75]
    assert (summary["curves"], summary["closedCurves"]) == (3, 0)
    rows = (qelm.folder / "out.csv").read_text().splitlines()
    assert summary["points"] == len(rows) - 1


def test_levels_outside_the_field_are_noted_and_have_no_curve(qelm, grid):
    done = qelm.ok("curves", grid, *LEFT_RIGHT, "--at", "0.5,2,-1,0", "-o", "out.json")
    result = json.loads((qelm.folder / "out.json").read_text())
    assert [c["level"] for c in result["curves"]] == [0]
    for level in ("2", "-1", "0"):
        assert f"no curves at {level}: the field goes from 0 to 1" in done.stderr


def test_no_curve_at_all_is_still_a_good_file(qelm, grid):
    result = curves_of(qelm, grid, *LEFT_RIGHT, "--at", "7")
    assert result == {"levels": [7], "curves": []}
    found, texts = paths(qelm, grid, *LEFT_RIGHT, "--at", "7")
    assert (found, texts) == ([], ["7"])


def test_the_standard_output_takes_any_format_by_name(qelm, grid):
    done = qelm.ok("curves", grid, *LEFT_RIGHT, "--levels", "1", "-o", "-", "--format", "csv", "-q")
    assert done.stdout.splitlines()[0] == "curve,level,value,closed,x,y,z"
    qelm.ok("curves", grid, *LEFT_RIGHT, "--levels", "1", "-o", "data.txt", "--format", "json")
    assert json.loads((qelm.folder / "data.txt").read_text())["levels"] == [0.5]


def test_refusals(qelm, grid):
    out = ["-o", "out.csv"]
    one = ["--levels", "1"]
    cases = [
        (2, [*LEFT_RIGHT, *out], "give either --levels N or --at"),
        (2, [*LEFT_RIGHT, *out, *one, "--at", "1"], "give either --levels N or --at"),
        (2, [*LEFT_RIGHT, *out, "--levels", "0"], "--levels 0: a whole number from 1"),
        (2, [*LEFT_RIGHT, *out, "--levels", "2.5"], "--levels 2.5: a whole number from 1"),
        (2, [*LEFT_RIGHT, *out, "--levels", "100001"], "a whole number from 1 to 100000"),
        (2, [*LEFT_RIGHT, *out, "--at", "1,x"], "--at 1,x: 'x' is not a number"),
        (2, [*LEFT_RIGHT, *out, "--at", "inf"], "--at inf: 'inf' is not a number"),
        (2, [*LEFT_RIGHT, *one, "-o", "out.dxf"], "-o out.dxf: name a file that ends in .obj"),
        (2, [*LEFT_RIGHT, *one, "-o", "-"], "-o - needs --format obj, json, svg or csv"),
        (2, [*LEFT_RIGHT, *one, "-o", "x.obj", "--format", "dxf"], "or give --format"),
        (2, [*LEFT_RIGHT, *one, "-o", "grid.obj"], "-o would overwrite the mesh grid.obj"),
        (2, [*LEFT_RIGHT, *one, *out, "--view", "w"], "--view w: write x, y, z, -x, -y, -z or plane"),
        (2, [*one, *out], "no vertex is fixed"),
        (1, ["--fix", "loop:0=2", *one, *out], "grid.obj: the field is 2 everywhere"),
        (1, [*LEFT_RIGHT, *one, "-o", "nowhere/out.csv"], "nowhere/out.csv: cannot be written"),
    ]
    for code, arguments, message in cases:
        assert message in qelm.fails(code, "curves", "grid.obj", *arguments), arguments


def test_help_has_examples_that_run(qelm):
    examples = re.findall(r"^  qelm (curves .*)$", qelm.ok("curves", "--help").stdout, re.MULTILINE)
    assert len(examples) == 3
    qelm.write("roof.obj", shapes.obj(shapes.annulus(1, 2)))
    qelm.write("part.stl", shapes.stl_text(shapes.grid(4, 3)))
    for example in examples:
        qelm.ok(*example.split())
    assert {"curves.obj", "curves.svg"} <= set(qelm.files())


def test_curves_of_a_ring_are_circles_as_exact_as_the_mesh(qelm):
    qelm.write("ring.obj", shapes.obj(shapes.annulus(1, 2, segments=96)))
    result = curves_of(qelm, "ring.obj", "--fix", "loop:0=0", "--fix", "loop:1=1", "--at", "0.5")
    radii = [math.hypot(x, y) for x, y, _ in result["curves"][0]["points"]]
    assert radii == pytest.approx([1.5] * len(radii), abs=1e-3)
