// The dense panel in which a supernode's columns are computed.
#ifndef QELM_FACTOR_TARGET_PANEL_H
#define QELM_FACTOR_TARGET_PANEL_H

#include <Eigen/Core>
#include <vector>

#include "factor/factor_arrays.h"
#include "factor/panel_kernel.h"
#include "factor/passes.h"

namespace qelm::factor {

/// All rows of one supernode at a time, those of its own block first, then those of the tail,
/// each filled up with zeros to whole blocks of columns. Entries above the diagonal of the own
/// block mean nothing.
class TargetPanel {
 public:
  TargetPanel(const FactorArrays& factor, const PanelKernel& kernel, Eigen::Index rowCount)
      : factor_(factor), kernel_(kernel), place_(rowCount) {}

  /// Takes the next supernode, whose panel holds A's entries.
  void load(const Panel& panel);

  /// Subtracts what the visit's rows get from some columns of a supernode before.
  void update(const Source& source, const Visit& visit);

  /// Subtracts what the columns get from each other, and finds the pivots. False if one is zero
  /// or not finite.
  bool factorize();

  /// Puts the result where A's entries were.
  void storeTo(const Panel& panel) const;

 private:
  double* row(int place) { return values_.data() + std::ptrdiff_t{place} * stride_; }
  const double* row(int place) const { return values_.data() + std::ptrdiff_t{place} * stride_; }

  void updateEntries(const Source& source, const Visit& visit);
  void updateBlocks(const Source& source, const Visit& visit);
  void packColumns(const Source& source, int firstBlock, int blockCount);
  void updateChunk(const Source& source, const Visit& visit, int firstBlock, int blockCount);

  void packOwnColumns(int firstColumn);
  void subtractOwnColumns(int firstColumn, int begin, int end);
  bool factorizeBlock(int firstColumn);
  void substitute(int firstColumn, int begin, int end);
  double* ownTriangle(int firstColumn);

  void fillUpGroup(std::size_t count);

  const FactorArrays& factor_;
  const PanelKernel& kernel_;
  Eigen::VectorXi place_;  ///< of a row in this panel

  int first_ = 0;
  int width_ = 0;
  int rowCount_ = 0;
  int stride_ = 0;
  // Not Eigen's vectors: they are left broken where memory runs out while they grow.
  std::vector<double> values_;
  std::vector<double> columns_;  ///< packed for the kernel: block after block, kBlock for each k
  std::vector<RowPair> rows_;
  double unread_[kBlock] = {};  ///< takes the results of rows that fill up a group
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_TARGET_PANEL_H
