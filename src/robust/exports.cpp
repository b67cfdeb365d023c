// The robust constructor and its check: arguments first, then the mesh.
#include <algorithm>
#include <cstddef>

#include "mesh/arguments.h"
#include "mesh/construct.h"
#include "mesh/numbering.h"
#include "qelm.h"
#include "robust/flips.h"
#include "robust/robust_system.h"

namespace {

bool areInRange(std::span<const int> triangles, int vertexCount) {
  return std::all_of(triangles.begin(), triangles.end(),
                     [=](int v) { return v >= 0 && v < vertexCount; });
}

qelm::RobustRows robustRows(std::span<const double> vertices, std::span<const int> triangles,
                            std::span<const int> tags) {
  const qelm::VertexNumbering numbering = qelm::numberVertices(tags);
  return qelm::assembleRobustRows(
      numbering.taggedCount, qelm::reorderCoordinates(vertices, numbering),
      qelm::renumberTriangles(triangles, numbering), qelm::flipLimit(triangles.size() / 3));
}

}  // namespace

extern "C" int qelmctorRobustTagged(int vertexCount, const double* vertices, int triangleCount,
                                    const int* triangles, const int* tags, int* taggedCountOut,
                                    int* status, MeshSystem** handleOut) {
  return qelm::runConstructor({vertexCount, vertices, triangleCount, triangles, tags},
                              qelm::assembleRobustSystem, nullptr, taggedCountOut, status,
                              handleOut);
}

extern "C" int qelmcheckRobustTagged(int vertexCount, const double* vertices, int triangleCount,
                                     const int* triangles, const int* tags,
                                     QelmRobustReport* reportOut) {
  QelmRobustReport report = {};
  int code = qelm::argumentStatus(vertexCount, vertices, triangleCount, triangles, tags);
  if (code == QELM_STATUS_OK) {
    const auto n = static_cast<std::size_t>(vertexCount);
    const auto m = static_cast<std::size_t>(triangleCount);
    if (areInRange({triangles, 3 * m}, vertexCount)) {
      const qelm::RobustRows robust = robustRows({vertices, 3 * n}, {triangles, 3 * m}, {tags, n});
      code = robust.rows.status;
      report = robust.report;
    } else {
      code = QELM_CHECK_INDEX_OUT_OF_RANGE;
    }
  }
  if (reportOut != nullptr) *reportOut = report;
  return code;
}
