#include "mesh/delaunay.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

struct FacingSide {
  int low, high;
  double cotangent;  ///< of the opposite angle
};

std::vector<FacingSide> sidesOf(const Mesh& mesh) {
  std::vector<FacingSide> sides;
  sides.reserve(mesh.triangles.size());
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = c[(k + 1) % 3];
      const int b = c[(k + 2) % 3];
      const Point toA = mesh.point(a) - mesh.point(c[k]);
      const Point toB = mesh.point(b) - mesh.point(c[k]);
      const double cotangent = dot(toA, toB) / length(cross(toA, toB));
      if (a != b && std::isfinite(cotangent))
        sides.push_back({std::min(a, b), std::max(a, b), cotangent});
    }
  }
  std::sort(sides.begin(), sides.end(), [](const FacingSide& a, const FacingSide& b) {
    return std::tie(a.low, a.high) < std::tie(b.low, b.high);
  });
  return sides;
}

}  // namespace

NotDelaunay notDelaunay(const Mesh& mesh, std::span<const int> tags) {
  constexpr double kRounding = 1e-9;  // of the cotangents, for corners on one circle
  const std::vector<FacingSide> sides = sidesOf(mesh);
  NotDelaunay found;
  for (std::size_t first = 0; first < sides.size();) {
    const auto [low, high, ignored] = sides[first];
    double sum = 0;
    double size = 1;
    for (; first < sides.size() && sides[first].low == low && sides[first].high == high; ++first) {
      sum += sides[first].cotangent;
      size = std::max(size, std::abs(sides[first].cotangent));
    }
    if (!(sum < -kRounding * size)) continue;
    if (found.count == 0) found.first = {low, high};
    ++found.count;
    if (tags[static_cast<std::size_t>(low)] == 0 || tags[static_cast<std::size_t>(high)] == 0)
      ++found.free;
  }
  return found;
}

}  // namespace qelm::tool
