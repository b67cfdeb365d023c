// Sequences of nodes: how they compare, where a closed one starts, and where one
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

using NodeSequence = std::span<const std::uint32_t>;

/// Lexicographic by the points; a sequence that begins another comes before it.
std::strong_ordering compareSequences(std::span<const CurveNode> nodes, NodeSequence a,
                                      NodeSequence b);

/// Where a closed sequence has its least point. Of several equal ones, that from
/// which the sequence is least as a whole. Requires a sequence that is not empty.
std::size_t leastStart(std::span<const CurveNode> nodes, NodeSequence closed);

/// For each entry of a sequence, 0, or for those nodes near vertices that share their
/// point with another such entry, a number from 1 that stands for the point.
/// Empty if no point is shared. vertexNear as in CurveGraph.
std::vector<std::uint32_t> sharedPlaces(std::span<const CurveNode> nodes,
                                        std::span<const std::uint32_t> vertexNear,
                                        NodeSequence sequence);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_LOOPS_H
