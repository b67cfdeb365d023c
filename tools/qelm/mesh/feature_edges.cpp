#include "mesh/feature_edges.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <tuple>

#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

struct EdgeUse {
  int low, high;
  int triangle;
  bool forward;  ///< the triangle goes from low to high
};

std::vector<EdgeUse> edgeUses(const Mesh& mesh) {
  std::vector<EdgeUse> uses;
  uses.reserve(mesh.triangles.size());
  for (int t = 0; t < mesh.triangleCount(); ++t)
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = mesh.corners(t)[k];
      const int b = mesh.corners(t)[(k + 1) % 3];
      if (a != b) uses.push_back({std::min(a, b), std::max(a, b), t, a < b});
    }
  std::sort(uses.begin(), uses.end(), [](const EdgeUse& a, const EdgeUse& b) {
    return std::tie(a.low, a.high, a.triangle) < std::tie(b.low, b.high, b.triangle);
  });
  return uses;
}

Point normalOf(const Mesh& mesh, int triangle) {
  const auto c = mesh.corners(triangle);
  const Point p = mesh.point(c[0]);
  return cross(mesh.point(c[1]) - p, mesh.point(c[2]) - p);
}

/// Between the normals, in radians; NaN for a triangle without area.
double bend(const Mesh& mesh, const EdgeUse& a, const EdgeUse& b) {
  const Point n = normalOf(mesh, a.triangle);
  Point m = normalOf(mesh, b.triangle);
  if (a.forward == b.forward) m = Point{} - m;
  if (!(length(n) > 0 && length(m) > 0)) return std::nan("");
  return std::atan2(length(cross(n, m)), dot(n, m));
}

}  // namespace

std::vector<int> featureVertices(const Mesh& mesh, double degrees) {
  const double least = degrees * std::numbers::pi / 180;
  const std::vector<EdgeUse> uses = edgeUses(mesh);
  std::vector<int> vertices;
  for (std::size_t first = 0; first < uses.size();) {
    std::size_t last = first + 1;
    while (last < uses.size() && uses[last].low == uses[first].low &&
           uses[last].high == uses[first].high)
      ++last;
    const bool isSharp =
        last - first > 2 || (last - first == 2 && bend(mesh, uses[first], uses[first + 1]) > least);
    if (isSharp) vertices.insert(vertices.end(), {uses[first].low, uses[first].high});
    first = last;
  }
  return vertices;
}

}  // namespace qelm::tool
