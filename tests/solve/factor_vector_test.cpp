// One right-hand side, supernode by supernode, beside a loop over the columns: the same bits.
#include "solve/factor_vector.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "factor/matrices.h"
#include "solve/column_loop.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// Zeros of both signs among the entries, with the given probability.
std::vector<double> rightHandSide(Eigen::Index n, double zeros, Random& random) {
  std::vector<double> x(static_cast<std::size_t>(n));
  for (double& entry : x) {
    entry = uniform(random, 0, 1) < zeros ? (uniform(random, 0, 1) < 0.5 ? 0.0 : -0.0)
                                          : uniform(random, -2, 3);
  }
  return x;
}

void expectTheBitsOfALoopOverColumns(const SparseBlock& lower, const Eigen::VectorXd& diagonal,
                                     const std::vector<double>& start) {
  std::vector<double> scratch(start.size());
  std::vector<double> actual = start;
  std::vector<double> expected = start;
  substituteForward(lower, actual.data(), scratch.data());
  substituteForwardByColumns(lower, expected);
  ASSERT_TRUE(sameBitsOrBothNan(actual, expected)) << "down";
  substituteBack(lower, diagonal, actual.data(), scratch.data());
  substituteBackByColumns(lower, diagonal, expected);
  ASSERT_TRUE(sameBitsOrBothNan(actual, expected)) << "up";
}

std::vector<Sparse> variousMatrices(Random& random) {
  std::vector<Sparse> matrices = {diagonallyDominant(1, {}, random),
                                  diagonallyDominant(7, {}, random)};
  for (const int n : {2, 3, 4, 5, 9, 60}) {
    matrices.push_back(diagonallyDominant(n, randomGraph(n, 1, random), random));
    matrices.push_back(diagonallyDominant(n, randomGraph(n, 0.2, random), random));
  }
  matrices.push_back(diagonallyDominant(400, gridGraph(20, 20), random));
  matrices.push_back(diagonallyDominant(400, shuffled(400, gridGraph(20, 20), random), random));
  return matrices;
}

TEST(FactorVector, HasTheBitsOfALoopOverColumns) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (const Sparse& matrix : variousMatrices(random)) {
    const factor::Solver solver(matrix);
    const Eigen::VectorXd diagonal = solver.vectorD();
    for (const double zeros : {0.0, 0.1, 0.5, 0.95, 1.0}) {
      expectTheBitsOfALoopOverColumns(solver.matrixL().nestedExpression(), diagonal,
                                      rightHandSide(matrix.cols(), zeros, random));
    }
  }
}

// The factor's values are prefetched.
TEST(FactorVector, HasTheSameBitsWhereTheFactorIsLargerThanTheCaches) {
  Random random(4);
  const int side = 260;
  const Sparse matrix = diagonallyDominant(side * side, gridGraph(side, side), random);
  const factor::Solver solver(matrix);
  const SparseBlock& lower = solver.matrixL().nestedExpression();
  ASSERT_GT(lower.nonZeros(), 2'000'000);
  expectTheBitsOfALoopOverColumns(lower, solver.vectorD(),
                                  rightHandSide(matrix.cols(), 0.1, random));
}

TEST(FactorVector, PassesOverColumnsOfZerosEvenWhereLIsNotFinite) {
  Random random(3);
  const Sparse matrix = diagonallyDominant(30, randomGraph(30, 1, random), random);
  const factor::Solver solver(matrix);
  Sparse lower = solver.matrixL().nestedExpression();
  lower.valuePtr()[3] = std::numeric_limits<double>::infinity();
  lower.valuePtr()[40] = kNan;
  const Eigen::VectorXd diagonal = solver.vectorD();
  std::vector<double> start = rightHandSide(30, 0, random);
  for (const std::size_t zero : {0u, 1u, 5u, 29u}) {
    start[zero] = zero % 2 == 0 ? 0.0 : -0.0;
    expectTheBitsOfALoopOverColumns(lower, diagonal, start);
  }
}

TEST(FactorVector, TakesAFactorWithoutColumns) {
  const SparseBlock lower(0, 0);
  const Eigen::VectorXd diagonal;
  substituteForward(lower, nullptr, nullptr);
  substituteBack(lower, diagonal, nullptr, nullptr);
  EXPECT_EQ(lower.cols(), 0);
}

}  // namespace
}  // namespace qelm::test
