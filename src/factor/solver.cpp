#include "factor/solver.h"

#include <cstdint>
#include <limits>
#include <new>

#include "factor/blocked_factor.h"
#include "factor/supernodes.h"

namespace qelm::factor {

Method fastestMethod() { return {panelKernels().front(), 56}; }

int indexableEntryCount(const EliminationTree& tree) {
  const std::int64_t count = tree.entryCount();
  if (count > std::numeric_limits<int>::max()) throw std::bad_alloc();
  return static_cast<int>(count);
}

namespace {

using Permutation = Eigen::PermutationMatrix<Eigen::Dynamic, Eigen::Dynamic, int>;

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

// Having factorised an empty matrix, Eigen's object counts as initialised, with success.
Solver::Solver(const Sparse& matrix, const Method& method, std::span<const std::int32_t> first)
    : Ldlt(Sparse()) {
  if (matrix.cols() == 0) return;
  Sparse upper;
  if (first.empty()) {
    order(matrix);
    inOrder(matrix).swap(upper);
  } else {
    const Permutation numbering = Permutation(numbersOf(first));
    const Sparse numbered = renumbered(matrix, numbering);
    order(numbered);
    inOrder(numbered).swap(upper);
    m_P = m_P * numbering;
    m_Pinv = m_P.inverse();
  }
  const EliminationTree tree = eliminationTree(upper);
  keepPattern(tree);
  if (!tryBlocks(upper, tree, method)) factorizePlainly(upper);
}

/// What AMDOrdering does, but without making the matrix symmetric, which it is: a third of the
/// time at 100 thousand unknowns. The ordering works on a copy of its own.
void Solver::order(const Sparse& matrix) {
  Sparse pattern;
  pattern = matrix;  // not in one line: Eigen's copy constructor leaks if memory runs out halfway
  Eigen::internal::minimum_degree_ordering(pattern, m_Pinv);
  m_P = m_Pinv.inverse();
}

/// The upper triangle under the permutation found.
Sparse Solver::inOrder(const Sparse& matrix) const {
  Sparse upper(matrix.rows(), matrix.cols());
  upper.selfadjointView<Eigen::Upper>() = matrix.selfadjointView<Eigen::Lower>().twistedBy(m_P);
  return upper;
}

/// What analyzePattern() does.
void Solver::keepPattern(const EliminationTree& tree) {
  const int entryCount = indexableEntryCount(tree);
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
  const auto entries = static_cast<double>(tree.entryCount());
  if (tree.multiplicationCount() < method.leastReuse * entries) return false;
  m_diag.resize(upper.cols());
  const FactorArrays factor = {m_matrix.outerIndexPtr(), m_matrix.innerIndexPtr(),
                               m_matrix.valuePtr(), m_diag.data()};
  m_factorizationIsOk =
      factorizeBlocked(upper, tree, fundamentalSupernodes(tree), method.kernel, factor);
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
