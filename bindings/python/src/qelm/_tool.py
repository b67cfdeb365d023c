"""Runs the command-line tool."""

from __future__ import annotations

import subprocess
from typing import Sequence

import numpy as np
import numpy.typing as npt

from . import _loading
from .errors import ToolError


def run(arguments: Sequence[str], folder: str) -> str:
    """Runs the tool in a folder and returns what it prints. Raises ToolError with its message."""
    done = subprocess.run(
        [_loading.tool(), *arguments], cwd=folder, capture_output=True, text=True, encoding="utf-8", check=False
    )
    if done.returncode != 0:
        message = done.stderr.strip().replace("qelm: error: ", "", 1)
        raise ToolError(f"qelm {arguments[0]}: {message or f'exit code {done.returncode}'}", done.returncode)
    return done.stdout


def write_ply(path: str, vertices: npt.NDArray[np.float64], triangles: npt.NDArray[np.int32]) -> None:
    """Binary, so that every coordinate keeps its bits and reading takes no time."""
    header = (
        "ply\nformat binary_little_endian 1.0\n"
        f"element vertex {len(vertices)}\nproperty double x\nproperty double y\nproperty double z\n"
        f"element face {len(triangles)}\nproperty list uchar int vertex_indices\nend_header\n"
    )
    faces = np.empty(len(triangles), np.dtype([("count", "u1"), ("corners", "<i4", 3)]))
    faces["count"] = 3
    faces["corners"] = triangles
    with open(path, "wb") as file:
        file.write(header.encode("ascii"))
        file.write(vertices.astype("<f8").tobytes())
        file.write(faces.tobytes())
