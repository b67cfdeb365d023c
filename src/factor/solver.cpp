#include "factor/solver.h"

#include "factor/blocked_factor.h"
#include "factor/supernodes.h"
#include "factor/symbolic.h"
#include "interface/index.h"

namespace qelm::factor {

Method fastestMethod() { return {panelKernels().front(), 40}; }

bool blocksPay(const EliminationTree& tree, const Method& method) {
  return tree.multiplicationCount() >= method.leastReuse * static_cast<double>(tree.entryCount());
}

namespace {

/// A class between Eigen's base and its SimplicialLDLT hides this from those derived from it.
struct Initialized : Eigen::SparseSolverBase<Ldlt> {
  static constexpr bool Eigen::SparseSolverBase<Ldlt>::*member = &Initialized::m_isInitialized;
};

/// The number of each unknown from the unknown of each number.
Eigen::VectorXi numbersOf(std::span<const std::int32_t> unknowns) {
  Eigen::VectorXi numbers(static_cast<Eigen::Index>(unknowns.size()));
  for (std::size_t k = 0; k < unknowns.size(); ++k) numbers[unknowns[k]] = static_cast<int>(k);
  return numbers;
}

/// Both triangles under other numbers. Permuting leaves the rows of a column in any order;
/// transposing, of a symmetric matrix, does no more than put them in ascending order.
Sparse renumbered(const Sparse& matrix, const Permutation& numbers) {
  Sparse moved;
  moved = matrix.twistedBy(numbers);
  Sparse sorted;
  sorted = moved.transpose();
  return sorted;
}

}  // namespace

// Sets what Eigen's compute() says of itself, also of an empty matrix. compute() is not called: it
// leaves a block behind if memory runs out in the middle.
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
    const Permutation numbering = Permutation(numbersOf(first));
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
  keepPattern(tree);
  if (!tryBlocks(upper, tree, method)) factorizePlainly(upper);
}

void Solver::order(const Sparse& matrix) {
  m_Pinv = amdOrder(matrix);
  m_P = m_Pinv.inverse();
}

/// What analyzePattern() does.
void Solver::keepPattern(const EliminationTree& tree) {
  const int entryCount = indexable(tree.entryCount());
  const Eigen::Index n = tree.parent.size();
  m_matrix.resize(n, n);
  int* const starts = m_matrix.outerIndexPtr();
  starts[0] = 0;
  for (Eigen::Index j = 0; j < n; ++j) starts[j + 1] = starts[j] + tree.counts[j];
  m_matrix.resizeNonZeros(entryCount);
  m_parent = tree.parent;
  keepCounts(*this, tree.counts);
  m_analysisIsOk = true;
}

bool Solver::tryBlocks(const Sparse& upper, const EliminationTree& tree, const Method& method) {
  if (!blocksPay(tree, method)) return false;
  m_diag.resize(upper.cols());
  const FactorArrays factor = {m_matrix.outerIndexPtr(), m_matrix.innerIndexPtr(),
                               m_matrix.valuePtr(), m_diag.data()};
  const Supernodes supernodes = fundamentalSupernodes(tree);
  const SmallSubtrees subtrees(tree, supernodes, method.smallSubtree);
  m_factorizationIsOk = factorizeBlocked(upper, tree, supernodes, subtrees, method.kernel, factor);
  return m_factorizationIsOk;
}

void Solver::factorizePlainly(const Sparse& upper) { callFactorize(*this, upper); }

template <class Self>
void Solver::keepCounts(Self& self, const Eigen::VectorXi& counts) {
  if constexpr (requires { self.m_nonZerosPerCol; }) {
    self.m_nonZerosPerCol = counts;
  } else {
    self.m_workSpace.resize(4 * counts.size());
    self.m_workSpace.head(counts.size()) = counts;
  }
}

template <class Self>
void Solver::callFactorize(Self& self, const Sparse& upper) {
  if constexpr (requires { self.template factorize_preordered<true>(upper); }) {
    self.template factorize_preordered<true>(upper);
  } else {
    self.template factorize_preordered<true, false>(upper);
  }
}

}  // namespace qelm::factor
