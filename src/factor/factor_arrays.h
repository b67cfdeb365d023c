// The arrays of the factor while it is computed, in the memory where it will stay.
#ifndef QELM_FACTOR_FACTOR_ARRAYS_H
#define QELM_FACTOR_FACTOR_ARRAYS_H

#include <Eigen/Core>

#include "factor/supernodes.h"

namespace qelm::factor {

/// L without its unit diagonal in compressed columns, rows ascending, and D: views of memory
/// that the caller owns, n + 1, e, e and n entries for n columns and e entries.
struct FactorArrays {
  const int* starts;
  int* rows;
  double* values;
  double* diagonal;
};

/// A supernode's share of these arrays. While the factor is computed its values are a panel:
///
///     tail      t rows of `width` values each, row after row (for the updates of others, which
///               take rows)
///     triangle  width (width - 1) / 2 values below the diagonal of its own block, row after row
///
/// They are undivided, Y = L D, until toColumns() at the end. The rows of the tail are those of
/// the supernode's last column from the beginning on.
struct Panel {
  Panel(const FactorArrays& factor, const Supernodes& supernodes, int s)
      : first(supernodes.starts[s]),
        width(supernodes.width(s)),
        tailSize(factor.starts[first + width] - factor.starts[first + width - 1]),
        rows(factor.rows + factor.starts[first + width - 1]),
        values(factor.values + factor.starts[first]) {}

  double* tailRow(int position) const { return values + std::ptrdiff_t{position} * width; }
  /// Row `row` of the own block, 0 .. width-1, up to the diagonal.
  double* triangleRow(int row) const {
    return tailRow(tailSize) + std::ptrdiff_t{row} * (row - 1) / 2;
  }

  int first;  ///< column
  int width;
  int tailSize;
  int* rows;
  double* values;
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_FACTOR_ARRAYS_H
