// Where a level crosses an edge.
//
// A crossed edge has a low end, below the level, and a high end, at or above it. The point is found
// by linear interpolation from the nearer end, so that a level close to an end's value keeps all
// its digits:
//
//   low 1.0 ---x------------- high 2.0      level 1.2: 0.2 of the edge from the low end
//
// The ends are told apart by their values alone, so the bits of a point do not depend on which
// triangle asks or how the vertices are numbered.
#ifndef QELM_ISOLINES_CURVE_CROSSING_H
#define QELM_ISOLINES_CURVE_CROSSING_H

#include <algorithm>
#include <array>
#include <cmath>

#include "mesh/vec3.h"

namespace qelm {

/// A position on an edge: its distance from one end, as a share of the edge's length, at most about
/// a half. The sign, also of zero, tells the end: positive for the low end, negative for the high.
struct EdgePosition {
  double signedShare;

  static EdgePosition fromLowBy(double share) { return {share}; }
  static EdgePosition fromHighBy(double share) { return {-share}; }

  bool isFromLow() const { return !std::signbit(signedShare); }
  double share() const { return std::fabs(signedShare); }
};

/// The position where the difference of the values is infinite, because a value is or because the
/// subtraction overflows. An infinite value moves the crossing to the other end, the limit of ever
/// larger values; between two infinite values it is in the middle. A level equal to the high value
/// is at the high end, infinite or not.
EdgePosition positionOnSteepEdge(double low, double high, double level);

/// The point `share` of the way from one end to the other where a difference of coordinates may
/// overflow. If one does, the ends have opposite signs, and the weighted sum lies between them.
Vec3 pointOnLongEdge(const Vec3& from, const Vec3& to, double share);

/// The share of an edge's length up to which a crossing counts as near a vertex. On edges of length
/// h at a vertex with coordinates of size c, crossings further away than the share 2^-53 c / h have
/// different coordinates. A millionth is far above that for any sensible h, and rare enough to cost
/// nothing.
inline constexpr double kNear = 0x1p-20;

/// A crossed edge.
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
/// Which end is nearer cannot be predicted, so that end is looked up without a branch. The points
/// at the ends must outlive the line.
class CrossedLine {
 public:
  CrossedLine(const Vec3& low, const Vec3& high, double lowValue, double highValue)
      : ends_{&low, &high},
        step_(high - low),
        lowValue_(lowValue),
        highValue_(highValue),
        rise_(highValue - lowValue) {}

  /// Requires lowValue < level <= highValue.
  EdgePosition positionOf(double level) const {
    return std::isfinite(rise_) ? ordinaryPositionOf(level)
                                : positionOnSteepEdge(lowValue_, highValue_, level);
  }

  Vec3 pointAt(const EdgePosition& position) const {
    if (isShort()) return ordinaryPointAt(position);
    const Vec3& from = *ends_[position.isFromLow() ? 0 : 1];
    const Vec3& to = *ends_[position.isFromLow() ? 1 : 0];
    return pointOnLongEdge(from, to, position.share()) + Vec3{0, 0, 0};
  }

  /// Whether nothing overflows, and every point further than kNear from the ends differs from both.
  /// The latter holds if on one axis the ends differ by more than 2^-30 of their sizes: kNear of
  /// that is 2^-50 of their sizes, and rounding moves a point by 2^-53 of them and 3 u of the
  /// difference. The term 2^-900 keeps away from underflow.
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

  /// positionOf() on an ordinary edge.
  EdgePosition ordinaryPositionOf(double level) const {
    const double aboveLow = level - lowValue_;
    const double belowHigh = highValue_ - level;
    return {std::copysign(std::min(aboveLow, belowHigh) / rise_, belowHigh - aboveLow)};
  }

  /// pointAt() on an ordinary edge. Adding 0.0 turns -0.0 into 0.0: equal points have equal bits.
  Vec3 ordinaryPointAt(const EdgePosition& position) const {
    return *ends_[position.isFromLow() ? 0 : 1] + position.signedShare * step_ + Vec3{0, 0, 0};
  }

 private:
  /// Whether no difference of coordinates overflows. False also if only the sum of their sizes
  /// overflows: pointOnLongEdge() then gives the same bits.
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
