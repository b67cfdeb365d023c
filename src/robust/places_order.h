// A numbering that comes from a mesh's places alone.
//
// Flips come to one result in whatever order they are made: the Delaunay triangulation.
// That is so to rounding while triangles are of some width. Where they are not, heights are
// raised, each triangle by itself, and what comes of it does depend on the order, as it does
// where rounding decides. Then the work is done in an order that every numbering of the same
// mesh leads to:
//
//   vertices    tagged before free ones, each by x, then y, then z
//   triangles   corners ascending, then by the first, second and third corner
#ifndef QELM_ROBUST_PLACES_ORDER_H
#define QELM_ROBUST_PLACES_ORDER_H

#include <cstdint>
#include <span>

#include "robust/double_cover.h"

namespace qelm {

/// Cotangents above this need the order: their rounding error, 2^-52 of themselves, is
/// 2^-42 of a good triangle's then.
constexpr double kSteepCotangent = 0x1p10;

/// coverOf() the mesh in that order, its vertices by their numbers in the mesh as given.
/// Only vertices at one place are told apart by numbers. Needs 12 bytes for each triangle
/// and 28 for each vertex besides, until it returns.
DoubleCover coverInOrderOfPlaces(std::int32_t taggedCount, std::span<const double> coordinates,
                                 std::span<const std::int32_t> triangles);

}  // namespace qelm

#endif  // QELM_ROBUST_PLACES_ORDER_H
