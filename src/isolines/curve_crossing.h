// Where a level crosses an edge.
//
// A crossed edge has one end below the level and one at or above it, so its ends
// are told apart by their values alone. Points are computed from the low and the
// high end, never from "first" and "second": the same bits come out whichever
// triangle asks, whichever way round, however the vertices are numbered.
#ifndef QELM_ISOLINES_CURVE_CROSSING_H
#define QELM_ISOLINES_CURVE_CROSSING_H

#include <cmath>

#include "mesh/vec3.h"

namespace qelm {

/// A place on an edge: `share` of its length, at most about a half, away from one
/// of its ends.
struct EdgePlace {
  bool fromLow;
  double share;
};

/// The place where the difference of the values is infinite, because a value is or
/// because the subtraction overflows. An infinite value draws the crossing to the
/// other end, as ever larger finite ones do; between two infinite values it is in
/// the middle. A level at the high value is at the high end, infinite or not.
inline EdgePlace placeOnSteepEdge(double low, double high, double level) {
  if (level == high) return {false, 0.0};
  if (std::isinf(low) && std::isinf(high)) return {true, 0.5};
  if (std::isinf(high)) return {true, 0.0};
  if (std::isinf(low)) return {false, 0.0};
  // Halves of values this large are exact, and their difference is finite.
  const double rise = high / 2 - low / 2;
  const double fromLow = (level / 2 - low / 2) / rise;
  const double fromHigh = (high / 2 - level / 2) / rise;
  return fromLow <= fromHigh ? EdgePlace{true, fromLow} : EdgePlace{false, fromHigh};
}

/// An edge with a value below a level at one end and a value at or above it at the
/// other.
///
/// With u = 2^-53, the share carries three roundings (two differences and a
/// quotient), the product with the coordinate difference two more, and the sum
/// one: for finite values and coordinates, each coordinate is within
///   3 u |high - low| + u max(|low|, |high|)
/// of the exact point, as 5/2 u and terms of u^2 stay below 3 u; plus the smallest
/// positive double where a product underflows. As the share is at most a half (and
/// 3 u), rounding cannot carry a point past either end. Where a coordinate is the
/// same at both ends, it is exactly that: cuts of a flat mesh are flat.
class CrossedLine {
 public:
  CrossedLine(const Vec3& low, const Vec3& high, double lowValue, double highValue)
      : low_(low),
        high_(high),
        step_(high - low),
        lowValue_(lowValue),
        highValue_(highValue),
        rise_(highValue - lowValue),
        isShort_(std::isfinite(step_.x) && std::isfinite(step_.y) && std::isfinite(step_.z)) {}

  /// Requires lowValue < level <= highValue. Measured from the nearer end, so that a
  /// level close to an end's value keeps all its digits.
  EdgePlace placeOf(double level) const {
    if (!std::isfinite(rise_)) return placeOnSteepEdge(lowValue_, highValue_, level);
    const double aboveLow = level - lowValue_;
    const double belowHigh = highValue_ - level;
    const bool fromLow = aboveLow <= belowHigh;
    return {fromLow, (fromLow ? aboveLow : belowHigh) / rise_};
  }

  /// Adding 0.0 turns -0.0 into 0.0: equal points are equal bits.
  Vec3 pointAt(const EdgePlace& place) const {
    const Vec3& from = place.fromLow ? low_ : high_;
    const double share = place.fromLow ? place.share : -place.share;
    if (isShort_) return from + share * step_ + Vec3{0, 0, 0};
    return longPoint(place) + Vec3{0, 0, 0};
  }

 private:
  /// Where a difference overflows, the ends have opposite signs, and the weighted
  /// sum lies between them.
  Vec3 longPoint(const EdgePlace& place) const {
    const Vec3& from = place.fromLow ? low_ : high_;
    const Vec3& to = place.fromLow ? high_ : low_;
    const auto coordinate = [&](double a, double b) {
      return std::isfinite(b - a) ? a + place.share * (b - a)
                                  : (1 - place.share) * a + place.share * b;
    };
    return {coordinate(from.x, to.x), coordinate(from.y, to.y), coordinate(from.z, to.z)};
  }

  Vec3 low_;
  Vec3 high_;
  Vec3 step_;  ///< from low to high
  double lowValue_;
  double highValue_;
  double rise_;
  bool isShort_;
};

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_CROSSING_H
