"""Levels evenly apart, and curves with fewer points: the command-line tool's, as arrays."""

import json
import subprocess

import numpy as np
import pytest
import qelm
from meshes import bits, grid
from qelm import _loading

VERTICES, TRIANGLES, TAGS = grid(40, 30, lambda x, y: 0.2 * np.sin(x) * y)


@pytest.fixture(scope="module")
def system():
    return qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)


@pytest.fixture(scope="module")
def field(system):
    return system.solve(np.cos(VERTICES[:, 0]) + VERTICES[:, 1] / 3)


def cut_by_the_tool(tmp_path, system, field, *arguments):
    obj = "".join(f"v {x!r} {y!r} {z!r}\n" for x, y, z in system.vertices.tolist())
    obj += "".join(f"f {a} {b} {c}\n" for a, b, c in (system.triangles + 1).tolist())
    (tmp_path / "m.obj").write_text(obj)
    np.savetxt(tmp_path / "f.csv", field, "%.17g")
    command = [_loading.tool(), "curves", "m.obj", "--field", "f.csv:0", *arguments, "-o", "c.json", "--json"]
    done = subprocess.run(command, cwd=tmp_path, capture_output=True, check=True)
    return json.loads(done.stdout), json.loads((tmp_path / "c.json").read_text())["curves"]


def test_spaced_levels_are_the_tools(tmp_path, system, field):
    size = np.ptp(VERTICES[:, 0])
    found = qelm.spaced_levels(system, field, size / 20)
    summary, _ = cut_by_the_tool(tmp_path, system, field, "--spacing", repr(float(size / 20)))
    assert found.tolist() == summary["levels"] and len(found) > 5
    assert len(system.curves(field, found)) >= len(found)


def test_on_a_strip_they_are_a_distance_apart():
    vertices, triangles, tags = grid(11, 3, lambda x, y: 0 * x)
    width = np.ptp(vertices[:, 0])
    levels = qelm.spaced_levels(qelm.MeshSystem(vertices, triangles, tags), 3 * vertices[:, 0], width / 8)
    np.testing.assert_allclose(np.diff(levels), 3 * width / 8, rtol=1e-9)


def test_simplified_curves_are_the_tools_bit_for_bit(tmp_path, system, field):
    tolerance = float(np.ptp(VERTICES[:, 0])) / 1000
    found = qelm.simplified_curves(system, field, 9, tolerance)
    whole = system.curves(field, 9)
    assert len(found) == len(whole) and 0 < len(found.points) < len(whole.points)
    assert (found.levels == whole.levels).all() and (found.closed == whole.closed).all()
    assert (found.level_indices == whole.level_indices).all()
    at = ",".join(map(repr, qelm.even_levels(field, 9).tolist()))
    _, told = cut_by_the_tool(tmp_path, system, field, f"--at={at}", "--simplify", repr(tolerance))
    for one, other, old in zip(found, told, whole):
        assert (bits(one.points) == bits(np.array(other["points"]))).all()
        # What stays are points of the curve, in its order.
        kept = {tuple(point) for point in old.points.tolist()}
        assert all(tuple(point) in kept for point in one.points.tolist())


def test_levels_without_curves_and_in_any_order(system, field):
    levels = [float(field.max()) + 1, float(np.median(field))]
    found = qelm.simplified_curves(system, field, levels, 1e-6)
    assert set(found.levels.tolist()) == {levels[1]} and set(found.level_indices.tolist()) == {1}
    none = qelm.simplified_curves(system, field, levels[:1], 1e-6)
    assert len(none) == 0 and none.points.shape == (0, 3) and none.starts.tolist() == [0]


def test_without_levels_there_are_no_curves(system, field):
    assert len(qelm.simplified_curves(system, field, [], 1e-6)) == 0


def test_what_is_no_number_is_named(system, field):
    with pytest.raises(TypeError, match="^spacing: "):
        qelm.spaced_levels(system, field, "0.1")
    with pytest.raises(TypeError, match="^tolerance: .* one number is needed"):
        qelm.simplified_curves(system, field, 3, [0.1, 0.2])
    with pytest.raises(qelm.FieldError, match="^levels: 9999 are too many for the command-line tool"):
        qelm.simplified_curves(system, field, np.linspace(1 / 3, 2, 9999), 0.1)


def test_what_cannot_be_is_refused(system, field):
    for distance in (0, -1, np.nan, np.inf):
        with pytest.raises(qelm.FieldError, match="is no distance; give a finite number above 0"):
            qelm.spaced_levels(system, field, distance)
        with pytest.raises(qelm.FieldError, match="tolerance: "):
            qelm.simplified_curves(system, field, 3, distance)
    with pytest.raises(qelm.FieldError, match="must be"):
        qelm.spaced_levels(system, field[1:], 0.1)
    with pytest.raises(qelm.FieldError, match="field"):
        qelm.spaced_levels(system, np.where(np.arange(len(field)) == 3, np.nan, field), 0.1)
    with pytest.raises(qelm.ToolError, match="qelm curves: "):
        qelm.spaced_levels(system, field, 1e-9)
    closed = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    closed.close()
    with pytest.raises(qelm.ClosedError):
        qelm.simplified_curves(closed, field, 3, 0.1)
