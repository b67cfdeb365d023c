// From a renumbered mesh, whatever its triangles look like, to a factorised system whose
// fields stay within their range.
#ifndef QELM_ROBUST_ROBUST_SYSTEM_H
#define QELM_ROBUST_ROBUST_SYSTEM_H

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "interface/mesh_system.h"
#include "mesh/assembly.h"
#include "qelm.h"

namespace qelm {

struct RobustRows {
  AssembledRows rows;       ///< status 102 and 106 as well
  QelmRobustReport report;  ///< nothing changed unless the status is 0 or 106
  /// The order of the free vertices, from 0, in which the rows are to be factorised; empty:
  /// as they are.
  std::vector<std::int32_t> freeOrder;
};

/// The rows that assembleFreeRows() gives where they are good, see isGood(); else those of
/// the triangulation after at most `flipLimit` flips, status 106 if that is too few.
RobustRows assembleRobustRows(int taggedCount, std::span<const double> coordinates,
                              std::span<const std::int32_t> triangles, std::int64_t flipLimit);

/// As assembleSystem(), with robust rows and bounds for its fields.
std::unique_ptr<MeshSystem> assembleRobustSystem(int taggedCount, int vertexCount,
                                                 std::vector<double> coordinates,
                                                 std::vector<std::int32_t> triangles,
                                                 SizeLimit* limit, int& status);

}  // namespace qelm

#endif  // QELM_ROBUST_ROBUST_SYSTEM_H
