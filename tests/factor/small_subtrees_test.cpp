#include "factor/small_subtrees.h"

#include <gtest/gtest.h>

#include <vector>

#include "factor/matrices.h"

namespace qelm::test {
namespace {

using factor::SmallSubtrees;
using factor::Supernodes;

std::vector<int> membersOf(const SmallSubtrees& subtrees, int root) {
  std::vector<int> members;
  for (int s = subtrees.firstOf(root); s != SmallSubtrees::kNone; s = subtrees.nextOf(s)) {
    members.push_back(s);
  }
  return members;
}

/// The supernode that the last column's parent is in; kNone for a root.
int parentOf(const factor::EliminationTree& tree, const Supernodes& supernodes, int s) {
  const int column = tree.parent[supernodes.lastColumn(s)];
  return column == factor::kNoColumn ? SmallSubtrees::kNone : supernodes.ofColumn[column];
}

TEST(SmallSubtrees, OfAPathAndAStarByHand) {
  // 0 - 1 - 2 and 3, 4 hang on 5; 2 and 5 hang on 6.
  const Edges edges = {{0, 1}, {1, 2}, {3, 5}, {4, 5}, {2, 6}, {5, 6}};
  const auto tree = factor::eliminationTree(symmetricMatrix(
      7, edges, [] { return 1.0; }, [](int) { return 9.0; }));
  const Supernodes each = factor::fundamentalSupernodes(tree, 1);
  const SmallSubtrees three(tree, each, 3);
  EXPECT_EQ(membersOf(three, 2), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(membersOf(three, 5), (std::vector<int>{3, 4, 5}));
  EXPECT_EQ(membersOf(three, 6), std::vector<int>());
  EXPECT_FALSE(three.contains(6));
  const SmallSubtrees two(tree, each, 2);
  EXPECT_EQ(membersOf(two, 1), (std::vector<int>{0, 1}));
  EXPECT_EQ(membersOf(two, 3), std::vector<int>{3});
  EXPECT_FALSE(two.contains(2));
  EXPECT_FALSE(two.contains(5));
  EXPECT_EQ(membersOf(SmallSubtrees(tree, each, 7), 6).size(), 7U);
  EXPECT_FALSE(SmallSubtrees(tree, each, 0).contains(0));
}

TEST(SmallSubtrees, AreTheLargestThatAreSmallEnough) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed());
  for (int round = 0; round < 300; ++round) {
    const int n = uniformInt(random, 1, 40);
    const int most = uniformInt(random, 0, 12);
    const auto tree = factor::eliminationTree(symmetricMatrix(
        n, randomGraph(n, uniform(random, 0, 0.15), random), [] { return 1.0; },
        [](int) { return 9.0; }));
    const Supernodes supernodes = factor::fundamentalSupernodes(tree);
    std::vector<int> columnsBelow(static_cast<std::size_t>(supernodes.count()));
    for (int s = 0; s < supernodes.count(); ++s) {
      for (int up = s; up != SmallSubtrees::kNone; up = parentOf(tree, supernodes, up)) {
        columnsBelow[static_cast<std::size_t>(up)] += supernodes.width(s);
      }
    }
    const auto isSmall = [&](int s) { return columnsBelow[static_cast<std::size_t>(s)] <= most; };
    std::vector<std::vector<int>> expected(columnsBelow.size());
    for (int s = 0; s < supernodes.count(); ++s) {
      if (!isSmall(s)) continue;
      int root = s;
      for (int up = s; up != SmallSubtrees::kNone && isSmall(up);
           up = parentOf(tree, supernodes, up)) {
        root = up;
      }
      expected[static_cast<std::size_t>(root)].push_back(s);
    }
    const SmallSubtrees subtrees(tree, supernodes, most);
    for (int s = 0; s < supernodes.count(); ++s) {
      ASSERT_EQ(subtrees.contains(s), isSmall(s));
      ASSERT_EQ(membersOf(subtrees, s), expected[static_cast<std::size_t>(s)]);
    }
  }
}

}  // namespace
}  // namespace qelm::test
