"""What the machine has free."""

from __future__ import annotations

import ctypes
import pathlib
import sys
from typing import List, Optional


# Linux's control groups, as a container sees its own, in their second version and in their first.
_GROUP = pathlib.Path("/sys/fs/cgroup")
_GROUP_FILES = [
    ("memory.max", "memory.current", "memory.stat", "inactive_file"),
    ("memory/memory.limit_in_bytes", "memory/memory.usage_in_bytes", "memory/memory.stat", "total_inactive_file"),
]


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
    left = _left_to_group()
    return min([1024 * found[0], *left]) if found else None


def _left_to_group() -> List[int]:
    """What a limit on a group of processes leaves them, as containers have one; nothing without a limit."""
    for limit, used, statistics, cache in _GROUP_FILES:
        try:
            most, taken = (int((_GROUP / name).read_text(encoding="ascii")) for name in (limit, used))
            lines = (_GROUP / statistics).read_text(encoding="ascii").splitlines()
        except (OSError, ValueError):  # There are no such files; "max" stands for no limit.
            continue
        # Files that are kept in memory make room when it is wanted.
        kept = sum(int(line.split()[1]) for line in lines if line.split()[0] == cache)
        return [max(0, most - taken + kept)]
    return []
