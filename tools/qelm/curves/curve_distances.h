// How far apart the curves of neighbouring levels are.
#ifndef QELM_TOOLS_CURVE_DISTANCES_H
#define QELM_TOOLS_CURVE_DISTANCES_H

#include <optional>

#include "curves/curve_set.h"

namespace qelm::tool {

struct CurveDistances {
  double smallest, largest;
};

/// From points of a curve, `step` apart along it at most, to the nearest place on the curves of the
/// level before or after: straight through space, and to within `step`. None of fewer than two
/// levels that have curves.
std::optional<CurveDistances> distancesBetween(const CurveSet& curves, double step);

}  // namespace qelm::tool

#endif
