"""The two files of a heat map, which the native export writes without a word about failures."""

from __future__ import annotations

import os
import pathlib
import sys
from typing import Union

_MATERIAL_END = b"map_Kd viridis.PNG"


def base_name(path: Union[str, os.PathLike[str]]) -> str:
    """The path without .obj. Raises TypeError, and ValueError if it names no file."""
    text = os.fspath(path)
    if not isinstance(text, str):
        raise TypeError(f"path: {text!r} is not text; os.fsdecode makes text of bytes")
    base = text[:-4] if text.lower().endswith(".obj") else text
    if os.path.basename(base) in ("", ".", "..") or "\0" in base:
        raise ValueError(f"path: {text!r} names no file; the name of the OBJ file is needed")
    return base


def narrow(text: str) -> bytes:
    """The path as the library's narrow file functions take it. Raises ValueError."""
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
