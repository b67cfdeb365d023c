// The free rows of the stiffness matrix with weights that are never negative.
//
// In: a cover whose edges are all Delaunay. Out: the two blocks of the rows of free vertices,
// summed over the cover's edges as the plain assembly sums over triangles:
//
//   edge ij with the opposite cotangents c and c', on s sheets      w = (c + c') / (2 s)
//
//   K_ij -= w,  K_ii += w,  K_jj += w
//
// Cost: three walks over the cover's half-edges, and a counting sort of its edges by row.
#ifndef QELM_ROBUST_ROBUST_ROWS_H
#define QELM_ROBUST_ROBUST_ROWS_H

#include <cstddef>
#include <cstdint>

#include "mesh/free_rows.h"
#include "mesh/lower_triangle.h"
#include "robust/double_cover.h"

namespace qelm {

/// Whether the plain matrix, by its merged lower triangle, can stay if no triangle is steep: all
/// entries of its free rows are finite, and none off the diagonal is above kRoundingOfPlain.
///
/// Edges whose triangles share a circumcircle, such as the diagonals of a regular grid, have weight
/// 0. Rounding moves it by less than 1e-12 where no triangle is steep or far from the origin.
bool hasNonnegativeWeights(const LowerTriangle& plain, std::int32_t taggedCount);
constexpr double kRoundingOfPlain = 1e-12;

/// The blocks of a mesh with so many vertices. Weights that are negative within rounding count as
/// 0, so that no entry off the diagonal is positive; weights of 0 leave no entry. Takes 36 bytes
/// for each triangle and sheet beside the result and three quarters of the cover.
FreeRowBlocks robustRows(DoubleCover cover, std::int32_t taggedCount, std::size_t vertexCount);

}  // namespace qelm

#endif  // QELM_ROBUST_ROBUST_ROWS_H
