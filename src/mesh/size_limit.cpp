// A construction's arrays are counted as they are: when the elimination tree is known, all of them
// but the factor's are there.
#include "mesh/size_limit.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace qelm {
namespace {

std::int64_t bytesOf(const SparseBlock& block) {
  return 4 * (block.cols() + 1) + 12 * block.nonZeros();
}

/// Of coordinates, triangles and both numberings.
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

std::int64_t assemblyBytes(const VertexNumbering& numbering, const SystemTriangles& triangles) {
  const auto n = static_cast<std::int64_t>(numbering.place.size());
  const auto firstFree = triangles.higherEnds.begin() + numbering.taggedCount;
  return 28 * n + 12 * std::accumulate(firstFree, triangles.higherEnds.end(), std::int64_t{0});
}

bool keeps(SizeLimit& limit, const MeshSystem& system, const factor::Cost& cost) {
  limit.prediction = predictionOf(system, cost, limit.assemblyBytes);
  limit.exceeded = limit.prediction.peakBytes > limit.mostBytes ||
                   limit.prediction.factorEntries > std::numeric_limits<int>::max();
  return !limit.exceeded;
}

}  // namespace qelm
