// The element stiffness of every triangle of a mesh, added to the stiffness matrix.
//
// Triangles go through in blocks of eight, whose element stiffnesses are computed side by side in
// the processor's vector registers:
//
//   triangles j .. j+7  --gather-->  x0[8] y0[8] ... z2[8]  --formula-->  k00[8] ... k02[8]  --add
//
// The entries are added one triangle after the other. Where vertices are numbered at random, each
// triangle needs memory that is in no cache: the points of a block and what will be added to are
// prefetched.
//
// Cost: the divisions of the element stiffness, and for each triangle three contributions to
// entries and three to diagonals.
#ifndef QELM_MESH_ELEMENT_SUMS_H
#define QELM_MESH_ELEMENT_SUMS_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "mesh/lower_triangle.h"

namespace qelm {

/// Triangles in a block. A multiple of every vector register's length.
inline constexpr std::size_t kBlock = 8;

/// Counts the contributions of all triangles, makes their buckets, and adds the element stiffness
/// of one triangle after the other, in their order. 3n coordinates, packed xyz; 3m indices in 0 ..
/// n-1. No triangle repeats a vertex. `lower` is new, with n vertices.
void addElements(std::span<const double> coordinates, std::span<const std::int32_t> triangles,
                 LowerTriangle& lower);

}  // namespace qelm

#endif  // QELM_MESH_ELEMENT_SUMS_H
