"""Robust construction: fields that stay in range on triangles that are as they are."""

import numpy as np
import pytest
import qelm
from meshes import bits, grid, square

# Obtuse angles on both sides of the edge between the free vertex and the one at 1: a negative weight.
OBTUSE = [[0, 0], [4, 0], [2, 0.5], [2, -0.5]], [[0, 1, 2], [1, 0, 3]], [0, 1, 1, 1]


def test_where_the_plain_matrix_is_good_the_fields_are_the_same_bits():
    vertices, triangles, tags = grid(12, 9, height=lambda x, y: 0 * x)
    plain = qelm.MeshSystem(vertices, triangles, tags)
    robust = qelm.MeshSystem(vertices, triangles, tags, robust=True)
    values = np.cos(np.arange(108))
    assert not qelm.check_robust(vertices, triangles, tags).changed
    assert robust.solve(values) == pytest.approx(plain.solve(values), abs=1e-15)
    assert (bits(robust.solve(values)[robust.fixed]) == bits(values[robust.fixed])).all()


@pytest.mark.filterwarnings("error")
def test_a_field_stays_within_its_fixed_values():
    plain = qelm.MeshSystem(*OBTUSE).solve([1, 0, 0])
    robust = qelm.MeshSystem(*OBTUSE, robust=np.bool_(True)).solve([1, 0, 0])
    assert plain[0] < -0.5
    assert robust[0] == 0
    assert qelm.check_robust(*OBTUSE).changed


def test_triangles_without_area_and_of_any_size_are_taken():
    vertices, triangles, tags = square()
    flat = vertices.copy()
    flat[2] = (2, 0, 0)
    for points in (flat, vertices * 1e70, 0 * vertices):
        with pytest.raises(qelm.MeshError):
            qelm.MeshSystem(points, triangles, tags)
        field = qelm.MeshSystem(points, triangles, tags, robust=True).solve([0, 1])
        assert ((field >= 0) & (field <= 1)).all()
        fixed = qelm.MeshSystem.from_fixed(points, triangles, [0, 2], robust=True)
        assert (bits(fixed.solve([0, 1])) == bits(field)).all()


@pytest.mark.parametrize(
    "vertices, triangles, tags, message",
    [
        ([[0, 0], [1, 0], [2, 0]], [[0, 1, 2]], [0, 0, 0], "the connected part with vertex 0 .* has no fixed vertex"),
        ([[0, 0], [1, 0], [2, 0]], [[0, 1, 1]], [1, 0, 0], r"triangle 0 \(0, 1, 1\): names a vertex twice"),
        ([[0, 0], [1, 0], [2, 0], [3, 0]], [[0, 1, 2]], [1, 0, 0, 1], r"vertex 3 \(3, 0, 0\): lies in no triangle"),
        ([[0, 0], [1, 0], [np.nan, 0]], [[0, 1, 2]], [1, 0, 0], "vertices: vertex 2: x is nan"),
        ([[0, 0], [1, 0], [2, 0]], [[0, 1, 3]], [1, 0, 0], r"triangle 0 \(0, 1, 3\): vertex 3 is not in 0 .. 2"),
    ],
)
def test_what_is_no_mesh_is_refused_as_ever(vertices, triangles, tags, message):
    with pytest.raises(qelm.MeshError, match=message):
        qelm.MeshSystem(vertices, triangles, tags, robust=True)
    if "fixed vertex" not in message:
        with pytest.raises(qelm.MeshError, match=message):
            qelm.check_robust(vertices, triangles, tags)


def test_without_check_a_part_may_float():
    system = qelm.MeshSystem([[0, 0], [1, 0], [2, 0]], [[0, 1, 2]], [0, 0, 0], check=False, robust=True)
    assert len(system.curves([0, 1, 2], [0.5])) in (0, 1)
