// The check of any arrays at all, and construction and a solve of what it calls good.
#include <cmath>

#include "fuzz/input.h"
#include "fuzz/require.h"
#include "qelm.h"

namespace {

using qelm::fuzz::require;

/// Any bits at all, or mostly sensible ones.
struct Arrays {
  std::vector<double> vertices;
  std::vector<std::int32_t> triangles;
  std::vector<std::int32_t> tags;
};

Arrays takeArrays(qelm::fuzz::Input& input) {
  Arrays arrays;
  if (input.takeInt(0, 1) == 0) {
    qelm::fuzz::FuzzMesh mesh = qelm::fuzz::takeMesh(input);
    return {std::move(mesh.vertices), std::move(mesh.triangles), std::move(mesh.tags)};
  }
  const int n = input.takeInt(0, 40);
  const int m = input.takeInt(0, 60);
  for (int i = 0; i < 3 * n; ++i) arrays.vertices.push_back(input.take<double>());
  for (int j = 0; j < 3 * m; ++j) arrays.triangles.push_back(input.take<std::int32_t>());
  for (int i = 0; i < n; ++i) arrays.tags.push_back(input.take<std::int32_t>());
  return arrays;
}

void requireSolvable(const Arrays& arrays, int n, int m) {
  MeshSystem* system = nullptr;
  int status = -1;
  qelmctorTagged(n, arrays.vertices.data(), m, arrays.triangles.data(), arrays.tags.data(), nullptr,
                 &status, &system);
  require(status == QELM_STATUS_OK && system != nullptr);
  require(qelminfo(system) == 0);
  const std::vector<double> values(static_cast<std::size_t>(n), 1.0);
  std::vector<double> result(values.size());
  qelmsolveTagged(system, values.data(), result.data(), &status);
  for (const double u : result) require(std::isfinite(u));
  qelmfree(system);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const Arrays arrays = takeArrays(input);
  const int n = static_cast<int>(arrays.tags.size());
  const int m = static_cast<int>(arrays.triangles.size() / 3);
  QelmMeshReport report;
  const int code = qelmcheckTagged(n, arrays.vertices.data(), m, arrays.triangles.data(),
                                   arrays.tags.data(), &report);
  if (code == 0) requireSolvable(arrays, n, m);
  return 0;
}
