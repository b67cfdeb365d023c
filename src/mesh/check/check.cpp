#include "mesh/check/check.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "interface/index.h"
#include "mesh/numbering.h"

namespace qelm {

bool MeshView::isSound(std::size_t triangle) const {
  const auto c = corners(triangle);
  return inRange(c[0]) && inRange(c[1]) && inRange(c[2]) && c[0] != c[1] && c[1] != c[2] &&
         c[0] != c[2];
}

bool MeshView::isFinite(std::size_t vertex) const {
  const auto point = vertices.subspan(3 * vertex, 3);
  return std::all_of(point.begin(), point.end(), [](double c) { return std::isfinite(c); });
}

QelmMeshReport emptyReport() {
  constexpr QelmFinding kNone = {0, -1};
  QelmMeshReport report = {};
  for (QelmFinding* finding :
       {&report.indexOutOfRange, &report.repeatedVertex, &report.unusedVertex, &report.notFinite,
        &report.nearZeroArea, &report.sizeOutOfRange, &report.untaggedPart, &report.part,
        &report.taggedVertex, &report.crowdedEdge, &report.boundaryLoop, &report.opposedEdge,
        &report.repeatedTriangle, &report.coincidentVertex}) {
    *finding = kNone;
  }
  report.worstTriangle = -1;
  report.worstQuality = std::numeric_limits<double>::infinity();
  return report;
}

void note(QelmFinding& finding, std::size_t index) {
  const auto i = static_cast<std::int64_t>(index);
  finding.first = finding.count == 0 ? i : std::min(finding.first, i);
  ++finding.count;
}

// A vertex counts as used when any triangle names it, whatever else is wrong with that triangle: so
// a triangle's defect is not reported once more as an unused vertex.
void checkIndices(const MeshView& mesh, QelmMeshReport& report) {
  std::vector<bool> used(mesh.vertexCount(), false);
  for (std::size_t j = 0; j < mesh.triangleCount(); ++j) {
    const auto c = mesh.corners(j);
    bool allInRange = true;
    for (const std::int32_t v : c) {
      if (mesh.inRange(v)) {
        used[asIndex(v)] = true;
      } else {
        allInRange = false;
      }
    }
    if (!allInRange) {
      note(report.indexOutOfRange, j);
    } else if (!mesh.isSound(j)) {
      note(report.repeatedVertex, j);
    }
  }
  for (std::size_t i = 0; i < used.size(); ++i) {
    if (!used[i]) note(report.unusedVertex, i);
    if (isPrescribed(mesh.tags[i])) note(report.taggedVertex, i);
  }
}

QelmMeshReport checkMesh(const MeshView& mesh) {
  QelmMeshReport report = emptyReport();
  checkIndices(mesh, report);
  checkGeometry(mesh, report);
  checkParts(mesh, report);
  checkEdges(mesh, report);
  checkRepeats(mesh, report);
  return report;
}

// The constructor's own statuses keep their order. An index out of range comes
// before them: with one, the constructor may not be called at all.
int firstDefect(const QelmMeshReport& report) {
  if (report.indexOutOfRange.count > 0) return QELM_CHECK_INDEX_OUT_OF_RANGE;
  if (report.repeatedVertex.count > 0) return QELM_STATUS_REPEATED_VERTEX;
  if (report.unusedVertex.count > 0) return QELM_STATUS_UNUSED_VERTEX;
  if (report.notFinite.count > 0) return QELM_CHECK_NOT_FINITE;
  if (report.nearZeroArea.count > 0) return QELM_CHECK_NEAR_ZERO_AREA;
  if (report.sizeOutOfRange.count > 0) return QELM_CHECK_SIZE_OUT_OF_RANGE;
  if (report.untaggedPart.count > 0) return QELM_CHECK_UNTAGGED_PART;
  return QELM_STATUS_OK;
}

}  // namespace qelm
