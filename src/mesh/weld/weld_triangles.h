// The triangles of a welded mesh, each once.
//
// In: triangles and the welded index of each vertex. Out: the triangles in welded indices without
// those that name a vertex twice, and without those whose three vertices an earlier one has. A hash
// table finds equal ones by their corners in ascending order:
//
//   vertex map 0 1 2 2     (0,1,2)   ->   (0,1,2)
//                          (1,3,0)   ->   (1,2,0), the corners of the first one: left out
//                          (2,3,1)   ->   (2,2,1), a vertex twice: left out
//
// Cost: one hash look-up for each triangle.
#ifndef QELM_MESH_WELD_TRIANGLES_H
#define QELM_MESH_WELD_TRIANGLES_H

#include <cstdint>
#include <span>

namespace qelm {

/// Writes to `welded` the triangles renumbered through `vertexMap`, corners in their own order.
/// Left out: those that name a vertex twice, and those with the same three vertices as one before.
/// Returns how many were written. The two triangle arrays may be the same.
std::int32_t weldTriangles(std::span<const std::int32_t> triangles,
                           std::span<const std::int32_t> vertexMap, std::span<std::int32_t> welded);

}  // namespace qelm

#endif  // QELM_MESH_WELD_TRIANGLES_H
