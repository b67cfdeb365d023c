#include "mesh/soup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "mesh/mesh_checks.h"
#include "mesh/weld.h"
#include "text/error.h"

namespace qelm::tool {
namespace {

// A surface has a few parts, whatever its size; a soup has about one for each triangle, or for
// each quadrilateral or strip that was written by itself.
constexpr int kTrianglesOfAPart = 8;
constexpr std::size_t kManyParts = 1000;
// Of the vertices: pairs that merge leave half of them.
constexpr double kMostLeft = 0.75;
constexpr double kHardlyMore = 0.02;
// Of the triangles: repeated ones are dropped by any tolerance, others by one that is too large.
constexpr double kMostDropped = 0.01;
constexpr double kFinest = 1e-9;  // of the diagonal, seven times ten times as much

/// Parts and vertices of the triangles: vertices in none do not count.
struct Size {
  std::size_t parts = 0;
  int vertices = 0;
};

Size sizeOf(const Mesh& mesh) {
  const std::vector<int> lowest = lowestOfPart(mesh);
  std::vector<bool> used(lowest.size(), false);
  for (const int v : mesh.triangles) used[static_cast<std::size_t>(v)] = true;
  Size size;
  for (std::size_t v = 0; v < lowest.size(); ++v) {
    if (!used[v]) continue;
    ++size.vertices;
    if (static_cast<std::size_t>(lowest[v]) == v) ++size.parts;
  }
  return size;
}

bool isFinite(const Point& p) {
  return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
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

/// How many vertices welding leaves; all of them where it costs triangles.
int verticesLeft(const Mesh& mesh, int vertices, double tolerance) {
  try {
    const Welded welded = weld(mesh, tolerance);
    const bool isTooMuch = welded.droppedTriangles > kMostDropped * mesh.triangleCount();
    return isTooMuch ? vertices : welded.mesh.vertexCount();
  } catch (const MeshError&) {
    return vertices;  // no triangle was left
  }
}

}  // namespace

std::optional<Soup> findSoup(const Mesh& mesh) {
  const Size before = sizeOf(mesh);
  const auto few = static_cast<std::size_t>(mesh.triangleCount() / kTrianglesOfAPart);
  if (before.parts < 2 || before.parts < std::min(few, kManyParts) || !hasDiagonal(mesh)) return {};
  const double size = diagonal(mesh);
  std::array<double, 7> tolerances;
  std::array<int, 7> left;
  double tolerance = kFinest * size;
  for (std::size_t k = 0; k < tolerances.size(); ++k, tolerance *= 10) {
    tolerances[k] = tolerance;
    left[k] = verticesLeft(mesh, before.vertices, tolerance);
  }
  const int fewest = *std::min_element(left.begin(), left.end());
  if (fewest > kMostLeft * before.vertices) return {};
  std::size_t k = 0;
  while (left[k] > (1 + kHardlyMore) * fewest) ++k;
  return Soup{before.parts, before.vertices - left[k], tolerances[k]};
}

}  // namespace qelm::tool
