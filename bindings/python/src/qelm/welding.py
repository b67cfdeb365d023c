"""Merging the vertices of triangle soups."""

from __future__ import annotations

import math
from ctypes import byref, c_int
from typing import NamedTuple, Optional

import numpy as np
import numpy.typing as npt

from . import _arrays
from ._native import library, require_ok
from ._numbers import one_number
from .errors import MeshError

__all__ = ["Welded", "weld"]

# Of the diagonal of the bounding box; what the command-line tool takes, too.
_DEFAULT_TOLERANCE = 1e-6


class Welded(NamedTuple):
    """A welded mesh.

    Attributes
    ----------
    vertices : ndarray, shape (k, 3), float64
        The kept vertices, in input order, bit for bit.
    triangles : ndarray, shape (l, 3), int32
        The kept triangles, in input order.
    vertex_map : ndarray, shape (n,), int32
        For each vertex that went in, its number among the kept ones.

    Examples
    --------
    >>> import qelm
    >>> welded = qelm.weld([[0, 0], [1, 0], [1, 1], [0, 0], [1, 1], [0, 1]], [[0, 1, 2], [3, 4, 5]])
    >>> len(welded.vertices), int(welded.vertex_map[5])
    (4, 3)
    """

    vertices: npt.NDArray[np.float64]
    triangles: npt.NDArray[np.int32]
    vertex_map: npt.NDArray[np.int32]


def weld(vertices: npt.ArrayLike, triangles: npt.ArrayLike, tolerance: Optional[float] = None) -> Welded:
    """Merges vertices that lie closer together than a tolerance.

    Triangles that collapse by it, or become those of earlier ones, are left out. Merging carries on
    from vertex to vertex, so that the ends of a chain of near vertices become one.

    Parameters
    ----------
    vertices : array_like, shape (n, 3), (n, 2) or (3n,)
        Coordinates. A vertex with a coordinate that is not finite is never merged.
    triangles : array_like, shape (m, 3) or (3m,)
        Vertex numbers, from 0.
    tolerance : float, optional
        In the unit of the coordinates, 0 or more; vertices exactly so far apart stay apart, and 0
        merges nothing. A millionth of the bounding box's diagonal unless given.

    Returns
    -------
    Welded
        ``(vertices, triangles, vertex_map)``.

    Raises
    ------
    MeshError
        An index is out of range, a shape is wrong, or the tolerance is negative or NaN.
    TypeError
        An array does not hold real numbers, or the tolerance is none.

    Examples
    --------
    Two triangles that share an edge, each with corners of its own:

    >>> import qelm
    >>> soup = [[0, 0], [1, 0], [1, 1], [0, 0], [1, 1], [0, 1]]
    >>> welded = qelm.weld(soup, [[0, 1, 2], [3, 4, 5]], 1e-6)
    >>> welded.triangles.tolist(), welded.vertex_map.tolist()
    ([[0, 1, 2], [0, 2, 3]], [0, 1, 2, 0, 2, 3])
    """
    xyz = _arrays.coordinates(vertices)
    _arrays.require_count(len(xyz), "vertices", "vertex")
    corners = _arrays.triangle_indices(triangles, len(xyz))
    distance = _diagonal(xyz) * _DEFAULT_TOLERANCE if tolerance is None else one_number(tolerance, "tolerance")
    if not distance >= 0:
        raise MeshError(f"tolerance: {distance} is no distance; pass 0 or more")
    welded = Welded(np.empty_like(xyz), np.empty_like(corners), np.empty(len(xyz), np.int32))
    vertex_count, triangle_count = c_int(), c_int()
    address = _arrays.address
    require_ok(
        library().qelmWeld(
            len(xyz), address(xyz), len(corners), address(corners), distance,
            address(welded.vertices), address(welded.triangles), address(welded.vertex_map),
            byref(vertex_count), byref(triangle_count),
        )  # fmt: skip
    )
    return Welded(
        welded.vertices[: vertex_count.value].copy(),
        welded.triangles[: triangle_count.value].copy(),
        welded.vertex_map,
    )


def _diagonal(xyz: npt.NDArray[np.float64]) -> float:
    finite = xyz[np.isfinite(xyz).all(axis=1)]
    if not len(finite):
        raise MeshError("vertices: none is finite, so there is no size to derive a tolerance from; pass one")
    with np.errstate(over="ignore"):
        extent = finite.max(axis=0) - finite.min(axis=0)
    diagonal = math.hypot(*extent)
    if not math.isfinite(diagonal):
        raise MeshError("vertices: the bounding box is too large for a tolerance; pass one, or scale the mesh")
    return diagonal
