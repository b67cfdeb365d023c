// Vertex welding: clusters of vertices nearer than a tolerance, and the triangles
// that are left of a mesh when each cluster is one vertex.
#ifndef QELM_MESH_WELD_H
#define QELM_MESH_WELD_H

#include <cstdint>
#include <span>
#include <vector>

#include "mesh/disjoint_sets.h"

namespace qelm {

/// Unites vertices (3n coordinates, packed xyz) whose squared distance
///
///   dx * dx + dy * dy + dz * dz,   summed from the left,
///
/// is strictly below tolerance * tolerance; single linkage. Exact: the same as
/// comparing all pairs. A tolerance of 0, or NaN, unites nothing.
DisjointSets uniteNeighbours(std::span<const double> vertices, double tolerance);

/// Numbers the sets in the order of their lowest elements. Writes each element's
/// number to `numbers` and returns the lowest elements.
std::vector<std::int32_t> numberSets(DisjointSets& sets, std::span<std::int32_t> numbers);

/// Writes to `welded` the triangles renumbered through `vertexMap`, corners in
/// their own order. Left out: those that name a vertex twice, and those with the
/// same three vertices as one before. Returns how many were written. The two
/// triangle arrays may be the same.
std::int32_t weldTriangles(std::span<const std::int32_t> triangles,
                           std::span<const std::int32_t> vertexMap, std::span<std::int32_t> welded);

}  // namespace qelm

#endif  // QELM_MESH_WELD_H
