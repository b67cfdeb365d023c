#include "mesh/check/quality.h"

#include <algorithm>
#include <cmath>

namespace qelm {
namespace {

/// The power of two that scales a positive magnitude to 0.5 .. 1, or as near as a normal number
/// can: the smallest magnitudes reach 2^-52 only.
double scaleToOne(double magnitude) {
  int exponent = 0;
  std::frexp(magnitude, &exponent);
  return std::ldexp(1.0, std::clamp(-exponent, -1022, 1022));
}

}  // namespace

TriangleShape shapeOf(Vec3 p0, Vec3 p1, Vec3 p2) {
  const double reach = std::max({largestComponent(p0), largestComponent(p1), largestComponent(p2)});
  if (reach == 0) return {0, 0};
  const double toReach = scaleToOne(reach);
  Vec3 e01 = toReach * p1 - toReach * p0;
  Vec3 e02 = toReach * p2 - toReach * p0;
  Vec3 e12 = toReach * p2 - toReach * p1;

  // Scaled once more: edges may be any number of digits shorter than coordinates.
  const double extent =
      std::max({largestComponent(e01), largestComponent(e02), largestComponent(e12)});
  if (extent == 0) return {0, 0};
  const double toExtent = scaleToOne(extent);
  e01 = toExtent * e01;
  e02 = toExtent * e02;
  e12 = toExtent * e12;

  const double longest = std::max({length(e01), length(e02), length(e12)});
  const double height = length(cross(e01, e02)) / longest;
  const double width = std::max(longest, reach * toReach * toExtent);
  return {longest / toExtent / toReach, height / longest * (height / width)};
}

}  // namespace qelm
