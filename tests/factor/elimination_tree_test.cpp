#include "factor/elimination_tree.h"

#include <gtest/gtest.h>

#include "factor/matrices.h"
#include "factor/supernodes.h"

namespace qelm::test {
namespace {

using Eigen::VectorXi;

VectorXi of(std::initializer_list<int> numbers) {
  VectorXi v(static_cast<Eigen::Index>(numbers.size()));
  std::copy(numbers.begin(), numbers.end(), v.begin());
  return v;
}

Sparse patternOf(int n, const Edges& edges) {
  return symmetricMatrix(
      n, edges, [] { return 1.0; }, [](int) { return 9.0; });
}

/// Entries of L below the diagonal, by eliminating one unknown after the other.
Eigen::MatrixXi filledPattern(const Sparse& matrix) {
  Eigen::MatrixXi filled =
      Eigen::MatrixXd(matrix).unaryExpr([](double x) { return x != 0 ? 1 : 0; }).cast<int>();
  for (Eigen::Index k = 0; k < filled.cols(); ++k) {
    for (Eigen::Index i = k + 1; i < filled.rows(); ++i) {
      for (Eigen::Index j = k + 1; j < filled.rows(); ++j)
        filled(i, j) |= filled(i, k) & filled(j, k);
    }
  }
  return filled;
}

TEST(EliminationTree, OfFiveUnknownsByHand) {
  const auto tree = factor::eliminationTree(patternOf(5, {{0, 3}, {2, 3}, {1, 4}, {3, 4}}));
  EXPECT_EQ(tree.parent, of({3, 4, 3, 4, factor::kNoColumn}));
  EXPECT_EQ(tree.counts, of({1, 1, 1, 1, 0}));
  EXPECT_EQ(tree.entryCount(), 4);
  EXPECT_EQ(tree.multiplicationCount(), 4);
}

TEST(EliminationTree, OfACycleFillsIn) {
  const auto tree = factor::eliminationTree(patternOf(4, {{0, 1}, {1, 2}, {2, 3}, {0, 3}}));
  EXPECT_EQ(tree.parent, of({1, 2, 3, factor::kNoColumn}));
  EXPECT_EQ(tree.counts, of({2, 2, 1, 0}));
  EXPECT_EQ(tree.multiplicationCount(), 3 + 3 + 1);
}

TEST(EliminationTree, IsAForestForSeveralParts) {
  const auto tree = factor::eliminationTree(patternOf(4, {{0, 2}, {1, 3}}));
  EXPECT_EQ(tree.parent, of({2, 3, factor::kNoColumn, factor::kNoColumn}));
}

TEST(EliminationTree, CountsWhatEliminationFillsIn) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (int round = 0; round < 500; ++round) {
    const int n = uniformInt(random, 1, 30);
    const Sparse matrix = patternOf(n, randomGraph(n, uniform(random, 0, 0.3), random));
    const auto tree = factor::eliminationTree(matrix);
    const Eigen::MatrixXi filled = filledPattern(matrix);
    for (int j = 0; j < n; ++j) {
      const auto below = filled.col(j).tail(n - j - 1);
      ASSERT_EQ(tree.counts[j], below.sum()) << "column " << j;
      Eigen::Index first = 0;
      if (below.size() > 0 && below.maxCoeff(&first) > 0) {
        ASSERT_EQ(tree.parent[j], j + 1 + first);
      } else {
        ASSERT_EQ(tree.parent[j], factor::kNoColumn);
      }
    }
  }
}

TEST(Supernodes, AreRunsOfColumnsWithTheSameRows) {
  // The drawing in supernodes.h.
  const auto tree = factor::eliminationTree(patternOf(
      7, {{0, 1}, {0, 6}, {1, 2}, {1, 3}, {1, 5}, {2, 3}, {2, 5}, {3, 5}, {3, 6}, {4, 5}, {5, 6}}));
  EXPECT_EQ(tree.counts, of({2, 4, 3, 2, 1, 1, 0}));
  const auto found = factor::fundamentalSupernodes(tree);
  EXPECT_EQ(found.starts, of({0, 1, 4, 5, 7}));
  EXPECT_EQ(found.ofColumn, of({0, 1, 1, 1, 2, 3, 3}));
}

TEST(Supernodes, OfADenseMatrixIsOneUntilItIsTooWide) {
  Random random(1);
  const auto tree = factor::eliminationTree(patternOf(10, randomGraph(10, 1, random)));
  EXPECT_EQ(factor::fundamentalSupernodes(tree).starts, of({0, 10}));
  EXPECT_EQ(factor::fundamentalSupernodes(tree, 4).starts, of({0, 4, 8, 10}));
  EXPECT_EQ(factor::fundamentalSupernodes(tree, 4).ofColumn, of({0, 0, 0, 0, 1, 1, 1, 1, 2, 2}));
}

TEST(Supernodes, AreCutSoThatTheirPanelsTakeLittleMemoryBesideL) {
  EXPECT_EQ(factor::widestSupernode(0), 48);
  EXPECT_EQ(factor::widestSupernode(64 * 50'000), 64);
  EXPECT_EQ(factor::widestSupernode(72 * 50'000 - 1), 64);
  EXPECT_EQ(factor::widestSupernode(72 * 50'000), 72);
  EXPECT_EQ(factor::widestSupernode(10'000'000'000), 384);
  // Two panels of so many columns and rows, in bytes, beside the 12 that an entry of L takes.
  for (const std::int64_t entries : {100'000, 1'000'000, 10'000'000, 100'000'000}) {
    const std::int64_t width = factor::widestSupernode(entries);
    EXPECT_LE(2 * 8 * width * width, 12 * entries / 20) << entries;
  }
}

TEST(Supernodes, HaveTheirRowsInCommon) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (int round = 0; round < 300; ++round) {
    const int n = uniformInt(random, 1, 30);
    const Sparse matrix = patternOf(n, randomGraph(n, uniform(random, 0, 0.3), random));
    const Eigen::MatrixXi filled = filledPattern(matrix);
    const auto found = factor::fundamentalSupernodes(factor::eliminationTree(matrix));
    for (int s = 0; s < found.count(); ++s) {
      const int last = found.lastColumn(s);
      for (int j = found.firstColumn(s); j < last; ++j) {
        ASSERT_EQ(filled.col(j).tail(n - last - 1), filled.col(last).tail(n - last - 1));
        ASSERT_EQ(filled.col(j).segment(j + 1, last - j).sum(), last - j);
      }
    }
  }
}

}  // namespace
}  // namespace qelm::test
