// Many right-hand sides through the factor together, for each width of a block,
// beside as many single solves. Arguments: grid columns and rows, width. "perField"
// is the time for one field.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>

#include "interface/mesh_system.h"
#include "qelm.h"
#include "solve/batch_solve.h"
#include "support/meshes.h"
#include "support/random.h"

namespace {

using qelm::test::Field;
using qelm::test::Mesh;

/// Constructing takes far longer than solving; one system serves all cases of a
/// size. Values are random: none of them is zero, no two fields are alike.
const MeshSystem& systemOf(int side) {
  struct Free {
    void operator()(MeshSystem* system) const { qelmfree(system); }
  };
  static std::map<int, std::unique_ptr<MeshSystem, Free>> systems;
  auto& system = systems[side];
  if (system == nullptr) {
    const Mesh mesh = qelm::test::openSurface(side, side, 1).withBoundaryTagged();
    MeshSystem* raw = nullptr;
    int status = 0;
    qelmctorTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                   mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &raw);
    system.reset(raw);
  }
  return *system;
}

Field randomFields(const MeshSystem& system, int count) {
  qelm::test::Random random(1);
  Field fields(static_cast<std::size_t>(system.vertexCount * count));
  for (double& v : fields) v = qelm::test::uniform(random, 1, 2);
  return fields;
}

void perField(benchmark::State& state, int fields) {
  using benchmark::Counter;
  state.counters["perField"] = Counter(static_cast<double>(state.iterations() * fields),
                                       Counter::kIsRate | Counter::kInvert);
}

void singleSolves(benchmark::State& state) {
  const MeshSystem& system = systemOf(static_cast<int>(state.range(0)));
  const int count = static_cast<int>(state.range(1));
  const Field values = randomFields(system, count);
  Field results(values.size());
  int status = 0;
  for (auto _ : state) {
    for (std::size_t at = 0; at < values.size();
         at += values.size() / static_cast<std::size_t>(count)) {
      qelmsolveTagged(&system, values.data() + at, results.data() + at, &status);
    }
    benchmark::DoNotOptimize(results.data());
  }
  perField(state, count);
}

/// One block of that width.
void oneBlock(benchmark::State& state) {
  const MeshSystem& system = systemOf(static_cast<int>(state.range(0)));
  const int width = static_cast<int>(state.range(1));
  const Field values = randomFields(system, width);
  Field results(values.size());
  for (auto _ : state) {
    qelm::solveBatch(system, {values, {}, results}, width);
    benchmark::DoNotOptimize(results.data());
  }
  perField(state, width);
}

/// Through the export, at the width that it takes.
void batch(benchmark::State& state) {
  const MeshSystem& system = systemOf(static_cast<int>(state.range(0)));
  const int count = static_cast<int>(state.range(1));
  const Field values = randomFields(system, count);
  Field results(values.size());
  int status = 0;
  for (auto _ : state) {
    qelmsolveManyTagged(&system, count, values.data(), nullptr, results.data(), &status);
    benchmark::DoNotOptimize(results.data());
  }
  perField(state, count);
}

void sizesAndWidths(benchmark::internal::Benchmark* benchmark) {
  benchmark->Unit(benchmark::kMillisecond)->ArgNames({"side", "fields"});
  for (const int side : {100, 316, 1000}) {
    for (const int width : {1, 2, 4, 8, 16, 32}) benchmark->Args({side, width});
  }
}

}  // namespace

BENCHMARK(singleSolves)
    ->ArgNames({"side", "fields"})
    ->Args({100, 8})
    ->Args({316, 8})
    ->Args({1000, 8})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(oneBlock)->Apply(sizesAndWidths);
BENCHMARK(batch)->Apply(sizesAndWidths);

BENCHMARK_MAIN();
