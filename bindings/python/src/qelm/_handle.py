"""Handles of the native library, each released with the last Python object that needs it.

A call holds a reference to the handle it works on, and so does every view of the handle's memory.
So a system that is closed while other threads call it is freed when the last call returns, and
views outlive the system they came from. At the interpreter's exit, the operating system frees what
threads still use.
"""

from __future__ import annotations

from ctypes import byref, c_void_p
from typing import Any, Optional

import numpy as np
import numpy.typing as npt

from ._native import library


class Handle:
    """Owns a MeshSystem of the C interface."""

    __slots__ = ("__weakref__", "native", "pointer")

    def __init__(self, pointer: c_void_p) -> None:
        self.pointer = pointer
        # At the interpreter's exit this module's names may be gone before the handle.
        self.native = library()

    def __del__(self) -> None:
        self.native.qelmfree(self.pointer)

    def info(self) -> int:
        """How the factorisation ended, a number of FactorisationInfo."""
        number: int = self.native.qelminfo(self.pointer)
        return number

    def duplicate(self) -> Handle:
        """Another owner of the same mesh and factorisation."""
        copy = c_void_p()
        self.native.dupl(self.pointer, byref(copy))
        return Handle(copy)


class Lent:
    """The library's memory as numpy wants it described. The owner lives as long as any array made from this."""

    __slots__ = ("__array_interface__", "owner")

    def __init__(self, owner: object, address: int, shape: tuple[int, ...], dtype: np.dtype[Any]) -> None:
        self.owner = owner
        self.__array_interface__ = {
            "data": (address, True),
            "shape": shape,
            "typestr": dtype.str,
            "version": 3,
        }


def lent(owner: object, address: Optional[int], shape: tuple[int, ...], dtype: npt.DTypeLike) -> npt.NDArray[Any]:
    """A read-only array in the library's memory that keeps the owner alive."""
    if address is None or 0 in shape:
        return np.empty(shape, dtype)
    return np.asarray(Lent(owner, address, shape, np.dtype(dtype)))
