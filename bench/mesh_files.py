#!/usr/bin/python3
"""Reads and writes mesh files with the tool's readers, meshio and VTK, and prints ratios.

usage: bench/mesh_files.py [TRIANGLES [RUNS]]

Builds build/bench/bin/mesh_files_bench, writes one grid of TRIANGLES (a million) in every format,
and measures the processor time of reading each file into memory and of writing it, medians over
RUNS (3), the programs in turn. Peers write to memory (/dev/shm), the tool to nowhere. STL is read
as it stands, without welding. Run it with taskset on one core; ratios below 1 mean that the tool is
faster. "-" is what a peer does not have.
"""

import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

import meshio
import numpy
from vtkmodules.util.numpy_support import numpy_to_vtk
from vtkmodules.vtkCommonCore import vtkPoints
from vtkmodules.vtkCommonDataModel import vtkCellArray, vtkPolyData
from vtkmodules.vtkIOGeometry import vtkOBJReader, vtkOBJWriter, vtkSTLReader, vtkSTLWriter
from vtkmodules.vtkIOLegacy import vtkPolyDataReader, vtkPolyDataWriter
from vtkmodules.vtkIOPLY import vtkPLYReader, vtkPLYWriter
from vtkmodules.vtkIOXML import vtkXMLPolyDataReader, vtkXMLPolyDataWriter, vtkXMLUnstructuredGridReader

ROOT = pathlib.Path(__file__).resolve().parents[1]
BUILD = ROOT / "build" / "bench"
PROGRAM = BUILD / "bin" / "mesh_files_bench"


def grid(triangles):
    side = round((triangles / 2) ** 0.5)
    x, y = numpy.meshgrid(numpy.arange(side + 1.0), numpy.arange(side + 1.0))
    points = numpy.stack([x.ravel() / 3, y.ravel() / 7, numpy.sin(x.ravel()) * numpy.cos(y.ravel())], axis=1)
    a = (numpy.arange(side)[:, None] * (side + 1) + numpy.arange(side)).ravel()
    faces = numpy.concatenate([[a, a + 1, a + side + 2], [a, a + side + 2, a + side + 1]], axis=1).T
    return points, faces


def vtk_mesh(points, faces):
    data, places, cells = vtkPolyData(), vtkPoints(), vtkCellArray()
    places.SetData(numpy_to_vtk(points, deep=True))
    counted = numpy.hstack([numpy.full((len(faces), 1), 3), faces]).astype(numpy.int64)
    from vtkmodules.util.numpy_support import numpy_to_vtkIdTypeArray

    cells.SetCells(len(faces), numpy_to_vtkIdTypeArray(counted.ravel(), deep=True))
    data.SetPoints(places)
    data.SetPolys(cells)
    return data


def vtk_write(writer, data, path, **settings):
    writer.SetFileName(str(path))
    writer.SetInputData(data)
    for key, value in settings.items():
        getattr(writer, f"Set{key}")(value)
    writer.Write()


def vtk_read(reader, path):
    reader.SetFileName(str(path))
    reader.Update()


def cases(mesh, data):
    """name: (meshio's writer, VTK's writer, VTK's reader); the first writer makes the file."""
    def by_meshio(**settings):
        return lambda path: mesh.write(path, **settings)

    def by_vtk(kind, **settings):
        return lambda path: vtk_write(kind(), data, path, **settings)

    appended = {"DataMode": 2, "EncodeAppendedData": 0}
    return {
        "text.obj": (by_meshio(), by_vtk(vtkOBJWriter), vtkOBJReader),
        "text.off": (by_meshio(), None, None),
        "binary.ply": (by_meshio(), by_vtk(vtkPLYWriter), vtkPLYReader),
        "binary.stl": (by_meshio(binary=True), by_vtk(vtkSTLWriter, FileType=2), vtkSTLReader),
        "text.vtk": (by_meshio(binary=False), by_vtk(vtkPolyDataWriter, FileType=1), None),
        "binary.vtk": (None, by_vtk(vtkPolyDataWriter, FileType=2), vtkPolyDataReader),
        "appended.vtp": (None, by_vtk(vtkXMLPolyDataWriter, Compressor=None, **appended), vtkXMLPolyDataReader),
        "zlib.vtp": (None, by_vtk(vtkXMLPolyDataWriter, **appended), vtkXMLPolyDataReader),
        "base64.vtp": (None, by_vtk(vtkXMLPolyDataWriter, DataMode=1, Compressor=None), vtkXMLPolyDataReader),
        "text.vtp": (None, by_vtk(vtkXMLPolyDataWriter, DataMode=0), vtkXMLPolyDataReader),
        "zlib.vtu": (by_meshio(), None, vtkXMLUnstructuredGridReader),
        "text.msh": (by_meshio(file_format="gmsh", binary=False), None, None),
        "binary.msh": (by_meshio(file_format="gmsh", binary=True), None, None),
        "binary22.msh": (by_meshio(file_format="gmsh22", binary=True), None, None),
    }  # fmt: skip


def milliseconds(action):
    begin = time.process_time()
    action()
    return 1e3 * (time.process_time() - begin)


def ours(path):
    _, read, write, _ = subprocess.run([PROGRAM, "1", path], capture_output=True, text=True, check=True).stdout.split()
    return float(read), float(write)


def ratio(mine, other):
    if not other or mine < 0:
        return "-"
    return f"{mine / statistics.median(other):.2f}"


def main():
    triangles = int(sys.argv[1]) if len(sys.argv) > 1 else 1_000_000
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    if not PROGRAM.exists():
        subprocess.run(["cmake", "--preset", "linux-release", "-B", BUILD, "-DQELM_BUILD_BENCHMARKS=ON",
                        "-DQELM_BUILD_TESTS=OFF", "-DQELM_BUILD_CSHARP=OFF"], cwd=ROOT, check=True)  # fmt: skip
        subprocess.run(["cmake", "--build", BUILD, "--target", "mesh_files_bench"], cwd=ROOT, check=True)
    points, faces = grid(triangles)
    mesh, data = meshio.Mesh(points, [("triangle", faces)]), vtk_mesh(points, faces)
    print("| | read, ms | / meshio | / VTK | write, ms | / meshio | / VTK |\n| --- | --: | --: | --: | --: | --: | --: |")
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder:
        for name, (by_meshio, by_vtk, reader) in cases(mesh, data).items():
            path, other = pathlib.Path(folder) / name, pathlib.Path(folder) / ("other-" + name)
            (by_meshio or by_vtk)(path)
            times = {key: [] for key in ("read", "write", "meshio r", "meshio w", "vtk r", "vtk w")}
            for _ in range(runs):
                read, write = ours(path)
                times["read"].append(read)
                times["write"].append(write)
                if by_meshio:
                    times["meshio r"].append(milliseconds(lambda: meshio.read(path)))
                    times["meshio w"].append(milliseconds(lambda: by_meshio(other)))
                if reader:
                    times["vtk r"].append(milliseconds(lambda: vtk_read(reader(), path)))
                if by_vtk:
                    times["vtk w"].append(milliseconds(lambda: by_vtk(other)))
            read, write = statistics.median(times["read"]), statistics.median(times["write"])
            is_plain = name in ("text.obj", "text.off", "binary.ply", "binary.stl", "appended.vtp")
            row = [name, f"{read:.0f}", ratio(read, times["meshio r"]), ratio(read, times["vtk r"])]
            row += [f"{write:.0f}" if is_plain else "-", *(ratio(write, times[k]) if is_plain else "-" for k in ("meshio w", "vtk w"))]
            print("| " + " | ".join(row) + " |", flush=True)
            path.unlink()
            other.unlink(missing_ok=True)


if __name__ == "__main__":
    main()
