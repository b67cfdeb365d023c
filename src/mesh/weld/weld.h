// Vertex welding: vertices nearer than a tolerance become one.
//
// In: 3n coordinates and a tolerance. Out: clusters of vertices in union-find, and their numbers. A
// cluster is what single linkage joins: a chain of vertices, each nearer than the tolerance to the
// next. Three steps find what to unite, the cheapest first:
//
//   1 weld_alone   coarse grid      a cube whose points are all near its first point, and far from
//                                   its faces, is a cluster of its own: most of a triangle soup
//   2 weld_cells   small cells      the points of one cell are nearer than the tolerance to each
//                                   other: they are united without a test, however many they are
//   3 weld         kd-tree          one point for each cell; what it finds near is tested exactly
//
// Cost: hash look-ups for 1 and 2, O(n); c log c for the c cells that step 1 leaves. Small cells in
// front of a search for neighbours are those of Gan and Tao (DBSCAN revisited, 2015).
#ifndef QELM_MESH_WELD_H
#define QELM_MESH_WELD_H

#include <cstdint>
#include <span>
#include <vector>

#include "mesh/disjoint_sets.h"

namespace qelm {

/// Unites vertices (3n coordinates, packed xyz, n > 0) whose squared distance
///
///   dx * dx + dy * dy + dz * dz,   summed from the left,
///
/// is strictly below tolerance * tolerance; single linkage. Exact: the same as
/// comparing all pairs. A tolerance of 0, or NaN, unites nothing.
DisjointSets uniteNeighbours(std::span<const double> vertices, double tolerance);

/// Numbers the sets in the order of their lowest elements. Writes each element's
/// number to `numbers` and returns the lowest elements.
std::vector<std::int32_t> numberSets(DisjointSets& sets, std::span<std::int32_t> numbers);

}  // namespace qelm

#endif  // QELM_MESH_WELD_H
