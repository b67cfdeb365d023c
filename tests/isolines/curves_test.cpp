// Level curves by hand: the record, its checks, the order and directions of curves.
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
    for (const Coordinates& p : lines[c].points) EXPECT_EQ(p[0], at[c]);
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
  // Two fans at the same position, one of them without its last triangle.
  const Mesh whole = fan(4).mapped([](Point p) {
    return Point{std::nearbyint(p.x), std::nearbyint(p.y), 0};
  });
  const std::vector<Coordinates> points = {{-0.5, 0, 0}, {0, -0.5, 0}, {0.5, 0, 0}, {0, 0.5, 0}};
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

/// A band that goes twice round the same circle, its columns numbered from `first`
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
  std::vector<Coordinates> fromTheOther = expected[0].points;
  std::rotate(fromTheOther.begin(), fromTheOther.begin() + 16, fromTheOther.end());
  ASSERT_EQ(fromTheOther[0], expected[0].points[0]);
  EXPECT_LT(expected[0].points, fromTheOther);
  for (int first = 1; first < 16; ++first) {
    EXPECT_EQ(curvesOf(doubleRound(first), field, {0.5}), expected) << "from column " << first;
  }
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
