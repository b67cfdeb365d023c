// Intrinsic edge flips until the triangulation of the cover is Delaunay.
//
// In: a cover with a cotangent for each half-edge. Out: the same surface and vertices with other
// edges, none of which has a negative weight. An edge is not Delaunay if its two opposite angles
// add up to more than pi, which makes its weight negative; flipping it makes the weight positive:
//
//          c                 c
//        /   \             / | \      not Delaunay: angle(c) + angle(d) > pi, that is
//      a ----- b    ->    a  |  b                   cot(c) + cot(d) < 0
//        \   /             \ | /
//          d                 d
//
// The new edge lies in the surface, also where the two triangles are not in one plane. The new
// cotangents follow from the old ones alone. A queue holds the edges that are not Delaunay; each
// flip can add its four neighbours.
//
// Cost: a look at each edge, and at five for each flip. (Bobenko and Springborn, A discrete
// Laplace-Beltrami operator for simplicial surfaces, 2007, who show that the flips end; Fisher,
// Springborn, Schroeder and Bobenko, An algorithm for the construction of intrinsic Delaunay
// triangulations, 2007.)
#ifndef QELM_ROBUST_FLIPS_H
#define QELM_ROBUST_FLIPS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "robust/double_cover.h"

namespace qelm {

/// An edge counts as not Delaunay if its two cotangents add up to less than
/// -(kDelaunayMargin + kDelaunayMarginShare * the largest cotangent of its faces). The share is
/// above the rounding error of a sum after a chain of flips; without a margin, rounding could flip
/// an edge whose triangles share a circumcircle to and fro for ever.
constexpr double kDelaunayMargin = 1e-12;
constexpr double kDelaunayMarginShare = 1e-14;

struct Flips {
  /// Edges of the mesh before the first flip; where three or more triangles meet, half of the pairs
  /// that are not Delaunay.
  std::int64_t notDelaunayEdges;
  std::int64_t done;
  bool finished;  ///< false if the limit was reached before the end
};

/// Flips until every edge is Delaunay, or `limit` times. Edges without twin stay, and so does an
/// edge with one face on both of its sides, which is always Delaunay. Needs 4 bytes for each edge
/// that is not Delaunay and a bit for each half-edge.
Flips flipToDelaunay(DoubleCover& cover, std::int64_t limit);

/// Several times the flips that a mesh of m triangles is known to need: grids of needles take up to
/// 60 for each triangle; a flat ring with vertices on its two rims alone, twisted against each
/// other, the worst that was found, takes m / 14. At the limit, rounding keeps the flips from
/// ending, or they would take many minutes.
constexpr std::int64_t flipLimit(std::size_t m) {
  const auto triangles = static_cast<std::int64_t>(m);
  return 10'000'000 + triangles * (200 + std::min<std::int64_t>(triangles / 2, 20'000));
}

}  // namespace qelm

#endif  // QELM_ROBUST_FLIPS_H
