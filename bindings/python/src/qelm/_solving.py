"""Solving: what goes to the library's solvers, and what comes back."""

from __future__ import annotations

from ctypes import byref, c_int
from typing import Any, Optional, Tuple

import numpy as np
import numpy.typing as npt

from . import _arrays, _float_flags
from ._handle import Handle
from ._native import library, require_ok
from .errors import FieldError, SingularSystemError


def prescribed_values(values: npt.ArrayLike, fixed: npt.NDArray[np.intp], vertex_count: int) -> _arrays.Doubles:
    """(..., n), from that shape or from the values of the fixed vertices alone. Raises FieldError."""
    array = _arrays.doubles(values, "values")
    # Of all vertices, unless the length says that they are of the fixed ones alone.
    if array.ndim in (1, 2) and array.shape[-1] == len(fixed) != vertex_count:
        given = _arrays.per_vertex(values, len(fixed), "values", numbers=fixed)
        spread = np.zeros((*given.shape[:-1], vertex_count))
        spread[..., fixed] = given
        return spread
    if array.ndim not in (1, 2) or array.shape[-1] != vertex_count:
        raise FieldError(
            f"values: the shape is {array.shape}, must be ({vertex_count},) for all vertices or "
            f"({len(fixed)},) for the fixed ones, or two-dimensional for many fields"
        )
    if array is not values and isinstance(values, np.ma.MaskedArray):
        return _arrays.per_vertex(values, vertex_count, "values", fixed)
    _arrays.require_finite_numbers(array, "values", fixed)
    return array


def solve(
    handle: Handle,
    prescribed: _arrays.Doubles,
    loads: Optional[_arrays.Doubles],
    out: Optional[npt.NDArray[np.float64]],
) -> _arrays.Doubles:
    """The field or fields of checked arguments; `out` is checked here. Raises FieldError, SingularSystemError."""
    if loads is not None and loads.shape != prescribed.shape:
        prescribed, loads = _alike(prescribed, loads)
    result = np.empty(prescribed.shape) if out is None else _usable(out, prescribed.shape)
    values_at, result_at = _arrays.address(prescribed), _arrays.address(result)
    loads_at = values_at if loads is None else _arrays.address(loads)
    # The library allows the same array on both sides, but no other overlap.
    if 0 < abs(values_at - result_at) < result.nbytes or 0 < abs(loads_at - result_at) < result.nbytes:
        result[...] = solve(handle, prescribed, loads, None)
        return result
    stayed_finite = _call(handle, prescribed.shape, values_at, None if loads is None else loads_at, result_at)
    if not (stayed_finite and handle.is_finite):
        _require_finite(result)
        # A solve reads all of the factorisation: what is not finite there would show in the result.
        if stayed_finite and result.size:
            handle.is_finite = True
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
    if type(out) is not np.ndarray or out.dtype != _arrays.DOUBLE or out.shape != shape or not out.flags.carray:
        raise FieldError(
            f"out: an array of shape {shape} and type float64 is needed, C-contiguous, aligned and writeable"
        )
    return out


def _call(handle: Handle, shape: Tuple[int, ...], values: int, loads: Optional[int], result: int) -> bool:
    """Whether the calculation stayed within the finite numbers; False also where that cannot be known."""
    arguments: Tuple[Optional[int], ...]
    if len(shape) == 2:
        if shape[0] > _arrays.MOST_INT:
            raise FieldError(f"values: {shape[0]} fields are more than the library can number")
        function, arguments = library().qelmsolveManyTagged, (shape[0], values, loads, result)
    elif loads is None:
        function, arguments = library().qelmsolveTagged, (values, result)
    else:
        function, arguments = library().qelmsolvePTagged, (values, loads, result)
    status = c_int()
    stayed_finite = _float_flags.stays_finite(function, handle.pointer, *arguments, byref(status))
    require_ok(status.value)
    return stayed_finite


def _require_finite(result: npt.NDArray[np.float64]) -> None:
    if _arrays.is_finite(result):
        return
    *row, vertex = np.argwhere(~np.isfinite(result))[0]
    where = f"field {row[0]}, vertex {vertex}" if row else f"vertex {vertex}"
    raise SingularSystemError(
        f"{where}: the solution is {result[(*row, vertex)]}; triangles near it are too thin to compute with, "
        "or the numbers are too large; qelm.check names such triangles"
    )
