// Where the factor lies, and the panels of which it consists while it is computed.
//
// L and D have their final memory from the beginning. A supernode's columns are one run of L's
// values; until the end that run holds a panel, the same entries row by row, since updates take
// rows. Y = L D is kept there, not L: as a row an entry is needed undivided, as a column divided.
//
//   supernode {0, 1, 2} whose columns share rows 6 and 9:
//
//        0   1   2               values of the panel       later, as columns of L
//   0    .                        60 61 62   rows below     10 20 60 90
//   1   10   .                    90 91 92                  21 61 91
//   2   20  21   .                10         triangle       62 92
//   6   60  61  62                20 21
//   9   90  91  92
#ifndef QELM_FACTOR_FACTOR_ARRAYS_H
#define QELM_FACTOR_FACTOR_ARRAYS_H

#include <Eigen/Core>

#include "factor/supernodes.h"

namespace qelm::factor {

/// L without its unit diagonal in compressed columns, row indices ascending, and D. Views of memory
/// that the caller owns: n + 1, e, e and n elements for n columns and e entries.
struct FactorArrays {
  const int* columnPointers;
  int* rowIndices;
  double* values;
  double* diagonal;
};

/// One supernode's share of these arrays, as drawn above: the rows below its diagonal block, then
/// the strictly lower triangle of that block. The row indices are those of the supernode's last
/// column, in their final place.
struct Panel {
  Panel(const FactorArrays& factor, const Supernodes& supernodes, int s)
      : firstColumn(supernodes.firstColumn(s)),
        width(supernodes.width(s)),
        belowCount(factor.columnPointers[firstColumn + width] -
                   factor.columnPointers[firstColumn + width - 1]),
        rowIndices(factor.rowIndices + factor.columnPointers[firstColumn + width - 1]),
        values(factor.values + factor.columnPointers[firstColumn]) {}

  /// The `width` values of the row rowIndices[position].
  double* belowRow(int position) const { return values + std::ptrdiff_t{position} * width; }
  /// The `row` values left of the diagonal in a row of the diagonal block, 0 <= row < width.
  double* triangleRow(int row) const {
    return belowRow(belowCount) + std::ptrdiff_t{row} * (row - 1) / 2;
  }

  int firstColumn;
  int width;
  int belowCount;   ///< rows below the diagonal block
  int* rowIndices;  ///< of these rows, ascending
  double* values;
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_FACTOR_ARRAYS_H
