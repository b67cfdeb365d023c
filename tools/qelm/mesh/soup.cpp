#include "mesh/soup.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "mesh/mesh_checks.h"
#include "mesh/vec3.h"
#include "mesh/weld.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// A surface has a few parts, whatever its size. A soup has about one for each triangle, or for each
// quadrilateral or strip that was written by itself.
constexpr int kTrianglesPerPart = 8;
constexpr std::size_t kManyParts = 1000;
// The part of a soup's vertices that welding leaves at most. Pairs that merge leave half of them.
constexpr double kMostLeft = 0.75;
// Vertices that a smaller tolerance leaves apart are cracks: hardly any may stay.
constexpr double kHardlyMore = 0.001;
// The part of the triangles that a tolerance may cost.
constexpr double kMostDropped = 0.001;
// Of the diagonal: the first tolerance. Each further one is ten times as large.
constexpr double kFinest = 1e-9;
constexpr int kTrials = 7;

/// Connected parts and vertices, without vertices in no triangle.
struct Size {
  std::size_t parts = 0;
  int vertices = 0;
};

Size sizeOf(const Mesh& mesh) {
  const std::vector<int> lowest = lowestOfPart(mesh);
  std::vector<bool> used(lowest.size(), false);
  for (const int v : mesh.triangles) used[asIndex(v)] = true;
  Size size;
  for (std::size_t v = 0; v < lowest.size(); ++v) {
    if (!used[v]) continue;
    ++size.vertices;
    if (asIndex(lowest[v]) == v) ++size.parts;
  }
  return size;
}

/// Whether the bounding box's diagonal is a number that welding can use.
bool hasDiagonal(const Mesh& mesh) {
  for (int v = 0; v < mesh.vertexCount(); ++v)
    if (!isFinite(mesh.point(v))) return false;
  try {
    return diagonal(mesh) > 0;
  } catch (const MeshError&) {
    return false;
  }
}

struct Trial {
  double tolerance;
  int vertices;          ///< that welding leaves
  int droppedTriangles;  ///< all triangles if welding leaves none
};

Trial tryToWeld(const Mesh& mesh, double tolerance) {
  try {
    const Welded welded = weld(mesh, tolerance);
    return {tolerance, welded.mesh.vertexCount(), welded.droppedTriangles};
  } catch (const MeshError&) {
    return {tolerance, 0, mesh.triangleCount()};
  }
}

/// From the finest tolerance to the coarsest that does not cost triangles. Triangles that even the
/// finest drops, such as repeated ones, are no cost.
std::vector<Trial> trials(const Mesh& mesh, double size) {
  std::vector<Trial> done;
  double tolerance = kFinest * size;
  for (int k = 0; k < kTrials; ++k, tolerance *= 10) {
    const Trial trial = tryToWeld(mesh, tolerance);
    const int before = done.empty() ? trial.droppedTriangles : done.front().droppedTriangles;
    if (trial.droppedTriangles - before > kMostDropped * mesh.triangleCount()) break;
    done.push_back(trial);
  }
  return done;
}

}  // namespace

std::optional<Soup> findSoup(const Mesh& mesh) {
  const Size before = sizeOf(mesh);
  const std::size_t few = asIndex(mesh.triangleCount() / kTrianglesPerPart);
  if (before.parts < 2 || before.parts < std::min(few, kManyParts) || !hasDiagonal(mesh)) return {};
  const double size = diagonal(mesh);
  const std::vector<Trial> done = trials(mesh, size);
  const int fewest = done.back().vertices;
  if (fewest == 0 || fewest > kMostLeft * before.vertices) return {};
  const auto enough = std::find_if(done.begin(), done.end(), [fewest](const Trial& trial) {
    return trial.vertices <= (1 + kHardlyMore) * fewest;
  });
  return Soup{before.parts, before.vertices - enough->vertices, enough->tolerance};
}

}  // namespace qelm::tool
