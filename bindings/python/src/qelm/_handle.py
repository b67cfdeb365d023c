"""What belongs to the native library, owned: released with the last Python object that needs it.

A call holds a reference to the handle it works on, and so does every view of its memory.
So closing a system while other threads are inside frees it when the last of them is out,
and views outlive the system they came from. At the interpreter's exit, what threads still
use is left to the operating system.
"""

from __future__ import annotations

from ctypes import byref, c_void_p, cast
from typing import Any

import numpy as np
import numpy.typing as npt

from ._native import library


class Handle:
    """Owns a MeshSystem of the C interface."""

    __slots__ = ("__weakref__", "_free", "pointer")

    def __init__(self, pointer: c_void_p) -> None:
        self.pointer = pointer
        # At the interpreter's exit this module's names may be gone before the handle.
        self._free = library().qelmfree

    def __del__(self) -> None:
        self._free(self.pointer)

    def duplicate(self) -> Handle:
        """Another owner of the same mesh and factorisation."""
        copy = c_void_p()
        library().dupl(self.pointer, byref(copy))
        return Handle(copy)


class Lent:
    """Memory of the library's, as numpy looks at it. The owner stays as long as an array is there."""

    __slots__ = ("__array_interface__", "owner")

    def __init__(self, owner: object, place: int, shape: tuple[int, ...], dtype: np.dtype[Any]) -> None:
        self.owner = owner
        self.__array_interface__ = {
            "data": (place, True),
            "shape": shape,
            "typestr": dtype.str,
            "version": 3,
        }


def lent(owner: object, place: Any, shape: tuple[int, ...], dtype: npt.DTypeLike) -> npt.NDArray[Any]:
    """A read-only array in the library's memory that keeps the owner alive."""
    if not place or 0 in shape:
        return np.empty(shape, dtype)
    where = cast(place, c_void_p).value
    assert where is not None
    return np.asarray(Lent(owner, where, shape, np.dtype(dtype)))
