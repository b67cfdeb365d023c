// The check export: it checks the arguments, then the mesh.
#include <cstddef>

#include "interface/index.h"
#include "mesh/arguments.h"
#include "mesh/check/check.h"
#include "qelm.h"

extern "C" int qelmcheckTagged(int vertexCount, const double* vertices, int triangleCount,
                               const int* triangles, const int* tags, QelmMeshReport* reportOut) {
  QelmMeshReport report = qelm::emptyReport();
  int code = qelm::argumentStatus(vertexCount, vertices, triangleCount, triangles, tags);
  if (code == QELM_STATUS_OK) {
    const auto n = qelm::asIndex(vertexCount);
    const auto m = qelm::asIndex(triangleCount);
    report = qelm::checkMesh({{vertices, 3 * n}, {triangles, 3 * m}, {tags, n}});
    code = qelm::firstDefect(report);
  }
  if (reportOut != nullptr) *reportOut = report;
  return code;
}
