"""Integers as points on the unit sphere."""

from __future__ import annotations

from ctypes import byref, c_float

import numpy as np
import numpy.typing as npt

from . import _arrays
from ._native import library
from .errors import FieldError

__all__ = ["decode", "encode"]

_MIN, _MAX = -1, 65534


def encode(values: npt.ArrayLike) -> npt.NDArray[np.float32]:
    """The points of integers on the upper half of the unit sphere.

    Parameters
    ----------
    values : array_like of int, any shape
        Each in -1 .. 65534. 65535 is refused: it has the two bytes of -1.

    Returns
    -------
    ndarray, shape (..., 3), float32
        x carries the low byte, y the high byte, z makes the length 1.

    Raises
    ------
    FieldError
        A value cannot be carried, or is masked.
    TypeError
        The values are no integers.

    Examples
    --------
    >>> import qelm
    >>> print(qelm.encode(258).round(4))
    [-0.4922 -0.4961  0.7153]
    >>> int(qelm.decode(qelm.encode(258)))
    258
    """
    _refuse_masked(values, "values")
    given = np.asarray(_arrays.real(values, "values"))
    if given.dtype.kind not in "iu" and given.size:
        raise TypeError(f"values: elements of type {given.dtype} are no integers")
    flat = given.ravel()
    wrong = _arrays.first((flat < _MIN) | (flat > _MAX))
    if wrong >= 0:
        raise FieldError(f"values: element {wrong}: {flat[wrong]} is not in {_MIN} .. {_MAX}")
    points = np.empty((flat.size, 3), np.float32)
    x, y, z = c_float(), c_float(), c_float()
    encode_one = library().encode_integer_to_sphere
    for k, value in enumerate(flat.tolist()):
        encode_one(value, byref(x), byref(y), byref(z))
        points[k] = x.value, y.value, z.value
    return points.reshape(*given.shape, 3)


def decode(points: npt.ArrayLike) -> npt.NDArray[np.int32]:
    """The integers of points that :func:`encode` made, or of their reverses.

    Every point decodes to something: its length is not looked at, a coordinate off the range reads
    as the byte 255, and NaN as 0.

    Parameters
    ----------
    points : array_like, shape (..., 3)
        Taken as float32.

    Returns
    -------
    ndarray, shape (...), int32

    Raises
    ------
    FieldError
        The last dimension is not 3, or a coordinate is masked.
    TypeError
        The coordinates are no real numbers.

    Examples
    --------
    >>> import qelm
    >>> qelm.decode(-qelm.encode([-1, 0, 65534])).tolist()
    [-1, 0, 65534]
    """
    _refuse_masked(points, "points")
    with np.errstate(over="ignore"):
        given = np.asarray(_arrays.real(points, "points")).astype(np.float32)
    if given.ndim < 1 or given.shape[-1] != 3:
        raise FieldError(f"points: the shape is {given.shape}, must be (..., 3)")
    decode_one = library().decode_integer_from_sphere
    values = [decode_one(*point) for point in given.reshape(-1, 3).tolist()]
    return np.array(values, np.int32).reshape(given.shape[:-1])


def _refuse_masked(argument: object, name: str) -> None:
    if np.ma.is_masked(argument):  # type: ignore[no-untyped-call]
        raise FieldError(f"{name}: some elements are masked; give them values, or pass compressed() ones")
