"""Finds the native library and the command-line tool, and loads the former.

Looked at in this order: the environment variable (QELM_LIBRARY, QELM_TOOL), what the
wheel carries, what the system finds by name.
"""

from __future__ import annotations

import ctypes
import ctypes.util
import os
import pathlib
import shutil
import sys
from typing import Optional, Tuple

from .errors import LibraryError, ToolError

_IS_WINDOWS = sys.platform == "win32"

#: An installation prefix of the native parts; wheels have one.
PREFIX = pathlib.Path(__file__).resolve().parent / "native"
_CARRIED_LIBRARY = PREFIX / ("bin/qelm.dll" if _IS_WINDOWS else "lib/libqelm.so.1")
_CARRIED_TOOL = PREFIX / ("bin/qelm.exe" if _IS_WINDOWS else "bin/qelm")
_SYSTEM_NAME = "qelm.dll" if _IS_WINDOWS else "libqelm.so.1"


def load() -> Tuple[str, ctypes.CDLL]:
    """The library and what it was loaded as. Raises LibraryError."""
    name = os.environ.get("QELM_LIBRARY") or _carried(_CARRIED_LIBRARY) or _SYSTEM_NAME
    try:
        return name, ctypes.CDLL(name)
    except OSError as error:
        raise LibraryError(_explanation(name, error)) from error


def tool() -> str:
    """Path of the command-line tool, from the root, for it runs in folders of its own. Raises ToolError."""
    given = os.environ.get("QELM_TOOL")
    found = given if given else _carried(_CARRIED_TOOL) or shutil.which("qelm")
    if found is None or not os.path.isfile(found):
        raise ToolError(
            f"there is no command-line tool at {found or _CARRIED_TOOL}; install qelm's wheel, or name "
            "the program in the environment variable QELM_TOOL"
        )
    return os.path.abspath(found)


def _carried(path: pathlib.Path) -> Optional[str]:
    return str(path) if path.is_file() else None


def _explanation(name: str, error: OSError) -> str:
    lines = [f"the native library cannot be loaded: {error}"]
    if sys.maxsize < 2**32:
        lines.append("it is for 64-bit Python only, and this one has 32 bits")
    elif name == _SYSTEM_NAME:
        lines.append(
            f"it is neither at {_CARRIED_LIBRARY}, where wheels have it, nor known to the system; "
            "install qelm's wheel, or name the file in the environment variable QELM_LIBRARY"
        )
    return "; ".join(lines)
