#include "factor/eigen_oracle.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <sstream>

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

std::string difference(const char* what, std::span<const double> actual,
                       std::span<const double> expected) {
  for (std::size_t k = 0; k < expected.size(); ++k) {
    if (!sameNumber(actual[k], expected[k])) {
      std::ostringstream text;
      text << what << " " << k << ": " << actual[k] << " instead of " << expected[k];
      return text.str();
    }
  }
  return {};
}

std::span<const double> valuesOf(const Sparse& matrix) {
  return {matrix.valuePtr(), static_cast<std::size_t>(matrix.nonZeros())};
}

std::span<const double> numbersOf(const Eigen::VectorXd& numbers) {
  return {numbers.data(), static_cast<std::size_t>(numbers.size())};
}

std::string difference(const Opened<factor::Solver>& actual, const Opened<factor::Ldlt>& expected) {
  if (actual.info() != expected.info()) return "info";
  if (actual.permutationP().indices() != expected.permutationP().indices() ||
      actual.permutationPinv().indices() != expected.permutationPinv().indices()) {
    return "permutation";
  }
  if (actual.parent() != expected.parent()) return "tree";
  // Where a pivot is zero Eigen stops, and what comes after is left as it happened to be.
  if (expected.info() != Eigen::Success) return {};
  if (actual.counts() != expected.counts()) return "counts";
  const Sparse& lower = lowerOf(actual);
  const Sparse& expectedLower = lowerOf(expected);
  if (!std::equal(lower.outerIndexPtr(), lower.outerIndexPtr() + lower.cols() + 1,
                  expectedLower.outerIndexPtr()) ||
      !std::equal(lower.innerIndexPtr(), lower.innerIndexPtr() + lower.nonZeros(),
                  expectedLower.innerIndexPtr())) {
    return "pattern";
  }
  const std::string found = difference("entry of L", valuesOf(lower), valuesOf(expectedLower));
  if (!found.empty()) return found;
  return difference("pivot", numbersOf(actual.vectorD()), numbersOf(expected.vectorD()));
}

}  // namespace

std::string differenceFromEigen(const Sparse& matrix) {
  const Opened<factor::Ldlt> expected(matrix);
  const double never = std::numeric_limits<double>::infinity();
  const auto compare = [&](const factor::Method& method, const std::string& how) {
    const std::string found = difference(Opened<factor::Solver>(matrix, method), expected);
    return found.empty() ? found : method.kernel.name + how + found;
  };
  for (const factor::PanelKernel& kernel : factor::panelKernels()) {
    const std::string found = compare({kernel, 0, 0}, ", in blocks: ");
    if (!found.empty()) return found;
  }
  const factor::PanelKernel& fastest = factor::panelKernels().front();
  for (const int smallSubtree : {5, factor::kMostSubtreeColumns}) {
    const std::string found =
        compare({fastest, 0, smallSubtree}, ", subtrees of " + std::to_string(smallSubtree) + ": ");
    if (!found.empty()) return found;
  }
  for (const int width : {3, 256}) {
    const std::string found =
        compare({fastest, 0, 0, width}, ", supernodes of " + std::to_string(width) + ": ");
    if (!found.empty()) return found;
  }
  return compare({fastest, never}, ", plainly: ");
}

}  // namespace qelm::test
