// The free rows of the stiffness matrix as Eigen's compressed columns.
//
// In: the strictly lower triangle by rows, columns ascending. Out: both triangles by columns, row
// indices ascending. One walk over the rows i = 0, 1, ... puts each entry (i, j), j < i, twice:
//
//   by rows    by columns, [ ] the diagonal
//   1: 0       0: [0] 1  2  3     above the diagonal of column i: row i in its order, since the
//   2: 0  1    1:  0 [1] 2        matrix is symmetric
//   3: 0  2    2:  0  1 [2] 3     below the diagonal of column j: to the end of the column; rows
//              3:  0  2 [3]       ascend there because i ascends
//
// Cost: two passes over the entries, one to count each column's and one to put them.
#ifndef QELM_MESH_FREE_ROWS_H
#define QELM_MESH_FREE_ROWS_H

#include <cstdint>

#include "interface/mesh_system.h"
#include "mesh/lower_triangle.h"

namespace qelm {

/// The two blocks of the stiffness matrix K in the free rows t .. n-1, rows ascending in each
/// column.
struct FreeRowBlocks {
  SparseBlock freeFree;   ///< columns t .. n-1
  SparseBlock freeFixed;  ///< columns 0 .. t-1
};

/// The blocks of a symmetric matrix whose first t vertices are prescribed, from its merged lower
/// triangle. Throws std::bad_alloc if they have more entries than Eigen can index. Beyond the
/// result it needs 4 bytes for each vertex.
FreeRowBlocks toCompressedColumns(const LowerTriangle& lower, std::int32_t t);

}  // namespace qelm

#endif  // QELM_MESH_FREE_ROWS_H
