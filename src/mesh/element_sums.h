// The element stiffness of every triangle of a mesh, added to the stiffness matrix.
//
// Triangles go through in blocks: the corners of eight triangles are gathered, their element
// stiffnesses computed side by side, and the entries added one triangle after the other:
//
//   triangles j .. j+7  --gather-->  x0[8] y0[8] ... z2[8]  --element_block-->  k00[8] ... k02[8]
//
// Cost: the divisions of the element stiffness, and for each triangle three contributions to
// entries and three to diagonals.
#ifndef QELM_MESH_ELEMENT_SUMS_H
#define QELM_MESH_ELEMENT_SUMS_H

#include <cstdint>
#include <span>

#include "mesh/lower_triangle.h"

namespace qelm {

/// Adds the element stiffness of one triangle after the other, in their order. 3n coordinates,
/// packed xyz; 3m indices in 0 .. n-1, for which `lower` has buckets. Returns whether some triangle
/// repeats a vertex; then the matrix means nothing.
bool addElements(std::span<const double> coordinates, std::span<const std::int32_t> triangles,
                 LowerTriangle& lower);

}  // namespace qelm

#endif  // QELM_MESH_ELEMENT_SUMS_H
