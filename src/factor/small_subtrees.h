// The bottom of the elimination tree, where supernodes are too narrow for dense blocks.
#ifndef QELM_FACTOR_SMALL_SUBTREES_H
#define QELM_FACTOR_SMALL_SUBTREES_H

#include <vector>

#include "factor/elimination_tree.h"
#include "factor/factor_arrays.h"
#include "factor/row_paths.h"
#include "factor/supernodes.h"

namespace qelm::factor {

/// The subtrees of at most `mostColumns` columns that are not part of a larger such subtree.
class SmallSubtrees {
 public:
  SmallSubtrees(const EliminationTree& tree, const Supernodes& supernodes, int mostColumns);

  bool contains(int supernode) const { return roots_[supernode] != kNone; }
  /// The lowest supernode of the subtree that has this root; kNone if none has.
  int firstOf(int root) const { return first_[root]; }
  /// The next higher supernode of the same subtree, or kNone.
  int nextOf(int supernode) const { return next_[supernode]; }

  static constexpr int kNone = -1;

 private:
  Eigen::VectorXi roots_;  ///< of each supernode's subtree
  // Linked lists.
  Eigen::VectorXi first_;  ///< of a root
  Eigen::VectorXi next_;   ///< of a supernode
};

/// The columns of the largest subtree that factorizeSmall() takes.
constexpr int kMostSubtreeColumns = 64;

/// Computes the panels of all supernodes in `subtrees`, which no supernode outside updates. False
/// if a pivot is zero or not finite.
bool factorizeSmall(const SmallSubtrees& subtrees, const Supernodes& supernodes,
                    const RowPaths& paths, const FactorArrays& factor);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_SMALL_SUBTREES_H
