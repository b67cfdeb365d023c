// Limits that no test could reach with a real mesh.
#include "mesh/size_limit.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace qelm::test {
namespace {

constexpr std::int64_t kNoLimit = std::numeric_limits<std::int64_t>::max();

/// A mesh of three vertices, one prescribed.
MeshSystem smallSystem() {
  MeshSystem system;
  system.vertexCount = 3;
  system.fixedCount = 1;
  system.triangles = std::make_shared<const std::vector<std::int32_t>>(3);
  system.freeFreeBlock = std::make_shared<const SparseBlock>(2, 2);
  system.freeFixedBlock = std::make_shared<const SparseBlock>(2, 1);
  return system;
}

factor::EliminationTree treeOf(std::initializer_list<int> counts) {
  factor::EliminationTree tree;
  tree.counts = Eigen::Map<const Eigen::VectorXi>(counts.begin(), std::ssize(counts));
  tree.parent = Eigen::VectorXi::Constant(std::ssize(counts), factor::kNoColumn);
  return tree;
}

TEST(SizeLimit, AFactorThatAnIntCannotIndexIsTooLargeForAnyLimit) {
  constexpr int kMost = std::numeric_limits<int>::max();
  const MeshSystem system = smallSystem();
  SizeLimit limit{kNoLimit};
  EXPECT_TRUE(keeps(limit, system, factor::costOf(3, 2, treeOf({kMost - 1, 1}), {})));
  EXPECT_EQ(limit.prediction.factorEntries, kMost);
  EXPECT_FALSE(keeps(limit, system, factor::costOf(3, 2, treeOf({kMost, 1}), {})));
  EXPECT_EQ(limit.prediction.factorEntries, std::int64_t{kMost} + 1) << "told nevertheless";
  EXPECT_GT(limit.prediction.peakBytes, 12 * (std::int64_t{kMost} + 1));
}

TEST(SizeLimit, CountsMultiplicationsBeyondAnInt) {
  const factor::Cost cost = factor::costOf(3, 2, treeOf({2000000, 1000000}), {});
  EXPECT_EQ(cost.multiplicationCount, 2000000.0 * 2000001 / 2 + 1000000.0 * 1000001 / 2);
}

TEST(SizeLimit, ANegativeLimitStopsInAnyCase) {
  SizeLimit limit{-1};
  EXPECT_FALSE(keeps(limit, smallSystem(), {}));
}

}  // namespace
}  // namespace qelm::test
