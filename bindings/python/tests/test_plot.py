"""What qelm.plot draws."""

import builtins

import matplotlib
import numpy as np
import pytest
import qelm
from meshes import grid

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402
from matplotlib.collections import LineCollection, TriMesh  # noqa: E402
from mpl_toolkits.mplot3d.art3d import Line3DCollection, Poly3DCollection  # noqa: E402


@pytest.fixture(autouse=True)
def no_figures_left():
    yield
    pyplot.close("all")


def the_one(ax, kind):
    (found,) = [artist for artist in ax.collections if type(artist) is kind]
    return found


def test_a_plane_mesh_is_drawn_in_its_plane():
    system = qelm.MeshSystem(*grid(9, 7, height=lambda x, y: 0 * x + 5))
    field = system.solve(np.arange(63.0))
    ax = qelm.plot(system, field, levels=[1, 2.5])
    assert ax.name == "rectilinear" and ax.get_aspect() == 1
    assert (the_one(ax, TriMesh).get_array() == field).all()
    drawn = the_one(ax, LineCollection).get_segments()
    for line, curve in zip(drawn, system.curves(field, [1, 2.5])):
        assert (np.array(line) == curve.points[:, :2]).all()
    assert len(ax.figure.axes) == 2, "the scale is missing"
    ax.figure.canvas.draw()


def test_a_mesh_in_space_is_drawn_in_space():
    system = qelm.MeshSystem(*grid(9, 7))
    field = system.solve(np.arange(63.0))
    figure = pyplot.figure()
    ax = qelm.plot(system, field, ax=figure.add_subplot(projection="3d"), colorbar=False, cmap="magma", levels=4)
    assert (ax.name, figure.axes) == ("3d", [ax])
    surface = the_one(ax, Poly3DCollection)
    np.testing.assert_array_equal(surface.get_array(), field[system.triangles].mean(axis=1))
    assert surface.get_cmap().name == "magma" and surface.get_clim() == (field.min(), field.max())
    assert len(the_one(ax, Line3DCollection)._segments3d) == len(system.curves(field, 4))
    figure.canvas.draw()


@pytest.mark.filterwarnings("error")
def test_a_plane_mesh_may_be_drawn_in_space():
    system = qelm.MeshSystem(*grid(9, 7, height=lambda x, y: 0 * x + 5))
    ax = qelm.plot(system, np.arange(63.0), ax=pyplot.figure().add_subplot(projection="3d"))
    assert len(the_one(ax, Poly3DCollection).get_array()) == system.triangle_count
    ax.figure.canvas.draw()
    assert ax.get_xlim() == (0, 8) and [label.get_text() for label in ax.zaxis.get_ticklabels()] == ["5"]


@pytest.mark.filterwarnings("error")
def test_an_upright_plane_is_drawn_in_space():
    vertices, triangles, tags = grid(9, 7, height=lambda x, y: 0 * x)
    ax = qelm.plot(qelm.MeshSystem(vertices[:, [0, 2, 1]], triangles, tags), np.arange(63.0))
    ax.figure.canvas.draw()
    assert ax.name == "3d" and ax.get_zlim() == (0, 6) and ax.get_ylim()[0] < 0 < ax.get_ylim()[1]


def test_axes_that_do_not_suit_are_refused():
    system = qelm.MeshSystem(*grid(3, 3))
    with pytest.raises(ValueError, match='ax: the mesh is not flat; make the axes with projection="3d"'):
        qelm.plot(system, np.arange(9.0), ax=pyplot.figure().add_subplot())
    with pytest.raises(TypeError, match="ax: matplotlib axes are needed, .* of type Figure"):
        qelm.plot(system, np.arange(9.0), ax=pyplot.figure())


def test_wrong_fields_are_refused_before_anything_is_drawn():
    system = qelm.MeshSystem(*grid(3, 3))
    with pytest.raises(qelm.FieldError, match="field: vertex 8: inf is not finite"):
        qelm.plot(system, [0] * 8 + [np.inf])
    assert not pyplot.get_fignums()


def test_without_matplotlib_it_says_what_to_install(monkeypatch):
    real = builtins.__import__

    def without(name, *rest):
        if name.startswith("matplotlib"):
            raise ImportError(name)
        return real(name, *rest)

    monkeypatch.setattr(builtins, "__import__", without)
    with pytest.raises(ImportError, match=r"pip install qelm\[plot\]"):
        qelm.plot(qelm.MeshSystem(*grid(3, 3)), np.arange(9))
