// Everything at once: threads that solve, cut and export on one handle and on copies of
// it, while copies come and go. The thread sanitizer watches.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "qelm.h"
#include "support/compare.h"
#include "support/handle.h"
#include "support/meshes.h"

namespace qelm::test {
namespace {

constexpr int kRounds = 12;
constexpr int kThreads = 8;
const std::vector<double> kLevels = {-0.5, 0, 0.25, 0.6};

/// What one thread finds out about a system; the same for every thread.
struct Answers {
  Field solved, loaded, many, checked, segments, points;
  int info = -1;

  bool operator==(const Answers&) const = default;
};

Field isolinePoints(const MeshSystem* system, const Field& field) {
  IsoPointMatrix* points = nullptr;
  IsoEdgeMatrix* edges = nullptr;
  qelisoline(system, field.data(), static_cast<int>(kLevels.size()), kLevels.data(), &points,
             &edges);
  const Field all(points->data, points->data + points->rows * points->cols);
  qelfreeisoline(points, edges);
  return all;
}

Field curvePoints(const MeshSystem* system, const Field& field) {
  QelmCurves* curves = nullptr;
  int status = -1;
  qelmcurvesTagged(system, field.data(), static_cast<int>(kLevels.size()), kLevels.data(), &curves,
                   &status);
  const Field all(curves->points, curves->points + 3 * curves->pointCount);
  qelmfreecurves(curves);
  return all;
}

Answers ask(const MeshSystem* system, const Field& values) {
  Answers answers;
  int status = -1;
  answers.solved = answers.loaded = values;
  qelmsolveTagged(system, values.data(), answers.solved.data(), &status);
  qelmsolvePTagged(system, values.data(), values.data(), answers.loaded.data(), &status);
  answers.many = values;
  answers.many.insert(answers.many.end(), values.begin(), values.end());
  qelmsolveManyTagged(system, 2, answers.many.data(), nullptr, answers.many.data(), &status);
  answers.checked = values;
  qelmsolveCheckedTagged(system, 1, answers.checked.data(), nullptr, answers.checked.data(),
                         nullptr, &status);
  answers.segments = isolinePoints(system, answers.solved);
  answers.points = curvePoints(system, answers.solved);
  answers.info = qelminfo(system);
  return answers;
}

TEST(Threads, SolveCutAndExportOnSharedAndDuplicatedHandlesWhileCopiesAreFreed) {
  const Mesh mesh = openSurface(24, 21, 3).withBoundaryTagged();
  MeshHandle system = construct(mesh);
  const Field values = mesh.sample([](Point p) { return p.x - p.y * p.y + 0.3 * p.z; });
  const Answers expected = ask(system.get(), values);
  const std::filesystem::path folder = std::filesystem::temp_directory_path();

  std::atomic<int> different = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      const std::string path = (folder / ("qelm-threads-" + std::to_string(t))).string();
      for (int round = 0; round < kRounds; ++round) {
        const MeshHandle copy = duplicate(system);
        // Now on the shared handle, now on a copy that this thread frees.
        const MeshSystem* mine = round % 2 == 0 ? system.get() : copy.get();
        if (ask(mine, values) != expected) ++different;
        wobj(mine, values.data(), path.c_str());
      }
      std::filesystem::remove(path + ".obj");
      std::filesystem::remove(path + ".mtl");
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(different, 0);
  EXPECT_EQ(usecount(system.get()), 1);
}

TEST(Threads, SolveWithinRangesOnOneRobustHandle) {
  const Mesh mesh = openSurface(24, 21, 3).withTagged({0, 100, 503}).mapped([](Point p) {
    return Point{p.x + 4 * p.y, p.y, p.z};
  });
  const Field values = mesh.sample([](Point p) { return p.x; });
  std::atomic<int> different = 0;
  MeshSystem* raw = nullptr;
  int status = -1;
  qelmctorRobustTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                       mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &raw);
  const MeshHandle system(raw);
  const Answers expected = ask(system.get(), values);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        const MeshHandle copy = duplicate(system);
        if (ask(round % 2 == 0 ? system.get() : copy.get(), values) != expected) ++different;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(different, 0);
}

TEST(Threads, FreeTheLastCopiesAnywhere) {
  const Mesh mesh = gridMesh(20, 20).withBoundaryTagged();
  for (int round = 0; round < kRounds; ++round) {
    std::vector<MeshHandle> copies(kThreads);
    copies[0] = construct(mesh);
    for (int t = 1; t < kThreads; ++t) copies[static_cast<std::size_t>(t)] = duplicate(copies[0]);
    EXPECT_EQ(usecount(copies[0].get()), kThreads);
    std::vector<std::thread> threads;
    for (MeshHandle& copy : copies) {
      threads.emplace_back([&copy] {
        EXPECT_GE(usecount(copy.get()), 1);
        copy.reset();
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
}

TEST(Threads, ConstructAndWeldBesideEachOther) {
  const Mesh mesh = openSurface(15, 15, 1).withBoundaryTagged();
  std::atomic<int> failures = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      Mesh mine = mesh;
      std::vector<int> map(mine.tags.size());
      int vertexCount = 0, triangleCount = 0;
      qelmWeld(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
               mesh.triangles.data(), 1e-9, mine.vertices.data(), mine.triangles.data(), map.data(),
               &vertexCount, &triangleCount);
      QelmMeshReport report;
      const int code = qelmcheckTagged(vertexCount, mine.vertices.data(), triangleCount,
                                       mine.triangles.data(), mine.tags.data(), &report);
      if (vertexCount != mesh.vertexCount() || code != 0) ++failures;
      qelmcheckRobustTagged(vertexCount, mine.vertices.data(), triangleCount, mine.triangles.data(),
                            mine.tags.data(), nullptr);
      QelmPrediction prediction;
      qelmpredictTagged(vertexCount, mine.vertices.data(), triangleCount, mine.triangles.data(),
                        mine.tags.data(), 0, &prediction);
      if (prediction.factorEntries == 0) ++failures;
      if (tryConstruct(mine).status != QELM_STATUS_OK) ++failures;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace qelm::test
