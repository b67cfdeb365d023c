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

/// The ends of an edge and their values, lowValue < highValue.
struct EdgeEnds {
  Vec3 low;
  Vec3 high;
  double lowValue;
  double highValue;
};

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

/// Requires low < level <= high. Measured from the nearer end, so that a level
/// close to an end's value keeps all its digits.
inline EdgePlace placeOnEdge(double low, double high, double level) {
  const double rise = high - low;
  if (!std::isfinite(rise)) return placeOnSteepEdge(low, high, level);
  const double aboveLow = level - low;
  const double belowHigh = high - level;
  return aboveLow <= belowHigh ? EdgePlace{true, aboveLow / rise}
                               : EdgePlace{false, belowHigh / rise};
}

/// One coordinate, `share` of the way. Exact where from == to, so that cuts of a
/// flat mesh are flat. As share is at most a half (and 3 u, see below), rounding
/// cannot carry the sum past `to`. Where the difference overflows, the ends have
/// opposite signs, and the weighted sum lies between them. -0.0 becomes 0.0:
/// equal points are equal bits.
inline double coordinateTowards(double from, double to, double share) {
  const double difference = to - from;
  const double sum =
      std::isfinite(difference) ? from + share * difference : (1 - share) * from + share * to;
  return sum + 0.0;
}

/// The point of an edge at a level, lowValue < level <= highValue.
///
/// With u = 2^-53, the share carries three roundings (two differences and a
/// quotient), the product with the coordinate difference two more, and the sum
/// one: for finite values and coordinates, each coordinate is within
///   3 u |high - low| + u max(|low|, |high|)
/// of the exact point, as 5/2 u and terms of u^2 stay below 3 u; plus the smallest
/// positive double where a product underflows.
inline Vec3 crossingPoint(const EdgeEnds& ends, double level) {
  const EdgePlace place = placeOnEdge(ends.lowValue, ends.highValue, level);
  const Vec3& from = place.fromLow ? ends.low : ends.high;
  const Vec3& to = place.fromLow ? ends.high : ends.low;
  return {coordinateTowards(from.x, to.x, place.share),
          coordinateTowards(from.y, to.y, place.share),
          coordinateTowards(from.z, to.z, place.share)};
}

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_CROSSING_H
