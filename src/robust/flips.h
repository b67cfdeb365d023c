// Flips edges until the triangulation is Delaunay, on the surface itself.
//
// An edge whose two opposite angles add up to more than a straight one has a negative
// weight. Flipping it, inside the surface and without moving a vertex, makes it positive,
// and in the end every edge is good (Bobenko and Springborn, A discrete Laplace-Beltrami
// operator for simplicial surfaces, 2007; Fisher, Springborn, Schroeder and Bobenko, An
// algorithm for the construction of intrinsic Delaunay triangulations, 2007):
//
//          c                 c
//        /   \             / | \      bad: angle(c) + angle(d) > pi, that is
//      a ----- b    ->    a  |  b          cot(c) + cot(d) < 0
//        \   /             \ | /
//          d                 d
//
// The new cotangents follow from the old ones alone.
#ifndef QELM_ROBUST_FLIPS_H
#define QELM_ROBUST_FLIPS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "robust/double_cover.h"

namespace qelm {

/// An edge is bad when its two cotangents add up to less than
/// -(kBadSum + kBadSumShare * the largest cotangent of its faces). The share is above the
/// rounding error of a sum that a chain of flips has gone through; without a margin,
/// rounding could flip an edge on a circle to and fro for ever.
constexpr double kBadSum = 1e-12;
constexpr double kBadSumShare = 1e-14;

struct Flips {
  std::int64_t badEdges;  ///< of the mesh, before the first flip; where three or more triangles
                          ///< meet, half of the pairs that are bad
  std::int64_t done;
  bool finished;  ///< false: the limit was reached while there were bad edges
};

/// Flips until no edge is bad, or `limit` times. Edges without twin stay, and so does an
/// edge with one face on both of its sides, which is never bad. Needs 4 bytes for each bad
/// edge and a bit for each half-edge.
Flips flipBadEdges(DoubleCover& cover, std::int64_t limit);

/// Several times what a mesh of m triangles is known to need: grids of needles take up to
/// 60 flips for each triangle, and a flat ring with vertices on its two rims alone, twisted
/// against each other, the worst that was found, m / 14. Reaching the limit means that
/// rounding keeps the flips from coming to an end, or that they would take many minutes.
constexpr std::int64_t flipLimit(std::size_t m) {
  const auto triangles = static_cast<std::int64_t>(m);
  return 10'000'000 + triangles * (200 + std::min<std::int64_t>(triangles / 2, 20'000));
}

}  // namespace qelm

#endif  // QELM_ROBUST_FLIPS_H
