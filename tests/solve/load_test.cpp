// Solves with a load: the oracle, an analytic Poisson solution, aliasing, edges.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <thread>
#include <vector>

#include "interface/mesh_system.h"
#include "qelm.h"
#include "support/analytic.h"
#include "support/compare.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/oracle.h"

namespace qelm::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// Rounding magnified by the condition number (about 1e3 for these meshes).
constexpr double kOracleTolerance = 1e-11;

Field solveLoaded(const MeshHandle& system, const Field& values, const Field& load) {
  Field result(values.size(), -777.0);
  int status = Construction::kUnwritten;
  qelmsolvePTagged(system.get(), values.data(), load.data(), result.data(), &status);
  EXPECT_EQ(status, QELM_STATUS_OK);
  return result;
}

double someValue(Point p) { return std::sin(3 * p.x) + p.y * p.z - p.y; }
double someLoad(Point p) { return std::cos(5 * p.y) - p.x; }

void expectOracle(const Mesh& mesh) {
  const Field values = mesh.sample(someValue);
  const Field load = mesh.sample(someLoad);
  EXPECT_TRUE(allClose(solveLoaded(construct(mesh), values, load), oracleField(mesh, values, load),
                       kOracleTolerance));
}

TEST(LoadSolve, AgreesWithTheOracle) {
  expectOracle(gridMesh(9, 8).withTagged({0, 71}));
  expectOracle(sphereMesh(2).withTagged({3, 77}, 2));
  expectOracle(torusMesh(14, 8).withTagged({0, 50, 70}, 3));
  expectOracle(openSurface(12, 11, 5).withBoundaryTagged());
}

TEST(LoadSolve, BalancesTheLoadInEveryFreeRow) {
  const Mesh mesh = openSurface(20, 18, 7).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field load = mesh.sample(someLoad);
  const Field result = solveLoaded(system, mesh.sample(someValue), load);
  const auto t = system->fixedCount;
  const auto inSystemOrder = [&](const Field& field) {
    Eigen::VectorXd v(system->vertexCount);
    for (Eigen::Index s = 0; s < v.size(); ++s) {
      v[s] = field[static_cast<std::size_t>(system->vertexOrder[static_cast<std::size_t>(s)])];
    }
    return v;
  };
  const Eigen::VectorXd u = inSystemOrder(result);
  const Eigen::VectorXd residual = *system->freeFreeBlock * u.tail(u.size() - t) +
                                   *system->freeFixedBlock * u.head(t) +
                                   inSystemOrder(load).tail(u.size() - t);
  EXPECT_LE(residual.cwiseAbs().maxCoeff(), 1e-13);
}

/// A third of the area around each vertex, times f: the integral of f against the
/// hat function, to second order.
Field lumpedLoad(const Mesh& mesh, const Field& f) {
  Field load(f.size(), 0.0);
  for (std::size_t t = 0; t < mesh.triangles.size(); t += 3) {
    const Point a = mesh.point(mesh.triangles[t]);
    const Point b = mesh.point(mesh.triangles[t + 1]);
    const Point c = mesh.point(mesh.triangles[t + 2]);
    const double area = 0.5 * ((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y));
    for (std::size_t k = 0; k < 3; ++k) {
      const auto v = static_cast<std::size_t>(mesh.triangles[t + k]);
      load[v] += area / 3 * f[v];
    }
  }
  return load;
}

TEST(LoadSolve, ConvergesToAnAnalyticPoissonSolutionWithSecondOrder) {
  // u = sin(pi x) sin(2 pi y) + x on the unit square: laplace(u) = -5 pi^2 sin sin.
  const double pi = std::numbers::pi;
  const auto wave = [pi](Point p) { return std::sin(pi * p.x) * std::sin(2 * pi * p.y); };
  double coarser = 0;
  for (int cells = 8; cells <= 128; cells *= 2) {
    const Mesh mesh = gridMesh(cells + 1, cells + 1).withBoundaryTagged();
    const Field exact = mesh.sample([&](Point p) { return wave(p) + p.x; });
    const Field laplacian = mesh.sample([&](Point p) { return -5 * pi * pi * wave(p); });
    const Field solved = solveLoaded(construct(mesh), exact, lumpedLoad(mesh, laplacian));
    const double error = largestError(solved, exact);
    if (cells > 8) {
      EXPECT_NEAR(std::log2(coarser / error), 2.0, 0.1) << cells << " cells";
    }
    coarser = error;
  }
}

TEST(LoadSolve, OfZerosIsTheDirichletSolve) {
  const Mesh mesh = openSurface(15, 14, 3).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field values = mesh.sample(someValue);
  for (const double zero : {0.0, -0.0}) {
    // EXPECT_EQ on numbers: a zero may differ in its sign, nothing else may differ.
    EXPECT_EQ(solveLoaded(system, values, Field(values.size(), zero)), solve(system, values));
  }
}

TEST(LoadSolve, IgnoresTheLoadAtFixedAndTheValuesAtFreeVertices) {
  const Mesh mesh = openSurface(10, 9, 1).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  Field values = mesh.sample(someValue);
  Field load = mesh.sample(someLoad);
  const Field expected = solveLoaded(system, values, load);
  for (std::size_t i = 0; i < values.size(); ++i) (mesh.tags[i] == 0 ? values : load)[i] = kNaN;
  EXPECT_TRUE(sameBits(solveLoaded(system, values, load), expected));
}

TEST(LoadSolve, WithNoFreeVertexGivesTheValuesBackAndReadsNoLoad) {
  const Mesh mesh = gridMesh(4, 5).withEveryVertexTagged(2);
  const Field values = mesh.sample(someValue);
  Field result(values.size());
  int status = -777;
  // Not checked for null, and not looked at.
  qelmsolvePTagged(construct(mesh).get(), values.data(), nullptr, result.data(), &status);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(sameBits(result, values));
}

TEST(LoadSolve, WithNoFixedVertexSolvesForTheLoadAlone) {
  // Singular up to rounding, so only the equations can be compared, not the field.
  const Mesh mesh = openSurface(6, 6, 3);
  const MeshHandle system = construct(mesh);
  ASSERT_EQ(qelminfo(system.get()), 0);
  Field load(36, 0.0);
  load[7] = 1;
  load[28] = -1;
  const Field result = solveLoaded(system, Field(36, kNaN), load);
  Eigen::VectorXd u(36);
  for (int s = 0; s < 36; ++s) u[s] = result[static_cast<std::size_t>(35 - s)];
  const Eigen::VectorXd flow = *system->freeFreeBlock * u;
  const double scale = u.cwiseAbs().maxCoeff();
  for (int s = 0; s < 36; ++s) {
    EXPECT_NEAR(flow[s], -load[static_cast<std::size_t>(35 - s)], 1e-12 * (1 + scale)) << s;
  }
}

TEST(LoadSolve, MayTakeOneArrayForValuesAndLoad) {
  const Mesh mesh = openSurface(11, 10, 4).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field values = mesh.sample(someValue);
  const Field load = mesh.sample(someLoad);
  Field both = values;
  for (std::size_t i = 0; i < both.size(); ++i) {
    if (mesh.tags[i] == 0) both[i] = load[i];
  }
  const Field expected = solveLoaded(system, values, load);
  EXPECT_TRUE(sameBits(solveLoaded(system, both, both), expected));

  Field all = both;
  int status = -777;
  qelmsolvePTagged(system.get(), all.data(), all.data(), all.data(), &status);
  EXPECT_TRUE(sameBits(all, expected)) << "and for the result as well";
}

TEST(LoadSolve, MayWriteOverItsValuesOrItsLoad) {
  const Mesh mesh = openSurface(11, 10, 4).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  Field values = mesh.sample(someValue);
  Field load = mesh.sample(someLoad);
  const Field expected = solveLoaded(system, values, load);
  int status = -777;
  Field overLoad = load;
  qelmsolvePTagged(system.get(), values.data(), overLoad.data(), overLoad.data(), &status);
  EXPECT_TRUE(sameBits(overLoad, expected));
  qelmsolvePTagged(system.get(), values.data(), load.data(), values.data(), &status);
  EXPECT_TRUE(sameBits(values, expected));
}

TEST(LoadSolve, AfterAFailedFactorisationGivesZerosAtFreeVertices) {
  const MeshHandle system = construct(twoPartsOneTagged());
  ASSERT_EQ(qelminfo(system.get()), 1);
  const Field expected = {2.5, 0, 0, 0, 0, 0};
  EXPECT_TRUE(sameBits(solveLoaded(system, {2.5, 9, 9, 9, 9, 9}, Field(6, 3.0)), expected));
}

TEST(LoadSolveStatus, FollowsTheDirichletSolve) {
  Field result = {7, 8, 9};
  int status = -777;
  qelmsolvePTagged(nullptr, nullptr, nullptr, result.data(), &status);
  EXPECT_EQ(status, 1);
  const MeshHandle system = construct(rightTriangle().withTagged({0}));
  system->vertexOrder.clear();
  const Field values = {1, 2, 3};
  qelmsolvePTagged(system.get(), values.data(), values.data(), result.data(), &status);
  EXPECT_EQ(status, 2);
  EXPECT_EQ(result, (Field{7, 8, 9}));
}

TEST(LoadSolve, RunsOnManyThreadsWithTheSameBits) {
  const Mesh mesh = openSurface(20, 20, 13).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field values = mesh.sample(someValue);
  const Field load = mesh.sample(someLoad);
  const Field expected = solveLoaded(system, values, load);
  std::vector<int> differing(4, 0);
  std::vector<std::thread> threads;
  for (int& count : differing) {
    threads.emplace_back([&] {
      for (int round = 0; round < 10; ++round) {
        Field result(values.size());
        int status = -1;
        qelmsolvePTagged(system.get(), values.data(), load.data(), result.data(), &status);
        if (status != 0 || !sameBits(result, expected)) ++count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(differing, std::vector<int>(4, 0));
}

}  // namespace
}  // namespace qelm::test
