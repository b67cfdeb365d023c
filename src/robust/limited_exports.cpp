// Construction within a limit, and what it would take: of both kinds, so here, where both are
// known.
#include <algorithm>
#include <cstddef>

#include "mesh/arguments.h"
#include "mesh/construct.h"
#include "mesh/size_limit.h"
#include "qelm.h"
#include "robust/robust_system.h"

namespace {

qelm::AssembleSystem assembleOf(int robust) {
  return robust != 0 ? qelm::assembleRobustSystem : qelm::assembleSystem;
}

bool areInRange(const qelm::ConstructorArguments& mesh) {
  const auto count = 3 * static_cast<std::size_t>(mesh.triangleCount);
  return std::all_of(mesh.triangles, mesh.triangles + count,
                     [&](int v) { return v >= 0 && v < mesh.vertexCount; });
}

}  // namespace

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
  const qelm::ConstructorArguments mesh = {vertexCount, vertices, triangleCount, triangles, tags};
  qelm::SizeLimit limit{-1};
  int status = qelm::argumentStatus(vertexCount, vertices, triangleCount, triangles, tags);
  if (status == QELM_STATUS_OK) {
    if (areInRange(mesh)) {
      MeshSystem* none = nullptr;
      qelm::runConstructor(mesh, assembleOf(robust), &limit, nullptr, &status, &none);
      if (status == QELM_STATUS_TOO_LARGE) status = QELM_STATUS_OK;
    } else {
      status = QELM_CHECK_INDEX_OUT_OF_RANGE;
    }
  }
  if (predictionOut != nullptr) *predictionOut = limit.prediction;
  return status;
}
