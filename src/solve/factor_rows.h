// Substitution through a stored factor for several right-hand sides at once.
//
// The right-hand sides lie side by side: row i holds entry i of each of them, in
// the factor's order. An entry of L is then read once for all of them, and its row
// is one short contiguous array, which the processor's vector instructions take
// whole. Each right-hand side sees the operations of a single solve in the order
// of a single solve, so that it comes out with the same bits.
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

/// row -= pivot * entry, where the pivot is not zero. A single solve passes over
/// the column of a zero; so must every right-hand side here on its own account,
/// or a -0.0 might become 0.0, and 0 times an infinite entry NaN.
template <int Width>
void subtractWhereNonzero(double* row, const double* pivot, double entry) {
  for (int k = 0; k < Width; ++k) {
    const double difference = row[k] - pivot[k] * entry;
    row[k] = pivot[k] != 0 ? difference : row[k];
  }
}

/// rows = L^-1 rows, column by column; L has a unit diagonal that is not stored.
template <int Width>
void solveLower(const SparseBlock& lower, RowsView<Width> rows) {
  using Row = typename RowsView<Width>::Row;
  const int* starts = lower.outerIndexPtr();
  const int* below = lower.innerIndexPtr();
  const double* entries = lower.valuePtr();
  for (Eigen::Index j = 0; j < lower.cols(); ++j) {
    const Row pivot = rows[j];
    const Eigen::Index nonzero = (pivot != 0).count();
    if (nonzero == Width) {
      for (int k = starts[j]; k < starts[j + 1]; ++k) rows[below[k]] -= pivot * entries[k];
    } else if (nonzero > 0) {
      for (int k = starts[j]; k < starts[j + 1]; ++k) {
        subtractWhereNonzero<Width>(rows[below[k]].data(), pivot.data(), entries[k]);
      }
    }
  }
}

/// rows = L^-T D^-1 rows, from the last row up. Multiplies by the reciprocals of
/// D, as the single solve does; a division would round differently.
template <int Width>
void solveDiagonalAndUpper(const SparseBlock& lower, const Eigen::VectorXd& diagonal,
                           RowsView<Width> rows) {
  using Row = typename RowsView<Width>::Row;
  const int* starts = lower.outerIndexPtr();
  const int* below = lower.innerIndexPtr();
  const double* entries = lower.valuePtr();
  for (Eigen::Index j = lower.cols() - 1; j >= 0; --j) {
    Row sum = rows[j] * (1.0 / diagonal[j]);
    for (int k = starts[j]; k < starts[j + 1]; ++k) sum -= entries[k] * rows[below[k]];
    rows[j] = sum;
  }
}

}  // namespace qelm

#endif  // QELM_SOLVE_FACTOR_ROWS_H
