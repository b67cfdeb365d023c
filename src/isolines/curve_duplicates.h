// Takes out duplicates: segments of one level that run along an edge of the mesh on both sides.
//
// Where both ends of an edge have the level as their value, lower values lie on both sides and two
// triangles meet there, the level's curve runs along the edge in one triangle and back in the
// other. The two segments enclose nothing. They are taken out, and their nodes at each end of the
// edge are linked to each other; the curve closes as if the edge were just below the level:
//
//    ... 0 --------- 2 ...              ... 0           2 ...
//        a ==edge=== b          ->          |a         b|
//    ... 1 --------- 3 ...              ... 1           3 ...
//
// Cost: sorting the segments that run along edges, and one pass over the triangles if there are
// duplicates.
#ifndef QELM_ISOLINES_CURVE_DUPLICATES_H
#define QELM_ISOLINES_CURVE_DUPLICATES_H

#include <cstdint>
#include <span>
#include <vector>

#include "isolines/curve_graph.h"

namespace qelm {

/// A segment between nodes near two different vertices: it runs along the edge between them.
struct EdgeSegment {
  std::uint32_t firstVertex = 0;   ///< the smaller number
  std::uint32_t secondVertex = 0;  ///< the larger number
  std::uint32_t level = 0;
  std::uint32_t firstNode = 0;   ///< near firstVertex
  std::uint32_t secondNode = 0;  ///< near secondVertex
};

/// Takes out pairs of segments with the same end points along edges where two triangles meet (holes
/// not counted). Edges of more triangles keep theirs: each sheet has its own curve. A node whose
/// two links are taken out is linked to itself. Sorts `segments`.
void removeDuplicateSegments(std::span<const std::int32_t> triangles,
                             std::span<const std::uint32_t> ranks, std::span<EdgeSegment> segments,
                             CurveGraph& graph);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_DUPLICATES_H
