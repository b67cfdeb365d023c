#include "mesh/feature_edges.h"

#include <cmath>
#include <numbers>

#include "mesh/half_edges.h"
#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

/// The angle between the normals of an edge's two triangles, in radians; NaN if one has no area.
double bend(const Mesh& mesh, const HalfEdge& a, const HalfEdge& b) {
  const Point n = areaVector(mesh, a.triangle());
  Point m = areaVector(mesh, b.triangle());
  // Triangles that are oriented alike run along their edge in opposite directions.
  if (a.isUpward == b.isUpward) m = Point{} - m;
  if (!(length(n) > 0 && length(m) > 0)) return std::nan("");
  return std::atan2(length(cross(n, m)), dot(n, m));
}

}  // namespace

std::vector<int> featureVertices(const Mesh& mesh, double degrees) {
  const double least = degrees * std::numbers::pi / 180;
  std::vector<int> vertices;
  forEachEdge(sortedHalfEdges(mesh), [&](std::span<const HalfEdge> edge) {
    if (edge[0].low == edge[0].high) return;
    const bool isSharp =
        edge.size() > 2 || (edge.size() == 2 && bend(mesh, edge[0], edge[1]) > least);
    if (isSharp) vertices.insert(vertices.end(), {edge[0].low, edge[0].high});
  });
  return vertices;
}

}  // namespace qelm::tool
