// qelmWeld: arguments, what merges, numbering, triangles. By hand, small.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include "qelm.h"
#include "support/compare.h"
#include "support/meshes.h"
#include "support/weld.h"

namespace qelm::test {
namespace {

using Ints = std::vector<std::int32_t>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Everything a refused call could write, and whether it did.
struct RawCall {
  int vertexCount = 2;
  int triangleCount = 1;
  double tolerance = 1;
  Field vertices = onALine({0, 5});
  Ints triangles = {0, 1, 0};
  Field keptVertices = Field(6, kUnwrittenDouble);
  Ints keptTriangles = Ints(3, kUnwrittenInt);
  Ints map = Ints(2, kUnwrittenInt);
  int keptVertexCount = kUnwrittenInt;
  int keptTriangleCount = kUnwrittenInt;

  int run() {
    return qelmWeld(vertexCount, vertices.data(), triangleCount, triangles.data(), tolerance,
                    keptVertices.data(), keptTriangles.data(), map.data(), &keptVertexCount,
                    &keptTriangleCount);
  }

  void expectArraysUntouched() const {
    EXPECT_EQ(keptVertices, Field(6, kUnwrittenDouble));
    EXPECT_EQ(keptTriangles, Ints(3, kUnwrittenInt));
    EXPECT_EQ(map, Ints(2, kUnwrittenInt));
  }
};

void expectRefused(RawCall call) {
  EXPECT_EQ(call.run(), 1);
  call.expectArraysUntouched();
  EXPECT_EQ(call.keptVertexCount, kUnwrittenInt);
  EXPECT_EQ(call.keptTriangleCount, kUnwrittenInt);
}

TEST(WeldArguments, ANegativeVertexCountIsStatus1WithNothingWritten) {
  for (const int count : {-1, INT_MIN}) {
    RawCall call;
    call.vertexCount = count;
    expectRefused(call);
  }
}

TEST(WeldArguments, ANegativeTriangleCountIsStatus1EvenWithoutVertices) {
  for (const int vertexCount : {2, 0}) {
    RawCall call;
    call.vertexCount = vertexCount;
    call.triangleCount = -1;
    expectRefused(call);
  }
}

TEST(WeldArguments, ANegativeToleranceIsStatus1EvenWithoutVertices) {
  for (const double tolerance : {-1.0, -5e-324, -kInfinity}) {
    for (const int vertexCount : {2, 0}) {
      RawCall call;
      call.vertexCount = vertexCount;
      call.tolerance = tolerance;
      expectRefused(call);
    }
  }
}

TEST(WeldArguments, MinusZeroIsAToleranceOfZero) {
  EXPECT_EQ(weld(onALine({1, 1}), {}, -0.0).vertexMap, (Ints{0, 1}));
}

TEST(WeldArguments, WithoutVerticesBothCountsAreZeroEvenWithTriangles) {
  RawCall call;
  call.vertexCount = 0;
  EXPECT_EQ(call.run(), 0);
  EXPECT_EQ(call.keptVertexCount, 0);
  EXPECT_EQ(call.keptTriangleCount, 0);
  call.expectArraysUntouched();
}

TEST(WeldArguments, WithoutVerticesEveryPointerMayBeNull) {
  EXPECT_EQ(qelmWeld(0, nullptr, 7, nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  int count = kUnwrittenInt;
  EXPECT_EQ(qelmWeld(0, nullptr, 7, nullptr, 1, nullptr, nullptr, nullptr, &count, nullptr), 0);
  EXPECT_EQ(count, 0);
  count = kUnwrittenInt;
  EXPECT_EQ(qelmWeld(0, nullptr, 7, nullptr, 1, nullptr, nullptr, nullptr, nullptr, &count), 0);
  EXPECT_EQ(count, 0);
}

TEST(WeldArguments, RefusedCallsDoNotLookAtTheCountPointers) {
  EXPECT_EQ(qelmWeld(-1, nullptr, 0, nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 1);
}

TEST(WeldVertices, WithoutTrianglesOnlyVerticesAreMerged) {
  const Welded welded = weld(onALine({0, 0.5, 3}), {}, 1);
  EXPECT_EQ(welded.vertexMap, (Ints{0, 0, 1}));
  EXPECT_EQ(welded.vertices, onALine({0, 3}));
  EXPECT_TRUE(welded.triangles.empty());
}

TEST(WeldVertices, ASingleVertexStays) {
  EXPECT_EQ(weld({1, 2, 3}, {}, 1e9).vertices, (Field{1, 2, 3}));
}

TEST(WeldVertices, ToleranceZeroMergesNothingNotEvenExactDuplicates) {
  const Field vertices = onALine({4, 4, 4, 1});
  const Welded welded = weld(vertices, {0, 3, 1, 1, 0, 3, 0, 0, 3, 0, 2, 3}, 0);
  EXPECT_EQ(welded.vertexMap, (Ints{0, 1, 2, 3}));
  EXPECT_EQ(welded.vertices, vertices);
  EXPECT_EQ(welded.triangles, (Ints{0, 3, 1, 0, 2, 3})) << "the same vertex set and 0,0,3 go";
}

TEST(WeldVertices, AToleranceWhoseSquareUnderflowsMergesNothing) {
  EXPECT_EQ(weld(onALine({4, 4}), {}, 1e-170).vertexMap, (Ints{0, 1}));
}

TEST(WeldVertices, TheSmallestToleranceThatCountsMergesExactDuplicates) {
  // Its square rounds to the smallest positive number.
  EXPECT_EQ(weld(onALine({4, 4, std::nextafter(4, 5)}), {}, 2e-162).vertexMap, (Ints{0, 0, 1}));
}

TEST(WeldVertices, ExactlyTheToleranceApartStaysAHairCloserMerges) {
  for (const double tolerance : {1.0, 0.1, 3.0, 1e-3}) {
    EXPECT_EQ(weld(onALine({0, tolerance}), {}, tolerance).vertexMap, (Ints{0, 1}));
    const double closer = tolerance * (1 - 1e-15);
    EXPECT_EQ(weld(onALine({0, closer}), {}, tolerance).vertexMap, (Ints{0, 0}));
  }
}

TEST(WeldVertices, TheDistanceIsEuclideanNotPerAxis) {
  EXPECT_EQ(weld({0, 0, 0, 3, 4, 0}, {}, 5).vertexMap, (Ints{0, 1}));
  EXPECT_EQ(weld({0, 0, 0, 3, 4, 0}, {}, 5.001).vertexMap, (Ints{0, 0}));
  EXPECT_EQ(weld({0, 0, 0, 2, 3, 6}, {}, 7).vertexMap, (Ints{0, 1}));
  EXPECT_EQ(weld({0, 0, 0, 2, 3, 6}, {}, 7.001).vertexMap, (Ints{0, 0}));
}

TEST(WeldVertices, AChainMergesIntoItsFirstVertexAlthoughItsEndsAreFarApart) {
  const double tolerance = 0.25;
  const Welded welded = weld(onALine({0, 0.9 * tolerance, 1.8 * tolerance}), {}, tolerance);
  EXPECT_EQ(welded.vertexMap, (Ints{0, 0, 0}));
  EXPECT_EQ(welded.vertices, onALine({0}));
}

TEST(WeldVertices, AClusterTakesTheNumberAndThePlaceOfItsLowestVertex) {
  // Clusters {0, 3}, {1}, {2, 5, 9}, {4, 6, 7}, {8}.
  const Welded welded = weld(onALine({10, 20, 30, 10.5, 40, 30.5, 40.5, 39.5, 50, 29.5}), {}, 0.75);
  EXPECT_EQ(welded.vertexMap, (Ints{0, 1, 2, 0, 3, 2, 3, 3, 4, 2}));
  EXPECT_EQ(welded.vertices, onALine({10, 20, 30, 40, 50}));
}

TEST(WeldVertices, ALaterVertexThatJoinsTwoClustersGivesThemTheLowerNumber) {
  EXPECT_EQ(weld(onALine({0, 9, 2, 1}), {}, 1.5).vertexMap, (Ints{0, 1, 0, 0}));
}

TEST(WeldVertices, PlusAndMinusZeroAreOnePlaceAndTheFirstOneIsKept) {
  const Welded welded = weld({-0.0, 0, -0.0, 0.0, -0.0, 0}, {}, 1e-9);
  EXPECT_EQ(welded.vertexMap, (Ints{0, 0}));
  EXPECT_TRUE(sameBits(welded.vertices, Field{-0.0, 0, -0.0}));
}

TEST(WeldVertices, ACellBorderSeparatesNothing) {
  // Around 0 and around powers of two, closer than the tolerance.
  for (const double border : {0.0, 1.0, -1.0, 1024.0, -0.25}) {
    EXPECT_EQ(weld(onALine({border - 1e-9, border + 1e-9}), {}, 0.25).vertexMap, (Ints{0, 0}));
  }
}

TEST(WeldVertices, TwoGroupsMeetThroughTheirNearestMembersNotTheirFirst) {
  // The first ones are 2.48 apart, the nearest ones 1.54.
  EXPECT_EQ(weld(onALine({0.01, 2.49, 0.48, 2.02}), {}, 1.55).vertexMap, (Ints{0, 0, 0, 0}));
  EXPECT_EQ(weld(onALine({0.01, 2.49, 0.48, 2.02}), {}, 1.54).vertexMap, (Ints{0, 1, 0, 1}));
}

TEST(WeldVertices, NotFiniteVerticesAreNeverMergedNotEvenWithThemselves) {
  const Field vertices = {kNaN, 0, 0, kNaN, 0, 0, kInfinity,  0, 0, kInfinity, 0,    0,
                          0,    0, 0, 0,    0, 0, -kInfinity, 0, 0, 0,         kNaN, kInfinity};
  for (const double tolerance : {1.0, 1e300, kInfinity}) {
    const Welded welded = weld(vertices, {}, tolerance);
    EXPECT_EQ(welded.vertexMap, (Ints{0, 1, 2, 3, 4, 4, 5, 6}));
    EXPECT_TRUE(std::isnan(welded.vertices[0]));
  }
}

TEST(WeldVertices, ANaNToleranceMergesNothing) {
  const Welded welded = weld(onALine({1, 1, 2}), {0, 1, 2, 2, 1, 0}, kNaN);
  EXPECT_EQ(welded.vertexMap, (Ints{0, 1, 2}));
  EXPECT_EQ(welded.triangles, (Ints{0, 1, 2}));
}

TEST(WeldVertices, AnInfiniteToleranceMergesWhatHasAFiniteSquaredDistance) {
  EXPECT_EQ(weld(onALine({0, 1e150, -3}), {}, kInfinity).vertexMap, (Ints{0, 0, 0}));
  EXPECT_EQ(weld(onALine({0, 1e155, 1e308, -1e308, 1e155}), {}, kInfinity).vertexMap,
            (Ints{0, 1, 2, 3, 1}))
      << "the squares overflow, and infinity is not below infinity";
}

TEST(WeldTriangles, ACollapsedTriangleGoes) {
  const Welded welded =
      weld({0, 0, 0, 0.01, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2, 0, 2, 3, 1, 2, 3}, 0.1);
  EXPECT_EQ(welded.triangles, (Ints{0, 1, 2}));
}

TEST(WeldTriangles, OfEqualVertexSetsTheFirstStaysInItsOwnCornerOrder) {
  const Field vertices = {0, 0, 0, 1, 0, 0, 0, 1, 0, 5, 5, 5};
  EXPECT_EQ(weld(vertices, {0, 1, 2, 2, 1, 0}, 0.1).triangles, (Ints{0, 1, 2}));
  EXPECT_EQ(weld(vertices, {2, 1, 0, 0, 1, 2, 1, 2, 0, 3, 1, 0, 0, 3, 1}, 0.1).triangles,
            (Ints{2, 1, 0, 3, 1, 0}));
}

TEST(WeldTriangles, EveryCornerOrderIsTheSameTriangle) {
  const Field vertices = {0, 0, 0, 1, 0, 0, 0, 1, 0};
  const Ints all = {1, 2, 0, 0, 1, 2, 2, 0, 1, 2, 1, 0, 1, 0, 2, 0, 2, 1};
  EXPECT_EQ(weld(vertices, all, 0.1).triangles, (Ints{1, 2, 0}));
}

TEST(WeldMesh, ASoupBecomesTheMeshItWasMadeFrom) {
  const Mesh mesh = sphereMesh(3);
  const Mesh soup = asSoup(mesh);
  const Welded welded = weld(soup.vertices, soup.triangles, 1e-6);
  EXPECT_EQ(welded.vertices.size(), mesh.vertices.size());
  ASSERT_EQ(welded.triangles.size(), mesh.triangles.size());
  for (std::size_t k = 0; k < mesh.triangles.size(); ++k) {
    const auto now = 3 * static_cast<std::size_t>(welded.triangles[k]);
    const auto before = 3 * static_cast<std::size_t>(mesh.triangles[k]);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      ASSERT_EQ(welded.vertices[now + axis], mesh.vertices[before + axis]) << "corner " << k;
    }
  }
}

TEST(WeldMesh, WorksInPlace) {
  const Mesh soup = asSoup(gridMesh(9, 7));
  const Welded apart = weld(soup.vertices, soup.triangles, 1e-6);
  Mesh here = soup;
  Ints map(soup.vertices.size() / 3);
  int vertexCount = 0;
  int triangleCount = 0;
  ASSERT_EQ(qelmWeld(here.vertexCount(), here.vertices.data(), here.triangleCount(),
                     here.triangles.data(), 1e-6, here.vertices.data(), here.triangles.data(),
                     map.data(), &vertexCount, &triangleCount),
            0);
  here.vertices.resize(3 * static_cast<std::size_t>(vertexCount));
  here.triangles.resize(3 * static_cast<std::size_t>(triangleCount));
  EXPECT_EQ((Welded{here.vertices, here.triangles, map}), apart);
}

}  // namespace
}  // namespace qelm::test
