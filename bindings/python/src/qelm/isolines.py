"""The raw export of isoline segments."""

from __future__ import annotations

from ctypes import POINTER, byref
from typing import TYPE_CHECKING, NamedTuple

import numpy as np
import numpy.typing as npt

from . import _arrays
from ._handle import lent
from ._lifetime import handle_of
from ._native import library
from ._records import IsoEdgeMatrix, IsoPointMatrix

if TYPE_CHECKING:
    from .system import MeshSystem

__all__ = ["Segments", "isoline_segments"]


class Segments(NamedTuple):
    """Straight segments, each with two points of its own.

    Attributes
    ----------
    points : ndarray, shape (2s, 3), float64
        First the first ends of all segments, then the second ends.
    edges : ndarray, shape (s, 2), int32
        Row `i` is ``(i, i + s)``.

    Examples
    --------
    >>> import qelm
    >>> square = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> segments = qelm.isoline_segments(square, [0, 0.5, 1, 0.5], [0.25])
    >>> len(segments.points) == 2 * len(segments.edges)
    True
    """

    points: npt.NDArray[np.float64]
    edges: npt.NDArray[np.int32]


def isoline_segments(system: MeshSystem, field: npt.ArrayLike, levels: npt.ArrayLike) -> Segments:
    """Segments as the C function ``qelisoline`` gives them. For level curves use ``MeshSystem.curves``.

    This export reads the system's own arrays (``system_vertices``, ``system_triangles``) as tables of
    as many rows as there are vertices, stored column by column: corner k of row t is element t + k n
    of the flat triangles, coordinate c of vertex v is element v + c n of the flat vertices. It is kept
    for callers that arrange their data so, and does not give the level curves of the mesh as it was
    built. Segments are not joined and not labelled with their level; a level that meets a vertex gives
    segments without length, one along an edge points with NaN.

    Parameters
    ----------
    system : MeshSystem
        The mesh that the field lies on.
    field : array_like, shape (n,)
        One value per vertex, input order; any values.
    levels : array_like, shape (l,)
        In any order.

    Returns
    -------
    Segments
        ``(points, edges)``.

    Raises
    ------
    FieldError
        A shape is wrong, or a level is not finite.
    TypeError
        The system is no MeshSystem, or an array does not hold real numbers.
    ClosedError
        The system is closed.

    Examples
    --------
    >>> import qelm
    >>> square = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> points, edges = qelm.isoline_segments(square, [0, 0.5, 1, 0.5], [0.25])
    >>> points.shape[1], edges.shape[1]
    (3, 2)
    """
    handle = handle_of(system)
    ordered = system._any_field(field)[system.order]
    cuts = _arrays.levels(levels)
    points = POINTER(IsoPointMatrix)()
    edges = POINTER(IsoEdgeMatrix)()
    library().qelisoline(
        handle.pointer, _arrays.address(ordered), len(cuts), _arrays.address(cuts), byref(points), byref(edges)
    )
    try:
        ends, pairs = points.contents, edges.contents
        # Copied, since both tables go at once.
        return Segments(
            lent(None, ends.data, (3, ends.rows), np.float64).T.copy(),
            lent(None, pairs.data, (2, pairs.rows), np.int32).T.copy(),
        )
    finally:
        library().qelfreeisoline(points, edges)
