#include "repair/repair.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "mesh/used_part.h"
#include "mesh/weld.h"
#include "repair/t_joints.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

/// Of triangles with the same corners, however oriented, the first stays.
int dropRepeated(Mesh& mesh) {
  using Corners = std::array<int, 3>;
  std::vector<std::pair<Corners, int>> sorted;
  sorted.reserve(asIndex(mesh.triangleCount()));
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    Corners c = {mesh.corners(t)[0], mesh.corners(t)[1], mesh.corners(t)[2]};
    std::sort(c.begin(), c.end());
    sorted.emplace_back(c, t);
  }
  std::sort(sorted.begin(), sorted.end());
  std::vector<bool> repeats(sorted.size(), false);
  for (std::size_t k = 1; k < sorted.size(); ++k)
    if (sorted[k].first == sorted[k - 1].first) repeats[asIndex(sorted[k].second)] = true;
  std::size_t kept = 0;
  for (std::size_t k = 0; k < mesh.triangles.size(); ++k)
    if (!repeats[k / 3]) mesh.triangles[kept++] = mesh.triangles[k];
  const auto dropped = asInt((mesh.triangles.size() - kept) / 3);
  mesh.triangles.resize(kept);
  return dropped;
}

void add(FlatRemoval& sum, const FlatRemoval& more) {
  sum.collapsedEdges += more.collapsedEdges;
  sum.splitSides += more.splitSides;
  sum.left = more.left;
}

}  // namespace

Repaired repair(const Mesh& mesh, double tolerance) {
  Repaired result;
  Welded welded = weld(mesh, tolerance);
  result.mesh = std::move(welded.mesh);
  result.droppedTriangles = welded.droppedTriangles;
  const int used = usedPart(mesh).mesh.vertexCount();
  // A vertex that only collapsed triangles used counts as merged.
  result.mergedVertices = used - result.mesh.vertexCount();
  result.unusedVertices = mesh.vertexCount() - used;
  add(result.flat, removeFlatTriangles(result.mesh, tolerance));
  result.joints = closeTJoints(result.mesh, tolerance);
  if (result.joints > 0) add(result.flat, removeFlatTriangles(result.mesh, tolerance));
  result.droppedTriangles += dropRepeated(result.mesh);
  if (result.mesh.triangles.empty())
    throw MeshError("no triangle has any height; use a smaller tolerance");
  result.mesh = usedPart(result.mesh).mesh;
  result.orientation = orientAlike(result.mesh);
  return result;
}

}  // namespace qelm::tool
