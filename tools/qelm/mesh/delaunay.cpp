#include "mesh/delaunay.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "mesh/half_edges.h"
#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

/// Of the triangle's angle at the corner that the half-edge faces.
double facingCotangent(const Mesh& mesh, const HalfEdge& halfEdge) {
  const auto c = mesh.corners(halfEdge.triangle());
  const std::size_t k = halfEdge.facing();
  const Point apex = mesh.point(c[k]);
  const Point toA = mesh.point(c[(k + 1) % 3]) - apex;
  const Point toB = mesh.point(c[(k + 2) % 3]) - apex;
  return dot(toA, toB) / length(cross(toA, toB));
}

/// Whether an edge's weight is negative. Triangles without area have no cotangents.
bool isNegative(const Mesh& mesh, std::span<const HalfEdge> edge) {
  constexpr double kRounding = 1e-9;  // of the cotangents, for corners on one circle
  double sum = 0;
  double size = 1;
  for (const HalfEdge& halfEdge : edge) {
    const double cotangent = facingCotangent(mesh, halfEdge);
    if (!std::isfinite(cotangent)) continue;
    sum += cotangent;
    size = std::max(size, std::abs(cotangent));
  }
  return sum < -kRounding * size;
}

}  // namespace

NotDelaunay notDelaunay(const Mesh& mesh, std::span<const int> tags) {
  NotDelaunay found;
  forEachEdge(sortedHalfEdges(mesh), [&](std::span<const HalfEdge> edge) {
    const int low = edge[0].low;
    const int high = edge[0].high;
    if (low == high || !isNegative(mesh, edge)) return;
    if (found.count == 0) found.first = {low, high};
    ++found.count;
    if (tags[asIndex(low)] == 0 || tags[asIndex(high)] == 0) ++found.free;
  });
  return found;
}

}  // namespace qelm::tool
