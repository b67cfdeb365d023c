// The strictly lower triangle of a few contributions, by hand.
#include "mesh/lower_triangle.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace qelm::test {
namespace {

struct Contribution {
  std::int32_t a, b;
  double value;
};

LowerTriangle lowerTriangleOf(std::int32_t taggedCount, std::size_t vertexCount,
                              const std::vector<Contribution>& contributions) {
  LowerTriangle lower(taggedCount, vertexCount);
  for (const auto& [a, b, value] : contributions) lower.count(a, b);
  lower.makeBuckets();
  for (const auto& [a, b, value] : contributions) lower.add(a, b, value);
  lower.mergeBuckets();
  return lower;
}

TEST(LowerTriangle, MergesTheContributionsToAnEntryInTheirOrder) {
  const LowerTriangle lower = lowerTriangleOf(
      0, 5, {{0, 1, 1}, {2, 1, 2}, {0, 2, 1e16}, {2, 0, 1}, {0, 2, -1e16}, {2, 3, 4}, {3, 0, 5}});
  ASSERT_EQ(lower.row(2).size(), 2U);
  EXPECT_EQ(lower.row(2)[1].column, 1);
  EXPECT_EQ(lower.row(2)[0].column, 0);
  EXPECT_EQ(lower.row(2)[0].value, 0) << "1 is lost in 1e16 unless it is added last";
  EXPECT_EQ(lower.row(1).size(), 1U);
  EXPECT_EQ(lower.row(3).size(), 2U);
  EXPECT_EQ(lower.row(0).size() + lower.row(4).size(), 0U);
}

TEST(LowerTriangle, HasNoEntriesBetweenPrescribedVertices) {
  const LowerTriangle lower = lowerTriangleOf(2, 3, {{0, 1, 1}, {1, 2, 2}});
  EXPECT_EQ(lower.row(1).size(), 0U);
  ASSERT_EQ(lower.row(2).size(), 1U);
  EXPECT_EQ(lower.row(2)[0].column, 1);
}

}  // namespace
}  // namespace qelm::test
