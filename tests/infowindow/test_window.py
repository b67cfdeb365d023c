"""Runs every scenario of the information window in a process of its own, on a
virtual screen and with a time limit."""

import os
import subprocess

import pytest
from built import BUILD, LAUNCHER, program, run

SCENARIOS = program("infowindow_scenarios")
TIME_LIMIT = 100  # seconds; the longest one opens fifty windows


def scenario_names():
    """What `--gtest_list_tests` prints: suites at the margin, tests indented."""
    names, suite = [], ""
    for line in run(*LAUNCHER, SCENARIOS, "--gtest_list_tests").splitlines():
        if line.startswith("  "):
            names.append(suite + line.split()[0])
        elif line.endswith(".") or line.split("#")[0].rstrip().endswith("."):
            suite = line.split()[0]
    return names


@pytest.fixture(scope="module")
def screen():
    """A virtual screen, and a Wine prefix that has never been without one."""
    read, write = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"],
        pass_fds=[write], stderr=subprocess.DEVNULL)
    os.close(write)
    with os.fdopen(read) as numbers:
        number = numbers.readline().strip()
    environment = dict(os.environ, DISPLAY=f":{number}", WINEPREFIX=str(BUILD / "wineprefix-window"))
    # The first program with a window starts Wine's desktop, which goes on running and
    # must not hold a scenario's pipes; so that program is started here. The shell keeps
    # Wine up from one scenario to the next.
    null = subprocess.DEVNULL
    subprocess.run([*LAUNCHER, SCENARIOS, "--gtest_filter=NullLogo.*"], env=environment,
                   stdin=null, stdout=null, stderr=null, timeout=300, check=True)
    shell = subprocess.Popen([*LAUNCHER, "cmd"], env=environment, stdin=subprocess.PIPE,
                             stdout=null, stderr=null)
    yield environment
    shell.communicate(b"exit\r\n")
    server.terminate()
    server.wait()


@pytest.mark.parametrize("name", scenario_names())
def test_scenario(screen, name):
    done = subprocess.run(
        [*LAUNCHER, SCENARIOS, f"--gtest_filter={name}"],
        env=screen, capture_output=True, text=True, errors="replace", timeout=TIME_LIMIT)
    assert "1 test from 1 test suite ran" in done.stdout, done.stdout + done.stderr
    assert done.returncode == 0, done.stdout + done.stderr
