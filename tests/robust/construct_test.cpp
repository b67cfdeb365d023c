// The robust constructor and its check: arguments, statuses, what stays plain.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "robust/robust_of.h"
#include "support/compare.h"

namespace qelm::test {
namespace {

constexpr auto kNaN = std::numeric_limits<double>::quiet_NaN();

/// A call of both functions with every argument in the caller's hand.
struct RawCall {
  Mesh mesh = twoTriangles().withTagged({0, 2});
  int vertexCount = 4;
  int triangleCount = 2;
  const double* vertices = mesh.vertices.data();
  const int* triangles = mesh.triangles.data();
  const int* tags = mesh.tags.data();
  int taggedCount = -777;

  int status() {
    int result = -777;
    MeshSystem* handle = reinterpret_cast<MeshSystem*>(&result);
    EXPECT_EQ(qelmctorRobustTagged(vertexCount, vertices, triangleCount, triangles, tags,
                                   &taggedCount, &result, &handle),
              1);
    EXPECT_EQ(handle != nullptr, result == QELM_STATUS_OK);
    qelmfree(handle);
    QelmRobustReport report = {-1, -1, -1, -1, -1};
    EXPECT_EQ(qelmcheckRobustTagged(vertexCount, vertices, triangleCount, triangles, tags, &report),
              result);
    EXPECT_EQ(report.changed, 0);
    EXPECT_EQ(report.flips, 0);
    return result;
  }
};

TEST(RobustConstructor, ChecksItsArgumentsInTheOrderOfThePlainOne) {
  RawCall call;
  EXPECT_EQ(call.status(), QELM_STATUS_OK);
  EXPECT_EQ(call.taggedCount, 2);
  call.tags = nullptr;
  EXPECT_EQ(call.status(), QELM_STATUS_NULL_ARRAY);
  call.vertices = nullptr;
  EXPECT_EQ(call.status(), QELM_STATUS_NULL_ARRAY);
  call.triangles = nullptr;
  EXPECT_EQ(call.status(), QELM_STATUS_NULL_ARRAY);
  call.triangleCount = 0;
  EXPECT_EQ(call.status(), QELM_STATUS_UNUSED_VERTEX);
  call.vertexCount = 0;
  EXPECT_EQ(call.status(), QELM_STATUS_BAD_COUNT_OR_HANDLE);
  EXPECT_EQ(call.taggedCount, 0);
}

TEST(RobustConstructor, LooksForRepeatedThenUnusedVerticesThenForWhatIsNotFinite) {
  RawCall call;
  call.mesh.vertices[4] = kNaN;
  EXPECT_EQ(call.status(), QELM_CHECK_NOT_FINITE);
  EXPECT_EQ(call.taggedCount, 2);
  call.mesh.vertices[4] = std::numeric_limits<double>::infinity();
  EXPECT_EQ(call.status(), QELM_CHECK_NOT_FINITE);
  call.triangleCount = 1;
  EXPECT_EQ(call.status(), QELM_STATUS_UNUSED_VERTEX);
  call.mesh.triangles = {0, 1, 1, 0, 2, 3};
  call.triangles = call.mesh.triangles.data();
  EXPECT_EQ(call.status(), QELM_STATUS_REPEATED_VERTEX);
}

TEST(RobustConstructor, LooksForTheSameDefectsWhereATriangleIsSteep) {
  RawCall call;
  for (std::size_t y = 1; y < call.mesh.vertices.size(); y += 3) call.mesh.vertices[y] *= 1e-6;
  ASSERT_EQ(robustReportOf(call.mesh).changed, 1);
  call.triangleCount = 1;
  EXPECT_EQ(call.status(), QELM_STATUS_UNUSED_VERTEX);
  call.triangleCount = 2;
  call.mesh.vertices[5] = kNaN;  // of one triangle; the other stays steep
  EXPECT_EQ(call.status(), QELM_CHECK_NOT_FINITE);
  call.mesh.triangles = {0, 2, 3, 0, 1, 1};
  call.triangles = call.mesh.triangles.data();
  EXPECT_EQ(call.status(), QELM_STATUS_REPEATED_VERTEX);
}

TEST(RobustConstructor, TakesNullForTheTaggedCount) {
  RawCall call;
  int status = -1;
  MeshSystem* handle = nullptr;
  qelmctorRobustTagged(4, call.vertices, 2, call.triangles, call.tags, nullptr, &status, &handle);
  EXPECT_EQ(status, 0);
  qelmfree(handle);
}

TEST(RobustCheck, LooksForIndicesOutOfRange) {
  for (const int index : {-1, 4, std::numeric_limits<int>::min()}) {
    Mesh mesh = twoTriangles();
    mesh.triangles[4] = index;
    const QelmRobustReport report = robustReportOf(mesh, QELM_CHECK_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(report.changed, 0);
  }
}

TEST(RobustCheck, TakesNullForTheReport) {
  const Mesh mesh = twoTriangles();
  EXPECT_EQ(qelmcheckRobustTagged(4, mesh.vertices.data(), 2, mesh.triangles.data(),
                                  mesh.tags.data(), nullptr),
            0);
}

/// The matrix of the plain constructor, bit for bit.
void expectPlain(const Mesh& mesh) {
  const MeshHandle plain = construct(mesh);
  const MeshHandle robust = constructRobust(mesh);
  EXPECT_TRUE(sameBits(denseRows(*robust), denseRows(*plain)));
  EXPECT_EQ(robust->freeFreeBlock->nonZeros(), plain->freeFreeBlock->nonZeros());
  EXPECT_EQ(robust->freeFixedBlock->nonZeros(), plain->freeFixedBlock->nonZeros());
  EXPECT_EQ(robustReportOf(mesh).changed, 0);
}

TEST(RobustConstructor, KeepsThePlainBitsWhereThePlainMatrixIsGood) {
  expectPlain(gridMesh(9, 7).withBoundaryTagged());
  expectPlain(gridMesh(9, 7).withTagged({0, 40}));
  expectPlain(sphereMesh(2).withTagged({3}));
}

TEST(RobustConstructor, ChangesTheMatrixWhereAnEntryIsPositive) {
  const Mesh mesh = gridMesh(9, 7).withBoundaryTagged().mapped([](Point p) {
    return Point{p.x + 2 * p.y, p.y, 0};
  });
  EXPECT_EQ(robustReportOf(mesh).changed, 1);
}

TEST(RobustConstructor, IgnoresTrianglesOfPrescribedVertices) {
  // Obtuse, then steep, then without height, where only prescribed vertices see it.
  for (const double height : {0.5, 0.01, 0.0}) {
    Mesh mesh;
    mesh.vertices = {0, 0, 0, 4, 0, 0, 2, -height, 0, 2, 3, 0};
    mesh.triangles = {0, 1, 3, 0, 2, 1};
    mesh.tags = {1, 1, 1, 0};
    expectPlain(mesh);
  }
}

TEST(RobustConstructor, ChangesTheMatrixWhereATriangleIsSteep) {
  for (const double base : {0.07, 0.05}) {  // 2.0 and 1.4 degrees, and no negative weight
    Mesh mesh;
    mesh.vertices = {0, 0, 0, 2, -base / 2, 0, 2, base / 2, 0};
    mesh.triangles = {0, 1, 2};
    mesh.tags = {1, 0, 0};
    const QelmRobustReport report = robustReportOf(mesh);
    EXPECT_EQ(report.changed, base < 0.0625 ? 1 : 0) << base;
    EXPECT_EQ(report.flips, 0);
    EXPECT_TRUE(allClose(denseRows(*constructRobust(mesh)), denseRows(*construct(mesh)), 1e-11));
  }
}

TEST(RobustConstructor, StoresTheMeshAsGiven) {
  const Mesh mesh = sliverStrip(6, 1e-3).withTagged({0, 5}, 3);
  const MeshHandle plain = construct(mesh);
  const MeshHandle robust = constructRobust(mesh);
  EXPECT_EQ(*robust->vertices, *plain->vertices);
  EXPECT_EQ(*robust->triangles, *plain->triangles);
  EXPECT_EQ(robust->vertexOrder, plain->vertexOrder);
  EXPECT_EQ(robust->vertexPlace, plain->vertexPlace);
  EXPECT_EQ(robust->tags, plain->tags);
  EXPECT_EQ(robust->fixedCount, 2);
  EXPECT_EQ(robust->vertexCount, mesh.vertexCount());
}

TEST(RobustConstructor, ReportsAPartWithoutPrescribedVertexThroughItsFields) {
  const Mesh mesh = gridMesh(5, 5);
  const MeshHandle system = constructRobust(mesh);
  // Singular: whatever the factorisation made of it, no bound is made up.
  EXPECT_EQ(solve(system, Field(25, 3.0)).size(), 25U);
}

TEST(RobustConstructor, HasCopiesThatKeepTheRangeToo) {
  const Mesh mesh = gridMesh(9, 7).withTagged({0, 62}).mapped([](Point p) {
    return Point{p.x + 3 * p.y, p.y, 0};
  });
  const MeshHandle system = constructRobust(mesh);
  const MeshHandle copy = duplicate(system);
  EXPECT_EQ(usecount(copy.get()), 2);
  EXPECT_EQ(copy->bounds, system->bounds);
  const Field values = mesh.sample([](Point p) { return p.x; });
  EXPECT_TRUE(sameBits(solve(copy, values), solve(system, values)));
}

}  // namespace
}  // namespace qelm::test
