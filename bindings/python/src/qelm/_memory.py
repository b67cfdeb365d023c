"""What the machine has free."""

from __future__ import annotations

import ctypes
import sys
from typing import Optional


class _MemoryStatus(ctypes.Structure):
    """MEMORYSTATUSEX of Windows."""

    ullAvailPhys: int
    _fields_ = [
        ("dwLength", ctypes.c_uint32),
        ("dwMemoryLoad", ctypes.c_uint32),
        *((name, ctypes.c_uint64) for name in (
            "ullTotalPhys", "ullAvailPhys", "ullTotalPageFile", "ullAvailPageFile",
            "ullTotalVirtual", "ullAvailVirtual", "ullAvailExtendedVirtual",
        )),
    ]  # fmt: skip


def free_bytes() -> Optional[int]:
    """Main memory that a program could take without others being swapped out; None if nobody says."""
    if sys.platform == "win32":
        status = _MemoryStatus(dwLength=ctypes.sizeof(_MemoryStatus))
        return status.ullAvailPhys if ctypes.windll.kernel32.GlobalMemoryStatusEx(ctypes.byref(status)) else None
    try:
        with open("/proc/meminfo", encoding="ascii") as lines:
            found = [int(line.split()[1]) for line in lines if line.startswith("MemAvailable:")]
    except OSError:
        return None
    return 1024 * found[0] if found else None
