// Edges whose weight in the equations is negative: only they let a field leave the range of
// the values that are held.
#ifndef QELM_TOOLS_DELAUNAY_H
#define QELM_TOOLS_DELAUNAY_H

#include <array>
#include <cstddef>
#include <span>

#include "mesh/mesh.h"

namespace qelm::tool {

struct NotDelaunay {
  std::size_t count = 0;
  std::size_t free = 0;                 ///< of these, edges with an end that is not held
  std::array<int, 2> first = {-1, -1};  ///< the lowest edge's ends
};

/// Counts the edges for which the cotangents of the opposite angles add up to less than 0: two
/// triangles whose angles opposite the edge are more than 180 degrees together, or a boundary edge
/// opposite an obtuse angle. Without such edges every free value is a mean of its neighbours'
/// with positive weights (the discrete maximum principle). Sums that are negative by rounding
/// alone do not count. `tags` are not 0 at held vertices.
NotDelaunay notDelaunay(const Mesh& mesh, std::span<const int> tags);

}  // namespace qelm::tool

#endif
