#include "curves/through.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

using Weights = std::array<double, 3>;

/// The nearest point of a segment to p, as how much of the way from a to b it is.
double partOf(const Point& a, const Point& b, const Point& p) {
  const Point along = b - a;
  const double squared = dot(along, along);
  return squared > 0 ? std::clamp(dot(p - a, along) / squared, 0.0, 1.0) : 0;
}

/// Barycentric coordinates of p's foot in the triangle's plane, if it is inside.
bool insideWeights(const std::array<Point, 3>& c, const Point& p, Weights& weights) {
  const Point normal = cross(c[1] - c[0], c[2] - c[0]);
  const double squared = dot(normal, normal);
  if (!(squared > 0)) return false;
  for (std::size_t k = 0; k < 3; ++k) {
    const Point& from = c[(k + 1) % 3];
    weights[k] = dot(cross(c[(k + 2) % 3] - from, p - from), normal) / squared;
    if (!(weights[k] >= 0)) return false;
  }
  return true;
}

Point mixed(const std::array<Point, 3>& c, const Weights& weights) {
  Point p{};
  for (std::size_t k = 0; k < 3; ++k)
    for (std::size_t axis = 0; axis < 3; ++axis) p[axis] += weights[k] * c[k][axis];
  return p;
}

/// Of the triangle's nearest point to p: its foot, or the nearest point of the three sides.
Weights nearestWeights(const std::array<Point, 3>& c, const Point& p) {
  Weights best{};
  if (insideWeights(c, p, best)) return best;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t k = 0; k < 3; ++k) {
    const std::size_t next = (k + 1) % 3;
    Weights weights{};
    weights[next] = partOf(c[k], c[next], p);
    weights[k] = 1 - weights[next];
    const double away = length(mixed(c, weights) - p);
    if (!(away < least)) continue;
    least = away;
    best = weights;
  }
  return best;
}

}  // namespace

PlaceOnMesh nearestPlace(const Mesh& mesh, std::span<const double> field, const Point& point) {
  PlaceOnMesh best{std::numeric_limits<double>::infinity(), 0};
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto v = mesh.corners(t);
    const std::array<Point, 3> c = {mesh.point(v[0]), mesh.point(v[1]), mesh.point(v[2])};
    const Weights weights = nearestWeights(c, point);
    const double away = length(mixed(c, weights) - point);
    if (!(away < best.distance)) continue;
    best = {away, 0};
    for (std::size_t k = 0; k < 3; ++k)
      best.value += weights[k] * field[static_cast<std::size_t>(v[k])];
  }
  return best;
}

}  // namespace qelm::tool
