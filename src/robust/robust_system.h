// From any mesh in system order to a factorised system whose fields stay within the range of their
// prescribed values.
//
// In: triangles of any shape, manifold or not. Out: rows without positive entries off the diagonal.
// Steps (Sharp and Crane, A Laplacian for nonmanifold triangle meshes, 2020):
//
//   plain rows       kept if no weight is negative and no triangle steep      robust_rows.h
//   spatial order    if a triangle is steep                                   spatial_order.h
//   double cover     half-edges on one or two sheets, bounded cotangents      double_cover.h
//   edge flips       until every edge is Delaunay                             flips.h
//   weights          summed into rows                                         robust_rows.h
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
  AssembledRows rows;       ///< the status may also be 102 or 106
  QelmRobustReport report;  ///< all 0 unless the status is 0 or 106
  /// The order of the free vertices, counted from 0, in which the rows are to be factorised. Empty
  /// for system order.
  std::vector<std::int32_t> freeOrder;
};

/// The plain rows of assembleFreeRows() if they can stay (hasNonnegativeWeights()); otherwise those
/// of the triangulation after at most `flipLimit` flips, status 106 if these are too few.
RobustRows assembleRobustRows(int taggedCount, std::span<const double> coordinates,
                              std::span<const std::int32_t> triangles, std::int64_t flipLimit);

/// assembleSystem() with robust rows and with bounds for its fields.
std::unique_ptr<MeshSystem> assembleRobustSystem(int taggedCount, int vertexCount,
                                                 std::vector<double> coordinates,
                                                 std::vector<std::int32_t> triangles,
                                                 SizeLimit* limit, int& status);

}  // namespace qelm

#endif  // QELM_ROBUST_ROBUST_SYSTEM_H
