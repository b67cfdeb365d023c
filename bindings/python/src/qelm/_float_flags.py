"""Asks the processor whether a calculation left the finite numbers.

By IEEE 754, an operation on finite numbers whose result is not finite raises one of three flags:
invalid, division by zero or overflow. Each thread has its own flags, which stay raised until it lowers
them. So a calculation that starts from finite numbers and raises none of them ends with finite numbers.
Asking takes a microsecond; looking at every number takes as long as reading them from main memory.
"""

from __future__ import annotations

import platform
import sys
from ctypes import CDLL, byref, c_int, c_ushort, c_void_p
from typing import Callable, Optional

# The processor's own numbers of its flags, which <fenv.h> has on Linux.
_INVALID, _DIVISION_BY_ZERO, _OVERFLOW, _UNDERFLOW = 1, 4, 8, 16
_ALL = _INVALID | _DIVISION_BY_ZERO | _OVERFLOW | _UNDERFLOW
# Underflow is raised beforehand, as a mark. numpy lowers all flags before it calculates: where a signal
# handler or a finaliser has called it in between, the mark is gone.
_MARK = c_ushort(_UNDERFLOW)


def _load() -> Optional[CDLL]:
    """The C library's functions for flags; None where the numbers above may be others."""
    if (sys.platform, platform.machine()) != ("linux", "x86_64"):
        return None
    try:
        maths = CDLL("libm.so.6")
    except OSError:
        return None
    maths.fesetexceptflag.argtypes = [c_void_p, c_int]
    maths.fetestexcept.argtypes = [c_int]
    return maths


_MATHS = _load()


def stays_finite(function: Callable[..., None], *arguments: object) -> bool:
    """Calls a function; whether it stayed within the finite numbers. False also where that cannot be known."""
    if _MATHS is None:
        function(*arguments)
        return False
    _MATHS.fesetexceptflag(byref(_MARK), _ALL)
    function(*arguments)
    return bool(_MATHS.fetestexcept(_ALL) == _UNDERFLOW)
