"""Smooth fields on triangle meshes, between values that you prescribe, and their level curves.

>>> import qelm
>>> vertices = [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]]
>>> triangles = [[0, 1, 2], [0, 2, 3]]
>>> system = qelm.MeshSystem.from_fixed(vertices, triangles, fixed=[0, 2])
>>> field = system.solve([0, 1])
>>> print(field)
[0.  0.5 1.  0.5]
>>> [curve.level for curve in system.curves(field, levels=3)]
[0.25, 0.5, 0.75]
"""

from typing import TYPE_CHECKING

from ._native import library_version
from .codec import decode, encode
from .curves import Curve, Curves, even_levels
from .errors import (
    ClosedError,
    FieldError,
    LibraryError,
    MeshError,
    QelmError,
    SingularSystemError,
    TooLargeError,
    ToolError,
)
from .gradients import Gradient, gradient
from .heatmap import write_heat_map
from .isolines import Segments, isoline_segments
from .meshcheck import Finding, Report, RobustReport, check, check_robust
from .plotting import plot
from .prediction import Prediction, predict
from .spacing import simplified_curves, spaced_levels
from .system import FactorisationInfo, MeshSystem
from .viewing import Page, view
from .welding import Welded, weld

if TYPE_CHECKING:
    __version__: str
else:

    def __getattr__(name):
        """``qelm.__version__`` is asked of the library when it is wanted, so that importing loads none."""
        if name == "__version__":
            return library_version()
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")


__all__ = [
    "ClosedError",
    "Curve",
    "Curves",
    "FactorisationInfo",
    "FieldError",
    "Finding",
    "Gradient",
    "LibraryError",
    "MeshError",
    "MeshSystem",
    "Page",
    "Prediction",
    "QelmError",
    "Report",
    "RobustReport",
    "Segments",
    "SingularSystemError",
    "TooLargeError",
    "ToolError",
    "Welded",
    "check",
    "check_robust",
    "decode",
    "encode",
    "even_levels",
    "gradient",
    "isoline_segments",
    "library_version",
    "plot",
    "predict",
    "simplified_curves",
    "spaced_levels",
    "view",
    "weld",
    "write_heat_map",
]
