// --spacing: levels whose curves lie evenly apart.
//
// From one level to the next the surface has an area A; the two curves have the mean length L. A /
// L is how wide the strip between them is, and the next level is where that comes to the spacing:
//
//    level b  ~~~~~~~~~~  length l_b        2 A(a, b) / (l_a + l_b) = spacing
//             area A(a, b)
//    level a  ~~~~~~~~~~  length l_a
//
// Within a triangle whose values are low <= middle <= high, the length at a level is linear below
// and above the middle value, the area below a level quadratic. A sweep from the smallest value
// upwards keeps the triangles that reach beyond the last level; false position finds the next one.
// Takes some ten evaluations of those triangles for each level.
#ifndef QELM_TOOLS_SPACING_H
#define QELM_TOOLS_SPACING_H

#include <span>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// The levels, increasing. The first is one spacing from the smallest value, whose curve is what
/// curves just above it shrink to: a boundary loop at that value, or a point. What is left between
/// the last level and the largest value is narrower. On a strip prescribed at two sides, a ring, or
/// a cone prescribed at its tip, neighbouring curves are exactly `spacing` apart along the surface;
/// elsewhere that is their mean distance. Triangles with one value everywhere do not count: no
/// curve can pass through them.
///
/// Requires a field with a range, finite at all corners. Throws RequestError where no level is far
/// enough from both ends, or more than ten thousand are.
std::vector<double> spacedLevels(const Mesh& mesh, std::span<const double> field, double spacing);

}  // namespace qelm::tool

#endif
