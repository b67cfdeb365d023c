"""Runs the command-line tool."""

from __future__ import annotations

import subprocess
from typing import Sequence

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
