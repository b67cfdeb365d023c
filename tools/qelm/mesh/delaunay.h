// Edges that are not Delaunay: those with a negative cotangent weight.
//
// The weight of an edge is the sum of the cotangents of the angles that face it. It is negative if
// two such angles are more than 180 degrees together, or if a boundary edge faces an obtuse angle.
// Without such edges the value of every free vertex is a mean of its neighbours' with positive
// weights, so that the field stays in the range of the prescribed values (the discrete maximum
// principle). Takes the time of sorting the half-edges.
#ifndef QELM_TOOLS_DELAUNAY_H
#define QELM_TOOLS_DELAUNAY_H

#include <array>
#include <cstddef>
#include <span>

#include "mesh/mesh.h"

namespace qelm::tool {

struct NotDelaunay {
  std::size_t count = 0;
  std::size_t free = 0;                 ///< of these, edges with a free end
  std::array<int, 2> first = {-1, -1};  ///< the lowest edge's ends
};

/// Sums that are negative by rounding alone do not count. `tags` are 0 at free vertices.
NotDelaunay notDelaunay(const Mesh& mesh, std::span<const int> tags);

}  // namespace qelm::tool

#endif
