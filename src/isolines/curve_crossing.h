// Where a level crosses an edge.
//
// A crossed edge has one end below the level and one at or above it, so its ends
// are told apart by their values alone. Points are computed from the low and the
// high end, never from "first" and "second": the same bits come out whichever
// triangle asks, whichever way round, however the vertices are numbered.
#ifndef QELM_ISOLINES_CURVE_CROSSING_H
#define QELM_ISOLINES_CURVE_CROSSING_H

#include <algorithm>
#include <array>
#include <cmath>

#include "mesh/vec3.h"

namespace qelm {

/// A place on an edge: the share of its length, at most about a half, by which it is
/// away from one of its ends. The sign tells the end, that of zero as well: positive for
/// the low end, negative for the high end.
struct EdgePlace {
  double signedShare;

  static EdgePlace fromLowBy(double share) { return {share}; }
  static EdgePlace fromHighBy(double share) { return {-share}; }

  bool isFromLow() const { return !std::signbit(signedShare); }
  double share() const { return std::fabs(signedShare); }
};

/// The place where the difference of the values is infinite, because a value is or
/// because the subtraction overflows. An infinite value draws the crossing to the
/// other end, as ever larger finite ones do; between two infinite values it is in
/// the middle. A level at the high value is at the high end, infinite or not.
EdgePlace placeOnSteepEdge(double low, double high, double level);

/// The point `share` of the way from one end to the other where a difference of
/// coordinates may overflow. If it does, the ends have opposite signs, and the weighted
/// sum lies between them.
Vec3 pointOnLongEdge(const Vec3& from, const Vec3& to, double share);

/// Share of an edge's length up to which a crossing counts as next to a vertex. Where
/// edges of length h leave a vertex with coordinates of size c, crossings beyond
/// 2^-53 c / h of them are told apart by their coordinates. A millionth is far above
/// that for any sensible h, and rare enough to cost nothing.
inline constexpr double kNear = 0x1p-20;

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
///
/// Whether a crossing is nearer to the low end cannot be foreseen: what depends on it
/// is looked up, not branched on. The points at the ends must outlive the line.
class CrossedLine {
 public:
  CrossedLine(const Vec3& low, const Vec3& high, double lowValue, double highValue)
      : ends_{&low, &high},
        step_(high - low),
        lowValue_(lowValue),
        highValue_(highValue),
        rise_(highValue - lowValue) {}

  /// Requires lowValue < level <= highValue. Measured from the nearer end, so that a
  /// level close to an end's value keeps all its digits.
  EdgePlace placeOf(double level) const {
    return std::isfinite(rise_) ? ordinaryPlaceOf(level)
                                : placeOnSteepEdge(lowValue_, highValue_, level);
  }

  Vec3 pointAt(const EdgePlace& place) const {
    if (isShort()) return ordinaryPointAt(place);
    const Vec3& from = *ends_[place.isFromLow() ? 0 : 1];
    const Vec3& to = *ends_[place.isFromLow() ? 1 : 0];
    return pointOnLongEdge(from, to, place.share()) + Vec3{0, 0, 0};
  }

  /// Nothing overflows, and all points further than kNear from the ends differ from
  /// both. They do if on one axis the ends differ by more than 2^-30 of their sizes:
  /// kNear of that is 2^-50 of them, and rounding moves a point by 2^-53 and 3 u of the
  /// difference. What is added keeps away from underflow.
  bool isOrdinary() const {
    const auto apart = [](double step, double low, double high) {
      return std::fabs(step) > 0x1p-30 * (std::fabs(low) + std::fabs(high)) + 0x1p-900;
    };
    const Vec3& low = *ends_[0];
    const Vec3& high = *ends_[1];
    return std::isfinite(rise_) && isShort() &&
           (apart(step_.x, low.x, high.x) || apart(step_.y, low.y, high.y) ||
            apart(step_.z, low.z, high.z));
  }

  /// placeOf() of an ordinary edge.
  EdgePlace ordinaryPlaceOf(double level) const {
    const double aboveLow = level - lowValue_;
    const double belowHigh = highValue_ - level;
    return {std::copysign(std::min(aboveLow, belowHigh) / rise_, belowHigh - aboveLow)};
  }

  /// pointAt() of an ordinary edge. Adding 0.0 turns -0.0 into 0.0: equal points are
  /// equal bits.
  Vec3 ordinaryPointAt(const EdgePlace& place) const {
    return *ends_[place.isFromLow() ? 0 : 1] + place.signedShare * step_ + Vec3{0, 0, 0};
  }

 private:
  /// No difference of coordinates overflows; their sizes' sum may, which does not
  /// matter, as the long way gives the same bits.
  bool isShort() const {
    return std::isfinite(std::fabs(step_.x) + std::fabs(step_.y) + std::fabs(step_.z));
  }

  std::array<const Vec3*, 2> ends_;  ///< low, high
  Vec3 step_;                        ///< from low to high
  double lowValue_;
  double highValue_;
  double rise_;
};

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_CROSSING_H
