"""What is wrong with a mesh, in words."""

from __future__ import annotations

import dataclasses
from ctypes import byref
from typing import Collection, Dict, NamedTuple, Optional, Tuple

import numpy as np
import numpy.typing as npt

from . import _arrays
from ._mesh import MeshArrays, mesh_of, vertices_of
from ._native import library, require_ok
from ._records import QelmFinding, QelmMeshReport, QelmRobustReport
from .errors import MeshError

__all__ = ["Finding", "Report", "RobustReport", "check", "check_robust"]

_UNTAGGED_PART = 105


@dataclasses.dataclass(frozen=True)
class Finding:
    """How often something was found, and the lowest index where; -1 if nowhere.

    Attributes
    ----------
    count, first : int

    Examples
    --------
    >>> import qelm
    >>> qelm.check([[0, 0], [1, 0], [1, 1], [5, 5]], [[0, 1, 2]]).unused_vertex
    Finding(count=1, first=3)
    """

    count: int
    first: int


class _Defect(NamedTuple):
    """How a defect is told: its finding, the code, the element that it names, words, cure."""

    finding: str
    status: int
    element: str
    words: str
    cure: str


# In the order in which the library decides about the status.
_DEFECTS = [
    _Defect("index_out_of_range", 101, "triangle", "names a vertex that does not exist", "vertices are numbered from 0"),
    _Defect("repeated_vertex", 23, "triangle", "names a vertex twice", "remove such triangles"),
    _Defect("unused_vertex", 24, "vertex", "lies in no triangle", "remove such vertices"),
    _Defect("not_finite", 102, "vertex", "has a coordinate that is not finite", "give it a place, or remove it"),
    _Defect("near_zero_area", 103, "triangle", "has an area near zero",
            "remove it, merge its corners with qelm.weld, or build with robust=True"),
    _Defect("size_out_of_range", 104, "triangle", "has a longest edge not within 1e-60 .. 1e60", "scale the mesh"),
    _Defect("untagged_part", _UNTAGGED_PART, "part", "has no fixed vertex", "fix a vertex in every connected part"),
]  # fmt: skip
_NOTES = [
    ("crowded_edge", "edge of three or more triangles", "edges of three or more triangles", "triangle"),
    ("opposed_edge", "edge between triangles of opposite orientation", "edges between triangles of opposite orientation", "triangle"),
    ("repeated_triangle", "repeated triangle", "repeated triangles", "triangle"),
    ("coincident_vertex", "vertex at the place of an earlier one", "vertices at the place of an earlier one", "vertex"),
]  # fmt: skip


class Report:
    """What :func:`check` found. ``str(report)`` says it in words.

    Each finding is a :class:`Finding`: ``count`` and ``first``.

    Attributes
    ----------
    vertex_count, triangle_count : int
    status : int
        0 when the mesh can be solved on, else the native library's code of the first defect.
    ok : bool
        ``status == 0``.
    defects : tuple of str
        A sentence for each kind of defect: the first element that has it, and the cure.
    notes : tuple of str
        What is worth knowing and no defect.
    index_out_of_range, repeated_vertex, near_zero_area, size_out_of_range : Finding
        Defects of triangles.
    unused_vertex, not_finite : Finding
        Defects of vertices.
    untagged_part : Finding
        Connected parts without fixed vertex; `first` is a vertex. Nothing is found without tags.
    part, tagged_vertex, boundary_loop, crowded_edge, opposed_edge, repeated_triangle, coincident_vertex : Finding
        For information.
    worst_triangle : int
        The triangle of the lowest quality; -1 if none has one.
    worst_quality : float
        Its quality, height squared over the product of its longest edge and its largest extent;
        infinite if no triangle has one.

    Examples
    --------
    >>> import qelm
    >>> report = qelm.check([[0, 0], [1, 0], [1, 1], [5, 5]], [[0, 1, 2]])
    >>> report.ok, report.part.count, report.worst_triangle
    (False, 1, 0)
    >>> report.defects
    ('vertex 3 (5, 5, 0): lies in no triangle; remove such vertices',)
    """

    index_out_of_range: Finding
    repeated_vertex: Finding
    unused_vertex: Finding
    not_finite: Finding
    near_zero_area: Finding
    size_out_of_range: Finding
    untagged_part: Finding
    part: Finding
    tagged_vertex: Finding
    crowded_edge: Finding
    boundary_loop: Finding
    opposed_edge: Finding
    repeated_triangle: Finding
    coincident_vertex: Finding

    def __init__(
        self,
        vertices: npt.NDArray[np.float64],
        triangles: npt.NDArray[np.int32],
        status: int,
        findings: Dict[str, Finding],
        worst: Tuple[int, float],
    ) -> None:
        self.vertex_count = len(vertices)
        self.triangle_count = len(triangles)
        self.status = status
        self.ok = status == 0
        self.worst_triangle, self.worst_quality = worst
        for name, finding in findings.items():
            setattr(self, name, finding)
        self._told = [
            (defect.status, _defect_text(defect, findings[defect.finding], vertices, triangles))
            for defect in _DEFECTS
            if findings[defect.finding].count
        ]
        self.defects = tuple(text for _, text in self._told)
        self.notes = tuple(
            f"{_counted(findings[name].count, one, many)}, the first at {element} {findings[name].first}"
            for name, one, many, element in _NOTES
            if findings[name].count
        )

    def first_defect(self, but: Collection[int] = ()) -> Optional[Tuple[int, str]]:
        """Code and sentence of the first defect; of those with other codes than the given ones.

        Parameters
        ----------
        but : collection of int
            Codes of defects to pass over.

        Returns
        -------
        tuple of int and str, or None

        Examples
        --------
        >>> import qelm
        >>> qelm.check([[0, 0], [1, 0], [1, 1], [5, 5]], [[0, 1, 2]]).first_defect()
        (24, 'vertex 3 (5, 5, 0): lies in no triangle; remove such vertices')
        """
        return next((defect for defect in self._told if defect[0] not in but), None)

    def __str__(self) -> str:
        head = f"{_counted(self.vertex_count, 'vertex', 'vertices')}, " + _counted(
            self.triangle_count, "triangle", "triangles"
        )
        lines = [f"{head}: {'no defects' if not self.defects else 'the mesh cannot be solved on'}"]
        lines += [f"  defect: {text}" for text in self.defects]
        lines += [f"  note: {text}" for text in self.notes]
        lines.append(
            f"  {_counted(self.part.count, 'connected part', 'connected parts')}, "
            f"{_counted(self.boundary_loop.count, 'boundary loop', 'boundary loops')}, "
            f"{_counted(self.tagged_vertex.count, 'fixed vertex', 'fixed vertices')}"
        )
        if self.worst_triangle >= 0:
            lines.append(f"  lowest quality {self.worst_quality:.3g}, triangle {self.worst_triangle}")
        return "\n".join(lines)

    # At the prompt and in notebooks a report reads as it prints.
    __repr__ = __str__


def _counted(count: int, one: str, many: str) -> str:
    return f"{count} {one if count == 1 else many}"


def _defect_text(
    defect: _Defect, finding: Finding, vertices: npt.NDArray[np.float64], triangles: npt.NDArray[np.int32]
) -> str:
    if defect.element == "triangle":
        element = _arrays.triangle_text(triangles, finding.first)
    else:
        place = ", ".join(f"{x:.6g}" for x in vertices[finding.first])
        element = f"vertex {finding.first} ({place})"
        if defect.element == "part":
            element = f"the connected part with {element}"
    more = f" (and {finding.count - 1} more)" if finding.count > 1 else ""
    return f"{element}: {defect.words}{more}; {defect.cure}"


def _snake(name: str) -> str:
    return "".join(f"_{c.lower()}" if c.isupper() else c for c in name)


def inspect(mesh: MeshArrays) -> int:
    """The status of checked arrays alone: as quick as from C."""
    status: int = library().qelmcheckTagged(*mesh.arguments(), None)
    return status


def report_on(mesh: MeshArrays, *, has_tags: bool = True) -> Report:
    """The report on checked arrays. Without tags, parts without fixed vertex are no defect."""
    native = QelmMeshReport()
    status = library().qelmcheckTagged(*mesh.arguments(), byref(native))
    findings = {
        _snake(name): Finding(getattr(native, name).count, getattr(native, name).first)
        for name, kind in native._fields_
        if kind is QelmFinding
    }
    if not has_tags:
        findings["untagged_part"] = Finding(0, -1)
        status = 0 if status == _UNTAGGED_PART else status
    return Report(mesh.vertices, mesh.triangles, status, findings, (native.worstTriangle, native.worstQuality))


def check(vertices: npt.ArrayLike, triangles: npt.ArrayLike, tags: Optional[npt.ArrayLike] = None) -> Report:
    """Says what is wrong with a mesh, whatever is in the arrays.

    Parameters
    ----------
    vertices : array_like, shape (n, 3), (n, 2) or (3n,)
        Coordinates of any values; a second dimension of 2 means the plane z = 0.
    triangles : array_like, shape (m, 3) or (3m,)
        Vertex numbers of any values.
    tags : array_like, shape (n,), optional
        1, 2 and 3 mean that the vertex is fixed; a mask of the fixed vertices does as well. Without tags,
        parts without fixed vertex are no defect.

    Returns
    -------
    Report
        ``str()`` of it says everything in words.

    Raises
    ------
    MeshError
        An array has the wrong shape, or there is no vertex or triangle.
    TypeError
        An array does not hold real numbers.

    Examples
    --------
    >>> import qelm
    >>> print(qelm.check([[0, 0], [1, 0], [1, 1], [0, 1], [5, 5]], [[0, 1, 2], [0, 2, 2], [0, 2, 3]]))
    5 vertices, 3 triangles: the mesh cannot be solved on
      defect: triangle 1 (0, 2, 2): names a vertex twice; remove such triangles
      defect: vertex 4 (5, 5, 0): lies in no triangle; remove such vertices
      1 connected part, 1 boundary loop, 0 fixed vertices
      lowest quality 0.25, triangle 0
    """
    xyz = vertices_of(vertices)
    corners = _arrays.any_indices(triangles)
    given = np.zeros(len(xyz), np.int32) if tags is None else _arrays.tags(tags, len(xyz))
    return report_on(MeshArrays(xyz, corners, given), has_tags=tags is not None)


class RobustReport(NamedTuple):
    """What the robust construction does to a mesh. All 0 where the plain matrix is good.

    Attributes
    ----------
    changed : bool
        Whether the matrix is not the plain one.
    sheets : int
        2 over a surface that is open where nothing is fixed, that has one side only, or is not a surface; else 1.
    flat_triangles : int
        Triangles too flat as they are.
    not_delaunay_edges : int
        Edges whose opposite angles add up to more than a straight one.
    flips : int
        Flips made, of all sheets.

    Examples
    --------
    >>> import qelm
    >>> report = qelm.check_robust([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2], [0, 2, 3]], [1, 0, 1, 0])
    >>> report.changed
    False
    """

    changed: bool
    sheets: int
    flat_triangles: int
    not_delaunay_edges: int
    flips: int


def check_robust(vertices: npt.ArrayLike, triangles: npt.ArrayLike, tags: npt.ArrayLike) -> RobustReport:
    """Says what ``MeshSystem(..., robust=True)`` would do to a mesh, without building it.

    Parameters
    ----------
    vertices : array_like, shape (n, 3), (n, 2) or (3n,)
        Finite coordinates.
    triangles : array_like, shape (m, 3) or (3m,)
        Vertex numbers, from 0.
    tags : array_like, shape (n,)
        1, 2 and 3 mean that the vertex is fixed; a mask of the fixed vertices does as well.

    Returns
    -------
    RobustReport

    Raises
    ------
    MeshError
        The mesh cannot be built; the message names what is wrong.
    TypeError
        An array does not hold real numbers.

    Examples
    --------
    A thin triangle on a flat one:

    >>> import qelm
    >>> qelm.check_robust([[0, 0], [4, 0], [2, 3], [2, -0.1]], [[0, 1, 2], [1, 0, 3]], [0, 0, 1, 1])
    RobustReport(changed=True, sheets=2, flat_triangles=0, not_delaunay_edges=1, flips=2)
    """
    mesh = mesh_of(vertices, triangles, tags)
    native = QelmRobustReport()
    status = library().qelmcheckRobustTagged(*mesh.arguments(), byref(native))
    if status in (23, 24):
        _, text = report_on(mesh).first_defect() or (status, "")
        raise MeshError(text, status)
    require_ok(status)
    return RobustReport(
        bool(native.changed), native.sheets, native.flatTriangles, native.notDelaunayEdges, native.flips
    )
