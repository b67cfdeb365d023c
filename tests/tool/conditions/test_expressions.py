"""Values that depend on the place."""

import math
import random

import pytest

import shapes

GRID = shapes.grid(4, 3)


@pytest.fixture
def grid(qelm):
    return qelm.write("grid.obj", shapes.obj(GRID))


def values(qelm, mesh, expression, selector="box:-9,-9,-9,9,9,9"):
    qelm.ok("solve", mesh, "--fix", f"{selector}={expression}", "-o", "f.csv")
    return qelm.field("f.csv")


EXPRESSIONS = {
    "x": lambda x, y, z: x,
    "-x^2": lambda x, y, z: -(x**2),
    "2^-1^2": lambda x, y, z: 0.5,
    "2 ^ 3 ^ 2": lambda x, y, z: 512,
    "(1+x)*(y-2)/4 - -z": lambda x, y, z: (1 + x) * (y - 2) / 4,
    "10-4-3": lambda x, y, z: 3,
    "x<2": lambda x, y, z: x < 2,
    "(x>=2)+(y==1)+(y!=1)*0+(x<=0)-(y>2)": lambda x, y, z: (x >= 2) + (y == 1) + (x <= 0) - (y > 2),
    "1.5e1+.5E-1+1.": lambda x, y, z: 16.05,
    "min(x,y)+10*max(x,2)": lambda x, y, z: min(x, y) + 10 * max(x, 2),
    "if(x>y, x, 7*y)": lambda x, y, z: x if x > y else 7 * y,
    "mod(x-y,2)": lambda x, y, z: (x - y) % 2,
    "floor(x/2)+ceil(y/2)+round(x/3)+sign(x-2)+abs(y-3)": lambda x, y, z: x // 2 + math.ceil(y / 2)
    + math.floor(x / 3 + 0.5) + (x > 2) - (x < 2) + abs(y - 3),
    "sin(pi*x)+cos(y)+tan(x/9)+e": lambda x, y, z: math.sin(math.pi * x) + math.cos(y) + math.tan(x / 9) + math.e,
    "asin(x/4)+acos(y/3)+atan(x)+atan2(y,x+1)": lambda x, y, z: math.asin(x / 4) + math.acos(y / 3) + math.atan(x)
    + math.atan2(y, x + 1),
    "sinh(x)+cosh(y)+tanh(x)+exp(-x)": lambda x, y, z: math.sinh(x) + math.cosh(y) + math.tanh(x) + math.exp(-x),
    "log(x+1)+log10(y+1)+sqrt(x)+cbrt(y)+hypot(x,y)+pow(x+1,1.5)": lambda x, y, z: math.log(x + 1)
    + math.log10(y + 1) + math.sqrt(x) + y ** (1 / 3) + math.hypot(x, y) + (x + 1) ** 1.5,
}  # fmt: skip


@pytest.mark.parametrize("expression", EXPRESSIONS)
def test_expressions_are_what_they_are_in_mathematics(qelm, grid, expression):
    found = values(qelm, grid, expression)
    assert found == pytest.approx([EXPRESSIONS[expression](*p) for p in GRID[0]], rel=1e-14, abs=1e-14)


def random_expression(random_, depth):
    if depth == 0:
        return random_.choice(["x", "y", "2.5", "0.125", "pi"])
    a, b = (random_expression(random_, depth - 1) for _ in range(2))
    return random_.choice([f"({a}) + {b}", f"{a} - ({b})", f"({a})*({b})", f"min({a}, {b})", f"-({a})", f"({a}<{b})"])


def test_random_expressions_agree_with_python(qelm, grid):
    seed = 20
    random_ = random.Random(seed)
    for _ in range(12):
        text = random_expression(random_, 4)
        expected = [float(eval(text, {"x": x, "y": y, "min": min, "pi": math.pi})) for x, y, _ in GRID[0]]
        assert values(qelm, grid, text) == expected, (seed, text)


def test_s_goes_round_a_loop_from_its_lowest_vertex_with_the_surface_at_the_left(qelm, grid):
    found = values(qelm, grid, "s", "boundary & loop:0")
    # 14 long: 4 to the right, 3 up, 4 back, 3 down.
    way = {(x, 0): x for x in range(5)} | {(4, y): 4 + y for y in range(4)}
    way |= {(x, 3): 11 - x for x in range(5)} | {(0, y): 14 - y for y in (1, 2, 3)}
    for (x, y, _), value in zip(GRID[0], found):
        if (x, y) in way:
            assert value == pytest.approx(way[x, y] / 14)


def test_s_goes_along_a_curve(qelm, grid):
    qelm.write("rail.csv", "0,1,0\n4,1,0\n")
    found = values(qelm, grid, "10*s", "curve:rail.csv")
    assert [found[v] for v in range(5, 10)] == pytest.approx([0, 2.5, 5, 7.5, 10])


def test_expressions_stand_for_one_of_several_fields_and_in_the_summary(qelm, grid):
    arguments = ["solve", grid, "--fix", "xmin=max(x, 1),y:2", "--fix", "xmax=5"]
    summary = qelm.json(*arguments, "-o", "f.csv")
    assert summary["fix"][0]["values"] == ["max(x, 1)", "y"]
    assert (summary["fix"][0]["tag"], len(summary["fields"])) == (2, 2)
    rows = [line.split(",") for line in (qelm.folder / "f.csv").read_text().splitlines()[1:]]
    assert [rows[5][4:], rows[10][4:]] == [["1", "1"], ["1", "2"]]
    assert "         xmin = max(x, 1),y: 4 (x = 0 within 5e-06)\n" in qelm.ok(*arguments).stderr


BAD = {
    "xmin=x y": "'x y' is not a number, nor an expression: 'y' cannot be read",
    "xmin=foo(1)": "there is no 'foo'; use x, y, z, s, pi, e or abs, acos, ",
    "xmin=system(1)": "there is no 'system'",
    "xmin=sin": "'(' is missing at the end",
    "xmin=sin(1,2)": "')' is missing before ',2)'",
    "xmin=min(1)": "',' is missing before ')'",
    "xmin=(1": "')' is missing at the end",
    "xmin=1+": "it ends too early",
    "xmin=1..2": "'1..2' is not a number",
    "xmin=" + "(" * 300 + "1" + ")" * 300: "it is nested too deeply",
    "xmin=" + "-" * 300 + "x": "it is nested too deeply",
    "xmin=s": "s is the way along a loop: or a curve:, and there is none here",
    "loop:0 | vertex:6=s": "vertex 6 (1, 1, 0): is on no loop: or curve:, so there is no s",
    "xmin=1/y": "--fix xmin=1/y: vertex 0 (0, 0, 0): the value is inf, which is not finite",
    "xmin=sqrt(y-1)": "the value is -nan, which is not finite",
}


@pytest.mark.parametrize("condition", BAD, ids=[text[:20] for text in BAD])
def test_bad_expressions_are_refused(qelm, grid, condition):
    message = qelm.fails(2, "solve", grid, "--fix", condition)
    assert BAD[condition].replace("-nan", "") in message.replace("-nan", "").replace("nan", "")


def test_a_long_expression_is_no_trouble(qelm, grid):
    assert values(qelm, grid, "+".join(["x"] * 5000)) == [5000 * x for x, _, _ in GRID[0]]
