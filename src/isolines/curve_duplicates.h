// Pieces of curves that would lie twice on one edge of the mesh.
//
// Where an edge is at a level, values fall off on both its sides, and two
// triangles meet there, the level's curve runs along the edge in one triangle and
// back in the other. The two pieces enclose nothing, as around a lone vertex at
// the level. They are taken out and the loose ends joined on either end of the
// edge; what was outside them closes up as if the edge were just below the level.
#ifndef QELM_ISOLINES_CURVE_DOUBLES_H
#define QELM_ISOLINES_CURVE_DOUBLES_H

#include <cstdint>
#include <span>
#include <vector>

#include "isolines/curve_graph.h"

namespace qelm {

/// A piece between nodes near two different vertices: along the edge between them.
struct EdgePiece {
  std::uint32_t firstVertex = 0;   ///< the smaller number
  std::uint32_t secondVertex = 0;  ///< the larger number
  std::uint32_t level = 0;
  std::uint32_t firstNode = 0;   ///< near firstVertex
  std::uint32_t secondNode = 0;  ///< near secondVertex
};

/// Takes out pairs of pieces with the same end points along edges where two triangles
/// meet (holes not counted). Edges of more triangles keep theirs: each sheet has its own curve.
/// A node that loses both links is linked to itself. Sorts `pieces`.
void removeDoubledPieces(std::span<const std::int32_t> triangles,
                         std::span<const std::uint32_t> ranks, std::span<EdgePiece> pieces,
                         CurveGraph& graph);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_DOUBLES_H
