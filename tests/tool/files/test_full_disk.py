"""A disk that fills up at any place of any result: said, and nothing is left or lost."""

import subprocess

import pytest

import built
import shapes

pytestmark = pytest.mark.skipif(built.IS_WINDOWS, reason="needs a limit on the size of files")

FIX = ["--fix", "box:0,0,0,0,999,0=0", "--fix", "box:20,0,0,20,999,0=1"]
KEPT = b"what was there before\n"
CASES = {
    "a field": (["solve", "mesh.obj", *FIX, "-o", "out.csv"], ["out.csv"]),
    "a heat map": (["heatmap", "mesh.obj", *FIX, "-o", "out"], ["out.obj", "out.mtl", "viridis.PNG"]),
    "a heat map in one file": (["heatmap", "mesh.obj", *FIX, "-o", "out.ply"], ["out.ply"]),
    "a welded mesh": (["weld", "soup.stl", "-o", "out.obj"], ["out.obj"]),
    "a repaired mesh": (["repair", "soup.stl", "-o", "out.obj"], ["out.obj"]),
}
for kind in ("obj", "json", "csv", "svg"):
    CASES[f"curves as {kind}"] = (["curves", "mesh.obj", *FIX, "--levels", "30", "-o", f"out.{kind}"], [f"out.{kind}"])
if built.HAS_VIEW_PAGE:
    CASES["a page"] = (["view", "mesh.obj", *FIX, "--levels", "30", "-o", "out.html"], ["out.html"])


def run_with_files_up_to(limit, qelm, arguments):
    """The tool's files may not grow beyond `limit` bytes; its messages may."""
    import resource
    import signal

    def before_start():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))

    return subprocess.run(
        [built.program("qelm"), *arguments],
        cwd=qelm.folder, capture_output=True, encoding="utf-8", preexec_fn=before_start,
    )  # fmt: skip


def contents(folder):
    return {path.name: path.read_bytes() for path in folder.iterdir()}


@pytest.mark.parametrize("case", CASES)
def test_at_any_place_a_full_disk_is_said_and_nothing_is_lost(qelm, case):
    arguments, results = CASES[case]
    qelm.write("mesh.obj", shapes.obj(shapes.grid(20, 20)))
    qelm.write("soup.stl", shapes.stl_binary(shapes.grid(20, 20)))
    qelm.ok(*arguments)
    sizes = {name: (qelm.folder / name).stat().st_size for name in results}
    for name in results:
        qelm.write(name, KEPT)
    before = contents(qelm.folder)
    largest = max(sizes.values())
    # Nothing at all, the first byte, between the buffers, and all but the last byte.
    limits = {0, 1, largest - 1, *(size - 1 for size in sizes.values())}
    limits |= {largest * part // 8 for part in range(1, 8)}
    for limit in sorted(limits):
        done = run_with_files_up_to(limit, qelm, arguments)
        assert done.returncode == 1, f"{limit} of {sizes}: {done.stderr}"
        assert "writing failed" in done.stderr, done.stderr
        assert any(name in done.stderr for name in results), done.stderr
        assert contents(qelm.folder) == before, f"limit {limit} of {sizes}"
    done = run_with_files_up_to(largest, qelm, arguments)
    assert done.returncode == 0, done.stderr
    assert {name: (qelm.folder / name).stat().st_size for name in results} == sizes


@pytest.mark.parametrize("target", ["out.csv", "out", "out.svg"])
def test_a_folder_that_cannot_be_written_to_is_named(qelm, target):
    import os

    command = {"out.csv": ["solve"], "out": ["heatmap"], "out.svg": ["curves", "--levels", "5"]}[target]
    qelm.write("mesh.obj", shapes.obj(shapes.grid(20, 20)))
    closed = qelm.folder / "closed"
    closed.mkdir()
    closed.chmod(0o555)
    # Rights do not stop root, unless root is without that privilege.
    unprivileged = ["setpriv", "--bounding-set=-dac_override"] if os.geteuid() == 0 else []
    done = subprocess.run(
        [*unprivileged, built.program("qelm"), *command, "mesh.obj", *FIX, "-o", f"closed/{target}"],
        cwd=qelm.folder, capture_output=True, encoding="utf-8",
    )  # fmt: skip
    assert done.returncode == 1, done.stderr
    assert f"closed/{target}{'.obj' if target == 'out' else ''}: cannot be written" in done.stderr
    assert "Permission denied" in done.stderr
    assert list(closed.iterdir()) == []
