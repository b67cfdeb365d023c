"""What the documents show runs and prints what they say."""

import os
import re
import subprocess
import sys

import numpy as np
import pytest
import qelm
from built import SOURCE
from matplotlib import image
from meshes import square


def run_block(document, folder, section=""):
    """Runs the first block of Python after a heading; returns what it prints and what the document says."""
    text = (SOURCE / document).read_text()
    text = text[text.index(section) :]
    program = re.search(r"```python\n(.*?)```", text, re.S).group(1)
    told = re.search(r"```text\n(.*?)```", text, re.S)
    done = subprocess.run([sys.executable, "-c", program], cwd=folder, capture_output=True, text=True, env=os.environ)
    assert done.returncode == 0, done.stderr
    return done.stdout, told and told.group(1)


@pytest.mark.parametrize("document", ["bindings/python/README.md", "docs/python.md"])
def test_the_first_program_prints_what_the_document_says(document, tmp_path):
    printed, told = run_block(document, tmp_path)
    assert printed == told


def test_the_picture_is_what_the_program_draws(tmp_path):
    run_block("docs/python.md", tmp_path)
    drawn = image.imread(tmp_path / "hill.png")
    shown = image.imread(SOURCE / "docs/images/python-hill.png")
    assert drawn.shape == shown.shape and np.abs(drawn - shown).mean() < 0.01


def test_the_ten_lines_of_the_readme_run(tmp_path):
    printed, _ = run_block("README.md", tmp_path, "## From Python")
    assert [line.split()[0] for line in printed.splitlines()] == ["0.25", "0.5", "0.75"]
    assert (tmp_path / "square.html").stat().st_size > 100_000


def test_vertices_in_no_triangle_go_as_the_document_says():
    text = (SOURCE / "docs/python.md").read_text()
    (statement,) = re.findall(r"`(used, corners = [^`]+)`", text)
    (arguments,) = re.findall(r"`(vertices\[used\], [^`]+)`", text)
    vertices, triangles, _ = square()
    more, moved = np.insert(vertices, [0, 2], 99, axis=0), np.array([1, 2, 4, 5])[triangles]
    names = {"np": np, "vertices": more, "triangles": moved}
    assert not qelm.check(names["vertices"], names["triangles"]).ok
    exec(statement, names)
    mesh = eval(arguments, names)
    assert all((ours == theirs).all() for ours, theirs in zip(mesh, (vertices, triangles)))


def test_the_documents_lead_to_files_that_are_there():
    for document in ("docs/python.md", "bindings/python/README.md"):
        for target in re.findall(r"\]\(([^)#:]+)", (SOURCE / document).read_text()):
            assert ((SOURCE / document).parent / target).exists(), target
