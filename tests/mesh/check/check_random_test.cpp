// The mesh check on random meshes, most of them defective: against the plain form,
// and against what construction and solves then do.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "mesh/check/check_of.h"
#include "mesh/check/plain_check.h"
#include "qelm.h"
#include "support/compare.h"
#include "support/handle.h"
#include "support/long_double.h"
#include "support/oracle.h"
#include "support/random.h"

namespace qelm::test {
namespace {

/// How likely defects are, in parts of a thousand.
struct Defects {
  int outOfRange;
  int notFinite;
};

double latticeCoordinate(Random& random, const Defects& defects) {
  if (uniformInt(random, 0, 999) >= defects.notFinite) return uniformInt(random, -2, 2);
  const double odd[] = {std::numeric_limits<double>::quiet_NaN(),
                        std::numeric_limits<double>::infinity(), -1e300, 1e-320, 1e70};
  return odd[uniformInt(random, 0, 4)];
}

/// Few vertices on a small lattice and corners at random, so that everything happens.
Mesh randomMesh(Random& random, const Defects& defects) {
  Mesh mesh;
  const int n = uniformInt(random, 1, 11);
  const int m = uniformInt(random, 1, 14);
  for (int i = 0; i < 3 * n; ++i) mesh.vertices.push_back(latticeCoordinate(random, defects));
  for (int i = 0; i < 3 * m; ++i) {
    const bool out = uniformInt(random, 0, 999) < defects.outOfRange;
    mesh.triangles.push_back(out ? uniformInt(random, -2, n + 2) : uniformInt(random, 0, n - 1));
  }
  for (int i = 0; i < n; ++i) mesh.tags.push_back(uniformInt(random, -1, 9));
  return mesh;
}

void expectPlainReport(const Mesh& mesh, int round) {
  const QelmMeshReport report = check(mesh).report;
  const QelmMeshReport plain = plainReport(mesh);
  ASSERT_EQ(summary(report), summary(plain)) << "round " << round;
  ASSERT_EQ(report.worstTriangle < 0, plain.worstTriangle < 0) << "round " << round;
  if (plain.worstTriangle < 0) return;
  ASSERT_NEAR(report.worstQuality, plain.worstQuality, 1e-14 + 1e-12 * plain.worstQuality);
}

TEST(RandomCheck, AgreesWithThePlainForm) {
  if (!longDoubleIsWide()) GTEST_SKIP() << "long double is not wide here";
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 3000; ++round) {
    expectPlainReport(randomMesh(random, {0, 0}), round);
    expectPlainReport(randomMesh(random, {60, 30}), round);
    if (HasFatalFailure()) return;
  }
}

/// Mostly sound: every vertex once in a triangle with two others, then some more.
Mesh randomSoundMesh(Random& random) {
  Mesh mesh;
  const int n = uniformInt(random, 3, 9);
  for (int i = 0; i < 3 * n; ++i) mesh.vertices.push_back(uniform(random, -1, 1));
  const int m = n + uniformInt(random, -2, 4);
  for (int j = 0; j < m; ++j) {
    const int first = j % n;
    const int second = (first + uniformInt(random, 1, n - 1)) % n;
    int third = (first + uniformInt(random, 1, n - 1)) % n;
    if (uniformInt(random, 0, 30) > 0) {
      while (third == second) third = (first + uniformInt(random, 1, n - 1)) % n;
    }
    mesh.triangles.insert(mesh.triangles.end(), {first, second, third});
  }
  for (int i = 0; i < n; ++i) mesh.tags.push_back(uniformInt(random, -12, 9));
  return mesh;
}

void expectDeterminedField(const Mesh& mesh, int round) {
  const Construction built = tryConstruct(mesh);
  ASSERT_EQ(built.status, QELM_STATUS_OK) << "round " << round;
  ASSERT_EQ(qelminfo(built.handle.get()), 0) << "round " << round;
  const Field values = mesh.sample([](Point p) { return p.x - 2 * p.y + p.z * p.z; });
  const Field zero(values.size(), 0.0);
  const Field exact = oracleField(mesh, values, zero);
  // The quality says what rounding may do; the fields bear it out, within a factor
  // for the condition of the whole mesh.
  const double tolerance = 1e5 * 0x1p-52 / check(mesh).report.worstQuality;
  ASSERT_TRUE(allClose(solve(built.handle, values), exact, tolerance)) << "round " << round;
}

TEST(RandomCheck, SaysWhatConstructionAndSolvesThenDo) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  std::array<int, 4> seen = {};  // good, repeated, unused, untagged
  for (int round = 0; round < 4000; ++round) {
    const Mesh mesh = randomSoundMesh(random);
    switch (const int code = check(mesh).code) {
      case QELM_STATUS_OK:
        ++seen[0];
        expectDeterminedField(mesh, round);
        break;
      case QELM_STATUS_REPEATED_VERTEX:
      case QELM_STATUS_UNUSED_VERTEX:
        ++seen[code == QELM_STATUS_REPEATED_VERTEX ? 1 : 2];
        ASSERT_EQ(tryConstruct(mesh).status, code) << "round " << round;
        break;
      default:
        ASSERT_EQ(code, QELM_CHECK_UNTAGGED_PART) << "round " << round;
        ++seen[3];
        ASSERT_EQ(tryConstruct(mesh).status, QELM_STATUS_OK) << "round " << round;
    }
    if (HasFatalFailure()) return;
  }
  for (std::size_t i = 0; i < seen.size(); ++i) EXPECT_GT(seen[i], 50) << "outcome " << i;
}

}  // namespace
}  // namespace qelm::test
