// What constructing a system takes, and a limit to it.
#ifndef QELM_MESH_SIZE_LIMIT_H
#define QELM_MESH_SIZE_LIMIT_H

#include <cstdint>

#include "factor/cost.h"
#include "interface/mesh_system.h"
#include "mesh/numbering.h"
#include "qelm.h"

namespace qelm {

/// One construction's.
struct SizeLimit {
  std::int64_t mostBytes;  ///< negative: stop in any case

  // Written on the way:
  std::int64_t assemblyBytes = 0;  ///< the most that is held while elements are added up
  QelmPrediction prediction = {};
  bool exceeded = false;
};

/// While elements are added up, see EdgeSums: an entry for each side of a triangle that is not
/// between tagged vertices.
std::int64_t assemblyBytes(const VertexNumbering& numbering, const SystemTriangles& triangles);

/// Whether a system that has all but its factor keeps the limit: takes no more than
/// `limit.mostBytes`, and its factor has no more entries than an int can count.
bool keeps(SizeLimit& limit, const MeshSystem& system, const factor::Cost& cost);

}  // namespace qelm

#endif  // QELM_MESH_SIZE_LIMIT_H
