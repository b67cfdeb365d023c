"""A user's module, for mypy: what the package promises of its types."""

from typing import List, Tuple

import numpy as np
import numpy.typing as npt
import qelm


def rims(vertices: npt.NDArray[np.float32], triangles: List[Tuple[int, int, int]]) -> List[float]:
    with qelm.MeshSystem.from_fixed(vertices, triangles, np.flatnonzero(vertices[:, 2] == 0)) as system:
        field: npt.NDArray[np.float64] = system.solve([0.0, 1.0], load=None)
        curves = system.curves(field, levels=[0.25, 0.75])
        lengths: List[float] = [curve.length for curve in curves if curve.closed]
        first: qelm.Curve = curves[0]
        points, level, closed = first
        packed: npt.NDArray[np.int64] = curves.starts
        report: qelm.Report = qelm.check(vertices, triangles)
        text: str = f"{report} {level + 1} {points.shape} {closed} {packed.sum()} {report.part.count + 1}"
        qelm.write_heat_map(system, field, text)
        page: qelm.Page = qelm.view(system, field, title=qelm.__version__, direction=(0, -1, 0.5))
        assert page.save(text).name
        merged, corners, _ = qelm.weld(vertices, triangles, 1e-6)
        assert merged.dtype == np.float64 and corners.dtype == np.int32
        return lengths
