// In: a symmetric matrix A. Out: P A P^T = L D L^T in the members of Eigen's SimplicialLDLT. Steps:
//
//   ordering          P, then the upper triangle of P A P^T           ordering.h
//   symbolic phase    elimination tree, column counts, pattern size   elimination_tree.h
//   prediction        bytes and multiplications; the caller may stop  cost.h
//   numeric phase     L and D, on dense blocks                        blocked_factor.h
//
// Eigen's own loop does the numeric phase of small systems, where it takes less time, and where the
// blocked one gives up: at a pivot that is zero or not finite, or a row with too many paths.
#include "factor/solver.h"

#include "factor/blocked_factor.h"
#include "factor/ordering.h"
#include "factor/supernodes.h"
#include "interface/index.h"

namespace qelm::factor {

Method fastestMethod() { return {panelKernels().front(), 40}; }

bool blocksPay(const EliminationTree& tree, const Method& method) {
  return tree.multiplicationCount() >= method.leastReuse * static_cast<double>(tree.entryCount());
}

namespace {

/// Eigen sets this flag of its base class in compute(), and hides the flag from derived classes.
struct Initialized : Eigen::SparseSolverBase<Ldlt> {
  static constexpr bool Eigen::SparseSolverBase<Ldlt>::*member = &Initialized::m_isInitialized;
};

/// The permutation that gives unknown first[k] the number k.
Permutation numberingFrom(std::span<const std::int32_t> first) {
  Permutation numbering(static_cast<Eigen::Index>(first.size()));
  for (std::size_t k = 0; k < first.size(); ++k) numbering.indices()[first[k]] = asInt(k);
  return numbering;
}

/// P A P^T, both triangles. Permuting leaves the row indices of a column in no order; transposing
/// sorts them, and changes nothing else of a symmetric matrix.
Sparse renumbered(const Sparse& matrix, const Permutation& numbering) {
  Sparse unsorted;
  unsorted = matrix.twistedBy(numbering);
  Sparse sorted;
  sorted = unsorted.transpose();
  return sorted;
}

}  // namespace

// Sets the same flags as Eigen's compute(), also for an empty matrix. compute() itself would leak a
// block if memory ran out in the middle.
Solver::Solver(const Sparse& matrix, const Method& method, std::span<const std::int32_t> first,
               const CostReview& review) {
  this->*Initialized::member = true;
  if (matrix.cols() == 0) {
    m_analysisIsOk = true;
    m_factorizationIsOk = true;
    if (review) review({});
    return;
  }
  Sparse upper;
  if (first.empty()) {
    order(matrix);
    upperTriangle(matrix, m_P).swap(upper);
  } else {
    const Permutation numbering = numberingFrom(first);
    const Sparse numbered = renumbered(matrix, numbering);
    order(numbered);
    upperTriangle(numbered, m_P).swap(upper);
    m_P = m_P * numbering;
    m_Pinv = m_P.inverse();
  }
  const EliminationTree tree = eliminationTree(upper);
  if (review && !review(costOf(matrix.nonZeros(), upper.nonZeros(), tree,
                               {blocksPay(tree, method), !first.empty()}))) {
    return;
  }
  storePattern(tree);
  if (!factorizeInBlocks(upper, tree, method)) factorizeByEigen(*this, upper);
}

void Solver::order(const Sparse& matrix) {
  m_Pinv = amdOrder(matrix);
  m_P = m_Pinv.inverse();
}

/// Does what Eigen's analyzePattern() does.
void Solver::storePattern(const EliminationTree& tree) {
  const int entryCount = indexable(tree.entryCount());
  const Eigen::Index n = tree.parent.size();
  m_matrix.resize(n, n);
  int* const columnPointers = m_matrix.outerIndexPtr();
  columnPointers[0] = 0;
  for (Eigen::Index j = 0; j < n; ++j) columnPointers[j + 1] = columnPointers[j] + tree.counts[j];
  m_matrix.resizeNonZeros(entryCount);
  m_parent = tree.parent;
  storeCounts(*this, tree.counts);
  m_analysisIsOk = true;
}

/// False, and nothing is of use, if blocks do not pay or the blocked factorisation gives up.
bool Solver::factorizeInBlocks(const Sparse& upper, const EliminationTree& tree,
                               const Method& method) {
  if (!blocksPay(tree, method)) return false;
  m_diag.resize(upper.cols());
  const FactorArrays factor = {m_matrix.outerIndexPtr(), m_matrix.innerIndexPtr(),
                               m_matrix.valuePtr(), m_diag.data()};
  const Supernodes supernodes = method.supernodeWidth == 0
                                    ? fundamentalSupernodes(tree)
                                    : fundamentalSupernodes(tree, method.supernodeWidth);
  const SmallSubtrees subtrees(tree, supernodes, method.smallSubtree);
  m_factorizationIsOk = factorizeBlocked(upper, tree, supernodes, subtrees, method.kernel, factor);
  return m_factorizationIsOk;
}

template <class Self>
void Solver::storeCounts(Self& self, const Eigen::VectorXi& counts) {
  if constexpr (requires { self.m_nonZerosPerCol; }) {
    self.m_nonZerosPerCol = counts;
  } else {
    self.m_workSpace.resize(4 * counts.size());
    self.m_workSpace.head(counts.size()) = counts;
  }
}

template <class Self>
void Solver::factorizeByEigen(Self& self, const Sparse& upper) {
  if constexpr (requires { self.template factorize_preordered<true>(upper); }) {
    self.template factorize_preordered<true>(upper);
  } else {
    self.template factorize_preordered<true, false>(upper);
  }
}

}  // namespace qelm::factor
