// The last step of the blocked factorisation: each panel is copied, and its entries go from the
// copy to their columns, as the drawing in factor_arrays.h shows, divided by the pivots on the way.
// Column k of a supernode has the rows k+1 .. width-1 of the diagonal block first, then all rows
// below.
//
//   panel of width 3, rows r and s below     r0 r1 r2  s0 s1 s2  10 20 21
//   the same memory as columns               10 20 r0 s0   21 r1 s1   r2 s2
#include "factor/compressed_columns.h"

#include <Eigen/Core>
#include <algorithm>
#include <array>
#include <vector>

#include "factor/quotients.h"
#include "interface/index.h"

namespace qelm::factor {
namespace {

/// The row indices of the last column stand already; the others are these with a few before them.
void writeRowIndices(const Panel& panel, const FactorArrays& factor) {
  for (int k = 0; k + 1 < panel.width; ++k) {
    int* indices = factor.rowIndices + factor.columnPointers[panel.firstColumn + k];
    for (int r = k + 1; r < panel.width; ++r) *indices++ = panel.firstColumn + r;
    std::copy_n(panel.rowIndices, panel.belowCount, indices);
  }
}

void writeTriangle(const Panel& from, const Panel& panel, const FactorArrays& factor) {
  for (int r = 1; r < panel.width; ++r) {
    for (int k = 0; k < r; ++k) {
      factor.values[factor.columnPointers[panel.firstColumn + k] + r - k - 1] =
          from.triangleRow(r)[k] / factor.diagonal[panel.firstColumn + k];
    }
  }
}

/// The rows below the diagonal block of kTogether columns, from column `first` of the panel on.
template <int kTogether>
void writeColumnsBelow(const Panel& from, const Panel& panel, const FactorArrays& factor,
                       int first) {
  using Entries = Eigen::Array<double, kTogether, 1>;
  const Entries pivots = Eigen::Map<const Entries>(factor.diagonal + panel.firstColumn + first);
  std::array<double*, kTogether> columns;
  for (int k = 0; k < kTogether; ++k) {
    const int column = first + k;
    columns[asIndex(k)] = factor.values + factor.columnPointers[panel.firstColumn + column] +
                          panel.width - 1 - column;
  }
  for (int p = 0; p < panel.belowCount; ++p) {
    const Entries quotients = Eigen::Map<const Entries>(from.belowRow(p) + first) / pivots;
    for (int k = 0; k < kTogether; ++k) columns[asIndex(k)][p] = quotients[k];
  }
}

/// Takes eight columns at a time: what is read of a row is then one cache line. Of fewer columns
/// two at a time, as many as one division takes.
void writeRowsBelow(const Panel& from, const Panel& panel, const FactorArrays& factor) {
  int first = 0;
  for (; first + 8 <= panel.width; first += 8) writeColumnsBelow<8>(from, panel, factor, first);
  for (; first + 2 <= panel.width; first += 2) writeColumnsBelow<2>(from, panel, factor, first);
  if (first < panel.width) writeColumnsBelow<1>(from, panel, factor, first);
}

}  // namespace

void toCompressedColumns(const Supernodes& supernodes, const FactorArrays& factor) {
  std::vector<double> copy;
  for (int s = 0; s < supernodes.count(); ++s) {
    const Panel panel(factor, supernodes, s);
    if (panel.width == 1) {  // stored as a column
      divide(panel.values, panel.belowCount, factor.diagonal[panel.firstColumn]);
      continue;
    }
    copy.assign(panel.values, factor.values + factor.columnPointers[supernodes.pastColumn(s)]);
    Panel from = panel;
    from.values = copy.data();
    writeTriangle(from, panel, factor);
    writeRowsBelow(from, panel, factor);
    writeRowIndices(panel, factor);
  }
}

}  // namespace qelm::factor
