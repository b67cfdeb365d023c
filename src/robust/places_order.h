// A numbering that comes from a mesh's places alone.
//
// Flips come to one result in whatever order they are made, the Delaunay triangulation, and
// a factorisation solves one system under every numbering. That is so to rounding while
// triangles are of some width. Where they are steep, rounding grows with the square of their
// cotangents, heights are raised, each triangle by itself, and what comes of it does depend
// on the order. Then flips and factorisation are done in an order that every numbering of
// the same mesh leads to, and give the same bits:
//
//   vertices    tagged before free ones, each by its cell in a fine grid, then by x, y, z
//   triangles   corners ascending, then by the first, second and third corner
//
// The right-hand sides are still summed in the caller's order. Their rounding does not grow:
// off the diagonal, matrix and factor have no positive entry, so that what a prescribed value
// adds to a field is a sum without differences, from the right-hand side to the last step of
// the solve. Each of the k roundings on its way changes it by 2^-53 of itself, and all
// prescribed values together add no more than the largest of them: k 2^-53 of that.
#ifndef QELM_ROBUST_PLACES_ORDER_H
#define QELM_ROBUST_PLACES_ORDER_H

#include <cstdint>
#include <span>
#include <vector>

#include "robust/double_cover.h"

namespace qelm {

/// Whether a triangle with a free vertex is steep.
bool haveSteepTriangle(std::int32_t taggedCount, std::span<const double> coordinates,
                       std::span<const std::int32_t> triangles);

/// The vertices in that order. Only those at one place are told apart by numbers.
std::vector<std::int32_t> orderOfPlaces(std::int32_t taggedCount,
                                        std::span<const double> coordinates);

/// coverOf() the mesh in that order, its vertices by their numbers in the mesh as given.
/// Needs 12 bytes for each triangle and 28 for each vertex besides, until it returns.
DoubleCover coverInOrder(const std::vector<std::int32_t>& order, std::int32_t taggedCount,
                         std::span<const double> coordinates,
                         std::span<const std::int32_t> triangles);

}  // namespace qelm

#endif  // QELM_ROBUST_PLACES_ORDER_H
