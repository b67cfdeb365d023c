// From a renumbered mesh to a factorised system.
#ifndef QELM_MESH_ASSEMBLY_H
#define QELM_MESH_ASSEMBLY_H

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "interface/mesh_system.h"
#include "mesh/free_rows.h"
#include "mesh/numbering.h"
#include "mesh/size_limit.h"

namespace qelm {

struct AssembledRows {
  int status;            ///< 0, 23 (a triangle repeats a vertex) or 24 (a vertex in none)
  FreeRowBlocks blocks;  ///< empty unless the status is 0
};

/// Assembles the free rows of a mesh in system order: 3n coordinates, 3m indices
/// in 0 .. n-1 and their n >= 1 higher ends, see SystemTriangles. Each entry sums its triangles'
/// contributions in input order, starting from the first one. Three different vertices without area
/// are no defect: their entries are non-finite, and the factorisation meets them.
///
/// Beyond the result it needs 12 bytes for each edge and 28 for each vertex; before
/// there is room for the result, 36 for each triangle and 28 for each vertex.
AssembledRows assembleFreeRows(int taggedCount, std::span<const double> coordinates,
                               std::span<const std::int32_t> triangles,
                               std::vector<std::uint32_t> higherEnds);

/// Builds the system of a mesh that is already in system order, its first
/// `taggedCount` vertices being the prescribed ones.
///
/// coordinates: 3 * vertexCount values, packed xyz. triangles: three indices in
/// 0 .. vertexCount-1 each, and their higher ends. Both become the result's; its vertexPlace,
/// vertexOrder and tags are left empty for the caller.
///
/// status receives 0, 23 (a triangle repeats a vertex) or 24 (no triangle, or a
/// vertex in none); the result is null unless it is 0. With vertexCount 0 the
/// result is null and status is left as it was. How the factorisation ended is
/// in freeSolver->info(), not in status. `limit` may be null; with one, the status can be 107.
std::unique_ptr<MeshSystem> assembleSystem(int taggedCount, int vertexCount,
                                           std::vector<double> coordinates,
                                           SystemTriangles triangles, SizeLimit* limit,
                                           int& status);

/// The system of such a mesh from the blocks of its matrix, which are empty afterwards. With an
/// order of the free vertices, from 0, it is factorised in that order. Null if there is a limit
/// that it does not keep.
std::unique_ptr<MeshSystem> factorisedSystem(int taggedCount, std::vector<double> coordinates,
                                             std::vector<std::int32_t> triangles,
                                             FreeRowBlocks& blocks,
                                             std::span<const std::int32_t> freeOrder,
                                             SizeLimit* limit);

}  // namespace qelm

#endif  // QELM_MESH_ASSEMBLY_H
