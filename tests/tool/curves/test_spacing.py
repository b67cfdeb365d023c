"""--spacing: curves evenly apart, where that has a closed form and where it has none."""

import json
import math
import os

import pytest

import built
import shapes

SEED = int(os.environ.get("QELM_TEST_SEED", "1"))
SEEDS = range(SEED, SEED + (1 if built.IS_WINDOWS else 4))  # programs start slowly under Wine
np = pytest.importorskip("numpy")


def field(qelm, mesh, function):
    """The mesh as mesh.obj and a field on it as f.csv."""
    qelm.write("mesh.obj", shapes.obj(mesh))
    qelm.write("f.csv", "".join(f"{function(*map(float, p))!r}\n" for p in mesh[0]))
    return ["mesh.obj", "--field", "f.csv"]


def spaced(qelm, words, spacing, *more):
    return qelm.json("curves", *words, "--spacing", spacing, *more, "-o", "c.json")


def areas_and_lengths(mesh, values, level):
    """Area below a level and the level curve's length, triangle by triangle, by another way: clipping."""
    area = length = 0.0
    points = [np.array(p, dtype=float) for p in mesh[0]]
    for face in mesh[1]:
        corners = [(values[v], points[v]) for v in face]
        inside, cut = [], []
        for (u, p), (w, q) in zip(corners, corners[1:] + corners[:1]):
            if u < level:
                inside.append(p)
            if (u < level) != (w < level):
                cut.append(p + (q - p) * ((level - u) / (w - u)))
                inside.append(cut[-1])
        for a, b in zip(inside[1:], inside[2:]):
            area += np.linalg.norm(np.cross(a - inside[0], b - inside[0])) / 2
        if len(cut) == 2:
            length += np.linalg.norm(cut[1] - cut[0])
    return area, length


def test_on_a_strip_it_is_the_distance(qelm):
    words = field(qelm, shapes.grid(10, 3), lambda x, y, z: 2 * x + 5)
    summary = spaced(qelm, words, 1.5)
    assert summary["levels"] == pytest.approx([5 + 3 * k for k in range(1, 7)], rel=1e-12)
    assert summary["spacing"] == pytest.approx({"smallest": 1.5, "largest": 1.5}, rel=1e-12)
    done = qelm.ok("curves", *words, "--spacing", "1.5", "-o", "c.json")
    assert "spacing  neighbouring curves are 1.5 apart" in done.stderr
    # The last level would lie on the end.
    assert spaced(qelm, words, 2)["levels"] == pytest.approx([9, 13, 17, 21], rel=1e-12)


def test_a_value_that_grows_unevenly_still_gives_even_curves(qelm):
    words = field(qelm, shapes.grid(10, 3), lambda x, y, z: x**3)
    for level, k in zip(spaced(qelm, words, 1)["levels"], range(1, 10)):
        assert level == pytest.approx(k**3, rel=1e-12)


def disc(rings, segments, height=0.0, inner=0.0):
    """A disc or cone of radius 1 around the z axis, or what is outside of `inner` of it."""
    points, faces = ([(0.0, 0.0, height)], []) if inner == 0 else ([], [])
    radii = [inner + (1 - inner) * k / rings for k in range(0 if inner else 1, rings + 1)]
    for r in radii:
        points += [(r * math.cos(2 * math.pi * j / segments), r * math.sin(2 * math.pi * j / segments), height * (1 - r)) for j in range(segments)]
    first = 0 if inner else 1
    if not inner:
        faces += [(0, 1 + j, 1 + (j + 1) % segments) for j in range(segments)]
    for k in range(len(radii) - 1):
        for j in range(segments):
            a, b = first + k * segments + j, first + k * segments + (j + 1) % segments
            faces += [(a, b, a + segments), (b, b + segments, a + segments)]
    return points, faces


SEGMENTS = 64
# Between two circles of a polygon's corners the area over the mean length is the radii's difference
# times the cosine of half a segment's angle; the same on a cone, where that is along its side.
FLAT = math.cos(math.pi / SEGMENTS)


@pytest.mark.parametrize("inner", [0.0, 0.25])
def test_on_rings_and_discs_it_is_the_distance_of_circles(qelm, inner):
    words = field(qelm, disc(12, SEGMENTS, inner=inner), lambda x, y, z: math.hypot(x, y))
    summary = spaced(qelm, words, 0.1)
    count = int((1 - inner) * FLAT / 0.1)
    assert summary["levels"] == pytest.approx([inner + 0.1 * (k + 1) / FLAT for k in range(count)], rel=1e-9)
    low, high = summary["spacing"]["smallest"], summary["spacing"]["largest"]
    assert 0.1 == pytest.approx(low, rel=1e-9) and high == pytest.approx(0.1 / FLAT, rel=1e-9)


def test_on_a_cone_it_is_the_distance_along_its_side(qelm):
    height = 2.0
    words = field(qelm, disc(12, SEGMENTS, height=height), lambda x, y, z: math.hypot(x, y))
    side = math.hypot(FLAT, height)  # of a face, from the tip to the middle of its foot
    levels = spaced(qelm, words, 0.25)["levels"]
    assert levels == pytest.approx([0.25 * (k + 1) / side for k in range(int(side / 0.25))], rel=1e-9)


def random_parts(seed):
    """Two parts with random heights: a torus, which is closed, and a sheet; and a random field."""
    random = np.random.default_rng(seed)
    points, faces = shapes.joined(disc(6, 12), shapes.moved(shapes.grid(7, 5), (3, 0, 0)), shapes.moved(shapes.tetrahedron(), (0, 5, 0)))
    points = [tuple(np.array(p) + random.normal(scale=0.1, size=3)) for p in points]
    return (points, faces), random.normal(size=len(points)).tolist()


@pytest.mark.parametrize("seed", SEEDS)
def test_on_any_surface_the_quotient_is_what_was_asked_for(qelm, seed):
    mesh, values = random_parts(seed)
    qelm.write("mesh.obj", shapes.obj(mesh))
    qelm.write("f.csv", "".join(f"{v!r}\n" for v in values))
    spacing = 0.07
    levels = spaced(qelm, ["mesh.obj", "--field", "f.csv"], spacing)["levels"]
    assert len(levels) > 5
    sums = [areas_and_lengths(mesh, values, v) for v in [min(values), *levels]]
    for (area, length), (next_area, next_length) in zip(sums, sums[1:]):
        assert 2 * (next_area - area) / (length + next_length) == pytest.approx(spacing, rel=1e-9), f"seed {seed}"
    whole = areas_and_lengths(mesh, values, max(values) + 1)[0]
    assert 2 * (whole - sums[-1][0]) / sums[-1][1] <= 2 * spacing or len(levels) > 1


def test_a_part_with_one_value_does_not_count(qelm):
    """No curve can pass through it: those before and after it are spaced as if it were not there."""
    mesh = shapes.grid(10, 1)
    words = field(qelm, mesh, lambda x, y, z: min(x, 4) if x < 7 else x - 3)
    levels = spaced(qelm, words, 1)["levels"]
    assert levels == pytest.approx([1, 2, 3, 4, 5, 6], rel=1e-12)


def test_what_is_held_at_an_end_value_is_no_band(qelm):
    """Flat pieces at the smallest and at the largest value have no level in them."""
    words = field(qelm, shapes.grid(10, 1), lambda x, y, z: min(max(x, 3), 7))
    assert spaced(qelm, words, 1)["levels"] == pytest.approx([4, 5, 6], rel=1e-12)


def test_levels_go_through_places_too_and_into_pages(qelm):
    words = field(qelm, shapes.grid(10, 3), lambda x, y, z: x)
    summary = spaced(qelm, words, 4, "--through", "near:5.5,1,0")
    assert summary["levels"] == pytest.approx([4, 5.5, 8])
    assert summary["spacing"] == pytest.approx({"smallest": 1.5, "largest": 2.5})
    if built.HAS_VIEW_PAGE:
        qelm.ok("view", *words, "--spacing", "4", "-o", "p.html")
        assert '"levels":[4.0,8.0]' in (qelm.folder / "p.html").read_text(encoding="utf-8")


def test_vertices_in_no_triangle_are_passed_over(qelm):
    points, faces = shapes.grid(10, 3)
    words = field(qelm, ([*points, (99, 0, 0)], faces), lambda x, y, z: x)
    assert spaced(qelm, words, 4)["levels"] == pytest.approx([4, 8])


@pytest.mark.parametrize("given, message", {
    ("--spacing", "0"): "--spacing 0: a distance larger than 0 is needed",
    ("--spacing", "nan"): "--spacing nan: a distance larger than 0 is needed",
    ("--spacing", "1m"): "--spacing 1m: a distance larger than 0 is needed",
    ("--spacing", "1", "--levels", "3"): "give only one of --levels, --at, --every and --spacing",
    ("--spacing", "1", "--round"): "--round is for --levels",
    ("--spacing", "10"): "mesh.obj: --spacing 10: the surface is no wider than that between the field's ends",
    ("--spacing", "1e-5"): "mesh.obj: --spacing 1e-05: more than 10000 levels; take a larger spacing",
}.items())  # fmt: skip
def test_wrong_spacings_are_refused(qelm, given, message):
    words = field(qelm, shapes.grid(10, 3), lambda x, y, z: x)
    assert message in qelm.fails(2, "curves", *words, *given, "-o", "c.json")


def test_a_constant_field_has_no_levels(qelm):
    words = field(qelm, shapes.grid(10, 3), lambda x, y, z: 3.0)
    assert "the field is 3 everywhere" in qelm.fails(2, "curves", *words, "--spacing", "1", "-o", "c.json")
