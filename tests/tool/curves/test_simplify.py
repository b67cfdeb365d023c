"""--simplify: fewer points, near the ones before, and nothing that crosses."""

import json
import math
import os

import pytest

import built
import shapes
from test_spacing import disc, field

np = pytest.importorskip("numpy")

SEED = int(os.environ.get("QELM_TEST_SEED", "1"))
SEEDS = range(SEED, SEED + (1 if built.IS_WINDOWS else 4))  # programs start slowly under Wine


def curves_of(qelm, words, *more):
    qelm.ok("curves", *words, *more, "-o", "c.json")
    return [(c["value"], c["closed"], np.array(c["points"])) for c in json.loads((qelm.folder / "c.json").read_text())["curves"]]


def segments_of(curve):
    _, closed, points = curve
    ends = np.roll(points, -1, axis=0) if closed else points[1:]
    return points[: len(ends)], ends


def distances_to(points, curve):
    """The distance from each point to the curve."""
    a, b = segments_of(curve)
    along = b - a
    squares = np.maximum((along * along).sum(axis=1), 1e-300)
    t = np.clip(((points[:, None] - a) * along).sum(axis=2) / squares, 0, 1)
    return np.linalg.norm(a + t[..., None] * along - points[:, None], axis=2).min(axis=1)


def crossings(curves):
    """Pairs of segments in the plane that have a point in common, but for neighbours of one curve."""
    starts, ends, names = [], [], []
    for c, curve in enumerate(curves):
        a, b = segments_of(curve)
        starts += a[:, :2].tolist()
        ends += b[:, :2].tolist()
        names += [(c, k, len(a), curve[1]) for k in range(len(a))]
    a, b = np.array(starts), np.array(ends)

    def side(p, q, r):
        return (q[..., 0] - p[..., 0]) * (r[..., 1] - p[..., 1]) - (q[..., 1] - p[..., 1]) * (r[..., 0] - p[..., 0])

    p, q, r, s = a[:, None], b[:, None], a[None], b[None]
    meet = (side(p, q, r) * side(p, q, s) <= 0) & (side(r, s, p) * side(r, s, q) <= 0)
    found = []
    for i, j in zip(*np.nonzero(np.triu(meet, 1))):
        (c, k, n, closed), (d, l, _, _) = names[i], names[j]
        if c == d and (l - k == 1 or (closed and k == 0 and l == n - 1)):
            continue
        found.append((names[i], names[j]))
    return found


def random_sheet(seed, size=14):
    """A flat sheet of random triangles (a jittered grid) and a rough random field on it."""
    random = np.random.default_rng(seed)
    points, faces = shapes.grid(size, size)
    points = [(x + u, y + v, 0.0) for (x, y, _), (u, v) in zip(points, random.uniform(-0.25, 0.25, (len(points), 2)))]
    waves = random.normal(size=(6, 3))
    values = [sum(math.sin(0.35 * (a * x + b * y) + c) for a, b, c in waves) + random.normal(scale=0.1) for x, y, _ in points]
    return (points, faces), values


def given(qelm, mesh, values):
    qelm.write("mesh.obj", shapes.obj(mesh))
    qelm.write("f.csv", "".join(f"{v!r}\n" for v in values))
    return ["mesh.obj", "--field", "f.csv"]


@pytest.mark.parametrize("tolerance", [0.02, 0.3, 50])
@pytest.mark.parametrize("seed", SEEDS)
def test_on_random_sheets_nothing_crosses_and_what_goes_was_near(qelm, seed, tolerance):
    words = given(qelm, *random_sheet(seed))
    before = curves_of(qelm, words, "--levels", "12")
    after = curves_of(qelm, words, "--levels", "12", "--simplify", str(tolerance))
    assert crossings(before) == [], "the curves themselves are simple"
    assert crossings(after) == [], f"seed {seed}"
    assert [curve[:2] for curve in after] == [curve[:2] for curve in before]
    for old, new in zip(before, after):
        assert {tuple(p) for p in new[2]} <= {tuple(p) for p in old[2]}, "points that stay keep their bits"
        assert len(new[2]) >= (3 if new[1] else 2)
        if not new[1]:
            assert (new[2][[0, -1]] == old[2][[0, -1]]).all()
        assert distances_to(old[2], new).max() < tolerance
    assert sum(len(c[2]) for c in after) < 0.9 * sum(len(c[2]) for c in before)


def test_a_straight_curve_keeps_its_ends(qelm):
    words = field(qelm, shapes.grid(10, 8), lambda x, y, z: x + 0.25)
    (curve,) = curves_of(qelm, words, "--at", "5", "--simplify", "1e-9")
    assert len(curve[2]) == 2 and abs(curve[2][0] - curve[2][1]).max() == pytest.approx(8)


def test_a_circle_has_as_few_points_as_its_deviation_asks_for(qelm):
    words = field(qelm, disc(20, 720), lambda x, y, z: math.hypot(x, y))
    (before,) = curves_of(qelm, words, "--at", "0.99")
    counts = {}
    for tolerance in (1e-4, 1e-3, 1e-2):
        (after,) = curves_of(qelm, words, "--at", "0.99", "--simplify", str(tolerance))
        assert after[1] and distances_to(before[2], after).max() < tolerance
        counts[tolerance] = len(after[2])
        # A chord of height h spans the angle 2 acos(1 - h); halving takes up to twice as many.
        least = math.pi / math.acos(1 - tolerance / 0.99)
        assert counts[tolerance] <= 2 * least + 20
    assert counts[1e-4] > counts[1e-3] > counts[1e-2]


def test_curves_close_together_keep_apart(qelm):
    """A wave of height 1 whose neighbours are 0.02 away: simplified alone each would be a line."""
    points, faces = shapes.grid(80, 8)
    points = [(x / 4, y / 4, 0.0) for x, y, _ in points]
    values = [y - 0.5 * math.sin(x) for x, y, _ in points]
    words = given(qelm, (points, faces), values)
    after = curves_of(qelm, words, "--at", "0.98,1.0,1.02", "--simplify", "5")
    assert crossings(after) == []
    (alone,) = curves_of(qelm, words, "--at", "1.0", "--simplify", "5")
    assert len(alone[2]) < 12 < min(len(c[2]) for c in after)


def test_on_a_folded_surface_sheets_keep_apart(qelm):
    """Two sheets 0.1 apart with curves over each other: every deviation stays below half of that."""
    random = np.random.default_rng(SEED)
    points, faces = shapes.grid(40, 6)
    wavy = [(x, y, 0.0, x + 3 * math.sin(y) + random.normal(scale=0.05)) for x, y, _ in points]
    both = shapes.joined(([p[:3] for p in wavy], faces), ([(x, y, 0.1) for x, y, *_ in wavy], faces))
    words = given(qelm, both, [p[3] for p in wavy] * 2)
    before = curves_of(qelm, words, "--levels", "5")
    after = curves_of(qelm, words, "--levels", "5", "--simplify", "9")
    for old, new in zip(before, after):
        assert distances_to(old[2], new).max() < 0.05


def test_the_summary_says_how_many_points_went(qelm):
    words = field(qelm, shapes.grid(10, 8), lambda x, y, z: x + 0.25)
    summary = qelm.json("curves", *words, "--at", "5", "--simplify", "0.1", "-o", "c.json")
    assert (summary["points"], summary["pointsBefore"]) == (2, 17)
    done = qelm.ok("curves", *words, "--at", "5", "--simplify", "0.1", "-o", "c.json")
    assert "simplify 15 of 17 points left out" in done.stderr
    assert "pointsBefore" not in qelm.json("curves", *words, "--at", "5", "-o", "c.json")


@pytest.mark.parametrize("text", ["0", "-1", "inf", "1mm", "nan"])
def test_wrong_distances_are_refused(qelm, text):
    message = qelm.fails(2, "curves", "none.obj", "--fix", "xmin=0", f"--simplify={text}", "-o", "c.json")
    assert f"--simplify {text}: a distance larger than 0 is needed" in message
