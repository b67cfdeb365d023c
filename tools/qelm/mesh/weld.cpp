#include "mesh/weld.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "mesh/box.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "mesh/vec3.h"
#include "qelm.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

void dropUnusedVertices(Welded& welded) {
  const int before = welded.mesh.vertexCount();
  welded.mesh = usedPart(welded.mesh).mesh;
  welded.droppedVertices = before - welded.mesh.vertexCount();
}

}  // namespace

double diagonal(const Mesh& mesh) {
  const double result = length(boxOf(mesh).size());
  if (!std::isfinite(result))
    throw MeshError("the mesh is too large: its diagonal is not finite; scale it down");
  return result;
}

Welded weld(const Mesh& mesh, double tolerance) {
  checkFinite(mesh);
  Welded welded;
  welded.mesh.vertices.resize(mesh.vertices.size());
  welded.mesh.triangles.resize(mesh.triangles.size());
  std::vector<int> map(asIndex(mesh.vertexCount()));
  int vertexCount = 0;
  int triangleCount = 0;
  const int status =
      qelmWeld(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
               mesh.triangles.data(), tolerance, welded.mesh.vertices.data(),
               welded.mesh.triangles.data(), map.data(), &vertexCount, &triangleCount);
  if (status != QELM_STATUS_OK)
    throw MeshError(fmt::format("the library refuses to weld with status {}", status));
  if (triangleCount == 0)
    throw MeshError(
        fmt::format("welding within {} leaves no triangle; use a smaller tolerance", tolerance));
  welded.mesh.vertices.resize(3 * asIndex(vertexCount));
  welded.mesh.triangles.resize(3 * asIndex(triangleCount));
  welded.droppedTriangles = mesh.triangleCount() - triangleCount;
  dropUnusedVertices(welded);
  return welded;
}

Mesh withOwnCorners(const Mesh& mesh) {
  Mesh soup;
  soup.vertices.reserve(3 * mesh.triangles.size());
  soup.triangles.reserve(mesh.triangles.size());
  for (std::size_t k = 0; k < mesh.triangles.size(); ++k) {
    const Point p = mesh.point(mesh.triangles[k]);
    soup.vertices.insert(soup.vertices.end(), p.begin(), p.end());
    soup.triangles.push_back(asInt(k));
  }
  return soup;
}

}  // namespace qelm::tool
