#include "solve/field_solve.h"

#include <Eigen/Core>
#include <cstddef>

namespace qelm {
namespace {

using Eigen::Index;
using Eigen::VectorXd;

Index freeCount(const MeshSystem& system) {
  return static_cast<Index>(system.vertexCount - system.fixedCount);
}

/// Entries of `field` at system places first .. first+count-1.
VectorXd gather(const MeshSystem& system, std::span<const double> field, Index first, Index count) {
  VectorXd gathered(count);
  for (Index k = 0; k < count; ++k) {
    const auto input = system.vertexOrder[static_cast<std::size_t>(first + k)];
    gathered[k] = field[static_cast<std::size_t>(input)];
  }
  return gathered;
}

void scatter(const MeshSystem& system, const VectorXd& solved, std::span<double> result) {
  for (Index k = 0; k < solved.size(); ++k) {
    const auto input = system.vertexOrder[static_cast<std::size_t>(k)];
    result[static_cast<std::size_t>(input)] = solved[k];
  }
}

/// -K_fb u_b, accumulated from zero, column by column in storage order. The
/// negation belongs to the matrix entry; moving it elsewhere changes the sign
/// of zeros.
VectorXd dirichletRhs(const MeshSystem& system, const VectorXd& fixed) {
  VectorXd rhs = VectorXd::Zero(freeCount(system));
  const SparseBlock& coupling = *system.freeFixedBlock;
  for (Index j = 0; j < coupling.outerSize(); ++j) {
    for (SparseBlock::InnerIterator entry(coupling, j); entry; ++entry) {
      rhs[entry.row()] += (-entry.value()) * fixed[j];
    }
  }
  return rhs;
}

/// -load - K_fb u_b. The sums start from the negated load, and here the negation
/// belongs to the prescribed value: with a load of zeros that is the right-hand
/// side above, but for the sign of a zero.
VectorXd loadRhs(const MeshSystem& system, const VectorXd& fixed, const VectorXd& load) {
  VectorXd rhs = -load;
  const SparseBlock& coupling = *system.freeFixedBlock;
  for (Index j = 0; j < coupling.outerSize(); ++j) {
    for (SparseBlock::InnerIterator entry(coupling, j); entry; ++entry) {
      rhs[entry.row()] += (fixed[j] * -1.0) * entry.value();
    }
  }
  return rhs;
}

/// The whole field in system order: `fixed` in front, the solution of
/// K_ff y = rhs behind it, or zeros there if the factorisation failed.
VectorXd solveFree(const MeshSystem& system, const VectorXd& fixed, const VectorXd& rhs) {
  VectorXd field = VectorXd::Zero(static_cast<Index>(system.vertexCount));
  field.head(fixed.size()) = fixed;
  if (system.freeSolver->info() == Eigen::Success) {
    field.tail(rhs.size()) = system.freeSolver->solve(rhs);
  }
  return field;
}

}  // namespace

void solveDirichlet(const MeshSystem& system, std::span<const double> values,
                    std::span<double> result) {
  const VectorXd fixed = gather(system, values, 0, static_cast<Index>(system.fixedCount));
  scatter(system, solveFree(system, fixed, dirichletRhs(system, fixed)), result);
}

void solveWithLoad(const MeshSystem& system, std::span<const double> values,
                   std::span<const double> load, std::span<double> result) {
  const auto t = static_cast<Index>(system.fixedCount);
  const VectorXd fixed = gather(system, values, 0, t);
  const VectorXd freeLoad = gather(system, load, t, freeCount(system));
  scatter(system, solveFree(system, fixed, loadRhs(system, fixed, freeLoad)), result);
}

}  // namespace qelm
