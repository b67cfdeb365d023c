// How far apart the curves of neighbouring levels are.
//
// Every curve is sampled at steps along it. A kd-tree over one level's samples finds the four that
// are nearest to a sample of the next level; the least distance to the segments on which they lie
// is the sample's distance. The smallest and the largest of all, from either level to the other,
// are the answer. Takes n log n steps for n samples, of which a level has a million at most.
#ifndef QELM_TOOLS_CURVE_DISTANCES_H
#define QELM_TOOLS_CURVE_DISTANCES_H

#include <optional>

#include "curves/curve_set.h"

namespace qelm::tool {

struct CurveDistances {
  double smallest, largest;
};

/// The distances straight through space, to within `step`, which is also how far apart samples are
/// at most. Nothing unless two levels have curves.
std::optional<CurveDistances> distancesBetween(const CurveSet& curves, double step);

}  // namespace qelm::tool

#endif
