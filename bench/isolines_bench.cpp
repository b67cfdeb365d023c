// Isoline segments beside the plain form with its dense tables. Arguments: thousands
// of vertices, levels. The mesh is arranged column by column, as the export reads
// it, so its rows are the triangles of a grid; the field rises along one side, and
// every level crosses about one row of the grid's cells.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "interface/mesh_system.h"
#include "isolines/plain_isolines.h"
#include "qelm.h"
#include "support/meshes.h"

namespace {

struct Case {
  MeshSystem system;
  std::vector<double> field;
  std::vector<double> levels;
};

/// As many triangle rows as vertices: every second triangle of the grid.
Case makeCase(const benchmark::State& state) {
  const int side = static_cast<int>(std::sqrt(1000.0 * static_cast<double>(state.range(0))));
  const qelm::test::Mesh mesh = qelm::test::gridMesh(side, side);
  const std::size_t n = mesh.tags.size();
  std::vector<double> columns(3 * n);
  std::vector<std::int32_t> corners(3 * n, 0);
  Case c;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t k = 0; k < 3; ++k) columns[i + k * n] = mesh.vertices[3 * i + k];
    c.field.push_back(mesh.vertices[3 * i]);
  }
  for (std::size_t t = 0; 6 * t < mesh.triangles.size(); ++t) {
    for (std::size_t k = 0; k < 3; ++k) corners[t + k * n] = mesh.triangles[6 * t + k];
  }
  c.system.vertexCount = static_cast<std::int64_t>(n);
  c.system.vertices = std::make_shared<const std::vector<double>>(std::move(columns));
  c.system.triangles = std::make_shared<const std::vector<std::int32_t>>(std::move(corners));
  const auto levelCount = static_cast<int>(state.range(1));
  for (int j = 0; j < levelCount; ++j) c.levels.push_back((j + 0.53) / levelCount);
  return c;
}

/// Nearly no crossings: every level lies beyond the field, but for the first.
Case makeQuietCase(const benchmark::State& state) {
  Case c = makeCase(state);
  for (std::size_t j = 1; j < c.levels.size(); ++j) c.levels[j] = 2 + c.levels[j];
  return c;
}

void run(benchmark::State& state, const Case& c) {
  std::int64_t segments = 0;
  for (auto _ : state) {
    IsoPointMatrix* points = nullptr;
    IsoEdgeMatrix* edges = nullptr;
    qelisoline(&c.system, c.field.data(), static_cast<int>(c.levels.size()), c.levels.data(),
               &points, &edges);
    segments = edges->rows;
    qelfreeisoline(points, edges);
  }
  state.counters["segments"] = static_cast<double>(segments);
}

void isolines(benchmark::State& state) { run(state, makeCase(state)); }
void quietIsolines(benchmark::State& state) { run(state, makeQuietCase(state)); }

void plain(benchmark::State& state) {
  const Case c = makeCase(state);
  std::size_t segments = 0;
  for (auto _ : state) {
    segments = qelm::test::plainIsolines(c.system, c.field, c.levels).edges.size() / 2;
  }
  state.counters["segments"] = static_cast<double>(segments);
}

}  // namespace

BENCHMARK(isolines)
    ->ArgsProduct({{10, 100, 1000}, {1, 10, 100, 1000}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(quietIsolines)->ArgsProduct({{1000}, {1, 10, 100, 1000}})->Unit(benchmark::kMillisecond);
// Without 1000 levels on a million vertices: the tables alone would take 24 GB.
BENCHMARK(plain)->ArgsProduct({{10, 100}, {1, 10, 100, 1000}})->Unit(benchmark::kMillisecond);
BENCHMARK(plain)->ArgsProduct({{1000}, {1, 10, 100}})->Unit(benchmark::kMillisecond);
