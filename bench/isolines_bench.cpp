// Isolines and joined curves of one surface and field, beside the plain form of the
// isolines with its dense tables, and VTK's contour filter with and without joining.
//
// qelisoline() reads its tables column by column with as many rows of triangles as of
// vertices. So that it cuts the same triangles as the others, the mesh is laid out
// that way, with vertices at its end that are in no triangle.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "isolines/plain_isolines.h"
#include "qelm.h"
#include "support/contender.h"

#if defined(QELM_HAVE_VTK)
#include "peers/vtk.h"
#endif

namespace {

using qelm::bench::Case;
using qelm::bench::Run;
using qelm::bench::SystemHandle;
using qelm::test::Field;
using qelm::test::Mesh;
using Levels = std::vector<double>;

struct Work {
  Mesh mesh;
  Field field;
  MeshSystem columns;  ///< for qelisoline
  Field columnsField;
  SystemHandle system;  ///< for qelmcurvesTagged
};

MeshSystem inColumns(const Mesh& mesh) {
  const auto rows = static_cast<std::size_t>(std::max(mesh.vertexCount(), mesh.triangleCount()));
  std::vector<double> points(3 * rows);
  std::vector<std::int32_t> corners(3 * rows, 0);
  for (std::size_t k = 0; k < 3; ++k) {
    for (std::size_t i = 0; i < mesh.tags.size(); ++i) {
      points[i + k * rows] = mesh.vertices[3 * i + k];
    }
    for (std::size_t t = 0; 3 * t < mesh.triangles.size(); ++t) {
      corners[t + k * rows] = mesh.triangles[3 * t + k];
    }
  }
  MeshSystem system;
  system.vertexCount = static_cast<std::int64_t>(rows);
  system.vertices = std::make_shared<const std::vector<double>>(std::move(points));
  system.triangles = std::make_shared<const std::vector<std::int32_t>>(std::move(corners));
  return system;
}

std::shared_ptr<const Work> workOf(const Case& c) {
  return qelm::bench::sharedBetweenContenders<Work>(c, [](const Case& which) {
    Work work;
    // With every vertex tagged there is nothing to factorise.
    work.mesh = makeMesh(which).withEveryVertexTagged();
    work.field = qelm::bench::waves(work.mesh);
    work.columns = inColumns(work.mesh);
    work.columnsField = work.field;
    work.columnsField.resize(static_cast<std::size_t>(work.columns.vertexCount), 0.0);
    work.system = qelm::bench::construct(work.mesh);
    return work;
  });
}

/// One level through the middle; the others are beyond the field.
Levels oneOf(const Field& field, int count) {
  Levels levels = qelm::bench::spreadLevels(field, 1);
  for (int j = 1; j < count; ++j) levels.push_back(1000 + j);
  return levels;
}

Run isolines(std::shared_ptr<const Work> work, Levels levels) {
  return [work = std::move(work), levels = std::move(levels)] {
    IsoPointMatrix* points = nullptr;
    IsoEdgeMatrix* edges = nullptr;
    qelisoline(&work->columns, work->columnsField.data(), static_cast<int>(levels.size()),
               levels.data(), &points, &edges);
    const auto segments = static_cast<std::size_t>(edges->rows);
    qelfreeisoline(points, edges);
    return segments;
  };
}

Run curves(std::shared_ptr<const Work> work, Levels levels) {
  return [work = std::move(work), levels = std::move(levels)] {
    QelmCurves* curves = nullptr;
    int status = 0;
    qelmcurvesTagged(work->system.get(), work->field.data(), static_cast<int>(levels.size()),
                     levels.data(), &curves, &status);
    const auto points = static_cast<std::size_t>(curves->pointCount);
    qelmfreecurves(curves);
    return points;
  };
}

Run plain(std::shared_ptr<const Work> work, Levels levels) {
  return [work = std::move(work), levels = std::move(levels)] {
    return qelm::test::plainIsolines(work->columns, work->columnsField, levels).edges.size() / 2;
  };
}

#if defined(QELM_HAVE_VTK)
Run vtk(std::shared_ptr<const Work> work, Levels levels,
        std::size_t (*cut)(vtkPolyData&, const Levels&)) {
  return [mesh = qelm::bench::vtkMesh(work->mesh, work->field), levels = std::move(levels), cut] {
    return cut(*mesh, levels);
  };
}
#endif

void addSpread(const char* stage, int count, int largestPlain, [[maybe_unused]] int largestPeer) {
  using qelm::bench::addContender;
  const auto add = [=](const char* contender, Run (*run)(std::shared_ptr<const Work>, Levels),
                       int largest) {
    addContender(
        stage, contender,
        [=](const Case& c) {
          const auto work = workOf(c);
          return run(work, qelm::bench::spreadLevels(work->field, count));
        },
        qelm::bench::upTo(largest));
  };
  add("isolines", isolines, 3'000'000);
  add("curves", curves, 3'000'000);
  add("plain", plain, largestPlain);
#if defined(QELM_HAVE_VTK)
  add(
      "vtk", [](auto work, auto levels) { return vtk(work, levels, qelm::bench::vtkContours); },
      largestPeer);
  add(
      "vtk_joined",
      [](auto work, auto levels) { return vtk(work, levels, qelm::bench::vtkJoinedContours); },
      largestPeer);
#endif
}

void addFew(const char* contender, int count) {
  qelm::bench::addContender("levels_few", contender, [=](const Case& c) {
    const auto work = workOf(c);
    return isolines(work, oneOf(work->field, count));
  });
}

}  // namespace

int main(int argumentCount, char** arguments) {
  addSpread("levels_1", 1, 3'000'000, 1'000'000);
  addSpread("levels_10", 10, 1'000'000, 1'000'000);
  addSpread("levels_100", 100, 1'000'000, 1'000'000);
  addFew("isolines_1", 1);
  addFew("isolines_100", 100);
  return qelm::bench::runContenders(argumentCount, arguments);
}
