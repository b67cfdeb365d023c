"""Every example runs and does what it says."""

import re
import sys

import meshio
import numpy as np
import pytest
from built import SOURCE, run
from matplotlib import image

EXAMPLES = SOURCE / "bindings/python/examples"


def example(name, *arguments):
    return run(sys.executable, EXAMPLES / name, *arguments)


def test_no_example_is_forgotten():
    tested = re.findall(r'example\(\s*"(\w+\.py)"', (SOURCE / "bindings/python/tests/test_examples.py").read_text())
    assert sorted(tested) == sorted(path.name for path in EXAMPLES.glob("*.py"))


def test_meshio_reads_the_mesh_and_writes_the_curves(tmp_path):
    printed = example("meshio_curves.py", SOURCE / "data/roof.obj", tmp_path / "curves.vtk", 3)
    assert re.findall(r"level (\S+): closed, length \d+\.\d{3}", printed) == ["0.25", "0.5", "0.75"]
    written = meshio.read(tmp_path / "curves.vtk")
    assert {block.type for block in written.cells} == {"line"}
    assert sorted(set(np.concatenate(written.cell_data["level"]).round(9))) == [0.25, 0.5, 0.75]


def test_matplotlib_draws_a_plate_and_a_shell(tmp_path):
    example("matplotlib_picture.py", tmp_path / "picture.png")
    picture = image.imread(tmp_path / "picture.png")
    height, width, _ = picture.shape
    for half in (picture[:, : width // 2], picture[:, width // 2 :]):
        # Many colours of the map, and black curves.
        assert len(np.unique((half[..., :3] * 15).astype(int).reshape(-1, 3), axis=0)) > 100
        assert (half[..., :3].max(axis=2) < 0.1).sum() > 500


def test_vtk_gets_triangles_and_curves(tmp_path):
    printed = example("vtk_arrays.py", tmp_path)
    assert re.fullmatch(r"3200 triangles, \d+ curves\n", printed)
    from vtkmodules.vtkFiltersCore import vtkContourFilter
    from vtkmodules.vtkIOXML import vtkXMLPolyDataReader

    data = {}
    for name in ("surface", "curves"):
        reader = vtkXMLPolyDataReader()
        reader.SetFileName(str(tmp_path / f"{name}.vtp"))
        reader.Update()
        data[name] = reader.GetOutput()
    assert data["curves"].GetNumberOfCells() == int(printed.split()[2])
    # VTK's own contours have the points that the curves have.
    contours = vtkContourFilter()
    contours.SetInputData(data["surface"])
    contours.SetValue(0, data["curves"].GetCellData().GetScalars().GetValue(0))
    contours.Update()
    theirs = contours.GetOutput().GetBounds()
    ours = np.array([data["curves"].GetPoint(k) for k in range(data["curves"].GetCell(0).GetNumberOfPoints())])
    assert np.array(theirs).reshape(3, 2) == pytest.approx(np.stack([ours.min(0), ours.max(0)], 1), abs=1e-6)


def test_scipy_solves_to_the_same_field():
    difference = float(re.fullmatch(r"largest difference (\S+)\n", example("scipy_spsolve.py")).group(1))
    assert 0 < difference < 1e-12
