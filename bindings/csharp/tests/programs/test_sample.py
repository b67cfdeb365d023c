"""The sample, run as its reader would."""

import math
import re

import pytest
from built import BUILD, SOURCE, program, run

SAMPLE = BUILD / "csharp/RimCurves.exe"


def annulus(rings=8, spokes=48):
    """A flat ring between the radii 1 and 4, radii in geometric steps."""
    lines = []
    for ring in range(rings + 1):
        for spoke in range(spokes):
            radius, angle = 4 ** (ring / rings), 2 * math.pi * spoke / spokes
            lines.append(f"v {radius * math.cos(angle)!r} {radius * math.sin(angle)!r} 0")
    for ring in range(rings):
        for spoke in range(spokes):
            a, b = ring * spokes + spoke, ring * spokes + (spoke + 1) % spokes
            # Quadrilaterals: the sample cuts them.
            lines.append(f"f {a + 1} {a + spokes + 1}/1 {b + spokes + 1}//2 {b + 1}/1/1")
    return "\n".join(lines) + "\n"


def read_curves(path):
    vertices, curves = [], []
    for line in path.read_text().splitlines():
        kind, *rest = line.split()
        if kind == "v":
            vertices.append(tuple(map(float, rest)))
        elif kind == "l":
            curves.append([vertices[int(index) - 1] for index in rest])
    return curves


def test_level_curves_of_a_ring_are_circles_at_the_radii_of_the_logarithm(mono):
    (mono.folder / "ring.obj").write_text(annulus())
    code, output, errors = mono.run(SAMPLE, "ring.obj", "curves.obj", 3)
    assert (code, errors) == (0, "")
    printed = re.findall(r"^level (\S+): (closed|open), (\d+) points, length (\S+)$", output, re.M)
    assert [(level, kind) for level, kind, *_ in printed] == [
        ("0.25", "closed"), ("0.5", "closed"), ("0.75", "closed")]
    curves = read_curves(mono.folder / "curves.obj")
    assert len(curves) == 3
    for (level, _, points, length), curve in zip(printed, curves):
        assert curve[0] == curve[-1], "closed"
        assert len(curve) == int(points) + 1
        # The field is 1 - log4(r); the straight edges of the mesh cost less than 2 %.
        radius = 4 ** (1 - float(level))
        for x, y, _ in curve:
            assert math.hypot(x, y) == pytest.approx(radius, rel=0.02)
        assert float(length) == pytest.approx(2 * math.pi * radius, rel=0.02)


def test_the_roof_of_the_demonstration(mono):
    code, output, errors = mono.run(SAMPLE, SOURCE / "data/roof.obj", "curves.obj")
    assert (code, errors) == (0, "")
    curves = read_curves(mono.folder / "curves.obj")
    assert len(curves) == len(output.splitlines()) >= 9


@pytest.mark.skipif(not program("qelm").exists(), reason="the command-line tool was not built")
def test_its_curves_are_those_of_the_command_line_tool_bit_for_bit(mono):
    roof = SOURCE / "data/roof.obj"
    assert mono.run(SAMPLE, roof, "managed.obj", 3)[0] == 0
    run(program("qelm"), "curves", roof, "--fix", "loop:0=0", "--fix", "loop:1=1",
        "--at", "0.25,0.5,0.75", "-o", mono.folder / "native.obj")
    managed = read_curves(mono.folder / "managed.obj")
    assert len(managed) == 3
    assert managed == read_curves(mono.folder / "native.obj")


def test_the_readme_shows_what_the_sample_prints(mono):
    code, output, _ = mono.run(SAMPLE, SOURCE / "data/roof.obj", "curves.obj", 3)
    assert code == 0
    assert output in (SOURCE / "bindings/csharp/README.md").read_text()


@pytest.mark.parametrize(
    "text, words",
    [
        ("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n", "1 boundary loops, two are needed"),
        ("v 0 0 0\nv 1 x 0\n", "mesh.obj:2:"),
    ],
)
def test_meshes_that_cannot_be_used_end_with_one_line_and_code_1(mono, text, words):
    (mono.folder / "mesh.obj").write_text(text)
    code, output, errors = mono.run(SAMPLE, "mesh.obj", "curves.obj")
    assert (code, output) == (1, "")
    assert errors.startswith("RimCurves: ") and words in errors and errors.count("\n") == 1
    assert not (mono.folder / "curves.obj").exists()


def test_wrong_arguments_end_with_the_usage_and_code_2(mono):
    for arguments in ([], ["a"], ["a", "b", "0"], ["a", "b", "c", "d"]):
        code, _, errors = mono.run(SAMPLE, *arguments)
        assert code == 2 and errors.startswith("usage: ")
