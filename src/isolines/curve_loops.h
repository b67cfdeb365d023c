// Sequences of points: their order, the start of a closed one, and where one meets itself.
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

/// The index of the least point of a closed sequence. If several are equal, the one from which the
/// whole sequence is least. The sequence is not empty.
std::size_t leastStart(PointSequence closed);

/// For each point of a sequence 0, or a number from 1 for the points that are near a vertex and
/// equal to another such point: equal points have equal numbers. Empty if there are none.
/// `vertexNear` as in CurveGraph.
std::vector<std::uint32_t> sharedPoints(PointSequence sequence,
                                        std::span<const std::uint32_t> vertexNear);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_LOOPS_H
