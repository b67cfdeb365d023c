// Dirichlet solves: exact cases, identities, the oracle, threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

#include "interface/mesh_system.h"
#include "qelm.h"
#include "support/compare.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/oracle.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A linear field lies in the P1 space, so only rounding separates the answer
// from it: that of the assembly, magnified by the condition number (about 1e3
// for these meshes), stays well below this.
constexpr double kPatchTolerance = 1e-12;

// Against the long-double oracle: the same reasoning.
constexpr double kOracleTolerance = 1e-11;

double linear(Point p) { return 2 * p.x - 3 * p.y + 0.5; }

void expectOracle(const Mesh& mesh, double tolerance = kOracleTolerance) {
  const Field values = mesh.sample([](Point p) { return std::sin(3 * p.x) + p.y * p.z - p.y; });
  EXPECT_TRUE(allClose(solve(construct(mesh), values), oracleField(mesh, values), tolerance));
}

TEST(DirichletSolve, ReproducesALinearFieldOnAFlatGrid) {
  const Mesh mesh = gridMesh(33, 21).withBoundaryTagged();
  const Field exact = mesh.sample(linear);
  EXPECT_TRUE(allClose(solve(construct(mesh), exact), exact, kPatchTolerance));
}

TEST(DirichletSolve, ReproducesALinearFieldOnAnIrregularFlatMesh) {
  const Mesh mesh = openSurface(31, 27, 9)
                        .mapped([](Point p) {
                          return Point{p.x, p.y, 0};
                        })
                        .withBoundaryTagged();
  const Field exact = mesh.sample(linear);
  EXPECT_TRUE(allClose(solve(construct(mesh), exact), exact, kPatchTolerance));
}

TEST(DirichletSolve, ReproducesALinearFieldOnATiltedPlane) {
  const Mesh mesh = openSurface(15, 17, 2)
                        .mapped([](Point p) {
                          return Point{p.x, p.y, 0.7 * p.x - 0.2 * p.y + 5};
                        })
                        .withBoundaryTagged();
  const Field exact = mesh.sample([](Point p) { return p.x + p.y - 2 * p.z; });
  EXPECT_TRUE(allClose(solve(construct(mesh), exact), exact, kPatchTolerance));
}

TEST(DirichletSolve, AgreesWithTheOracleOnAGrid) {
  expectOracle(gridMesh(9, 8).withTagged({0, 71}));
}
TEST(DirichletSolve, AgreesWithTheOracleOnASphere) {
  expectOracle(sphereMesh(2).withTagged({3, 77}, 2));
}
TEST(DirichletSolve, AgreesWithTheOracleOnATorus) {
  expectOracle(torusMesh(14, 8).withTagged({0, 50, 70}, 3));
}
TEST(DirichletSolve, AgreesWithTheOracleOnAnOpenSurface) {
  expectOracle(openSurface(12, 11, 5).withBoundaryTagged());
}
TEST(DirichletSolve, AgreesWithTheOracleOnSlivers) {
  for (const double aspect : {1e-2, 1e-4, 1e-6}) {
    SCOPED_TRACE(aspect);
    // Entries across the strip are of size 1 / aspect and carry roundings of that
    // size; those along it, which carry the field, are of size aspect.
    expectOracle(sliverStrip(20, aspect).withTagged({0, 20}), 4e-15 / aspect / aspect);
  }
}

TEST(DirichletSolve, GivesTheMiddleOfATriangleFanTheMeanOfItsRim) {
  // A regular hexagon: all cotangent weights are equal.
  const Mesh mesh = fan(6).withTags({0, 1, 1, 1, 1, 1, 1});
  const Field result = solve(construct(mesh), {kNaN, 1, 2, 3, 4, 5, 9});
  EXPECT_NEAR(result[0], 4.0, 1e-14);
}

TEST(DirichletSolve, KeepsPrescribedValuesBitForBit) {
  const Mesh mesh = gridMesh(7, 6).withBoundaryTagged();
  Field values = mesh.sample([](Point p) { return 0.1 + p.x / 3; });
  values[0] = -0.0;
  const Field result = solve(construct(mesh), values);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (mesh.tags[i] == 0) continue;
    EXPECT_TRUE(sameBits({&result[i], 1}, {&values[i], 1})) << i;
  }
}

TEST(DirichletSolve, KeepsNonFinitePrescribedValuesToo) {
  const Mesh mesh = gridMesh(4, 4).withBoundaryTagged();
  Field values(16, 1.0);
  values[0] = std::numeric_limits<double>::infinity();
  values[3] = kNaN;
  const Field result = solve(construct(mesh), values);
  EXPECT_TRUE(std::isinf(result[0]));
  EXPECT_TRUE(std::isnan(result[3]));
}

TEST(DirichletSolve, IgnoresTheValuesOfFreeVertices) {
  const Mesh mesh = openSurface(10, 9, 1).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  Field values = mesh.sample(linear);
  const Field expected = solve(system, values);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (mesh.tags[i] == 0) values[i] = kNaN;
  }
  EXPECT_TRUE(sameBits(solve(system, values), expected));
}

TEST(DirichletSolve, MayWorkInPlace) {
  const Mesh mesh = openSurface(10, 9, 1).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  Field values = mesh.sample(linear);
  const Field expected = solve(system, values);
  int status = -777;
  qelmsolveTagged(system.get(), values.data(), values.data(), &status);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(sameBits(values, expected));
}

TEST(DirichletSolve, WritesExactlyOneValuePerVertex) {
  const Mesh mesh = gridMesh(5, 5).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field values = mesh.sample(linear);
  std::vector<double> guarded(25 + 8, 1234.5);
  int status = -777;
  qelmsolveTagged(system.get(), values.data(), guarded.data() + 4, &status);
  for (const unsigned i : {0U, 1U, 2U, 3U, 29U, 30U, 31U, 32U}) EXPECT_EQ(guarded[i], 1234.5) << i;
}

TEST(DirichletSolve, WithNoFreeVertexGivesTheValuesBack) {
  const Mesh mesh = gridMesh(4, 5).withEveryVertexTagged(2);
  const Field values = mesh.sample([](Point p) { return std::exp(p.x) - p.y; });
  EXPECT_TRUE(sameBits(solve(construct(mesh), values), values));
}

TEST(DirichletSolve, WithNoFixedVertexGivesZeroEverywhere) {
  // A jittered mesh: rounding keeps the singular matrix's last pivot off zero.
  const Mesh mesh = openSurface(6, 6, 3);
  const MeshHandle system = construct(mesh);
  ASSERT_EQ(qelminfo(system.get()), 0);
  for (const double v : solve(system, Field(36, 5.0))) EXPECT_EQ(v, 0.0);
}

TEST(DirichletSolve, GivesAConstantForConstantData) {
  for (const Mesh& mesh : {sphereMesh(3).withTagged({0, 5}), torusMesh(20, 11).withTagged({9}),
                           openSurface(14, 13, 3).withBoundaryTagged()}) {
    const Field constant(mesh.tags.size(), 7.25);
    EXPECT_TRUE(allClose(solve(construct(mesh), constant), constant, kPatchTolerance));
  }
}

TEST(DirichletSolve, StaysBetweenTheLargestAndSmallestPrescribedValueOnADelaunayMesh) {
  const Mesh mesh = gridMesh(21, 21).withTagged({0, 440});
  Field values(441, kNaN);
  values[0] = -1;
  values[440] = 3;
  const Field result = solve(construct(mesh), values);
  for (std::size_t i = 1; i < 440; ++i) {
    EXPECT_GT(result[i], -1) << i;
    EXPECT_LT(result[i], 3) << i;
  }
}

TEST(DirichletSolve, IsLinearInTheData) {
  const Mesh mesh = openSurface(12, 12, 4).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field a = mesh.sample(linear);
  const Field b = mesh.sample([](Point p) { return std::cos(4 * p.x * p.y); });
  Field combined(a.size());
  for (std::size_t i = 0; i < a.size(); ++i) combined[i] = 2 * a[i] - b[i];
  const Field solvedA = solve(system, a);
  const Field solvedB = solve(system, b);
  Field expected(a.size());
  for (std::size_t i = 0; i < a.size(); ++i) expected[i] = 2 * solvedA[i] - solvedB[i];
  EXPECT_TRUE(allClose(solve(system, combined), expected, kPatchTolerance));
}

TEST(DirichletSolve, PermutesWithTheVertices) {
  const Mesh mesh = openSurface(13, 9, 8).withBoundaryTagged();
  Random random(3);
  const auto newIndex = permutation(random, mesh.vertexCount());
  const Mesh other = relabelled(mesh, newIndex);
  const auto f = [](Point p) { return p.x * p.x - p.z; };
  const Field result = solve(construct(mesh), mesh.sample(f));
  const Field permuted = solve(construct(other), other.sample(f));
  Field expected(result.size());
  for (std::size_t i = 0; i < result.size(); ++i) {
    expected[static_cast<std::size_t>(newIndex[i])] = result[i];
  }
  EXPECT_TRUE(allClose(permuted, expected, kPatchTolerance));
}

TEST(DirichletSolve, RightHandSideIsTheNegatedCouplingTimesTheValues) {
  // With the residual of the free rows: K_ff u_f + K_fb u_b = 0.
  const Mesh mesh = openSurface(20, 18, 7).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field result = solve(system, mesh.sample([](Point p) { return p.x - 4 * p.y * p.y; }));
  Eigen::VectorXd inSystemOrder(system->vertexCount);
  for (Eigen::Index s = 0; s < inSystemOrder.size(); ++s) {
    const auto input = system->vertexOrder[static_cast<std::size_t>(s)];
    inSystemOrder[s] = result[static_cast<std::size_t>(input)];
  }
  const Eigen::VectorXd residual =
      *system->freeFreeBlock * inSystemOrder.tail(system->freeFreeBlock->cols()) +
      *system->freeFixedBlock * inSystemOrder.head(system->freeFixedBlock->cols());
  EXPECT_LE(residual.cwiseAbs().maxCoeff(), 1e-13);
}

TEST(FailedFactorisation, SolvesWithStatus0AndZerosAtFreeVertices) {
  const MeshHandle system = construct(twoPartsOneTagged());
  ASSERT_EQ(qelminfo(system.get()), 1);
  const Field expected = {2.5, 0, 0, 0, 0, 0};
  EXPECT_TRUE(sameBits(solve(system, {2.5, 9, 9, 9, 9, 9}), expected));
}

TEST(SolveStatus, IsOneForANullHandleAndTouchesNothing) {
  double value = 1, result = 2;
  int status = -777;
  qelmsolveTagged(nullptr, &value, &result, &status);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(result, 2);
  qelmsolveTagged(nullptr, nullptr, nullptr, &status);
  EXPECT_EQ(status, 1);
}

TEST(SolveStatus, IsTwoForAHandleWithoutVertexOrderAndTouchesNothing) {
  const MeshHandle system = construct(rightTriangle().withTagged({0}));
  system->vertexOrder.clear();
  const Field values = {1, 2, 3};
  Field result = {7, 8, 9};
  int status = -777;
  qelmsolveTagged(system.get(), values.data(), result.data(), &status);
  EXPECT_EQ(status, 2);
  EXPECT_EQ(result, (Field{7, 8, 9}));
}

TEST(ConcurrentSolves, OnOneHandleGiveTheSameBits) {
  const Mesh mesh = openSurface(25, 25, 13).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  constexpr int kThreads = 8;
  std::vector<Field> inputs, expected;
  for (int t = 0; t < kThreads; ++t) {
    inputs.push_back(mesh.sample([t](Point p) { return std::sin((t + 1) * p.x) + p.y; }));
    expected.push_back(solve(system, inputs.back()));
  }
  std::vector<int> differing(kThreads, 0);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < 20; ++round) {
        Field result(inputs[t].size());
        int status = -1;
        qelmsolveTagged(system.get(), inputs[t].data(), result.data(), &status);
        if (status != 0 || !sameBits(result, expected[t])) ++differing[t];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(differing, std::vector<int>(kThreads, 0));
}

}  // namespace
}  // namespace qelm::test
