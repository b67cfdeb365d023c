// The order of points by their coordinates.
#ifndef QELM_ISOLINES_CURVE_POINTS_H
#define QELM_ISOLINES_CURVE_POINTS_H

#include <bit>
#include <compare>
#include <cstdint>

#include "mesh/vec3.h"

namespace qelm {

/// Whether the points are equal. False if a coordinate is NaN.
inline bool samePoint(const Vec3& a, const Vec3& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}

/// An integer that orders doubles as < does, with -0.0 before 0.0 and NaN at the ends: a strict
/// order of all doubles, as sorting needs.
inline std::int64_t orderedBits(double value) {
  const auto bits = std::bit_cast<std::int64_t>(value);
  return bits < 0 ? bits ^ INT64_MAX : bits;
}

/// By x, then y, then z.
inline std::strong_ordering comparePoints(const Vec3& a, const Vec3& b) {
  if (const auto x = orderedBits(a.x) <=> orderedBits(b.x); x != 0) return x;
  if (const auto y = orderedBits(a.y) <=> orderedBits(b.y); y != 0) return y;
  return orderedBits(a.z) <=> orderedBits(b.z);
}

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_POINTS_H
