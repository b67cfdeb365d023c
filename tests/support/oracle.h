// A slow, independent way to the same numbers: the cotangent form of the
// stiffness matrix and a dense solve, in long double.
#ifndef QELM_TESTS_SUPPORT_ORACLE_H
#define QELM_TESTS_SUPPORT_ORACLE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/meshes.h"

namespace qelm::test {

/// Square, row after row.
struct DenseMatrix {
  explicit DenseMatrix(std::size_t size) : n(size), entries(size * size, 0.0L) {}
  long double& at(std::size_t row, std::size_t column) { return entries[row * n + column]; }
  long double at(std::size_t row, std::size_t column) const { return entries[row * n + column]; }

  std::size_t n;
  std::vector<long double> entries;
};

/// Stiffness matrix in input order: off-diagonal entries -(cot a + cot b) / 2
/// for the angles a, b opposite the edge (Pinkall and Polthier, 1993).
DenseMatrix cotangentStiffness(const Mesh& mesh);

/// Gaussian elimination with partial pivoting.
std::vector<long double> solveDense(DenseMatrix matrix, std::vector<long double> b);

/// The field with `values` at vertices tagged 1, 2 or 3 that solves the other
/// rows of K u + load = 0. Input order throughout; load may be empty (zero).
Field oracleField(const Mesh& mesh, const Field& values, const Field& load = {});

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_ORACLE_H
