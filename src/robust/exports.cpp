// The exports that know both constructions, plain and robust: the robust constructor and its check,
// construction within a limit and its prediction. Arguments are checked first, then the mesh.
#include <algorithm>
#include <cstddef>
#include <span>

#include "interface/index.h"
#include "mesh/arguments.h"
#include "mesh/construct.h"
#include "mesh/numbering.h"
#include "mesh/size_limit.h"
#include "qelm.h"
#include "robust/flips.h"
#include "robust/robust_system.h"

namespace {

using qelm::ConstructorArguments;

bool areInRange(const ConstructorArguments& mesh) {
  const std::span<const int> corners(mesh.triangles, 3 * qelm::asIndex(mesh.triangleCount));
  return std::all_of(corners.begin(), corners.end(),
                     [&](int v) { return v >= 0 && v < mesh.vertexCount; });
}

/// The status that checks and predictions give for the arguments and, if these are good, the
/// indices.
int indexStatus(const ConstructorArguments& mesh) {
  const int status = qelm::argumentStatus(mesh.vertexCount, mesh.vertices, mesh.triangleCount,
                                          mesh.triangles, mesh.tags);
  if (status != QELM_STATUS_OK) return status;
  if (!areInRange(mesh)) return QELM_CHECK_INDEX_OUT_OF_RANGE;
  return QELM_STATUS_OK;
}

qelm::AssembleSystem assembleOf(int robust) {
  return robust != 0 ? qelm::assembleRobustSystem : qelm::assembleSystem;
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
  int status = indexStatus({vertexCount, vertices, triangleCount, triangles, tags});
  if (status == QELM_STATUS_OK) {
    const std::size_t n = qelm::asIndex(vertexCount);
    const std::size_t m = qelm::asIndex(triangleCount);
    const qelm::RobustRows robust = robustRows({vertices, 3 * n}, {triangles, 3 * m}, {tags, n});
    status = robust.rows.status;
    report = robust.report;
  }
  if (reportOut != nullptr) *reportOut = report;
  return status;
}

extern "C" int qelmctorLimitedTagged(int vertexCount, const double* vertices, int triangleCount,
                                     const int* triangles, const int* tags, int robust,
                                     int64_t mostBytes, QelmPrediction* predictionOut,
                                     int* taggedCountOut, int* status, MeshSystem** handleOut) {
  qelm::SizeLimit limit{std::max(mostBytes, int64_t{0})};
  qelm::runConstructor({vertexCount, vertices, triangleCount, triangles, tags}, assembleOf(robust),
                       &limit, taggedCountOut, status, handleOut);
  if (predictionOut != nullptr) *predictionOut = limit.prediction;
  return 1;
}

// A construction that stops where the prediction is made.
extern "C" int qelmpredictTagged(int vertexCount, const double* vertices, int triangleCount,
                                 const int* triangles, const int* tags, int robust,
                                 QelmPrediction* predictionOut) {
  const ConstructorArguments mesh = {vertexCount, vertices, triangleCount, triangles, tags};
  qelm::SizeLimit limit{-1};
  int status = indexStatus(mesh);
  if (status == QELM_STATUS_OK) {
    MeshSystem* none = nullptr;
    qelm::runConstructor(mesh, assembleOf(robust), &limit, nullptr, &status, &none);
    if (status == QELM_STATUS_TOO_LARGE) status = QELM_STATUS_OK;
  }
  if (predictionOut != nullptr) *predictionOut = limit.prediction;
  return status;
}
