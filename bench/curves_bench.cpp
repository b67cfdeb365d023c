// Joined level curves beside a plain marching of the triangles that leaves its
// segments as they come, every one with both its points. Arguments: thousands of
// vertices, levels.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "qelm.h"
#include "support/meshes.h"
#include "support/random.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

#if defined(__GLIBC__)
// Large blocks normally go back to the system when freed. What the next ones then
// cost depends on which benchmarks ran before; kept, they cost all alike.
const bool keepsMemory = mallopt(M_MMAP_THRESHOLD, 1 << 30) == 1 &&
                         mallopt(M_TRIM_THRESHOLD, 1 << 30) == 1 &&
                         mallopt(M_TOP_PAD, 1 << 27) == 1;
#endif

using qelm::test::Field;
using qelm::test::Mesh;
using qelm::test::Point;

struct Case {
  Mesh mesh;
  Field field;
  std::vector<double> levels;
};

/// With every vertex tagged there is nothing to factorise.
Case makeCase(const benchmark::State& state) {
  const int side = static_cast<int>(std::sqrt(1000.0 * static_cast<double>(state.range(0))));
  Case c;
  c.mesh = qelm::test::openSurface(side, side, 1).withEveryVertexTagged();
  c.field = c.mesh.sample([](Point p) { return p.x * p.x - p.y * p.y + 0.2 * std::sin(7 * p.x); });
  const auto levelCount = static_cast<int>(state.range(1));
  const auto [low, high] = std::minmax_element(c.field.begin(), c.field.end());
  for (int j = 0; j < levelCount; ++j) {
    c.levels.push_back(*low + (*high - *low) * (j + 0.53) / levelCount);
  }
  return c;
}

/// No two neighbours alike: many small curves, nothing near anything.
Case makeNoise(const benchmark::State& state) {
  Case c = makeCase(state);
  qelm::test::Random random(1);
  for (double& value : c.field) value = qelm::test::uniform(random, 0, 1);
  for (std::size_t j = 0; j < c.levels.size(); ++j) {
    c.levels[j] = (static_cast<double>(j) + 0.53) / static_cast<double>(c.levels.size());
  }
  return c;
}

/// A strip whose rungs v - w all have the same v + 2 w, which
/// is what edges are hashed by at first.
Case makePiledUp(const benchmark::State& state) {
  const auto rungs = static_cast<std::int32_t>(1000 * state.range(0) / 2);
  Case c;
  c.mesh.vertices.assign(std::size_t{9} * static_cast<std::size_t>(rungs), 0);
  c.mesh.tags.assign(std::size_t{3} * static_cast<std::size_t>(rungs), 1);
  c.field.assign(c.mesh.tags.size(), 0);
  const auto left = [](std::int32_t i) { return 2 * i; };
  const auto right = [=](std::int32_t i) { return 3 * rungs - 1 - i; };
  std::vector<bool> used(c.mesh.tags.size(), false);
  for (std::int32_t i = 0; i < rungs; ++i) {
    for (const std::int32_t v : {left(i), right(i)}) {
      const auto at = static_cast<std::size_t>(v);
      c.mesh.vertices[3 * at] = i;
      c.mesh.vertices[3 * at + 1] = v == right(i) ? 1 : 0;
      c.field[at] = c.mesh.vertices[3 * at + 1];
      used[at] = true;
    }
    if (i == 0) continue;
    for (const std::int32_t v :
         {left(i - 1), left(i), right(i - 1), left(i), right(i), right(i - 1)}) {
      c.mesh.triangles.push_back(v);
    }
  }
  for (std::int32_t v = 0; v < c.mesh.vertexCount(); ++v) {
    if (used[static_cast<std::size_t>(v)]) continue;
    c.mesh.triangles.insert(c.mesh.triangles.end(), {v, left(0), left(1)});
  }
  c.levels = {0.25};
  return c;
}

struct Segment {
  std::array<double, 6> ends;
};

struct Segments {
  std::vector<Segment> segments;
  std::vector<std::int32_t> levels;
};

void interpolate(const Case& c, std::int32_t a, std::int32_t b, double level, double* to) {
  const auto p = static_cast<std::size_t>(a);
  const auto q = static_cast<std::size_t>(b);
  const double t = (level - c.field[p]) / (c.field[q] - c.field[p]);
  for (std::size_t k = 0; k < 3; ++k) {
    to[k] =
        c.mesh.vertices[3 * p + k] + t * (c.mesh.vertices[3 * q + k] - c.mesh.vertices[3 * p + k]);
  }
}

/// Levels must be ascending. With its corners sorted, a triangle has each level on
/// its longest edge and one of the others.
Segments marchPlainly(const Case& c) {
  Segments cut;
  const auto value = [&](std::int32_t v) { return c.field[static_cast<std::size_t>(v)]; };
  for (std::size_t t = 0; t < c.mesh.triangles.size(); t += 3) {
    std::array<std::int32_t, 3> v = {c.mesh.triangles[t], c.mesh.triangles[t + 1],
                                     c.mesh.triangles[t + 2]};
    if (value(v[1]) < value(v[0])) std::swap(v[0], v[1]);
    if (value(v[2]) < value(v[1])) std::swap(v[1], v[2]);
    if (value(v[1]) < value(v[0])) std::swap(v[0], v[1]);
    const double low = value(v[0]);
    const double middle = value(v[1]);
    const double high = value(v[2]);
    auto level = std::upper_bound(c.levels.begin(), c.levels.end(), low);
    for (; level != c.levels.end() && *level <= high; ++level) {
      Segment s;
      interpolate(c, v[0], v[2], *level, s.ends.data());
      if (*level <= middle) {
        interpolate(c, v[0], v[1], *level, s.ends.data() + 3);
      } else {
        interpolate(c, v[1], v[2], *level, s.ends.data() + 3);
      }
      cut.segments.push_back(s);
      cut.levels.push_back(static_cast<std::int32_t>(level - c.levels.begin()));
    }
  }
  return cut;
}

void runCurves(benchmark::State& state, const Case& c) {
  MeshSystem* system = nullptr;
  int status = 0;
  qelmctorTagged(c.mesh.vertexCount(), c.mesh.vertices.data(), c.mesh.triangleCount(),
                 c.mesh.triangles.data(), c.mesh.tags.data(), nullptr, &status, &system);
  double points = 0;
  double curveCount = 0;
  for (auto _ : state) {
    QelmCurves* curves = nullptr;
    qelmcurvesTagged(system, c.field.data(), static_cast<int>(c.levels.size()), c.levels.data(),
                     &curves, &status);
    points = static_cast<double>(curves->pointCount);
    curveCount = static_cast<double>(curves->curveCount);
    qelmfreecurves(curves);
  }
  state.counters["points"] = points;
  state.counters["curves"] = curveCount;
  qelmfree(system);
}

void runSegments(benchmark::State& state, const Case& c) {
  std::size_t segments = 0;
  for (auto _ : state) segments = marchPlainly(c).segments.size();
  state.counters["segments"] = static_cast<double>(segments);
}

void joinedCurves(benchmark::State& state) { runCurves(state, makeCase(state)); }
void plainSegments(benchmark::State& state) { runSegments(state, makeCase(state)); }
void joinedCurvesOfNoise(benchmark::State& state) { runCurves(state, makeNoise(state)); }
void plainSegmentsOfNoise(benchmark::State& state) { runSegments(state, makeNoise(state)); }
void joinedCurvesOfPiledUpNumbers(benchmark::State& state) { runCurves(state, makePiledUp(state)); }

}  // namespace

BENCHMARK(joinedCurves)
    ->ArgsProduct({{10, 100, 1000}, {1, 10, 100, 1000}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(plainSegments)
    ->ArgsProduct({{10, 100, 1000}, {1, 10, 100, 1000}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(joinedCurvesOfNoise)->ArgsProduct({{100}, {1, 10, 100}})->Unit(benchmark::kMillisecond);
BENCHMARK(plainSegmentsOfNoise)->ArgsProduct({{100}, {1, 10, 100}})->Unit(benchmark::kMillisecond);
BENCHMARK(joinedCurvesOfPiledUpNumbers)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
