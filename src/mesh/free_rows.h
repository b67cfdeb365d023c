// The free rows of the stiffness matrix as Eigen's blocks.
#ifndef QELM_MESH_FREE_ROWS_H
#define QELM_MESH_FREE_ROWS_H

#include <cstdint>

#include "interface/mesh_system.h"
#include "mesh/edge_sums.h"

namespace qelm {

/// The two blocks of the stiffness matrix K that lie in the free rows t .. n-1, rows
/// ascending in each column.
struct FreeRowBlocks {
  SparseBlock freeFree;   ///< columns t .. n-1
  SparseBlock freeFixed;  ///< columns 0 .. t-1
};

/// Both halves of what was summed, for t tagged vertices, with the counts from adding it
/// up. Beyond the result it needs nothing but them.
FreeRowBlocks blocksOf(EdgeSums sums, EdgeSums::Counts counts, std::int32_t t);

}  // namespace qelm

#endif  // QELM_MESH_FREE_ROWS_H
