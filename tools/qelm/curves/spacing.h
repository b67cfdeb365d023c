// --spacing: levels whose curves lie evenly apart.
#ifndef QELM_TOOLS_SPACING_H
#define QELM_TOOLS_SPACING_H

#include <span>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Levels from the field's smallest value upwards, such that the area between one and the next,
/// divided by the mean of their curves' lengths, is `spacing`. The first is as far from the
/// smallest value, whose curve is what curves just above it shrink to: a boundary loop held at it,
/// or a point. What is left between the last and the largest value is narrower. On a strip held at
/// two sides, a ring, or a cone held at its tip, that is the distance along the surface between
/// neighbouring curves, exactly; elsewhere their mean distance.
///
/// Area and length are those of the linear field on each triangle. Between two levels the area is
/// a sum of quadratic functions, a level's length one of linear functions; the next level is where
/// the quotient comes to `spacing`, found by false position. Triangles with one value everywhere
/// do not count: no curve can pass through them.
///
/// Requires a field with a range, finite at all corners. Throws RequestError where no level is far
/// enough from both ends, or more than ten thousand are.
std::vector<double> spacedLevels(const Mesh& mesh, std::span<const double> field, double spacing);

}  // namespace qelm::tool

#endif
