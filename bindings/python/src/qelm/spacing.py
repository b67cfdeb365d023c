"""Level curves evenly apart, or with fewer points: what the command-line tool has, from Python."""

from __future__ import annotations

import json
import os
import pathlib
import tempfile
from typing import TYPE_CHECKING, Any, Dict, List, Union

import numpy as np
import numpy.typing as npt

from . import _arrays, _tool
from ._lifetime import handle_of
from ._numbers import one_number
from .curves import Curves, chosen_levels
from .errors import FieldError

if TYPE_CHECKING:
    from .system import MeshSystem

__all__ = ["simplified_curves", "spaced_levels"]


def spaced_levels(system: MeshSystem, field: npt.ArrayLike, spacing: float) -> npt.NDArray[np.float64]:
    """Levels whose curves are about `spacing` apart along the surface, as ``qelm curves --spacing`` has them.

    From the smallest value upwards, the area between neighbouring curves, divided by the mean of
    their lengths, is `spacing`. The command-line tool computes them.

    Parameters
    ----------
    system : MeshSystem
        The mesh that the field lies on.
    field : array_like, shape (n,)
        One finite value per vertex.
    spacing : float
        A distance in the unit of the vertices, above 0.

    Returns
    -------
    ndarray, shape (l,)
        For :meth:`MeshSystem.curves`.

    Raises
    ------
    FieldError
        A shape is wrong, or a value is not finite, or the spacing not above 0.
    TypeError
        The system is no MeshSystem, or the spacing no number.
    ToolError
        The tool is missing or refuses, as a spacing with more than ten thousand levels; its message says why.
    ClosedError
        The system is closed.

    Examples
    --------
    >>> import qelm
    >>> square = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 1, 1, 1])
    >>> qelm.spaced_levels(square, [0, 2, 2, 0], 0.25).round(12).tolist()
    [0.5, 1.0, 1.5]
    """
    distance = _distance(spacing, "spacing")
    # The tool cuts as well, into a file that nobody reads.
    summary = _cut(system, field, ["--spacing", repr(distance), "--json"])["summary"]
    return np.array(summary["levels"], float)


def simplified_curves(
    system: MeshSystem, field: npt.ArrayLike, levels: Union[int, npt.ArrayLike], tolerance: float
) -> Curves:
    """Level curves without the points that are less than `tolerance` from what stays.

    As ``qelm curves --simplify`` has them: the points that stay keep their bits, closed curves stay
    closed, and no curve comes to cross or touch another one or itself. The command-line tool
    computes them.

    Parameters
    ----------
    system : MeshSystem
        The mesh that the field lies on.
    field : array_like, shape (n,)
        One finite value per vertex.
    levels : int or array_like, shape (l,)
        As for :meth:`MeshSystem.curves`.
    tolerance : float
        A distance in the unit of the vertices, above 0.

    Returns
    -------
    Curves

    Raises
    ------
    FieldError
        A shape is wrong, a value or level is not finite, there are more levels than a command line holds
        (some thousands; on Windows a thousand), or the tolerance is not above 0.
    TypeError
        The system is no MeshSystem, or the tolerance no number.
    ToolError
        The tool is missing or refuses; its message says why.
    ClosedError
        The system is closed.

    Examples
    --------
    >>> import qelm
    >>> square = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 1, 1, 1])
    >>> [len(curve.points) for curve in square.curves([0, 2, 2, 0], 3)]
    [3, 3, 3]
    >>> [len(curve.points) for curve in qelm.simplified_curves(square, [0, 2, 2, 0], 3, 0.01)]
    [2, 2, 2]
    """
    handle_of(system)
    distance = _distance(tolerance, "tolerance")
    chosen = chosen_levels(system._any_field(field), levels)
    if not len(chosen):
        return system.curves(field, chosen)
    return _curves_of(_cut(system, field, [_tool.at(chosen), "--simplify", repr(distance), "-q"])["curves"], chosen)


def _distance(value: float, name: str) -> float:
    distance = one_number(value, name)
    if not (np.isfinite(distance) and distance > 0):
        raise FieldError(f"{name}: {value} is no distance; give a finite number above 0")
    return distance


def _cut(system: MeshSystem, field: npt.ArrayLike, arguments: List[str]) -> Dict[str, Any]:
    """What ``qelm curves`` prints and writes."""
    handle_of(system)
    array = system._any_field(field)
    _arrays.require_finite_numbers(array, "field")
    with tempfile.TemporaryDirectory(prefix="qelm-") as folder:
        _tool.write_mesh(folder, system.vertices, system.triangles)
        np.save(os.path.join(folder, "field.npy"), array)
        words = ["curves", _tool.MESH, "--field", "field.npy", "-o", "curves.json", *arguments]
        printed = _tool.run(words, folder)
        written = pathlib.Path(folder, "curves.json").read_text(encoding="utf-8")
    return {"summary": json.loads(printed or "{}"), "curves": json.loads(written)["curves"]}


def _curves_of(found: List[Dict[str, Any]], levels: npt.NDArray[np.float64]) -> Curves:
    """Packed. The tool writes digits that read back as the same doubles."""
    values = [curve["value"] for curve in found]
    return Curves(
        points=np.array([point for curve in found for point in curve["points"]], float).reshape(-1, 3),
        starts=np.cumsum([0, *(len(curve["points"]) for curve in found)], dtype=np.int64),
        levels=np.array(values, float),
        level_indices=np.array([np.flatnonzero(levels == value)[0] for value in values], np.int32),
        closed=np.array([curve["closed"] for curve in found], bool),
    )
