// Forward and back substitution through a stored factor for several right-hand sides at once.
//
// The right-hand sides lie side by side: row i holds entry i of each right-hand side, in the
// factor's order. So an entry of L is read once for all of them, and each of its operations is on
// two short contiguous arrays, which the processor's vector instructions take whole. Each
// right-hand side sees the operations of a single solve in the order of a single solve, so that the
// results have the same bits.
#ifndef QELM_SOLVE_FACTOR_ROWS_H
#define QELM_SOLVE_FACTOR_ROWS_H

#include <Eigen/Core>

#include "interface/mesh_system.h"

namespace qelm {

/// A view of rows of `Width` doubles each, packed, 16-byte aligned.
template <int Width>
class RowsView {
 public:
  using Row = Eigen::Array<double, Width, 1>;

  explicit RowsView(double* first) : first_(first) {}

  auto operator[](Eigen::Index i) const { return Eigen::Map<Row, kAlignment>(first_ + i * Width); }
  RowsView from(Eigen::Index i) const { return RowsView(first_ + i * Width); }

 private:
  static constexpr int kAlignment = Width == 1 ? Eigen::Unaligned : Eigen::Aligned16;
  double* first_;
};

/// row -= pivot * entry, where the pivot is not zero. A single solve skips the column of a zero
/// pivot; each right-hand side here must do the same, or a -0.0 might become 0.0, and 0 times an
/// infinite entry NaN.
template <int Width>
void subtractWhereNonzero(double* row, const double* pivot, double entry) {
  for (int k = 0; k < Width; ++k) {
    const double difference = row[k] - pivot[k] * entry;
    row[k] = pivot[k] != 0 ? difference : row[k];
  }
}

/// rows = L^-1 rows, column by column; L has a unit diagonal that is not stored.
template <int Width>
void substituteForward(const SparseBlock& lower, RowsView<Width> rows) {
  using Row = typename RowsView<Width>::Row;
  const int* columnPointers = lower.outerIndexPtr();
  const int* rowIndices = lower.innerIndexPtr();
  const double* values = lower.valuePtr();
  for (Eigen::Index j = 0; j < lower.cols(); ++j) {
    const Row pivot = rows[j];
    const Eigen::Index nonzero = (pivot != 0).count();
    if (nonzero == Width) {
      for (int k = columnPointers[j]; k < columnPointers[j + 1]; ++k)
        rows[rowIndices[k]] -= pivot * values[k];
    } else if (nonzero > 0) {
      for (int k = columnPointers[j]; k < columnPointers[j + 1]; ++k) {
        subtractWhereNonzero<Width>(rows[rowIndices[k]].data(), pivot.data(), values[k]);
      }
    }
  }
}

/// rows = L^-T D^-1 rows, from the last row up. Multiplies by the reciprocals of D, as the single
/// solve does; a division would round differently.
template <int Width>
void substituteBack(const SparseBlock& lower, const Eigen::VectorXd& diagonal,
                    RowsView<Width> rows) {
  using Row = typename RowsView<Width>::Row;
  const int* columnPointers = lower.outerIndexPtr();
  const int* rowIndices = lower.innerIndexPtr();
  const double* values = lower.valuePtr();
  for (Eigen::Index j = lower.cols() - 1; j >= 0; --j) {
    Row sum = rows[j] * (1.0 / diagonal[j]);
    for (int k = columnPointers[j]; k < columnPointers[j + 1]; ++k)
      sum -= values[k] * rows[rowIndices[k]];
    rows[j] = sum;
  }
}

}  // namespace qelm

#endif  // QELM_SOLVE_FACTOR_ROWS_H
