#include "robust/edge_fan.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace qelm {
namespace {

/// The direction from a to b, of a size around 1; 0 if they are equal. Halves first: the
/// difference of two coordinates may be too large for a double.
Vec3 directionOf(Vec3 a, Vec3 b) {
  const Vec3 half = {b.x / 2 - a.x / 2, b.y / 2 - a.y / 2, b.z / 2 - a.z / 2};
  int exponent = 0;
  std::frexp(largestComponent(half), &exponent);
  return {std::ldexp(half.x, -exponent), std::ldexp(half.y, -exponent),
          std::ldexp(half.z, -exponent)};
}

/// Two vectors at right angles to the axis and to each other. That they are not of one
/// length changes angles, but not their order.
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

/// Grows with the angle of (x, y), from -2 to 2; 0 for no direction at all.
double pseudoAngle(double x, double y) {
  const double size = std::fabs(x) + std::fabs(y);
  if (size == 0) return 0;
  const double p = y / size;
  if (x >= 0) return p;
  return y >= 0 ? 2 - p : -2 - p;
}

}  // namespace

// The axis leads from the end that is first in space, whichever is called a, so that the
// same numbers are compared; the other way round the order is the reverse.
void sortRoundEdge(Vec3 a, Vec3 b, std::vector<FanBlade>& blades) {
  const bool turned = std::tie(b.x, b.y, b.z) < std::tie(a.x, a.y, a.z);
  const Vec3 start = turned ? b : a;
  const Vec3 axis = directionOf(start, turned ? a : b);
  const Frame frame = frameAround(axis);
  const auto angleOf = [&](Vec3 apex) {
    const Vec3 towards = directionOf(start, apex);
    return pseudoAngle(dot(frame.u, towards), dot(frame.v, towards));
  };
  struct Placed {
    double angle;
    FanBlade blade;
  };
  std::vector<Placed> placed;
  placed.reserve(blades.size());
  for (const FanBlade& blade : blades) placed.push_back({angleOf(blade.apex), blade});
  std::sort(placed.begin(), placed.end(), [](const Placed& p, const Placed& q) {
    const Vec3 c = p.blade.apex;
    const Vec3 d = q.blade.apex;
    return std::tie(p.angle, c.x, c.y, c.z, p.blade.side) <
           std::tie(q.angle, d.x, d.y, d.z, q.blade.side);
  });
  if (turned) std::reverse(placed.begin(), placed.end());
  std::transform(placed.begin(), placed.end(), blades.begin(),
                 [](const Placed& p) { return p.blade; });
}

}  // namespace qelm
