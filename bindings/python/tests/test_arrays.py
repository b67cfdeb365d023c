"""Any type and layout goes in, is converted once or not at all, and gives the same bits."""

import collections

import numpy as np
import pytest
import qelm
from hypothesis import given, strategies as st
from meshes import bits, grid
from qelm import _arrays

VERTICES, TRIANGLES, TAGS = grid(5, 4)
VALUES = np.cos(np.arange(20))
EXPECTED = bits(qelm.MeshSystem(VERTICES, TRIANGLES, TAGS).solve(VALUES))


def strided(array):
    wide = np.zeros((*array.shape, 2), array.dtype)
    wide[..., 0] = array
    return wide[..., 0]


def unaligned(array):
    memory = np.zeros(array.nbytes + 1, np.uint8)
    view = memory[1:].view(array.dtype).reshape(array.shape)
    view[...] = array
    return view


class Wrapped:
    """What is an array only through the protocol."""

    def __init__(self, array):
        self.array = array

    def __array__(self, dtype=None):
        return self.array if dtype is None else self.array.astype(dtype)


LAYOUTS = {
    "lists": lambda a: a.tolist(),
    "tuples": lambda a: tuple(map(tuple, a)) if a.ndim == 2 else tuple(a),
    "fortran": np.asfortranarray,
    "strided": strided,
    "negative stride": lambda a: a[::-1].copy()[::-1],
    "big-endian": lambda a: a.astype(a.dtype.newbyteorder(">")),
    "unaligned": unaligned,
    "read-only": lambda a: np.frombuffer(a.tobytes(), a.dtype).reshape(a.shape),
    "objects": lambda a: a.astype(object),
    "unmasked": lambda a: np.ma.masked_array(a),
    "long double": lambda a: a.astype(np.longdouble),
    "matrix of rows": lambda a: np.asmatrix(a) if a.ndim == 2 else a,
    "protocol": Wrapped,
    "deque": lambda a: collections.deque(a.tolist()),
    "wide integers": lambda a: a.astype(np.int64) if a.dtype.kind == "i" else a,
    "unsigned": lambda a: a.astype(np.uint64) if a.dtype.kind == "i" else a,
    "small": lambda a: a.astype(np.uint8) if a.dtype.kind == "i" else a,
    "whole doubles": lambda a: a.astype(float),
}


@pytest.mark.filterwarnings("ignore:the matrix subclass")
@pytest.mark.parametrize("change", LAYOUTS.values(), ids=LAYOUTS)
def test_every_layout_gives_the_same_bits(change):
    system = qelm.MeshSystem(change(VERTICES), change(TRIANGLES), change(TAGS))
    assert (bits(system.solve(change(VALUES))) == EXPECTED).all()
    both = np.stack([VALUES, VALUES])
    assert (bits(system.solve(change(both), change(0 * both))) == EXPECTED).all()
    assert len(system.curves(change(VALUES), change(np.array([0.1, 0.2])))) > 0


@pytest.mark.filterwarnings("ignore:the matrix subclass")
@given(st.lists(st.sampled_from(sorted(LAYOUTS)), min_size=4, max_size=4))
def test_every_mixture_of_layouts_gives_the_same_bits(names):
    vertices, triangles, tags, values = (LAYOUTS[n](a) for n, a in zip(names, (VERTICES, TRIANGLES, TAGS, VALUES)))
    assert (bits(qelm.MeshSystem(vertices, triangles, tags).solve(values)) == EXPECTED).all()


def test_packed_and_plane_vertices():
    flat, triangles, tags = grid(5, 4, height=lambda x, y: 0 * x)
    expected = bits(qelm.MeshSystem(flat, triangles, tags).solve(VALUES))
    for vertices in (flat.ravel(), flat[:, :2], flat.ravel().tolist()):
        system = qelm.MeshSystem(vertices, triangles.ravel(), tags)
        assert (bits(system.solve(VALUES)) == expected).all()
        assert (system.vertices == flat).all()


def test_what_is_ready_is_not_copied():
    assert _arrays.doubles(VALUES, "values") is VALUES
    assert _arrays.triangle_indices(TRIANGLES, 20) is TRIANGLES
    assert _arrays.tags(TAGS, 20) is TAGS
    assert np.shares_memory(_arrays.coordinates(VERTICES), VERTICES)
    assert np.shares_memory(_arrays.coordinates(VERTICES.ravel()), VERTICES)


def test_half_precision_widens():
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    halves = VALUES.astype(np.float16)
    assert (bits(system.solve(halves)) == bits(system.solve(halves.astype(float)))).all()


def test_whole_numbers_beyond_a_double_are_still_compared_rightly():
    with pytest.raises(qelm.MeshError, match=r"vertex 18446744073709551615 is not in 0 .. 19"):
        qelm.MeshSystem(VERTICES, np.where(TRIANGLES == 3, np.uint64(2**64 - 1), TRIANGLES.astype(np.uint64)), TAGS)


@pytest.mark.parametrize("empty", [[], [[]], np.empty((0, 3)), np.empty(0, object)])
def test_empty_arrays_are_refused_by_name(empty):
    with pytest.raises(qelm.MeshError, match="^vertices: "):
        qelm.MeshSystem(empty, TRIANGLES, TAGS)
    with pytest.raises(qelm.MeshError, match="^triangles: "):
        qelm.MeshSystem(VERTICES, empty, TAGS)


@given(
    st.lists(st.tuples(*[st.floats(width=16)] * 3), max_size=6),
    st.lists(st.tuples(*[st.integers(-2, 7)] * 3), max_size=6),
    st.lists(st.integers(-1, 4), max_size=6),
    st.lists(st.floats(), max_size=6),
    st.booleans(),
)
def test_nothing_that_fits_the_types_does_worse_than_raise(vertices, triangles, tags, values, check):
    try:
        with qelm.MeshSystem(vertices, triangles, tags, check=check) as system:
            assert np.isfinite(system.solve(values)).all()
            system.curves(values, [0, 1])
    except (qelm.QelmError, TypeError):
        pass
