// In: the upper triangle of A. Out: for each column j of L its parent, which is the row of its
// first entry below the diagonal, and its number of entries.
//
//   A =  x . . x .     L =  x            tree: 0 and 2 are children of 3, 3 and 1 of 4
//        . x . . x          . x
//        . . x x .          . . x        row subtree of 3: 0, 2
//        x . x x x          x . x x      row subtree of 4: 1, 3
//        . x . x x          . x . x x
//
// Row i of L has entries at the nodes of its row subtree: the paths from each entry of A(i, 0..i-1)
// up to i. The tree is found by walking these paths, with shortcuts to the furthest ancestor known
// (Liu, A compact row storage scheme for Cholesky factors using elimination trees, ACM TOMS 12,
// 1986). Column j has as many entries as there are row subtrees with j in them. They are counted
// without visiting each node: a subtree is given by its leaves and by the nodes where the paths of
// two leaves meet (Gilbert, Ng and Peyton, An efficient algorithm to compute row and column counts
// for sparse Cholesky factorization, SIAM J. Matrix Anal. Appl. 15, 1994). Both take time nearly
// linear in the entries of A.
#include "factor/elimination_tree.h"

#include <numeric>

#include "interface/index.h"

namespace qelm::factor {
namespace {

using Eigen::VectorXi;

/// Calls visit(i, j) for each entry above the diagonal, i < j, column after column.
template <class Visit>
void forEachAboveDiagonal(const Sparse& upper, Visit visit) {
  for (int j = 0; j < upper.cols(); ++j) {
    for (Sparse::InnerIterator entry(upper, j); entry; ++entry) {
      if (entry.row() < j) visit(asInt(entry.row()), j);
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

/// The nodes in postorder: every subtree is a run that ends with its root.
VectorXi postorder(const VectorXi& parent) {
  const auto n = asInt(parent.size());
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

/// The pattern of the strictly lower triangle in compressed columns: the upper one transposed, by
/// counting sort.
struct StrictlyLowerPattern {
  explicit StrictlyLowerPattern(const Sparse& upper)
      : columnPointers(VectorXi::Zero(upper.cols() + 1)) {
    forEachAboveDiagonal(upper, [&](int i, int) { ++columnPointers[i + 1]; });
    // At most A's entries, which Eigen counts in int.
    std::partial_sum(columnPointers.begin(), columnPointers.end(), columnPointers.begin());
    rowIndices.resize(columnPointers[upper.cols()]);
    VectorXi next = columnPointers;
    forEachAboveDiagonal(upper, [&](int i, int j) { rowIndices[next[i]++] = j; });
  }

  VectorXi columnPointers;
  VectorXi rowIndices;
};

/// Union-find over the part of the tree that postorder has passed, with path compression: gives the
/// root of the finished subtree that a node is in.
class FinishedSubtrees {
 public:
  explicit FinishedSubtrees(Eigen::Index n) : upwards_(VectorXi::LinSpaced(n, 0, asInt(n) - 1)) {}

  int rootOf(int node) {
    int root = node;
    while (upwards_[root] != root) root = upwards_[root];
    while (upwards_[node] != root) {
      const int next = upwards_[node];
      upwards_[node] = root;
      node = next;
    }
    return root;
  }
  void attach(int node, int parent) { upwards_[node] = parent; }

 private:
  VectorXi upwards_;  ///< an ancestor; of a root itself
};

VectorXi columnCounts(const Sparse& upper, const VectorXi& parent) {
  const Eigen::Index n = parent.size();
  const StrictlyLowerPattern lower(upper);
  const VectorXi order = postorder(parent);
  FinishedSubtrees finished(n);
  // First what each column adds to the counts of its children: the diagonal entry of a leaf of the
  // tree; one for each row subtree with a leaf here; less one for each row subtree with two paths
  // that meet here, since the counts of both children have it. An entry at an inner node of its
  // row subtree adds and subtracts one here.
  VectorXi counts = VectorXi::Ones(n);
  VectorXi previousLeaf = VectorXi::Constant(n, kNoColumn);
  for (const int p : parent) {
    if (p != kNoColumn) counts[p] = 0;
  }
  for (const int j : order) {
    for (int k = lower.columnPointers[j]; k < lower.columnPointers[j + 1]; ++k) {
      const int row = lower.rowIndices[k];
      ++counts[j];
      if (previousLeaf[row] != kNoColumn) --counts[finished.rootOf(previousLeaf[row])];
      previousLeaf[row] = j;
    }
    if (parent[j] != kNoColumn) finished.attach(j, parent[j]);
  }
  // Then the sum over each subtree. A column has its children's rows without their diagonals: the
  // -1. Children have lower numbers than their parents.
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
