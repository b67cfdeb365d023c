// What every reader of mesh files promises, whatever the format.
#include "mesh_file_fuzz.h"

#include <cmath>
#include <limits>

#include "fuzz/tool_checks.h"
#include "mesh_files/mesh_reader.h"
#include "mesh_files/mesh_writer.h"
#include "mesh_files/triangulate.h"
#include "text/error.h"

namespace qelm::fuzz {
namespace {

using tool::Mesh;
using tool::MeshFormat;
using tool::PolygonSoup;

PolygonSoup readBack(const Mesh& mesh, MeshFormat format, const char* name) {
  Memory file;
  writeMesh(mesh, format, file);
  PolygonSoup soup;
  require(readsAs(name, file.bytes, soup), "what the tool writes it reads");
  return soup;
}

bool allWithin(const Mesh& mesh, double most) {
  for (const double coordinate : mesh.vertices)
    if (!(std::abs(coordinate) <= most)) return false;
  return true;
}

void requireSameMesh(const PolygonSoup& soup, const Mesh& mesh) {
  const auto faces = static_cast<std::size_t>(mesh.triangleCount());
  require(soup.points.size() == static_cast<std::size_t>(mesh.vertexCount()), "as many vertices");
  require(soup.faces.size() == faces, "as many faces");
  for (int v = 0; v < mesh.vertexCount(); ++v)
    require(sameBits(soup.points[static_cast<std::size_t>(v)], mesh.point(v)), "the same bits");
  for (int t = 0; t < mesh.triangleCount(); ++t)
    require(std::ranges::equal(soup.faces[static_cast<std::size_t>(t)], mesh.corners(t)),
            "the same corners");
}

void requireRounded(const PolygonSoup& soup, const Mesh& mesh) {
  require(soup.faces.size() == static_cast<std::size_t>(mesh.triangleCount()), "as many facets");
  for (int t = 0; t < mesh.triangleCount(); ++t)
    for (std::size_t k = 0; k < 3; ++k) {
      const auto corner = soup.faces[static_cast<std::size_t>(t)][k];
      const tool::Point p = mesh.point(mesh.corners(t)[k]);
      for (std::size_t axis = 0; axis < 3; ++axis)
        require(soup.points[static_cast<std::size_t>(corner)][axis] == static_cast<float>(p[axis]),
                "the corner in single precision");
    }
}

void requireRoundTrips(const Mesh& mesh) {
  requireSameMesh(readBack(mesh, MeshFormat::kPly, "again.ply"), mesh);
  if (!allWithin(mesh, std::numeric_limits<double>::max())) return;  // the others refuse it
  requireSameMesh(readBack(mesh, MeshFormat::kObj, "again.obj"), mesh);
  requireSameMesh(readBack(mesh, MeshFormat::kOff, "again.off"), mesh);
  if (allWithin(mesh, std::numeric_limits<float>::max()))
    requireRounded(readBack(mesh, MeshFormat::kStl, "again.stl"), mesh);
}

std::size_t mostTriangles(const PolygonSoup& soup) {
  std::size_t triangles = 0;
  for (std::size_t f = 0; f < soup.faces.size(); ++f) triangles += soup.faces[f].size() - 2;
  return triangles;
}

void requireSplit(const tool::Triangulation& split, const PolygonSoup& soup) {
  require(static_cast<std::size_t>(split.mesh.triangleCount()) <= mostTriangles(soup),
          "at least two triangles fewer than a polygon has corners");
  require(split.mesh.vertices.size() == 3 * soup.points.size(), "the vertices stay");
  for (int t = 0; t < split.mesh.triangleCount(); ++t) {
    const auto c = split.mesh.corners(t);
    require(c[0] != c[1] && c[1] != c[2] && c[2] != c[0], "three different corners");
  }
}

/// A mesh that is taken strictly is the same one when it is not.
void requireStrictlySplit(const tool::Triangulation& split, const tool::Triangulation& lenient,
                          const PolygonSoup& soup) {
  require(static_cast<std::size_t>(split.mesh.triangleCount()) == mostTriangles(soup),
          "two triangles fewer than a polygon has corners");
  if (lenient.leftOut.count == 0)
    require(split.mesh.triangles == lenient.mesh.triangles, "the same triangles");
}

}  // namespace

int fuzzMeshFile(const char* name, const std::uint8_t* data, std::size_t size) {
  PolygonSoup soup;
  if (readsAs(name, std::string(data, data + size), soup)) requireGoodSoup(soup);
  return 0;
}

bool readsAs(const char* name, const std::string& bytes, PolygonSoup& soup) {
  try {
    soup = tool::readPolygonSoup(name, bytes);
    return true;
  } catch (const tool::FileError& error) {
    requireMessage(error.what(), std::string(name) + ":");
  } catch (const tool::MeshError& error) {
    requireMessage(error.what(), std::string(name) + ":");
  }
  return false;
}

void requireFinite(const PolygonSoup& soup) {
  for (std::size_t k = 0; k < soup.points.size(); ++k) {
    const tool::Point p = soup.points[k];
    for (const double coordinate : p) require(std::isfinite(coordinate), "finite coordinates");
  }
}

void requireGoodSoup(const PolygonSoup& soup) {
  require(!soup.points.empty() && !soup.faces.empty(), "a mesh is not empty");
  for (std::size_t f = 0; f < soup.faces.size(); ++f) {
    const std::span<const int> face = soup.faces[f];
    require(face.size() >= 3, "at least three corners");
    for (const int v : face)
      require(v >= 0 && static_cast<std::size_t>(v) < soup.points.size(), "indices in range");
  }
  try {
    const tool::Triangulation split = triangulate(soup);
    requireSplit(split, soup);
    requireRoundTrips(split.mesh);
    requireStrictlySplit(triangulateStrictly(soup), split, soup);
  } catch (const tool::MeshError& error) {
    requireMessage(error.what(),
                   std::string_view(error.what()).starts_with("none") ? "none" : "face ");
  }
}

}  // namespace qelm::fuzz
