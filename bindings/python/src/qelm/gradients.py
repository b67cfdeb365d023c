"""The gradient of a field: in which direction it grows, and how steeply."""

from __future__ import annotations

from typing import TYPE_CHECKING, NamedTuple

import numpy as np
import numpy.typing as npt

from ._lifetime import handle_of

if TYPE_CHECKING:
    from .system import MeshSystem

__all__ = ["Gradient", "gradient"]

# A triangle lower than so many roundings of its largest coordinate cannot be told from one without area.
_FLAT_ROUNDINGS = 8


class Gradient(NamedTuple):
    """A field's gradients, in its unit by the unit of the vertices.

    Attributes
    ----------
    of_triangles : ndarray, shape (m, 3), float64
        The gradient on each triangle, where the field is linear: in its plane. NaN on triangles
        without area.
    of_vertices : ndarray, shape (n, 3), float64
        The mean over each vertex's triangles, by their areas. NaN where none of them has an area.

    Examples
    --------
    >>> import qelm
    >>> square = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> qelm.gradient(square, [0, 3, 5, 2]).of_triangles.tolist()
    [[3.0, 2.0, 0.0], [3.0, 2.0, 0.0]]
    """

    of_triangles: npt.NDArray[np.float64]
    of_vertices: npt.NDArray[np.float64]

    @property
    def slopes(self) -> npt.NDArray[np.float64]:
        """How steep the field is at each vertex: the lengths of `of_vertices`, shape (n,)."""
        lengths: npt.NDArray[np.float64] = np.sqrt((self.of_vertices * self.of_vertices).sum(axis=1))
        return lengths


def gradient(system: MeshSystem, field: npt.ArrayLike) -> Gradient:
    """In which direction along the surface a field grows most, and by how much on a unit of length.

    On a triangle (a, b, c) with the normal N = (b - a) x (c - a) the field's linear interpolation has
    the gradient N x ((u_b - u_a) (a - c) + (u_c - u_a) (b - a)) / |N|^2. The command-line tool's
    ``qelm gradient`` computes the same.

    Parameters
    ----------
    system : MeshSystem
        The mesh that the field lies on.
    field : array_like, shape (n,)
        One value per vertex. Triangles with a NaN or masked corner have no gradient.

    Returns
    -------
    Gradient

    Raises
    ------
    FieldError
        The shape is wrong.
    TypeError
        The system is no MeshSystem, or the field does not hold real numbers.
    ClosedError
        The system is closed.

    Examples
    --------
    >>> import qelm
    >>> square = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> qelm.gradient(square, square.solve([0, 1])).slopes.round(3).tolist()
    [0.707, 0.707, 0.707, 0.707]
    """
    handle_of(system)
    values = system._any_field(field)
    corners = system.triangles
    a, b, c = (system.vertices[corners[:, k]] for k in range(3))
    u = values[corners]
    normals = np.cross(b - a, c - a)
    twice_areas = np.sqrt((normals * normals).sum(axis=1))
    with np.errstate(over="ignore", divide="ignore", invalid="ignore"):
        along = (u[:, 1] - u[:, 0])[:, None] * (a - c) + (u[:, 2] - u[:, 0])[:, None] * (b - a)
        # Two divisions, not one by the square, which may underflow.
        vectors = np.cross(normals, along) / twice_areas[:, None] / twice_areas[:, None] + 0.0  # no negative zero
    longest = np.sqrt(np.max([(s * s).sum(axis=1) for s in (b - a, c - b, a - c)], axis=0))
    largest = np.abs(np.stack([a, b, c])).max(axis=(0, 2))
    vectors[~(twice_areas > _FLAT_ROUNDINGS * np.finfo(float).eps * largest * longest)] = np.nan
    return Gradient(vectors, _means(vectors, twice_areas, corners, system.vertex_count))


def _means(
    vectors: npt.NDArray[np.float64],
    weights: npt.NDArray[np.float64],
    corners: npt.NDArray[np.int32],
    count: int,
) -> npt.NDArray[np.float64]:
    """For each vertex the weighted mean over its triangles, of those that have a gradient."""
    has = ~np.isnan(vectors[:, 0])
    vertices = corners[has].ravel()
    shares = np.repeat(weights[has], 3)
    sums = np.bincount(vertices, shares, count)
    with np.errstate(invalid="ignore"):
        means = [
            np.bincount(vertices, np.repeat(weights[has] * vectors[has, axis], 3), count) / sums for axis in range(3)
        ]
    return np.stack(means, axis=1)
