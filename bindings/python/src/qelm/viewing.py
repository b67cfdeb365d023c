"""The page of ``qelm view``: in a notebook, or as a file for any browser."""

from __future__ import annotations

import html
import os
import pathlib
import re
import tempfile
from typing import TYPE_CHECKING, Any, List, Optional, Union

import numpy as np
import numpy.typing as npt

from . import _arrays, _tool
from .errors import FieldError

if TYPE_CHECKING:
    from .system import MeshSystem

__all__ = ["Page", "view"]

_HEIGHT = 560


class Page:
    """A page that shows a field: one file that needs nothing else.

    A notebook shows it as the result of a cell; :meth:`save` writes it for a browser.

    Attributes
    ----------
    html : str
        The whole page.
    """

    def __init__(self, text: str) -> None:
        self.html = text

    def save(self, path: Union[str, os.PathLike[str]]) -> pathlib.Path:
        """Writes the page.

        Parameters
        ----------
        path : str or path
            Usually ending in ``.html``; overwritten if it exists.

        Returns
        -------
        pathlib.Path
            Where it was written.

        Raises
        ------
        OSError
            The file cannot be written.
        """
        to = pathlib.Path(path)
        to.write_bytes(self.html.encode("utf-8"))
        return to

    def _repr_html_(self) -> str:
        """What notebooks show: the page in a frame of its own."""
        return (
            f'<iframe srcdoc="{html.escape(self.html, quote=True)}" '
            f'style="width: 100%; height: {_HEIGHT}px; border: 0" allowfullscreen></iframe>'
        )

    def __repr__(self) -> str:
        return f"<qelm.Page: {len(self.html)} characters; save(path) writes it>"


def view(
    system: MeshSystem,
    field: npt.ArrayLike,
    load: Optional[npt.ArrayLike] = None,
    *,
    levels: Union[int, npt.ArrayLike] = 12,
    title: str = "field",
    direction: Optional[str] = None,
) -> Page:
    """A page to turn, to zoom and to read values from, made by the command-line tool.

    Parameters
    ----------
    system : MeshSystem
    field : array_like, shape (n,)
        One finite value per vertex. Of a field that ``system.solve`` gave, the page marks the fixed
        vertices; of another one it shows every vertex as fixed.
    load : array_like, shape (n,), optional
        The load that the field was solved with.
    levels : int or array_like, default 12
        How many level curves to begin with, or their levels.
    title : str, default "field"
        What the page is called.
    direction : str, optional
        Where it is seen from: an axis such as ``"-y"``, or ``"X,Y,Z"``.

    Returns
    -------
    Page

    Raises
    ------
    FieldError
        A shape is wrong, or a value is not finite.
    ToolError
        The tool is missing or refuses; its message says why.
    ClosedError
        The system is closed.

    Examples
    --------
    >>> import qelm
    >>> system = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> page = qelm.view(system, system.solve([0, 1]), levels=9)
    >>> page.html.startswith("<!")
    True
    """
    system._alive()
    array = system._any_field(field)
    _arrays.require_finite_numbers(array, "field")
    loads = None if load is None else system._loads(load)
    if loads is not None and loads.ndim != 1:
        raise FieldError(f"load: the shape is {loads.shape}, must be ({system.vertex_count},)")
    name = re.sub(r"[^\w .+-]", "_", title).strip(" .") or "field"
    with tempfile.TemporaryDirectory(prefix="qelm-") as folder:
        _tool.write_ply(os.path.join(folder, f"{name}.ply"), system.vertices, system.triangles)
        fixed = system.fixed if _is_solution(system, array, loads) else np.arange(system.vertex_count)
        _write_pairs(os.path.join(folder, "prescribed values"), fixed, array)
        arguments = ["view", f"{name}.ply", "--fix-file", "prescribed values", "-o", "page.html", "-q"]
        if loads is not None and len(fixed) == system.fixed_count:
            _write_pairs(os.path.join(folder, "load"), np.arange(system.vertex_count), loads)
            arguments += ["--load", "load"]
        arguments += _level_arguments(levels)
        if direction is not None:
            arguments += ["--view", direction]
        _tool.run(arguments, folder)
        return Page(pathlib.Path(folder, "page.html").read_text(encoding="utf-8"))


def _level_arguments(levels: Union[int, npt.ArrayLike]) -> List[str]:
    if isinstance(levels, (int, np.integer)) and not isinstance(levels, bool):
        return ["--levels", str(int(levels))]
    return ["--at=" + ",".join(repr(level) for level in _arrays.levels(levels).tolist())]


def _is_solution(
    system: MeshSystem, field: npt.NDArray[np.float64], load: Optional[npt.NDArray[np.float64]]
) -> bool:
    """Whether the tool, which solves again, would arrive at this field."""
    return not system.info and np.array_equal(system.solve(field, load), field)


def _write_pairs(path: str, vertices: npt.NDArray[Any], values: npt.NDArray[np.float64]) -> None:
    """VERTEX,VALUE lines that keep every bit."""
    with open(path, "w", encoding="ascii") as file:
        file.writelines(f"{vertex},{value!r}\n" for vertex, value in zip(vertices.tolist(), values[vertices].tolist()))
