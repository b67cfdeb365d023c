// The free rows of the stiffness matrix with weights that are never negative.
#ifndef QELM_ROBUST_ROBUST_ROWS_H
#define QELM_ROBUST_ROBUST_ROWS_H

#include <cstdint>
#include <span>

#include "mesh/free_rows.h"
#include "robust/double_cover.h"

namespace qelm {

/// Whether a plain matrix has nothing that wants repair, unless triangles are steep: all
/// entries of free rows are finite, and none off the diagonal is above kRoundingOfPlain.
///
/// Edges on a circle, such as the diagonals of a regular grid, have weight 0. What rounding
/// makes of it is below 1e-12 where no triangle is steep or far from the origin.
bool isGood(const FreeRowBlocks& plain);
constexpr double kRoundingOfPlain = 1e-12;

/// K_ij = -w_ij with w_ij = (cot + cot') / 2 over the edges from i to j, halved where there
/// are two sheets, and K_ii the sum of row i's weights. Edges that are bad within rounding
/// count as 0, so that no entry off the diagonal is positive; weights of 0 leave no entry.
///
/// Memory beyond the result and what is left of the cover: 36 bytes for each triangle and sheet.
FreeRowBlocks robustRows(DoubleCover cover, std::int32_t taggedCount, std::size_t vertexCount);

}  // namespace qelm

#endif  // QELM_ROBUST_ROBUST_ROWS_H
