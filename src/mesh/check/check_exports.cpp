// The check export: arguments first, then the mesh.
#include <cstddef>

#include "mesh/arguments.h"
#include "mesh/check/check.h"
#include "qelm.h"

extern "C" int qelmcheckTagged(int vertexCount, const double* vertices, int triangleCount,
                               const int* triangles, const int* tags, QelmMeshReport* reportOut) {
  QelmMeshReport report = qelm::emptyReport();
  int code = qelm::argumentStatus(vertexCount, vertices, triangleCount, triangles, tags);
  if (code == QELM_STATUS_OK) {
    const auto n = static_cast<std::size_t>(vertexCount);
    const auto m = static_cast<std::size_t>(triangleCount);
    report = qelm::checkMesh({{vertices, 3 * n}, {triangles, 3 * m}, {tags, n}});
    code = qelm::firstDefect(report);
  }
  if (reportOut != nullptr) *reportOut = report;
  return code;
}
