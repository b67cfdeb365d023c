// Polygons of every shape into triangles.
#include "mesh_files/ear_clipping.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "mesh/vec3.h"

namespace {

using qelm::tool::ClippedPolygon;
using qelm::tool::Point;
using qelm::tool::withoutRepeats;

constexpr double kRounding = 1e-12;

ClippedPolygon clipEars(const std::vector<Point>& points, std::vector<int> outline) {
  std::vector<double> packed;
  for (const Point& point : points) packed.insert(packed.end(), point.begin(), point.end());
  return qelm::tool::clipEars(packed, std::move(outline));
}

std::vector<int> allOf(const std::vector<Point>& points) {
  std::vector<int> outline(points.size());
  std::iota(outline.begin(), outline.end(), 0);
  return outline;
}

double signedArea(const std::vector<Point>& points, const std::vector<int>& outline) {
  double twice = 0;
  for (std::size_t k = 0; k < outline.size(); ++k) {
    const Point& a = points[static_cast<std::size_t>(outline[k])];
    const Point& b = points[static_cast<std::size_t>(outline[(k + 1) % outline.size()])];
    twice += a[0] * b[1] - a[1] * b[0];
  }
  return twice / 2;
}

/// Triangles that all turn as the outline does and together have its area cover it exactly.
void expectCovers(const std::vector<Point>& points, const std::vector<int>& outline) {
  const ClippedPolygon clipped = clipEars(points, outline);
  const double whole = signedArea(points, outline);
  double sum = 0;
  for (const auto& corners : clipped.triangles) {
    const double area = signedArea(points, {corners.begin(), corners.end()});
    EXPECT_GT(area * whole, 0);
    sum += area;
  }
  EXPECT_NEAR(sum, whole, kRounding * std::abs(whole));
  EXPECT_FALSE(clipped.crossesItself);
  EXPECT_LT(clipped.bend, kRounding);
}

TEST(EarClipping, CoversAConcavePolygonExactly) {
  const std::vector<Point> dart = {{0, 0, 0}, {4, 0, 0}, {2, 1, 0}, {2, 4, 0}};
  expectCovers(dart, {0, 1, 2, 3});
  expectCovers(dart, {3, 2, 1, 0});
  EXPECT_EQ(clipEars(dart, {0, 1, 2, 3}).triangles.size(), 2U);
}

TEST(EarClipping, CoversACombAndASpiral) {
  std::vector<Point> comb;
  for (int k = 0; k < 40; ++k)
    for (const Point& p : {Point{2.0 * k, 0, 0}, Point{2.0 * k, 9, 0}, Point{2.0 * k + 1, 9, 0},
                           Point{2.0 * k + 1, 0, 0}})
      comb.push_back(p);
  comb.push_back({80, 0, 0});
  comb.push_back({80, -1, 0});
  comb.push_back({0, -1, 0});
  expectCovers(comb, allOf(comb));

  std::vector<Point> spiral;
  for (int k = 0; k <= 200; ++k)
    spiral.push_back({(1 + 0.1 * k) * std::cos(0.2 * k), (1 + 0.1 * k) * std::sin(0.2 * k), 0});
  for (int k = 200; k >= 0; --k)
    spiral.push_back({(2 + 0.1 * k) * std::cos(0.2 * k), (2 + 0.1 * k) * std::sin(0.2 * k), 0});
  expectCovers(spiral, allOf(spiral));
}

TEST(EarClipping, CoversRandomStars) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> radius(0.1, 1);
  for (int trial = 0; trial < 200; ++trial) {
    const int n = 4 + trial % 60;
    std::vector<Point> star;
    for (int k = 0; k < n; ++k) {
      const double r = radius(random);
      const double angle = 2 * std::numbers::pi * k / n;
      star.push_back({r * std::cos(angle), r * std::sin(angle), 0});
    }
    expectCovers(star, allOf(star));
  }
}

TEST(EarClipping, GoesRoundHolesThatTheOutlineReachesAlongABridge) {
  std::vector<Point> points = {{0, 0, 0}, {9, 0, 0}, {9, 4, 0}, {0, 4, 0}};
  std::vector<int> outline = {0, 1, 2, 3, 0};
  // Two holes; the bridge to the second begins at the first.
  for (const double x : {1.0, 5.0}) {
    const int first = static_cast<int>(points.size());
    for (const Point& p : {Point{x, 1, 0}, Point{x, 3, 0}, Point{x + 3, 3, 0}, Point{x + 3, 1, 0}})
      points.push_back(p);
    for (const int k : {0, 1, 2, 3}) outline.push_back(first + k);
  }
  for (const int v : {8, 7, 4}) outline.push_back(v);
  expectCovers(points, outline);
  EXPECT_NEAR(signedArea(points, outline), 36 - 12, kRounding);
}

TEST(EarClipping, LeavesOutTheBridgesOfASlitWithoutAHole) {
  // From the corner 0 inwards to 4 and back.
  EXPECT_EQ(withoutRepeats({0, 4, 0, 1, 2, 3}), (std::vector<int>{0, 1, 2, 3}));
}

TEST(EarClipping, SaysWhatCrossesItself) {
  const std::vector<Point> bow = {{0, 0, 0}, {2, 1, 0}, {2, 0, 0}, {0, 2, 0}};
  EXPECT_TRUE(clipEars(bow, {0, 1, 2, 3}).crossesItself);
  std::vector<Point> pentagram;
  for (int k = 0; k < 5; ++k)
    pentagram.push_back(
        {std::cos(0.8 * std::numbers::pi * k), std::sin(0.8 * std::numbers::pi * k), 0});
  const ClippedPolygon clipped = clipEars(pentagram, allOf(pentagram));
  EXPECT_TRUE(clipped.crossesItself);
  EXPECT_EQ(clipped.triangles.size(), 3U);
}

TEST(EarClipping, TakesWhateverItIsGiven) {
  const double nan = std::nan("");
  const std::vector<std::vector<Point>> shapes = {
      {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}},
      {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}},
      {{0, 0, 0}, {nan, 0, 0}, {1, nan, 0}, {0, 1, 0}, {0, 0, 1}},
      {{0, 0, 0}, {1e200, 0, 0}, {1e200, 1e200, 0}, {0, 1e200, 0}},
      {{0, 0, 0}, {1e-200, 0, 0}, {1e-200, 1e-200, 0}, {0, 1e-200, 0}}};
  for (const std::vector<Point>& points : shapes) {
    const ClippedPolygon clipped = clipEars(points, allOf(points));
    EXPECT_EQ(clipped.triangles.size(), points.size() - 2);
    for (const auto& [a, b, c] : clipped.triangles) EXPECT_TRUE(a != b && b != c && c != a);
  }
}

TEST(EarClipping, NoTriangleNamesAVertexTwiceHoweverOftenAnOutlineDoes) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> anyVertex(0, 5);
  std::uniform_real_distribution<double> place(-1, 1);
  for (int trial = 0; trial < 2000; ++trial) {
    std::vector<Point> points(6);
    for (Point& p : points) p = {place(random), place(random), trial % 2 == 0 ? 0 : place(random)};
    std::vector<int> outline(static_cast<std::size_t>(3 + trial % 12));
    std::generate(outline.begin(), outline.end(), [&] { return anyVertex(random); });
    outline = withoutRepeats(outline);
    ASSERT_TRUE(outline.empty() || outline.size() >= 3);
    if (outline.empty()) continue;
    for (const auto& [a, b, c] : clipEars(points, outline).triangles)
      EXPECT_TRUE(a != b && b != c && c != a);
  }
}

TEST(EarClipping, SaysHowFarAPolygonIsBent) {
  const std::vector<Point> saddle = {{1, 0, 0.5}, {0, 1, -0.5}, {-1, 0, 0.5}, {0, -1, -0.5}};
  // Each corner is 0.5 off the plane and sqrt(1.25) from the middle.
  EXPECT_NEAR(clipEars(saddle, allOf(saddle)).bend, 0.5 / std::sqrt(1.25), kRounding);
}

TEST(WithoutRepeats, DropsRepeatedCornersAndSpikesAlsoWhereTheOutlineCloses) {
  EXPECT_EQ(withoutRepeats({0, 1, 1, 2}), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(withoutRepeats({0, 1, 2, 0}), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(withoutRepeats({3, 0, 1, 2, 0}), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(withoutRepeats({0, 1, 2, 1}), (std::vector<int>{}));
  EXPECT_EQ(withoutRepeats({0, 0, 0, 1}), (std::vector<int>{}));
  EXPECT_EQ(withoutRepeats({5}), (std::vector<int>{}));
}

}  // namespace
