// An order of vertices and triangles that depends on coordinates alone.
//
// In: a mesh in any numbering. Out: the same order whichever numbering it was. Flips lead to the
// same Delaunay triangulation in any order, and a factorisation solves the same system under any
// numbering, both up to rounding. With steep triangles rounding grows with the square of their
// cotangents, and raised heights make flips depend on the order. Flips and factorisation then work
// in this order, and give the same bits for every numbering:
//
//   vertices    prescribed before free ones, each by cell along a Morton curve, then by x, y, z
//   triangles   corners ascending, then by the first, second and third corner
//
//   cells in two dimensions, in the curve's order      0 1 4 5
//                                                      2 3 6 7
//
// Vertices near in space are then near in memory, mostly. Cost: sorting the vertices. (Morton, A
// computer oriented geodetic data base and a new technique in file sequencing, 1966.)
//
// Right-hand sides are still summed in the caller's order. Their rounding does not grow: off the
// diagonal, matrix and factor have no positive entry, so that a prescribed value's part of a field
// is a sum without differences, from the right-hand side to the last step of the solve. Each of its
// k roundings changes it by 2^-53 of itself, and all parts together are no larger than the largest
// prescribed value: k 2^-53 of that.
#ifndef QELM_ROBUST_SPATIAL_ORDER_H
#define QELM_ROBUST_SPATIAL_ORDER_H

#include <cstdint>
#include <span>
#include <vector>

#include "robust/double_cover.h"

namespace qelm {

/// The vertices in that order. Those at the same point keep the order of their numbers.
std::vector<std::int32_t> spatialOrder(std::int32_t taggedCount,
                                       std::span<const double> coordinates);

/// coverOf() the mesh in that order; the cover's vertices have the numbers of the given mesh. Needs
/// 12 bytes more for each triangle and 28 for each vertex until it returns.
DoubleCover coverInOrder(const std::vector<std::int32_t>& order, std::int32_t taggedCount,
                         std::span<const double> coordinates,
                         std::span<const std::int32_t> triangles);

}  // namespace qelm

#endif  // QELM_ROBUST_SPATIAL_ORDER_H
