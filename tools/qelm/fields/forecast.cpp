#include "fields/forecast.h"

#include <fmt/format.h>

#include <cstdint>
#include <limits>

#include "mesh/used_part.h"
#include "text/error.h"

namespace qelm::tool {
namespace {

// The factor of a mesh with fewer vertices takes some seconds at most, whatever the mesh is.
constexpr int kSmall = 10'000;
// Measured: 3 to 9 thousand million, more for denser factors.
constexpr double kMultiplicationsPerSecond = 5e9;

constexpr double kLong = 10;

std::string describeDuration(double seconds) {
  if (seconds < 100) return fmt::format("{:.0f} seconds", seconds);
  if (seconds < 100 * 60) return fmt::format("{:.0f} minutes", seconds / 60);
  return fmt::format("{:.0f} hours", seconds / 3600);
}

std::string describeCount(std::int64_t count) {
  return count < 10'000'000 ? fmt::format("{}", count)
                            : fmt::format("{:.0f} M", static_cast<double>(count) * 1e-6);
}

}  // namespace

std::optional<QelmPrediction> forecast(const Mesh& mesh, std::span<const int> tags, bool robust) {
  if (mesh.vertexCount() < kSmall) return {};
  const UsedPart part = usedPart(mesh);
  QelmPrediction prediction = {};
  const int status = qelmpredictTagged(part.mesh.vertexCount(), part.mesh.vertices.data(),
                                       part.mesh.triangleCount(), part.mesh.triangles.data(),
                                       part.of(tags).data(), robust, &prediction);
  if (status != QELM_STATUS_OK) return {};  // the constructor says why
  if (prediction.factorEntries > std::numeric_limits<std::int32_t>::max())
    throw InputError(
        fmt::format("the factor of this mesh would need {} entries, more than the library can "
                    "index; its triangles join vertices that lie far apart: fix more vertices, or "
                    "divide the mesh",
                    prediction.factorEntries));
  return prediction;
}

double secondsOf(const QelmPrediction& prediction) {
  return prediction.multiplications / kMultiplicationsPerSecond;
}

std::optional<std::string> describeWait(const QelmPrediction& prediction) {
  const double seconds = secondsOf(prediction);
  if (seconds <= kLong) return {};
  return fmt::format("about {}: the factor has {} entries", describeDuration(seconds),
                     describeCount(prediction.factorEntries));
}

}  // namespace qelm::tool
