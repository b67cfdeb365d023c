"""Reads a mesh in any of meshio's formats, holds two boundary loops, writes the curves between.

usage: meshio_curves.py MESH CURVES [LEVELS]

The longest boundary loop is held at 0, the others at 1. CURVES is a file of lines in any
format that meshio writes, such as .vtk.
"""

import sys

import meshio
import numpy as np
import qelm


def boundary_loops(triangles):
    """Vertices of each boundary loop, the longest first."""
    edges = np.sort(triangles[:, [0, 1, 1, 2, 2, 0]].reshape(-1, 2), axis=1)
    edges, count = np.unique(edges, axis=0, return_counts=True)
    loop = {vertex: {vertex} for vertex in edges[count == 1].ravel()}
    for one, other in edges[count == 1]:
        if loop[one] is not loop[other]:
            larger, smaller = sorted((loop[one], loop[other]), key=len, reverse=True)
            larger |= smaller
            loop.update(dict.fromkeys(smaller, larger))
    loops = {id(vertices): sorted(vertices) for vertices in loop.values()}
    return sorted(loops.values(), key=len, reverse=True)


def main(mesh_file, curve_file, levels="12"):
    mesh = meshio.read(mesh_file)
    triangles = mesh.cells_dict["triangle"]
    outer, *others = boundary_loops(triangles)
    values = np.zeros(len(mesh.points))
    values[np.concatenate(others)] = 1

    with qelm.MeshSystem.from_fixed(mesh.points, triangles, np.concatenate([outer, *others])) as system:
        curves = system.curves(system.solve(values), int(levels))

    lines = []
    for start, curve in zip(curves.starts, curves):
        rows = start + np.arange(len(curve.points) + curve.closed) % len(curve.points)
        lines.append(("line", np.stack([rows[:-1], rows[1:]], axis=1)))
    level_of_line = [np.full(len(data), curve.level) for (_, data), curve in zip(lines, curves)]
    meshio.write_points_cells(curve_file, curves.points, lines, cell_data={"level": level_of_line})
    for curve in curves:
        print(f"level {curve.level:.4g}: {'closed' if curve.closed else 'open'}, length {curve.length:.3f}")


main(*sys.argv[1:])
