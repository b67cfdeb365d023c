"""The pages that scripts/bench makes of measurements: docs/performance.md and docs/every-ratio.md.

Measurements come as read_results() of scripts/bench gives them, one dictionary for each process, the newest first:
{"stage/contender": {(surface, order, size): {"ms", "peak_bytes", "made"}}}
"""

import math
import pathlib
import re
import statistics

SIZES = [10_000, 100_000, 300_000, 1_000_000]
# At 300 thousand vertices only what grows fastest is measured on all surfaces.
WITH_300K = ["construct", "solve"]
# Where Eigen's own loop may be the better choice; construct alone.
SMALL_SIZES = [1_000, 3_000, 10_000, 30_000]
ORDERS = ["natural", "shuffled"]
SURFACES = ["grid", "sphere", "noisy"]
# Between and beyond SIZES, for the exponents alone; of these stages only.
MORE_SIZES = [30_000, 300_000, 3_000_000]
GROWING = {
    "construct/assembly": "construct without Eigen's compute",
    "construct/qelm": "construct",
    "solve/qelm": "one solve",
    "levels_1/isolines": "isolines, 1 level",
    "levels_10/isolines": "isolines, 10 levels",
    "levels_1/curves": "curves, 1 level",
    "levels_10/curves": "curves, 10 levels",
    "weld_soup/qelm": "weld, over soup triangles",
    "export/qelm": "heat-map export",
}
# (what, one contender, the other, target): the first one's figure over the second's.
TIMES = [
    ("construct without compute / plain triplets", "construct/assembly", "construct/plain", "≤ 0.33"),
    ("construct without compute / Eigen's compute", "construct/assembly", "construct/eigen", "≤ 0.10 at 100k"),
    ("robust without compute / without compute", "construct/robust", "construct/assembly", "≤ 3 where nothing flips"),
    ("robust without compute, sheared / without compute", "construct/robust_sheared", "construct/assembly", "≤ 5"),
    ("prediction / construct", "construct/predicted", "construct/qelm", ""),
    ("construct / Eigen's compute", "construct/qelm", "construct/eigen", "≤ 0.15 – 0.28 at 1M"),
    ("construct / CHOLMOD simplicial", "construct/qelm", "construct/cholmod_simplicial", ""),
    ("construct / CHOLMOD supernodal", "construct/qelm", "construct/cholmod_supernodal", "≤ 1.4 at 100k, 1.5 at 1M"),
    ("construct / CHOLMOD supernodal, own order", "construct/qelm", "construct/cholmod_supernodal_own_order", ""),
    ("solve / Eigen's solve", "solve/qelm", "solve/eigen", "≤ 1.02"),
    ("solve with load / Eigen's solve", "solve/qelm_load", "solve/eigen_load", "≤ 1.02"),
    ("the same two, with the default heap", "default-heap solve/qelm", "default-heap solve/eigen", "≤ 1.02"),
    ("", "default-heap solve/qelm_load", "default-heap solve/eigen_load", "≤ 1.02"),
    ("8 fields together / one by one", "solve/together", "solve/one_by_one", "≤ 0.33 from 100k"),
    ("solve / CHOLMOD simplicial", "solve/qelm", "solve/cholmod_simplicial", "≤ 1.0 at 1M"),
    ("solve with load / CHOLMOD simplicial", "solve/qelm_load", "solve/cholmod_simplicial_load", ""),
    ("solve / CHOLMOD simplicial, own order", "solve/qelm", "solve/cholmod_simplicial_own_order", ""),
    ("solve with load / CHOLMOD simplicial, own order", "solve/qelm_load", "solve/cholmod_simplicial_own_order_load", ""),
    ("solve / CHOLMOD supernodal", "solve/qelm", "solve/cholmod_supernodal", ""),
    ("solve with load / CHOLMOD supernodal", "solve/qelm_load", "solve/cholmod_supernodal_load", ""),
    ("isolines, 100 levels with few segments / 1 level", "levels_few/isolines_100", "levels_few/isolines_1", "≤ 3"),
    ("isolines / plain, 1 level", "levels_1/isolines", "levels_1/plain", ""),
    ("isolines / plain, 10 levels", "levels_10/isolines", "levels_10/plain", ""),
    ("isolines / plain, 100 levels", "levels_100/isolines", "levels_100/plain", "≤ 0.1"),
    ("isolines / VTK contour filter, 1 level", "levels_1/isolines", "levels_1/vtk", "< 1"),
    ("isolines / VTK contour filter, 10 levels", "levels_10/isolines", "levels_10/vtk", "< 1"),
    ("isolines / VTK contour filter, 100 levels", "levels_100/isolines", "levels_100/vtk", "< 1"),
    ("curves / isolines, 1 level", "levels_1/curves", "levels_1/isolines", "≤ 2"),
    ("curves / isolines, 10 levels", "levels_10/curves", "levels_10/isolines", "≤ 2"),
    ("curves / isolines, 100 levels", "levels_100/curves", "levels_100/isolines", "≤ 2"),
    ("curves / VTK contour + stripper, 1 level", "levels_1/curves", "levels_1/vtk_joined", "≤ 0.2"),
    ("curves / VTK contour + stripper, 10 levels", "levels_10/curves", "levels_10/vtk_joined", "≤ 0.2"),
    ("curves / VTK contour + stripper, 100 levels", "levels_100/curves", "levels_100/vtk_joined", "≤ 0.2"),
    ("weld, soup / plain", "weld_soup/qelm", "weld_soup/plain", "≤ 0.25 at 1M"),
    ("weld, soup / VTK clean", "weld_soup/qelm", "weld_soup/vtk", "< 1"),
    ("weld, soup / VTK static clean", "weld_soup/qelm", "weld_soup/vtk_static", "< 1"),
    ("weld, soup / CGAL's merging of equal points", "weld_soup/qelm", "weld_soup/cgal_equal", "< 1"),
    ("weld, soup / CGAL's grid simplification", "weld_soup/qelm", "weld_soup/cgal_grid", "< 1"),
    ("weld, noisy soup / plain", "weld_noisy_soup/qelm", "weld_noisy_soup/plain", "≤ 0.25 at 1M"),
    ("weld, noisy soup / VTK clean", "weld_noisy_soup/qelm", "weld_noisy_soup/vtk", "< 1"),
    ("weld, noisy soup / VTK static clean", "weld_noisy_soup/qelm", "weld_noisy_soup/vtk_static", "< 1"),
    ("weld, noisy soup / CGAL's grid simplification", "weld_noisy_soup/qelm", "weld_noisy_soup/cgal_grid", "< 1"),
    ("weld, 1 neighbour on average / plain", "weld_scattered_1/qelm", "weld_scattered_1/plain", ""),
    ("weld, 100 neighbours on average / plain", "weld_scattered_100/qelm", "weld_scattered_100/plain", ""),
    ("heat-map export / plain", "export/qelm", "export/plain", "≤ 0.1"),
    ("heat-map export / to_chars", "export/qelm", "export/to_chars", "≤ 2"),
]
MEMORY = [
    ("construct / the same with Eigen's compute", "construct/qelm", "construct/eigen+construct/kept", "≤ 1.20"),
    ("construct without compute / plain triplets", "construct/assembly", "construct/plain", ""),
    ("prediction / construct", "construct/predicted", "construct/qelm", ""),
    ("solve / Eigen's solve", "solve/qelm", "solve/eigen", ""),
    ("isolines / plain, 100 levels", "levels_100/isolines", "levels_100/plain", ""),
    ("isolines / VTK contour filter, 100 levels", "levels_100/isolines", "levels_100/vtk", ""),
    ("curves / VTK contour + stripper, 100 levels", "levels_100/curves", "levels_100/vtk_joined", ""),
    ("weld, soup / plain", "weld_soup/qelm", "weld_soup/plain", ""),
    ("weld, soup / VTK static clean", "weld_soup/qelm", "weld_soup/vtk_static", ""),
    ("heat-map export / plain", "export/qelm", "export/plain", ""),
]


def short(size):
    return f"{size // 1_000_000}M" if size >= 1_000_000 else f"{size // 1000}k"


def digits(x):
    return f"{x:.0f}" if x >= 100 else f"{x:.1f}" if x >= 10 else f"{x:.3f}" if x < 0.1 else f"{x:.2f}"


def figures(results, contenders, case, key):
    """One for each of the contenders, the sum over "one+another", all from the newest process
    that measured them all; None if there is none."""
    for process in results:
        found = [[process.get(c, {}).get(case, {}).get(key) for c in together.split("+")]
                 for together in contenders]
        if not any(None in parts for parts in found):
            return [sum(parts) for parts in found]
    return None


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |",
             "|" + "|".join(" --- " if i == 0 else " --: " for i in range(len(head))) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


def ratio_table(results, pairs, key, sizes):
    """Rows: pairs. Columns: sizes; in each cell the smallest and largest ratio over
    surfaces and orders, grids in natural order apart."""
    def cells(one, other, cases):
        ratios = []
        for case in cases:
            found = figures(results, (one, other), case, key)
            if found and found[1]:
                ratios.append(found[0] / found[1])
        if not ratios:
            return "–"
        low, high = digits(min(ratios)), digits(max(ratios))
        return low if low == high else f"{low} – {high}"

    rows = []
    for what, one, other, target in pairs:
        row = [what, target]
        for order in ORDERS:
            row += [cells(one, other, [(s, order, size) for s in SURFACES]) for size in sizes]
        if any(cell != "–" for cell in row[2:]):
            rows.append(row)
    head = ["", "target"] + [f"{short(size)} {order}" for order in ORDERS for size in sizes]
    return table(head, rows)


def every_ratio_table(results, sizes):
    rows = []
    for what, one, other, _ in TIMES:
        for surface in SURFACES:
            for order in ORDERS:
                row = [what, f"{surface}, {order}"]
                for size in sizes:
                    found = figures(results, (one, other), (surface, order, size), "ms")
                    row.append(digits(found[0] / found[1]) if found else "–")
                if any(cell != "–" for cell in row[2:]):
                    rows.append(row)
    return table(["", "surface, order"] + [short(size) for size in sizes], rows)


def exponent_table(results):
    rows = []
    for contender, what in GROWING.items():
        found = {size: figures(results, [contender], ("grid", "natural", size), "ms")
                 for size in SIZES + MORE_SIZES}
        points = sorted((size, ms[0]) for size, ms in found.items() if ms)
        if len(points) < 3:
            continue
        slope, _ = statistics.linear_regression([math.log(n) for n, _ in points],
                                                [math.log(ms) for _, ms in points])
        rows.append([what, f"{slope:.2f}", f"{short(points[0][0])} – {short(points[-1][0])}",
                     digits(points[-1][1]) + " ms"])
    return table(["", "exponent", "vertices", "time at the largest"], rows)


def share_table(results, size):
    """Where construct's time goes: what is measured apart, in the same process, and the rest."""
    rows = []
    for surface in SURFACES:
        for order in ORDERS:
            found = figures(results, ["construct/qelm", "construct/assembly", "construct/eigen_ordering"],
                            (surface, order, size), "ms")
            if found:
                whole, assembly, ordering = found
                rows.append([f"{surface}, {order}", f"{100 * assembly / whole:.1f} %",
                             f"{100 * (1 - assembly / whole):.1f} %", f"{100 * ordering / whole:.1f} %",
                             f"{whole / 1000:.2f} s"])
    return table(["", "assembly", "factorisation", "Eigen's ordering alone would be", "construct"], rows)


def time_table(results):
    """Absolute times, for one processor."""
    rows = []
    for size in SIZES:
        for surface in SURFACES:
            row = [short(size), surface]
            for contender in ("construct/qelm", "solve/qelm", "levels_100/curves"):
                found = figures(results, [contender], (surface, "natural", size), "ms")
                row.append(f"{digits(found[0])} ms" if found else "–")
            peak = figures(results, ["construct/qelm"], (surface, "natural", size), "peak_bytes")
            row.append(f"{digits(peak[0] / 1e6)} MB" if peak else "–")
            if any(cell != "–" for cell in row[2:]):
                rows.append(row)
    return table(["vertices", "", "construct", "one solve", "100 curves", "peak memory"], rows)


def bytes_table(results, sizes):
    """Bytes for each triangle that assembly holds besides its results."""
    rows = []
    for surface in SURFACES:
        for order in ORDERS:
            row = [f"{surface}, {order}"]
            for size in sizes:
                case = (surface, order, size)
                found = figures(results, ("construct/assembly", "construct/kept"), case, "peak_bytes")
                made = figures(results, ["construct/kept"], case, "made")
                row.append(digits((found[0] - found[1]) / made[0]) if found and made else "–")
            if any(cell != "–" for cell in row[1:]):
                rows.append(row)
    return table(["", *[short(size) for size in sizes]], rows)


def processor():
    """By name and numbers: rented machines say "Xeon" of very different ones."""
    about = dict(re.findall(r"^(.+?)\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.M))
    if "model name" not in about:
        return "unknown processor"
    return (f"{about['model name']} (family {about['cpu family']}, model {about['model']}, "
            f"{float(about['cpu MHz']) / 1000:.1f} GHz)")


def small_table(results):
    pair = [("construct / Eigen's compute", "construct/qelm", "construct/eigen", "≤ 1.00 and assembly"),
            ("construct without compute / Eigen's compute", "construct/assembly", "construct/eigen", "")]
    return ratio_table(results, pair, "ms", SMALL_SIZES)


def page(results, sizes, sections):
    """docs/performance.md but for what was tried. `sections` are the texts of other benchmarks, which come last."""
    others = "\n".join(sections)
    return f"""# Performance

## How long for N vertices

Processor time on one core of an {processor()}, vertices numbered along rows; another run on another
day differs by a fifth.

{time_table(results)}

## Ratios

Printed by `scripts/bench` on one core of an {processor()}. Ratios are of processor
times, medians over runs in turn in one process; below 1, the first one named is
faster. Three surfaces (a flat grid, a sphere, a torus with every vertex moved at
random), vertices numbered along rows (natural) or at random (shuffled); sizes are
numbers of vertices, for welding numbers of soup triangles. *Plain* is the word-for-word
form that the tests compare with bit for bit. Freed memory is kept by the process, so
that no contender pays for fresh pages. CHOLMOD, VTK and CGAL are Debian's, on one thread.
CHOLMOD is measured under AMD, as the library and Eigen, for the same work, and under the order
that it chooses itself: on closed surfaces METIS, whose factors have two thirds of the entries. Of
CGAL's ways to merge points one takes equal ones only, the other one point for each cell of a
grid as fine as the tolerance, and no triangles.

Smallest and largest over the three surfaces; [each of them](every-ratio.md) has a page of its own.

{ratio_table(results, TIMES, "ms", sizes)}

Small meshes, where Eigen's own loop is used below some 15 thousand vertices:

{small_table(results)}

## Peak memory

The most memory from the heap that a call held at once beyond what was there before
it, its results included, as ratios in the same way.

{ratio_table(results, MEMORY, "peak_bytes", sizes)}

Bytes for each triangle that construction holds at its highest point before Eigen's
compute, besides what the handle keeps:

{bytes_table(results, sizes)}

## How time grows

Exponents fitted to the time over the number of vertices, on grids in natural order.

{exponent_table(results)}

## Where construction's time goes at {short(sizes[-1])} vertices

{share_table(results, sizes[-1])}

{others}"""


def every_ratio_page(results, sizes):
    return f"""# Every ratio

Printed by `scripts/bench` on one core of an {processor()}; [performance](performance.md) sums it up
and says what is measured.

{every_ratio_table(results, sizes)}
"""
