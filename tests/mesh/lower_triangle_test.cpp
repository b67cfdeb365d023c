// The strictly lower triangle of a few contributions, by hand.
#include "mesh/lower_triangle.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace qelm::test {
namespace {

TEST(LowerTriangle, MergesTheContributionsToAnEntryInTheirOrder) {
  const std::vector<std::int32_t> triangles = {0, 1, 2, 0, 2, 3, 2, 0, 4};
  LowerTriangle lower(0, bucketSizes(triangles, 5));
  lower.add(0, 1, 1);
  lower.add(2, 1, 2);
  lower.add(0, 2, 1e16);
  lower.add(2, 0, 1);
  lower.add(0, 2, -1e16);
  lower.add(2, 3, 4);
  lower.add(3, 0, 5);
  lower.mergeBuckets();
  ASSERT_EQ(lower.row(2).size(), 2U);
  EXPECT_EQ(lower.row(2)[1].column, 1);
  EXPECT_EQ(lower.row(2)[0].column, 0);
  EXPECT_EQ(lower.row(2)[0].value, 0) << "1 is lost in 1e16 unless it is added last";
  EXPECT_EQ(lower.row(1).size(), 1U);
  EXPECT_EQ(lower.row(3).size(), 2U);
  EXPECT_EQ(lower.row(0).size() + lower.row(4).size(), 0U);
}

TEST(LowerTriangle, HasNoEntriesBetweenPrescribedVertices) {
  const std::vector<std::int32_t> triangles = {0, 1, 2};
  LowerTriangle lower(2, bucketSizes(triangles, 3));
  lower.add(0, 1, 1);
  lower.add(1, 2, 2);
  lower.mergeBuckets();
  EXPECT_EQ(lower.row(1).size(), 0U);
  ASSERT_EQ(lower.row(2).size(), 1U);
  EXPECT_EQ(lower.row(2)[0].column, 1);
}

}  // namespace
}  // namespace qelm::test
