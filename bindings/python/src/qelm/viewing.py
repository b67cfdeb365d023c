"""The page of ``qelm view``: in a notebook, or as a file for any browser."""

from __future__ import annotations

import html
import os
import pathlib
import tempfile
from typing import TYPE_CHECKING, List, Optional, Sequence, Union

import numpy as np
import numpy.typing as npt

from . import _arrays, _tool, meshcheck
from ._lifetime import handle_of
from ._mesh import mesh_of
from .errors import FieldError, SingularSystemError

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

    Examples
    --------
    >>> import qelm
    >>> system = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> page = qelm.view(system, system.solve([0, 1]), title="A square")
    >>> "<title>A square" in page.html
    True
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

        Examples
        --------
        >>> import pathlib, tempfile, qelm
        >>> system = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
        >>> with tempfile.TemporaryDirectory() as folder:
        ...     qelm.view(system, system.solve([0, 1])).save(pathlib.Path(folder, "square.html")).name
        'square.html'
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
    direction: Union[None, str, Sequence[float]] = None,
) -> Page:
    """A page to turn, to zoom and to read values from, made by the command-line tool.

    Parameters
    ----------
    system : MeshSystem
        The mesh that the field lies on.
    field : array_like, shape (n,)
        One finite value per vertex. Of a field that ``system.solve`` gave, the page marks the fixed
        vertices; any other field it shows without marks.
    load : array_like, shape (n,), optional
        The load that the field was solved with.
    levels : int or array_like, default 12
        How many level curves to begin with, or their levels.
    title : str, default "field"
        What the page is called.
    direction : str or sequence of three numbers, optional
        Where it is seen from: an axis such as ``"-y"``, or a direction towards the viewer.

    Returns
    -------
    Page

    Raises
    ------
    FieldError
        A shape is wrong, a value is not finite, or there are no levels, or more than a command line holds
        (some thousands; on Windows a thousand).
    TypeError
        The system is no MeshSystem, or another argument is of a wrong type.
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
    handle_of(system)
    array = system._any_field(field)
    _arrays.require_finite_numbers(array, "field")
    loads = None if load is None else system._loads(load)
    if loads is not None and loads.ndim != 1:
        raise FieldError(f"load: the shape is {loads.shape}, must be ({system.vertex_count},)")
    options = [*_level_arguments(levels), *_title_arguments(title), *_direction_arguments(direction)]
    with tempfile.TemporaryDirectory(prefix="qelm-") as folder:
        _tool.write_mesh(folder, system.vertices, system.triangles)
        options += _field_arguments(folder, system, array, loads)
        _tool.run(["view", _tool.MESH, "-o", "page.html", "-q", *options], folder)
        return Page(pathlib.Path(folder, "page.html").read_text(encoding="utf-8"))


def _level_arguments(levels: Union[int, npt.ArrayLike]) -> List[str]:
    if isinstance(levels, (int, np.integer)) and not isinstance(levels, bool):
        return ["--levels", str(int(levels))]
    chosen = _arrays.levels(levels)
    if not len(chosen):
        raise FieldError("levels: there is none; a page needs one at least")
    return [_tool.at(chosen)]


def _title_arguments(title: str) -> List[str]:
    if not isinstance(title, str) or "\0" in title:
        raise TypeError(f"title: {title!r} is no text")
    return [f"--title={title or 'field'}"]


def _direction_arguments(direction: Union[None, str, Sequence[float]]) -> List[str]:
    if direction is None:
        return []
    if not isinstance(direction, str):
        direction = ",".join(repr(float(part)) for part in _arrays.doubles(direction, "direction").ravel())
    return ["--view", direction]


def _field_arguments(
    folder: str,
    system: MeshSystem,
    field: npt.NDArray[np.float64],
    load: Optional[npt.NDArray[np.float64]],
) -> List[str]:
    """How the tool comes to the field: by solving again, if it then has the same bits, or from a file."""
    how = _solve_options(system, field, load)
    if how is None:
        np.save(os.path.join(folder, "field.npy"), field)
        return ["--field", "field.npy"]
    held = np.full(system.vertex_count, np.nan)
    held[system.fixed] = field[system.fixed]
    # The page shows the file's name.
    with open(os.path.join(folder, "fixed vertices"), "wb") as file:
        np.save(file, held)
    if load is None:
        return ["--fix-file", "fixed vertices", *how]
    # At fixed vertices, where it is not read, it may be anything.
    np.save(os.path.join(folder, "load.npy"), np.where(np.isfinite(load), load, 0))
    return ["--fix-file", "fixed vertices", "--load", "load.npy", *how]


def _solve_options(
    system: MeshSystem, field: npt.NDArray[np.float64], load: Optional[npt.NDArray[np.float64]]
) -> Optional[List[str]]:
    """With which options the tool solves for this field; None if with none."""
    if not _solves(system, field, load):
        return None
    mesh = mesh_of(system.vertices, system.triangles, np.isin(np.arange(system.vertex_count), system.fixed))
    with type(system).from_fixed(mesh.vertices, mesh.triangles, system.fixed, check=False) as plain:
        if not _solves(plain, field, load):
            return ["--robust"]
    # The tool refuses to solve on a mesh with defects.
    return [] if meshcheck.inspect(mesh) == 0 else None


def _solves(
    system: MeshSystem, field: npt.NDArray[np.float64], load: Optional[npt.NDArray[np.float64]]
) -> bool:
    """Whether the field is the system's solution, bit for bit."""
    try:
        return np.array_equal(system.solve(field, load), field)
    except SingularSystemError:
        return False
