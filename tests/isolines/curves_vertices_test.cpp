// Levels at the values of vertices: along edges, around plateaus, on ridges and
// passes, and values that differ by no more than rounding.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "isolines/curves_of.h"
#include "isolines/plain_curves.h"

namespace qelm::test {
namespace {

TEST(CurvesAtVertices, PassThroughAVertexOnce) {
  // The level runs from vertex 3 through vertex 0 ... of a fan with a spoke each way.
  const Mesh mesh = fan(4).mapped([](Point p) {
    return Point{std::nearbyint(p.x), std::nearbyint(p.y), 0};
  });
  const Field x = mesh.sample([](Point p) { return p.x; });
  EXPECT_EQ(curvesOf(mesh, x, {0}), (Polylines{open(0, {{0, 1, 0}, {0, 0, 0}, {0, -1, 0}})}));
}

TEST(CurvesAtVertices, FollowTheBoundaryWhereItIsTheHighest) {
  const Field x = twoTriangles().sample([](Point p) { return p.x; });
  EXPECT_EQ(curvesOf(twoTriangles(), x, {1}), (Polylines{open(0, {{1, 1, 0}, {1, 0, 0}})}));
  EXPECT_EQ(curvesOf(twoTriangles(), x, {0}), Polylines()) << "all is at or above the lowest";
}

TEST(CurvesAtVertices, HaveNoPointWhereAPeakJustReachesTheLevel) {
  EXPECT_EQ(curvesOf(fan(5), {1, 0, 0, 0, 0, 0}, {1}), Polylines());
  EXPECT_EQ(curvesOf(fan(5), {0, 1, 0, 0, 0, 0}, {1}), Polylines()) << "on the boundary";
}

TEST(CurvesAtVertices, HaveNoLineWhereARidgeJustReachesTheLevel) {
  const Mesh mesh = gridMesh(5, 5);
  const Field roof = mesh.sample([](Point p) { return 1 - std::fabs(p.x - 0.5); });
  EXPECT_EQ(curvesOf(mesh, roof, {1}), Polylines());
  const Field valley = mesh.sample([](Point p) { return std::fabs(p.x - 0.5); });
  EXPECT_EQ(curvesOf(mesh, valley, {0}), Polylines()) << "no more than a valley has";
}

TEST(CurvesAtVertices, HaveNoLineOnARidgeThatIsClosed) {
  const Mesh mesh = torusMesh(12, 8);
  Field ridge(96, 0);
  for (std::size_t i = 0; i < 12; ++i) ridge[8 * i + 3] = 1;
  EXPECT_EQ(curvesOf(mesh, ridge, {1}), Polylines()) << "it would have two, one on the other";
  EXPECT_EQ(curvesOf(mesh, ridge, {0.875}).size(), 2U);
}

TEST(CurvesAtVertices, HaveNoLineOnARidgeInsideAPiece) {
  // Only the two ends of one inner edge are at the level.
  const Mesh mesh = gridMesh(4, 4);
  Field field(16, 0);
  field[5] = field[6] = 1;
  EXPECT_EQ(curvesOf(mesh, field, {1}), Polylines());
}

TEST(CurvesAtVertices, GoRoundAPlateauOnce) {
  const Mesh mesh = gridMesh(5, 5).mapped([](Point p) { return Point{4 * p.x, 4 * p.y, 0}; });
  const Field table = mesh.sample(
      [](Point p) { return std::fmax(std::fabs(p.x - 2), std::fabs(p.y - 2)) <= 1 ? 1.0 : 0.0; });
  EXPECT_EQ(curvesOf(mesh, table, {1}), (Polylines{closed(0, {{1, 1, 0},
                                                              {2, 1, 0},
                                                              {3, 1, 0},
                                                              {3, 2, 0},
                                                              {3, 3, 0},
                                                              {2, 3, 0},
                                                              {1, 3, 0},
                                                              {1, 2, 0}})}));
  Field sunk = table;
  for (double& value : sunk) value = 1 - value;
  EXPECT_EQ(curvesOf(mesh, sunk, {1}).size(), 1U) << "the rim above a basin";
}

TEST(CurvesAtVertices, LeaveARidgeBetweenTwoPlateausOut) {
  // Two squares at the level and a chain of edges at the level between them.
  const Mesh mesh = gridMesh(9, 5).mapped([](Point p) { return Point{8 * p.x, 4 * p.y, 0}; });
  const Field field = mesh.sample([](Point p) {
    const bool bridge = p.y == 2 && p.x >= 1 && p.x <= 7;
    const bool left = p.y >= 2 && p.y <= 3 && (p.x == 1 || p.x == 2);
    const bool right = p.y >= 1 && p.y <= 2 && (p.x == 6 || p.x == 7);
    return bridge || left || right ? 1.0 : 0.0;
  });
  const Polylines lines = curvesOf(mesh, field, {1});
  EXPECT_EQ(lines, (Polylines{closed(0, {{1, 2, 0}, {2, 2, 0}, {2, 3, 0}, {1, 3, 0}}),
                              closed(0, {{6, 1, 0}, {7, 1, 0}, {7, 2, 0}, {6, 2, 0}})}));
}

TEST(CurvesAtVertices, AreCutIntoRoundsWhereTwoPlateausTouch) {
  // Triangles at the level that share a vertex: without the cut, one curve would
  // pass it twice.
  const Mesh mesh = gridMesh(7, 7).mapped([](Point p) { return Point{6 * p.x, 6 * p.y, 0}; });
  const Field field = mesh.sample([](Point p) {
    const bool one = p.x >= 2 && p.x <= 3 && p.y >= 2 && p.y <= 3 && p.y <= p.x;
    const bool other = p.x >= 3 && p.x <= 4 && p.y >= 3 && p.y <= 4 && p.y >= p.x;
    return one || other ? 1.0 : 0.0;
  });
  EXPECT_EQ(curvesOf(mesh, field, {1}), (Polylines{closed(0, {{2, 2, 0}, {3, 2, 0}, {3, 3, 0}}),
                                                   closed(0, {{3, 3, 0}, {4, 4, 0}, {3, 4, 0}})}));
}

TEST(CurvesAtVertices, MeetAtASaddleWithoutCrossing) {
  // x^2 - y^2 with its saddle at a vertex and the diagonals along edges and vertices.
  const Mesh mesh = gridMesh(9, 9).mapped([](Point p) {
    return Point{8 * p.x - 4, 8 * p.y - 4, 0};
  });
  const Field saddle = mesh.sample([](Point p) { return p.x * p.x - p.y * p.y; });
  const Polylines lines = curvesOf(mesh, saddle, {0});
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].points.front(), (Coordinates{-4, -4, 0}));
  EXPECT_EQ(lines[0].points.back(), (Coordinates{4, -4, 0}));
  EXPECT_EQ(lines[1].points.front(), (Coordinates{4, 4, 0}));
  EXPECT_EQ(lines[1].points.back(), (Coordinates{-4, 4, 0}));
  for (const Polyline& line : lines) {
    EXPECT_EQ(std::count(line.points.begin(), line.points.end(), Coordinates{0, 0, 0}), 1);
  }
  EXPECT_EQ(flawIn(lines, mesh, saddle, {0}), "");
}

TEST(CurvesAtVertices, DoNotExistForAConstantField) {
  EXPECT_EQ(curvesOf(gridMesh(4, 4), Field(16, 0.5), {0.5, 0.25, 0.75}), Polylines());
}

TEST(CurvesAtVertices, MergePointsThatRoundingBroughtTogether) {
  // The level is closer to the summit's value than coordinates far from the origin
  // can tell.
  const Mesh mesh = fan(6).mapped([](Point p) { return Point{p.x + 1e6, p.y - 1e6, 3e6}; });
  EXPECT_EQ(curvesOf(mesh, {1, 0, 0, 0, 0, 0, 0}, {1 - 1e-12}), Polylines());
}

TEST(CurvesAtVertices, LeaveOutARidgeThatRoundingDoubled) {
  const Mesh mesh = gridMesh(5, 5).mapped([](Point p) { return Point{p.x + 1e6, p.y + 1e6, 0}; });
  const Field roof = mesh.sample([](Point p) { return 1 - std::fabs(p.x - 1e6 - 0.5); });
  EXPECT_EQ(curvesOf(mesh, roof, {1 - 1e-13}), Polylines());
  EXPECT_EQ(curvesOf(mesh, roof, {1 - 1e-6}).size(), 2U) << "where it can be told apart";
}

TEST(CurvesAtVertices, LeaveOutARidgeThatCoarseCoordinatesDoubled) {
  // Coordinates at 2^53 are even numbers; a tenth of an edge of length 4 is lost.
  const Mesh mesh = gridMesh(5, 5).mapped([](Point p) {
    return Point{16 * p.x + 0x1p53, 16 * p.y + 0x1p53, 0};
  });
  const Field roof = mesh.sample([](Point p) { return -std::fabs(p.x - 0x1p53 - 8); });
  EXPECT_EQ(curvesOf(mesh, roof, {-0.4}), Polylines());
  EXPECT_EQ(curvesOf(mesh, roof, {-2}).size(), 2U) << "where it can be told apart";
  Field valley = roof;
  for (double& value : valley) value = -value;
  EXPECT_EQ(curvesOf(mesh, valley, {0.4}), Polylines()) << "at the low ends of the edges";
}

}  // namespace
}  // namespace qelm::test
