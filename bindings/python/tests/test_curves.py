"""Level curves: the sequence and the packed form."""

import pickle
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest
import qelm
from hypothesis import given, strategies as st
from hypothesis.extra import numpy as npst
from meshes import bits, grid

VERTICES, TRIANGLES, TAGS = grid(9, 7)
HILL = -np.hypot(VERTICES[:, 0] - 4, VERTICES[:, 1] - 3)


@pytest.fixture(scope="module")
def system():
    return qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)


def test_curves_come_in_the_order_of_the_levels_asked_for(system):
    curves = system.curves(HILL, [-1.5, -4.2, -0.5])
    assert curves.level_indices.tolist() == sorted(curves.level_indices.tolist())
    assert curves.levels.tolist() == [[-1.5, -4.2, -0.5][k] for k in curves.level_indices]
    assert curves[0].closed and not curves[1].closed and curves[-1].closed


def test_a_closed_curve_has_its_whole_length(system):
    (curve,) = system.curves(HILL, [-1.5])
    assert curve.closed and (curve.polyline()[-1] == curve.points[0]).all()
    steps = np.linalg.norm(np.roll(curve.points, -1, axis=0) - curve.points, axis=1)
    assert curve.length == pytest.approx(steps.sum(), rel=1e-14)


def test_indices_and_slices_are_those_of_a_sequence(system):
    curves = system.curves(HILL, 8)
    assert [c.level for c in curves[1:3]] == curves.levels[1:3].tolist()
    assert (curves[-1].points == curves[len(curves) - 1].points).all()
    assert (curves[np.int64(0)].points == curves[0].points).all()
    for wrong in (len(curves), -len(curves) - 1):
        with pytest.raises(IndexError, match=f"there is no curve {wrong}"):
            curves[wrong]


def test_without_curves_everything_is_empty(system):
    for levels in ([], [99]):
        curves = system.curves(HILL, levels)
        assert (len(curves), curves.points.shape, curves.starts.tolist()) == (0, (0, 3), [0])
        assert list(curves) == curves.polylines() == curves.cells().tolist() == []


def test_arrays_are_read_only_and_can_be_pickled(system):
    curves = system.curves(HILL, 5)
    for array in (curves.points, curves.starts, curves.level_indices):
        with pytest.raises(ValueError, match="read-only"):
            array[0] = 0
    back = pickle.loads(pickle.dumps(curves))
    assert (bits(back.points) == bits(curves.points)).all() and len(back) == len(curves)


def test_levels_stay_those_asked_for_when_the_callers_array_changes(system):
    asked = np.array([-1.5, -0.5])
    curves = system.curves(HILL, asked)
    asked[:] = 7
    assert set(curves.levels) == {-1.5, -0.5}


def test_arrays_are_made_once_and_outlive_curves_and_system():
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    expected = system.curves(HILL, 8)
    with ThreadPoolExecutor(8) as pool:
        for _ in range(20):
            curves = system.curves(HILL, 8)
            arrays = list(pool.map(lambda _: curves.points, range(8)))  # noqa: B023
            assert all((bits(array) == bits(expected.points)).all() for array in arrays)
    system.close()
    points, closed = curves.points, curves.closed
    del curves, system
    assert (bits(points) == bits(expected.points)).all() and (closed == expected.closed).all()


def test_cells_name_the_points_of_the_polylines(system):
    curves = system.curves(HILL, 8)
    assert curves.closed.any() and not curves.closed.all()
    cells, at = curves.cells(), 0
    for line in curves.polylines():
        assert (curves.points[cells[at + 1 : at + 1 + cells[at]]] == line).all()
        at += 1 + cells[at]
    assert at == len(cells)


def test_one_level_may_be_a_number(system):
    assert system.curves(HILL, -1.5).levels.tolist() == [-1.5]
    assert len(system.curves(HILL)) >= 12


def test_a_hole_is_where_the_field_is_nan_or_masked(system):
    holed = np.where(HILL > -1.1, np.nan, HILL)
    masked = np.ma.masked_greater(HILL, -1.1)
    one, other = system.curves(holed, [-1.5]), system.curves(masked, [-1.5])
    assert (bits(one.points) == bits(other.points)).all() and not one.closed.any()


@pytest.mark.parametrize(
    "field, levels, message",
    [
        (HILL[:-1], 3, r"field: the shape is \(62,\), must be \(63,\)"),
        (HILL, [0, np.nan], "levels: level 1 is nan"),
        (HILL, [[0, 1]], r"levels: the shape is \(1, 2\)"),
        (HILL, 0, "levels: 0 levels cannot be"),
        (HILL, np.ma.masked_array([0.0], mask=[True]), "levels: some levels are masked"),
        (0 * HILL, 3, "field: all values are equal"),
        (np.nan * HILL, 3, "field: all values are equal"),
    ],
)
def test_wrong_fields_and_levels_are_named(system, field, levels, message):
    with pytest.raises(qelm.FieldError, match=message):
        system.curves(field, levels)


def test_levels_far_apart_do_not_overflow():
    levels = qelm.even_levels([-1.7e308, 1.7e308], 3)
    assert len(levels) == 3 and np.isfinite(levels).all() and levels[1] == pytest.approx(0, abs=1e294)


def test_masked_values_are_no_range():
    field = np.ma.masked_equal([0, 1, 5, 9], 9)
    assert qelm.even_levels(field, 4).tolist() == [1, 2, 3, 4]


@pytest.mark.parametrize("count, error", [(10**9, qelm.FieldError), (10**30, qelm.FieldError), (2.5, TypeError), (None, TypeError)])
def test_a_count_of_levels_that_cannot_be_is_named(count, error):
    with pytest.raises(error, match="^levels: "):
        qelm.even_levels([0, 1], count)


def test_there_are_only_as_many_levels_as_doubles():
    assert qelm.even_levels([1, np.nextafter(np.nextafter(1, 2), 2)], 100).tolist() == [np.nextafter(1, 2)]
    with pytest.raises(qelm.FieldError, match="too narrow"):
        qelm.even_levels([1, np.nextafter(1, 2)], 5)


@given(
    npst.arrays(np.float64, 63, elements=st.floats(-4, 4, width=16) | st.just(np.nan)),
    npst.arrays(np.float64, st.integers(0, 5), elements=st.floats(-4, 4, width=16)),
)
def test_the_packed_arrays_fit_together(field, levels):
    curves = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS).curves(field, levels)
    assert curves.starts[0] == 0 and curves.starts[-1] == len(curves.points)
    assert (np.diff(curves.starts) >= 2).all()
    assert len(curves.starts) - 1 == len(curves.levels) == len(curves.closed) == len(curves)
    assert np.isfinite(curves.points).all()
    assert (levels[curves.level_indices] == curves.levels).all()
    low, high = VERTICES.min(axis=0), VERTICES.max(axis=0)
    assert ((curves.points >= low) & (curves.points <= high)).all()
