// usage: mesh_files_bench read FILE
//        mesh_files_bench write MESH.ply RESULT
// Prints the processor time in milliseconds of reading a mesh file into triangles in memory, or of
// writing RESULT from what is in memory: mesh.*, heat.* (with the mesh's property "value"),
// gradient.*, curves.* (at 100 levels), field.csv, field.npy. bench/mesh_files.py measures peers
// beside.
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "colours/colour_ply.h"
#include "colours/heat_gltf.h"
#include "conditions/npy_array.h"
#include "curves/curve_dxf.h"
#include "curves/curve_files.h"
#include "curves/curve_gltf.h"
#include "curves/curve_svg.h"
#include "curves/curve_vtp.h"
#include "curves/field_curves.h"
#include "fields/field_csv.h"
#include "fields/gradient_files.h"
#include "files/output_file.h"
#include "files/paths.h"
#include "mesh_files/mesh_reader.h"
#include "mesh_files/mesh_writer.h"
#include "mesh_files/triangulate.h"

namespace {

using namespace qelm::tool;

constexpr int kLevels = 100;

/// Of the second time: the first one fetches the memory from the system.
template <class Action>
double milliseconds(Action action) {
  action();
  const std::clock_t begin = std::clock();
  action();
  return 1e3 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

Mesh meshOf(const std::string& name) { return triangulate(readPolygonSoup(toPath(name))).mesh; }

/// Writes what was prepared to the file.
using Write = std::function<void(OutputFile&)>;

Write curveWriter(const Mesh& mesh, std::span<const double> field, const std::string& extension) {
  const FieldRange range = rangeOf(field);
  std::vector<double> levels;
  for (int k = 1; k <= kLevels; ++k)
    levels.push_back(range.low + k * (range.high - range.low) / (kLevels + 1));
  const std::vector<int> tags(field.size(), 1);
  const FieldSystem system(mesh, tags, false);
  std::vector<FieldCurves> fields;
  fields.push_back({"", CurveSet(system, field, levels), range,
                    ColourChoice({}).scaleFor(range, Console(true))});
  if (extension == ".obj") return [=](OutputFile& file) { writeCurvesObj(fields, file); };
  if (extension == ".dxf") return [=](OutputFile& file) { writeCurvesDxf(fields, file); };
  if (extension == ".vtp") return [=](OutputFile& file) { writeCurvesVtp(fields, file); };
  if (extension == ".glb") return [=](OutputFile& file) { writeCurvesGltf(fields, 2, true, file); };
  if (extension != ".svg") return {};
  return [=, &mesh](OutputFile& file) {
    const Projection projection = projectionFor(parseView("best"), mesh, 2);
    writeCurvesSvg({mesh, fields, projection, {}, {}}, file);
  };
}

Write heatWriter(const Mesh& mesh, std::span<const double> field, const std::string& extension) {
  const ColourScale scale = ColourChoice({}).scaleFor(rangeOf(field), Console(true));
  if (extension == ".ply")
    return [=, &mesh](OutputFile& file) { writeColourPly(mesh, field, scale, {}, file); };
  if (extension == ".glb" || extension == ".gltf")
    return [=, &mesh](OutputFile& file) {
      writeHeatGltf(mesh, field, scale, {}, 2, extension == ".glb", file);
    };
  return [=, &mesh](OutputFile& file) {
    writeFieldsVtk(mesh, field, 1, {}, extension == ".vtu", file);
  };
}

/// What the result's name says; empty of another one.
Write writerFor(const Mesh& mesh, const std::string& name) {
  const std::string what = toUtf8(toPath(name).stem());
  const std::string extension = lowerExtension(toPath(name));
  const std::span<const double> field = mesh.attributes.arrays.at(0).values;
  if (what == "mesh")
    return
        [&mesh, format = writableFormat(name)](OutputFile& file) { writeMesh(mesh, format, file); };
  if (what == "binary")
    return [&mesh](OutputFile& file) { writeMesh(mesh, MeshFormat::kOffBinary, file); };
  if (what == "heat") return heatWriter(mesh, field, extension);
  if (what == "curves") return curveWriter(mesh, field, extension);
  if (what == "gradient")
    return [&mesh, field, extension, gradient = gradientOf(mesh, field)](OutputFile& file) {
      writeFieldsVtk(mesh, field, 1, {&gradient, 1}, extension == ".vtu", file);
    };
  if (what != "field") return {};
  if (extension == ".npy")
    return [field](OutputFile& file) { writeNpy(field, field.size(), file); };
  return [&mesh, field](OutputFile& file) { writeFieldCsv(mesh, {"value"}, field, file); };
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + count);
  if (words.size() == 2 && words[0] == "read") {
    Mesh mesh;
    const double time = milliseconds([&] {
      mesh = {};  // the first one's memory is there again, as a peer's is
      mesh = meshOf(words[1]);
    });
    std::printf("%.3f %d\n", time, mesh.triangleCount());
    return 0;
  }
  if (words.size() != 3 || words[0] != "write") return 2;
  const Mesh mesh = meshOf(words[1]);
  const Write write = writerFor(mesh, words[2]);
  if (!write) return 2;
  const double time = milliseconds([&] {
    OutputFile file(words[2], {});
    write(file);
    file.commit();
  });
  std::printf("%.3f %d\n", time, mesh.triangleCount());
  return 0;
}
