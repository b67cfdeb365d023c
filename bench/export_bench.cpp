// The heat-map export beside its plain form, line by line through a stream, and the
// mere formatting of the same doubles into memory. The argument is thousands of
// vertices.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>

#include "export/plain_heat_map.h"
#include "interface/mesh_system.h"
#include "qelm.h"
#include "support/meshes.h"

namespace {

struct Case {
  MeshSystem system;
  std::vector<double> field;
  std::string path = "/tmp/qelm-export-bench";
};

Case makeCase(const benchmark::State& state) {
  const int side = static_cast<int>(std::sqrt(1000.0 * static_cast<double>(state.range(0))));
  qelm::test::Mesh mesh = qelm::test::openSurface(side, side, 1);
  Case c;
  c.field = mesh.sample([](qelm::test::Point p) { return std::sin(3 * p.x) + p.y; });
  c.system.vertices = std::make_shared<const std::vector<double>>(std::move(mesh.vertices));
  c.system.triangles = std::make_shared<const std::vector<std::int32_t>>(std::move(mesh.triangles));
  return c;
}

void removeFiles(const Case& c) {
  std::remove((c.path + ".obj").c_str());
  std::remove((c.path + ".mtl").c_str());
}

void heatMap(benchmark::State& state) {
  const Case c = makeCase(state);
  for (auto _ : state) wobj(&c.system, c.field.data(), c.path.c_str());
  removeFiles(c);
}

void plain(benchmark::State& state) {
  const Case c = makeCase(state);
  for (auto _ : state) {
    std::ofstream obj(c.path + ".obj");
    qelm::test::plainObj(obj, c.system, c.field, c.path);
  }
  removeFiles(c);
}

void formattingAlone(benchmark::State& state) {
  const Case c = makeCase(state);
  std::vector<char> memory(64 * c.field.size());
  for (auto _ : state) {
    char* to = memory.data();
    char* const end = to + memory.size();
    const auto write = [&](double x) {
      to = std::to_chars(to, end, x, std::chars_format::general, 6).ptr;
    };
    for (const double x : *c.system.vertices) write(x);
    for (const double x : c.field) write(x);
    benchmark::DoNotOptimize(to);
  }
}

}  // namespace

BENCHMARK(heatMap)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(plain)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(formattingAlone)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
