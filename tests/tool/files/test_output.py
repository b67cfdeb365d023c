"""Results appear complete or not at all."""

import os
import pathlib
import shutil
import time

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


KEPT = "vertex,x,y,z,value\nwhat was there before\n"


def temporary_files(folder):
    return [p for p in folder.iterdir() if p.name.endswith(".part")]


def kill_when(qelm, arguments, is_time):
    """Starts the tool and kills it, with no chance to clean up, once `is_time()`; true
    when it was still at work."""
    import subprocess

    null = subprocess.DEVNULL
    tool = subprocess.Popen([built.program("qelm"), *arguments], cwd=qelm.folder, stdout=null, stderr=null)
    while tool.poll() is None and not is_time():
        time.sleep(0.0002)  # leaves the processor to the tool
    tool.kill()
    return tool.wait() != 0


def size_of_temporaries(folder):
    size = 0
    for path in temporary_files(folder):
        try:
            size += sum(p.stat().st_size for p in ([path] if path.is_file() else path.iterdir()))
        except FileNotFoundError:
            pass
    return size


TARGETS = {
    "solve": (["-o", "out.csv"], "out.csv"),
    "heatmap": (["-o", "out"], "out.obj"),
    "curves": (["--levels", "300", "-o", "out.json"], "out.json"),
}


@posix_only
@pytest.mark.parametrize("command", TARGETS)
def test_a_run_that_is_killed_while_writing_leaves_the_result_as_it_was(qelm, command):
    arguments, target = TARGETS[command]
    # Large enough that writing takes a while; watched by a sanitizer, a tenth does.
    n = 100 if built.CHECKER else 300
    qelm.write("grid.obj", shapes.obj(shapes.grid(n, n)))
    line = [command, "grid.obj", "--fix", "box:0,0,0,0,999,0=0", "--fix", f"box:{n},0,0,{n},999,0=1", *arguments]
    qelm.ok(*line)
    complete = (qelm.folder / target).read_bytes()
    assert temporary_files(qelm.folder) == []
    killed = 0
    # From the moment in which there is a temporary file to shortly before it is complete.
    for part in (-1, 0, 0.1, 0.3, 0.5, 0.7, 0.9, 0.99):
        qelm.write(target, KEPT)
        for left in temporary_files(qelm.folder):
            shutil.rmtree(left) if left.is_dir() else left.unlink()
        enough = part * len(complete)
        was_killed = kill_when(
            qelm, line, lambda: bool(temporary_files(qelm.folder)) and size_of_temporaries(qelm.folder) > enough
        )
        found = (qelm.folder / target).read_bytes()
        assert found in (KEPT.encode(), complete), f"killed at {part}: {len(found)} bytes"
        killed += was_killed and found == KEPT.encode()
    assert killed >= 3, "the kills came too late to show anything"


@posix_only
def test_a_run_that_is_interrupted_cleans_up(qelm, square):
    import signal
    import subprocess

    os.mkfifo(qelm.folder / "mesh.obj")
    for kind in (signal.SIGINT, signal.SIGTERM):
        for command in (["solve", "mesh.obj", *FIX, "-o", "out.csv"], ["heatmap", "mesh.obj", *FIX, "-o", "out"]):
            tool = subprocess.Popen([built.program("qelm"), *command], cwd=qelm.folder)
            while not temporary_files(qelm.folder):
                time.sleep(0.01)
                assert tool.poll() is None
            tool.send_signal(kind)
            assert tool.wait(timeout=10) == -kind
            assert qelm.files() == ["mesh.obj", "square.obj"]
