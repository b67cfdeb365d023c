"""--through: the curve at a place of the surface."""

import json

import pytest

import shapes

GRID = shapes.grid(4, 3)
FIX = ["--fix", "xmin=0", "--fix", "xmax=1"]  # the field is x / 4


@pytest.fixture
def grid(qelm):
    return qelm.write("grid.obj", shapes.obj(GRID))


@pytest.mark.parametrize(
    "place, value, away",
    [
        ("1.25,0.5,0", 0.3125, 0),  # inside a triangle
        ("2,1.5,3", 0.5, 3),  # above the surface
        ("3.5,-2,0", 0.875, 2),  # beside an edge
        ("1,2,0", 0.25, 0),  # at a vertex
    ],
)
def test_the_level_is_the_value_at_the_nearest_place(qelm, grid, place, value, away):
    summary = qelm.json("curves", grid, *FIX, "--through", f"near:{place}", "-o", "c.json")
    assert summary["levels"] == pytest.approx([value], rel=1e-15)
    (curve,) = json.loads((qelm.folder / "c.json").read_text())["curves"]
    assert all(point[0] == pytest.approx(4 * value) for point in curve["points"])
    done = qelm.ok("curves", grid, *FIX, "--through", f"near:{place}", "-o", "c.json")
    assert f"through  near:{place} = " in done.stderr and f", {away} away\n" in done.stderr


def test_places_go_beside_each_other_and_beside_levels(qelm, grid):
    through = ["--through", "near:3,0,0", "--through", "near:1,0,0"]
    assert qelm.json("curves", grid, *FIX, *through, "-o", "c.csv")["levels"] == pytest.approx([0.25, 0.75])
    summary = qelm.json("curves", grid, *FIX, *through, "--at", "0.5", "-o", "c.csv")
    assert summary["levels"] == pytest.approx([0.25, 0.5, 0.75])
    assert len(qelm.json("curves", grid, *FIX, *through, "--round", "-o", "c.csv")["levels"]) > 8


@pytest.mark.parametrize("text", ["1,2,3", "near:1,2", "near:1,2,x", "near:1,2,inf", "far:1,2,3"])
def test_places_are_points(qelm, grid, text):
    message = qelm.fails(2, "curves", grid, *FIX, "--through", text, "-o", "c.csv")
    assert f"--through {text}: write a place as near:X,Y,Z" in message
