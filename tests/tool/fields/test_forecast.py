"""Meshes whose factor is far larger than they are: what is said before anybody waits for it."""

import os
import random
import select
import signal
import subprocess
import time

import pytest

import built
import shapes
from tool import refusal

FIX = ["--fix", "vertex:0=0", "--fix", "vertex:5=1", "-o", "field.csv"]


def random_triangles(count):
    """Twice as many triangles between any vertices, each of which is in one."""
    chance = random.Random(1)
    points = [(chance.random(), chance.random(), chance.random()) for _ in range(count)]
    triangles = []
    for t in range(2 * count):
        a = t % count
        b = (a + chance.randrange(1, count // 2)) % count
        c = (a + chance.randrange(count // 2, count)) % count
        triangles.append((a, b, c))
    return points, triangles


@pytest.mark.skipif(built.CHECKER != "", reason="takes long under a sanitizer, and is no matter of memory")
def test_a_factor_that_cannot_be_indexed_is_refused_with_its_size(qelm):
    qelm.write("random.off", shapes.off(random_triangles(130_000)))
    message = refusal(qelm.run("solve", "random.off", *FIX), 1)
    assert "random.off: the factor of this mesh would need 24" in message
    assert " entries, more than the library can index" in message
    assert not (qelm.folder / "field.csv").exists()


def test_nothing_is_said_of_a_mesh_that_takes_a_moment(qelm):
    qelm.write("grid.off", shapes.off(shapes.grid(110, 100)))
    assert "about" not in qelm.ok("solve", "grid.off", *FIX).stderr


@pytest.mark.skipif(built.IS_WINDOWS, reason="terminals and signals of POSIX")
def test_a_long_construction_is_foretold_and_can_be_left(qelm):
    import pty

    qelm.write("random.off", shapes.off(random_triangles(20_000)))
    ours, theirs = pty.openpty()
    command = [built.program("qelm"), "solve", "random.off", *FIX]
    run = subprocess.Popen(command, cwd=qelm.folder, stdout=subprocess.PIPE, stderr=theirs, env={**os.environ, "TERM": "xterm"})
    os.close(theirs)
    shown, end = "", time.monotonic() + 60
    while "s of about" not in shown and time.monotonic() < end:
        if select.select([ours], [], [], 0.05)[0]:
            shown += os.read(ours, 4096).decode()
    assert "about 41 seconds: the factor has 58 M entries" in shown
    assert "s of about 41 s" in shown
    run.send_signal(signal.SIGINT)
    left = time.monotonic()
    assert run.wait(timeout=30) != 0
    assert time.monotonic() - left < 5, "Ctrl-C leaves at once"
    os.close(ours)
    assert sorted(path.name for path in qelm.folder.iterdir()) == ["random.off"]
