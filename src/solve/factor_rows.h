// Forward and back substitution through a stored factor for several right-hand sides at once.
//
// The right-hand sides lie side by side: row i holds entry i of each right-hand side, in the
// factor's order. So an entry of L is read once for all of them, and each of its operations is on
// two short contiguous arrays, which the processor's vector instructions take whole:
//
//   row i    x x x x x x x x  -=  L(i, j)  *  row j    x x x x x x x x
//
// Each right-hand side sees the operations of a single solve in the order of a single solve, so
// that the results have the same bits.
#ifndef QELM_SOLVE_FACTOR_ROWS_H
#define QELM_SOLVE_FACTOR_ROWS_H

#include <Eigen/Core>
#include <span>

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
  double* data() const { return first_; }

 private:
  static constexpr int kAlignment = Width == 1 ? Eigen::Unaligned : Eigen::Aligned16;
  double* first_;
};

/// The two substitutions for one width and one set of instructions. All sets give the same bits.
struct RowSubstitution {
  const char* name;

  /// rows = L^-1 rows, column by column. `lower` holds L without its unit diagonal. A column whose
  /// row is zero in some right-hand sides is skipped for these, as a single solve skips it.
  void (*forward)(const SparseBlock& lower, double* rows);

  /// rows = L^-T D^-1 rows, from the last row up. Multiplies by the reciprocals of D, as the single
  /// solve does; a division would round differently.
  void (*back)(const SparseBlock& lower, const Eigen::VectorXd& diagonal, double* rows);
};

/// Those that this processor has, the fastest first; the last one is there on every processor.
/// `Width` is 2, 4, 8, 16 or 32.
template <int Width>
std::span<const RowSubstitution> rowSubstitutions();

}  // namespace qelm

#endif  // QELM_SOLVE_FACTOR_ROWS_H
