// Forward and back substitution for one right-hand side, word for word: a loop over the columns.
#ifndef QELM_TESTS_SOLVE_COLUMN_LOOP_H
#define QELM_TESTS_SOLVE_COLUMN_LOOP_H

#include <Eigen/Core>
#include <cmath>
#include <limits>
#include <vector>

#include "interface/mesh_system.h"
#include "support/compare.h"

namespace qelm::test {

/// x = L^-1 x.
inline void substituteForwardByColumns(const SparseBlock& lower, std::vector<double>& x) {
  for (Eigen::Index j = 0; j < lower.cols(); ++j) {
    const double pivot = x[static_cast<std::size_t>(j)];
    if (pivot == 0) continue;
    for (SparseBlock::InnerIterator entry(lower, j); entry; ++entry) {
      x[static_cast<std::size_t>(entry.row())] -= pivot * entry.value();
    }
  }
}

/// x = L^-T D^-1 x.
inline void substituteBackByColumns(const SparseBlock& lower, const Eigen::VectorXd& diagonal,
                                    std::vector<double>& x) {
  for (Eigen::Index j = lower.cols() - 1; j >= 0; --j) {
    double& sum = x[static_cast<std::size_t>(j)];
    sum *= 1.0 / diagonal[j];
    for (SparseBlock::InnerIterator entry(lower, j); entry; ++entry) {
      sum -= entry.value() * x[static_cast<std::size_t>(entry.row())];
    }
  }
}

/// A NaN's sign and payload may differ.
inline testing::AssertionResult sameBitsOrBothNan(std::vector<double> a, std::vector<double> b) {
  for (auto* numbers : {&a, &b}) {
    for (double& x : *numbers) {
      if (std::isnan(x)) x = std::numeric_limits<double>::quiet_NaN();
    }
  }
  return sameBits(a, b);
}

}  // namespace qelm::test

#endif  // QELM_TESTS_SOLVE_COLUMN_LOOP_H
