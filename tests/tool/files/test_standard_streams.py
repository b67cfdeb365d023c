"""Meshes from the standard input and results to the standard output, in every format."""

import subprocess

import built
import pytest
import shapes

FIX = ["--fix", "vertex:0=0", "--fix", "vertex:2=1"]
SQUARE = shapes.moved(shapes.SQUARE, (1 / 3, 0, 0))
# Line ends and the mark of the end of a text in binary files, where a system would change them.
NASTY = shapes.ply_binary(([(10 / 3, 13.0, 26.0), *shapes.grid(9, 4)[0][1:]], shapes.grid(9, 4)[1]))


def piped(qelm, *arguments, content=b""):
    command = [*built.LAUNCHER, built.program("qelm"), *arguments]
    return subprocess.run(command, cwd=qelm.folder, input=content, capture_output=True)


def test_every_format_can_be_read_from_the_standard_input(qelm):
    qelm.write("m.ply", NASTY)
    runs = [("ply", NASTY)]
    for ending in ("obj", "off", "stl", "vtp", "vtu"):
        qelm.ok("weld", "m.ply", "--tolerance", "0", "-o", f"m.{ending}", "-q")
        runs.append((ending, (qelm.folder / f"m.{ending}").read_bytes()))
    for ending in ("glb", "gltf"):
        qelm.ok("heatmap", "m.ply", *FIX, "-o", f"m.{ending}", "-q")
        runs.append((ending, (qelm.folder / f"m.{ending}").read_bytes()))
    for ending, content in runs:
        done = piped(qelm, "info", "-", "--read-as", ending, "--json", content=content)
        assert done.returncode == 0, done.stderr
        assert b'"triangles": 72' in done.stdout


@pytest.mark.parametrize("kind", ["obj", "off", "off-binary", "ply", "stl", "vtp", "vtu"])
def test_every_mesh_format_can_be_written_to_the_standard_output(qelm, kind):
    qelm.write("m.ply", NASTY)
    qelm.ok("weld", "m.ply", "-o", "out", "--format", kind)
    done = piped(qelm, "weld", "-", "--read-as", "ply", "-o", "-", "--format", kind, "-q", content=NASTY)
    assert done.returncode == 0 and done.stdout == (qelm.folder / "out").read_bytes(), done.stderr


@pytest.mark.parametrize("kind", ["ply", "glb", "gltf", "vtp", "vtu"])
def test_heat_maps_go_to_the_standard_output(qelm, kind):
    qelm.write("m.ply", NASTY)
    qelm.ok("heatmap", "m.ply", *FIX, "-o", f"out.{kind}")
    done = piped(qelm, "heatmap", "m.ply", *FIX, "-o", "-", "--format", kind, "-q")
    assert done.returncode == 0 and done.stdout == (qelm.folder / f"out.{kind}").read_bytes(), done.stderr


@pytest.mark.parametrize("kind", ["obj", "csv", "svg", "dxf", "vtp", "glb", "gltf"])
def test_curves_go_to_the_standard_output(qelm, kind):
    qelm.write("m.ply", NASTY)
    arguments = ["curves", "m.ply", *FIX, "--levels", "3", "-q"]
    qelm.ok(*arguments, "-o", f"out.{kind}")
    done = piped(qelm, *arguments, "-o", "-", "--format", kind)
    assert done.returncode == 0 and done.stdout == (qelm.folder / f"out.{kind}").read_bytes(), done.stderr


def test_what_does_not_fit_is_refused(qelm):
    qelm.write("m.obj", shapes.obj(SQUARE))
    assert "say what it holds, as in --read-as obj" in qelm.fails(2, "info", "-")
    assert "--read-as docx: what is read is .obj" in qelm.fails(2, "info", "-", "--read-as", "docx")
    assert "only the standard input (-) needs it" in qelm.fails(2, "info", "m.obj", "--read-as", "ply")
    assert "-o -: say which kind of file" in qelm.fails(2, "heatmap", "m.obj", *FIX, "-o", "-")
    assert "--format docx: one of ply" in qelm.fails(2, "heatmap", "m.obj", *FIX, "-o", "-", "--format", "docx")
    assert "--format docx: one of obj" in qelm.fails(2, "weld", "m.obj", "-o", "-", "--format", "docx")
    done = piped(qelm, "info", "-", "--read-as", "obj", content=b"v 1 2 x\n")
    assert done.returncode == 3 and b"-.obj:1: " in done.stderr


def test_a_file_of_such_a_name_is_still_a_file(qelm):
    qelm.write("-.obj", shapes.obj(SQUARE))
    assert qelm.json("info", "./-.obj")["triangles"] == 2
