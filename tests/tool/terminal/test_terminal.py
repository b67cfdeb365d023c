"""What is shown while the tool works: on a terminal, with -v, with -q."""

import os
import re
import select
import subprocess
import time

import pytest

import built
import shapes

FIX = ["--fix", "vertex:0=0", "--fix", "vertex:2=1"]
posix_only = pytest.mark.skipif(built.IS_WINDOWS, reason="terminals and pipes of POSIX")
PROGRESS = re.compile(r"\rread +(\d+\.\d) s")


def read_until(descriptor, is_enough, seconds=20):
    """What a terminal shows, until that is enough or the time is over."""
    shown, end = "", time.monotonic() + seconds
    while time.monotonic() < end and not is_enough(shown):
        if select.select([descriptor], [], [], 0.05)[0]:
            try:
                shown += os.read(descriptor, 4096).decode()
            except OSError:  # the other side has closed
                break
    return shown


class OnTerminal:
    """A run that waits for its mesh: that is a pipe which the test feeds when it likes."""

    def __init__(self, folder, *arguments, environment=()):
        import pty

        os.mkfifo(folder / "mesh.obj")
        self.pipe = folder / "mesh.obj"
        self.ours, theirs = pty.openpty()
        command = [built.program("qelm"), "solve", "mesh.obj", *FIX, *arguments]
        env = {**os.environ, "TERM": "xterm", **dict(environment)}
        self.process = subprocess.Popen(command, cwd=folder, stdout=subprocess.PIPE, stderr=theirs, env=env)
        os.close(theirs)

    def feed(self, content):
        self.pipe.write_text(content)

    def rest(self):
        shown = read_until(self.ours, lambda _: False)
        self.process.communicate(timeout=30)
        os.close(self.ours)
        return shown


@posix_only
def test_a_long_step_has_a_line_with_its_time_that_goes_away(tmp_path):
    run = OnTerminal(tmp_path)
    shown = read_until(run.ours, lambda s: len(PROGRESS.findall(s)) >= 5)
    times = list(map(float, PROGRESS.findall(shown)))
    assert len(times) >= 5 and times == sorted(times) and 0.3 <= times[0] < times[-1]
    assert "\n" not in shown, "it is one line, written over"
    run.feed(shapes.obj(shapes.SQUARE))
    rest = run.rest()
    assert run.process.returncode == 0
    # Blanks over it, then the summary from the line's beginning.
    assert re.search(r"\r +\rmesh     mesh.obj: 4 vertices", rest), rest


@posix_only
def test_an_error_takes_the_place_of_the_line(tmp_path):
    run = OnTerminal(tmp_path, environment={"NO_COLOR": "1"}.items())
    read_until(run.ours, lambda s: PROGRESS.search(s))
    run.feed("v 0 0 x\n")
    assert re.search(r"\r +\rqelm: error: mesh.obj:1: 'x' is not a coordinate", run.rest())
    assert run.process.returncode == 3


@posix_only
@pytest.mark.parametrize("how", ["quiet", "dumb"])
def test_there_is_no_line_when_it_is_not_wanted(tmp_path, how):
    quiet = ["-q"] if how == "quiet" else []
    run = OnTerminal(tmp_path, *quiet, environment={"TERM": "dumb" if how == "dumb" else "xterm"}.items())
    shown = read_until(run.ours, lambda _: False, seconds=0.8)
    assert shown == ""
    run.feed(shapes.obj(shapes.SQUARE))
    assert "\r " not in run.rest()
    assert run.process.returncode == 0


def test_there_is_no_line_without_a_terminal(qelm):
    qelm.write("a.obj", shapes.obj(shapes.SQUARE))
    assert "\r" not in qelm.ok("solve", "a.obj", *FIX).stderr


def test_verbose_tells_every_step_and_its_time(qelm):
    qelm.write("a.obj", shapes.obj(shapes.SQUARE))
    lines = qelm.ok("solve", "a.obj", *FIX, "-v").stderr.splitlines()
    steps = [re.fullmatch(r"(\w+) +\d+\.\d{3} s", line) for line in lines[:4]]
    assert [step and step[1] for step in steps] == ["read", "check", "construct", "solve"]
    assert lines[4].startswith("mesh     ")


def test_quiet_and_verbose_exclude_each_other(qelm):
    qelm.write("a.obj", shapes.obj(shapes.SQUARE))
    assert "excludes" in qelm.fails(2, "solve", "a.obj", *FIX, "-q", "-v")


def test_quiet_says_nothing(qelm):
    qelm.write("a.obj", shapes.obj(shapes.SQUARE))
    done = qelm.ok("solve", "a.obj", *FIX, "--fix", "vertex:0=3", "-q")
    assert (done.stdout, done.stderr) == ("", "")


def test_what_a_file_holds_cannot_steer_the_terminal(qelm):
    qelm.write("a.obj", b"v 0 \x1b[2J\x07 0\n")
    message = qelm.fails(3, "solve", "a.obj", *FIX)
    assert r"a.obj:1: '\x1b[2J\x07' is not a coordinate" in message
    qelm.write("b.obj", b"v 0 \0 0\n")
    assert r"b.obj:1: '\x00' is not a coordinate" in qelm.fails(3, "solve", "b.obj", *FIX)
    qelm.write("c.obj", "v 0 " + "9x" * 100000 + " 0\n")
    assert len(qelm.fails(3, "solve", "c.obj", *FIX)) < 5000
