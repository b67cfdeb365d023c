// Level curves where meshes and fields are not as one would wish: holes, edges of
// many triangles, mixed orientations, infinite and extreme values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

#include "isolines/curves_of.h"
#include "isolines/plain_curves.h"

namespace qelm::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

Mesh fromLists(std::vector<double> xyz, std::vector<std::int32_t> triangles) {
  Mesh mesh;
  mesh.tags.assign(xyz.size() / 3, 0);
  mesh.vertices = std::move(xyz);
  mesh.triangles = std::move(triangles);
  return mesh;
}

TEST(CurvesAtHoles, EndAtTrianglesWithANanCorner) {
  const Mesh mesh = gridMesh(6, 6);
  Field x = mesh.sample([](Point p) { return p.x; });
  ASSERT_EQ(curvesOf(mesh, x, {0.5}).size(), 1U);
  x[2 * 6 + 2] = kNan;
  const Polylines lines = curvesOf(mesh, x, {0.5});
  EXPECT_EQ(lines.size(), 2U);
  EXPECT_EQ(flawIn(lines, mesh, x, {0.5}), "");
  EXPECT_EQ(curvesOf(mesh, Field(36, kNan), {0.5}), Polylines());
}

/// Three unit squares, of two triangles each, around the z axis from 0 to 1.
Mesh threeSheets() {
  return fromLists({0, 0, 0, 0, 0, 1, 1, 0, 0, 1, 0, 1, -1, 1, 0, -1, 1, 1, -1, -1, 0, -1, -1, 1},
                   {0, 2, 1, 1, 2, 3, 0, 1, 4, 1, 5, 4, 0, 1, 6, 1, 7, 6});
}

TEST(CurvesAtSheets, EndWhereMoreThanTwoTrianglesMeet) {
  const Mesh mesh = threeSheets();
  const Field height = mesh.sample([](Point p) { return p.z; });
  const Polylines lines = curvesOf(mesh, height, {0.5});
  ASSERT_EQ(lines.size(), 3U);
  for (const Polyline& line : lines) {
    EXPECT_EQ(line.points.size(), 3U);
    const bool first = line.points.front() == Coordinates{0, 0, 0.5};
    EXPECT_NE(first, line.points.back() == (Coordinates{0, 0, 0.5}));
  }
  EXPECT_EQ(flawIn(lines, mesh, height, {0.5}), "");
}

TEST(CurvesAtSheets, DoNotCountHoles) {
  const Mesh mesh = threeSheets();
  Field height = mesh.sample([](Point p) { return p.z; });
  height[6] = height[7] = kNan;
  const Polylines lines = curvesOf(mesh, height, {0.5});
  ASSERT_EQ(lines.size(), 1U) << "two sheets are left, and joined";
  EXPECT_EQ(lines[0].points.size(), 5U);
}

TEST(CurvesAtSheets, KeepALevelAlongTheSharedEdgeForEverySheetBelow) {
  const Mesh mesh = threeSheets();
  const Polylines lines = curvesOf(mesh, {1, 1, 2, 2, 0, 0, 0, 0}, {1});
  ASSERT_EQ(lines.size(), 2U);
  for (const Polyline& line : lines) EXPECT_DOUBLE_EQ(line.length(), 1);
}

TEST(CurvesAtSheets, TreatARepeatedTriangleAsOneMoreSheet) {
  Mesh mesh = gridMesh(5, 5);
  const Field x = mesh.sample([](Point p) { return p.x + 0.25 * p.y; });
  ASSERT_EQ(curvesOf(mesh, x, {0.5625}).size(), 1U);
  for (int k = 0; k < 3; ++k)
    mesh.triangles.push_back(mesh.triangles[static_cast<std::size_t>(3 * 18 + k)]);
  const Polylines lines = curvesOf(mesh, x, {0.5625});
  EXPECT_EQ(lines.size(), 4U) << "both halves, and the triangle twice";
  EXPECT_EQ(flawIn(lines, mesh, x, {0.5625}), "");
}

TEST(CurvesAtSheets, DropTheWayToAndFroOfATriangleAndItsReverse) {
  Mesh mesh = rightTriangle();
  mesh.triangles.insert(mesh.triangles.end(), {0, 2, 1});
  EXPECT_EQ(curvesOf(mesh, {1, 0, 0}, {0.5}), Polylines());
}

TEST(CurvesOnMixedOrientations, StayWhole) {
  Mesh mesh = gridMesh(7, 7);
  const Field x = mesh.sample([](Point p) { return p.x; });
  const Polylines before = curvesOf(mesh, x, {0.4});
  ASSERT_EQ(before.size(), 1U);
  for (const std::size_t t : {20U, 24U, 31U})
    std::swap(mesh.triangles[3 * t], mesh.triangles[3 * t + 1]);
  EXPECT_EQ(curvesOf(mesh, x, {0.4}), before) << "most segments still say so";
  for (std::size_t t = 0; t < 72; ++t) std::swap(mesh.triangles[3 * t], mesh.triangles[3 * t + 1]);
  Polylines after = curvesOf(mesh, x, {0.4});
  ASSERT_EQ(after.size(), 1U);
  std::reverse(after[0].points.begin(), after[0].points.end());
  EXPECT_EQ(after, before) << "now most say the opposite";
}

TEST(CurvesOnMixedOrientations, TakeTheLesserDirectionOnATie) {
  Mesh mesh = twoTriangles();
  const Polyline whole = open(0, {{0.25, 0, 0}, {0.25, 0.25, 0}, {0.25, 1, 0}});
  std::swap(mesh.triangles[0], mesh.triangles[1]);
  EXPECT_EQ(curvesOf(mesh, {0, 1, 1, 0}, {0.25}), Polylines{whole});
  for (const std::size_t k : {0U, 3U}) std::swap(mesh.triangles[k], mesh.triangles[k + 1]);
  EXPECT_EQ(curvesOf(mesh, {0, 1, 1, 0}, {0.25}), Polylines{whole});
}

/// A band of `around` quads, `across` quads wide, closed with half a turn. Column
/// and offset from the middle are told to `value`.
Mesh moebiusStrip(int around, int across) {
  Mesh mesh;
  for (int i = 0; i < around; ++i) {
    for (int j = 0; j <= across; ++j) {
      const double u = 2 * std::numbers::pi * i / around;
      const double v = static_cast<double>(2 * j - across) / (2 * across);
      const double r = 1 + v * std::cos(u / 2);
      for (const double x : {r * std::cos(u), r * std::sin(u), v * std::sin(u / 2)}) {
        mesh.vertices.push_back(x);
      }
      mesh.tags.push_back(0);
    }
  }
  const auto at = [&](int i, int j) { return i < around ? i * (across + 1) + j : across - j; };
  for (int i = 0; i < around; ++i) {
    for (int j = 0; j < across; ++j) {
      for (const int v :
           {at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j), at(i + 1, j + 1), at(i, j + 1)}) {
        mesh.triangles.push_back(v);
      }
    }
  }
  return mesh;
}

TEST(CurvesOnMixedOrientations, GoTwiceRoundAMoebiusStrip) {
  constexpr int kAround = 24;
  constexpr int kAcross = 8;
  const Mesh mesh = moebiusStrip(kAround, kAcross);
  Field fromMiddle;
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    fromMiddle.push_back(std::abs(i % (kAcross + 1) - kAcross / 2));
  }
  const Polylines lines = curvesOf(mesh, fromMiddle, {0.5, 1.25, 2.5});
  ASSERT_EQ(lines.size(), 3U);
  for (const Polyline& line : lines) {
    EXPECT_TRUE(line.closed);
    EXPECT_GT(line.length(), 4 * std::numbers::pi * 0.95);
  }
  EXPECT_EQ(lines, plainCurves(mesh, fromMiddle, {0.5, 1.25, 2.5}));
}

TEST(CurvesOfExtremes, AreDrawnToTheFiniteEndOfAnInfiniteEdge) {
  EXPECT_EQ(curvesOf(rightTriangle(), {kInf, 0, 0}, {0.5}),
            (Polylines{open(0, {{1, 0, 0}, {0, 1, 0}})}));
  EXPECT_EQ(curvesOf(rightTriangle(), {-kInf, 0, 0}, {-0.5}),
            (Polylines{open(0, {{0, 1, 0}, {1, 0, 0}})}));
  EXPECT_EQ(curvesOf(rightTriangle(), {kInf, -kInf, -kInf}, {7}),
            (Polylines{open(0, {{0.5, 0, 0}, {0, 0.5, 0}})}))
      << "the middle, between infinities";
}

TEST(CurvesOfExtremes, TakeInfiniteLevelsLikeOthers) {
  EXPECT_EQ(curvesOf(rightTriangle(), {kInf, kInf, 0}, {kInf}),
            (Polylines{open(0, {{1, 0, 0}, {0, 0, 0}})}))
      << "a boundary at the level";
  EXPECT_EQ(curvesOf(rightTriangle(), {-kInf, 0, 1}, {-kInf}), Polylines())
      << "nothing is below it";
}

TEST(CurvesOfExtremes, AreExactWhereDifferencesOverflow) {
  const double most = std::numeric_limits<double>::max();
  EXPECT_EQ(curvesOf(rightTriangle(), {most, -most, -most}, {0}),
            (Polylines{open(0, {{0.5, 0, 0}, {0, 0.5, 0}})}));
  EXPECT_EQ(curvesOf(rightTriangle(), {most, -most, -most}, {most / 2}),
            (Polylines{open(0, {{0.25, 0, 0}, {0, 0.25, 0}})}));
  EXPECT_EQ(curvesOf(rightTriangle(), {most, -most, -most}, {-most / 2}),
            (Polylines{open(0, {{0.75, 0, 0}, {0, 0.75, 0}})}));
  const Mesh huge = rightTriangle().mapped([=](Point p) {
    return Point{(2 * p.x - 1) * most, (2 * p.y - 1) * most, 0};
  });
  EXPECT_EQ(curvesOf(huge, {1, 0, 0}, {0.5}), (Polylines{open(0, {{0, -most, 0}, {-most, 0, 0}})}));
}

TEST(CurvesOfExtremes, AreExactForDenormalValues) {
  const double least = std::numeric_limits<double>::denorm_min();
  EXPECT_EQ(curvesOf(rightTriangle(), {4 * least, 0, 0}, {least}),
            (Polylines{open(0, {{0.75, 0, 0}, {0, 0.75, 0}})}));
  EXPECT_EQ(curvesOf(rightTriangle(), {least, 0, 0}, {least}), Polylines());
}

TEST(CurvesOfExtremes, HaveNoNegativeZeros) {
  const Mesh mesh = rightTriangle().mapped([](Point p) { return Point{-p.x, -p.y, -p.z}; });
  ASSERT_TRUE(std::signbit(mesh.point(0).x));
  const Polylines lines = curvesOf(mesh, {1, 1, 0}, {1});
  EXPECT_EQ(lines, (Polylines{open(0, {{-1, 0, 0}, {0, 0, 0}})}));
  for (const Coordinates& p : lines[0].points) {
    for (const double x : p) EXPECT_FALSE(std::signbit(x) && x == 0);
  }
}

TEST(CurvesOfExtremes, EndForCoordinatesThatAreNotFinite) {
  Mesh mesh = gridMesh(5, 5);
  const Field x = mesh.sample([](Point p) { return p.x; });
  mesh.vertices[3 * 12] = kNan;
  mesh.vertices[3 * 7 + 1] = kInf;
  EXPECT_FALSE(curvesOf(mesh, x, {0.3, 0.5, 0.6}).empty());
}

TEST(CurvesOfExtremes, PassTrianglesWithoutArea) {
  // Both flat triangles lie between the two others.
  const Mesh mesh = fromLists({0, 0, 0, 0, 1, 0, 0, 0.5, 0, -1, 0, 0, 1, 0, 0},
                              {0, 1, 3, 1, 0, 2, 2, 0, 4, 1, 2, 4});
  const Field y = mesh.sample([](Point p) { return p.y; });
  const Polylines lines = curvesOf(mesh, y, {0.25});
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0], open(0, {{-0.75, 0.25, 0}, {0, 0.25, 0}, {0.5, 0.25, 0}, {0.75, 0.25, 0}}));
}

}  // namespace
}  // namespace qelm::test
