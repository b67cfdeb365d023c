"""Building: the library's constructors, and their refusals in words."""

from __future__ import annotations

from ctypes import byref, c_int, c_void_p

import numpy as np
import numpy.typing as npt

from . import _arrays, meshcheck
from ._handle import Handle
from ._native import library, require_ok
from .errors import MeshError

_REPEATED_VERTEX, _UNUSED_VERTEX = 23, 24
_HARMLESS_TO_ROBUST = (103, 104)  # areas near zero, sizes out of range


def construct(
    xyz: npt.NDArray[np.float64], corners: npt.NDArray[np.int32], tags: npt.NDArray[np.int32], robust: bool = False
) -> Handle:
    """The handle of checked arrays. Raises MeshError for a triangle or vertex that the library refuses."""
    status, pointer = c_int(), c_void_p()
    address = _arrays.address
    constructor = library().qelmctorRobustTagged if robust else library().qelmctorTagged
    constructor(
        len(xyz), address(xyz), len(corners), address(corners), address(tags), None, byref(status), byref(pointer)
    )
    if status.value in (_REPEATED_VERTEX, _UNUSED_VERTEX):
        refuse_defects(xyz, corners, tags, robust)
    require_ok(status.value)
    return Handle(pointer)


def refuse_defects(
    xyz: npt.NDArray[np.float64], corners: npt.NDArray[np.int32], tags: npt.NDArray[np.int32], robust: bool
) -> None:
    """Raises MeshError for the first defect that keeps the construction from a good system."""
    report = meshcheck.report_on(xyz, corners, tags)
    defect = report.first_defect(but=_HARMLESS_TO_ROBUST if robust else ())
    if defect is not None:
        raise MeshError(defect[1], defect[0])
