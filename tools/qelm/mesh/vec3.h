// Vector arithmetic on points, and what it says of segments and triangles.
#ifndef QELM_TOOLS_VEC3_H
#define QELM_TOOLS_VEC3_H

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "mesh/mesh.h"

namespace qelm::tool {

inline Point operator-(const Point& a, const Point& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline Point operator+(const Point& a, const Point& b) {
  return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
inline double dot(const Point& a, const Point& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline Point cross(const Point& a, const Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double length(const Point& a) { return std::sqrt(dot(a, a)); }

inline bool isFinite(const Point& p) {
  return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

/// The point at t on the segment from a to b: a at 0, b at 1, exactly.
inline Point between(const Point& a, const Point& b, double t) {
  return {std::lerp(a[0], b[0], t), std::lerp(a[1], b[1], t), std::lerp(a[2], b[2], t)};
}

/// Where on the segment from a to b its nearest point to p is, from 0 to 1.
inline double nearestPart(const Point& a, const Point& b, const Point& p) {
  const Point along = b - a;
  const double squared = dot(along, along);
  return squared > 0 ? std::clamp(dot(p - a, along) / squared, 0.0, 1.0) : 0;
}

/// The normal of a triangle, twice as long as its area; seen from its tip the corners are
/// counter-clockwise.
inline Point areaVector(const Point& p, const Point& q, const Point& r) {
  return cross(q - p, r - p);
}
inline Point areaVector(const Mesh& mesh, int triangle) {
  const auto c = mesh.corners(triangle);
  return areaVector(mesh.point(c[0]), mesh.point(c[1]), mesh.point(c[2]));
}

/// The height below which a triangle cannot be told from one without area: eight roundings of its
/// largest coordinate. Each corner is off by half a rounding, and the differences that make the
/// height add some more.
inline double heightNoise(const Mesh& mesh, std::span<const int, 3> corners) {
  constexpr double kRoundings = 8;
  double largest = 0;
  for (const int v : corners)
    for (const double coordinate : mesh.point(v)) largest = std::max(largest, std::abs(coordinate));
  return kRoundings * std::numeric_limits<double>::epsilon() * largest;
}

}  // namespace qelm::tool

#endif
