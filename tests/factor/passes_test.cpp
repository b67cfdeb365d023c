// The order of updates: that of Eigen's loop, row by row, for every target.
#include "factor/passes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <vector>

#include "factor/matrices.h"
#include "factor/row_paths.h"

namespace qelm::test {
namespace {

using factor::Descendant;
using factor::FactorArrays;
using factor::Panel;
using factor::Passes;
using factor::RowPaths;
using factor::Supernodes;
using factor::Update;

/// Everything up to the numeric phase, for a matrix whose entries come in a random order.
struct Symbolic {
  Symbolic(const Sparse& upperTriangle, int widest)
      : upper(upperTriangle),
        tree(factor::eliminationTree(upper)),
        supernodes(factor::fundamentalSupernodes(tree, widest)),
        columnPointers(static_cast<std::size_t>(upper.cols()) + 1) {
    std::partial_sum(tree.counts.begin(), tree.counts.end(), columnPointers.begin() + 1);
    rowIndices.resize(static_cast<std::size_t>(columnPointers.back()));
    values.resize(rowIndices.size());
    diagonal.resize(static_cast<std::size_t>(upper.cols()));
  }
  FactorArrays arrays() {
    return {columnPointers.data(), rowIndices.data(), values.data(), diagonal.data()};
  }

  Sparse upper;
  factor::EliminationTree tree;
  Supernodes supernodes;
  std::vector<int> columnPointers;
  std::vector<int> rowIndices;
  std::vector<double> values;
  std::vector<double> diagonal;
};

/// The upper triangle with the entries of each column in a random order.
Sparse unorderedUpper(int n, const Edges& edges, Random& random) {
  std::vector<std::vector<int>> columns(static_cast<std::size_t>(n));
  for (const auto& [i, j] : edges) columns[static_cast<std::size_t>(j)].push_back(i);
  Sparse upper(n, n);
  upper.resizeNonZeros(static_cast<Eigen::Index>(edges.size()) + n);
  int next = 0;
  for (int j = 0; j < n; ++j) {
    auto& column = columns[static_cast<std::size_t>(j)];
    column.push_back(j);
    upper.outerIndexPtr()[j] = next;
    for (const int k : permutation(random, static_cast<int>(column.size()))) {
      upper.innerIndexPtr()[next] = column[static_cast<std::size_t>(k)];
      upper.valuePtr()[next++] = 1;
    }
  }
  upper.outerIndexPtr()[n] = next;
  return upper;
}

/// The pattern of one row of L in the order of Eigen's loop: the path found last first.
std::vector<int> rowInOrder(const Sparse& upper, const Eigen::VectorXi& parent, int row) {
  std::vector<int> pattern;
  std::vector<bool> seen(static_cast<std::size_t>(upper.cols()));
  seen[static_cast<std::size_t>(row)] = true;
  for (Sparse::InnerIterator entry(upper, row); entry; ++entry) {
    std::vector<int> path;
    for (auto i = static_cast<int>(entry.row()); !seen[static_cast<std::size_t>(i)];
         i = parent[i]) {
      seen[static_cast<std::size_t>(i)] = true;
      path.push_back(i);
    }
    pattern.insert(pattern.begin(), path.begin(), path.end());
  }
  return pattern;
}

/// Visits every target's descendants and gathers, for each target and row, the columns that come.
std::map<std::pair<int, int>, std::vector<int>> columnsByTargetAndRow(Symbolic& s,
                                                                      const RowPaths& paths) {
  std::map<std::pair<int, int>, std::vector<int>> found;
  Passes passes(paths, static_cast<std::size_t>(s.upper.cols()));
  for (int target = 0; target < s.supernodes.count(); ++target) {
    std::vector<Descendant> descendants;
    for (int k = 0; k < target; ++k) {
      const Panel panel(s.arrays(), s.supernodes, k);
      const auto* const begin = panel.rowIndices;
      const auto* const end = begin + panel.belowCount;
      const auto first = std::lower_bound(begin, end, s.supernodes.firstColumn(target)) - begin;
      const auto past = std::lower_bound(begin, end, s.supernodes.pastColumn(target)) - begin;
      if (first < past) {
        descendants.push_back({k, panel, static_cast<int>(first), static_cast<int>(past)});
      }
    }
    passes.forEachUpdate(descendants, [&](const Update& update) {
      const Panel& panel = descendants[update.descendant].panel;
      for (const int p : update.positions) {
        for (int k = update.beginColumn; k < update.endColumn; ++k) {
          found[{target, panel.rowIndices[p]}].push_back(panel.firstColumn + k);
        }
      }
    });
  }
  return found;
}

void expectOrderOfEigen(int n, const Edges& edges, Random& random, int widest) {
  Symbolic s(unorderedUpper(n, edges, random), widest);
  const RowPaths paths(s.upper, s.tree, s.supernodes, s.arrays());
  ASSERT_TRUE(paths.fits());
  const auto found = columnsByTargetAndRow(s, paths);
  for (const auto& [targetAndRow, columns] : found) {
    const auto [target, row] = targetAndRow;
    std::vector<int> expected;
    for (const int j : rowInOrder(s.upper, s.tree.parent, row)) {
      // The row's columns with an entry in the target's columns.
      const Panel panel(s.arrays(), s.supernodes, s.supernodes.ofColumn[j]);
      const int* const begin = panel.rowIndices;
      const int* const end = begin + panel.belowCount;
      const int* const first = std::lower_bound(begin, end, s.supernodes.firstColumn(target));
      if (s.supernodes.ofColumn[j] < target && first != end &&
          *first < s.supernodes.pastColumn(target)) {
        expected.push_back(j);
      }
    }
    ASSERT_EQ(columns, expected) << "row " << row << ", target " << target;
  }
}

TEST(Passes, BringEveryRowItsUpdatesInTheOrderOfItsPaths) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (int round = 0; round < 400; ++round) {
    const int n = uniformInt(random, 5, 60);
    expectOrderOfEigen(n, randomGraph(n, uniform(random, 0.02, 0.25), random), random,
                       uniformInt(random, 1, 20));
  }
  for (int round = 0; round < 20; ++round) {
    expectOrderOfEigen(144, shuffled(144, gridGraph(12, 12), random), random, 128);
  }
}

TEST(RowPaths, SplitASupernodeWhereAPathFoundBetweenTwoPartsNeedsIt) {
  // Supernode {0, 1, 2} and column 3, all under 4 and 5; row 5 finds 2, then 3, then 0.
  const Edges edges = {{0, 1}, {0, 2}, {1, 2}, {0, 4}, {1, 4}, {2, 4},
                       {3, 4}, {0, 5}, {2, 5}, {3, 5}, {4, 5}};
  Random random(1);
  Sparse upper = unorderedUpper(6, edges, random);
  int* const rows = upper.innerIndexPtr() + upper.outerIndexPtr()[5];
  const int order[] = {2, 3, 0, 4, 5};
  std::copy(std::begin(order), std::end(order), rows);
  Symbolic s(upper, 128);
  ASSERT_EQ(s.supernodes.ofColumn[0], s.supernodes.ofColumn[2]);
  const RowPaths paths(s.upper, s.tree, s.supernodes, s.arrays());
  EXPECT_EQ(paths.ofSupernode(0)[1], RowPaths::kSplit);
  const auto parts = paths.partsOf(0, 5);
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(parts[0].beginColumn, 0);
  EXPECT_EQ(parts[0].path, 2);
  EXPECT_EQ(parts[1].beginColumn, 2);
  EXPECT_EQ(parts[1].path, 0);
  const auto found = columnsByTargetAndRow(s, paths);
  const int target = s.supernodes.ofColumn[4];
  EXPECT_EQ((found.at({target, 5})), (std::vector<int>{0, 1, 3, 2}));
}

/// First column and path of each part of supernode {1, 2, 3, 4} in row 8, whose entries come in
/// this order. Columns 0, 5 and 6 stand alone; all lie under 7.
std::vector<std::pair<int, int>> partsInOrder(std::vector<int> order) {
  Edges edges = {{0, 7}, {5, 7}, {6, 7}, {7, 8}};
  for (int i = 1; i < 5; ++i) {
    for (int j = i + 1; j < 5; ++j) edges.push_back({i, j});
    edges.push_back({i, 7});
  }
  for (const int i : order) edges.push_back({i, 8});
  order.insert(order.end(), {7, 8});
  Random random(1);
  Sparse upper = unorderedUpper(9, edges, random);
  std::copy(order.begin(), order.end(), upper.innerIndexPtr() + upper.outerIndexPtr()[8]);
  Symbolic s(upper, 128);
  const int supernode = s.supernodes.ofColumn[1];
  EXPECT_EQ(s.supernodes.firstColumn(supernode), 1);
  EXPECT_EQ(s.supernodes.lastColumn(supernode), 4);
  const RowPaths paths(s.upper, s.tree, s.supernodes, s.arrays());
  std::vector<std::pair<int, int>> found;
  for (const RowPaths::Part& part : paths.partsOf(supernode, 8)) {
    found.emplace_back(part.beginColumn, part.path);
  }
  std::vector<int> inEigensOrder;
  for (const int j : rowInOrder(s.upper, s.tree.parent, 8)) {
    if (j < 7) inEigensOrder.push_back(j);
  }
  const int target = s.supernodes.ofColumn[7];
  EXPECT_EQ((columnsByTargetAndRow(s, paths).at({target, 8})), inEigensOrder);
  return found;
}

TEST(RowPaths, SplitASupernodeAgainForAThirdPath) {
  const std::vector<std::pair<int, int>> expected = {{0, 4}, {2, 2}, {3, 0}};
  EXPECT_EQ(partsInOrder({4, 5, 3, 6, 1}), expected);
}

TEST(RowPaths, LengthenThePartOfAPathThatGoesOn) {
  const std::vector<std::pair<int, int>> expected = {{0, 2}, {3, 0}};
  EXPECT_EQ(partsInOrder({4, 5, 3, 1, 6}), expected);
}

TEST(RowPaths, PutTheMatrixIntoThePanels) {
  Random random(2);
  const int n = 40;
  const Edges edges = randomGraph(n, 0.15, random);
  Sparse upper = unorderedUpper(n, edges, random);
  for (int k = 0; k < upper.nonZeros(); ++k) upper.valuePtr()[k] = k + 1;
  Symbolic s(upper, 128);
  const RowPaths paths(s.upper, s.tree, s.supernodes, s.arrays());
  double sum = 0;
  for (const double x : s.values) sum += x;
  for (const double x : s.diagonal) sum += x;
  EXPECT_EQ(sum, static_cast<double>(upper.nonZeros() * (upper.nonZeros() + 1)) / 2);
}

}  // namespace
}  // namespace qelm::test
