// Level curves by hand: the record, its order and directions, and what happens at
// vertices, plateaus, ridges, passes, holes, sheets and edges of infinite values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>
#include <thread>
#include <type_traits>
#include <vector>

#include "interface/mesh_system.h"
#include "isolines/curves_of.h"
#include "isolines/plain_curves.h"
#include "support/compare.h"

namespace qelm::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Other languages declare the record by hand.
static_assert(std::is_standard_layout_v<QelmCurves> && sizeof(QelmCurves) == 48);
static_assert(offsetof(QelmCurves, curveCount) == 0 && offsetof(QelmCurves, pointCount) == 8);
static_assert(offsetof(QelmCurves, points) == 16 && offsetof(QelmCurves, starts) == 24);
static_assert(offsetof(QelmCurves, levels) == 32 && offsetof(QelmCurves, closed) == 40);
static_assert(std::is_same_v<decltype(QelmCurves::starts), std::int64_t*>);
static_assert(std::is_same_v<decltype(QelmCurves::levels), std::int32_t*>);
static_assert(std::is_same_v<decltype(QelmCurves::closed), std::int32_t*>);

Polyline open(int level, std::vector<Place> points) { return {level, false, std::move(points)}; }
Polyline closed(int level, std::vector<Place> points) { return {level, true, std::move(points)}; }

Mesh fromLists(std::vector<double> xyz, std::vector<std::int32_t> triangles) {
  Mesh mesh;
  mesh.tags.assign(xyz.size() / 3, 0);
  mesh.vertices = std::move(xyz);
  mesh.triangles = std::move(triangles);
  return mesh;
}

int statusOf(const MeshSystem* handle, const double* field, int count, const double* levels) {
  QelmCurves* curves = reinterpret_cast<QelmCurves*>(&count);  // must not survive
  int status = Construction::kUnwritten;
  qelmcurvesTagged(handle, field, count, levels, &curves, &status);
  EXPECT_EQ(curves == nullptr, status != QELM_STATUS_OK);
  qelmfreecurves(curves);
  return status;
}

TEST(CurvesStatus, NamesTheFirstProblemInOrder) {
  const MeshHandle system = construct(twoTriangles());
  MeshSystem withoutOrder = *system;
  withoutOrder.vertexOrder.clear();
  const double numbers[4] = {0, 1, 2, 3};
  EXPECT_EQ(statusOf(nullptr, nullptr, -1, nullptr), 1);
  EXPECT_EQ(statusOf(&withoutOrder, nullptr, -1, nullptr), 2);
  EXPECT_EQ(statusOf(system.get(), nullptr, -1, nullptr), 1);
  EXPECT_EQ(statusOf(system.get(), nullptr, 1, numbers), 25);
  EXPECT_EQ(statusOf(system.get(), nullptr, 0, numbers), 25);
  EXPECT_EQ(statusOf(system.get(), numbers, 1, nullptr), 25);
  EXPECT_EQ(statusOf(system.get(), numbers, 0, nullptr), 0);
  EXPECT_EQ(statusOf(system.get(), numbers, 1, numbers), 0);
}

TEST(CurvesRecord, WithoutCurvesHasNoArrays) {
  const MeshHandle system = construct(twoTriangles());
  for (const std::vector<double>& levels :
       {std::vector<double>{}, {5}, {-5}, {kNan}, {kInf}, {-kInf}, {0}}) {
    const CurvesHandle record = cut(system, {0, 0, 1, 1}, levels);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->curveCount, 0);
    EXPECT_EQ(polylinesOf(*record), Polylines());
  }
}

TEST(CurvesRecord, OfNothingIsFreed) { qelmfreecurves(nullptr); }

TEST(Curves, CutATriangleWithHigherValuesAtTheLeft) {
  // Value 1 at the origin: it lies at the left on the way from the x axis to the y
  // axis, with the triangle seen counter-clockwise.
  EXPECT_EQ(curvesOf(rightTriangle(), {1, 0, 0}, {0.5}),
            (Polylines{open(0, {{0.5, 0, 0}, {0, 0.5, 0}})}));
  EXPECT_EQ(curvesOf(rightTriangle(), {0, 1, 1}, {0.5}),
            (Polylines{open(0, {{0, 0.5, 0}, {0.5, 0, 0}})}));
  EXPECT_EQ(curvesOf(rightTriangle(), {0, 1, 0}, {0.25}),
            (Polylines{open(0, {{0.25, 0.75, 0}, {0.25, 0, 0}})}))
      << "nearer to the low ends, as the level is";
}

TEST(Curves, TakeTheFieldInInputOrder) {
  // Vertex 2 is tagged and so comes first in the system.
  const Mesh mesh = rightTriangle().withTagged({2});
  EXPECT_EQ(curvesOf(mesh, {1, 0, 0}, {0.5}), (Polylines{open(0, {{0.5, 0, 0}, {0, 0.5, 0}})}));
}

TEST(Curves, JoinPiecesOfNeighbouringTriangles) {
  EXPECT_EQ(curvesOf(twoTriangles(), {0, 1, 1, 0}, {0.25}),
            (Polylines{open(0, {{0.25, 1, 0}, {0.25, 0.25, 0}, {0.25, 0, 0}})}));
}

TEST(Curves, CoverAllTrianglesOfAMeshWithMoreTrianglesThanVertices) {
  const Mesh sphere = sphereMesh(1);
  ASSERT_GT(sphere.triangleCount(), sphere.vertexCount());
  const Field height = sphere.sample([](Point p) { return p.z; });
  const Polylines lines = curvesOf(sphere, height, {0.03125});
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].closed);
}

TEST(Curves, StartClosedOnesAtTheirLeastPoint) {
  const Mesh mesh = fan(4).mapped([](Point p) {
    return Point{std::nearbyint(p.x), std::nearbyint(p.y), 0};
  });
  // Around the summit at the centre, counter-clockwise.
  EXPECT_EQ(curvesOf(mesh, {1, 0, 0, 0, 0}, {0.5}),
            (Polylines{closed(0, {{-0.5, 0, 0}, {0, -0.5, 0}, {0.5, 0, 0}, {0, 0.5, 0}})}));
  // Around a pit, clockwise.
  EXPECT_EQ(curvesOf(mesh, {0, 1, 1, 1, 1}, {0.5}),
            (Polylines{closed(0, {{-0.5, 0, 0}, {0, 0.5, 0}, {0.5, 0, 0}, {0, -0.5, 0}})}));
}

TEST(Curves, ComeInTheOrderOfTheCallersLevels) {
  const Field x = twoTriangles().sample([](Point p) { return p.x; });
  const Polylines lines = curvesOf(twoTriangles(), x, {0.75, 0.25, kNan, 0.75, 7, 0.5});
  ASSERT_EQ(lines.size(), 4U);
  const std::vector<int> levels = {0, 1, 3, 5};
  const std::vector<double> at = {0.75, 0.25, 0.75, 0.5};
  for (std::size_t c = 0; c < lines.size(); ++c) {
    EXPECT_EQ(lines[c].level, levels[c]);
    for (const Place& p : lines[c].points) EXPECT_EQ(p[0], at[c]);
  }
  EXPECT_EQ(lines[0].points, lines[2].points) << "a level that is there twice";
}

TEST(Curves, OfALevelComeInLexicographicOrderOfTheirPoints) {
  const Mesh mesh = gridMesh(9, 2);
  const Field waves = mesh.sample([](Point p) { return static_cast<int>(8 * p.x) % 2; });
  const Polylines lines = curvesOf(mesh, waves, {0.5});
  ASSERT_EQ(lines.size(), 8U);
  for (std::size_t c = 1; c < lines.size(); ++c) EXPECT_LT(lines[c - 1].points, lines[c].points);
}

TEST(Curves, OfTheSamePointsComeOpenBeforeClosed) {
  // Two fans in one place, one of them without its last triangle.
  const Mesh whole = fan(4).mapped([](Point p) {
    return Point{std::nearbyint(p.x), std::nearbyint(p.y), 0};
  });
  const std::vector<Place> points = {{-0.5, 0, 0}, {0, -0.5, 0}, {0.5, 0, 0}, {0, 0.5, 0}};
  for (const int gap : {1, 5}) {  // the quarter before the left spoke, in either fan
    Mesh both = whole;
    both.vertices.insert(both.vertices.end(), whole.vertices.begin(), whole.vertices.end());
    both.tags.resize(10, 0);
    for (const std::int32_t v : whole.triangles) both.triangles.push_back(v + 5);
    both.triangles.erase(both.triangles.begin() + 3 * gap, both.triangles.begin() + 3 * gap + 3);
    EXPECT_EQ(curvesOf(both, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0}, {0.5}),
              (Polylines{open(0, points), closed(0, points)}));
  }
}

/// A band that goes twice round the same place, its columns numbered from `first`
/// on. One column of the first round is wider.
Mesh doubleRound(int first) {
  constexpr int kRound = 8;
  Mesh mesh;
  for (int c = 0; c < 2 * kRound; ++c) {
    const int column = (c + first) % (2 * kRound);
    const double angle = 2 * std::numbers::pi * (column % kRound) / kRound;
    for (const double r : {1.0, column == 6 ? 2.5 : 2.0}) {
      mesh.vertices.insert(mesh.vertices.end(), {r * std::cos(angle), r * std::sin(angle), 0});
      mesh.tags.push_back(0);
    }
    const int next = (c + 1) % (2 * kRound);
    mesh.triangles.insert(mesh.triangles.end(), {2 * c, 2 * c + 1, 2 * next + 1});
    mesh.triangles.insert(mesh.triangles.end(), {2 * c, 2 * next + 1, 2 * next});
  }
  return mesh;
}

TEST(Curves, StartClosedOnesThatPassTheirLeastPointTwiceAlike) {
  Field field;
  for (int i = 0; i < 32; ++i) field.push_back(i % 2);
  const Polylines expected = curvesOf(doubleRound(0), field, {0.5});
  ASSERT_EQ(expected.size(), 1U);
  ASSERT_EQ(expected[0].points.size(), 32U);
  ASSERT_EQ(std::count(expected[0].points.begin(), expected[0].points.end(), expected[0].points[0]),
            2);
  std::vector<Place> fromTheOther = expected[0].points;
  std::rotate(fromTheOther.begin(), fromTheOther.begin() + 16, fromTheOther.end());
  ASSERT_EQ(fromTheOther[0], expected[0].points[0]);
  EXPECT_LT(expected[0].points, fromTheOther);
  for (int first = 1; first < 16; ++first) {
    EXPECT_EQ(curvesOf(doubleRound(first), field, {0.5}), expected) << "from column " << first;
  }
}

// ---- Levels at the values of vertices

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
  EXPECT_EQ(lines[0].points.front(), (Place{-4, -4, 0}));
  EXPECT_EQ(lines[0].points.back(), (Place{4, -4, 0}));
  EXPECT_EQ(lines[1].points.front(), (Place{4, 4, 0}));
  EXPECT_EQ(lines[1].points.back(), (Place{-4, 4, 0}));
  for (const Polyline& line : lines) {
    EXPECT_EQ(std::count(line.points.begin(), line.points.end(), Place{0, 0, 0}), 1);
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

// ---- Holes, sheets and orientations

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
    const bool first = line.points.front() == Place{0, 0, 0.5};
    EXPECT_NE(first, line.points.back() == (Place{0, 0, 0.5}));
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
  EXPECT_EQ(curvesOf(mesh, x, {0.4}), before) << "most pieces still say so";
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

// ---- Extreme values

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
  for (const Place& p : lines[0].points) {
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

TEST(Curves, MayBeCutOnManyThreadsAtOnce) {
  const Mesh mesh = openSurface(30, 30, 4).withBoundaryTagged();
  const Field field = mesh.sample([](Point p) { return p.x * p.y - p.z; });
  const MeshHandle system = construct(mesh);
  const std::vector<double> levels = {0.1, 0.2, 0.3, 0.4};
  const Polylines expected = polylinesOf(*cut(system, field, levels));
  std::vector<Polylines> results(4);
  std::vector<std::thread> threads;
  for (Polylines& result : results) {
    threads.emplace_back([&] {
      for (int round = 0; round < 10; ++round) result = polylinesOf(*cut(system, field, levels));
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const Polylines& result : results) EXPECT_EQ(result, expected);
}

}  // namespace
}  // namespace qelm::test
