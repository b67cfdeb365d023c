// The last step of the blocked factorisation: each panel is copied, and its entries go from the
// copy to their columns, as the drawing in factor_arrays.h shows. Column k of a supernode has the
// rows k+1 .. width-1 of the diagonal block first, then all rows below.
//
//   panel of width 3, rows r and s below     r0 r1 r2  s0 s1 s2  10 20 21
//   the same memory as columns               10 20 r0 s0   21 r1 s1   r2 s2
#include "factor/compressed_columns.h"

#include <algorithm>
#include <vector>

#include "factor/quotients.h"

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
          from.triangleRow(r)[k];
    }
  }
}

/// Takes eight columns at a time: what is read of a row is then one cache line.
void writeRowsBelow(const Panel& from, const Panel& panel, const FactorArrays& factor) {
  constexpr int kTogether = 8;
  for (int first = 0; first < panel.width; first += kTogether) {
    const int past = std::min(first + kTogether, panel.width);
    for (int p = 0; p < panel.belowCount; ++p) {
      for (int k = first; k < past; ++k) {
        factor.values[factor.columnPointers[panel.firstColumn + k] + panel.width - 1 - k + p] =
            from.belowRow(p)[k];
      }
    }
  }
}

}  // namespace

void toCompressedColumns(const Supernodes& supernodes, const FactorArrays& factor) {
  std::vector<double> copy;
  for (int s = 0; s < supernodes.count(); ++s) {
    const Panel panel(factor, supernodes, s);
    const int past = supernodes.pastColumn(s);
    if (panel.width > 1) {
      copy.assign(panel.values, factor.values + factor.columnPointers[past]);
      Panel from = panel;
      from.values = copy.data();
      writeTriangle(from, panel, factor);
      writeRowsBelow(from, panel, factor);
      writeRowIndices(panel, factor);
    }
    for (int k = panel.firstColumn; k < past; ++k) {
      divide(factor.values + factor.columnPointers[k],
             factor.columnPointers[k + 1] - factor.columnPointers[k], factor.diagonal[k]);
    }
  }
}

}  // namespace qelm::factor
