// Level curves of any mesh whose indices are in range, of any field: the arrays of the record fit
// together, points are finite where coordinates are, and every curve has two points, or three if it
// is closed.
#include <cmath>
#include <cstdint>
#include <vector>

#include "fuzz/input.h"
#include "fuzz/require.h"
#include "qelm.h"

namespace {

using qelm::fuzz::require;

bool allFinite(const std::vector<double>& numbers) {
  for (const double x : numbers) {
    if (!std::isfinite(x)) return false;
  }
  return true;
}

bool samePoint(const double* p, const double* q) {
  return p[0] == q[0] && p[1] == q[1] && p[2] == q[2];
}

void requireCurve(const QelmCurves& curves, std::int64_t c, int levelCount) {
  const std::int64_t first = curves.starts[c];
  const std::int64_t count = curves.starts[c + 1] - first;
  const bool closed = curves.closed[c] == 1;
  require(closed || curves.closed[c] == 0);
  require(count >= (closed ? 3 : 2));
  require(curves.levels[c] >= (c == 0 ? 0 : curves.levels[c - 1]) && curves.levels[c] < levelCount);
  const double* points = curves.points + 3 * first;
  for (std::int64_t i = closed ? 0 : 1; i < count; ++i) {
    require(!samePoint(points + 3 * i, points + 3 * (i == 0 ? count - 1 : i - 1)));
  }
}

void requireCurves(const QelmCurves& curves, int levelCount, bool finitePoints) {
  if (curves.curveCount == 0) {
    require(curves.pointCount == 0 && curves.points == nullptr && curves.starts == nullptr);
    return;
  }
  require(curves.starts[0] == 0 && curves.starts[curves.curveCount] == curves.pointCount);
  for (std::int64_t c = 0; c < curves.curveCount; ++c) requireCurve(curves, c, levelCount);
  for (std::int64_t i = 0; finitePoints && i < 3 * curves.pointCount; ++i) {
    require(std::isfinite(curves.points[i]));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const int levelCount = input.takeInt(0, 12);
  const std::vector<double> levels = input.takeDoubles(static_cast<std::size_t>(levelCount));
  const qelm::fuzz::FuzzMesh mesh = qelm::fuzz::takeMesh(input);
  const std::vector<double> field = input.takeDoubles(static_cast<std::size_t>(mesh.vertexCount));
  MeshSystem* system = nullptr;
  int status = 0;
  qelmctorTagged(mesh.vertexCount, mesh.vertices.data(), mesh.triangleCount, mesh.triangles.data(),
                 mesh.tags.data(), nullptr, &status, &system);
  if (status != QELM_STATUS_OK) return 0;

  QelmCurves* curves = nullptr;
  qelmcurvesTagged(system, field.data(), levelCount, levels.data(), &curves, &status);
  require(status == QELM_STATUS_OK && curves != nullptr);
  requireCurves(*curves, levelCount, allFinite(mesh.vertices));
  qelmfreecurves(curves);
  qelmfree(system);
  return 0;
}
