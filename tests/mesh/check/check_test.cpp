// The mesh check on meshes whose defects are known.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

#include "mesh/check/check_of.h"
#include "qelm.h"
#include "support/handle.h"
#include "support/meshes.h"

namespace qelm::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Other languages declare this record by hand.
TEST(MeshReport, HasALayoutThatStays) {
  EXPECT_EQ(sizeof(QelmFinding), 16U);
  EXPECT_EQ(offsetof(QelmFinding, first), 8U);
  EXPECT_EQ(sizeof(QelmMeshReport), 240U);
  const std::size_t offsets[] = {
      offsetof(QelmMeshReport, indexOutOfRange),  offsetof(QelmMeshReport, repeatedVertex),
      offsetof(QelmMeshReport, unusedVertex),     offsetof(QelmMeshReport, notFinite),
      offsetof(QelmMeshReport, nearZeroArea),     offsetof(QelmMeshReport, sizeOutOfRange),
      offsetof(QelmMeshReport, untaggedPart),     offsetof(QelmMeshReport, part),
      offsetof(QelmMeshReport, taggedVertex),     offsetof(QelmMeshReport, crowdedEdge),
      offsetof(QelmMeshReport, boundaryLoop),     offsetof(QelmMeshReport, opposedEdge),
      offsetof(QelmMeshReport, repeatedTriangle), offsetof(QelmMeshReport, coincidentVertex)};
  for (std::size_t i = 0; i < std::size(offsets); ++i) EXPECT_EQ(offsets[i], 16 * i);
  EXPECT_EQ(offsetof(QelmMeshReport, worstTriangle), 224U);
  EXPECT_EQ(offsetof(QelmMeshReport, worstQuality), 232U);
}

TEST(Check, FindsNothingWrongWithAGoodMesh) {
  const Checked checked = check(gridMesh(4, 3).withTagged({5}));
  EXPECT_EQ(checked.code, 0);
  EXPECT_EQ(summary(checked.report), "part 1 (0), taggedVertex 1 (5), boundaryLoop 1 (0)");
  // Legs of 1/3 and 1/2: h^2 = 1/13 and L = sqrt(13)/6, as far as 1 from the origin.
  EXPECT_NEAR(checked.report.worstQuality, 6 / std::pow(13, 1.5), 1e-15);
}

TEST(Check, TellsAnnulusSphereAndTorusByTheirLoops) {
  EXPECT_EQ(summary(check(sphereMesh(1).withTagged({0})).report), "part 1 (0), taggedVertex 1 (0)");
  EXPECT_EQ(summary(check(torusMesh(6, 5).withTagged({29}, 3)).report),
            "part 1 (0), taggedVertex 1 (29)");
  Mesh annulus = gridMesh(5, 5);  // without the four triangles round its middle
  std::vector<std::int32_t> kept;
  for (std::size_t j = 0; j < annulus.triangles.size(); j += 3) {
    const auto* c = &annulus.triangles[j];
    if (c[0] == 12 || c[1] == 12 || c[2] == 12) continue;
    kept.insert(kept.end(), c, c + 3);
  }
  annulus.triangles = kept;
  EXPECT_EQ(summary(check(annulus.withTagged({0})).report),
            "unusedVertex 1 (12), part 1 (0), taggedVertex 1 (0), boundaryLoop 2 (0)");
}

TEST(Check, CountsPartsAndThoseWithoutTaggedVertex) {
  Mesh two = gridMesh(2, 2);
  const Mesh other = gridMesh(2, 2).mapped([](Point p) { return Point{p.x + 3, p.y, 1}; });
  two.vertices.insert(two.vertices.end(), other.vertices.begin(), other.vertices.end());
  for (const int v : other.triangles) two.triangles.push_back(v + 4);
  two.tags.resize(8);
  EXPECT_EQ(check(two).code, QELM_CHECK_UNTAGGED_PART);
  EXPECT_EQ(summary(check(two).report), "untaggedPart 2 (0), part 2 (0), boundaryLoop 2 (0)");
  const Checked half = check(two.withTagged({2}));
  EXPECT_EQ(half.code, QELM_CHECK_UNTAGGED_PART);
  EXPECT_EQ(summary(half.report),
            "untaggedPart 1 (4), part 2 (0), taggedVertex 1 (2), boundaryLoop 2 (0)");
  EXPECT_EQ(check(two.withTagged({2, 7}, 3)).code, 0);
}

TEST(Check, TakesTags1To3ForPrescribedAndNoOthers) {
  for (const int tag : {1, 2, 3}) EXPECT_EQ(check(twoTriangles().withTagged({0}, tag)).code, 0);
  for (const int tag : {0, 4, -1, INT_MAX, INT_MIN}) {
    EXPECT_EQ(check(twoTriangles().withTagged({0}, tag)).code, QELM_CHECK_UNTAGGED_PART) << tag;
  }
}

TEST(Check, FindsIndicesOutOfRangeWhateverTheyAre) {
  for (const int index : {-1, 4, INT_MIN, INT_MAX}) {
    Mesh mesh = twoTriangles().withTagged({0});
    mesh.triangles[4] = index;
    const Checked checked = check(mesh);
    EXPECT_EQ(checked.code, QELM_CHECK_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(checked.report.indexOutOfRange.count, 1);
    EXPECT_EQ(checked.report.indexOutOfRange.first, 1);
    EXPECT_EQ(checked.report.repeatedVertex.count, 0);
  }
}

TEST(Check, FindsRepeatedVerticesAndUnusedOnes) {
  Mesh mesh = twoTriangles().withTagged({0});
  mesh.triangles = {0, 1, 2, 0, 2, 2};
  EXPECT_EQ(check(mesh).code, QELM_STATUS_REPEATED_VERTEX);
  EXPECT_EQ(summary(check(mesh).report),
            "repeatedVertex 1 (1), unusedVertex 1 (3), part 1 (0), taggedVertex 1 (0), "
            "boundaryLoop 1 (0)");
  mesh.triangles = {0, 1, 2, 2, 1, 0};
  EXPECT_EQ(check(mesh).code, QELM_STATUS_UNUSED_VERTEX);
  EXPECT_EQ(check(mesh).report.repeatedTriangle.first, 1);
}

TEST(Check, FindsCoordinatesThatAreNotFinite) {
  for (const double bad : {kNaN, kInf, -kInf}) {
    Mesh mesh = twoTriangles().withTagged({0});
    mesh.vertices[7] = bad;
    const Checked checked = check(mesh);
    EXPECT_EQ(checked.code, QELM_CHECK_NOT_FINITE);
    EXPECT_EQ(checked.report.notFinite.count, 1);
    EXPECT_EQ(checked.report.notFinite.first, 2);
    EXPECT_EQ(checked.report.nearZeroArea.count, 0) << "no shape, so no area";
    EXPECT_EQ(checked.report.worstTriangle, -1);
    EXPECT_EQ(checked.report.worstQuality, kInf);
  }
}

/// A triangle with a base of length 1 at the origin.
Mesh triangleOfHeight(double height) {
  return rightTriangle().withTagged({0}).mapped([height](Point p) {
    return Point{p.x, p.y * height, 0};
  });
}

TEST(Check, TakesAHeightOf2To22ndOfTheLongestEdgeForTheBound) {
  EXPECT_EQ(check(triangleOfHeight(0)).code, QELM_CHECK_NEAR_ZERO_AREA);
  EXPECT_EQ(check(triangleOfHeight(0x0.fp-22)).code, QELM_CHECK_NEAR_ZERO_AREA);
  EXPECT_EQ(check(triangleOfHeight(0x1.1p-22)).code, 0);
  EXPECT_NEAR(check(triangleOfHeight(0x1p-20)).report.worstQuality, 0x1p-40, 0x1p-60);
}

TEST(Check, NamesTheWorstTriangle) {
  Mesh mesh = gridMesh(5, 5).withTagged({0});
  mesh.vertices[3 * 12] += 0.24;  // the middle vertex, close to its neighbour
  const Checked checked = check(mesh);
  EXPECT_EQ(checked.code, 0);
  const auto* corners = &mesh.triangles[3 * static_cast<std::size_t>(checked.report.worstTriangle)];
  EXPECT_EQ(std::count(corners, corners + 3, 12), 1);
  EXPECT_EQ(std::count(corners, corners + 3, 13), 1);
  EXPECT_LT(checked.report.worstQuality, 0.001);
}

TEST(Check, TakesAWellShapedTriangleFarAwayForOneWithoutArea) {
  const auto movedBy = [](double far) {
    return rightTriangle().withTagged({0}).mapped([far](Point p) {
      return Point{p.x + far, p.y, 0};
    });
  };
  EXPECT_EQ(check(movedBy(1e6)).code, 0);
  EXPECT_EQ(check(movedBy(1e12)).code, 0);
  EXPECT_EQ(check(movedBy(1e13)).code, QELM_CHECK_NEAR_ZERO_AREA);
}

TEST(Check, DoesNotDependOnTheUnitWithinTheSizesThatItTakes) {
  const auto scaled = [](double unit) {
    return twoTriangles().withTagged({0}).mapped([unit](Point p) {
      return Point{p.x * unit, p.y * unit, p.z * unit};
    });
  };
  const double quality = check(scaled(1)).report.worstQuality;
  for (const double unit : {0x1p-190, 0x1p190}) {
    EXPECT_EQ(check(scaled(unit)).code, 0) << unit;
    EXPECT_EQ(check(scaled(unit)).report.worstQuality, quality) << unit;
  }
  for (const double unit : {1e-61, 1e-300, 1e61, 1e300, 1e308}) {
    EXPECT_EQ(check(scaled(unit)).code, QELM_CHECK_SIZE_OUT_OF_RANGE) << unit;
    EXPECT_EQ(check(scaled(unit)).report.sizeOutOfRange.count, 2) << unit;
  }
  EXPECT_EQ(check(scaled(5e-324)).code, QELM_CHECK_SIZE_OUT_OF_RANGE);
}

TEST(Check, FindsEdgesOfMoreThanTwoTriangles) {
  Mesh book = twoTriangles().withTagged({0});  // a third page at the diagonal 0-2
  book.vertices.insert(book.vertices.end(), {0.5, 0.5, 1});
  book.tags.push_back(0);
  book.triangles.insert(book.triangles.end(), {0, 2, 4});
  EXPECT_EQ(check(book).code, 0) << "for information";
  EXPECT_EQ(summary(check(book).report),
            "part 1 (0), taggedVertex 1 (0), crowdedEdge 1 (0), boundaryLoop 1 (0)");
}

TEST(Check, FindsFlippedNeighbours) {
  Mesh mesh = twoTriangles().withTagged({0});
  std::swap(mesh.triangles[3], mesh.triangles[4]);
  EXPECT_EQ(check(mesh).code, 0) << "for information";
  EXPECT_EQ(check(mesh).report.opposedEdge.count, 1);
  EXPECT_EQ(check(mesh).report.opposedEdge.first, 0);
}

/// A strip of quads closed with a half turn: cannot be oriented.
TEST(Check, SeesThatAMoebiusStripCannotBeOriented) {
  const int quads = 12;
  Mesh strip;
  for (int i = 0; i < quads; ++i) {
    const double a = std::numbers::pi * i / quads;
    for (const double r : {-0.3, 0.3}) {
      strip.vertices.insert(strip.vertices.end(),
                            {(1 + r * std::cos(a)) * std::cos(2 * a),
                             (1 + r * std::cos(a)) * std::sin(2 * a), r * std::sin(a)});
    }
    const bool last = i == quads - 1;
    const int near = 2 * i;
    const int nextNear = last ? 1 : near + 2;
    const int nextFar = last ? 0 : near + 3;
    strip.triangles.insert(strip.triangles.end(),
                           {near, nextNear, nextFar, near, nextFar, near + 1});
  }
  strip.tags.assign(static_cast<std::size_t>(strip.vertexCount()), 0);
  EXPECT_EQ(summary(check(strip.withTagged({0})).report),
            "part 1 (0), taggedVertex 1 (0), boundaryLoop 1 (0), opposedEdge 1 (1)");
}

TEST(Check, FindsVerticesAtOnePlaceWithoutRegardToTheSignOfZero) {
  Mesh mesh = asSoup(twoTriangles());
  EXPECT_EQ(check(mesh).report.coincidentVertex.count, 2);
  EXPECT_EQ(check(mesh).report.coincidentVertex.first, 3);
  for (double& c : mesh.vertices) c = c == 0 ? -0.0 : c;
  mesh.vertices[0] = 0.0;
  EXPECT_EQ(check(mesh).report.coincidentVertex.count, 2);
}

TEST(Check, FindsRepeatedTrianglesWhicheverWayTheyAreTurned) {
  Mesh mesh = twoTriangles().withTagged({0});
  mesh.triangles.insert(mesh.triangles.end(), {2, 0, 1, 3, 2, 0, 1, 0, 2});
  EXPECT_EQ(check(mesh).report.repeatedTriangle.count, 3);
  EXPECT_EQ(check(mesh).report.repeatedTriangle.first, 2);
}

TEST(CheckArguments, AreLookedAtInTheConstructorsOrder) {
  const double xyz[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
  const int corners[3] = {0, 1, 2};
  const int tags[3] = {1, 0, 0};
  const auto code = [&](int n, const double* v, int m, const int* t, const int* g) {
    QelmMeshReport report = {};
    const int result = qelmcheckTagged(n, v, m, t, g, &report);
    if (result != 0) {
      EXPECT_EQ(summary(report), "") << "nothing was looked at";
      EXPECT_EQ(report.worstTriangle, -1);
    }
    return result;
  };
  EXPECT_EQ(code(3, xyz, 1, corners, tags), 0);
  EXPECT_EQ(code(0, nullptr, 0, nullptr, nullptr), 1);
  EXPECT_EQ(code(INT_MIN, xyz, 1, corners, tags), 1);
  EXPECT_EQ(code(3, nullptr, 0, nullptr, nullptr), 24);
  EXPECT_EQ(code(3, xyz, INT_MIN, corners, tags), 24);
  EXPECT_EQ(code(3, nullptr, 1, corners, tags), 25);
  EXPECT_EQ(code(3, xyz, 1, nullptr, tags), 25);
  EXPECT_EQ(code(3, xyz, 1, corners, nullptr), 25);
}

TEST(CheckArguments, MayLeaveTheReportOut) {
  const Mesh good = twoTriangles().withTagged({0});
  EXPECT_EQ(
      qelmcheckTagged(4, good.vertices.data(), 2, good.triangles.data(), good.tags.data(), nullptr),
      0);
  EXPECT_EQ(qelmcheckTagged(0, nullptr, 0, nullptr, nullptr, nullptr), 1);
}

}  // namespace
}  // namespace qelm::test
