// The library's factorisation beside Eigen's own: the same bits for every matrix.
#include "factor/solver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>

#include "factor/matrices.h"
#include "factor/supernodes.h"
#include "interface/index.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// The edges of the complete graph that are set in `bits`.
Edges someEdges(int n, unsigned bits) {
  Edges edges;
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < j; ++i, bits >>= 1) {
      if (bits & 1) edges.emplace_back(i, j);
    }
  }
  return edges;
}

TEST(FactorSolver, GivesEigensBitsForEveryGraphOfUpToSixUnknowns) {
  Random random(1);
  for (int n = 1; n <= 6; ++n) {
    const unsigned graphs = 1u << (n * (n - 1) / 2);
    for (unsigned bits = 0; bits < graphs; bits += n < 6 ? 1 : 7) {
      ASSERT_TRUE(everyKernelGivesEigensBits(diagonallyDominant(n, someEdges(n, bits), random)))
          << n << " unknowns, edges " << bits;
    }
  }
}

TEST(FactorSolver, GivesEigensBitsForRandomMatrices) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (int round = 0; round < 1500; ++round) {
    const int n = uniformInt(random, 7, 40);
    const Edges edges = randomGraph(n, uniform(random, 0, 0.4), random);
    ASSERT_TRUE(everyKernelGivesEigensBits(diagonallyDominant(n, edges, random)))
        << "round " << round << ", " << n << " unknowns";
  }
}

TEST(FactorSolver, GivesEigensBitsForLargerRandomMatrices) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (int round = 0; round < 60; ++round) {
    const int n = uniformInt(random, 100, 400);
    const Edges edges = randomGraph(n, uniform(random, 1, 8) / n, random);
    ASSERT_TRUE(everyKernelGivesEigensBits(diagonallyDominant(n, edges, random)))
        << "round " << round << ", " << n << " unknowns";
  }
}

TEST(FactorSolver, GivesEigensBitsOnGridsNumberedInAnyWay) {
  Random random(2);
  for (const int side : {2, 5, 17, 40, 90}) {
    const Edges grid = gridGraph(side, side + 3);
    const int n = side * (side + 3);
    EXPECT_TRUE(everyKernelGivesEigensBits(diagonallyDominant(n, grid, random))) << side;
    for (int round = 0; round < 3; ++round) {
      EXPECT_TRUE(
          everyKernelGivesEigensBits(diagonallyDominant(n, shuffled(n, grid, random), random)))
          << side << " shuffled";
    }
  }
}

TEST(FactorSolver, GivesEigensBitsForBandsArrowsStarsAndDenseMatrices) {
  Random random(3);
  const int n = 600;
  Edges band, arrow, star, dense;
  for (int j = 0; j < n; ++j) {
    for (int i = std::max(0, j - 9); i < j; ++i) band.emplace_back(i, j);
    for (int i = 0; i < j; ++i) {
      if (j >= n - 5 || i == j - 1) arrow.emplace_back(i, j);
      if (i == 0) star.emplace_back(i, j);
      dense.emplace_back(i, j);
    }
  }
  // Wider than a supernode may be: it is cut, also where 256 columns are allowed.
  static_assert(2 * 256 < n);
  for (const Edges& edges : {band, arrow, star, dense}) {
    EXPECT_TRUE(everyKernelGivesEigensBits(diagonallyDominant(n, edges, random)));
    EXPECT_TRUE(
        everyKernelGivesEigensBits(diagonallyDominant(n, shuffled(n, edges, random), random)));
  }
}

TEST(FactorSolver, GivesEigensBitsForAStarOfManyVertices) {
  Random random(4);
  // The second has more paths to one row than 16 bits can number.
  for (const int n : {3001, 70'001}) {
    Edges star;
    for (int j = 1; j < n; ++j) star.emplace_back(0, j);
    EXPECT_TRUE(everyKernelGivesEigensBits(diagonallyDominant(n, star, random))) << n;
  }
}

TEST(FactorSolver, GivesEigensBitsForSeveralParts) {
  Random random(5);
  Edges edges;
  for (int part = 0; part < 20; ++part) {
    for (const auto& [i, j] : gridGraph(4, 1 + part % 5)) {
      edges.emplace_back(i + 20 * part, j + 20 * part);
    }
  }
  EXPECT_TRUE(everyKernelGivesEigensBits(diagonallyDominant(400, edges, random)));
}

/// Any values at all, in blocks and plainly.
void expectSameForValues(const std::vector<double>& values, std::uint64_t seed) {
  Random random(seed);
  for (int round = 0; round < 400; ++round) {
    const int n = uniformInt(random, 1, 30);
    const Edges edges = round % 4 == 0 ? gridGraph(5, 6) : randomGraph(n, 0.2, random);
    const auto any = [&](auto...) {
      return values[static_cast<std::size_t>(
          uniformInt(random, 0, static_cast<int>(values.size()) - 1))];
    };
    ASSERT_TRUE(
        everyKernelGivesEigensBits(symmetricMatrix(round % 4 == 0 ? 30 : n, edges, any, any)))
        << "round " << round;
  }
}

TEST(FactorSolver, GivesEigensBitsForIndefiniteMatrices) {
  expectSameForValues({-3.1, -1.7, -0.3, 0.9, 2.3, 5.7}, 6);
}

TEST(FactorSolver, GivesEigensOutcomeWherePivotsVanish) { expectSameForValues({-1, 0, 1, 2}, 7); }

TEST(FactorSolver, GivesEigensBitsForExplicitAndNegativeZeros) {
  expectSameForValues({0.0, -0.0, -0.0, 1.5, 4.25, -2.75, 1e-300}, 8);
}

TEST(FactorSolver, GivesEigensBitsForTinyAndHugeNumbers) {
  expectSameForValues({1e-308, 5e-324, -1e-200, 1e200, -1e307, 1.5, 1e-160, -3e150}, 9);
}

TEST(FactorSolver, GivesEigensOutcomeForInfinitiesAndNan) {
  expectSameForValues({1, 2, 3.5, -1, -0.25, kInfinity}, 10);
  expectSameForValues({1, 2, 3.5, -1, -0.25, -kInfinity}, 11);
  expectSameForValues({4, 5, 6.5, -1, -0.25, 7, 8, kNan}, 12);
}

TEST(FactorSolver, TakesAnEmptyMatrix) {
  const factor::Solver solver(Sparse(0, 0));
  EXPECT_EQ(solver.info(), Eigen::Success);
  EXPECT_EQ(solver.cols(), 0);
}

TEST(FactorSolver, SolvesAsEigenDoes) {
  Random random(13);
  const int n = 1600;
  const Sparse matrix = diagonallyDominant(n, gridGraph(40, 40), random);
  const Eigen::VectorXd right = Eigen::VectorXd::LinSpaced(n, -1, 2);
  const factor::Solver blocked(matrix, {factor::panelKernels().front(), 0});
  const factor::Ldlt plain(matrix);
  const Eigen::VectorXd actual = blocked.solve(right);
  const Eigen::VectorXd expected = plain.solve(right);
  EXPECT_EQ(actual, expected);
}

// first[k] is the unknown that counts as number k.
TEST(FactorSolver, FactorisesInAnotherOrderAsThoughItsUnknownsWereNumberedSo) {
  Random random(14);
  for (const int side : {3, 12, 90}) {
    const int n = side * side;
    const Sparse matrix = diagonallyDominant(n, gridGraph(side, side), random);
    const auto first = permutation(random, n);
    Eigen::PermutationMatrix<Eigen::Dynamic> numbers(n);
    for (int k = 0; k < n; ++k) numbers.indices()[first[static_cast<std::size_t>(k)]] = k;
    std::vector<Eigen::Triplet<double>> entries;
    for (int column = 0; column < n; ++column) {
      for (Sparse::InnerIterator entry(matrix, column); entry; ++entry) {
        entries.emplace_back(numbers.indices()[entry.row()], numbers.indices()[column],
                             entry.value());
      }
    }
    Sparse renumbered(n, n);
    renumbered.setFromTriplets(entries.begin(), entries.end());
    const factor::Solver expected(renumbered);
    const factor::Solver actual(matrix, factor::fastestMethod(), first);
    EXPECT_EQ(actual.vectorD(), expected.vectorD());
    const Eigen::VectorXd right = Eigen::VectorXd::LinSpaced(n, -1, 2);
    const Eigen::VectorXd field = expected.solve(numbers * right);
    EXPECT_EQ(actual.solve(right), numbers.transpose() * field) << side;
  }
}

TEST(FactorSolver, TakesBlocksWhereTheyPayAndEigensLoopElsewhere) {
  const double least = factor::fastestMethod().leastReuse;
  EXPECT_GT(least, 0);
  EXPECT_LT(least, 100);
  EXPECT_EQ(&factor::fastestMethod().kernel, &factor::panelKernels().front());
}

TEST(EliminationTree, CountsEntriesBeyondAnInt) {
  constexpr int kMost = std::numeric_limits<int>::max();
  factor::EliminationTree tree;
  tree.counts.setConstant(5, kMost);
  EXPECT_EQ(tree.entryCount(), 5 * std::int64_t{kMost});
  EXPECT_THROW(indexable(tree.entryCount()), std::bad_alloc)
      << "twice around, it would be positive";
}

TEST(Indexable, IsWhatAnIntCanCount) {
  constexpr int kMost = std::numeric_limits<int>::max();
  EXPECT_EQ(indexable(0), 0);
  EXPECT_EQ(indexable(kMost), kMost);
  EXPECT_THROW(indexable(std::int64_t{kMost} + 1), std::bad_alloc);
  EXPECT_THROW(indexable(std::numeric_limits<std::int64_t>::max()), std::bad_alloc);
}

}  // namespace
}  // namespace qelm::test
