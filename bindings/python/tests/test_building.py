"""Building systems: what is refused, and in which words."""

import numpy as np
import pytest
import qelm
from meshes import grid, square

VERTICES, TRIANGLES, TAGS = square()


def changed(array, place, value):
    copy = np.array(array, np.result_type(array, type(value)))
    copy[place] = value
    return copy


def test_a_system_tells_what_it_is_made_of():
    vertices, triangles, tags = grid(7, 5)
    system = qelm.MeshSystem(vertices, triangles, tags)
    assert (system.vertex_count, system.triangle_count, system.fixed_count) == (35, 48, 10)
    assert system.info is qelm.FactorisationInfo.SUCCESS
    assert (system.vertices == vertices).all() and (system.triangles == triangles).all()
    assert system.fixed.tolist() == np.flatnonzero(tags).tolist()
    free = np.flatnonzero(tags == 0)
    assert system.order.tolist() == [*system.fixed, *free[::-1]]
    assert (system.system_vertices == vertices[system.order]).all()
    assert repr(system) == "<qelm.MeshSystem: 35 vertices, 48 triangles, 10 fixed>"


def test_tags_other_than_1_2_3_mean_free():
    system = qelm.MeshSystem(VERTICES, TRIANGLES, [3, 4, 2, -1])
    assert system.fixed.tolist() == [0, 2]


@pytest.mark.parametrize("fixed", [[2, 0], [0, 0, 2], [True, False, True, False], np.array([0, 2], np.uint8), (0.0, 2.0)])
def test_fixed_vertices_as_indices_or_mask(fixed):
    system = qelm.MeshSystem.from_fixed(VERTICES, TRIANGLES, fixed)
    assert sorted(system.fixed.tolist()) == [0, 2]
    assert system.order.tolist() == [0, 2, 3, 1]


def test_values_of_the_fixed_vertices_alone_come_in_the_order_in_which_these_were_named():
    one = qelm.MeshSystem.from_fixed(VERTICES, TRIANGLES, [0, 2])
    other = qelm.MeshSystem.from_fixed(VERTICES, TRIANGLES, [2, 0, 2])
    assert other.fixed.tolist() == [2, 0] and not other.fixed.flags.writeable
    assert other.solve([7, 5]).tolist() == one.solve([5, 7]).tolist()
    assert other.solve([5, np.nan, 7, np.nan]).tolist() == one.solve([5, 7]).tolist()
    with pytest.raises(qelm.FieldError, match="values: vertex 0: nan"):
        other.solve([7, np.nan])


@pytest.mark.parametrize("name", ["vertex_count", "triangle_count", "fixed_count", "fixed", "info", "robust", "order"])
def test_what_a_system_says_of_itself_cannot_be_assigned(name):
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    with pytest.raises(AttributeError):
        setattr(system, name, 3)


def test_a_system_knows_whether_it_is_robust():
    robust = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS, robust=True)
    assert robust.robust and robust.duplicate().robust
    assert not qelm.MeshSystem(VERTICES, TRIANGLES, TAGS).robust


@pytest.mark.parametrize(
    "call, error, message",
    [
        (lambda: qelm.MeshSystem(VERTICES, TRIANGLES, [0, 2, 3]), qelm.MeshError, "MeshSystem.from_fixed takes numbers"),
        (lambda: qelm.MeshSystem.from_fixed(VERTICES, TRIANGLES, [1, 0, 1, 0]), qelm.MeshError, "fixed: this looks like a mask"),
        (lambda: qelm.MeshSystem.from_fixed(VERTICES, TRIANGLES, {0, 2}), TypeError, "fixed: a set is no array; pass a list"),
        (lambda: qelm.MeshSystem(None, TRIANGLES, TAGS), TypeError, "vertices: None is no array"),
        (lambda: qelm.MeshSystem(VERTICES, [[0, 1, 2, 3]], TAGS), qelm.MeshError, "split quadrilaterals, and of VTK's faces take"),
        (lambda: qelm.MeshSystem([[0, 0, 10**400]], TRIANGLES, TAGS), ValueError, "vertices: a number is too large"),
    ],
)  # fmt: skip
def test_common_mistakes_get_their_cure(call, error, message):
    with pytest.raises(error, match=message):
        call()


@pytest.mark.parametrize(
    "fixed, message",
    [
        ([4], r"fixed: element 0: vertex 4 is not in 0 .. 3"),
        ([0, -1], r"fixed: element 1: vertex -1 is not in 0 .. 3"),
        ([True, False], r"fixed: the mask's shape is \(2,\), must be \(4,\)"),
        ([0.5], r"fixed: element 0 \(0.5\): integers are needed"),
        ([[0, 1]], r"fixed: the shape is \(1, 2\)"),
        ([], r"the connected part with vertex 0 .*has no fixed vertex"),
    ],
)
def test_wrong_fixed_vertices_are_named(fixed, message):
    with pytest.raises(qelm.MeshError, match=message):
        qelm.MeshSystem.from_fixed(VERTICES, TRIANGLES, fixed)


@pytest.mark.parametrize(
    "vertices, triangles, tags, message",
    [
        (VERTICES, changed(TRIANGLES, (1, 2), 90), TAGS, r"^triangle 1 \(0, 2, 90\): vertex 90 is not in 0 .. 3; "),
        (VERTICES, changed(TRIANGLES, (0, 0), -1), TAGS, r"^triangle 0 \(-1, 1, 2\): vertex -1 is not in 0 .. 3"),
        (VERTICES, TRIANGLES + 2.0**40, TAGS, r"^triangle 0 \(1.09951163e\+12"),
        (VERTICES, [[0, 1, 2], [0, 2, 10**30]], TAGS, r"^triangle 1 \(0, 2, 1e\+30\): vertex 1e\+30 is not in"),
        (VERTICES, changed(TRIANGLES, (1, 1), 0.5), TAGS, r"^triangles: triangle 1 \(0, 0.5, 3\): integers are needed"),
        (VERTICES, changed(TRIANGLES, (1, 1), np.nan), TAGS, r"^triangles: triangle 1 \(0, nan, 3\): integers"),
        (VERTICES, [[0, 1, 2], [0, 2, 2]], TAGS, r"^triangle 1 \(0, 2, 2\): names a vertex twice; remove"),
        (VERTICES, [[0, 1, 2]], TAGS, r"^vertex 3 \(0, 1, 0\): lies in no triangle; remove"),
        (VERTICES, np.empty((0, 3), int), TAGS, "^triangles: there is no triangle"),
        (np.empty((0, 3)), TRIANGLES, [], "^vertices: there is no vertex"),
        (VERTICES, [[0, 1, 2, 3]], TAGS, r"^triangles: the shape is \(1, 4\), must be \(m, 3\)"),
        (VERTICES[:, :1], TRIANGLES, TAGS, r"^vertices: the shape is \(4, 1\), must be \(n, 3\) or \(n, 2\)"),
        (VERTICES.ravel()[:7], TRIANGLES, TAGS, r"^vertices: the shape is \(7,\)"),
        (changed(VERTICES, (2, 1), np.inf), TRIANGLES, TAGS, "^vertices: vertex 2: y is inf; coordinates must be finite"),
        (VERTICES, TRIANGLES, [1, 0], r"^tags: the shape is \(2,\), must be \(4,\): one tag per vertex"),
        (VERTICES, TRIANGLES, [1, 0, 0, 2**40], "^tags: vertex 3: the tag 1099511627776 does not fit in 32 bits"),
        (VERTICES, TRIANGLES, [0, 0, 0, 0], r"^the connected part with vertex 0 \(0, 0, 0\): has no fixed vertex"),
        (changed(VERTICES, 2, (2.0, 0, 0)), TRIANGLES, TAGS, r"^triangle 0 \(0, 1, 2\): has an area near zero; remove"),
        (VERTICES * 1e70, TRIANGLES, TAGS, "longest edge not within 1e-60 .. 1e60 .and 1 more.; scale the mesh"),
    ],
)  # fmt: skip
def test_a_wrong_mesh_is_refused_by_element_and_cure(vertices, triangles, tags, message):
    with pytest.raises(qelm.MeshError, match=message):
        qelm.MeshSystem(vertices, triangles, tags)


@pytest.mark.parametrize(
    "vertices, triangles, tags, message",
    [
        (VERTICES * 1j, TRIANGLES, TAGS, "^vertices: elements of type complex128 are no real numbers"),
        ([["a", "b", "c"]], TRIANGLES, TAGS, "^vertices: elements of type <U1"),
        (None, TRIANGLES, TAGS, "^vertices: None is no array; pass a list"),
        (VERTICES, [[True, False, True]], TAGS, "^triangles: these are truth values"),
        (VERTICES, [[0, 1, "2"]], TAGS, "^triangles: elements of type <U"),
        (VERTICES, np.array([[0, 1, None]], object), TAGS, "^triangles: element 2 is None"),
        (VERTICES, TRIANGLES, np.array(["2020-01-01"] * 4, "M8[D]"), "^tags: elements of type datetime64"),
    ],
)
def test_what_is_no_number_is_a_type_error(vertices, triangles, tags, message):
    with pytest.raises(TypeError, match=message):
        qelm.MeshSystem(vertices, triangles, tags)


@pytest.mark.parametrize("vertices", [[[0, 0, 0], [1, 0]], np.array([[0, 0, 0], [1, 0]], object)])
def test_ragged_lists_are_refused_by_name(vertices):
    with pytest.raises((ValueError, TypeError), match="^vertices: "):
        qelm.MeshSystem(vertices, TRIANGLES, TAGS)


def test_masked_meshes_are_refused_by_element():
    vertices = np.ma.masked_array(VERTICES, mask=VERTICES == 1)
    with pytest.raises(qelm.MeshError, match="vertices: vertex 1 is masked"):
        qelm.MeshSystem(vertices, TRIANGLES, TAGS)
    with pytest.raises(qelm.MeshError, match="triangles: triangle 1 is masked"):
        qelm.MeshSystem(VERTICES, np.ma.masked_equal(TRIANGLES, 3), TAGS)
    with pytest.raises(qelm.MeshError, match="tags: vertex 1 is masked"):
        qelm.MeshSystem(VERTICES, TRIANGLES, np.ma.masked_equal(TAGS, 0))


def test_without_check_a_sliver_is_built_and_a_singular_system_too():
    thin = changed(VERTICES, 2, (2.0, 1e-13, 0))
    with pytest.raises(qelm.MeshError, match="area near zero"):
        qelm.MeshSystem(thin, TRIANGLES, TAGS)
    assert np.isfinite(qelm.MeshSystem(thin, TRIANGLES, TAGS, check=False).solve([0, 1])).all()
    free = qelm.MeshSystem(VERTICES, TRIANGLES, [0, 0, 0, 0], check=False)
    assert len(free.curves([0, 1, 2, 1], [0.5])) == 1
    flat = changed(VERTICES, 2, (2.0, 0, 0))
    with pytest.raises(qelm.SingularSystemError):
        qelm.MeshSystem(flat, TRIANGLES, TAGS, check=False).solve([0, 1])


@pytest.mark.parametrize("triangles, status", [([[0, 1, 2], [0, 2, 2]], 23), ([[0, 1, 2]], 24)])
def test_what_the_library_refuses_is_named_without_check_as_well(triangles, status):
    with pytest.raises(qelm.MeshError, match="names a vertex twice|lies in no triangle") as caught:
        qelm.MeshSystem(VERTICES, triangles, TAGS, check=False)
    assert caught.value.status == status


def test_a_failed_factorisation_is_a_singular_system():
    # The two parts' rows are tied to nothing, and elimination comes upon an exact 0.
    vertices, triangles, _ = square()
    system = qelm.MeshSystem(vertices, triangles, [0] * 4, check=False)
    if system.info is not qelm.FactorisationInfo.SUCCESS:
        with pytest.raises(qelm.SingularSystemError, match="the factorisation ended with NUMERICAL_ISSUE"):
            system.solve(np.zeros(4))
