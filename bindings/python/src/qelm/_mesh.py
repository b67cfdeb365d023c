"""The arrays of a mesh, checked together, as the library takes them."""

from __future__ import annotations

from typing import List, NamedTuple

import numpy.typing as npt

from . import _arrays


class MeshArrays(NamedTuple):
    """Vertices (n, 3), triangles (m, 3) and tags (n,)."""

    vertices: _arrays.Doubles
    triangles: _arrays.Ints
    tags: _arrays.Ints

    def arguments(self) -> List[int]:
        """Counts and addresses, in the order of the C interface. Whoever passes them keeps this alive."""
        address = _arrays.address
        return [
            len(self.vertices),
            address(self.vertices),
            len(self.triangles),
            address(self.triangles),
            address(self.tags),
        ]


def vertices_of(argument: npt.ArrayLike) -> _arrays.Doubles:
    """(n, 3), one vertex at least. Raises MeshError."""
    xyz = _arrays.coordinates(argument)
    _arrays.require_count(len(xyz), "vertices", "vertex")
    return xyz


def mesh_of(vertices: npt.ArrayLike, triangles: npt.ArrayLike, tags: npt.ArrayLike) -> MeshArrays:
    """Finite coordinates, indices in range. Raises MeshError for the first element that is wrong."""
    xyz = vertices_of(vertices)
    corners = _arrays.triangle_indices(triangles, len(xyz))
    _arrays.require_finite_vertices(xyz)
    return MeshArrays(xyz, corners, _arrays.tags(tags, len(xyz)))
