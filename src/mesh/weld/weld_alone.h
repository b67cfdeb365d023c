// The easy part of a weld: clusters that lie alone, far from everything else.
#ifndef QELM_MESH_WELD_ALONE_H
#define QELM_MESH_WELD_ALONE_H

#include <cstdint>
#include <span>
#include <vector>

#include "mesh/disjoint_sets.h"
#include "mesh/weld/weld_cells.h"

namespace qelm {

/// Unites points where a coarse grid shows without a search what belongs together: all
/// points of one of its cubes are welded to the first one of them, and none is so near
/// a face that a point in another cube could be welded to it. Corners of a mesh's
/// triangles are nearly all like that when the tolerance is small beside its edges.
///
/// Returns the other points, ascending. None of them is welded to a point that is not
/// among them. Pairs of them may be united already, if they are to be welded.
std::vector<std::int32_t> uniteAlone(std::span<const double> vertices, const WeldScale& scale,
                                     DisjointSets& sets);

}  // namespace qelm

#endif  // QELM_MESH_WELD_ALONE_H
