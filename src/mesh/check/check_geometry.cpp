// Coordinates that are not finite, and the shapes of triangles. A triangle that does not name three
// different vertices, or has a corner that is not finite, has a defect already and no shape.
#include <algorithm>

#include "interface/index.h"
#include "mesh/check/check.h"
#include "mesh/check/quality.h"

namespace qelm {
namespace {

bool hasAShape(const MeshView& mesh, std::size_t triangle) {
  const auto c = mesh.corners(triangle);
  return mesh.isSound(triangle) && std::all_of(c.begin(), c.end(), [&mesh](std::int32_t v) {
           return mesh.isFinite(asIndex(v));
         });
}

/// A triangle is reported as too flat or as too small or large, never as both.
void noteShape(const TriangleShape& shape, std::size_t triangle, QelmMeshReport& report) {
  if (shape.quality < report.worstQuality) {
    report.worstQuality = shape.quality;
    report.worstTriangle = static_cast<std::int64_t>(triangle);
  }
  if (shape.quality < kLeastQuality) {
    note(report.nearZeroArea, triangle);
  } else if (shape.longestEdge < kShortestLongestEdge || shape.longestEdge > kLongestLongestEdge) {
    note(report.sizeOutOfRange, triangle);
  }
}

}  // namespace

void checkGeometry(const MeshView& mesh, QelmMeshReport& report) {
  for (std::size_t i = 0; i < mesh.vertexCount(); ++i) {
    if (!mesh.isFinite(i)) note(report.notFinite, i);
  }
  for (std::size_t j = 0; j < mesh.triangleCount(); ++j) {
    if (!hasAShape(mesh, j)) continue;
    const auto c = mesh.corners(j);
    const auto corner = [&](std::size_t k) { return pointAt(mesh.vertices, c[k]); };
    noteShape(shapeOf(corner(0), corner(1), corner(2)), j, report);
  }
}

}  // namespace qelm
