#include "curves/through.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

using Weights = std::array<double, 3>;

/// The barycentric coordinates of p's projection onto the triangle's plane; false if that is
/// outside.
bool insideWeights(const std::array<Point, 3>& c, const Point& p, Weights& weights) {
  const Point normal = areaVector(c[0], c[1], c[2]);
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

/// The barycentric coordinates of the triangle's nearest point to p: its projection, or the nearest
/// point of an edge.
Weights nearestWeights(const std::array<Point, 3>& c, const Point& p) {
  Weights best{};
  if (insideWeights(c, p, best)) return best;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t k = 0; k < 3; ++k) {
    const std::size_t next = (k + 1) % 3;
    Weights weights{};
    weights[next] = nearestPart(c[k], c[next], p);
    weights[k] = 1 - weights[next];
    const double away = length(mixed(c, weights) - p);
    if (!(away < least)) continue;
    least = away;
    best = weights;
  }
  return best;
}

}  // namespace

PointOnMesh nearestOnMesh(const Mesh& mesh, std::span<const double> field, const Point& point) {
  PointOnMesh best{std::numeric_limits<double>::infinity(), 0};
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto v = mesh.corners(t);
    const std::array<Point, 3> c = {mesh.point(v[0]), mesh.point(v[1]), mesh.point(v[2])};
    const Weights weights = nearestWeights(c, point);
    const double away = length(mixed(c, weights) - point);
    if (!(away < best.distance)) continue;
    best = {away, 0};
    for (std::size_t k = 0; k < 3; ++k) best.value += weights[k] * field[asIndex(v[k])];
  }
  return best;
}

}  // namespace qelm::tool
