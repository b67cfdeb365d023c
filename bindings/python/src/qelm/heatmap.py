"""Heat maps as OBJ and MTL."""

from __future__ import annotations

import os
import pathlib
import shutil
from typing import TYPE_CHECKING, Union

import numpy as np
import numpy.typing as npt

from . import _arrays, _files
from ._lifetime import handle_of
from ._native import library
from .errors import FieldError

if TYPE_CHECKING:
    from .system import MeshSystem

__all__ = ["write_heat_map"]

_RAMP = "viridis.PNG"


def write_heat_map(
    system: MeshSystem, field: npt.ArrayLike, path: Union[str, os.PathLike[str]], *, ramp: bool = True
) -> None:
    """Writes a mesh with a field as a heat map for any viewer: OBJ, MTL and a colour ramp.

    The texture coordinate is the field scaled to 0 .. 1 and reversed: 0 at the largest value.

    Parameters
    ----------
    system : MeshSystem
        The mesh that the field lies on.
    field : array_like, shape (n,)
        One finite value per vertex, input order.
    path : str or path
        The OBJ file, or its name without ``.obj``; the MTL file goes beside it. Both are overwritten if
        they exist. The OBJ names its material by the whole path as given; many viewers fail on blanks in
        it.
    ramp : bool, default True
        Write the colour ramp ``viridis.PNG`` beside them, which the material names.

    Raises
    ------
    FieldError
        The shape is wrong, a value is not finite, or all values are equal.
    TypeError
        The system is no MeshSystem, or the path no path.
    ValueError
        The path names no file.
    OSError
        A file cannot be written, or not to its end.
    ClosedError
        The system is closed.

    Examples
    --------
    >>> import os, tempfile, qelm
    >>> system = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> with tempfile.TemporaryDirectory() as folder:
    ...     qelm.write_heat_map(system, system.solve([0, 1]), os.path.join(folder, "square"))
    ...     sorted(os.listdir(folder))
    ['square.mtl', 'square.obj', 'viridis.PNG']
    """
    handle = handle_of(system)
    array = system._any_field(field)
    _arrays.require_finite_numbers(array, "field")
    if array.min() == array.max():
        raise FieldError("field: all values are equal, so there is nothing to scale to colours")
    base = _files.base_name(path)
    name = _files.narrow(base)
    mesh, material = pathlib.Path(base + ".obj"), pathlib.Path(base + ".mtl")
    _files.clear(mesh, material)
    ordered = np.ascontiguousarray(array[system.order])
    library().wobj(handle.pointer, _arrays.address(ordered), name)
    last = "f " + " ".join(f"{s + 1}/{s + 1}" for s in system.system_triangles[-1].tolist())
    _files.require_complete(mesh, material, last.encode("ascii"))
    if ramp:
        shutil.copyfile(pathlib.Path(__file__).parent / "data" / _RAMP, mesh.parent / _RAMP)
