// From a mesh in system order to a factorised system.
//
//   element_sums     the element stiffness of each triangle, several triangles side by side
//   lower_triangle   its entries, summed by row and column: a counting sort
//   free_rows        both triangles of the free rows, as compressed columns
//   src/factor       L D L^T of the free-free block
//
// The stiffness matrix of all vertices is never formed, nor is a list of triplets. Each entry sums
// its triangles in input order: that order decides the bits.
#ifndef QELM_MESH_ASSEMBLY_H
#define QELM_MESH_ASSEMBLY_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "interface/mesh_system.h"
#include "mesh/free_rows.h"
#include "mesh/lower_triangle.h"
#include "mesh/size_limit.h"

namespace qelm {

struct AssembledRows {
  int status;            ///< 0, 23 (a triangle repeats a vertex) or 24 (a vertex in none)
  FreeRowBlocks blocks;  ///< empty unless the status is 0
};

/// 23 if a triangle repeats a vertex, otherwise 24 if a vertex is in no triangle, otherwise 0.
int defectOf(std::size_t vertexCount, std::span<const std::int32_t> triangles);

/// The merged lower triangle of a mesh in system order without defect, see assembleFreeRows().
LowerTriangle sumFreeRows(int taggedCount, std::span<const double> coordinates,
                          std::span<const std::int32_t> triangles);

/// Assembles the free rows of a mesh in system order: 3n coordinates of n >= 1 vertices, 3m indices
/// in 0 .. n-1. Each entry sums its triangles' contributions in input order, starting from the
/// first one. A triangle of three different vertices without area is no defect: its entries are not
/// finite, and the factorisation meets them.
///
/// Memory beyond the result: 12 bytes for each edge and 20 for each vertex; before there is room
/// for the result, 36 for each triangle besides.
AssembledRows assembleFreeRows(int taggedCount, std::span<const double> coordinates,
                               std::span<const std::int32_t> triangles);

/// Builds the system of a mesh in system order, whose first `taggedCount` vertices are prescribed.
///
/// coordinates: 3 * vertexCount values, packed xyz. triangles: three indices in 0 .. vertexCount-1
/// each. The result takes both over; the caller fills its vertexPlace, vertexOrder and tags.
///
/// status receives 0, 23 (a triangle repeats a vertex) or 24 (no triangle, or a vertex in none);
/// the result is null unless the status is 0. With vertexCount 0 the result is null and status
/// stays as it was. How the factorisation ended is in freeSolver->info(), not in status. `limit`
/// may be null; with a limit, the status can be 107.
std::unique_ptr<MeshSystem> assembleSystem(int taggedCount, int vertexCount,
                                           std::vector<double> coordinates,
                                           std::vector<std::int32_t> triangles, SizeLimit* limit,
                                           int& status);

/// The system of such a mesh from the blocks of its matrix, which are empty afterwards. If
/// freeOrder is not empty, it orders the free vertices, from 0, for the factorisation. Null if the
/// system does not keep the limit; `limit` may be null.
std::unique_ptr<MeshSystem> factorisedSystem(int taggedCount, std::vector<double> coordinates,
                                             std::vector<std::int32_t> triangles,
                                             FreeRowBlocks& blocks,
                                             std::span<const std::int32_t> freeOrder,
                                             SizeLimit* limit);

}  // namespace qelm

#endif  // QELM_MESH_ASSEMBLY_H
