// Sequences of points: how they compare, where a closed one starts, and where one
// meets itself.
#ifndef QELM_ISOLINES_CURVE_LOOPS_H
#define QELM_ISOLINES_CURVE_LOOPS_H

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "isolines/curve_graph.h"

namespace qelm {

using PointSequence = std::span<const Vec3>;

/// Lexicographic; a sequence that begins another comes before it.
std::strong_ordering compareSequences(PointSequence a, PointSequence b);

/// Where a closed sequence has its least point. Of several equal ones, that from
/// which the sequence is least as a whole. Requires a sequence that is not empty.
std::size_t leastStart(PointSequence closed);

/// For each entry of a sequence, 0, or for those near vertices that share their point
/// with another such entry, a number from 1 that stands for the point. Empty if no
/// point is shared. `vertexNear` has the entries' vertices as in CurveGraph.
std::vector<std::uint32_t> sharedPlaces(PointSequence sequence,
                                        std::span<const std::uint32_t> vertexNear);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_LOOPS_H
