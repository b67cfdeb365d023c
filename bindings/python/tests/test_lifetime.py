"""Who frees what, when: views, duplicates, closing, copies of the process, its end."""

import copy
import gc
import os
import pickle
import subprocess
import sys
import textwrap

import numpy as np
import pytest
import qelm
from meshes import bits, grid, square

VERTICES, TRIANGLES, TAGS = grid(8, 8)


@pytest.fixture
def system():
    return qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)


def resident_bytes():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def run_python(program):
    """A program in an interpreter of its own; it must end well and in silence."""
    done = subprocess.run([sys.executable, "-c", textwrap.dedent(program)], capture_output=True, text=True, timeout=300)
    assert (done.returncode, done.stderr) == (0, "")
    return done.stdout


def test_a_million_constructions_keep_memory_flat():
    # The checks before the call are numpy's; what is the library's is taken a million times.
    from qelm._building import construct as build
    from qelm._mesh import MeshArrays

    mesh = MeshArrays(*square())

    def construct(times):
        for _ in range(times):
            build(mesh)

    construct(10_000)
    before = resident_bytes()
    construct(1_000_000)
    assert resident_bytes() - before < 2_000_000


def test_systems_curves_and_views_keep_memory_flat():
    def all_of_it(times):
        for _ in range(times):
            with qelm.MeshSystem(VERTICES, TRIANGLES, TAGS) as system:
                field = system.solve(np.arange(64.0))
                curves = system.curves(field, 20)
                views = [system.system_vertices, system.system_triangles, curves.points, system.duplicate()]
                qelm.isoline_segments(system, field, np.linspace(0, 63, 200))
                with pytest.raises(qelm.FieldError):
                    system.solve([0])
            del views, curves

    all_of_it(200)
    before = resident_bytes()
    all_of_it(1500)
    assert resident_bytes() - before < 2_000_000


def test_refused_meshes_keep_memory_flat():
    flat = VERTICES * [1, 0, 0]

    def refuse(times):
        for _ in range(times):
            with pytest.raises(qelm.MeshError):
                qelm.MeshSystem(flat, TRIANGLES, TAGS)

    refuse(200)
    before = resident_bytes()
    refuse(2000)
    assert resident_bytes() - before < 2_000_000


def test_a_closed_system_says_so(system):
    system.close()
    system.close()
    assert system.closed and repr(system).endswith("closed>")
    for use in (
        lambda: system.solve(np.zeros(64)),
        lambda: system.curves(np.arange(64.0)),
        lambda: system.vertices,
        lambda: system.use_count,
        lambda: system.duplicate(),
        lambda: system.__enter__(),
        lambda: qelm.write_heat_map(system, np.arange(64.0), "heat"),
        lambda: qelm.view(system, np.arange(64.0)),
    ):
        with pytest.raises(qelm.ClosedError, match="the system is closed"):
            use()


def test_views_outlive_their_system(system):
    expected = system.vertices[system.order]
    points = system.curves(np.arange(64.0), 3).points
    view, triangles = system.system_vertices, system.system_triangles
    assert not view.flags.writeable and not view.flags.owndata
    with pytest.raises(ValueError, match="read-only"):
        view[0] = 1
    part = view[10:20]
    system.close()
    del system, view
    gc.collect()
    # Memory that was given back would be overwritten by these.
    others = [qelm.MeshSystem(VERTICES + 1, TRIANGLES, TAGS) for _ in range(20)]
    assert (part == expected[10:20]).all() and np.isfinite(points).all()
    assert triangles.max() == 63 and len(others) == 20


def test_duplicates_share_and_close_on_their_own(system):
    other, third = system.duplicate(), copy.deepcopy(system)
    assert system.use_count == other.use_count == third.use_count == 3
    expected = bits(system.solve(np.arange(64)))
    system.close()
    assert other.use_count == 2
    assert (bits(other.solve(np.arange(64))) == expected).all()
    del third
    gc.collect()
    assert other.use_count == 1


def test_pickling_is_refused_with_a_cure(system):
    with pytest.raises(TypeError, match="send vertices, triangles and tags, and build it there"):
        pickle.dumps(system)


def test_after_a_fork_parent_and_child_have_their_own(system):
    expected = system.solve(np.arange(64.0))
    view = system.system_vertices
    child = os.fork()
    if child == 0:
        same = (bits(system.solve(np.arange(64.0))) == bits(expected)).all() and len(system.curves(expected, 5)) > 0
        system.close()
        os._exit(0 if same and np.isfinite(view).all() else 1)
    assert os.waitpid(child, 0)[1] == 0
    assert (bits(system.solve(np.arange(64.0))) == bits(expected)).all()


PREPARE = """
    import sys, threading, time
    import numpy as np, qelm
    from qelm import system as module
    side = 150
    y, x = (a.ravel() for a in np.mgrid[0:side, 0:side])
    a = (np.arange(side - 1)[:, None] * side + np.arange(side - 1)).ravel()
    triangles = np.concatenate([np.c_[a, a + 1, a + side + 1], np.c_[a, a + side + 1, a + side]])
    system = qelm.MeshSystem(np.c_[x, y], triangles, x == 0)
"""


def test_the_end_of_the_interpreter_finds_everything_in_any_order():
    run_python(PREPARE + """
    view, curves, other = system.system_vertices, system.curves(x * 1.0, 9), system.duplicate()
    first = curves[0]
    # Kept by what goes last: a module of the standard library, a cycle, a thread's storage.
    sys.kept = [view, curves, other]
    loop = [system, qelm.MeshSystem]; loop.append(loop)
    threading.local().kept = first
    """)  # fmt: skip


def test_the_end_of_the_interpreter_does_not_wait_for_threads_that_solve():
    run_python(PREPARE + """
    def work():
        while True:
            with system.duplicate() as mine:
                mine.solve(np.arange(side * side * 1.0))
    for _ in range(3):
        threading.Thread(target=work, daemon=True).start()
    time.sleep(0.3)
    """)  # fmt: skip


def test_an_object_whose_building_failed_is_collected_in_silence():
    run_python("""
    import gc, qelm
    try:
        qelm.MeshSystem([[0, 0]], [[0, 0, 0]], [1])
    except qelm.MeshError as error:
        print(error)
    gc.collect()
    """)
