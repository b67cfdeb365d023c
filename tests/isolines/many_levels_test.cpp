// Hundreds of levels and more: the plain form's bits, no cost for levels that cross
// nothing, and passes at the same time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <thread>
#include <vector>

#include "isolines/segments.h"
#include "support/handle.h"
#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {
namespace {

/// A smooth field in system order.
Field systemField(const MeshSystem& system) {
  const std::vector<double>& v = *system.vertices;
  Field field;
  for (std::size_t i = 0; i < v.size(); i += 3) field.push_back(v[i] - 0.7 * v[i + 1] + v[i + 2]);
  return field;
}

std::vector<double> evenLevels(int count, double low, double high) {
  std::vector<double> levels;
  for (int j = 0; j < count; ++j) levels.push_back(low + (high - low) * j / count);
  return levels;
}

std::vector<double> shuffled(const std::vector<double>& levels, Random& random) {
  std::vector<double> result;
  for (const std::int32_t j : permutation(random, static_cast<int>(levels.size()))) {
    result.push_back(levels[static_cast<std::size_t>(j)]);
  }
  return result;
}

TEST(ManyLevels, InAnyOrderHaveTheBitsOfThePlainForm) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (const Mesh& mesh : {torusMesh(14, 9), sphereMesh(2), openSurface(17, 11, seed), fan(30)}) {
    const MeshHandle system = construct(mesh.withTagged({0}));
    const Field field = systemField(*system);
    std::vector<double> levels = evenLevels(300, -2.5, 2.5);
    expectPlain(*system, field, levels);
    std::reverse(levels.begin(), levels.end());
    expectPlain(*system, field, levels);
    levels.insert(levels.end(), field.begin(), field.end());  // on the vertices
    levels.insert(levels.end(), levels.begin(), levels.begin() + 20);
    expectPlain(*system, field, shuffled(levels, random));
    levels.push_back(std::numeric_limits<double>::quiet_NaN());
    levels.push_back(std::numeric_limits<double>::infinity());
    expectPlain(*system, field, shuffled(levels, random));
  }
}

TEST(ManyLevels, ThatCrossNothingTakeNoRoomAndAreNotLookedAt) {
  // Dense tables of positions would take 240 GB here, and 3e10 divisions.
  const int n = 100000;
  const Mesh mesh = torusMesh(n / 100, 100);
  std::vector<std::int32_t> corners;
  for (int k = 0; k < 3; ++k) {
    for (std::size_t t = 0; t < static_cast<std::size_t>(n); ++t) {
      corners.push_back(mesh.triangles[3 * t + static_cast<std::size_t>(k)]);
    }
  }
  const MeshSystem system = meshOnly(mesh.vertices, corners);
  const Field field = mesh.sample([](Point p) { return p.z; });
  std::vector<double> levels = evenLevels(n, 1, 2);  // the tube ends at z = 0.75
  EXPECT_EQ(cut(&system, field, levels).count, 0);
  levels[static_cast<std::size_t>(n) / 2] = 0.31;
  EXPECT_EQ(cut(&system, field, levels).count, cut(&system, field, {0.31}).count);
  EXPECT_GT(cut(&system, field, levels).count, 0);
}

TEST(ManyLevels, OnManyThreadsAtOnceGiveTheSameSegments) {
  const MeshHandle system = construct(torusMesh(20, 15).withTagged({0}));
  const Field field = systemField(*system);
  const std::vector<double> levels = {0.5, -1, 0.25, 2, 0.5};
  const Segments expected = cut(system.get(), field, levels);
  ASSERT_GT(expected.count, 0);
  constexpr std::size_t kThreads = 4;
  std::vector<int> failures(kThreads, 0);
  std::vector<std::thread> threads;
  for (std::size_t thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int round = 0; round < 50; ++round) {
        const Segments s = cut(system.get(), field, levels);
        failures[thread] += s.points != expected.points || s.edges != expected.edges ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, std::vector<int>(kThreads, 0));
}

}  // namespace
}  // namespace qelm::test
