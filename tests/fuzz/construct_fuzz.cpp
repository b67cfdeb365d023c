// Construction, accessors, duplication and solves of any mesh with indices in
// range, defects and non-finite coordinates included.
#include "fuzz/input.h"
#include "fuzz/require.h"
#include "qelm.h"

namespace {

using qelm::fuzz::require;

void exercise(const MeshSystem* system, const qelm::fuzz::FuzzMesh& mesh,
              qelm::fuzz::Input& input) {
  const auto n = static_cast<std::size_t>(mesh.vertexCount);
  const double* coordinates = nullptr;
  const int* indices = nullptr;
  require(qelverts(system, &coordinates) == mesh.vertexCount);
  require(qeltris(system, &indices) == mesh.vertexCount);
  for (int j = 0; j < 3 * mesh.triangleCount; ++j) {
    require(indices[j] >= 0 && indices[j] < mesh.vertexCount);
  }
  MeshSystem* copy = nullptr;
  dupl(system, &copy);
  require(usecount(system) == 2);

  std::vector<double> values = input.takeDoubles(n);
  std::vector<double> result(n);
  int status = -1;
  qelmsolveTagged(copy, values.data(), result.data(), &status);
  require(status == QELM_STATUS_OK);
  for (std::size_t i = 0; i < n; ++i) {
    const bool fixed = mesh.tags[i] >= 1 && mesh.tags[i] <= 3;
    if (fixed) require(std::memcmp(&result[i], &values[i], sizeof(double)) == 0);
  }
  qelmfree(copy);
}

/// Of either kind of system: what is predicted is just enough.
void requireTheLimitToHold(const qelm::fuzz::FuzzMesh& mesh, int robust) {
  QelmPrediction prediction = {};
  const int predicted =
      qelmpredictTagged(mesh.vertexCount, mesh.vertices.data(), mesh.triangleCount,
                        mesh.triangles.data(), mesh.tags.data(), robust, &prediction);
  for (const std::int64_t missing : {0, 1}) {
    QelmPrediction again = {};
    MeshSystem* system = nullptr;
    int status = -1;
    qelmctorLimitedTagged(mesh.vertexCount, mesh.vertices.data(), mesh.triangleCount,
                          mesh.triangles.data(), mesh.tags.data(), robust,
                          prediction.peakBytes - missing, &again, nullptr, &status, &system);
    require(status == (predicted == 0 && missing == 1 ? QELM_STATUS_TOO_LARGE : predicted));
    require(again.peakBytes == prediction.peakBytes);
    require((system != nullptr) == (status == QELM_STATUS_OK));
    qelmfree(system);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const qelm::fuzz::FuzzMesh mesh = qelm::fuzz::takeMesh(input);
  MeshSystem* system = nullptr;
  int status = -1;
  int tagged = -1;
  require(qelmctorTagged(mesh.vertexCount, mesh.vertices.data(), mesh.triangleCount,
                         mesh.triangles.data(), mesh.tags.data(), &tagged, &status, &system) == 1);
  require((system != nullptr) == (status == QELM_STATUS_OK));
  require(tagged >= 0 && tagged <= mesh.vertexCount);
  if (system != nullptr) exercise(system, mesh, input);
  qelmfree(system);
  requireTheLimitToHold(mesh, 0);
  requireTheLimitToHold(mesh, 1);
  return 0;
}
