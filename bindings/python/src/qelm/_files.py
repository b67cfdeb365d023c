"""The two files of a heat map, which the native export writes without a word about failures."""

from __future__ import annotations

import os
import pathlib
import sys
from typing import Union

_MATERIAL_END = b"map_Kd viridis.PNG"


def narrow(path: Union[str, os.PathLike[str]]) -> bytes:
    """The path as the library's narrow file functions take it. Raises ValueError."""
    text = os.fspath(path)
    if not text or "\0" in text:
        raise ValueError(f"path: {text!r} names no file")
    if sys.platform != "win32":
        return os.fsencode(text)
    try:
        return text.encode("mbcs", "strict")
    except UnicodeEncodeError as error:
        raise ValueError(f"path: {text!r} cannot be expressed in the system's code page; use another") from error


def clear(mesh: pathlib.Path, material: pathlib.Path) -> None:
    """Makes both files, empty. Touches neither unless both can be written. Raises OSError."""
    was_there = mesh.exists()
    open(mesh, "ab").close()
    try:
        open(material, "ab").close()
    except OSError:
        if not was_there:
            mesh.unlink()
        raise
    for path in (mesh, material):
        open(path, "wb").close()


def require_complete(mesh: pathlib.Path, material: pathlib.Path, last_face: bytes) -> None:
    """Looks for the last line of each file, which a full disk would have cut off. Raises OSError."""
    for path, line in ((mesh, last_face), (material, _MATERIAL_END)):
        with open(path, "rb") as file:
            file.seek(0, os.SEEK_END)
            file.seek(max(0, file.tell() - len(line) - 3))
            if not file.read(len(line) + 3).rstrip(b"\r\n").endswith(b"\n" + line):
                raise OSError(f"the file was not written completely: {path}")
