// qelmWeld beside its plain form: two tree builds, one query per vertex into a
// vector, a node-based set of triangles. Soups of triangles as an STL file has
// them, and scattered points.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "qelm.h"
#include "support/meshes.h"
#include "support/plain_weld.h"
#include "support/random.h"

namespace {

struct Input {
  std::vector<double> vertices;
  std::vector<std::int32_t> triangles;
  double tolerance = 1e-9;
};

/// About as many triangles as the argument says, each with its own vertices.
Input soup(const benchmark::State& state) {
  const int side = static_cast<int>(std::sqrt(static_cast<double>(state.range(0)) / 2));
  const auto mesh = qelm::test::asSoup(qelm::test::openSurface(side + 1, side + 1, 1));
  return {mesh.vertices, mesh.triangles};
}

/// The same, every corner off its place by less than the tolerance.
Input noisySoup(const benchmark::State& state) {
  Input input = soup(state);
  qelm::test::Random random(1);
  for (double& v : input.vertices) v += qelm::test::uniform(random, -1e-10, 1e-10);
  return input;
}

/// Uniform in the unit cube, with `neighbours` others within the tolerance of a
/// point on average.
Input scattered(const benchmark::State& state, double neighbours) {
  qelm::test::Random random(1);
  Input input;
  const auto count = static_cast<double>(state.range(0));
  for (int k = 0; k < 3 * state.range(0); ++k) {
    input.vertices.push_back(qelm::test::uniform(random, 0, 1));
  }
  constexpr double kBallVolume = 4.18879;  // of radius 1
  input.tolerance = std::cbrt(neighbours / (count * kBallVolume));
  return input;
}

Input scatteredSparse(const benchmark::State& state) { return scattered(state, 0.1); }
Input scatteredHalf(const benchmark::State& state) { return scattered(state, 1); }
Input scatteredDense(const benchmark::State& state) { return scattered(state, 100); }
Input scatteredVeryDense(const benchmark::State& state) { return scattered(state, 1000); }

void library(benchmark::State& state, Input (*make)(const benchmark::State&)) {
  const Input input = make(state);
  std::vector<double> vertices(input.vertices.size());
  std::vector<int> triangles(input.triangles.size());
  std::vector<int> map(input.vertices.size() / 3);
  int vertexCount = 0;
  int triangleCount = 0;
  for (auto _ : state) {
    qelmWeld(static_cast<int>(map.size()), input.vertices.data(),
             static_cast<int>(triangles.size() / 3), input.triangles.data(), input.tolerance,
             vertices.data(), triangles.data(), map.data(), &vertexCount, &triangleCount);
    benchmark::DoNotOptimize(vertexCount);
  }
  state.counters["kept"] = vertexCount;
}

void plain(benchmark::State& state, Input (*make)(const benchmark::State&)) {
  const Input input = make(state);
  std::size_t kept = 0;
  for (auto _ : state) {
    const auto welded = qelm::test::plainWeld(input.vertices, input.triangles, input.tolerance);
    kept = welded.vertices.size() / 3;
    benchmark::DoNotOptimize(kept);
  }
  state.counters["kept"] = static_cast<double>(kept);
}

}  // namespace

#define QELM_WELD_CASE(input, count)                                                   \
  BENCHMARK_CAPTURE(library, input, input)->Arg(count)->Unit(benchmark::kMillisecond); \
  BENCHMARK_CAPTURE(plain, input, input)->Arg(count)->Unit(benchmark::kMillisecond)

QELM_WELD_CASE(soup, 100000);
QELM_WELD_CASE(soup, 1000000);
QELM_WELD_CASE(noisySoup, 100000);
QELM_WELD_CASE(noisySoup, 1000000);
QELM_WELD_CASE(scatteredSparse, 1000000);
QELM_WELD_CASE(scatteredHalf, 1000000);
QELM_WELD_CASE(scatteredDense, 100000);
QELM_WELD_CASE(scatteredVeryDense, 100000);
