"""Pictures with matplotlib, which is optional: ``pip install qelm[plot]``."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Optional, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import _arrays
from ._lifetime import handle_of

if TYPE_CHECKING:
    from .system import MeshSystem

__all__ = ["plot"]

# A mesh this thin, in diagonals, is drawn in its plane.
_FLAT = 1e-9

# The least extent of a box in space, of its largest.
_LEAST_DEPTH = 1e-3

# Marks along the longest axis of a picture in space; the others have as many as fit.
_TICKS = 6


def plot(
    system: MeshSystem,
    field: npt.ArrayLike,
    *,
    levels: Union[int, npt.ArrayLike] = 12,
    ax: Optional[Any] = None,
    cmap: str = "viridis",
    colorbar: bool = True,
) -> Any:
    """Draws a field and its level curves with matplotlib.

    A mesh in the plane z = constant is drawn in two dimensions, any other in three. In three,
    matplotlib draws all curves over the surface, those behind it, too; :func:`qelm.view` hides them.

    Parameters
    ----------
    system : MeshSystem
        The mesh that the field lies on.
    field : array_like, shape (n,)
        One finite value per vertex.
    levels : int or array_like, default 12
        How many level curves, or their levels.
    ax : matplotlib axes, optional
        Where to draw; for a mesh in space its projection must be ``"3d"``, a plane one may be drawn in
        either. A new figure without it.
    cmap : str, default "viridis"
        A colour map of matplotlib's.
    colorbar : bool, default True
        Draw the scale beside it.

    Returns
    -------
    matplotlib axes

    Raises
    ------
    ImportError
        There is no matplotlib.
    TypeError
        The system is no MeshSystem, or `ax` no axes.
    ValueError
        The mesh lies in space and `ax` in the plane.
    FieldError
        The shape is wrong, a value is not finite, or there is no range to put levels in.
    ClosedError
        The system is closed.

    Examples
    --------
    >>> import matplotlib
    >>> matplotlib.use("Agg")
    >>> import qelm
    >>> system = qelm.MeshSystem([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> ax = qelm.plot(system, system.solve([0, 1]), levels=4)
    >>> ax.name
    'rectilinear'
    """
    try:
        from matplotlib import pyplot
    except ImportError as error:
        raise ImportError("qelm.plot needs matplotlib; pip install qelm[plot] has it") from error
    handle_of(system)
    array = system._any_field(field)
    _arrays.require_finite_numbers(array, "field")
    curves = system.curves(array, levels)
    vertices, triangles = system.vertices, system.triangles
    low, high = vertices.min(axis=0), vertices.max(axis=0)
    is_flat = high[2] - low[2] <= _FLAT * np.linalg.norm(high - low)
    if ax is None:
        # From higher up than matplotlib's own view: less of the curves is behind the surface.
        projection = {} if is_flat else {"projection": "3d", "elev": 45}
        ax = pyplot.figure(layout="constrained").add_subplot(**projection)
    in_space = _has_three_dimensions(ax)
    if not (is_flat or in_space):
        raise ValueError('ax: the mesh is not flat; make the axes with projection="3d"')
    draw = _in_space if in_space else _in_plane
    surface = draw(ax, vertices, triangles, array, curves.polylines(), cmap)
    if colorbar:
        scale = ax.figure.colorbar(surface, ax=ax, shrink=0.8, pad=0.12 if in_space else 0.05)
        scale.ax.hlines(np.unique(curves.levels), 0, 1, colors="black", linewidth=0.8)
    return ax


def _has_three_dimensions(ax: Any) -> bool:
    from matplotlib.axes import Axes

    if not isinstance(ax, Axes):
        raise TypeError(f"ax: matplotlib axes are needed, such as pyplot.gca(); this is of type {type(ax).__name__}")
    return bool(ax.name == "3d")


def _in_plane(ax: Any, vertices: Any, triangles: Any, field: Any, lines: Any, cmap: str) -> Any:
    from matplotlib.collections import LineCollection

    x, y = vertices[:, 0], vertices[:, 1]
    surface = ax.tripcolor(x, y, triangles, field, shading="gouraud", cmap=cmap)
    ax.add_collection(LineCollection([line[:, :2] for line in lines], colors="black", linewidths=0.8))
    ax.set_aspect("equal")
    return surface


def _in_space(ax: Any, vertices: Any, triangles: Any, field: Any, lines: Any, cmap: str) -> Any:
    from matplotlib.ticker import FixedLocator, MaxNLocator
    from mpl_toolkits.mplot3d.art3d import Line3DCollection

    ax.computed_zorder = False
    # Smoothed edges of faces would let the background through between neighbours.
    surface = ax.plot_trisurf(*vertices.T, triangles=triangles, cmap=cmap, antialiased=False, linewidth=0, zorder=1)
    surface.set_array(field[triangles].mean(axis=1))
    surface.set_clim(field.min(), field.max())
    ax.add_collection3d(Line3DCollection(lines, colors="black", linewidths=0.8, zorder=2))
    low, high = _box(vertices)
    ax.set(xlim=(low[0], high[0]), ylim=(low[1], high[1]), zlim=(low[2], high[2]))
    extents = high - low
    ax.set_box_aspect(extents)
    for axis, middle, extent in zip((ax.xaxis, ax.yaxis, ax.zaxis), (low + high) / 2, extents):
        marks = round(_TICKS * extent / extents.max())
        axis.set_major_locator(MaxNLocator(marks) if marks else FixedLocator([middle]))
    return surface


def _box(vertices: npt.NDArray[np.float64]) -> Tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]:
    """The corners of the bounding box, widened where the mesh has no depth: matplotlib cannot draw in a plane."""
    low, high = vertices.min(axis=0), vertices.max(axis=0)
    least = _LEAST_DEPTH * (high - low).max()
    widened = np.where(high - low < least, least / 2, 0)
    return low - widened, high + widened
