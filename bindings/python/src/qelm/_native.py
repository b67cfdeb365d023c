"""The functions of the C header with their types, in the library that is loaded.

Arrays go over as addresses (see ``_arrays.address``); whoever calls has checked them.
Calls release the interpreter's lock while they run.
"""

from __future__ import annotations

import ctypes
import functools
from ctypes import POINTER, c_char_p, c_double, c_float, c_int, c_int64, c_void_p

from . import _loading
from ._records import IsoEdgeMatrix, IsoPointMatrix, QelmCurves, QelmMeshReport, QelmPrediction, QelmRobustReport
from .errors import LibraryError, QelmError

_INT = POINTER(c_int)
_POINTER = POINTER(c_void_p)
_ARRAY = c_void_p
_HANDLE = c_void_p

#: name: (result, parameters)
FUNCTIONS = {
    "qelmctorTagged": (c_int, [c_int, _ARRAY, c_int, _ARRAY, _ARRAY, _INT, _INT, _POINTER]),
    "qelmctorRobustTagged": (c_int, [c_int, _ARRAY, c_int, _ARRAY, _ARRAY, _INT, _INT, _POINTER]),
    "qelmctorLimitedTagged": (
        c_int,
        [c_int, _ARRAY, c_int, _ARRAY, _ARRAY, c_int, c_int64, POINTER(QelmPrediction), _INT, _INT, _POINTER],
    ),
    "qelmpredictTagged": (c_int, [c_int, _ARRAY, c_int, _ARRAY, _ARRAY, c_int, POINTER(QelmPrediction)]),
    "qelmcheckRobustTagged": (c_int, [c_int, _ARRAY, c_int, _ARRAY, _ARRAY, POINTER(QelmRobustReport)]),
    "dupl": (None, [_HANDLE, _POINTER]),
    "qelmfree": (None, [_HANDLE]),
    "qelminfo": (c_int, [_HANDLE]),
    "qelverts": (c_int, [_HANDLE, _POINTER]),
    "qeltris": (c_int, [_HANDLE, _POINTER]),
    "usecount": (c_int, [_HANDLE]),
    "qelmsolveTagged": (None, [_HANDLE, _ARRAY, _ARRAY, _INT]),
    "qelmsolvePTagged": (None, [_HANDLE, _ARRAY, _ARRAY, _ARRAY, _INT]),
    "qelmWeld": (c_int, [c_int, _ARRAY, c_int, _ARRAY, c_double, _ARRAY, _ARRAY, _ARRAY, _INT, _INT]),
    "qelisoline": (
        None,
        [_HANDLE, _ARRAY, c_int, _ARRAY, POINTER(POINTER(IsoPointMatrix)), POINTER(POINTER(IsoEdgeMatrix))],
    ),
    "qelfreeisoline": (None, [POINTER(IsoPointMatrix), POINTER(IsoEdgeMatrix)]),
    "wobj": (None, [_HANDLE, _ARRAY, c_char_p]),
    "encode_integer_to_sphere": (c_int, [c_int, POINTER(c_float), POINTER(c_float), POINTER(c_float)]),
    "decode_integer_from_sphere": (c_int, [c_float, c_float, c_float]),
    "qelmcheckTagged": (c_int, [c_int, _ARRAY, c_int, _ARRAY, _ARRAY, POINTER(QelmMeshReport)]),
    "qelmsolveManyTagged": (None, [_HANDLE, c_int, _ARRAY, _ARRAY, _ARRAY, _INT]),
    "qelmsolveCheckedTagged": (None, [_HANDLE, c_int, _ARRAY, _ARRAY, _ARRAY, POINTER(c_int64), _INT]),
    "qelmcurvesTagged": (None, [_HANDLE, _ARRAY, c_int, _ARRAY, POINTER(POINTER(QelmCurves)), _INT]),
    "qelmfreecurves": (None, [POINTER(QelmCurves)]),
    "qelmversion": (c_char_p, []),
    "qelmstatustext": (c_char_p, [c_int]),
}


@functools.lru_cache(maxsize=None)
def library() -> ctypes.CDLL:
    """The native library, loaded at the first call."""
    path, loaded = _loading.load()
    missing = [name for name in FUNCTIONS if not hasattr(loaded, name)]
    if missing:
        raise LibraryError(
            f"{path} has no {missing[0]}: it is another version of the library, or another library; "
            "install the wheel again, or correct QELM_LIBRARY"
        )
    for name, (result, parameters) in FUNCTIONS.items():
        function = getattr(loaded, name)
        function.restype = result
        function.argtypes = parameters
    return loaded


def library_version() -> str:
    """Version of the native library that is loaded.

    Returns
    -------
    str
        "MAJOR.MINOR.PATCH".

    Raises
    ------
    LibraryError
        There is no library that can be loaded.

    Examples
    --------
    >>> import qelm
    >>> qelm.library_version().count(".")
    2
    """
    version: bytes = library().qelmversion()
    return version.decode("ascii")


def require_ok(status: int) -> None:
    """Raises for a status that the checks before the call should have made impossible."""
    if status != 0:
        text = library().qelmstatustext(status).decode("ascii")
        raise QelmError(f"the native library refused: {text} (status {status})", status)
