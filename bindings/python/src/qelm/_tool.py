"""Runs the command-line tool."""

from __future__ import annotations

import os
import subprocess
import sys
from typing import Sequence

import numpy as np
import numpy.typing as npt

from . import _loading
from .errors import FieldError, ToolError


#: The mesh's file in the tool's folder.
MESH = "mesh.ply"
# On Windows, a program without a console would open one for the tool.
_NO_WINDOW: int = getattr(subprocess, "CREATE_NO_WINDOW", 0)
# What the system lets an argument have, less on Windows the others; in characters.
_LONGEST = 30_000 if sys.platform == "win32" else 130_000


def at(levels: npt.NDArray[np.float64]) -> str:
    """The argument that names levels. Raises FieldError if they are too many for a command line."""
    argument = "--at=" + ",".join(map(repr, levels.tolist()))
    if len(argument) > _LONGEST:
        raise FieldError(f"levels: {len(levels)} are too many for the command-line tool, which cuts; ask for fewer")
    return argument


def run(arguments: Sequence[str], folder: str) -> str:
    """Runs the tool in a folder and returns what it prints. Raises ToolError with its message."""
    program = _loading.tool()
    try:
        done = subprocess.run(
            [program, *arguments], cwd=folder, capture_output=True, text=True, encoding="utf-8", check=False,
            creationflags=_NO_WINDOW,
        )  # fmt: skip
    except OSError as error:
        raise ToolError(f"qelm {arguments[0]}: {program} cannot be run: {error.strerror or error}") from error
    if done.returncode != 0:
        # Neither the command line's help nor the folder's files are the caller's.
        message, *_ = done.stderr.strip().split("\nRun 'qelm ")
        message = message.replace("qelm: error: ", "", 1).replace(f"{MESH}: ", "", 1)
        raise ToolError(f"qelm {arguments[0]}: {message or f'exit code {done.returncode}'}", done.returncode)
    return done.stdout


def write_mesh(folder: str, vertices: npt.NDArray[np.float64], triangles: npt.NDArray[np.int32]) -> None:
    """As PLY, binary, so that every coordinate keeps its bits and reading takes no time."""
    header = (
        "ply\nformat binary_little_endian 1.0\n"
        f"element vertex {len(vertices)}\nproperty double x\nproperty double y\nproperty double z\n"
        f"element face {len(triangles)}\nproperty list uchar int vertex_indices\nend_header\n"
    )
    faces = np.empty(len(triangles), np.dtype([("count", "u1"), ("corners", "<i4", 3)]))
    faces["count"] = 3
    faces["corners"] = triangles
    with open(os.path.join(folder, MESH), "wb") as file:
        file.write(header.encode("ascii"))
        file.write(vertices.astype("<f8").tobytes())
        file.write(faces.tobytes())
