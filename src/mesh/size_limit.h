// The memory that constructing a system takes, and a limit to it.
//
// When the elimination tree is known, all arrays but the factor's are there: they are counted as
// they are, and the factor's sizes follow from the tree.
#ifndef QELM_MESH_SIZE_LIMIT_H
#define QELM_MESH_SIZE_LIMIT_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "factor/cost.h"
#include "interface/mesh_system.h"
#include "qelm.h"

namespace qelm {

/// The limit of one construction, and what was found on the way.
struct SizeLimit {
  std::int64_t mostBytes;  ///< negative: stop in any case

  std::int64_t bucketBytes = 0;  ///< see bucketBytes()
  QelmPrediction prediction = {};
  bool exceeded = false;
};

/// What the buckets of a mesh in system order take until they are merged: an entry, see
/// LowerTriangle, for each edge of each triangle that does not join prescribed vertices.
std::int64_t bucketBytes(std::int32_t taggedCount, std::span<const std::int32_t> triangles);

/// Whether a system keeps the limit, when all of it but the factor is there: it takes no more than
/// `limit.mostBytes`, and its factor has no more entries than an int can count.
bool keeps(SizeLimit& limit, const MeshSystem& system, const factor::Cost& cost);

}  // namespace qelm

#endif  // QELM_MESH_SIZE_LIMIT_H
