"""Building: the library's constructors, and their refusals in words."""

from __future__ import annotations

import enum
from ctypes import byref, c_int, c_void_p

from . import _memory, meshcheck
from ._handle import Handle
from ._mesh import MeshArrays
from ._native import library, require_ok
from ._records import QelmPrediction
from .errors import MeshError, SingularSystemError, TooLargeError

DEFECTS = (23, 24)  # a repeated vertex, an unused one
_TOO_LARGE = 107
_NO_LIMIT, _MOST_ENTRIES = 2**63 - 1, 2**31 - 1
_WORTH_ASKING = 2000  # vertices; a factor of fewer takes 24 MB at most
_HARMLESS_TO_ROBUST = (103, 104)  # areas near zero, sizes out of range


class FactorisationInfo(enum.IntEnum):
    """How a factorisation ended."""

    SUCCESS = 0
    NUMERICAL_ISSUE = 1
    NO_CONVERGENCE = 2
    INVALID_INPUT = 3


def require_factorised(info: int) -> None:
    """Raises SingularSystemError unless the factorisation succeeded."""
    if info != FactorisationInfo.SUCCESS:
        raise SingularSystemError(
            f"the factorisation ended with {FactorisationInfo(info).name}: some free vertices are not tied to a "
            "fixed one, or triangles are too thin to compute with; qelm.check says more"
        )


def construct(mesh: MeshArrays, robust: bool = False) -> Handle:
    """The handle of checked arrays. Raises MeshError for a triangle or vertex that the library refuses."""
    status, pointer = c_int(), c_void_p()
    free = _limit(len(mesh.vertices))
    prediction = QelmPrediction()
    library().qelmctorLimitedTagged(
        *mesh.arguments(), bool(robust), free, byref(prediction), None, byref(status), byref(pointer)
    )
    if status.value in DEFECTS:
        refuse_defects(mesh, robust)
    if status.value == _TOO_LARGE:
        raise TooLargeError(_too_large(prediction, free), _TOO_LARGE)
    require_ok(status.value)
    return Handle(pointer)


def _limit(vertex_count: int) -> int:
    """The bytes that may be taken."""
    # Asking the system takes some ten microseconds, more than a small mesh itself.
    free = _memory.free_bytes() if vertex_count >= _WORTH_ASKING else None
    return _NO_LIMIT if free is None else free


def _too_large(prediction: QelmPrediction, free: int) -> str:
    entries = prediction.factorEntries
    if entries > _MOST_ENTRIES:
        what = f"its factor would need {entries} entries, more than the library can index ({_MOST_ENTRIES})"
    else:
        what = (
            f"it would take {prediction.peakBytes / 1e9:.3g} GB of memory, and {free / 1e9:.3g} GB are free; "
            f"its factor has {entries} entries"
        )
    return (
        f"the system is too large: {what}. A surface takes one or two kilobytes a vertex; more means that "
        "triangles join vertices that lie far apart. Fix more vertices, or divide the mesh"
    )


def refuse_defects(mesh: MeshArrays, robust: bool) -> None:
    """Raises MeshError for the first defect that keeps the construction from a good system."""
    report = meshcheck.report_on(mesh)
    defect = report.first_defect(but=_HARMLESS_TO_ROBUST if robust else ())
    if defect is not None:
        raise MeshError(defect[1], defect[0])
