// The dense panel in which one supernode after the other is computed.
#ifndef QELM_FACTOR_TARGET_PANEL_H
#define QELM_FACTOR_TARGET_PANEL_H

#include <Eigen/Core>
#include <vector>

#include "factor/factor_arrays.h"
#include "factor/panel_kernel.h"
#include "factor/passes.h"

namespace qelm::factor {

/// A working copy of one supernode: the rows of its diagonal block, then the rows below, each
/// filled up with zeros to whole blocks of columns. Entries above the diagonal mean nothing.
class TargetPanel {
 public:
  TargetPanel(const FactorArrays& factor, const PanelKernel& kernel, Eigen::Index rowCount)
      : factor_(factor), kernel_(kernel), localRow_(rowCount) {}

  /// Takes the next supernode, whose panel holds A's entries.
  void load(const Panel& panel);

  /// Subtracts one update of a descendant.
  void apply(const Descendant& descendant, const Update& update);

  /// Subtracts the updates of the supernode's columns among each other, and stores the pivots in
  /// the factor's diagonal. False if a pivot is zero or not finite.
  bool factorize();

  /// Stores Y in place of A's entries.
  void storeTo(const Panel& panel) const;

 private:
  double* row(int r) { return values_.data() + std::ptrdiff_t{r} * stride_; }
  const double* row(int r) const { return values_.data() + std::ptrdiff_t{r} * stride_; }

  void applyByEntries(const Descendant& descendant, const Update& update);
  void applyByBlocks(const Descendant& descendant, const Update& update);
  void packColumns(const Descendant& descendant, int firstBlock, int blockCount);
  void applyToChunk(const Descendant& descendant, const Update& update, int firstBlock,
                    int blockCount);

  void packOwnColumns(int blockBegin);
  void subtractOwnColumns(int blockBegin, int begin, int end);
  bool factorizeTriangle(int blockBegin);
  void substitute(int blockBegin, int begin, int end);
  double* packedTriangle(int blockBegin);

  void fillUpGroup(std::size_t count);

  const FactorArrays& factor_;
  const PanelKernel& kernel_;
  Eigen::VectorXi localRow_;  ///< from a row of the matrix to the row of this panel

  int firstColumn_ = 0;
  int width_ = 0;
  int rowCount_ = 0;
  int stride_ = 0;
  // Not Eigen's vectors: they are left broken where memory runs out while they grow.
  std::vector<double> values_;
  std::vector<double> packed_;  ///< columns for the kernel: block after block, kBlock for each k
  std::vector<RowPair> rows_;   ///< rows for the kernel
  double unread_[kBlock] = {};  ///< the target of rows that fill up a group
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_TARGET_PANEL_H
