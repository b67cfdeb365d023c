"""Level curves: one by one, or all of them packed."""

from __future__ import annotations

import operator
from ctypes import POINTER, addressof, byref, c_int
from functools import cached_property
from math import isfinite
from typing import Any, Callable, Iterator, List, NamedTuple, Optional, Sequence, Tuple, Union, overload

import numpy as np
import numpy.typing as npt

from . import _arrays
from ._handle import Handle, lent
from ._native import require_ok
from ._records import QelmCurves
from .errors import FieldError

__all__ = ["Curve", "Curves", "even_levels"]

#: As many evenly spaced ones as the tool takes.
_MOST_LEVELS = 10_000


class Curve(NamedTuple):
    """One level curve, a polyline.

    Attributes
    ----------
    points : ndarray, shape (p, 3), float64
        The points in order, in the unit of the vertices. Higher values lie at the left, seen from
        where the triangles are counter-clockwise.
    level : float
        The field's value along the curve.
    closed : bool
        True if the curve leads on from its last point to its first, which is not repeated.

    Examples
    --------
    >>> import qelm
    >>> square = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> curve = square.curves([0, 0.5, 1, 0.5], 0.25)[0]
    >>> curve.level, curve.closed, len(curve.points), round(curve.length, 3)
    (0.25, False, 3, 0.707)
    """

    points: npt.NDArray[np.float64]
    level: float
    closed: bool

    @property
    def length(self) -> float:
        """Length in the unit of the vertices; of a closed curve, all the way round."""
        steps = np.diff(self.polyline(), axis=0)
        return float(np.sqrt((steps * steps).sum(axis=1)).sum())

    def polyline(self) -> npt.NDArray[np.float64]:
        """The points, with the first once more at the end if the curve is closed.

        Returns
        -------
        ndarray, shape (p, 3) or (p + 1, 3)
        """
        return np.concatenate([self.points, self.points[:1]]) if self.closed else self.points


class Curves(Sequence[Curve]):
    """Level curves in the order of their levels: a sequence of :class:`Curve`, and packed arrays.

    For a large result use the arrays. They are views of the library's memory, made when they are first
    asked for; a ``Curve`` is made each time.

    Attributes
    ----------
    points : ndarray, shape (p, 3), float64, read-only
        The points of all curves, one curve after another.
    starts : ndarray, shape (c + 1,), int64, read-only
        Where each curve starts: the points of curve `k` are ``points[starts[k]:starts[k + 1]]``.
    levels : ndarray, shape (c,), float64
        The level of each curve.
    level_indices : ndarray, shape (c,), int32, read-only
        For each curve the index of its level among the levels that were asked for.
    closed : ndarray, shape (c,), bool
        Whether each curve is closed.

    Examples
    --------
    >>> import qelm
    >>> square = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> curves = square.curves([0, 0.5, 1, 0.5], [0.25, 0.75])
    >>> len(curves), curves.points.shape, curves.starts.tolist(), curves.levels.tolist()
    (2, (6, 3), [0, 3, 6], [0.25, 0.75])
    >>> [len(curve.points) for curve in curves]
    [3, 3]
    """

    def __init__(
        self,
        points: npt.NDArray[np.float64],
        starts: npt.NDArray[np.int64],
        levels: npt.NDArray[np.float64],
        level_indices: npt.NDArray[np.int32],
        closed: npt.NDArray[np.bool_],
    ) -> None:
        self.points = points
        self.starts = starts
        self.levels = levels
        self.level_indices = level_indices
        self.closed = closed

    def __len__(self) -> int:
        return len(self.levels)

    @overload
    def __getitem__(self, index: int) -> Curve: ...

    @overload
    def __getitem__(self, index: slice) -> List[Curve]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[Curve, List[Curve]]:
        if isinstance(index, slice):
            return [self[k] for k in range(*index.indices(len(self)))]
        k = operator.index(index)
        if k < 0:
            k += len(self)
        if not 0 <= k < len(self):
            raise IndexError(f"there are {len(self)} curves, numbered from 0; there is no curve {index}")
        points = self.points[self.starts[k] : self.starts[k + 1]]
        return Curve(points, float(self.levels[k]), bool(self.closed[k]))

    def __iter__(self) -> Iterator[Curve]:
        return (self[k] for k in range(len(self)))

    def __repr__(self) -> str:
        return f"<qelm.Curves: {len(self)} curves, {len(self.points)} points, {int(self.closed.sum())} closed>"

    def polylines(self) -> List[npt.NDArray[np.float64]]:
        """What ``Line3DCollection`` of matplotlib takes: an array of points for each curve.

        Returns
        -------
        list of ndarray, shape (p, 3)
            Closed curves end with their first point.
        """
        return [curve.polyline() for curve in self]

    def cells(self) -> npt.NDArray[np.int64]:
        """VTK's and PyVista's form of lines: the number of points of a curve, then their places.

        Returns
        -------
        ndarray, int64
            For each curve its number of points k and k rows of `points`; closed curves end with
            their first point.

        Examples
        --------
        >>> import qelm
        >>> square = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
        >>> square.curves([0, 0.5, 1, 0.5], [0.25, 0.75]).cells().tolist()
        [3, 0, 1, 2, 3, 3, 4, 5]
        """
        cells: List[npt.NDArray[np.int64]] = []
        for start, end, closed in zip(self.starts[:-1], self.starts[1:], self.closed):
            rows = np.arange(start, end + closed)
            if closed:
                rows[-1] = start
            cells += [np.array([len(rows)]), rows]
        return np.concatenate(cells) if cells else np.empty(0, np.int64)


def even_levels(field: npt.ArrayLike, count: int) -> npt.NDArray[np.float64]:
    """Levels evenly between the smallest and the largest value, as ``qelm curves --levels`` has them.

    Parameters
    ----------
    field : array_like
        Values; what is not finite or masked is left out.
    count : int
        How many, 1 to 10000.

    Returns
    -------
    ndarray, shape (count,)
        ``min + k (max - min) / (count + 1)`` for k = 1 .. count, strictly inside. Between round
        values they are round. Fewer where the doubles lie too far apart.

    Raises
    ------
    FieldError
        The field has one value only, or `count` is out of range.
    TypeError
        `count` is no whole number.

    Examples
    --------
    >>> import qelm
    >>> qelm.even_levels([0, 0.3, 1], 9).tolist()
    [0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9]
    """
    try:
        count = operator.index(count)
    except TypeError as error:
        raise TypeError(f"levels: {count!r} is no whole number; name a single level in a list") from error
    if not 1 <= count <= _MOST_LEVELS:
        raise FieldError(f"levels: {count} levels cannot be; ask for 1 to {_MOST_LEVELS}, or name them in a list")
    numbers = _arrays.doubles(field, "field")
    counted = np.isfinite(numbers)
    if isinstance(field, np.ma.MaskedArray):
        counted = counted & ~np.ma.getmaskarray(field)  # type: ignore[no-untyped-call]
    numbers = np.asarray(numbers)[np.asarray(counted)]
    if not numbers.size or numbers.min() == numbers.max():
        raise FieldError("field: all values are equal, so no level lies between them; name the levels in a list")
    low, high = float(numbers.min()), float(numbers.max())
    k = np.arange(1, count + 1)
    with np.errstate(over="ignore", invalid="ignore"):
        # Whole-numbered weights: between round values this gives round levels.
        levels = (low * (count + 1 - k) + high * k) / (count + 1)
    if not np.isfinite(levels).all():
        levels = low * (1 - k / (count + 1)) + high * (k / (count + 1))
    levels = np.unique(levels[(levels > low) & (levels < high)]) + 0.0
    if not levels.size:
        raise FieldError(f"field: no number lies between {low} and {high}; the field is too narrow to be cut")
    return levels


def chosen_levels(field: npt.NDArray[np.float64], levels: Union[int, npt.ArrayLike]) -> npt.NDArray[np.float64]:
    """(l,), finite: levels as they are given, or evenly spaced ones if their number is. Raises FieldError."""
    if isinstance(levels, (int, np.integer)) and not isinstance(levels, bool):
        return even_levels(field, int(levels))
    return _arrays.levels(levels)


class _Record(POINTER(QelmCurves)):  # type: ignore[misc]
    """Points to a record of curves, and owns it and its arrays."""

    _type_ = QelmCurves
    free: Callable[[_Record], None]  # At the interpreter's exit, this module's names may be gone before the record.

    def __del__(self) -> None:
        self.free(self)


class _RecordCurves(Curves):
    """Curves in a record. An array of it is made when it is first asked for, which costs more than the call's rest."""

    def __init__(self, record: _Record, asked_levels: List[float]) -> None:
        self._record = record
        self._asked_levels = asked_levels
        self._count: int = record.contents.curveCount

    def __len__(self) -> int:
        return self._count

    def __reduce__(self) -> Tuple[Any, ...]:
        return Curves, (self.points, self.starts, self.levels, self.level_indices, self.closed)

    @cached_property
    def points(self) -> npt.NDArray[np.float64]:  # type: ignore[override]
        packed = self._record.contents
        return lent(self._record, packed.points, (packed.pointCount, 3), np.float64)

    @cached_property
    def starts(self) -> npt.NDArray[np.int64]:  # type: ignore[override]
        if not self._count:
            return np.zeros(1, np.int64)
        return lent(self._record, self._record.contents.starts, (self._count + 1,), np.int64)

    @cached_property
    def levels(self) -> npt.NDArray[np.float64]:  # type: ignore[override]
        return np.array(self._asked_levels, np.float64).take(self.level_indices)

    @cached_property
    def level_indices(self) -> npt.NDArray[np.int32]:  # type: ignore[override]
        return lent(self._record, self._record.contents.levels, (self._count,), np.int32)

    @cached_property
    def closed(self) -> npt.NDArray[np.bool_]:  # type: ignore[override]
        return lent(self._record, self._record.contents.closed, (self._count,), np.int32).astype(bool)


def cut(handle: Handle, field: npt.NDArray[np.float64], levels: npt.NDArray[np.float64]) -> Curves:
    """The curves of checked arguments."""
    field_at, levels_at = _arrays.addresses(field, levels)
    return _cut(handle, field_at, levels.tolist(), levels_at)


def cut_plain(handle: Handle, vertex_count: int, field: object, levels: object) -> Optional[Curves]:
    """The curves of arrays that need no conversion; None where anything does, or is wrong.

    A large cut leaves nothing of Python in the processor's cache, so that each step costs a microsecond or
    more of some thousand that the cut takes. This is the way with the fewest steps.
    """
    if type(field) is not np.ndarray or field.dtype is not _arrays.DOUBLE or field.shape != (vertex_count,):
        return None
    if type(levels) is not np.ndarray or levels.dtype is not _arrays.DOUBLE or levels.ndim != 1:
        return None
    try:
        field_at, levels_at = addressof(_arrays.from_buffer(field)), addressof(_arrays.from_buffer(levels))
    except TypeError:  # One is not C-contiguous, or read-only.
        return None
    asked = levels.tolist()
    if (field_at | levels_at) % _arrays.DOUBLE.alignment or not all(map(isfinite, asked)):
        return None
    return _cut(handle, field_at, asked, levels_at)


def _cut(handle: Handle, field_at: int, asked_levels: List[float], levels_at: int) -> Curves:
    record, status = _Record(), c_int()
    record.free = handle.native.qelmfreecurves
    handle.native.qelmcurvesTagged(
        handle.pointer, field_at, len(asked_levels), levels_at, byref(record), byref(status)
    )
    if status.value:
        require_ok(status.value)
    # The levels as a list: the array may be the caller's, and change.
    return _RecordCurves(record, asked_levels)
