// A panel of width 3 with rows r and s in its tail, and the same memory afterwards (the order
// within a panel is told where Panel is):
//
//   r0 r1 r2  s0 s1 s2  10 20 21   ->   10 20 r0 s0   21 r1 s1   r2 s2
#include "factor/columns.h"

#include <algorithm>
#include <vector>

#include "factor/quotients.h"

namespace qelm::factor {
namespace {

/// Both have the rows of the own block first.
void writeRows(const Panel& panel, const FactorArrays& factor) {
  for (int k = 0; k + 1 < panel.width; ++k) {
    int* rows = factor.rows + factor.starts[panel.first + k];
    for (int r = k + 1; r < panel.width; ++r) *rows++ = panel.first + r;
    std::copy_n(panel.rows, panel.tailSize, rows);
  }
}

void writeTriangle(const Panel& from, const Panel& panel, const FactorArrays& factor) {
  for (int r = 1; r < panel.width; ++r) {
    for (int k = 0; k < r; ++k) {
      factor.values[factor.starts[panel.first + k] + r - k - 1] = from.triangleRow(r)[k];
    }
  }
}

/// Some columns at a time, so that what is read of a row is a cache line.
void writeTail(const Panel& from, const Panel& panel, const FactorArrays& factor) {
  constexpr int kTogether = 8;
  for (int first = 0; first < panel.width; first += kTogether) {
    const int past = std::min(first + kTogether, panel.width);
    for (int p = 0; p < panel.tailSize; ++p) {
      for (int k = first; k < past; ++k) {
        factor.values[factor.starts[panel.first + k] + panel.width - 1 - k + p] =
            from.tailRow(p)[k];
      }
    }
  }
}

}  // namespace

void toColumns(const Supernodes& supernodes, const FactorArrays& factor) {
  std::vector<double> copy;
  for (int s = 0; s < supernodes.count(); ++s) {
    const Panel panel(factor, supernodes, s);
    const int past = panel.first + panel.width;
    if (panel.width > 1) {
      copy.assign(panel.values, factor.values + factor.starts[past]);
      Panel from = panel;
      from.values = copy.data();
      writeTriangle(from, panel, factor);
      writeTail(from, panel, factor);
      writeRows(panel, factor);
    }
    for (int k = panel.first; k < past; ++k) {
      divide(factor.values + factor.starts[k], factor.starts[k + 1] - factor.starts[k],
             factor.diagonal[k]);
    }
  }
}

}  // namespace qelm::factor
