// Every allocation of every export fails in turn: std::bad_alloc leaves the
// call, nothing leaks, and no out-parameter holds a half-built object.
#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "factor/solver.h"
#include "interface/mesh_system.h"
#include "qelm.h"
#include "support/failing_heap.h"
#include "support/handle.h"
#include "support/meshes.h"

namespace qelm::test {
namespace {

// Far above what any call below needs; stops a sweep that would never end.
constexpr long kTooManyAllocations = 10000;

/// The C++ runtime sets up its own storage with the first exception, and the lock
/// of its reserve for exceptions with the first one that finds no memory. Both are
/// kept; done here, no sweep meets them.
void setUpExceptions() {
  for (const long failAt : {0L, 1L}) {
    FailingHeap heap(failAt, HeapFailure::once);
    try {
      throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
    }
  }
}

/// Runs call() with its 1st, 2nd, ... allocation failing, until one run needs no
/// more. After each failure `check` looks at what the call left behind, and no
/// block may be left over.
template <class Call, class Check>
void sweep(Call call, Check check) {
  setUpExceptions();
  for (const HeapFailure failure : {HeapFailure::once, HeapFailure::forever}) {
    long failAt = 1;
    for (; failAt < kTooManyAllocations; ++failAt) {
      bool threw = false;
      bool failed = false;
      long live = 0;
      {
        FailingHeap heap(failAt, failure);
        try {
          call();
        } catch (const std::bad_alloc&) {
          threw = true;
        }
        live = heap.live();
        failed = heap.failed();
      }
      if (!failed) break;
      ASSERT_TRUE(threw) << "allocation " << failAt << " failed without an exception";
      ASSERT_EQ(live, 0) << "leaked after allocation " << failAt << " failed";
      check();
    }
    EXPECT_GT(failAt, 1) << "the call allocated nothing";
    EXPECT_LT(failAt, kTooManyAllocations);
  }
}

TEST(FailingHeapItself, SeesLeaks) {
  FailingHeap heap(0, HeapFailure::once);
  int* leaked = new int(1);
  EXPECT_EQ(heap.live(), 1);
  EXPECT_EQ(heap.allocations(), 1);
  delete leaked;
  EXPECT_EQ(heap.live(), 0);
}

void sweepConstruction(const Mesh& mesh, decltype(qelmctorTagged)& constructor = qelmctorTagged) {
  MeshSystem* handle = nullptr;
  int status = Construction::kUnwritten;
  int taggedCount = Construction::kUnwritten;
  sweep(
      [&] {
        handle = reinterpret_cast<MeshSystem*>(&status);
        status = taggedCount = Construction::kUnwritten;
        constructor(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                    mesh.triangles.data(), mesh.tags.data(), &taggedCount, &status, &handle);
        qelmfree(handle);
      },
      [&] {
        EXPECT_EQ(handle, nullptr);
        EXPECT_EQ(taggedCount, 0);
      });
}

TEST(AllocationFailure, DuringConstructionLeavesNothingBehind) {
  sweepConstruction(gridMesh(5, 4).withBoundaryTagged());
}

TEST(AllocationFailure, DuringConstructionOfALargerMeshLeavesNothingBehind) {
  // Larger than what Eigen keeps on the stack for scratch arrays.
  sweepConstruction(openSurface(130, 130, 1).withBoundaryTagged());
}

TEST(AllocationFailure, DuringConstructionWithNoFreeVertexLeavesNothingBehind) {
  sweepConstruction(gridMesh(4, 4).withEveryVertexTagged());
}

/// Obtuse triangles, or slivers, which are numbered anew, and an edge of three.
Mesh meshToMend(double height) {
  Mesh mesh = openSurface(9, 8, 1).withTagged({0, 40}).mapped([&](Point p) {
    return Point{p.x + 5 * p.y, height * p.y, p.z * height};
  });
  mesh.triangles.insert(mesh.triangles.end(), {0, 1, 30});
  return mesh;
}

TEST(AllocationFailure, DuringRobustConstructionLeavesNothingBehind) {
  sweepConstruction(gridMesh(5, 4).withBoundaryTagged(), qelmctorRobustTagged);
  sweepConstruction(meshToMend(1), qelmctorRobustTagged);
  sweepConstruction(meshToMend(1e-5), qelmctorRobustTagged);
}

TEST(AllocationFailure, DuringARobustCheckLeavesTheReportAlone) {
  const Mesh mesh = meshToMend(1);
  QelmRobustReport report = {};
  sweep(
      [&] {
        report.flips = Construction::kUnwritten;
        qelmcheckRobustTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                              mesh.triangles.data(), mesh.tags.data(), &report);
      },
      [&] { EXPECT_EQ(report.flips, Construction::kUnwritten); });
  EXPECT_GT(report.flips, 0) << "the last run of the sweep succeeds";
}

TEST(AllocationFailure, DuringAPredictionLeavesItAlone) {
  const Mesh mesh = openSurface(24, 24, 1).withBoundaryTagged();
  QelmPrediction prediction = {};
  sweep(
      [&] {
        prediction.factorEntries = Construction::kUnwritten;
        qelmpredictTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                          mesh.triangles.data(), mesh.tags.data(), 0, &prediction);
      },
      [&] { EXPECT_EQ(prediction.factorEntries, Construction::kUnwritten); });
  EXPECT_GT(prediction.factorEntries, 0) << "the last run of the sweep succeeds";
}

TEST(AllocationFailure, DuringASolveWithinARangeLeavesTheResultAlone) {
  const Mesh mesh = meshToMend(1);
  MeshSystem* raw = nullptr;
  int status = Construction::kUnwritten;
  qelmctorRobustTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                       mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &raw);
  const MeshHandle system(raw);
  const Field values = mesh.sample([](Point p) { return p.x; });
  const Field untouched(values.size(), -777.0);
  Field result = untouched;
  sweep(
      [&] {
        result = untouched;
        status = Construction::kUnwritten;
        qelmsolveTagged(system.get(), values.data(), result.data(), &status);
      },
      [&] {
        EXPECT_EQ(result, untouched);
        EXPECT_EQ(status, Construction::kUnwritten);
      });
  EXPECT_EQ(status, 0) << "the last run of the sweep succeeds";
}

TEST(AllocationFailure, DuringAFactorisationInBlocksLeavesNothingBehind) {
  const MeshHandle system = construct(openSurface(24, 24, 1).withBoundaryTagged());
  const factor::Method inBlocks = {factor::panelKernels().front(), 0, 20};
  sweep([&] { const factor::Solver solver(*system->freeFreeBlock, inBlocks); }, [] {});
}

TEST(AllocationFailure, DuringADuplicationLeavesTheOutParameterAlone) {
  const MeshHandle system = construct(gridMesh(5, 4).withBoundaryTagged());
  MeshSystem* copy = nullptr;
  sweep(
      [&] {
        copy = nullptr;
        dupl(system.get(), &copy);
        qelmfree(copy);
      },
      [&] {
        EXPECT_EQ(copy, nullptr);
        EXPECT_EQ(usecount(system.get()), 1);
      });
}

TEST(AllocationFailure, DuringASolveLeavesTheResultAlone) {
  const Mesh mesh = gridMesh(6, 5).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field values = mesh.sample([](Point p) { return p.x - p.y; });
  const Field untouched(values.size(), -777.0);
  Field result = untouched;
  int status = Construction::kUnwritten;
  sweep(
      [&] {
        result = untouched;
        status = Construction::kUnwritten;
        qelmsolveTagged(system.get(), values.data(), result.data(), &status);
      },
      [&] {
        EXPECT_EQ(result, untouched);
        EXPECT_EQ(status, Construction::kUnwritten);
      });
  EXPECT_EQ(status, 0) << "the last run of the sweep succeeds";
}

TEST(AllocationFailure, DuringASolveWithLoadLeavesTheResultAlone) {
  const Mesh mesh = gridMesh(6, 5).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field values = mesh.sample([](Point p) { return p.x - p.y; });
  const Field untouched(values.size(), -777.0);
  Field result = untouched;
  int status = Construction::kUnwritten;
  sweep(
      [&] {
        result = untouched;
        status = Construction::kUnwritten;
        qelmsolvePTagged(system.get(), values.data(), values.data(), result.data(), &status);
      },
      [&] {
        EXPECT_EQ(result, untouched);
        EXPECT_EQ(status, Construction::kUnwritten);
      });
}

TEST(AllocationFailure, DuringManySolvesLeavesTheResultsAlone) {
  const Mesh mesh = gridMesh(6, 5).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field values(7 * mesh.tags.size(), 1.5);
  const Field untouched(values.size(), -777.0);
  Field results = untouched;
  int status = Construction::kUnwritten;
  sweep(
      [&] {
        results = untouched;
        status = Construction::kUnwritten;
        qelmsolveManyTagged(system.get(), 7, values.data(), values.data(), results.data(), &status);
      },
      [&] {
        EXPECT_EQ(results, untouched);
        EXPECT_EQ(status, Construction::kUnwritten);
      });
  EXPECT_EQ(status, 0) << "the last run of the sweep succeeds";
}

TEST(AllocationFailure, DuringACheckedSolveLeavesEveryResultAlone) {
  const Mesh mesh = gridMesh(6, 5).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  const Field values(7 * mesh.tags.size(), 1.5);
  const Field untouched(values.size(), -777.0);
  Field results = untouched;
  std::int64_t first = -777;
  int status = Construction::kUnwritten;
  sweep(
      [&] {
        results = untouched;
        first = -777;
        status = Construction::kUnwritten;
        qelmsolveCheckedTagged(system.get(), 7, values.data(), values.data(), results.data(),
                               &first, &status);
      },
      [&] {
        EXPECT_EQ(results, untouched);
        EXPECT_EQ(first, -777);
        EXPECT_EQ(status, Construction::kUnwritten);
      });
  EXPECT_EQ(status, 0) << "the last run of the sweep succeeds";
}

TEST(AllocationFailure, DuringACheckLeavesTheReportAlone) {
  const Mesh mesh = openSurface(30, 30, 1).withBoundaryTagged();
  QelmMeshReport report = {};
  int code = Construction::kUnwritten;
  sweep(
      [&] {
        report.part.count = code = Construction::kUnwritten;
        code = qelmcheckTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                               mesh.triangles.data(), mesh.tags.data(), &report);
      },
      [&] {
        EXPECT_EQ(report.part.count, Construction::kUnwritten);
        EXPECT_EQ(code, Construction::kUnwritten);
      });
  EXPECT_EQ(code, 0) << "the last run of the sweep succeeds";
  EXPECT_EQ(report.part.count, 1);
}

TEST(AllocationFailure, DuringAnIsolinePassLeavesTheOutParametersAlone) {
  const MeshHandle system = construct(torusMesh(9, 7).withTagged({0}));
  const Field field = gridMesh(9, 7).sample([](Point p) { return p.x + p.y; });
  const double levels[] = {0.9, 0.3, 1.2};
  IsoPointMatrix* points = nullptr;
  IsoEdgeMatrix* edges = nullptr;
  sweep(
      [&] {
        points = nullptr;
        edges = nullptr;
        qelisoline(system.get(), field.data(), 3, levels, &points, &edges);
        qelfreeisoline(points, edges);
      },
      [&] {
        EXPECT_EQ(points, nullptr);
        EXPECT_EQ(edges, nullptr);
      });
}

TEST(AllocationFailure, DuringAHeatMapLeaksNothing) {
  const MeshHandle system = construct(torusMesh(9, 7).withTagged({0}));
  const Field field = gridMesh(9, 7).sample([](Point p) { return p.x + p.y; });
  const std::string path =
      (std::filesystem::temp_directory_path() / "qelm-heat-map-without-memory").string();
  sweep([&] { wobj(system.get(), field.data(), path.c_str()); }, [] {});
  EXPECT_GT(std::filesystem::file_size(path + ".mtl"), 100U) << "the last run succeeds";
  std::filesystem::remove(path + ".obj");
  std::filesystem::remove(path + ".mtl");
}

TEST(AllocationFailure, DuringAWeldLeaksNothingAndLeavesTheCountsAtZero) {
  const Mesh soup = asSoup(torusMesh(9, 7));
  std::vector<double> vertices(soup.vertices.size());
  std::vector<int> triangles(soup.triangles.size()), map(soup.tags.size());
  int vertexCount = -1;
  int triangleCount = -1;
  sweep(
      [&] {
        vertexCount = triangleCount = -1;
        qelmWeld(soup.vertexCount(), soup.vertices.data(), soup.triangleCount(),
                 soup.triangles.data(), 0.01, vertices.data(), triangles.data(), map.data(),
                 &vertexCount, &triangleCount);
      },
      [&] {
        EXPECT_EQ(vertexCount, 0);
        EXPECT_EQ(triangleCount, 0);
      });
  EXPECT_EQ(vertexCount, 63);
}

TEST(AllocationFailure, DuringACutLeavesNothingBehind) {
  // Steps with ridges, plateaus and passes at the levels: every table is needed.
  const Mesh mesh = gridMesh(12, 11).withBoundaryTagged();
  const MeshHandle system = construct(mesh);
  Field field;
  for (int i = 0; i < mesh.vertexCount(); ++i) field.push_back(i * i % 7 % 4);
  const std::vector<double> levels = {2, 1, 0.5, 1.5};
  QelmCurves* curves = nullptr;
  int status = Construction::kUnwritten;
  sweep(
      [&] {
        curves = reinterpret_cast<QelmCurves*>(&status);
        status = Construction::kUnwritten;
        qelmcurvesTagged(system.get(), field.data(), static_cast<int>(levels.size()), levels.data(),
                         &curves, &status);
        EXPECT_GT(curves->curveCount, 20);
        qelmfreecurves(curves);
      },
      [&] {
        EXPECT_EQ(curves, nullptr);
        EXPECT_EQ(status, Construction::kUnwritten);
      });
}

TEST(AllocationFailure, AccessorsAndReleaseAllocateNothing) {
  MeshHandle system = construct(gridMesh(4, 4).withBoundaryTagged());
  const double* coordinates = nullptr;
  const int* indices = nullptr;
  FailingHeap heap(1, HeapFailure::forever);
  EXPECT_EQ(qelverts(system.get(), &coordinates), 16);
  EXPECT_EQ(qeltris(system.get(), &indices), 16);
  EXPECT_EQ(qelminfo(system.get()), 0);
  EXPECT_EQ(usecount(system.get()), 1);
  EXPECT_NE(qelmversion(), nullptr);
  EXPECT_NE(qelmstatustext(23), nullptr);
  system.reset();
  EXPECT_EQ(heap.allocations(), 0);
}

}  // namespace
}  // namespace qelm::test
