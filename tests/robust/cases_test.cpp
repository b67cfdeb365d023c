// The robust construction on meshes with a name, and against exact fields.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "robust/robust_of.h"
#include "support/analytic.h"
#include "support/compare.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kSolveTolerance = 1e-11;

/// The same field as the mesh itself would have, were it well shaped.
void expectLinear(const Mesh& mesh, double tolerance) {
  const Field exact = mesh.sample([](Point p) { return 2 * p.x - 3 * p.y; });
  EXPECT_TRUE(allClose(solve(constructRobust(mesh), exact), exact, tolerance));
}

TEST(RobustCases, LinearFieldsStayOnBadTriangulationsOfThePlane) {
  for (const double shear : {0.7, 5.0, 50.0}) {
    const Mesh mesh = gridMesh(12, 9).withBoundaryTagged().mapped([&](Point p) {
      return Point{p.x + shear * p.y, p.y, 0};
    });
    expectLinear(mesh, kSolveTolerance * (1 + shear * shear));
  }
}

TEST(RobustCases, SliversDownToTheLeastHeightKeepLinearFields) {
  for (const double aspect : {1e-2, 1e-4, 1e-6}) {
    const Mesh mesh = gridMesh(9, 9).withBoundaryTagged().mapped([&](Point p) {
      return Point{p.x + 0.37 * p.y, aspect * p.y, 0};
    });
    // Rounding: 2^-52 of a matrix whose entries differ by 1 / aspect^2.
    expectLinear(mesh, 1e-14 / aspect / aspect + kSolveTolerance);
  }
}

/// Cells with diagonals one way, the other way, or at random.
Mesh jitteredGrid(int way) {
  Random random(77);
  Mesh mesh = gridMesh(10, 8).withTagged({0, 9, 45, 79});
  for (double& c : mesh.vertices) c += uniform(random, -0.03, 0.03);
  for (std::size_t i = 2; i < mesh.vertices.size(); i += 3) mesh.vertices[i] = 0;
  for (std::size_t j = 0; way > 0 && j < mesh.triangles.size(); j += 6) {
    // a b c, a c d becomes a b d, b c d.
    const auto t = mesh.triangles.begin() + static_cast<std::ptrdiff_t>(j);
    const std::int32_t a = t[0], b = t[1], c = t[2], d = t[5];
    if (way == 2 && uniformInt(random, 0, 1) == 0) continue;
    std::copy_n(std::array<std::int32_t, 6>{a, b, d, b, c, d}.begin(), 6, t);
  }
  return mesh;
}

TEST(RobustCases, ThreeTriangulationsOfTheSamePointsHaveOneMatrix) {
  const Field expected = denseRows(*constructRobust(jitteredGrid(0)));
  EXPECT_EQ(robustReportOf(jitteredGrid(0)).changed, 1);
  EXPECT_TRUE(allClose(denseRows(*constructRobust(jitteredGrid(1))), expected, 1e-13));
  EXPECT_TRUE(allClose(denseRows(*constructRobust(jitteredGrid(2))), expected, 1e-13));
}

// A vertex on an edge of its neighbour, with a triangle of no area that closes the gap. By
// hand the neighbour is split at that vertex.
TEST(RobustCases, ATJointWithoutAreaActsAsASplitEdge) {
  Mesh joint;
  joint.vertices = {0, 0, 0, 2, 0, 0, 1, 1.5, 0, 1, 0, 0, 0.3, -1, 0, 1.8, -1.2, 0};
  joint.triangles = {0, 1, 2, 0, 3, 1, 0, 4, 3, 4, 5, 3, 5, 1, 3};
  joint.tags = {1, 0, 2, 0, 0, 3};
  Mesh split = joint;
  split.triangles = {0, 3, 2, 3, 1, 2, 0, 4, 3, 4, 5, 3, 5, 1, 3};
  EXPECT_EQ(robustReportOf(joint).flatTriangles, 1);
  EXPECT_TRUE(
      allClose(denseRows(*constructRobust(joint)), denseRows(*constructRobust(split)), 1e-7));
}

TEST(RobustCases, AFieldOfManyVerticesDoesNotDependOnTheirNumbers) {
  Random random(5);
  for (const double squeeze : {1.0, 1e-3, 1e-7}) {  // without and with steep triangles
    const Mesh mesh = gridMesh(60, 50).withTagged({0, 1711, 2999}).mapped([&](Point p) {
      return Point{p.x + 1.2 * p.y, squeeze * p.y, p.x * p.y};
    });
    const auto newIndex = permutation(random, mesh.vertexCount());
    const Mesh other = relabelled(mesh, newIndex);
    const Field field = solve(constructRobust(mesh), mesh.sample([](Point p) { return p.x; }));
    const Field otherField =
        solve(constructRobust(other), other.sample([](Point p) { return p.x; }));
    for (std::size_t i = 0; i < field.size(); ++i)
      ASSERT_NEAR(otherField[static_cast<std::size_t>(newIndex[i])], field[i], 1e-12) << i;
  }
}

TEST(RobustCases, EverythingInOnePlaceHasAField) {
  Mesh mesh = gridMesh(4, 4).withTagged({0, 15}).mapped([](Point) { return Point{1, 2, 3}; });
  const Field values = mesh.withTagged({0}).sample([](Point) { return 1.0; });
  EXPECT_TRUE(allClose(solve(constructRobust(mesh), values), values, 1e-12));
}

TEST(RobustCases, AMoebiusStripAndARepeatedTriangleStayInRange) {
  Mesh strip = gridMesh(30, 4).mapped([](Point p) {
    const double angle = 2 * std::numbers::pi * p.x * 29 / 30;
    const double across = 0.4 * (p.y - 0.5);
    const double radius = 1 + across * std::cos(angle / 2);
    return Point{radius * std::cos(angle), radius * std::sin(angle), across * std::sin(angle / 2)};
  });
  for (int row = 0; row < 3; ++row) {  // the last column meets the first upside down
    const int a = 30 * row + 29, d = 30 * (row + 1) + 29;
    const int b = 30 * (3 - row), c = 30 * (2 - row);
    for (const int v : {a, b, c, a, c, d}) strip.triangles.push_back(v);
  }
  strip.triangles.insert(strip.triangles.end(), {31, 32, 62, 31, 32, 62});
  const Mesh mesh = strip.withTagged({0, 40, 100});
  EXPECT_EQ(robustReportOf(mesh).sheets, 2);
  const Field values = mesh.sample([](Point p) { return p.x; });
  const double low = std::min({values[0], values[40], values[100]});
  const double high = std::max({values[0], values[40], values[100]});
  for (const double u : solve(constructRobust(mesh), values)) {
    EXPECT_GE(u, low);
    EXPECT_LE(u, high);
  }
}

// Values 0 on a line across slivers and two linear pieces beside it, prescribed all round.
// If flips tore the line, they would run into each other.
TEST(RobustCases, APrescribedCurveInsideStaysACurve) {
  Mesh mesh = gridMesh(21, 9).mapped([](Point p) {
    return Point{(p.x - 0.5) * 0.08, p.y, 0};  // long and thin along the line
  });
  Field exact;
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    const int column = i % 21;
    const bool prescribed = column % 10 == 0 || i < 21 || i >= 8 * 21;
    mesh.tags[static_cast<std::size_t>(i)] = prescribed ? 1 : 0;
    exact.push_back(std::fabs(column - 10) / 10);
  }
  for (int i = 0; i < mesh.vertexCount(); ++i) {  // sheared: all diagonals are bad
    mesh.vertices[3 * static_cast<std::size_t>(i) + 1] += 20 * mesh.point(i).x;
  }
  EXPECT_EQ(robustReportOf(mesh).changed, 1);
  EXPECT_TRUE(allClose(solve(constructRobust(mesh), exact), exact, kSolveTolerance));
}

TEST(RobustCases, AreOfSecondOrderOnTwistedTrianglesAndSlivers) {
  struct Shape {
    double turn, near;
  };
  for (const Shape& shape : {Shape{1.7, 1}, Shape{1.1, 0.5}}) {
    double last = 0;
    for (int resolution = 16; resolution <= 64; resolution *= 2) {
      SCOPED_TRACE(std::to_string(shape.turn) + " " + std::to_string(resolution));
      const AnalyticCase c = twistedAnnulusCase(resolution, shape.turn, shape.near);
      const double plain = largestError(solve(construct(c.mesh), c.exact), c.exact);
      const double error = largestError(solve(constructRobust(c.mesh), c.exact), c.exact);
      EXPECT_LT(error, plain);
      if (last > 0) {
        EXPECT_NEAR(std::log2(last / error), 2, 0.3);
      }
      last = error;
    }
  }
}

// A free vertex looks at a distant one past two that lie between them at flat angles.
TEST(RobustCases, TheRangeHoldsWhereThePlainFieldLeavesIt) {
  Mesh mesh;
  mesh.vertices = {0, 0, 0, 10, 0, 0, 1, 0.2, 0, -1, 0, 0, 1, -0.2, 0};
  mesh.triangles = {0, 1, 2, 0, 2, 3, 0, 3, 4, 0, 4, 1};
  mesh.tags = {0, 1, 1, 1, 1};
  const Field values = {9, 1, 0, 0, 0};
  EXPECT_LT(solve(construct(mesh), values)[0], -0.01);
  EXPECT_GE(solve(constructRobust(mesh), values)[0], 0);
  EXPECT_LE(solve(constructRobust(mesh), values)[0], 1);
}

TEST(RobustCases, ALoadIsNotKeptInAnyRange) {
  const Mesh mesh = gridMesh(9, 9).withBoundaryTagged().mapped([](Point p) {
    return Point{p.x + 2 * p.y, p.y, 0};
  });
  const MeshHandle system = constructRobust(mesh);
  const Field values(81, 0.0);
  const Field load(81, -1.0);
  Field field(81);
  int status = -1;
  qelmsolvePTagged(system.get(), values.data(), load.data(), field.data(), &status);
  EXPECT_EQ(status, 0);
  EXPECT_GT(*std::max_element(field.begin(), field.end()), 0.1);
}

TEST(RobustCases, ANaNStaysInItsPart) {
  Mesh mesh = sliverStrip(4, 1e-9).withTagged({0, 9});
  Field values(static_cast<std::size_t>(mesh.vertexCount()), std::nan(""));
  values[0] = 1;
  const Field field = solve(constructRobust(mesh), values);
  EXPECT_EQ(field[0], 1);
  EXPECT_TRUE(std::isnan(field[4]));
}

TEST(RobustCases, TheReportCountsBadEdgesOnTheMesh) {
  Mesh mesh;  // one obtuse pair inside, boundaries at good angles
  mesh.vertices = {-1, 0, 0, 1, 0, 0, 0, 0.6, 0, 0, -0.6, 0};
  mesh.triangles = {0, 1, 2, 1, 0, 3};
  mesh.tags = {1, 0, 0, 0};
  QelmRobustReport report = robustReportOf(mesh);
  EXPECT_EQ(report.changed, 1);
  EXPECT_EQ(report.sheets, 2);
  EXPECT_EQ(report.notDelaunayEdges, 1);
  EXPECT_EQ(report.flips, 2);
  EXPECT_EQ(report.flatTriangles, 0);
  mesh.triangles = {0, 1, 2};  // and one at the boundary
  mesh.vertices.resize(9);
  mesh.tags = {1, 0, 0};
  report = robustReportOf(mesh);
  EXPECT_EQ(report.notDelaunayEdges, 1);
  EXPECT_EQ(report.flips, 1);
}

}  // namespace
}  // namespace qelm::test
