"""Hands mesh, field and curves to VTK, in the arrays that PyVista takes, too.

usage: vtk_arrays.py FOLDER

Writes surface.vtp and curves.vtp. With PyVista it is
    pyvista.PolyData(vertices, faces) and pyvista.PolyData(curves.points, lines=curves.cells()).
"""

import pathlib
import sys

import numpy as np
import qelm
from vtkmodules.util.numpy_support import numpy_to_vtk, numpy_to_vtkIdTypeArray
from vtkmodules.vtkCommonCore import vtkPoints
from vtkmodules.vtkCommonDataModel import vtkCellArray, vtkPolyData
from vtkmodules.vtkIOXML import vtkXMLPolyDataWriter


def points_of(array):
    points = vtkPoints()
    points.SetData(numpy_to_vtk(array, deep=True))
    return points


def cells_of(array):
    """From the form [count, index, index, ..., count, index, ...]."""
    cells = vtkCellArray()
    cells.ImportLegacyFormat(numpy_to_vtkIdTypeArray(array.astype(np.int64), deep=True))
    return cells


def named(name, array):
    data = numpy_to_vtk(array, deep=True)
    data.SetName(name)
    return data


def write(path, data):
    writer = vtkXMLPolyDataWriter()
    writer.SetFileName(str(path))
    writer.SetInputData(data)
    writer.Write()


side = 41
y, x = (a.ravel() for a in np.mgrid[0:side, 0:side] / (side - 1))
vertices = np.stack([x, y, 0.3 * np.sin(5 * x) * y], axis=1)
k = (np.arange(side - 1)[:, None] * side + np.arange(side - 1)).ravel()
triangles = np.concatenate([np.stack([k, k + 1, k + side + 1], 1), np.stack([k, k + side + 1, k + side], 1)])

system = qelm.MeshSystem.from_fixed(vertices, triangles, np.isin(x, [0, 1]))
field = system.solve(np.where(x == 1, 1 + y, 0))
curves = system.curves(field, levels=15)

faces = np.insert(triangles, 0, 3, axis=1).ravel()
surface = vtkPolyData()
surface.SetPoints(points_of(vertices))
surface.SetPolys(cells_of(faces))
surface.GetPointData().SetScalars(named("field", field))

lines = vtkPolyData()
lines.SetPoints(points_of(curves.points))
lines.SetLines(cells_of(curves.cells()))
lines.GetCellData().SetScalars(named("level", curves.levels))

folder = pathlib.Path(sys.argv[1])
write(folder / "surface.vtp", surface)
write(folder / "curves.vtp", lines)
print(f"{surface.GetNumberOfCells()} triangles, {lines.GetNumberOfCells()} curves")
