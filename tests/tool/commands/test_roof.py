"""The demonstration's mesh: written by its script, of good quality, solved as it should be."""

import collections
import math
import subprocess

import built

ROOF = built.SOURCE / "data" / "roof.obj"
SMALLEST_ANGLE = 25  # degrees


def read_roof():
    points, triangles = [], []
    for line in ROOF.read_text().splitlines():
        kind, *rest = line.split()
        if kind == "v":
            points.append(tuple(map(float, rest)))
        elif kind == "f":
            triangles.append(tuple(int(v) - 1 for v in rest))
    return points, triangles


def test_the_script_writes_the_same_bytes_again(tmp_path):
    again = tmp_path / "roof.obj"
    subprocess.run([built.SOURCE / "scripts" / "make-roof", again], check=True)
    assert again.read_bytes() == ROOF.read_bytes()


def angle_and_cotangent(points, a, b, apex):
    u = [points[a][k] - points[apex][k] for k in range(3)]
    v = [points[b][k] - points[apex][k] for k in range(3)]
    dot = sum(x * y for x, y in zip(u, v))
    squares = sum(x * x for x in u) * sum(y * y for y in v)
    sine = math.sqrt(squares - dot * dot)
    return math.degrees(math.atan2(sine, dot)), dot / sine


def test_triangles_are_well_shaped_and_delaunay():
    points, triangles = read_roof()
    weights = collections.defaultdict(float)
    smallest = 180.0
    for t in triangles:
        for k in range(3):
            a, b = t[k - 2], t[k - 1]
            angle, cotangent = angle_and_cotangent(points, a, b, t[k])
            smallest = min(smallest, angle)
            weights[min(a, b), max(a, b)] += cotangent
    negative = [edge for edge, weight in weights.items() if weight < 0]
    assert len(points) >= 20000
    assert smallest > SMALLEST_ANGLE
    assert negative == [], f"{len(negative)} of {len(weights)} edges, the first is {negative[0]}"


def test_it_has_three_boundary_loops(qelm):
    message = qelm.fails(2, "solve", ROOF.as_posix(), "--fix", "loop:3=0")
    assert "the mesh has 3 boundary loops: loop:0 (" in message


def test_its_field_is_exact_at_the_rims_and_strictly_between_inside(qelm):
    summary = qelm.json("solve", ROOF, "--fix", "loop:0=0", "--fix", "loop:1=1", "-o", "field.csv")
    field = qelm.field()
    assert summary["vertices"] == len(field)
    assert field.count(0.0) + field.count(1.0) == summary["fixedVertices"]
    assert [field.count(0.0), field.count(1.0)] == [f["vertices"] for f in summary["fix"]]
    assert min(field) == 0 and max(field) == 1
