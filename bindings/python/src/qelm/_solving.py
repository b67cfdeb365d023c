"""Solving: what goes to the library's solver, and what comes back."""

from __future__ import annotations

from ctypes import byref, c_int, c_int64
from typing import Any, Optional, Tuple

import numpy as np
import numpy.typing as npt

from . import _arrays, _building
from ._handle import Handle
from ._native import require_ok
from .errors import FieldError, SingularSystemError

_NOT_FACTORISED, _VALUE_NOT_FINITE, _LOAD_NOT_FINITE, _FIELD_NOT_FINITE = range(108, 112)


def prescribed_values(values: npt.ArrayLike, fixed: npt.NDArray[np.intp], vertex_count: int) -> _arrays.Doubles:
    """(..., n), from that shape or from the values of the fixed vertices alone. Raises FieldError."""
    array = _arrays.doubles(values, "values")
    # Of all vertices, unless the length says that they are of the fixed ones alone.
    if array.ndim in (1, 2) and array.shape[-1] == vertex_count:
        return array if array is values else _arrays.unmasked(values, array, "values", fixed)
    if array.ndim not in (1, 2) or array.shape[-1] != len(fixed):
        raise FieldError(
            f"values: the shape is {array.shape}, must be ({vertex_count},) for all vertices or "
            f"({len(fixed)},) for the fixed ones, or two-dimensional for many fields"
        )
    spread = np.zeros((*array.shape[:-1], vertex_count))
    spread[..., fixed] = _arrays.unmasked(values, array, "values", numbers=fixed)
    return spread


def solve(
    handle: Handle,
    prescribed: _arrays.Doubles,
    loads: Optional[_arrays.Doubles],
    out: Optional[npt.NDArray[np.float64]],
) -> _arrays.Doubles:
    """The field or fields of arrays of the right length. Raises FieldError, SingularSystemError."""
    given = prescribed, loads
    if loads is not None and loads.shape != prescribed.shape:
        prescribed, loads = _alike(prescribed, loads)
    result = np.empty(prescribed.shape) if out is None else _usable(out, prescribed.shape)
    values_at, result_at = _arrays.addresses(prescribed, result)
    loads_at = None if loads is None else _arrays.address(loads)
    # The library allows the same array on both sides, but no other overlap.
    if 0 < abs(values_at - result_at) < result.nbytes or loads_at and 0 < abs(loads_at - result_at) < result.nbytes:
        result[...] = solve(handle, *given, None)
        return result
    count = 1 if prescribed.ndim == 1 else len(prescribed)
    if count > _arrays.MOST_INT:
        raise FieldError(f"values: {count} fields are more than the library can number")
    first, status = c_int64(), c_int()
    handle.native.qelmsolveCheckedTagged(
        handle.pointer, count, values_at, loads_at, result_at, byref(first), byref(status)
    )
    if status.value:
        _refuse(handle, status.value, first.value, *given, result)
    return result


def _alike(
    prescribed: npt.NDArray[np.float64], loads: npt.NDArray[np.float64]
) -> Tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]:
    """One field with many loads, or the other way round, as many of both."""
    if prescribed.ndim == loads.ndim:
        raise FieldError(f"load: {len(loads)} loads for {len(prescribed)} fields; pass as many of both, or one")
    shape = prescribed.shape if prescribed.ndim == 2 else loads.shape
    return np.ascontiguousarray(np.broadcast_to(prescribed, shape)), np.ascontiguousarray(np.broadcast_to(loads, shape))


def _usable(out: Any, shape: Tuple[int, ...]) -> npt.NDArray[np.float64]:
    # carray: C-contiguous, aligned and writeable.
    is_plain = type(out) is np.ndarray or isinstance(out, np.memmap)
    if not is_plain or out.dtype != _arrays.DOUBLE or out.shape != shape or not out.flags.carray:
        raise FieldError(
            f"out: an array of shape {shape} and type float64 is needed, C-contiguous, aligned and writeable"
        )
    result: npt.NDArray[np.float64] = out
    return result


def _refuse(
    handle: Handle,
    status: int,
    first: int,
    prescribed: _arrays.Doubles,
    loads: Optional[_arrays.Doubles],
    result: _arrays.Doubles,
) -> None:
    """Raises what the library's status means; `first` is the place of the first wrong number."""
    if status == _NOT_FACTORISED:
        _building.require_factorised(handle.info())
    if status == _VALUE_NOT_FINITE:
        raise FieldError("values: {}: {} is not finite".format(*_found(prescribed, first)))
    if status == _LOAD_NOT_FINITE and loads is not None:
        raise FieldError("load: {}: {} is not finite".format(*_found(loads, first)))
    if status == _FIELD_NOT_FINITE:
        raise SingularSystemError(
            "{}: the solution is {}; triangles near it are too thin to compute with, "
            "or the numbers are too large; qelm.check names such triangles".format(*_found(result, first))
        )
    require_ok(status)


def _found(fields: _arrays.Doubles, place: int) -> Tuple[str, np.float64]:
    """'field 3, vertex 4711', or the vertex alone where there is one field only; and its number."""
    *row, vertex = np.unravel_index(place, fields.shape)
    where = f"field {row[0]}, vertex {vertex}" if row else f"vertex {vertex}"
    return where, fields[(*row, vertex)]
