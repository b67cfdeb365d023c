"""Results that are not finite are found by the processor's flags, and by looking where flags cannot tell."""

import platform
import sys

import numpy as np
import pytest
import qelm
from meshes import grid
from qelm import _arrays, _float_flags

KNOWS_FLAGS = (sys.platform, platform.machine()) == ("linux", "x86_64")
knows_flags = pytest.mark.skipif(not KNOWS_FLAGS, reason="the numbers of the flags are those of x86-64 on Linux")

VERTICES, TRIANGLES, TAGS = grid(12, 9)
N = len(VERTICES)
SQUARE = np.array([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], float)


@pytest.fixture
def solved():
    """A system whose factorisation is known to be finite."""
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    system.solve(VERTICES[:, 0])
    return system


@knows_flags
@pytest.mark.parametrize(
    "calculation, stays",
    [
        (lambda x: x + 1, True),
        (lambda x: x * 1e-300 * 1e-300, True),
        (lambda x: x * 1e300 * 1e300, False),
        (lambda x: (x * np.inf) - np.inf, False),
    ],
    ids=["sum", "underflow", "overflow", "invalid"],
)
def test_what_leaves_the_finite_numbers_raises_a_flag(calculation, stays):
    assert _float_flags.stays_finite(calculation, 1.5) is stays


@knows_flags
def test_numpy_in_between_counts_as_a_raised_flag():
    assert not _float_flags.stays_finite(np.add, np.ones(3), 1)


def test_numpy_takes_no_flag_of_a_solve_for_its_own(solved):
    with np.errstate(all="raise"):
        for calculate in (np.sqrt, np.linalg.norm, np.sum, lambda x: x[0] * 2.0, lambda x: x.astype(np.float32)):
            solved.solve(VERTICES[:, 0])
            calculate(np.array([1.5, 2.5]))


@knows_flags
def test_only_the_first_result_of_a_system_is_looked_at(monkeypatch):
    looked_at = []
    is_finite = _arrays.is_finite
    monkeypatch.setattr(_arrays, "is_finite", lambda array: looked_at.append(array.size) or is_finite(array))
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    for _ in range(3):
        system.solve(VERTICES[:, 0])
    assert looked_at.count(N) == 1


@pytest.mark.parametrize("fields", [1, 3])
def test_an_overflow_is_found_after_good_solves(solved, fields):
    values, loads = np.full((fields, N), 1.7e308), np.full((fields, N), -1.7e308)
    for _ in range(2):
        with pytest.raises(qelm.SingularSystemError, match=r"vertex \d+: the solution is (nan|inf|-inf)"):
            solved.solve(values, loads)
    assert np.isfinite(solved.solve(VERTICES[:, 0])).all()


def test_a_factorisation_that_is_not_finite_is_found_at_each_solve():
    # A triangle without area has cotangents without end.
    vertices = np.concatenate([SQUARE, [[2, 0, 0]]])
    system = qelm.MeshSystem(vertices, [[0, 1, 2], [0, 2, 3], [0, 1, 4]], [1, 0, 0, 1, 0], check=False)
    system.solve(np.empty((0, 5)))
    for values in ([0, 0], [0, 1], [[0, 1], [1, 0]]):
        with pytest.raises(qelm.SingularSystemError, match=r"vertex \d: the solution is"):
            system.solve(values)


@knows_flags
def test_a_look_alone_does_not_show_that_a_factorisation_is_finite(monkeypatch):
    # After robust construction the library keeps fields within a range, which may hide what is not finite.
    system = qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)
    monkeypatch.setattr(_float_flags, "stays_finite", lambda function, *arguments: function(*arguments) or False)
    system.solve(VERTICES[:, 0])
    assert not system._handle.is_finite
    monkeypatch.undo()
    system.solve(VERTICES[:, 0])
    assert system._handle.is_finite


def test_without_flags_every_result_is_looked_at(solved, monkeypatch):
    monkeypatch.setattr(_float_flags, "_MATHS", None)
    with pytest.raises(qelm.SingularSystemError, match="the solution is"):
        solved.solve(np.full(N, 1.7e308), np.full(N, -1.7e308))
    assert np.isfinite(solved.solve(VERTICES[:, 0])).all()


@pytest.mark.parametrize("where", [("linux", "aarch64"), ("win32", "AMD64"), ("darwin", "x86_64")])
def test_flags_are_not_asked_where_their_numbers_may_be_others(where, monkeypatch):
    monkeypatch.setattr(sys, "platform", where[0])
    monkeypatch.setattr(platform, "machine", lambda: where[1])
    assert _float_flags._load() is None


def test_flags_are_not_asked_without_the_c_library_for_them(monkeypatch):
    def missing(name):
        raise OSError(f"{name}: cannot open shared object file")

    monkeypatch.setattr(_float_flags, "CDLL", missing)
    assert _float_flags._load() is None
