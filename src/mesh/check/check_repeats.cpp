// Triangles and vertices that are there more than once, found with hash tables.
#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "interface/index.h"
#include "mesh/check/check.h"
#include "mesh/index_table.h"

namespace qelm {
namespace {

using Corners = std::array<std::int32_t, 3>;

Corners sortedCorners(const MeshView& mesh, std::int32_t triangle) {
  const auto c = mesh.corners(asIndex(triangle));
  Corners sorted = {c[0], c[1], c[2]};
  std::sort(sorted.begin(), sorted.end());
  return sorted;
}

void checkTriangles(const MeshView& mesh, QelmMeshReport& report) {
  IndexTable seen(mesh.triangleCount());
  for (std::size_t j = 0; j < mesh.triangleCount(); ++j) {
    if (!mesh.isSound(j)) continue;
    const auto index = asInt(j);
    const Corners c = sortedCorners(mesh, index);
    const auto hash = hashWords(static_cast<std::uint64_t>(c[0]), static_cast<std::uint64_t>(c[1]),
                                static_cast<std::uint64_t>(c[2]));
    const auto same = [&](std::int32_t other) { return sortedCorners(mesh, other) == c; };
    if (seen.findOrInsert(hash, index, same) != index) note(report.repeatedTriangle, j);
  }
}

std::span<const double> pointOf(const MeshView& mesh, std::size_t vertex) {
  return mesh.vertices.subspan(3 * vertex, 3);
}

/// Adding 0 turns -0.0 into 0.0: equal coordinates must have equal bits.
std::uint64_t wordOf(double coordinate) { return std::bit_cast<std::uint64_t>(coordinate + 0.0); }

/// Vertices with exactly the coordinates of an earlier one. Those that are not finite are left out.
void checkVertices(const MeshView& mesh, QelmMeshReport& report) {
  IndexTable seen(mesh.vertexCount());
  for (std::size_t i = 0; i < mesh.vertexCount(); ++i) {
    if (!mesh.isFinite(i)) continue;
    const auto index = asInt(i);
    const auto p = pointOf(mesh, i);
    const auto same = [&](std::int32_t other) {
      return std::ranges::equal(pointOf(mesh, asIndex(other)), p);
    };
    const auto hash = hashWords(wordOf(p[0]), wordOf(p[1]), wordOf(p[2]));
    if (seen.findOrInsert(hash, index, same) != index) note(report.coincidentVertex, i);
  }
}

}  // namespace

void checkRepeats(const MeshView& mesh, QelmMeshReport& report) {
  checkTriangles(mesh, report);
  checkVertices(mesh, report);
}

}  // namespace qelm
