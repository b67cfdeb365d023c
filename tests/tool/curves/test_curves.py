"""qelm curves: which levels, and the same curves in every format."""

import csv
import json
import math

import pytest

import shapes

LEFT_RIGHT = ["--fix", "box:0,0,0,0,9,0=0", "--fix", "box:4,0,0,4,9,0=1"]
RINGS = ["--fix", "loop:0=0", "--fix", "loop:1=1"]


@pytest.fixture
def grid(qelm):
    """Its field is x / 4."""
    return qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))


@pytest.fixture
def ring(qelm):
    return qelm.write("ring.obj", shapes.obj(shapes.annulus(1, 2)))


def read_obj(path):
    """(group, points, closed) of every polyline."""
    curves, points, group = [], [], None
    for line in path.read_text().splitlines():
        kind, *rest = line.split()
        if kind == "g":
            group = rest[0]
        elif kind == "v":
            points.append(tuple(map(float, rest)))
        elif kind == "l":
            at = [int(word) - 1 for word in rest]
            closed = at[0] == at[-1]
            curves.append((group, [points[i] for i in (at[:-1] if closed else at)], closed))
    return curves


def read_csv(path):
    with open(path, newline="") as file:
        rows = list(csv.reader(file))
    assert rows[0] == ["curve", "level", "value", "closed", "x", "y", "z"]
    curves = {}
    for curve, level, value, closed, *point in rows[1:]:
        key = int(curve), int(level), float(value), closed == "1"
        curves.setdefault(key, []).append(tuple(map(float, point)))
    levels = sorted({(level, value) for _, level, value, _ in curves})
    assert [level for level, _ in levels] == list(range(len(levels)))
    return [(value, points, closed) for (_, _, value, closed), points in curves.items()]


def read_json(path):
    found = json.loads(path.read_text())
    for c in found["curves"]:
        assert c["value"] == found["levels"][c["level"]]
    return found, [(c["value"], [tuple(p) for p in c["points"]], c["closed"]) for c in found["curves"]]


def test_every_format_holds_the_same_curves_to_the_last_bit(qelm, ring):
    qelm.ok("curves", ring, *RINGS, "--levels", "4", "-o", "c.obj", "-o", "c.json", "-o", "c.csv")
    found, curves = read_json(qelm.folder / "c.json")
    assert found["mesh"] == "ring.obj"
    assert len(curves) == 4 and all(closed for _, _, closed in curves)
    assert [level for level, _, _ in curves] == found["levels"] == [0.2, 0.4, 0.6, 0.8]
    assert read_csv(qelm.folder / "c.csv") == curves
    obj = read_obj(qelm.folder / "c.obj")
    assert obj == [(f"level_{level!r}", points, closed) for level, points, closed in curves]


def test_curves_lie_where_the_field_has_their_level(qelm, grid):
    qelm.ok("curves", grid, *LEFT_RIGHT, "--at", "0.375,0.125", "-o", "c.json")
    _, curves = read_json(qelm.folder / "c.json")
    assert [(level, closed) for level, _, closed in curves] == [(0.125, False), (0.375, False)]
    for level, points, _ in curves:
        assert [p[0] for p in points] == pytest.approx([4 * level] * len(points), abs=1e-13)
        assert sorted([points[0][1], points[-1][1]]) == pytest.approx([0, 3])
        # Higher values at the left: from above, with x growing, curves go down.
        assert points[0][1] > points[-1][1]


LEVELS = {
    "even": (["--levels", "3"], [0.25, 0.5, 0.75]),
    "one": (["--levels", "1"], [0.5]),
    "list": (["--at", " .5,0.25,5e-1"], [0.25, 0.5]),
    "step": (["--every", "0.25"], [0.25, 0.5, 0.75]),
    "step_that_does_not_end_at_the_top": (["--every", "0.4"], [0.4, 0.8]),
}


@pytest.mark.parametrize("case", LEVELS)
def test_levels_are_chosen_as_documented(qelm, grid, case):
    arguments, expected = LEVELS[case]
    summary = qelm.json("curves", grid, *LEFT_RIGHT, *arguments, "-o", "c.csv")
    assert (summary["levels"], summary["curves"]) == (expected, len(expected))
    assert summary["closedCurves"] == 0
    assert summary["points"] == len((qelm.folder / "c.csv").read_text().splitlines()) - 1


def test_even_levels_between_round_values_are_round(qelm, grid):
    fix = ["--fix", "box:0,0,0,0,9,0=-20", "--fix", "box:4,0,0,4,9,0=30"]
    summary = qelm.json("curves", grid, *fix, "--levels", "9", "-o", "c.csv")
    assert summary["levels"] == [-15, -10, -5, 0, 5, 10, 15, 20, 25]


ROUND = {
    "nothing": ([], 0, 1, [k / 10 for k in range(1, 10)]),
    "nothing_but_round": (["--round"], -3, 47, [0, 5, 10, 15, 20, 25, 30, 35, 40, 45]),
    "five": (["--levels", "5", "--round"], 0, 1, [0.2, 0.4, 0.6, 0.8]),
    "four_of_large": (["--levels", "4", "--round"], 1e6, 1e6 + 1, [1e6 + k / 5 for k in range(1, 5)]),
    "one": (["--levels", "1", "--round"], 0.3, 0.9, [0.5]),
    "tiny": (["--levels", "3", "--round"], 0, 1e-300, [2e-301, 4e-301, 6e-301, 8e-301]),
}


@pytest.mark.parametrize("case", ROUND)
def test_round_levels_are_the_nearest_decimal_numbers(qelm, grid, case):
    arguments, low, high, expected = ROUND[case]
    fix = ["--fix", f"box:0,0,0,0,9,0={low!r}", "--fix", f"box:4,0,0,4,9,0={high!r}"]
    assert qelm.json("curves", grid, *fix, *arguments, "-o", "c.csv")["levels"] == expected


def test_a_field_without_a_round_number_inside_is_cut_evenly(qelm, grid):
    import math

    low = 1.0
    high = math.nextafter(math.nextafter(low, 2), 2)
    fix = ["--fix", f"box:0,0,0,0,9,0={low!r}", "--fix", f"box:4,0,0,4,9,0={high!r}"]
    message = qelm.fails(2, "curves", grid, *fix, "-o", "c.csv")
    assert "so there is no range to cut" in message


def test_steps_count_from_zero(qelm, grid):
    fix = ["--fix", "box:0,0,0,0,9,0=-0.75", "--fix", "box:4,0,0,4,9,0=1"]
    qelm.ok("curves", grid, *fix, "--every", "0.5", "-o", "c.obj")
    groups = [group for group, _, _ in read_obj(qelm.folder / "c.obj")]
    assert groups == ["level_-0.5", "level_0", "level_0.5"]


def test_a_level_outside_is_noted_and_has_no_curve(qelm, grid):
    done = qelm.ok("curves", grid, *LEFT_RIGHT, "--at", "0.5,1.5", "-o", "c.csv")
    assert "note: the level 1.5 is outside of the field, 0 to 1: no curve" in done.stderr
    assert [level for level, _, _ in read_csv(qelm.folder / "c.csv")] == [0.5]


def test_the_summary_is_for_people(qelm, ring):
    done = qelm.ok("curves", ring, *RINGS, "--levels", "4", "-o", "c.csv")
    assert done.stdout == ""
    points = len((qelm.folder / "c.csv").read_text().splitlines()) - 1
    line = f"curves   4 (4 closed, 0 open) with {points} points, at 4 levels, 0.2 to 0.8"
    assert line in done.stderr.splitlines()
    assert "result   c.csv" in done.stderr


def test_curves_go_to_the_standard_output_as_csv(qelm, ring):
    done = qelm.ok("curves", ring, *RINGS, "--levels", "1", "-o", "-", "-q")
    qelm.ok("curves", ring, *RINGS, "--levels", "1", "-o", "c.csv")
    assert done.stderr == ""
    assert done.stdout == (qelm.folder / "c.csv").read_text()


def test_a_format_may_be_named(qelm, ring):
    arguments = ["curves", ring, *RINGS, "--levels", "1"]
    done = qelm.ok(*arguments, "-o", "-", "--format", "json", "-q")
    qelm.ok(*arguments, "-o", "curves.txt", "--format", "json")
    assert done.stdout == (qelm.folder / "curves.txt").read_text()
    assert json.loads(done.stdout)["levels"] == [0.5]


def test_no_curve_at_all_is_still_a_good_file(qelm, grid):
    qelm.ok("curves", grid, *LEFT_RIGHT, "--at", "7", "-o", "c.json", "-o", "c.svg", "-o", "c.obj")
    assert read_json(qelm.folder / "c.json") == ({"mesh": "grid.obj", "levels": [7], "curves": []}, [])
    assert read_obj(qelm.folder / "c.obj") == []


def test_lengths_tend_to_those_of_circles(qelm):
    # Between circles the field is log r: the curve at the middle is the geometric mean's.
    qelm.write("ring.obj", shapes.obj(shapes.annulus(1, 1.2, 400)))
    qelm.ok("curves", "ring.obj", *RINGS, "--levels", "1", "-o", "c.json")
    _, ((_, points, closed),) = read_json(qelm.folder / "c.json")
    assert closed
    total = sum(math.dist(p, q) for p, q in zip(points, points[1:] + points[:1]))
    assert total == pytest.approx(2 * math.pi * 1.2**0.5, rel=5e-3)


def test_refusals(qelm, grid):
    level = ["--levels", "3"]
    out = ["-o", "c.obj"]
    cases = [
        (2, [*LEFT_RIGHT, "--every", "1", "--round", *out], "--round is for --levels; the others say exactly"),
        (2, [*LEFT_RIGHT, *level, "--at", "1", *out], "give only one of --levels, --at, --every and --spacing"),
        (2, [*LEFT_RIGHT, "--levels", "0", *out], "--levels 0: a whole number from 1 to 10000"),
        (2, [*LEFT_RIGHT, "--levels", "99999999999", *out], "a whole number from 1 to 10000"),
        (2, [*LEFT_RIGHT, "--at", "1,two", *out], "--at 1,two: 'two' is not a number"),
        (2, [*LEFT_RIGHT, "--at", "1,,2", *out], "'' is not a number"),
        (2, [*LEFT_RIGHT, "--every", "-1", *out], "--every -1: a step larger than 0"),
        (2, [*LEFT_RIGHT, "--every", "1e-300", *out], "more than 10000 levels between 0 and 1"),
        (2, [*LEFT_RIGHT, "--every", "7", *out], "no multiple of it lies between 0 and 1; use a"),
        (2, [*LEFT_RIGHT, *level], "--output is required"),
        (2, [*LEFT_RIGHT, *level, "-o", "c.step"], ".step is not written here; 'curves' writes .obj, .json, .csv, .svg, .dxf, .vtp, .glb or .gltf"),
        (2, [*LEFT_RIGHT, *level, *out, "--format", "dwg"], "or --format obj and so on"),
        (2, [*LEFT_RIGHT, *level, *out, *out], "-o c.obj: given twice"),
        (2, [*LEFT_RIGHT, *level, "-o", "grid.obj"], "-o grid.obj would overwrite grid.obj"),
        (2, [*LEFT_RIGHT, *level, "--json", "-o", "-"], "not both"),
        (2, [*LEFT_RIGHT, *level, *out, "--view", "top"], "--view top: give best, x, y, z, -x"),
        (2, [*LEFT_RIGHT, *level, *out, "--view", "0,0,0"], "--view 0,0,0: give best"),
        (2, ["--fix", "loop:0=2", *level, *out], "grid.obj: the field is 2 everywhere, so there"),
        (2, [*level, *out], "no vertex is fixed"),
        (1, [*LEFT_RIGHT, *level, "-o", "nowhere/c.obj"], "nowhere/c.obj: cannot be written"),
    ]
    for code, arguments, message in cases:
        assert message in qelm.fails(code, "curves", grid, *arguments)
