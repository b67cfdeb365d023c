"""The same field by scipy: the matrix written down with numpy, solved by spsolve.

usage: scipy_spsolve.py

Prints the largest difference between the two fields, relative to the largest value.
"""

import numpy as np
import qelm
import scipy.sparse
import scipy.sparse.linalg


def stiffness(vertices, triangles):
    """K_ab = sum over triangles of area (grad phi_a . grad phi_b), by cotangents."""
    n, weights, rows, columns = len(vertices), [], [], []
    for corner in range(3):
        apex, a, b = (triangles[:, (corner + k) % 3] for k in range(3))
        one, other = vertices[a] - vertices[apex], vertices[b] - vertices[apex]
        cotangent = (one * other).sum(axis=1) / np.linalg.norm(np.cross(one, other), axis=1)
        weights.append(cotangent / 2)
        rows.append(a)
        columns.append(b)
    half = scipy.sparse.coo_matrix((np.concatenate(weights), (np.concatenate(rows), np.concatenate(columns))), (n, n))
    off = (half + half.T).tocsr()
    return scipy.sparse.diags(np.asarray(off.sum(axis=1)).ravel()) - off


side = 60
y, x = (a.ravel() for a in np.mgrid[0:side, 0:side] / (side - 1))
vertices = np.stack([x, y, 0.2 * np.cos(7 * x + 2 * y)], axis=1)
k = (np.arange(side - 1)[:, None] * side + np.arange(side - 1)).ravel()
triangles = np.concatenate([np.stack([k, k + 1, k + side + 1], 1), np.stack([k, k + side + 1, k + side], 1)])
is_fixed = np.isin(x, [0, 1])
values = np.where(is_fixed, np.sin(3 * y) + 2 * x, 0)
load = np.where(is_fixed, 0, 1e-3 * np.cos(9 * x))

ours = qelm.MeshSystem.from_fixed(vertices, triangles, is_fixed).solve(values, load)

matrix = stiffness(vertices, triangles)
free, fixed = np.flatnonzero(~is_fixed), np.flatnonzero(is_fixed)
theirs = values.copy()
right_side = -matrix[free][:, fixed] @ values[fixed] - load[free]
theirs[free] = scipy.sparse.linalg.spsolve(matrix[free][:, free].tocsc(), right_side)

print(f"largest difference {np.abs(ours - theirs).max() / np.abs(theirs).max():.1e}")
