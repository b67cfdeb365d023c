"""A plate with a hole in the plane and a shell in space, drawn with matplotlib's own functions.

usage: matplotlib_picture.py PICTURE
"""

import sys

import matplotlib
import numpy as np
import qelm
from matplotlib import pyplot
from matplotlib.collections import LineCollection
from mpl_toolkits.mplot3d.art3d import Line3DCollection

matplotlib.use("Agg")
ROUND, ACROSS = 96, 24

# A ring of quadrilaterals, each cut in two; the inner rim comes first.
angle = np.linspace(0, 2 * np.pi, ROUND, endpoint=False)
share = np.linspace(0, 1, ACROSS)[:, None]
radius = 1 + share * (1.5 + 0.4 * np.cos(3 * angle))
plate = np.stack([radius * np.cos(angle), radius * np.sin(angle), 0 * radius], axis=-1).reshape(-1, 3)
shell = plate + [0, 0, 1] * np.exp(-share * np.ones(ROUND)).reshape(-1, 1)
k = np.arange(ROUND * (ACROSS - 1))
right = k - k % ROUND + (k + 1) % ROUND
halves = [k, k + ROUND, right], [right, k + ROUND, right + ROUND]
triangles = np.concatenate([np.stack(half, axis=1) for half in halves])

inner, outer = np.arange(ROUND), np.arange(len(plate) - ROUND, len(plate))
values = np.concatenate([np.ones(ROUND), np.sin(angle)])  # round the hole, along the outer rim
LEVELS = np.linspace(-0.8, 0.8, 9)

figure = pyplot.figure(figsize=(11, 4.5), layout="constrained")

system = qelm.MeshSystem.from_fixed(plate, triangles, np.concatenate([inner, outer]))
field = system.solve(values)
flat = figure.add_subplot(1, 2, 1, aspect="equal", title="a plate")
colours = flat.tripcolor(plate[:, 0], plate[:, 1], triangles, field, shading="gouraud")
lines = [line[:, :2] for line in system.curves(field, LEVELS).polylines()]
flat.add_collection(LineCollection(lines, colors="black", lw=1))
figure.colorbar(colours, ax=flat)

system = qelm.MeshSystem.from_fixed(shell, triangles, np.concatenate([inner, outer]))
field = system.solve(values)
space = figure.add_subplot(1, 2, 2, projection="3d", title="a shell", computed_zorder=False)
surface = space.plot_trisurf(*shell.T, triangles=triangles, cmap="viridis", antialiased=False, linewidth=0, zorder=1)
surface.set_array(field[triangles].mean(axis=1))
space.add_collection3d(Line3DCollection(system.curves(field, LEVELS).polylines(), colors="black", lw=1, zorder=2))
space.set_box_aspect(np.ptp(shell, axis=0), zoom=1.1)
space.set_zticks([0.4, 1])
space.view_init(elev=52, azim=-75)

figure.savefig(sys.argv[1], dpi=110)
