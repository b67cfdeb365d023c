"""Measures the Python binding beside the bare C functions and beside scipy; prints a section of Markdown.

usage: python_binding.py LIBRARY [SIZE ...]

The bare function is called through ctypes with prepared pointers, which costs a microsecond
more than a call from C. Contenders take random turns in one process on one core; medians of processor time
count, but for the threads, whose clock is the wall's. A solve on a large mesh leaves nothing of the
binding in the processor's cache, so that the next call has a larger overhead than one on a tiny mesh.
"""

import gc
import os
import pathlib
import random
import statistics
import sys
import time
from concurrent.futures import ThreadPoolExecutor
from ctypes import POINTER, byref, c_int, c_void_p

os.environ["OPENBLAS_NUM_THREADS"] = "1"
os.environ["QELM_LIBRARY"] = sys.argv[1]
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "bindings/python/src"))

import numpy as np  # noqa: E402
import qelm  # noqa: E402
import scipy.sparse.linalg  # noqa: E402
from qelm._native import library  # noqa: E402
from qelm._records import QelmCurves  # noqa: E402

FIELDS, LEVELS = 16, 10


def grid(vertex_count):
    """A wavy square sheet, its left and right sides fixed."""
    side = round(vertex_count**0.5)
    y, x = (a.ravel() for a in np.mgrid[0:side, 0:side] / (side - 1))
    vertices = np.stack([x, y, 0.1 * np.sin(5 * x + 3 * y)], axis=1)
    k = (np.arange(side - 1)[:, None] * side + np.arange(side - 1)).ravel()
    halves = [np.stack([k, k + 1, k + side + 1], axis=1), np.stack([k, k + side + 1, k + side], axis=1)]
    return vertices, np.concatenate(halves).astype(np.int32), np.isin(x, [0, 1]).astype(np.int32)


def medians(contenders, repetitions, clock=time.process_time):
    """{name: seconds}; the contenders take turns, in random order: the later ones find more of Python in the cache."""
    seconds = {name: [] for name in contenders}
    order = list(contenders)
    gc.disable()
    for _ in range(repetitions + 1):
        random.shuffle(order)
        for name in order:
            start = clock()
            result = contenders[name]()
            seconds[name].append(clock() - start)
            del result
    gc.enable()
    return {name: statistics.median(runs[1:]) for name, runs in seconds.items()}


def with_arrays(curves):
    """Asks for every array, which is made at that moment; in C they are there."""
    return curves.points, curves.starts, curves.levels, curves.closed


class Bare:
    """The C functions on one mesh, every pointer made beforehand."""

    def __init__(self, vertices, triangles, tags, levels):
        self.arrays = vertices, triangles, tags, levels
        v, t, g, self.levels = (c_void_p(a.ctypes.data) for a in self.arrays)
        self.mesh = len(vertices), v, len(triangles), t, g
        self.level_count, self.status, self.library = len(levels), c_int(), library()
        self.handle = self.construct()

    def construct(self):
        """What the binding does as well: check, then build."""
        handle = c_void_p()
        assert self.library.qelmcheckTagged(*self.mesh, None) == 0
        self.library.qelmctorTagged(*self.mesh, None, byref(self.status), byref(handle))
        return handle

    def construct_and_free(self):
        self.library.qelmfree(self.construct())

    def solve(self, values, result):
        self.library.qelmsolveTagged(self.handle, values, result, byref(self.status))

    def solve_many(self, values, results):
        self.library.qelmsolveManyTagged(self.handle, FIELDS, values, None, results, byref(self.status))

    def curves(self, field):
        record = POINTER(QelmCurves)()
        self.library.qelmcurvesTagged(
            self.handle, field, self.level_count, self.levels, byref(record), byref(self.status)
        )
        self.library.qelmfreecurves(record)


def pairs(mesh, levels, values):
    """{what: {"qelm": call, "bare": call}}. Both free what they made."""
    # Both work on the same system and in the same memory: where that lies may count for some percent.
    bare, system = Bare(*mesh, levels), qelm.MeshSystem(*mesh)
    bare.library.qelmfree(bare.handle)
    bare.handle = system._handle.pointer
    field, many = system.solve(values), np.stack([values] * FIELDS)
    out, outs = np.empty_like(values), np.empty_like(many)
    bare.kept = field, many, values, out, outs
    value_place, many_place, field_place, out_place, outs_place = (c_void_p(a.ctypes.data) for a in (
        values, many, field, out, outs))  # fmt: skip
    return {
        "construct, with the check": {"qelm": lambda: qelm.MeshSystem(*mesh).close(), "bare": bare.construct_and_free},
        "solve, `out=`": {"qelm": lambda: system.solve(values, out=out), "bare": lambda: bare.solve(value_place, out_place)},
        f"solve {FIELDS} fields, `out=`": {
            "qelm": lambda: system.solve(many, out=outs), "bare": lambda: bare.solve_many(many_place, outs_place)},
        f"curves, {len(levels)} level{'s' * (len(levels) > 1)}": {
            "qelm": lambda: len(system.curves(field, levels)), "bare": lambda: bare.curves(field_place)},
        "the same, and all their arrays": {
            "qelm": lambda: with_arrays(system.curves(field, levels)), "bare": lambda: bare.curves(field_place)},
    }  # fmt: skip


def repeated(call, times):
    def run():
        for _ in range(times):
            call()

    return run


def overheads():
    """Rows of microseconds on a mesh of two triangles."""
    vertices = np.array([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], float)
    mesh = vertices, np.array([[0, 1, 2], [0, 2, 3]], np.int32), np.array([1, 0, 1, 0], np.int32)
    times = 2000
    for what, calls in pairs(mesh, np.array([0.3]), np.array([0.0, 0, 1, 0])).items():
        found = medians({name: repeated(call, times) for name, call in calls.items()}, 15)
        micros = {name: 1e6 * seconds / times for name, seconds in found.items()}
        yield [what, f"{micros['qelm']:.1f}", f"{micros['bare']:.1f}", f"{micros['qelm'] - micros['bare']:.1f}"]


def ratios(size):
    """Rows: what, the binding's time over the bare function's."""
    mesh = grid(size)
    field = mesh[0][:, 0] + np.sin(9 * mesh[0][:, 1])
    for what, calls in pairs(mesh, np.linspace(-0.5, 1.5, LEVELS), field).items():
        found = medians(calls, 21 if what.startswith("construct") else 501)
        yield what, found["qelm"] / found["bare"], 1000 * found["qelm"]


def free_block(vertices, triangles, tags):
    """The matrix that is factorised, by cotangents."""
    n, parts = len(vertices), []
    for corner in range(3):
        apex, a, b = (triangles[:, (corner + k) % 3] for k in range(3))
        one, other = vertices[a] - vertices[apex], vertices[b] - vertices[apex]
        weight = (one * other).sum(axis=1) / np.linalg.norm(np.cross(one, other), axis=1) / 2
        parts.append(scipy.sparse.coo_matrix((weight, (a, b)), (n, n)))
    half = sum(part.tocsr() for part in parts)
    off = half + half.T
    matrix = (scipy.sparse.diags(np.asarray(off.sum(axis=1)).ravel()) - off).tocsc()
    free = np.flatnonzero(tags == 0)
    return matrix[free][:, free].tocsc()


def peers(size):
    """Rows: the peers' times over the binding's, factorising and solving."""
    mesh = grid(size)
    matrix, linalg = free_block(*mesh), scipy.sparse.linalg
    symmetric = {"permc_spec": "MMD_AT_PLUS_A", "diag_pivot_thresh": 0.0, "options": {"SymmetricMode": True}}
    builders = {
        "qelm": lambda: qelm.MeshSystem(*mesh),
        "`splu`": lambda: linalg.splu(matrix),
        "`splu`, symmetric mode": lambda: linalg.splu(matrix, **symmetric),
        "`factorized`": lambda: linalg.factorized(matrix),
    }
    build = medians(builders, 3)
    system, right, values = builders["qelm"](), np.ones(matrix.shape[0]), mesh[0][:, 0].copy()
    plain, special, solve = builders["`splu`"](), builders["`splu`, symmetric mode"](), builders["`factorized`"]()
    solvers = {
        "qelm": lambda: system.solve(values),
        "`splu`": lambda: plain.solve(right),
        "`splu`, symmetric mode": lambda: special.solve(right),
        "`factorized`": lambda: solve(right),
    }
    found = medians(solvers, 11)
    for name in list(builders)[1:]:
        yield name, build[name] / build["qelm"], found[name] / found["qelm"]


def speed_up(size):
    """Solves on one thread over the same on two, by the wall's clock."""
    mesh = grid(size)
    system, values = qelm.MeshSystem(*mesh), mesh[0][:, 0].copy()

    def on(threads):
        with ThreadPoolExecutor(threads) as pool:
            list(pool.map(lambda _: system.solve(values), range(24)))

    found = medians({1: lambda: on(1), 2: lambda: on(2)}, 5, time.perf_counter)
    return found[1] / found[2]


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "|".join([" --- "] + [" --: "] * (len(head) - 1)) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


def name_of(size):
    return f"{size // 1000}k"


def main():
    sizes = [int(size) for size in sys.argv[2:]] or [10_000, 100_000]
    # Threads first: after them the process stays on one core.
    faster = speed_up(max(sizes)) if len(os.sched_getaffinity(0)) > 1 else None
    os.sched_setaffinity(0, {max(os.sched_getaffinity(0))})
    against_c = {size: list(ratios(size)) for size in sizes}
    against_scipy = {size: list(peers(size)) for size in sizes}
    print("## From Python\n")
    print("Microseconds of a call on a mesh of two triangles:\n")
    print(table(["", "binding", "bare C function", "overhead"], overheads()))
    print("\nThe binding's time over that of the bare C functions that do the same work (target ≤ 1.02 at 100k):\n")
    rows = [[against_c[sizes[0]][k][0], *(f"{against_c[size][k][1]:.3f}" for size in sizes)]
            for k in range(len(against_c[sizes[0]]))]  # fmt: skip
    print(table(["", *map(name_of, sizes)], rows))
    print("\nscipy's time over the binding's. The binding's construction checks and assembles as well; scipy is given "
          "the assembled matrix:\n")  # fmt: skip
    rows = [[against_scipy[sizes[0]][k][0], *(f"{against_scipy[size][k][j]:.2f}" for j in (1, 2) for size in sizes)]
            for k in range(len(against_scipy[sizes[0]]))]  # fmt: skip
    print(table(["", *(f"{what}, {name_of(size)}" for what in ("factorise", "solve") for size in sizes)], rows))
    if faster:
        print(f"\nSolves on two threads at {name_of(max(sizes))}: {faster:.2f} times as many a second as on one.")


main()
