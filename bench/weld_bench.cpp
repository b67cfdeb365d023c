// Welding beside its plain form on a tree of all vertices. The argument is the
// number of triangles, in thousands, or of scattered points.
#include <benchmark/benchmark.h>

#include <cmath>

#include "qelm.h"
#include "support/meshes.h"
#include "support/plain_weld.h"
#include "support/random.h"

namespace {

using qelm::test::Mesh;

constexpr double kTolerance = 1e-9;

Mesh soup(const benchmark::State& state) {
  const int side = static_cast<int>(std::sqrt(500.0 * static_cast<double>(state.range(0)))) + 1;
  return qelm::test::asSoup(qelm::test::openSurface(side, side, 1));
}

Mesh scatteredPoints(const benchmark::State& state) {
  qelm::test::Random random(1);
  Mesh mesh;
  mesh.tags.assign(static_cast<std::size_t>(1000 * state.range(0)), 0);
  for (std::size_t i = 0; i < 3 * mesh.tags.size(); ++i) {
    mesh.vertices.push_back(qelm::test::uniform(random, 0, 1));
  }
  return mesh;
}

/// About a third of the points has a neighbour.
double scatteredTolerance(const Mesh& mesh) { return 0.45 / std::cbrt(mesh.vertexCount()); }

void run(benchmark::State& state, const Mesh& mesh, double tolerance) {
  std::vector<double> vertices(mesh.vertices.size());
  std::vector<int> triangles(mesh.triangles.size()), map(mesh.tags.size());
  int vertexCount = 0;
  int triangleCount = 0;
  for (auto _ : state) {
    qelmWeld(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(), mesh.triangles.data(),
             tolerance, vertices.data(), triangles.data(), map.data(), &vertexCount,
             &triangleCount);
    benchmark::DoNotOptimize(map.data());
  }
  state.counters["kept"] = vertexCount;
}

void runPlain(benchmark::State& state, const Mesh& mesh, double tolerance) {
  std::size_t kept = 0;
  for (auto _ : state) {
    kept = qelm::test::plainTreeWeld(mesh.vertices, mesh.triangles, tolerance).vertices.size() / 3;
  }
  state.counters["kept"] = static_cast<double>(kept);
}

void weldSoup(benchmark::State& state) { run(state, soup(state), kTolerance); }
void plainSoup(benchmark::State& state) { runPlain(state, soup(state), kTolerance); }

void weldPoints(benchmark::State& state) {
  const Mesh mesh = scatteredPoints(state);
  run(state, mesh, scatteredTolerance(mesh));
}
void plainPoints(benchmark::State& state) {
  const Mesh mesh = scatteredPoints(state);
  runPlain(state, mesh, scatteredTolerance(mesh));
}

}  // namespace

BENCHMARK(weldSoup)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(plainSoup)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(weldPoints)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(plainPoints)->Arg(1000)->Unit(benchmark::kMillisecond);
