#include "factor/matrices.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>

namespace qelm::test {
namespace {

/// Reads what Eigen's class hides; where it keeps the counts depends on its version.
template <class Base>
struct Opened : Base {
  using Base::Base;
  const Eigen::VectorXi& parent() const { return this->m_parent; }
  Eigen::VectorXi counts() const { return countsOf(*this); }

 private:
  template <class Self>
  static Eigen::VectorXi countsOf(const Self& self) {
    if constexpr (requires { self.m_nonZerosPerCol; }) {
      return self.m_nonZerosPerCol;
    } else {
      return self.m_workSpace.head(self.cols());
    }
  }
};

const Sparse& lowerOf(const factor::Ldlt& solver) { return solver.matrixL().nestedExpression(); }

bool sameNumber(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

testing::AssertionResult sameNumbers(const char* what, std::span<const double> actual,
                                     std::span<const double> expected) {
  if (actual.size() != expected.size()) return testing::AssertionFailure() << what << ": count";
  for (std::size_t k = 0; k < actual.size(); ++k) {
    if (!sameNumber(actual[k], expected[k])) {
      return testing::AssertionFailure()
             << what << " " << k << ": " << actual[k] << " instead of " << expected[k];
    }
  }
  return testing::AssertionSuccess();
}

std::span<const double> valuesOf(const Sparse& matrix) {
  return {matrix.valuePtr(), static_cast<std::size_t>(matrix.nonZeros())};
}

std::span<const double> numbersOf(const Eigen::VectorXd& numbers) {
  return {numbers.data(), static_cast<std::size_t>(numbers.size())};
}

}  // namespace

Sparse symmetricMatrix(int n, const Edges& edges, const std::function<double()>& offDiagonal,
                       const std::function<double(int)>& diagonal) {
  std::vector<Eigen::Triplet<double>> entries;
  for (const auto& [i, j] : edges) {
    const double value = offDiagonal();
    entries.emplace_back(i, j, value);
    entries.emplace_back(j, i, value);
  }
  for (int i = 0; i < n; ++i) entries.emplace_back(i, i, diagonal(i));
  Sparse matrix(n, n);
  matrix.setFromTriplets(entries.begin(), entries.end());
  return matrix;
}

Sparse diagonallyDominant(int n, const Edges& edges, Random& random) {
  std::vector<double> sums(static_cast<std::size_t>(n), 0.0);
  std::size_t next = 0;
  return symmetricMatrix(
      n, edges,
      [&] {
        const double value = -uniform(random, 0.01, 1);
        const auto& [i, j] = edges[next++];
        sums[static_cast<std::size_t>(i)] -= value;
        sums[static_cast<std::size_t>(j)] -= value;
        return value;
      },
      [&](int i) { return sums[static_cast<std::size_t>(i)] + uniform(random, 0.001, 0.1); });
}

Edges randomGraph(int n, double probability, Random& random) {
  Edges edges;
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < j; ++i) {
      if (uniform(random, 0, 1) < probability) edges.emplace_back(i, j);
    }
  }
  return edges;
}

Edges gridGraph(int columns, int rows) {
  Edges edges;
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) {
      const int i = y * columns + x;
      if (x + 1 < columns) edges.emplace_back(i, i + 1);
      if (y + 1 < rows) edges.emplace_back(i, i + columns);
      if (x + 1 < columns && y + 1 < rows) edges.emplace_back(i, i + columns + 1);
    }
  }
  return edges;
}

Edges shuffled(int n, Edges edges, Random& random) {
  const auto place = permutation(random, n);
  for (auto& [i, j] : edges) {
    i = place[static_cast<std::size_t>(i)];
    j = place[static_cast<std::size_t>(j)];
    if (i > j) std::swap(i, j);
  }
  return edges;
}

testing::AssertionResult sameFactorisation(const factor::Solver& actual, const Sparse& matrix) {
  const Opened<factor::Ldlt> expected(matrix);
  if (actual.info() != expected.info()) {
    return testing::AssertionFailure() << "info " << actual.info();
  }
  if (actual.permutationP().indices() != expected.permutationP().indices() ||
      actual.permutationPinv().indices() != expected.permutationPinv().indices()) {
    return testing::AssertionFailure() << "another permutation";
  }
  const auto& opened = static_cast<const Opened<factor::Solver>&>(actual);
  if (opened.parent() != expected.parent()) return testing::AssertionFailure() << "tree";
  // Where a pivot is zero Eigen stops, and what comes after is left as it happened to be.
  if (expected.info() != Eigen::Success) return testing::AssertionSuccess();
  if (opened.counts() != expected.counts()) return testing::AssertionFailure() << "counts";
  const Sparse& lower = lowerOf(actual);
  const Sparse& expectedLower = lowerOf(expected);
  const auto columns = static_cast<std::size_t>(matrix.cols());
  if (!std::equal(lower.outerIndexPtr(), lower.outerIndexPtr() + columns + 1,
                  expectedLower.outerIndexPtr()) ||
      !std::equal(lower.innerIndexPtr(), lower.innerIndexPtr() + lower.nonZeros(),
                  expectedLower.innerIndexPtr())) {
    return testing::AssertionFailure() << "another pattern";
  }
  const auto values = sameNumbers("entry of L", valuesOf(lower), valuesOf(expectedLower));
  if (!values) return values;
  return sameNumbers("pivot", numbersOf(actual.vectorD()), numbersOf(expected.vectorD()));
}

testing::AssertionResult everyKernelGivesEigensBits(const Sparse& matrix) {
  for (const factor::PanelKernel& kernel : factor::panelKernels()) {
    for (const double leastReuse : {0.0, std::numeric_limits<double>::infinity()}) {
      const Opened<factor::Solver> solver(matrix, factor::Method{kernel, leastReuse});
      const auto same = sameFactorisation(solver, matrix);
      if (!same) {
        return testing::AssertionFailure()
               << kernel.name << (leastReuse == 0 ? ", blocks: " : ", plain: ") << same.message();
      }
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace qelm::test
