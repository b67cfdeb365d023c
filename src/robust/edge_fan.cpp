#include "robust/edge_fan.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace qelm {
namespace {

/// The direction from a to b, with a largest component around 1; 0 if they are equal. Coordinates
/// are halved first: their difference could overflow.
Vec3 directionOf(Vec3 a, Vec3 b) {
  const Vec3 half = {b.x / 2 - a.x / 2, b.y / 2 - a.y / 2, b.z / 2 - a.z / 2};
  int exponent = 0;
  std::frexp(largestComponent(half), &exponent);
  return {std::ldexp(half.x, -exponent), std::ldexp(half.y, -exponent),
          std::ldexp(half.z, -exponent)};
}

/// Two vectors at right angles to the axis and to each other. Their different lengths change
/// angles, but not the order of angles.
struct Frame {
  Vec3 u, v;
};

Frame frameAround(Vec3 axis) {
  const double least = std::min({std::fabs(axis.x), std::fabs(axis.y), std::fabs(axis.z)});
  const Vec3 off = std::fabs(axis.x) == least   ? Vec3{1, 0, 0}
                   : std::fabs(axis.y) == least ? Vec3{0, 1, 0}
                                                : Vec3{0, 0, 1};
  const Vec3 u = cross(axis, off);
  return {u, cross(axis, u)};
}

/// Grows with the angle of (x, y), from -2 to 2; 0 for (0, 0).
double pseudoAngle(double x, double y) {
  const double size = std::fabs(x) + std::fabs(y);
  if (size == 0) return 0;
  const double p = y / size;
  if (x >= 0) return p;
  return y >= 0 ? 2 - p : -2 - p;
}

}  // namespace

// The axis starts at the end with the lower coordinates, whichever is called a, so that the same
// numbers are compared in both cases. If that is b, the order is reversed.
void sortAroundEdge(Vec3 a, Vec3 b, std::vector<FanTriangle>& fan) {
  const bool reversed = std::tie(b.x, b.y, b.z) < std::tie(a.x, a.y, a.z);
  const Vec3 start = reversed ? b : a;
  const Vec3 axis = directionOf(start, reversed ? a : b);
  const Frame frame = frameAround(axis);
  const auto angleOf = [&](Vec3 apex) {
    const Vec3 towards = directionOf(start, apex);
    return pseudoAngle(dot(frame.u, towards), dot(frame.v, towards));
  };
  struct AtAngle {
    double angle;
    FanTriangle triangle;
  };
  std::vector<AtAngle> sorted;
  sorted.reserve(fan.size());
  for (const FanTriangle& triangle : fan) sorted.push_back({angleOf(triangle.apex), triangle});
  std::sort(sorted.begin(), sorted.end(), [](const AtAngle& p, const AtAngle& q) {
    const Vec3 c = p.triangle.apex;
    const Vec3 d = q.triangle.apex;
    return std::tie(p.angle, c.x, c.y, c.z, p.triangle.halfEdge) <
           std::tie(q.angle, d.x, d.y, d.z, q.triangle.halfEdge);
  });
  if (reversed) std::reverse(sorted.begin(), sorted.end());
  std::transform(sorted.begin(), sorted.end(), fan.begin(),
                 [](const AtAngle& p) { return p.triangle; });
}

}  // namespace qelm
