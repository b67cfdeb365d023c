"""Calls from many threads at once, without the interpreter's lock."""

import sys
import threading
from concurrent.futures import ThreadPoolExecutor
from ctypes import byref, c_int

import numpy as np
import pytest
import qelm
from meshes import bits, grid
from qelm import _arrays
from qelm._native import library


@pytest.fixture(scope="module")
def system():
    vertices, triangles, _ = grid(100, 100)
    return qelm.MeshSystem.from_fixed(vertices, triangles, np.arange(100))


def test_threads_get_the_bits_that_each_gets_alone(system):
    values = np.random.default_rng(5).uniform(0, 9, (24, 10_000))
    alone = [(bits(system.solve(v)), bits(system.curves(v, 7).points)) for v in values]
    with ThreadPoolExecutor(6) as pool:
        together = list(pool.map(lambda v: (bits(system.solve(v)), bits(system.curves(v, 7).points)), values))
    for one, other in zip(alone, together):
        assert all((a == b).all() for a, b in zip(one, other))


def test_threads_build_at_the_same_time():
    mesh = grid(40, 40)
    expected = bits(qelm.MeshSystem(*mesh).solve(np.arange(1600)))
    with ThreadPoolExecutor(4) as pool:
        systems = list(pool.map(lambda _: qelm.MeshSystem(*mesh), range(12)))
    assert all((bits(system.solve(np.arange(1600))) == expected).all() for system in systems)


def test_others_run_while_a_solve_runs(system):
    """With a switch interval that never ends, only a call that lets go of the lock lets others run."""
    values = np.zeros((100, 10_000))
    arguments = (system._handle.pointer, 100, _arrays.address(values), None, _arrays.address(values), byref(c_int()))
    stage = []

    def work():
        stage.append("in")
        library().qelmsolveManyTagged(*arguments)
        stage.append("out")

    before = sys.getswitchinterval()
    sys.setswitchinterval(1000)
    try:
        thread = threading.Thread(target=work)
        thread.start()
        seen = list(stage)
        thread.join()
    finally:
        sys.setswitchinterval(before)
    assert (seen, stage) == (["in"], ["in", "out"])


def test_closing_lets_running_calls_finish(system):
    mine = system.duplicate()
    values = np.ones((60, 10_000))
    with ThreadPoolExecutor(3) as pool:
        running = [pool.submit(mine.solve, values) for _ in range(3)]
        mine.close()
        for call in running:
            try:
                assert call.result() == pytest.approx(1, abs=1e-9)
            except qelm.ClosedError:
                pass  # it came after the closing
    assert system.use_count == 1
