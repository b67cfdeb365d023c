// The two loops in which a factorisation spends its time, in vector instructions.
#ifndef QELM_FACTOR_PANEL_KERNEL_H
#define QELM_FACTOR_PANEL_KERNEL_H

#include <cstddef>
#include <span>

namespace qelm::factor {

/// Columns of a panel are taken in blocks of so many: two vectors of AVX2, one of AVX-512.
constexpr int kBlock = 8;

/// A row of a source panel and the row of the target that takes its update.
struct RowPair {
  const double* source;
  double* target;
};

/// For every pair and every column c of a block:
///
///   target[c] -= columns[k * kBlock + c] * source[k]    for k = 0, 1, ... depth - 1
///
/// each a multiplication, rounded, and a subtraction, rounded, one after the other in this order.
/// The number of rows is a multiple of the kernel's rowGroup; source and target may be one row
/// where they do not overlap.
using UpdateBlock = void (*)(std::span<const RowPair> rows, const double* columns, int depth);

/// For every row, which is entry c of a block of columns, c = 0 .. kBlock-1, in turn:
///
///   row[c] -= columns[k * kBlock + c] * row[k]    for k = 0, 1, ... c - 1
///
/// in the same way: forward substitution with a unit lower triangle, whose column k is zero down
/// to its diagonal. A zero times a finite number leaves a row's entry as it is, since none is -0.0.
using SubstituteBlock = void (*)(std::span<const RowPair> rows, const double* columns);

/// The kernels for one set of instructions. All give the same bits.
struct PanelKernel {
  const char* name;
  /// Rows go through the kernel in groups of so many; a list of rows is filled up to a multiple
  /// of it with rows whose results nobody reads.
  std::size_t rowGroup;
  UpdateBlock update;
  SubstituteBlock substitute;
};

/// Those that this processor can run, the fastest first. The last one is the compiler's
/// baseline: SSE2 on 64-bit x86.
std::span<const PanelKernel> panelKernels();

}  // namespace qelm::factor

#endif  // QELM_FACTOR_PANEL_KERNEL_H
