"""Check, welding, heat maps, the codec, the raw export of segments."""

import os
import re

import numpy as np
import pytest
import qelm
from built import program, run
from hypothesis import given, strategies as st
from meshes import grid, square

VERTICES, TRIANGLES, TAGS = square()


# ---- Systems that are none


@pytest.mark.parametrize("system", [None, np.zeros(4), qelm.MeshSystem], ids=["None", "an array", "the class"])
@pytest.mark.parametrize(
    "function, arguments",
    [
        (qelm.gradient, []),
        (qelm.isoline_segments, [[0.5]]),
        (qelm.plot, []),
        (qelm.simplified_curves, [3, 0.1]),
        (qelm.spaced_levels, [0.1]),
        (qelm.view, []),
        (qelm.write_heat_map, ["heat"]),
    ],
)
def test_what_is_no_system_is_named(function, arguments, system):
    with pytest.raises(TypeError, match=f"^system: a MeshSystem is needed, this is of type {type(system).__name__}$"):
        function(system, [0, 1, 2, 3], *arguments)


# ---- check


def test_a_good_mesh_reads_well():
    report = qelm.check(*grid(7, 5))
    assert report.ok and report.status == 0 and report.defects == report.notes == ()
    assert str(report).splitlines()[:2] == [
        "35 vertices, 48 triangles: no defects",
        "  1 connected part, 1 boundary loop, 10 fixed vertices",
    ]
    assert (report.part.count, report.boundary_loop.count, report.tagged_vertex.count) == (1, 1, 10)


def test_every_defect_is_told_by_its_first_element():
    vertices = [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [2, 0, 0], [np.nan, 0, 0], [9, 9, 9]]
    triangles = [[0, 1, 2], [0, 2, 3], [0, 1, 4], [0, 1, 5], [3, 3, 2], [0, 1, 7], [0, 1, 2**40], [2, 3, 3]]
    report = qelm.check(vertices, triangles, [0] * 7)
    assert (report.status, report.ok) == (101, False)
    assert report.defects == (
        "triangle 5 (0, 1, 7): names a vertex that does not exist (and 1 more); vertices are numbered from 0",
        "triangle 4 (3, 3, 2): names a vertex twice (and 1 more); remove such triangles",
        "vertex 6 (9, 9, 9): lies in no triangle; remove such vertices",
        "vertex 5 (nan, 0, 0): has a coordinate that is not finite; give it a place, or remove it",
        "triangle 2 (0, 1, 4): has an area near zero; remove it, merge its corners with qelm.weld, "
        "or build with robust=True",
        "the connected part with vertex 0 (0, 0, 0): has no fixed vertex; fix a vertex in every connected part",
    )
    assert all(f"  defect: {text}\n" in str(report) for text in report.defects)
    assert repr(report) == str(report)
    assert report.notes == ("1 edge of three or more triangles, the first at triangle 0",)


def test_without_tags_no_part_wants_a_fixed_vertex():
    assert qelm.check(VERTICES, TRIANGLES).ok
    assert qelm.check(VERTICES, TRIANGLES, [0, 0, 0, 0]).status == 105
    assert qelm.check(VERTICES, TRIANGLES, [True, False, False, False]).tagged_vertex.count == 1


@given(
    st.lists(st.tuples(*[st.floats(width=32)] * 3), min_size=1, max_size=7),
    st.lists(st.tuples(*[st.integers(-(2**70), 2**70) | st.integers(0, 7)] * 3), min_size=1, max_size=7),
)
def test_check_takes_any_content(vertices, triangles):
    report = qelm.check(vertices, triangles)
    assert report.ok == (not report.defects) and str(report)


def test_what_check_passes_is_built():
    vertices, triangles, tags = grid(5, 5)
    rng = np.random.default_rng(3)
    for _ in range(40):
        moved = vertices + rng.uniform(-0.6, 0.6, vertices.shape)
        few = triangles[rng.random(len(triangles)) < 0.97]
        ok = qelm.check(moved, few, tags).ok
        try:
            qelm.MeshSystem(moved, few, tags)
        except qelm.MeshError:
            assert not ok
        else:
            assert ok


# ---- weld


def test_a_soup_becomes_the_mesh_it_was_made_of():
    vertices, triangles, _ = grid(8, 6)
    soup = vertices[triangles].reshape(-1, 3)
    welded = qelm.weld(soup, np.arange(len(soup)).reshape(-1, 3))
    assert len(welded.vertices) == len(vertices) and len(welded.triangles) == len(triangles)
    assert (welded.vertices[welded.triangles] == vertices[triangles]).all()
    assert (welded.vertices[welded.vertex_map] == soup).all()


def test_welding_leaves_its_arguments_alone_and_owns_its_results():
    vertices = np.array([[0, 0, 0], [0, 0, 1e-9], [1, 0, 0], [0, 1, 0]])
    triangles = np.array([[0, 2, 3], [1, 2, 3], [0, 1, 2]], np.int32)
    kept = vertices.copy(), triangles.copy()
    welded = qelm.weld(vertices, triangles, 1e-6)
    assert (vertices == kept[0]).all() and (triangles == kept[1]).all()
    assert welded.triangles.tolist() == [[0, 1, 2]] and welded.vertices.base is None
    assert qelm.weld(vertices, triangles, 0).vertices.shape == (4, 3)


@pytest.mark.parametrize(
    "arguments, message",
    [
        ((VERTICES, TRIANGLES, -1), "tolerance: -1.0 is no distance"),
        ((VERTICES, TRIANGLES, np.nan), "tolerance: nan is no distance"),
        ((VERTICES, [[0, 1, 4]], 1), r"triangle 0 \(0, 1, 4\): vertex 4 is not in 0 .. 3"),
        ((np.full((3, 3), np.nan), [[0, 1, 2]]), "vertices: none is finite"),
        ((np.diag([1.7e308] * 3) - 1.7e308 / 2, [[0, 1, 2]]), "the bounding box is too large"),
    ],
)
def test_wrong_arguments_of_weld_are_named(arguments, message):
    with pytest.raises(qelm.MeshError, match=message):
        qelm.weld(*arguments)


@pytest.mark.parametrize("tolerance", ["1e-6", [1e-6, 1e-5], 1j])
def test_a_tolerance_that_is_no_number_is_named(tolerance):
    with pytest.raises(TypeError, match="^tolerance: "):
        qelm.weld(VERTICES, TRIANGLES, tolerance)


# ---- heat maps


def test_a_heat_map_is_the_one_of_the_tool(tmp_path):
    vertices, triangles, tags = grid(6, 5)
    (tmp_path / "mesh.obj").write_text(
        "".join(f"v {x!r} {y!r} {z!r}\n" for x, y, z in vertices.tolist())
        + "".join(f"f {a} {b} {c}\n" for a, b, c in (triangles + 1).tolist())
    )
    values = np.arange(30.0)
    (tmp_path / "fixed.csv").write_text("".join(f"{v},{float(v)!r}\n" for v in np.flatnonzero(tags)))
    (tmp_path / "theirs").mkdir()
    run(program("qelm"), "heatmap", "mesh.obj", "--fix-file", "fixed.csv", "-o", "theirs/heat", "-q", cwd=tmp_path)
    system = qelm.MeshSystem(vertices, triangles, tags)
    os.makedirs(tmp_path / "ours")
    qelm.write_heat_map(system, system.solve(values), tmp_path / "ours" / "heat")
    theirs, ours = ((tmp_path / who / "heat.obj").read_bytes() for who in ("theirs", "ours"))
    # The first line that differs names the material by its path; the tool keeps every digit, the
    # library six.
    ours, theirs = (re.split(rb"[\s/]+", text.split(b"\nv ", 1)[1]) for text in (ours, theirs))
    assert len(ours) == len(theirs)
    for mine, other in zip(ours, theirs):
        assert mine == other or abs(float(mine) - float(other)) <= 1e-5 * abs(float(other)), (mine, other)
    assert (tmp_path / "ours/heat.mtl").read_bytes() == (tmp_path / "theirs/heat.mtl").read_bytes()
    assert (tmp_path / "ours/viridis.PNG").read_bytes() == (tmp_path / "theirs/viridis.PNG").read_bytes()


def test_heat_maps_that_cannot_be_written_raise_and_leave_nothing(tmp_path):
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    for path in (tmp_path / "none" / "heat", ""):
        with pytest.raises((OSError, ValueError)):
            qelm.write_heat_map(system, [0, 1, 2, 3], path)
    (tmp_path / "heat.mtl").mkdir()
    with pytest.raises(OSError):
        qelm.write_heat_map(system, [0, 1, 2, 3], tmp_path / "heat")
    assert [path.name for path in tmp_path.iterdir()] == ["heat.mtl"]
    for field, message in (([1, 1, 1, 1], "all values are equal"), ([0, np.nan, 1, 2], "vertex 1: nan is not finite")):
        with pytest.raises(qelm.FieldError, match=message):
            qelm.write_heat_map(system, field, tmp_path / "other")


@pytest.mark.skipif(not os.path.exists("/dev/full"), reason="needs a device that is always full")
def test_a_full_disk_is_noticed(tmp_path):
    (tmp_path / "heat.obj").symlink_to("/dev/full")
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    with pytest.raises(OSError, match="not written completely|No space"):
        qelm.write_heat_map(system, [0, 1, 2, 3], tmp_path / "heat")


@pytest.mark.parametrize("name", ["heat", "heat.obj", "heat.OBJ"])
def test_a_heat_map_may_be_named_by_its_obj_file(tmp_path, name):
    qelm.write_heat_map(qelm.MeshSystem(VERTICES, TRIANGLES, TAGS), [0, 1, 2, 3], tmp_path / name)
    assert sorted(path.name for path in tmp_path.iterdir()) == ["heat.mtl", "heat.obj", "viridis.PNG"]
    assert f"mtllib {tmp_path}/heat.mtl\n" in (tmp_path / "heat.obj").read_text()


@pytest.mark.parametrize("name", ["", ".", "..", "folder/", "folder/.obj", "a\0b"])
def test_a_path_without_file_name_is_refused(tmp_path, monkeypatch, name):
    (tmp_path / "folder").mkdir()
    monkeypatch.chdir(tmp_path)
    with pytest.raises(ValueError, match="^path: .* names no file"):
        qelm.write_heat_map(qelm.MeshSystem(VERTICES, TRIANGLES, TAGS), [0, 1, 2, 3], name)
    assert [path.name for path in tmp_path.rglob("*")] == ["folder"]


def test_a_path_of_bytes_is_refused():
    with pytest.raises(TypeError, match="^path: b'heat' is not text"):
        qelm.write_heat_map(qelm.MeshSystem(VERTICES, TRIANGLES, TAGS), [0, 1, 2, 3], b"heat")


def test_without_ramp_there_is_no_ramp(tmp_path):
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    qelm.write_heat_map(system, [0, 1, 2, 3], tmp_path / "heat", ramp=False)
    assert sorted(path.name for path in tmp_path.iterdir()) == ["heat.mtl", "heat.obj"]


# ---- codec


def test_every_integer_comes_back_from_its_point_and_from_the_reverse():
    values = np.arange(-1, 65535)
    points = qelm.encode(values)
    assert points.dtype == np.float32 and points.shape == (65536, 3)
    assert np.linalg.norm(points.astype(float), axis=1) == pytest.approx(1, abs=1e-6)
    assert (qelm.decode(points) == values).all() and (qelm.decode(-points) == values).all()


def test_the_codec_keeps_shapes():
    assert qelm.encode([[1, 2, 3]]).shape == (1, 3, 3)
    assert qelm.encode([]).shape == (0, 3)
    assert qelm.decode(qelm.encode(np.int8(7))).shape == () and qelm.decode(np.empty((0, 3))).shape == (0,)


@pytest.mark.parametrize("value", [-2, 65535, 2**70])
def test_what_cannot_be_carried_is_refused(value):
    with pytest.raises((qelm.FieldError, TypeError), match="^values: "):
        qelm.encode([0, value])


def test_the_codec_refuses_masked_elements():
    with pytest.raises(qelm.FieldError, match="^values: some elements are masked"):
        qelm.encode(np.ma.masked_equal([1, 2], 2))
    with pytest.raises(qelm.FieldError, match="^points: some elements are masked"):
        qelm.decode(np.ma.masked_equal([1.0, 0.0, 0.0], 1))
    assert qelm.encode(np.ma.masked_equal([1, 2], 3)).shape == (2, 3)


def test_the_codec_refuses_other_types():
    with pytest.raises(TypeError, match="no integers"):
        qelm.encode([0.5])
    with pytest.raises(qelm.FieldError, match=r"points: the shape is \(2,\)"):
        qelm.decode([0.0, 1.0])


# ---- raw segments


def test_segments_are_cut_from_the_tables_as_the_header_reads_them():
    points = np.array([[0, 0, 0], [1, 0, 0], [0, 1, 0]])
    # Column by column, the flat arrays hold these points and three times this triangle.
    system = qelm.MeshSystem(points.T, [[0, 1, 2], [1, 2, 0], [2, 0, 1]], [1, 1, 1])
    ends, edges = qelm.isoline_segments(system, [0, 1, 1], [0.25])
    assert edges.tolist() == [[0, 3], [1, 4], [2, 5]]
    for edge in edges:
        assert {tuple(point) for point in ends[edge]} == {(0.25, 0, 0), (0, 0.25, 0)}


def test_without_segments_the_tables_are_empty():
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    points, edges = qelm.isoline_segments(system, [0, 1, 2, 3], [99])
    assert (points.shape, edges.shape) == ((0, 3), (0, 2))


def test_the_version_is_that_of_the_header():
    assert re.fullmatch(r"\d+\.\d+\.\d+", qelm.library_version())
    assert run(program("qelm"), "--version").split()[-1] == qelm.library_version() == qelm.__version__


def test_other_names_of_the_module_are_missing():
    with pytest.raises(AttributeError, match="module 'qelm' has no attribute 'nothing'"):
        qelm.nothing  # noqa: B018
