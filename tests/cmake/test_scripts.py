"""What scripts/setup installs, with programs of its own in place of Debian's."""

import os
import subprocess

import pytest

import built

NEVER_FOR_THE_TOOL = {"mono-mcs", "mono-runtime", "wine", "chromium", "nuget", "googletest", "clang", "python3-numpy"}


@pytest.fixture
def setup(tmp_path):
    """Runs scripts/setup where no package is there; returns what it would install, and what it says."""
    programs = {"dpkg-query": "exit 1", "id": "echo 0", "apt-get": f'echo "$@" >>{tmp_path}/asked'}
    for name, body in programs.items():
        (tmp_path / name).write_text(f"#!/bin/sh\n{body}\n")
        (tmp_path / name).chmod(0o755)

    def run(*arguments):
        environment = {**os.environ, "PATH": f"{tmp_path}:{os.environ['PATH']}"}
        done = subprocess.run(
            [built.SOURCE / "scripts/setup", *arguments], env=environment, capture_output=True, text=True, check=True
        )
        asked = (tmp_path / "asked").read_text().splitlines()[-1].split()
        return set(asked[asked.index("install") + 1 :]), done.stderr

    return run


def test_the_tool_alone_needs_no_mono_wine_or_browser(setup):
    packages, said = setup("--tool", "npm")
    assert {"cmake", "g++", "libeigen3-dev", "libcli11-dev", "npm"} <= packages
    assert packages & NEVER_FOR_THE_TOOL == set()
    assert f"installing {len(packages)} packages with apt-get, a minute or two: cmake " in said


def test_development_needs_all_of_it(setup):
    tool, _ = setup("--tool")
    everything, _ = setup()
    assert tool | NEVER_FOR_THE_TOOL <= everything


def test_the_demo_installs_for_the_tool_and_makes_what_is_installed():
    demo = (built.SOURCE / "scripts/demo").read_text()
    assert "\nscripts/setup --tool\n" in demo
    assert "--target qelm_tool qelm_texts" in demo
    assert "scripts/setup --tool nodejs npm" in (built.SOURCE / "scripts/page").read_text()
