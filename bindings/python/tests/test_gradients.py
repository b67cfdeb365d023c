"""Gradients: exact on linear fields, and the same as the command-line tool's."""

import numpy as np
import pytest
import qelm
from hypothesis import given, settings, strategies as st
from meshes import grid

VERTICES, TRIANGLES, TAGS = grid(9, 7, lambda x, y: 0 * x)
SLOPE = np.array([3.0, -2.0, 0.5])


@pytest.fixture(scope="module")
def system():
    return qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)


def test_a_linear_field_has_its_own(system):
    gradient = qelm.gradient(system, VERTICES @ SLOPE)
    assert gradient.of_triangles.shape == (len(TRIANGLES), 3) and gradient.of_vertices.shape == (len(VERTICES), 3)
    np.testing.assert_allclose(gradient.of_triangles, np.tile([3, -2, 0], (len(TRIANGLES), 1)), atol=1e-12)
    np.testing.assert_allclose(gradient.of_vertices, np.tile([3, -2, 0], (len(VERTICES), 1)), atol=1e-12)
    np.testing.assert_allclose(gradient.slopes, 13**0.5, rtol=1e-12)


@settings(deadline=None, max_examples=30)
@given(st.integers(0, 2**32 - 1))
def test_in_space_it_is_the_part_that_lies_in_the_triangle(seed):
    random = np.random.default_rng(seed)
    points = random.normal(size=(12, 3))
    corners = np.array([random.choice(12, 3, replace=False) for _ in range(30)])
    system = qelm.MeshSystem(points, corners, np.ones(12, int), check=False)
    found = qelm.gradient(system, points @ SLOPE).of_triangles
    a, b, c = (points[corners[:, k]] for k in range(3))
    normals = np.cross(b - a, c - a)
    twice = np.linalg.norm(normals, axis=1)
    unit = normals / twice[:, None]
    np.testing.assert_array_less(
        np.abs(found - (SLOPE - unit * (unit @ SLOPE)[:, None])).max(axis=1), 1e-12 * (1 + 1 / twice**2)
    )


def test_a_constant_is_flat_and_holes_have_none(system):
    assert not qelm.gradient(system, np.full(len(VERTICES), 1 / 3)).of_triangles.any()
    holed = np.ma.masked_array(VERTICES[:, 0], np.arange(len(VERTICES)) == TRIANGLES[0][0])
    gradient = qelm.gradient(system, holed)
    touched = (np.asarray(TRIANGLES) == TRIANGLES[0][0]).any(axis=1)
    assert (np.isnan(gradient.of_triangles).all(axis=1) == touched).all() and 0 < touched.sum() < len(touched)
    assert np.isnan(gradient.of_vertices[TRIANGLES[0][0]]).all()


@pytest.mark.filterwarnings("error")
def test_infinite_values_give_no_warnings(system):
    field = np.where(np.arange(len(VERTICES)) == TRIANGLES[0][0], np.inf, VERTICES[:, 0])
    touched = (np.asarray(TRIANGLES) == TRIANGLES[0][0]).any(axis=1)
    finite = np.isfinite(qelm.gradient(system, field).of_triangles).all(axis=1)
    assert (finite == ~touched).all()


def test_triangles_without_area_have_none_and_do_not_count():
    points = [[0, 0], [1, 0], [1, 1], [0, 1], [0.5, 0]]
    system = qelm.MeshSystem(points, [[0, 1, 2], [0, 2, 3], [0, 4, 1]], [1] * 5, check=False)
    gradient = qelm.gradient(system, [0, 3, 5, 2, 99])
    assert np.isnan(gradient.of_triangles[2]).all() and gradient.of_triangles[:2].tolist() == [[3, 2, 0]] * 2
    assert np.isnan(gradient.of_vertices[4]).all() and gradient.of_vertices[0] == pytest.approx([3, 2, 0])


def test_wrong_fields_are_refused(system):
    with pytest.raises(qelm.FieldError, match="must be"):
        qelm.gradient(system, [1, 2, 3])
    closed = system.duplicate()
    closed.close()
    with pytest.raises(qelm.ClosedError):
        qelm.gradient(closed, VERTICES[:, 0])
