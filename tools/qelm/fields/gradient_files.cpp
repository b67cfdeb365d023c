#include "fields/gradient_files.h"

#include <fmt/format.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <deque>

#include "conditions/npy_array.h"
#include "fields/field_csv.h"
#include "mesh/vec3.h"
#include "mesh_files/vtk_writer.h"
#include "text/index.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

static_assert(std::endian::native == std::endian::little, "binary PLY is little-endian here");

Point centre(const Mesh& mesh, int t) {
  const auto c = mesh.corners(t);
  const Point sum = mesh.point(c[0]) + mesh.point(c[1]) + mesh.point(c[2]);
  return {sum[0] / 3, sum[1] / 3, sum[2] / 3};
}

void writeVector(const Point& vector, TextBlock& block) {
  for (const double component : vector) block.bytes(component);
  block.bytes(length(vector));
}

/// Vectors and their lengths as columns for VTK.
class VectorColumns {
 public:
  void add(std::span<const double> vectors, const std::string& number) {
    std::vector<double>& slopes = slopes_.emplace_back();
    slopes.reserve(vectors.size() / 3);
    for (std::size_t k = 0; k < vectors.size(); k += 3)
      slopes.push_back(length({vectors[k], vectors[k + 1], vectors[k + 2]}));
    columns_.push_back({"gradient" + number, vectors, 3});
    columns_.push_back({"slope" + number, slopes});
  }
  std::vector<VtkColumn>& columns() { return columns_; }

 private:
  std::deque<std::vector<double>> slopes_;
  std::vector<VtkColumn> columns_;
};

}  // namespace

FieldColumns withGradients(std::span<const double> fields, std::span<const Gradient> gradients) {
  FieldColumns columns = {fieldTitles(gradients.size()), {fields.begin(), fields.end()}};
  const std::size_t n = fields.size() / gradients.size();
  for (std::size_t k = 0; k < gradients.size(); ++k) {
    for (const char* const title : {"gx", "gy", "gz", "slope"})
      columns.titles.push_back(gradients.size() == 1 ? title : fmt::format("{}{}", title, k + 1));
    for (std::size_t axis = 0; axis < 3; ++axis)
      for (std::size_t v = 0; v < n; ++v)
        columns.values.push_back(gradients[k].ofVertices[3 * v + axis]);
    for (std::size_t v = 0; v < n; ++v)
      columns.values.push_back(length(gradients[k].ofVertex(asInt(v))));
  }
  return columns;
}

void writeTriangleCsv(const Mesh& mesh, const Gradient& gradient, ByteSink& file) {
  TextBlock block(file);
  block.text("triangle,x,y,z,gx,gy,gz,slope\n");
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const Point p = centre(mesh, t);
    const Point g = gradient.ofTriangle(t);
    block.text("{},{},{},{},", t, p[0], p[1], p[2]);
    if (std::isnan(g[0]))
      block.text(",,,\n");
    else
      block.text("{},{},{},{}\n", g[0], g[1], g[2], length(g));
  }
  block.flush();
}

void writeVectorsNpy(std::span<const double> vectors, ByteSink& file) {
  const std::size_t count = vectors.size() / 3;
  std::vector<double> columns;
  columns.reserve(vectors.size());
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (std::size_t k = 0; k < count; ++k) columns.push_back(vectors[3 * k + axis]);
  writeNpy(columns, count, file);
}

void writeGradientPly(const Mesh& mesh, std::span<const double> field, const Gradient& gradient,
                      bool isPerVertex, ByteSink& file) {
  constexpr const char* kGradient =
      "property double gx\nproperty double gy\nproperty double gz\nproperty double slope\n";
  TextBlock block(file);
  block.text(
      "ply\nformat binary_little_endian 1.0\ncomment written by qelm\nelement vertex {0}\n"
      "property double x\nproperty double y\nproperty double z\nproperty double value\n{2}"
      "element face {1}\nproperty list uchar int vertex_indices\n{3}end_header\n",
      mesh.vertexCount(), mesh.triangleCount(), isPerVertex ? kGradient : "",
      isPerVertex ? "" : kGradient);
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    for (const double coordinate : mesh.point(v)) block.bytes(coordinate);
    block.bytes(field[asIndex(v)]);
    if (isPerVertex) writeVector(gradient.ofVertex(v), block);
  }
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    block.bytes(std::uint8_t{3});
    for (const int v : mesh.corners(t)) block.bytes(std::int32_t{v});
    if (!isPerVertex) writeVector(gradient.ofTriangle(t), block);
  }
  block.flush();
}

void writeFieldsVtk(const Mesh& mesh, std::span<const double> fields, std::size_t fieldCount,
                    std::span<const Gradient> gradients, bool isGrid, ByteSink& file) {
  const std::size_t n = fields.size() / fieldCount;
  const std::vector<std::string> titles = fieldTitles(fieldCount);
  VectorColumns ofVertices;
  VectorColumns ofTriangles;
  for (std::size_t k = 0; k < fieldCount; ++k)
    ofVertices.columns().push_back({titles[k], fields.subspan(k * n, n)});
  for (std::size_t k = 0; k < gradients.size(); ++k) {
    const std::string number = gradients.size() == 1 ? "" : fmt::format("{}", k + 1);
    ofVertices.add(gradients[k].ofVertices, number);
    ofTriangles.add(gradients[k].ofTriangles, number);
  }
  writeVtkMesh(mesh, ofVertices.columns(), ofTriangles.columns(), isGrid, file);
}

}  // namespace qelm::tool
