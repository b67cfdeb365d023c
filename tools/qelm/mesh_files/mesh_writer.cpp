#include "mesh_files/mesh_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

#include "files/result_name.h"
#include "mesh/mesh_checks.h"
#include "mesh/vec3.h"
#include "mesh_files/vtk_writer.h"
#include "text/error.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

static_assert(sizeof(int) == sizeof(std::int32_t));
static_assert(std::endian::native == std::endian::little, "binary PLY and STL are little-endian");

void writeObj(const Mesh& mesh, TextBlock& block) {
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const Point p = mesh.point(v);
    block.text("v {} {} {}\n", p[0], p[1], p[2]);
  }
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    block.text("f {} {} {}\n", c[0] + 1, c[1] + 1, c[2] + 1);
  }
}

void writeOff(const Mesh& mesh, TextBlock& block) {
  block.text("OFF\n{} {} 0\n", mesh.vertexCount(), mesh.triangleCount());
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const Point p = mesh.point(v);
    block.text("{} {} {}\n", p[0], p[1], p[2]);
  }
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    block.text("3 {} {} {}\n", c[0], c[1], c[2]);
  }
}

template <class Number>
void writeBigEndian(Number number, TextBlock& block) {
  std::array<char, sizeof number> raw;
  std::memcpy(raw.data(), &number, raw.size());
  std::reverse(raw.begin(), raw.end());
  block.bytes(raw);
}

void writeBinaryOff(const Mesh& mesh, TextBlock& block) {
  block.text("OFF BINARY\n");
  for (const int count : {mesh.vertexCount(), mesh.triangleCount(), 0})
    writeBigEndian(std::int32_t{count}, block);
  for (const double coordinate : mesh.vertices)
    writeBigEndian(static_cast<float>(coordinate), block);
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    // Three corners, and no numbers of a colour.
    for (const int word : {3, c[0], c[1], c[2], 0}) writeBigEndian(std::int32_t{word}, block);
  }
}

void writePly(const Mesh& mesh, TextBlock& block, ByteSink& file) {
  block.text(
      "ply\nformat binary_little_endian 1.0\nelement vertex {}\nproperty double x\n"
      "property double y\nproperty double z\nelement face {}\n"
      "property list uchar int vertex_indices\nend_header\n",
      mesh.vertexCount(), mesh.triangleCount());
  block.flush();
  file.write(
      {reinterpret_cast<const char*>(mesh.vertices.data()), mesh.vertices.size() * sizeof(double)});
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    block.bytes(std::uint8_t{3});
    block.bytes(mesh.corners(t));
  }
}

void writePoint(const Point& p, TextBlock& block) {
  for (const double coordinate : p) block.bytes(static_cast<float>(coordinate));
}

void writeStl(const Mesh& mesh, TextBlock& block) {
  block.text("{:<80}", "binary STL written by qelm");
  block.bytes(static_cast<std::uint32_t>(mesh.triangleCount()));
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    const Point p = mesh.point(c[0]);
    Point normal = cross(mesh.point(c[1]) - p, mesh.point(c[2]) - p);
    const double size = length(normal);
    for (double& part : normal) part = size > 0 ? part / size : 0;
    writePoint(normal, block);
    for (const int v : c) writePoint(mesh.point(v), block);
    block.bytes(std::uint16_t{0});
  }
}

}  // namespace

MeshFormat writableFormat(const std::string& name, const std::string& wanted) {
  constexpr std::array<std::pair<std::string_view, MeshFormat>, 7> kFormats = {{
      {".obj", MeshFormat::kObj},
      {".off", MeshFormat::kOff},
      {".ply", MeshFormat::kPly},
      {".stl", MeshFormat::kStl},
      {".vtp", MeshFormat::kVtp},
      {".vtu", MeshFormat::kVtu},
      {".off-binary", MeshFormat::kOffBinary},
  }};
  if (name == "-" && wanted.empty()) return MeshFormat::kObj;
  std::string extension = "." + wanted;
  if (wanted.empty()) {
    std::vector<std::string_view> extensions;
    for (const auto& format : kFormats) extensions.push_back(format.first);
    extension =
        promisedFormat(name, extensions, fmt::format("meshes are written as {}", kWritableFormats));
  }
  for (const auto& format : kFormats)
    if (format.first == extension) return format.second;
  if (!wanted.empty())
    throw UsageError(fmt::format(
        "--format {}: one of obj, off, off-binary, ply, stl, vtp and vtu is needed", wanted));
  throw UsageError(fmt::format("-o {}: give a name that ends in {}", name, kWritableFormats));
}

int lostToSinglePrecision(const Mesh& mesh) {
  const auto rounded = [&mesh](int v) {
    const Point p = mesh.point(v);
    return std::array{static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])};
  };
  constexpr double kLargest = std::numeric_limits<float>::max();
  for (int v = 0; v < mesh.vertexCount(); ++v)
    for (const double coordinate : mesh.point(v))
      if (std::abs(coordinate) > kLargest)
        throw MeshError(fmt::format(
            "{}: too large for single precision, which STL and binary OFF hold; write .ply or .obj",
            describeVertex(mesh, v)));
  int lost = 0;
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    const auto p = rounded(c[0]);
    const auto q = rounded(c[1]);
    const auto r = rounded(c[2]);
    if (p == q || q == r || p == r) ++lost;
  }
  return lost;
}

void writeMesh(const Mesh& mesh, MeshFormat format, ByteSink& file) {
  TextBlock block(file);
  if (format == MeshFormat::kObj) writeObj(mesh, block);
  if (format == MeshFormat::kOff) writeOff(mesh, block);
  if (format == MeshFormat::kOffBinary) writeBinaryOff(mesh, block);
  if (format == MeshFormat::kPly) writePly(mesh, block, file);
  if (format == MeshFormat::kStl) writeStl(mesh, block);
  block.flush();
  if (format == MeshFormat::kVtp || format == MeshFormat::kVtu)
    writeVtkMesh(mesh, {}, {}, format == MeshFormat::kVtu, file);
}

}  // namespace qelm::tool
