#include "mesh/weld.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "mesh/clusters.h"
#include "mesh/hash_index.h"
#include "qelm.h"

namespace qelm {
namespace {

/// A root comes before the other members of its cluster, so its welded index is
/// known when they need it.
std::int32_t weldVertices(std::span<const double> vertices, const std::vector<std::int32_t>& roots,
                          const WeldOutput& output) {
  std::int32_t count = 0;
  for (std::size_t i = 0; i < roots.size(); ++i) {
    const auto root = static_cast<std::size_t>(roots[i]);
    if (root == i) {
      std::copy_n(vertices.begin() + static_cast<std::ptrdiff_t>(3 * i), 3,
                  output.vertices.begin() + 3 * static_cast<std::ptrdiff_t>(count));
      output.vertexMap[i] = count++;
    } else {
      output.vertexMap[i] = output.vertexMap[root];
    }
  }
  return count;
}

using Corners = std::array<std::int32_t, 3>;

/// The vertices of a triangle, whatever their order.
Triple keyOf(Corners corners) {
  std::sort(corners.begin(), corners.end());
  return {static_cast<std::uint64_t>(corners[0]), static_cast<std::uint64_t>(corners[1]),
          static_cast<std::uint64_t>(corners[2])};
}

struct KeyOfTriangle {
  std::span<const std::int32_t> triangles;
  Triple operator()(std::int32_t id) const {
    const auto corner = 3 * static_cast<std::size_t>(id);
    return keyOf({triangles[corner], triangles[corner + 1], triangles[corner + 2]});
  }
};

Corners weldedCorners(std::span<const std::int32_t> triangles, std::size_t j,
                      const WeldOutput& output) {
  const auto welded = [&](std::size_t k) {
    return output.vertexMap[static_cast<std::size_t>(triangles[3 * j + k])];
  };
  return {welded(0), welded(1), welded(2)};
}

std::int32_t weldTriangles(std::span<const std::int32_t> triangles, const WeldOutput& output) {
  HashIndex<KeyOfTriangle> kept(triangles.size() / 3, KeyOfTriangle{output.triangles});
  std::int32_t count = 0;
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const Corners c = weldedCorners(triangles, j, output);
    if (c[0] == c[1] || c[1] == c[2] || c[0] == c[2]) continue;
    if (kept.findOrInsert(keyOf(c), count) != count) continue;
    std::copy(c.begin(), c.end(),
              output.triangles.begin() + 3 * static_cast<std::ptrdiff_t>(count));
    ++count;
  }
  return count;
}

}  // namespace

WeldCounts weld(std::span<const double> vertices, std::span<const std::int32_t> triangles,
                double tolerance, const WeldOutput& output) {
  const std::int32_t vertexCount =
      weldVertices(vertices, clusterRoots(vertices, tolerance), output);
  return {vertexCount, weldTriangles(triangles, output)};
}

}  // namespace qelm

extern "C" int qelmWeld(int vertexCount, const double* vertices, int triangleCount,
                        const int* triangles, double tolerance, double* weldedVertices,
                        int* weldedTriangles, int* vertexMap, int* weldedVertexCount,
                        int* weldedTriangleCount) {
  // A NaN tolerance passes: it welds nothing.
  if (vertexCount < 0 || triangleCount < 0 || tolerance < 0.0) return 1;
  if (weldedVertexCount != nullptr) *weldedVertexCount = 0;
  if (weldedTriangleCount != nullptr) *weldedTriangleCount = 0;
  if (vertexCount == 0) return 0;
  const auto n = static_cast<std::size_t>(vertexCount);
  const auto m = static_cast<std::size_t>(triangleCount);
  const qelm::WeldCounts counts =
      qelm::weld({vertices, 3 * n}, {triangles, 3 * m}, tolerance,
                 {{weldedVertices, 3 * n}, {weldedTriangles, 3 * m}, {vertexMap, n}});
  *weldedVertexCount = counts.vertices;
  *weldedTriangleCount = counts.triangles;
  return 0;
}
