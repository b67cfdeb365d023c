// Isoline segments: hand-made cases, every documented oddity, and the plain form
// bit by bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "interface/mesh_system.h"
#include "isolines/segments.h"
#include "qelm.h"
#include "support/compare.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kDenormal = std::numeric_limits<double>::denorm_min();

/// The corners (0,0,0), (1,0,0), (0,1,0), and a table of three rows that all hold
/// the triangle 0, 1, 2; both arrays column by column.
MeshSystem columnTriangle() {
  return meshOnly({0, 1, 0, 0, 0, 1, 0, 0, 0}, {0, 0, 0, 1, 1, 1, 2, 2, 2});
}

void expectPoint(Point actual, Point expected) {
  EXPECT_EQ(actual.x, expected.x);
  EXPECT_EQ(actual.y, expected.y);
  EXPECT_EQ(actual.z, expected.z);
}

TEST(Isolines, CrossingTwoEdgesGivesOneSegmentForEachRow) {
  // All three rows hold the same triangle: the loop runs over as many rows as
  // there are vertices.
  const MeshSystem system = columnTriangle();
  const Segments s = cut(&system, {0, 1, 0}, {0.25});
  ASSERT_EQ(s.count, 3);
  // Corner 1 is cut off: edges 0 and 1 meet there, group 2, first end on edge 0.
  for (int i = 0; i < 3; ++i) {
    expectPoint(s.end(i, 0), {0.25, 0, 0});
    expectPoint(s.end(i, 1), {0.25, 0.75, 0});
  }
  EXPECT_EQ(s.edges, (std::vector<std::int32_t>{0, 1, 2, 3, 4, 5}));
}

TEST(Isolines, AtACornerValueWithTheOthersOnOneSideGiveAPoint) {
  const MeshSystem system = columnTriangle();
  const Segments s = cut(&system, {2, 1, 1.5}, {2});
  ASSERT_EQ(s.count, 3);
  expectPoint(s.end(0, 0), {0, 0, 0});
  expectPoint(s.end(0, 1), {0, 0, 0});
}

TEST(Isolines, AtACornerValueWithTheOthersOnBothSidesGiveThreeSegments) {
  const MeshSystem system = columnTriangle();
  // Corner 0 at the level, corner 1 below, corner 2 above.
  const Segments s = cut(&system, {1, 0, 2}, {1});
  ASSERT_EQ(s.count, 9) << "three from each of the three rows";
  // Group 0 (edges 1, 2): from the middle of edge 1 to corner 0.
  expectPoint(s.end(0, 0), {0.5, 0.5, 0});
  expectPoint(s.end(0, 1), {0, 0, 0});
  // Group 1 (edges 2, 0): without length at corner 0.
  expectPoint(s.end(3, 0), {0, 0, 0});
  expectPoint(s.end(3, 1), {0, 0, 0});
  // Group 2 (edges 0, 1): the first one, reversed.
  expectPoint(s.end(6, 0), {0, 0, 0});
  expectPoint(s.end(6, 1), {0.5, 0.5, 0});
}

TEST(Isolines, AlongAnEdgeGivePointsWithNaN) {
  const MeshSystem system = columnTriangle();
  const Segments s = cut(&system, {1, 1, 0}, {1});
  ASSERT_EQ(s.count, 9) << "edge 0 lies on the level, edges 1 and 2 end on it";
  // Group 0 joins edges 1 and 2 at their ends, groups 1 and 2 use edge 0.
  expectPoint(s.end(0, 0), {1, 0, 0});
  expectPoint(s.end(0, 1), {0, 0, 0});
  expectPoint(s.end(3, 0), {0, 0, 0});
  EXPECT_TRUE(std::isnan(s.end(3, 1).x) && std::isnan(s.end(3, 1).y) && std::isnan(s.end(3, 1).z));
  EXPECT_TRUE(std::isnan(s.end(6, 0).x) && std::isnan(s.end(6, 0).y) && std::isnan(s.end(6, 0).z));
  expectPoint(s.end(6, 1), {1, 0, 0});
}

TEST(Isolines, NeverUseAnEdgeOfEqualValuesOffTheLevel) {
  const MeshSystem system = columnTriangle();
  const Segments s = cut(&system, {1, 1, 0}, {0.5});
  ASSERT_EQ(s.count, 3);
  expectPoint(s.end(0, 0), {0.5, 0.5, 0});
  expectPoint(s.end(0, 1), {0, 0.5, 0});
}

TEST(Isolines, OfATriangleKeepTheCallersOrderOfLevels) {
  const MeshSystem system = columnTriangle();
  const Segments s = cut(&system, {0, 1, 0}, {0.5, 0.25});
  ASSERT_EQ(s.count, 6);
  EXPECT_EQ(s.end(0, 0).x, 0.5);
  EXPECT_EQ(s.end(1, 0).x, 0.25);
  EXPECT_EQ(s.end(2, 0).x, 0.5) << "the next row";
}

TEST(Isolines, OfNeighboursBothKeepTheSharedPoint) {
  // Two triangles over the diagonal 1-2 of the unit square, as rows of a table of
  // four; the other two rows repeat them.
  const MeshSystem system =
      meshOnly({0, 1, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0}, {0, 1, 0, 1, 1, 3, 1, 3, 2, 2, 2, 2});
  const Segments s = cut(&system, {0, 1, 1, 2}, {0.75, 1.25});
  EXPECT_EQ(s.count, 4);
  expectPlain(system, {0, 0.5, 1, 2}, {0.75});
  const Segments shared = cut(&system, {0, 0.5, 1, 2}, {0.75});
  int atDiagonal = 0;
  for (std::int64_t i = 0; i < shared.count; ++i) {
    for (const int which : {0, 1}) {
      const Point p = shared.end(i, which);
      atDiagonal += p.x == 0.5 && p.y == 0.5 ? 1 : 0;
    }
  }
  EXPECT_EQ(atDiagonal, 4);
}

TEST(Isolines, WithNoSegmentHaveNoData) {
  const MeshSystem system = columnTriangle();
  EXPECT_EQ(cut(&system, {0, 1, 0}, {7}).count, 0);
}

TEST(Isolines, WithNoLevelHaveNoData) {
  const MeshSystem system = columnTriangle();
  EXPECT_EQ(cut(&system, {0, 1, 0}, {}).count, 0);
}

TEST(Isolines, OfANullHandleAreTwoEmptyTables) { EXPECT_EQ(cut(nullptr, {}, {0.5}).count, 0); }

TEST(Isolines, TakeNegativeLevelCountsForNone) {
  const MeshSystem system = columnTriangle();
  IsoPointMatrix* points = nullptr;
  IsoEdgeMatrix* edges = nullptr;
  const Field field = {0, 1, 0};
  qelisoline(&system, field.data(), -5, nullptr, &points, &edges);
  EXPECT_EQ(points->rows, 0);
  EXPECT_EQ(edges->rows, 0);
  qelfreeisoline(points, edges);
}

TEST(FreeIsoline, AcceptsNullForEither) {
  const MeshSystem system = columnTriangle();
  IsoPointMatrix* points = nullptr;
  IsoEdgeMatrix* edges = nullptr;
  const Field field = {0, 1, 0};
  const double level = 0.5;
  qelisoline(&system, field.data(), 1, &level, &points, &edges);
  qelfreeisoline(points, nullptr);
  qelfreeisoline(nullptr, edges);
  qelfreeisoline(nullptr, nullptr);
}

TEST(IsolineRecords, HaveThreeMembersOfEightBytes) {
  static_assert(sizeof(IsoPointMatrix) == 24 && offsetof(IsoPointMatrix, data) == 0 &&
                offsetof(IsoPointMatrix, rows) == 8 && offsetof(IsoPointMatrix, cols) == 16);
  static_assert(sizeof(IsoEdgeMatrix) == 24 && offsetof(IsoEdgeMatrix, data) == 0 &&
                offsetof(IsoEdgeMatrix, rows) == 8 && offsetof(IsoEdgeMatrix, cols) == 16);
}

TEST(Isolines, ReadAConstructedMeshColumnByColumnOnPurpose) {
  const Mesh mesh = torusMesh(12, 9).withTagged({0, 40});
  const MeshHandle system = construct(mesh);
  Field field(mesh.tags.size());
  for (std::size_t s = 0; s < field.size(); ++s) field[s] = (*system->vertices)[3 * s];
  expectPlain(*system, field, {-1, 0, 0.5, 2});
}

TEST(Isolines, VisitAsManyRowsAsThereAreVerticesOnPurpose) {
  // A torus has twice as many triangles as vertices; only entries k * n + t with
  // t < n are read, so a change behind them changes nothing.
  const MeshHandle system = construct(torusMesh(8, 6).withTagged({0}));
  std::vector<std::int32_t> changed = *system->triangles;
  const std::size_t n = system->vertices->size() / 3;
  ASSERT_GT(changed.size(), 3 * n);
  for (std::size_t i = 3 * n; i < changed.size(); ++i) changed[i] = 0;
  const MeshSystem other = meshOnly(*system->vertices, changed);
  Field field(n);
  for (std::size_t s = 0; s < n; ++s) field[s] = static_cast<double>(s % 7);
  const Segments a = cut(system.get(), field, {2.5});
  const Segments b = cut(&other, field, {2.5});
  ASSERT_GT(a.count, 0);
  EXPECT_TRUE(sameBits(a.points, b.points));
}

TEST(Isolines, SkipRowsThatReachBeyondTheTriangleArray) {
  // One triangle, three vertices: rows 0, 1, 2 of a table of three need nine
  // entries. With 7 stored only row 0 is whole.
  const MeshSystem whole = columnTriangle();
  const MeshSystem cutOff = meshOnly(*whole.vertices, {0, 0, 0, 1, 1, 1, 2});
  EXPECT_EQ(cut(&cutOff, {0, 1, 0}, {0.5}).count, 1);
  const MeshSystem none = meshOnly(*whole.vertices, {0, 1, 2});
  EXPECT_EQ(cut(&none, {0, 1, 0}, {0.5}).count, 0);
}

TEST(Isolines, AcceptPositionsThatRoundOntoTheEdge) {
  // Below the lower end by less than 2^-54 of the difference: p - 0.5 rounds to
  // -0.5. And so close that the position underflows to -0.
  const MeshSystem system = columnTriangle();
  EXPECT_EQ(cut(&system, {0, 1, 0}, {-0x1p-54}).count, 3);
  EXPECT_EQ(cut(&system, {0, 1, 0}, {-0x1p-53}).count, 0);
  EXPECT_EQ(cut(&system, {0, 1e10, 1e10}, {-kDenormal}).count, 3);
  for (const double level : {-0x1p-54, -0x1p-53, -kDenormal, 1 + 0x1p-52, 1.0}) {
    expectPlain(system, {0, 1, 0}, {level});
    expectPlain(system, {0, 1e10, 1e10}, {level});
  }
}

/// Awkward numbers: small integers that coincide, neighbours of each other, ends of
/// the range, and what is no number.
double awkward(Random& random) {
  switch (uniformInt(random, 0, 11)) {
    case 0:
      return std::nextafter(uniformInt(random, -2, 2), uniformInt(random, -9, 9));
    case 1:
      return uniformInt(random, -3, 3) * kDenormal;
    case 2:
      return uniform(random, -1, 1) * 1e-310;
    case 3:
      return uniform(random, -1, 1) * std::numeric_limits<double>::max();
    case 4:
    case 5:
      return uniform(random, -2, 2);
    default:
      return uniformInt(random, -2, 2);
  }
}

double awkwardOrNoNumber(Random& random, int oneIn) {
  if (uniformInt(random, 1, oneIn) > 1) return awkward(random);
  const double others[] = {kNaN, kInfinity, -kInfinity, -0.0};
  return others[uniformInt(random, 0, 3)];
}

TEST(Isolines, HaveTheBitsOfThePlainFormOnRandomTables) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 4000; ++round) {
    SCOPED_TRACE(round);
    const int n = uniformInt(random, 1, 12);
    // From far too few triangles to twice as many as vertices.
    const int stored = uniformInt(random, 0, 6 * n);
    const int oneIn = uniformInt(random, 0, 2) == 0 ? 8 : 1000000;  // numbers that are none
    std::vector<double> vertices;
    std::vector<std::int32_t> triangles;
    for (int i = 0; i < 3 * n; ++i) vertices.push_back(awkwardOrNoNumber(random, 4 * oneIn));
    for (int i = 0; i < stored; ++i) triangles.push_back(uniformInt(random, 0, n - 1));
    Field field;
    for (int i = 0; i < n; ++i) field.push_back(awkwardOrNoNumber(random, oneIn));
    std::vector<double> levels;
    for (int j = uniformInt(random, 0, 9); j > 0; --j) {
      const bool onAVertex = uniformInt(random, 0, 2) == 0;
      levels.push_back(onAVertex ? field[static_cast<std::size_t>(uniformInt(random, 0, n - 1))]
                                 : awkwardOrNoNumber(random, oneIn));
    }
    expectPlain(meshOnly(vertices, triangles), field, levels);
    if (HasFatalFailure()) return;
  }
}

TEST(Isolines, HaveTheBitsOfThePlainFormJustAroundTheValues) {
  // Levels one, two and more steps off a corner's value, where positions round
  // onto the edge or miss it.
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  const MeshSystem system = columnTriangle();
  for (int round = 0; round < 4000; ++round) {
    SCOPED_TRACE(round);
    Field field;
    const double scale = std::ldexp(1.0, uniformInt(random, -1074, 1000));
    for (int i = 0; i < 3; ++i) field.push_back(uniform(random, -1, 1) * scale);
    if (uniformInt(random, 0, 1) == 0) field[1] = field[0] * (1 + 0x1p-40);
    if (uniformInt(random, 0, 3) == 0) field[2] = uniformInt(random, -1, 1);
    std::vector<double> levels;
    const double range = std::fabs(field[1] - field[0]);
    for (const double value : field) {
      double above = value;
      double below = value;
      for (int step = 0; step < 3; ++step) {
        levels.insert(levels.end(), {above, below});
        above = std::nextafter(above, kInfinity);
        below = std::nextafter(below, -kInfinity);
      }
      for (const int power : {-55, -54, -53, -52, -51, -50, -49}) {
        levels.push_back(value + std::ldexp(range, power));
        levels.push_back(value - std::ldexp(range, power));
      }
    }
    expectPlain(system, field, levels);
    if (HasFatalFailure()) return;
  }
}

TEST(Isolines, OfAConstantFieldHaveTheBitsOfThePlainForm) {
  const MeshHandle system = construct(torusMesh(7, 5).withTagged({0}));
  expectPlain(*system, Field(35, 2.5), {2.5, 1, 2.5, kNaN, kInfinity});
}

TEST(Isolines, HaveTheSameBitsOnEveryPlatform) {
  // The sphere's coordinates come from divisions and square roots alone.
  const MeshHandle system = construct(sphereMesh(3).withTagged({0}));
  const std::size_t n = system->vertices->size() / 3;
  Field field(n);
  for (std::size_t s = 0; s < n; ++s) {
    field[s] = (*system->vertices)[3 * s] + 0.3 * (*system->vertices)[3 * s + 1];
  }
  const Segments segments = cut(system.get(), field, {0.1, -0.4, 0.7});
  std::uint64_t hash = 0xcbf29ce484222325;  // FNV-1a over the 64-bit words
  for (const double x : segments.points) {
    std::uint64_t word = 0;
    std::memcpy(&word, &x, sizeof word);
    hash = (hash ^ word) * 0x100000001b3;
  }
  EXPECT_EQ(hash, 0xd5a476169a5ac398ULL);
}

}  // namespace
}  // namespace qelm::test
