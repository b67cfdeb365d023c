#include "mesh/size_limit.h"

#include <algorithm>
#include <limits>

namespace qelm {
namespace {

std::int64_t bytesOf(const SparseBlock& block) {
  return 4 * (block.cols() + 1) + 12 * block.nonZeros();
}

/// Coordinates, triangles and both permutations.
std::int64_t meshBytes(const MeshSystem& system) {
  return (24 + 8) * system.vertexCount + 4 * std::ssize(*system.triangles);
}

QelmPrediction predictionOf(const MeshSystem& system, const factor::Cost& cost,
                            std::int64_t assemblyBytes) {
  const std::int64_t mesh = meshBytes(system);
  const std::int64_t blocks = bytesOf(*system.freeFreeBlock) + bytesOf(*system.freeFixedBlock);
  const std::int64_t tags = 4 * system.vertexCount;
  QelmPrediction found;
  found.factorEntries = cost.entryCount;
  found.multiplications = cost.multiplicationCount;
  found.handleBytes = mesh + tags + blocks + cost.keptBytes;
  found.peakBytes =
      std::max({mesh + assemblyBytes, mesh + blocks + cost.peakBytes, found.handleBytes});
  return found;
}

}  // namespace

std::int64_t assemblyBytes(std::int32_t taggedCount, std::size_t vertexCount,
                           std::span<const std::int32_t> triangles) {
  std::int64_t entries = 0;
  for (std::size_t j = 0; j < triangles.size(); ++j) {
    const std::size_t next = j % 3 == 2 ? j - 2 : j + 1;
    if (std::max(triangles[j], triangles[next]) >= taggedCount) ++entries;
  }
  return 28 * static_cast<std::int64_t>(vertexCount) + 12 * entries;
}

bool keeps(SizeLimit& limit, const MeshSystem& system, const factor::Cost& cost) {
  limit.prediction = predictionOf(system, cost, limit.assemblyBytes);
  limit.exceeded = limit.prediction.peakBytes > limit.mostBytes ||
                   limit.prediction.factorEntries > std::numeric_limits<int>::max();
  return !limit.exceeded;
}

}  // namespace qelm
