"""Takes what callers have in their hands and makes the C library's arrays of it.

Whatever comes in, what goes on is C-contiguous, aligned and of the native type; an array
that is so already is not copied. A message names the argument and the first element that
is wrong.
"""

from __future__ import annotations

import contextlib
import ctypes
import numbers
from math import isfinite
from typing import Any, Callable, Optional, Tuple

import numpy as np
import numpy.typing as npt

from .errors import FieldError, MeshError

Doubles = npt.NDArray[np.float64]
Ints = npt.NDArray[np.int32]

DOUBLE = np.dtype(np.float64)
#: The range of a C int.
LEAST_INT, MOST_INT = -(2**31), 2**31 - 1
#: Takes C-contiguous arrays that are not read-only; any others raise TypeError.
from_buffer: Callable[[Any], Any] = (ctypes.c_char * 0).from_buffer


def addresses(*arrays: npt.NDArray[Any]) -> Tuple[int, ...]:
    """Where the first elements of C-contiguous arrays lie; the caller keeps the arrays alive."""
    try:
        return tuple(map(ctypes.addressof, map(from_buffer, arrays)))
    except TypeError:  # One is read-only. This way takes longer: it makes dictionaries.
        return tuple(array.__array_interface__["data"][0] for array in arrays)


def address(array: npt.NDArray[Any]) -> int:
    """As addresses(), of one array."""
    return addresses(array)[0]


def first(wrong: npt.NDArray[Any]) -> int:
    """Index of the first element that is wrong, in the first axis; -1 without any."""
    if wrong.ndim > 1:
        wrong = wrong.any(axis=tuple(range(1, wrong.ndim)))
    place = int(wrong.argmax()) if wrong.size else 0
    return place if wrong.size and wrong[place] else -1


def is_finite(array: Doubles) -> bool:
    """Whether all numbers are finite."""
    # NaN counts as the largest number, and as the smallest.
    return not array.size or isfinite(array.item(array.argmax())) and isfinite(array.item(array.argmin()))


def real(argument: object, name: str) -> npt.NDArray[Any]:
    """An array of some real type. Raises TypeError for other things, ValueError for ragged lists."""
    try:
        array = np.asanyarray(argument)
    except ValueError as error:
        raise ValueError(f"{name}: the rows have different lengths, or nest unevenly") from error
    if array.dtype.kind == "O":
        return _of_objects(array, name)
    if array.dtype.kind not in "biuf":
        raise TypeError(f"{name}: elements of type {array.dtype} are no real numbers; convert them first")
    return array


def _of_objects(array: npt.NDArray[Any], name: str) -> npt.NDArray[Any]:
    if array.ndim == 0 and not isinstance(array.item(), numbers.Real):
        what = "None" if array.item() is None else f"a {type(array.item()).__name__}"
        raise TypeError(f"{name}: {what} is no array; pass a list or a numpy array")
    for place, element in enumerate(np.asarray(array).ravel()):
        if not isinstance(element, numbers.Real):
            raise TypeError(
                f"{name}: element {place} is {element!r}, no real number"
                + ("; all rows need the same length" if isinstance(element, (list, tuple, np.ndarray)) else "")
            )
    is_whole = all(isinstance(element, numbers.Integral) for element in np.asarray(array).ravel())
    if is_whole and array.size:
        # Beyond 64 bits: as floating point such numbers are out of every index range.
        with contextlib.suppress(OverflowError):
            return array.astype(np.int64)
    try:
        return array.astype(np.float64)
    except OverflowError as error:
        raise ValueError(f"{name}: a number is too large for 64 bits of floating point") from error


def doubles(argument: object, name: str) -> Doubles:
    """float64, C-contiguous, aligned; masked elements are the caller's business."""
    # carray: C-contiguous, aligned and writeable. What is read-only, or has a float64 of its own, takes the longer
    # way, which copies it no more than this one.
    if type(argument) is np.ndarray and argument.dtype is DOUBLE and argument.flags.carray:
        return argument
    with np.errstate(over="ignore"):
        return np.require(np.asarray(real(argument, name)), np.float64, ["C", "A"])


def refuse_masked(argument: object, name: str, element: str, cure: str) -> None:
    """Raises MeshError for the first masked element."""
    if isinstance(argument, np.ma.MaskedArray):
        place = first(np.ma.getmaskarray(argument))  # type: ignore[no-untyped-call]
        if place >= 0:
            raise MeshError(f"{name}: {element} {place} is masked; {cure}")


def rows_of(array: npt.NDArray[Any], widths: tuple[int, ...], name: str, what: str) -> npt.NDArray[Any]:
    """(k, width), from that shape or from a flat array of packed rows of the first width."""
    if array.ndim == 1 and array.size % widths[0] == 0:
        return array.reshape(-1, widths[0])
    if array.ndim == 2 and array.shape[1] in widths:
        return array
    expected = " or ".join(f"({what}, {width})" for width in widths)
    message = f"{name}: the shape is {array.shape}, must be {expected}"
    if name == "triangles":
        message += "; split quadrilaterals, and of VTK's faces take faces.reshape(-1, 4)[:, 1:]"
    raise MeshError(message)


def require_count(count: int, name: str, element: str) -> None:
    """Raises MeshError unless a C int can say how many there are, and there is one."""
    if count < 1:
        raise MeshError(f"{name}: there is no {element}")
    if count > MOST_INT:
        raise MeshError(f"{name}: there are {count}, more than the library can number; divide the mesh")


def coordinates(argument: object, name: str = "vertices") -> Doubles:
    """(n, 3) of any values, from (n, 3), (n, 2) in the plane z = 0, or packed (3n,)."""
    refuse_masked(argument, name, "vertex", "give it coordinates, or leave it out")
    array = rows_of(doubles(argument, name), (3, 2), name, "n")
    if array.shape[1] == 3:
        return np.require(np.asarray(array), np.float64, ["C", "A"])
    spatial = np.zeros((len(array), 3))
    spatial[:, :2] = array
    return spatial


def require_finite_vertices(vertices: Doubles, name: str = "vertices") -> None:
    """Raises MeshError for the first vertex that is not finite."""
    finite = np.isfinite(vertices)
    if not finite.all():
        place = first(~finite)
        axis = int(finite[place].argmin())
        raise MeshError(
            f"{name}: vertex {place}: {'xyz'[axis]} is {vertices[place, axis]}; coordinates must be finite"
        )


def whole(argument: object, name: str, element: str) -> npt.NDArray[Any]:
    """An array of integers of any width, from integers or floating-point numbers without fraction."""
    array = np.asarray(real(argument, name))
    if array.dtype.kind == "b":
        raise TypeError(f"{name}: these are truth values; integers are needed")
    if array.dtype.kind == "f":
        array = array.astype(np.float64, copy=False)  # Half precision has no 2^31 to compare with.
        with np.errstate(invalid="ignore"):
            place = first(~(np.floor(array) == array))
        if place >= 0:
            raise MeshError(f"{name}: {element} {place} ({_listed(array[place])}): integers are needed")
    return array


def _listed(row: Any) -> str:
    return ", ".join(f"{number:.9g}" if isinstance(number, np.floating) else str(number) for number in np.ravel(row))


def triangle_text(triangles: npt.NDArray[Any], place: int) -> str:
    """'triangle 4711 (12, 90, 91)'."""
    return f"triangle {place} ({_listed(triangles[place])})"


def corners(argument: object, name: str = "triangles") -> npt.NDArray[Any]:
    """(m, 3), whole numbers of any width and any values."""
    refuse_masked(argument, name, "triangle", "leave it out")
    array = rows_of(whole(argument, name, "triangle"), (3,), name, "m")
    require_count(len(array), name, "triangle")
    return array


def triangle_indices(argument: object, vertex_count: int, name: str = "triangles") -> Ints:
    """(m, 3) int32, every index in 0 .. vertex_count - 1."""
    array = corners(argument, name)
    if array.min() < 0 or array.max() >= vertex_count:
        place = first((array < 0) | (array >= vertex_count))
        row = array[place]
        wrong = row[(row < 0) | (row >= vertex_count)][0]
        raise MeshError(
            f"{triangle_text(array, place)}: vertex {_listed(wrong)} is not in 0 .. {vertex_count - 1}; "
            "vertices are numbered from 0"
        )
    return np.require(array, np.int32, ["C", "A"])


def any_indices(argument: object, name: str = "triangles") -> Ints:
    """(m, 3) int32; what int32 cannot express becomes -1, which is no vertex either."""
    array = corners(argument, name)
    if array.min() < LEAST_INT or array.max() > MOST_INT:
        wrong = (array < 0) | (array > MOST_INT)
        array = np.where(wrong, array.dtype.type(0), array).astype(np.int32)
        array[wrong] = -1
    return np.require(array, np.int32, ["C", "A"])


def tags(argument: object, vertex_count: int, name: str = "tags") -> Ints:
    """(n,) int32."""
    refuse_masked(argument, name, "vertex", "give it a tag; 0 means free")
    array = np.asarray(real(argument, name))
    if array.dtype.kind == "b":
        array = array.astype(np.int32)
    array = whole(array, name, "vertex")
    if array.shape != (vertex_count,):
        raise MeshError(
            f"{name}: the shape is {array.shape}, must be ({vertex_count},): one tag per vertex; "
            "MeshSystem.from_fixed takes numbers of vertices"
        )
    place = first((array < LEAST_INT) | (array > MOST_INT))
    if place >= 0:
        raise MeshError(f"{name}: vertex {place}: the tag {_listed(array[place])} does not fit in 32 bits")
    return np.require(array, np.int32, ["C", "A"])


def fixed_vertices(argument: object, vertex_count: int, name: str = "fixed") -> npt.NDArray[np.intp]:
    """(t,) numbers of prescribed vertices, each once, in the order given; from numbers or from a mask."""
    refuse_masked(argument, name, "element", "leave it out")
    array = np.asarray(real(argument, name))
    if array.dtype.kind == "b":
        if array.shape != (vertex_count,):
            raise MeshError(f"{name}: the mask's shape is {array.shape}, must be ({vertex_count},)")
        return np.flatnonzero(array)
    array = np.atleast_1d(whole(array, name, "element"))
    if array.ndim != 1:
        raise MeshError(f"{name}: the shape is {array.shape}; a list of vertices or a mask is needed")
    place = first((array < 0) | (array >= vertex_count))
    if place >= 0:
        raise MeshError(f"{name}: element {place}: vertex {_listed(array[place])} is not in 0 .. {vertex_count - 1}")
    if 2 < vertex_count == len(array) and array.max() <= 1:
        raise MeshError(f"{name}: this looks like a mask of 0 and 1; pass it as bool")
    chosen = array.astype(np.intp)
    return chosen[np.sort(np.unique(chosen, return_index=True)[1])]


def per_vertex(argument: object, vertex_count: int, name: str) -> Doubles:
    """(n,) or (k, n) float64 of any values; masked elements are the caller's business. Raises FieldError."""
    array = doubles(argument, name)
    if array.ndim not in (1, 2) or array.shape[-1] != vertex_count:
        raise FieldError(
            f"{name}: the shape is {array.shape}, must be ({vertex_count},) or (k, {vertex_count}): one per vertex"
        )
    return array


def unmasked(
    argument: object,
    array: Doubles,
    name: str,
    read: Optional[npt.NDArray[Any]] = None,
    numbers: Optional[npt.NDArray[Any]] = None,
) -> Doubles:
    """The array of a masked argument, with 0 where it is masked; of any other, the array.

    Raises FieldError for an element that is masked in the places `read`, or anywhere; `numbers` are the
    vertices' where the places are others.
    """
    if array is argument or not isinstance(argument, np.ma.MaskedArray):
        return array
    mask = np.ma.getmaskarray(argument)  # type: ignore[no-untyped-call]
    _require_none(mask, array, name, "is masked; give it a value", read, numbers)
    return np.where(mask, 0.0, np.asarray(array))


def require_finite_numbers(array: Doubles, name: str) -> None:
    """Raises FieldError for the first number that is not finite."""
    if not is_finite(array):
        _require_none(~np.isfinite(array), array, name, "is not finite", None, None)


def _require_none(
    wrong: npt.NDArray[np.bool_],
    array: Doubles,
    name: str,
    words: str,
    read: Optional[npt.NDArray[Any]],
    numbers: Optional[npt.NDArray[Any]],
) -> None:
    if read is not None:
        is_read = np.zeros(wrong.shape[-1], bool)
        is_read[read] = True
        wrong = wrong & is_read
    if not wrong.any():
        return
    *row, place = np.argwhere(wrong)[0]
    vertex = place if numbers is None else numbers[place]
    where = f"field {row[0]}, vertex {vertex}" if row else f"vertex {vertex}"
    raise FieldError(f"{name}: {where}: {array[(*row, place)]} {words}")


def levels(argument: object, name: str = "levels") -> Doubles:
    """(l,) float64, finite."""
    array = doubles(argument, name)
    if array is not argument and np.ma.is_masked(argument):  # type: ignore[no-untyped-call]
        raise FieldError(f"{name}: some levels are masked; pass the array's compressed() elements")
    if array.ndim != 1:
        if array.ndim:
            raise FieldError(f"{name}: the shape is {array.shape}; a list of levels is needed")
        array = array.reshape(1)
    if not all(map(isfinite, array.tolist())):
        place = first(~np.isfinite(array))
        raise FieldError(f"{name}: level {place} is {array[place]}; levels must be finite")
    if len(array) > MOST_INT:
        raise FieldError(f"{name}: {len(array)} levels are more than the library can number")
    return array
