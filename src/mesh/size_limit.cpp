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

/// The merged lower triangle in the free rows, see LowerTriangle, with a number for each column
/// while it is merged or copied to columns.
std::int64_t lowerTriangleBytes(const MeshSystem& system) {
  const SparseBlock& freeFree = *system.freeFreeBlock;
  const std::int64_t entries =
      (freeFree.nonZeros() - freeFree.cols()) / 2 + system.freeFixedBlock->nonZeros();
  return 20 * system.vertexCount + 12 * entries;
}

QelmPrediction predictionOf(const MeshSystem& system, const factor::Cost& cost,
                            std::int64_t bucketBytes) {
  const std::int64_t mesh = meshBytes(system);
  const std::int64_t blocks = bytesOf(*system.freeFreeBlock) + bytesOf(*system.freeFixedBlock);
  const std::int64_t tags = 4 * system.vertexCount;
  QelmPrediction found;
  found.factorEntries = cost.entryCount;
  found.multiplications = cost.multiplicationCount;
  found.handleBytes = mesh + tags + blocks + cost.keptBytes;
  // Buckets are merged, then copied to columns, then the factor is computed.
  found.peakBytes = std::max({mesh + lowerTriangleBytes(system) + std::max(bucketBytes, blocks),
                              mesh + blocks + cost.peakBytes, found.handleBytes});
  return found;
}

}  // namespace

std::int64_t bucketBytes(std::int32_t taggedCount, std::span<const std::int32_t> triangles) {
  std::int64_t entries = 0;
  for (std::size_t j = 0; j < triangles.size(); ++j) {
    const std::size_t next = j % 3 == 2 ? j - 2 : j + 1;
    if (std::max(triangles[j], triangles[next]) >= taggedCount) ++entries;
  }
  return 12 * entries;
}

bool keeps(SizeLimit& limit, const MeshSystem& system, const factor::Cost& cost) {
  limit.prediction = predictionOf(system, cost, limit.bucketBytes);
  limit.exceeded = limit.prediction.peakBytes > limit.mostBytes ||
                   limit.prediction.factorEntries > std::numeric_limits<int>::max();
  return !limit.exceeded;
}

}  // namespace qelm
