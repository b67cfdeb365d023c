"""Named meshes: (vertices, triangles, tags)."""

import numpy as np


def square():
    """Two opposite corners fixed."""
    vertices = np.array([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], float)
    return vertices, np.array([[0, 1, 2], [0, 2, 3]], np.int32), np.array([1, 0, 1, 0], np.int32)


def grid(columns, rows, height=lambda x, y: 0.2 * np.sin(x) * y):
    """A wavy sheet, the left and right sides fixed."""
    y, x = (a.ravel() for a in np.mgrid[0:rows, 0:columns])
    vertices = np.stack([x, y, height(x, y)], axis=1).astype(float)
    a = (np.arange(rows - 1)[:, None] * columns + np.arange(columns - 1)).ravel()
    triangles = np.concatenate(
        [np.stack([a, a + 1, a + columns + 1], axis=1), np.stack([a, a + columns + 1, a + columns], axis=1)]
    )
    return vertices, triangles.astype(np.int32), np.isin(x, [0, columns - 1]).astype(np.int32)


def bits(array):
    """Doubles as words, so that comparing tells -0.0 from 0.0 and NaN equals itself."""
    return np.ascontiguousarray(array, np.float64).view(np.uint64)
