// Column j's parent in the elimination tree is the first row below the diagonal of L's column
// j: the column that j's elimination touches first. Row i of L has entries at the nodes of a
// subtree of this tree, the row subtree: the paths from each entry of A(i, 0 .. i-1) up to i.
//
//   A =  x . . x .     L =  x            tree: 0 -> 3, 2 -> 3, 3 -> 4, 1 -> 4
//        . x . . x          . x          row subtree of 3: 0, 2
//        . . x x .          . . x        row subtree of 4: 1, 3
//        x . x x x          x . x x
//        . x . x x          . x . x x
//
// The tree is found by walking up from each entry, with shortcuts to the furthest ancestor
// known (Liu, A compact row storage scheme for Cholesky factors using elimination trees, ACM
// TOMS 12, 1986). The counts are found without visiting L's entries: column j's count is the
// number of row subtrees that contain j, and a subtree is told by its leaves and the nodes
// where two of their paths meet (Gilbert, Ng and Peyton, An efficient algorithm to compute row
// and column counts for sparse Cholesky factorization, SIAM J. Matrix Anal. Appl. 15, 1994).
#include "factor/elimination_tree.h"

#include <numeric>

namespace qelm::factor {
namespace {

using Eigen::VectorXi;

/// Calls visit(i, j) for A's entries with i < j, column j after column.
template <class Visit>
void forEachAboveDiagonal(const Sparse& upper, Visit visit) {
  for (int j = 0; j < upper.cols(); ++j) {
    for (Sparse::InnerIterator entry(upper, j); entry; ++entry) {
      if (entry.row() < j) visit(static_cast<int>(entry.row()), j);
    }
  }
}

VectorXi parents(const Sparse& upper) {
  VectorXi parent = VectorXi::Constant(upper.cols(), kNoColumn);
  VectorXi ancestor = parent;  // the shortcuts
  forEachAboveDiagonal(upper, [&](int node, int root) {
    while (node != kNoColumn && node < root) {
      const int next = ancestor[node];
      ancestor[node] = root;
      if (next == kNoColumn) parent[node] = root;
      node = next;
    }
  });
  return parent;
}

/// Nodes in an order in which every subtree is a run that ends with its root.
VectorXi postorder(const VectorXi& parent) {
  const auto n = static_cast<int>(parent.size());
  VectorXi firstChild = VectorXi::Constant(n, kNoColumn);
  VectorXi nextSibling(n);
  VectorXi order(n);
  VectorXi path(n);
  for (int node = n - 1; node >= 0; --node) {
    if (parent[node] == kNoColumn) continue;
    nextSibling[node] = firstChild[parent[node]];
    firstChild[parent[node]] = node;
  }
  int done = 0;
  for (int root = 0; root < n; ++root) {
    if (parent[root] != kNoColumn) continue;
    int depth = 0;
    path[0] = root;
    while (depth >= 0) {
      const int node = path[depth];
      const int child = firstChild[node];
      if (child == kNoColumn) {
        order[done++] = node;
        --depth;
      } else {
        firstChild[node] = nextSibling[child];
        path[++depth] = child;
      }
    }
  }
  return order;
}

/// Of each column of A the rows below the diagonal, packed.
struct LowerRows {
  explicit LowerRows(const Sparse& upper) : starts(VectorXi::Zero(upper.cols() + 1)) {
    forEachAboveDiagonal(upper, [&](int i, int) { ++starts[i + 1]; });
    // At most A's entries, which Eigen counts in int.
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    rows.resize(starts[upper.cols()]);
    VectorXi next = starts;
    forEachAboveDiagonal(upper, [&](int i, int j) { rows[next[i]++] = j; });
  }

  VectorXi starts;
  VectorXi rows;
};

/// Sets of nodes whose subtrees are done, each led by the root of its finished part.
class FinishedTrees {
 public:
  explicit FinishedTrees(Eigen::Index n)
      : leader_(VectorXi::LinSpaced(n, 0, static_cast<int>(n) - 1)) {}

  int rootOf(int node) {
    int root = node;
    while (leader_[root] != root) root = leader_[root];
    while (leader_[node] != root) {
      const int next = leader_[node];
      leader_[node] = root;
      node = next;
    }
    return root;
  }
  void hangUnder(int node, int parent) { leader_[node] = parent; }

 private:
  VectorXi leader_;
};

VectorXi columnCounts(const Sparse& upper, const VectorXi& parent) {
  const Eigen::Index n = parent.size();
  const LowerRows lower(upper);
  const VectorXi order = postorder(parent);
  FinishedTrees finished(n);
  // First each column's own share: 1 for a leaf of the whole tree, whose rows no child counts;
  // one more for each row with a leaf of its subtree here; one less for each row two of whose
  // paths meet here, since both children count it.
  VectorXi counts = VectorXi::Ones(n);
  VectorXi previousLeaf = VectorXi::Constant(n, kNoColumn);
  for (const int p : parent) {
    if (p != kNoColumn) counts[p] = 0;
  }
  for (const int j : order) {
    for (int k = lower.starts[j]; k < lower.starts[j + 1]; ++k) {
      const int row = lower.rows[k];
      ++counts[j];
      if (previousLeaf[row] != kNoColumn) --counts[finished.rootOf(previousLeaf[row])];
      previousLeaf[row] = j;
    }
    if (parent[j] != kNoColumn) finished.hangUnder(j, parent[j]);
  }
  // Then sums over subtrees: a column has its children's rows but for their diagonals, hence
  // the -1. Children come before parents in the natural order, too.
  for (Eigen::Index j = 0; j < n; ++j) {
    if (parent[j] != kNoColumn) counts[parent[j]] += counts[j] - 1;
    --counts[j];  // the diagonal
  }
  return counts;
}

}  // namespace

std::int64_t EliminationTree::entryCount() const { return counts.cast<std::int64_t>().sum(); }

double EliminationTree::multiplicationCount() const {
  const Eigen::ArrayXd c = counts.cast<double>();
  return (c * (c + 1) / 2).sum();
}

EliminationTree eliminationTree(const Sparse& upper) {
  EliminationTree tree;
  tree.parent = parents(upper);
  tree.counts = columnCounts(upper, tree.parent);
  return tree;
}

}  // namespace qelm::factor
