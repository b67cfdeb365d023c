// The easy part of a weld: clusters that lie alone, far from all other points.
//
// A spatial hash of large cubes keeps the first point of each cube.
//
//   +-------+-------+-------+
//   |       |  . .  |       |     a: all points are near the cube's first one, and none is within
//   |  :.   |     a |.  b   |        the margin of a face: they are one cluster, decided here
//   |     a |  b    |       |     b: some point is far from the first one, or near a face: the
//   +-------+-------+-------+        cube's points are left to the search
//
// Cost: one hash look-up and one distance for each point. The corners of a triangle soup are nearly
// all in cubes of kind a when the tolerance is small beside the edges.
#ifndef QELM_MESH_WELD_ALONE_H
#define QELM_MESH_WELD_ALONE_H

#include <cstdint>
#include <span>
#include <vector>

#include "mesh/disjoint_sets.h"
#include "mesh/weld/weld_cells.h"

namespace qelm {

/// Unites the points of each cube that is a cluster of its own: every point is welded to the cube's
/// first one, and none is so near a face that a point in another cube could be welded to it. There
/// is a point at least.
///
/// Returns the undecided points, ascending. None of them is welded to a point that is decided. Some
/// of them may be united already: pairs that are to be welded in any case.
std::vector<std::int32_t> uniteIsolatedClusters(std::span<const double> vertices,
                                                const WeldScale& scale, DisjointSets& sets);

}  // namespace qelm

#endif  // QELM_MESH_WELD_ALONE_H
