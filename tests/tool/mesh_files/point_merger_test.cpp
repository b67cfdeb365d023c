// Points on each other become one, in the order of their first appearance.
#include "mesh_files/point_merger.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <vector>

namespace {

using qelm::tool::Point;
using qelm::tool::PointMerger;
using qelm::tool::Points;

/// Of a grid so coarse that many lie on each other.
std::vector<Point> randomPoints(std::size_t count, int places) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> place(-places, places);
  std::vector<Point> points(count);
  for (Point& point : points)
    for (double& coordinate : point) coordinate = place(random) / 8.0;
  return points;
}

TEST(PointMergerTest, NumbersPointsAsAMapDoes) {
  for (const int places : {3, 12, 1000}) {
    const std::vector<Point> points = randomPoints(20'000, places);
    std::map<Point, int> known;
    PointMerger merger;
    std::vector<int> numbers;
    // Some one by one, some together, with and without room made for them.
    merger.expect(10);
    for (std::size_t k = 0; k < 100; ++k) numbers.push_back(merger.add(points[k]));
    merger.addAll(std::span(points).subspan(100), numbers);
    ASSERT_EQ(numbers.size(), points.size());
    std::vector<Point> first;
    for (std::size_t k = 0; k < points.size(); ++k) {
      const auto [found, isNew] = known.emplace(points[k], static_cast<int>(known.size()));
      if (isNew) first.push_back(points[k]);
      ASSERT_EQ(numbers[k], found->second) << k;
    }
    EXPECT_EQ(merger.merged(), points.size() - known.size());
    const Points result = merger.finish();
    ASSERT_EQ(result.size(), first.size());
    for (std::size_t k = 0; k < first.size(); ++k) ASSERT_EQ(result[k], first[k]);
  }
}

TEST(PointMergerTest, ZerosAreOneAndWhatIsNoNumberIsAlone) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  PointMerger merger;
  std::vector<int> numbers;
  const std::vector<Point> points = {
      {0.0, 1, 2}, {nan, 1, 2}, {-0.0, 1, 2}, {nan, 1, 2}, {0, 1, 2}};
  merger.addAll(points, numbers);
  EXPECT_EQ(numbers, (std::vector<int>{0, 1, 0, 2, 0}));
  EXPECT_EQ(merger.merged(), 2U);
}

}  // namespace
