"""Results appear complete or not at all."""

import os
import pathlib

import pytest

import built
import shapes

FIX = ["--fix", "vertex:0=1"]
posix_only = pytest.mark.skipif(built.IS_WINDOWS, reason="devices, links and permissions of POSIX")


@pytest.fixture
def square(qelm):
    return qelm.write("square.obj", shapes.obj(shapes.SQUARE))


def test_an_existing_file_is_replaced(qelm, square):
    qelm.write("field.csv", "x" * 10000)
    qelm.ok("solve", square, *FIX, "-o", "field.csv")
    assert qelm.field() == pytest.approx([1, 1, 1, 1])


def test_a_failed_run_leaves_an_existing_file_as_it_was(qelm, square):
    qelm.write("field.csv", "precious")
    qelm.fails(2, "solve", square, "--fix", "vertex:9=1", "-o", "field.csv")
    assert (qelm.folder / "field.csv").read_text() == "precious"


def test_a_missing_folder_is_named_before_anything_is_computed(qelm, square):
    message = qelm.fails(1, "solve", "none.obj", *FIX, "-o", "nowhere/field.csv")
    assert "nowhere/field.csv: cannot be written: No such file or directory; is its folder" in message


def test_a_folder_is_not_replaced(qelm, square):
    (qelm.folder / "field.csv").mkdir()
    message = qelm.fails(1, "solve", square, *FIX, "-o", "field.csv")
    assert "field.csv: cannot be written: it is a folder; name a file" in message


def test_names_outside_the_code_page_work(qelm):
    name = "Dach – 屋根 ü.obj"
    qelm.write(name, shapes.obj(shapes.SQUARE))
    done = qelm.ok("solve", name, *FIX, "-o", "Fläche 場.csv")
    assert qelm.field("Fläche 場.csv") == pytest.approx([1, 1, 1, 1])
    assert f"mesh     {name}: 4 vertices" in done.stderr
    assert "result   Fläche 場.csv" in done.stderr


@posix_only
def test_a_full_disk_is_reported(qelm, square):
    done = qelm.run("solve", square, *FIX, "-o", "/dev/full")
    assert done.returncode == 1
    assert "/dev/full: writing failed: No space left on device" in done.stderr
    assert not pathlib.Path("/dev/full").is_file()


@posix_only
def test_a_standard_output_that_is_full_is_reported(qelm, square):
    import subprocess

    with open("/dev/full", "w") as full:
        for arguments in (["-o", "-"], ["--json"]):
            done = subprocess.run(
                [built.program("qelm"), "solve", square, *FIX, *arguments],
                cwd=qelm.folder, stdout=full, stderr=subprocess.PIPE, encoding="utf-8",
            )  # fmt: skip
            assert done.returncode == 1, arguments
            assert "standard output: writing failed: No space left on device" in done.stderr


@posix_only
def test_a_link_stays_a_link_and_permissions_stay(qelm, square):
    target = qelm.folder / "real.csv"
    target.write_text("old")
    target.chmod(0o640)
    os.symlink("real.csv", qelm.folder / "link.csv")
    qelm.ok("solve", square, *FIX, "-o", "link.csv")
    assert (qelm.folder / "link.csv").is_symlink()
    assert qelm.field("real.csv") == pytest.approx([1, 1, 1, 1])
    assert target.stat().st_mode & 0o777 == 0o640


@posix_only
def test_colour_is_for_terminals_and_no_color_switches_it_off(qelm):
    import pty
    import subprocess

    def on_a_terminal(env):
        ours, theirs = pty.openpty()
        command = [built.program("qelm"), "solve", "none.obj", *FIX]
        subprocess.run(command, cwd=qelm.folder, stderr=theirs, env={**os.environ, **env})
        os.close(theirs)
        return os.read(ours, 10000).decode()

    assert "qelm: \x1b[1;31merror:\x1b[0m none.obj" in on_a_terminal({"NO_COLOR": ""})
    assert "qelm: error: none.obj" in on_a_terminal({"NO_COLOR": "1"})
