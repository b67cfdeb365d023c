// The two loops in which the numeric phase spends its time, in vector instructions.
#ifndef QELM_FACTOR_PANEL_KERNEL_H
#define QELM_FACTOR_PANEL_KERNEL_H

#include <cstddef>
#include <span>

namespace qelm::factor {

/// The columns of a panel are computed in blocks of so many: two vectors of AVX2, one of AVX-512.
constexpr int kBlock = 8;

/// A row that is read and the row that it updates: of a descendant and of the target, or two parts
/// of one row of the target.
struct RowPair {
  const double* source;
  double* target;
};

/// For every pair and every column c = 0 .. kBlock-1 of a block:
///
///   target[c] -= columns[k * kBlock + c] * source[k]    for k = 0, 1, ... depth - 1
///
/// in this order, each step a multiplication, rounded, and a subtraction, rounded. The number of
/// rows is a multiple of the kernel's rowGroup; source and target do not overlap.
using UpdateBlock = void (*)(std::span<const RowPair> rows, const double* columns, int depth);

/// Forward substitution with a unit lower triangle. For every row, for c = 0 .. kBlock-1:
///
///   row[c] -= columns[k * kBlock + c] * row[k]    for k = 0, 1, ... c - 1
///
/// rounded in the same way. Only the targets of `rows` are used. columns[k * kBlock + c] is zero
/// for c <= k: subtracting zero times a finite number leaves an entry as it is, since none is -0.0.
using SubstituteBlock = void (*)(std::span<const RowPair> rows, const double* columns);

/// The two loops for one set of instructions. All sets give the same bits.
struct PanelKernel {
  const char* name;
  /// Rows go through the kernel in groups of so many. A list of rows is filled up to a multiple
  /// of it with rows whose targets nobody reads.
  std::size_t rowGroup;
  UpdateBlock update;
  SubstituteBlock substitute;
};

/// The kernels that this processor can run, the fastest first. The last one is the compiler's
/// baseline: SSE2 on 64-bit x86.
std::span<const PanelKernel> panelKernels();

}  // namespace qelm::factor

#endif  // QELM_FACTOR_PANEL_KERNEL_H
