"""What a system takes, and what is refused because it would take too much."""

import numpy as np
import pytest
import qelm
from meshes import grid, square
from qelm import _memory


def random_triangles(count):
    """Twice as many triangles between any vertices, each of which is in one."""
    random = np.random.default_rng(1)
    a = np.arange(2 * count) % count
    b = (a + random.integers(1, count // 2, 2 * count)) % count
    c = (a + random.integers(count // 2, count, 2 * count)) % count
    tags = np.zeros(count, np.int32)
    tags[:2] = 1
    return random.random((count, 3)), np.stack([a, b, c], axis=1), tags


def test_a_prediction_grows_with_the_mesh():
    small, large = qelm.predict(*grid(20, 20)), qelm.predict(*grid(200, 200))
    assert 0 < small.factor_entries < large.factor_entries / 100
    assert small.handle_bytes < small.peak_bytes < large.handle_bytes < large.peak_bytes
    assert 12 * large.factor_entries < large.handle_bytes
    assert large.multiplications > large.factor_entries


@pytest.mark.filterwarnings("error")
def test_a_robust_system_has_a_prediction_of_its_own():
    vertices, triangles, tags = grid(20, 20)
    vertices[:, 0] += 5 * vertices[:, 1]
    robust = qelm.predict(vertices, triangles, tags, robust=True)
    assert robust != qelm.predict(vertices, triangles, tags)
    # What numpy's comparisons give is a truth value, too.
    assert qelm.predict(vertices, triangles, tags, robust=np.bool_(True)) == robust


def test_a_mesh_that_cannot_be_built_is_named():
    vertices, triangles, tags = square()
    with pytest.raises(qelm.MeshError, match=r"triangle 1 \(0, 2, 2\)"):
        qelm.predict(vertices, [[0, 1, 2], [0, 2, 2]], tags)
    with pytest.raises(qelm.MeshError, match="vertex 9 is not in"):
        qelm.predict(vertices, [[0, 1, 2], [0, 2, 9]], tags)
    with pytest.raises(qelm.MeshError, match="vertex 3"):
        qelm.predict(vertices, triangles[:1], tags)


def test_the_machine_says_what_is_free():
    with open("/proc/meminfo", encoding="ascii") as lines:
        total = 1024 * int(lines.readline().split()[1])
    assert 0 < _memory.free_bytes() < total


@pytest.mark.parametrize(
    "limit, used, statistics, cache",
    [
        ("memory.max", "memory.current", "memory.stat", "inactive_file"),
        ("memory/memory.limit_in_bytes", "memory/memory.usage_in_bytes", "memory/memory.stat", "total_inactive_file"),
    ],
    ids=["second version", "first version"],
)
def test_a_container_says_what_its_limit_leaves(monkeypatch, tmp_path, limit, used, statistics, cache):
    monkeypatch.setattr(_memory, "_GROUP", tmp_path)
    machine = _memory.free_bytes()
    assert machine > 100_000_000
    (tmp_path / "memory").mkdir()
    (tmp_path / used).write_text("60000000\n")
    (tmp_path / statistics).write_text(f"anon 5\n{cache} 10000000\nactive_file 7\n")
    for most, free in (("100000000", 50_000_000), ("50000000", 0)):
        (tmp_path / limit).write_text(most + "\n")
        assert _memory.free_bytes() == free
    (tmp_path / limit).write_text("max\n")
    assert _memory.free_bytes() > 100_000_000


@pytest.mark.parametrize("robust", [False, True])
def test_what_does_not_fit_into_memory_is_refused_with_the_figures(monkeypatch, robust):
    monkeypatch.setattr(_memory, "free_bytes", lambda: 20_000_000)
    mesh = random_triangles(4000)
    with pytest.raises(qelm.TooLargeError, match=r"would take 0\.0\d+ GB of memory, and 0\.02 GB are free") as refused:
        qelm.MeshSystem(*mesh, check=False, robust=robust)
    assert isinstance(refused.value, MemoryError) and refused.value.status == 107
    assert f"has {qelm.predict(*mesh, robust=robust).factor_entries} entries" in str(refused.value)
    assert qelm.MeshSystem(*grid(70, 60)).info == 0


def test_a_factor_that_cannot_be_indexed_is_refused():
    mesh = random_triangles(130_000)
    with pytest.raises(qelm.TooLargeError, match=r"need 2\d{9} entries, more than the library can index"):
        qelm.MeshSystem(*mesh, check=False)
