"""What constructing a system takes, before it is constructed."""

from __future__ import annotations

from ctypes import byref
from dataclasses import dataclass

import numpy.typing as npt

from . import _building
from ._mesh import mesh_of
from ._native import library, require_ok
from ._records import QelmPrediction

__all__ = ["Prediction", "predict"]


@dataclass(frozen=True)
class Prediction:
    """What constructing a system takes.

    Attributes
    ----------
    factor_entries : int
        Entries of the factor below its diagonal; the library can index 2**31 - 1.
    handle_bytes : int
        Memory that the system keeps.
    peak_bytes : int
        The most memory that is taken at once while it is constructed.
    multiplications : float
        Multiplications of the factorisation, which takes most of the time: a processor does 1e9 to 1e10
        of them a second.

    Examples
    --------
    >>> import qelm
    >>> found = qelm.predict([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> found.handle_bytes < found.peak_bytes < 10_000
    True
    """

    factor_entries: int
    handle_bytes: int
    peak_bytes: int
    multiplications: float


def predict(
    vertices: npt.ArrayLike, triangles: npt.ArrayLike, tags: npt.ArrayLike, *, robust: bool = False
) -> Prediction:
    """Says what :class:`MeshSystem` would take, in about a microsecond a vertex and a part of that memory.

    Parameters
    ----------
    vertices : array_like, shape (n, 3), (n, 2) or (3n,)
        Finite coordinates.
    triangles : array_like, shape (m, 3) or (3m,)
        Vertex numbers, from 0.
    tags : array_like, shape (n,)
        1, 2 and 3 mean that the vertex is fixed; a mask of the fixed vertices does as well.
    robust : bool, default False
        Predict for ``MeshSystem(..., robust=True)``.

    Returns
    -------
    Prediction

    Raises
    ------
    MeshError
        The mesh cannot be built; the message names what is wrong.
    TypeError
        An array does not hold real numbers.

    Examples
    --------
    >>> import qelm
    >>> found = qelm.predict([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 0, 0])
    >>> found.factor_entries, found.multiplications
    (2, 2.0)
    """
    mesh = mesh_of(vertices, triangles, tags)
    native = QelmPrediction()
    status = library().qelmpredictTagged(*mesh.arguments(), bool(robust), byref(native))
    if status in _building.DEFECTS:
        _building.refuse_defects(mesh, robust)
    require_ok(status)
    return Prediction(native.factorEntries, native.handleBytes, native.peakBytes, native.multiplications)
