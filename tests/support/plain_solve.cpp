#include "support/plain_solve.h"

#include <Eigen/Core>
#include <cstddef>

namespace qelm::test {
namespace {

using Eigen::Index;
using Eigen::VectorXd;

/// Entries of `field` at system indices first .. first+count-1.
VectorXd gather(const MeshSystem& system, const Field& field, Index first, Index count) {
  VectorXd gathered(count);
  for (Index k = 0; k < count; ++k) {
    const auto input = system.vertexOrder[static_cast<std::size_t>(first + k)];
    gathered[k] = field[static_cast<std::size_t>(input)];
  }
  return gathered;
}

/// The negation belongs to the matrix's entry.
VectorXd rightHandSide(const MeshSystem& system, const VectorXd& fixed, Index freeCount) {
  VectorXd b = VectorXd::Zero(freeCount);
  for (Index j = 0; j < fixed.size(); ++j) {
    for (SparseBlock::InnerIterator entry(*system.freeFixedBlock, j); entry; ++entry) {
      b[entry.row()] += (-entry.value()) * fixed[j];
    }
  }
  return b;
}

/// The negation belongs to the prescribed value.
VectorXd rightHandSide(const MeshSystem& system, const VectorXd& fixed, const VectorXd& load) {
  VectorXd b = -load;
  for (Index j = 0; j < fixed.size(); ++j) {
    for (SparseBlock::InnerIterator entry(*system.freeFixedBlock, j); entry; ++entry) {
      b[entry.row()] += (fixed[j] * -1.0) * entry.value();
    }
  }
  return b;
}

}  // namespace

Field plainSolve(const MeshSystem& system, const Field& values, const Field& load) {
  const auto n = static_cast<Index>(system.vertexCount);
  const auto t = static_cast<Index>(system.fixedCount);
  const VectorXd fixed = gather(system, values, 0, t);
  const VectorXd b = load.empty() ? rightHandSide(system, fixed, n - t)
                                  : rightHandSide(system, fixed, gather(system, load, t, n - t));
  VectorXd field = VectorXd::Zero(n);
  field.head(t) = fixed;
  if (system.freeSolver->info() == Eigen::Success) {
    field.tail(n - t) = system.freeSolver->solve(b);
  }
  Field result(values.size());
  for (Index k = 0; k < n; ++k) {
    const auto input = system.vertexOrder[static_cast<std::size_t>(k)];
    result[static_cast<std::size_t>(input)] = field[k];
  }
  return result;
}

}  // namespace qelm::test
