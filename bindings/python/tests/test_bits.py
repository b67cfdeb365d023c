"""The same bits as a C program's and as the command-line tool's."""

import csv
import json

import numpy as np
import pytest
import qelm
from built import SOURCE, program, run
from meshes import bits, grid

RNG = np.random.default_rng(4)


def answers_of_c(folder, vertices, triangles, tags, values, load):
    """What the C interface gives; see tests/native/native_answers.c."""
    with open(folder / "mesh", "wb") as file:
        file.write(np.array([len(vertices), len(triangles)], np.int32).tobytes())
        for array in (vertices, triangles, tags, values, load):
            file.write(array.tobytes())
    run(program("native_answers"), folder / "mesh", folder / "answers")
    numbers = np.fromfile(folder / "answers")
    n = len(vertices)
    field, loaded, rest = numbers[:n], numbers[n : 2 * n], numbers[2 * n :]
    curves, at = [], 1
    for _ in range(int(rest[0])):
        level, closed, count = rest[at : at + 3].astype(int)
        curves.append((level, bool(closed), rest[at + 3 : at + 3 + 3 * count].reshape(-1, 3)))
        at += 3 + 3 * count
    assert at == len(rest)
    return field, loaded, curves


@pytest.mark.parametrize("mesh", [grid(2, 3), grid(30, 20), grid(9, 40)], ids=["small", "wide", "high"])
def test_fields_and_curves_are_those_of_a_c_program(tmp_path, mesh):
    vertices, triangles, tags = mesh
    values, load = RNG.uniform(0, 4, (2, len(vertices)))
    field, loaded, curves = answers_of_c(tmp_path, vertices, triangles, tags, values, load)
    system = qelm.MeshSystem(vertices, triangles, tags)
    assert (bits(system.solve(values)) == bits(field)).all()
    assert (bits(system.solve(values, load)) == bits(loaded)).all()
    found = system.curves(field, [0.25, 1.5, 3.0])
    assert len(found) == len(curves)
    for k, (level, closed, points) in enumerate(curves):
        assert (found.level_indices[k], found[k].closed) == (level, closed)
        assert (bits(found[k].points) == bits(points)).all()


def test_many_fields_are_the_bits_of_each_alone():
    vertices, triangles, tags = grid(25, 17)
    system = qelm.MeshSystem(vertices, triangles, tags)
    values, loads = RNG.uniform(-1, 1, (2, 11, len(vertices)))
    together = system.solve(values, loads)
    for k in range(11):
        assert (bits(together[k]) == bits(system.solve(values[k], loads[k]))).all()
    assert (bits(system.solve(values)[4]) == bits(system.solve(values[4]))).all()


def read_obj(path):
    lines = [line.split() for line in path.read_text().splitlines()]
    vertices = np.array([line[1:4] for line in lines if line and line[0] == "v"], float)
    faces = [[int(word.split("/")[0]) - 1 for word in line[1:]] for line in lines if line and line[0] == "f"]
    return vertices, np.array([face[:3] for face in faces])


@pytest.fixture(scope="module")
def roof():
    """The mesh of data/roof.obj, and the field that the tool computes on it."""
    return read_obj(SOURCE / "data/roof.obj")


def test_fields_and_curves_on_the_roof_are_those_of_the_tool(tmp_path, roof):
    options = ["--fix", "loop:0=0", "--fix", "loop:1=1"]
    mesh = SOURCE / "data/roof.obj"
    run(program("qelm"), "solve", mesh, *options, "-o", tmp_path / "field.csv", "-q")
    run(program("qelm"), "curves", mesh, *options, "--levels", "12", "-o", tmp_path / "curves.json", "-q")
    rows = list(csv.DictReader(open(tmp_path / "field.csv")))
    field = np.array([float(row["value"]) for row in rows])
    vertices, triangles = roof
    fixed = np.flatnonzero((field == 0) | (field == 1))
    system = qelm.MeshSystem.from_fixed(vertices, triangles, fixed)
    assert (bits(system.solve(field)) == bits(field)).all()
    told = json.loads((tmp_path / "curves.json").read_text())["curves"]
    found = system.curves(field, 12)
    assert len(told) == len(found) >= 12
    for one, other in zip(told, found):
        assert (one["value"], one["closed"]) == (other.level, other.closed)
        assert (bits(np.array(one["points"])) == bits(other.points)).all()
