// Construction and solves through the exports, beside bare Eigen on the same
// free-free block. The argument is the number of grid columns and rows.
#include <benchmark/benchmark.h>

#include "interface/mesh_system.h"
#include "qelm.h"
#include "support/meshes.h"

namespace {

using qelm::test::Mesh;

Mesh benchMesh(const benchmark::State& state) {
  const int side = static_cast<int>(state.range(0));
  return qelm::test::openSurface(side, side, 1).withBoundaryTagged();
}

MeshSystem* construct(const Mesh& mesh) {
  MeshSystem* system = nullptr;
  int status = 0;
  qelmctorTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                 mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &system);
  return system;
}

void construction(benchmark::State& state) {
  const Mesh mesh = benchMesh(state);
  for (auto _ : state) {
    MeshSystem* system = construct(mesh);
    benchmark::DoNotOptimize(system);
    qelmfree(system);
  }
}

void bareEigenCompute(benchmark::State& state) {
  MeshSystem* system = construct(benchMesh(state));
  for (auto _ : state) {
    qelm::FreeSolver solver(*system->freeFreeBlock);
    benchmark::DoNotOptimize(solver.info());
  }
  qelmfree(system);
}

void dirichletSolve(benchmark::State& state) {
  const Mesh mesh = benchMesh(state);
  MeshSystem* system = construct(mesh);
  const qelm::test::Field values = mesh.sample([](qelm::test::Point p) { return p.x - p.y; });
  qelm::test::Field result(values.size());
  int status = 0;
  for (auto _ : state) {
    qelmsolveTagged(system, values.data(), result.data(), &status);
    benchmark::DoNotOptimize(result.data());
  }
  qelmfree(system);
}

void loadSolve(benchmark::State& state) {
  const Mesh mesh = benchMesh(state);
  MeshSystem* system = construct(mesh);
  const qelm::test::Field values = mesh.sample([](qelm::test::Point p) { return p.x - p.y; });
  qelm::test::Field result(values.size());
  int status = 0;
  for (auto _ : state) {
    qelmsolvePTagged(system, values.data(), values.data(), result.data(), &status);
    benchmark::DoNotOptimize(result.data());
  }
  qelmfree(system);
}

void bareEigenSolve(benchmark::State& state) {
  MeshSystem* system = construct(benchMesh(state));
  const Eigen::VectorXd rhs = Eigen::VectorXd::Random(system->freeFreeBlock->rows());
  Eigen::VectorXd solution(rhs.size());
  for (auto _ : state) {
    solution = system->freeSolver->solve(rhs);
    benchmark::DoNotOptimize(solution.data());
  }
  qelmfree(system);
}

}  // namespace

BENCHMARK(construction)->Arg(100)->Arg(316)->Unit(benchmark::kMillisecond);
BENCHMARK(bareEigenCompute)->Arg(100)->Arg(316)->Unit(benchmark::kMillisecond);
BENCHMARK(dirichletSolve)->Arg(100)->Arg(316)->Unit(benchmark::kMillisecond);
BENCHMARK(loadSolve)->Arg(100)->Arg(316)->Unit(benchmark::kMillisecond);
BENCHMARK(bareEigenSolve)->Arg(100)->Arg(316)->Unit(benchmark::kMillisecond);
