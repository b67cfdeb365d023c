// Where the entries of the free rows lie, before any value is known.
#ifndef QELM_MESH_SPARSITY_H
#define QELM_MESH_SPARSITY_H

#include <cstdint>
#include <span>

#include "interface/mesh_system.h"

namespace qelm {

/// The two blocks of the stiffness matrix K that lie in the free rows t .. n-1.
struct FreeRowBlocks {
  SparseBlock freeFree;   ///< columns t .. n-1
  SparseBlock freeFixed;  ///< columns 0 .. t-1
};

/// The blocks of a mesh with n vertices and 3m indices in 0 .. n-1, every entry in
/// place and rows ascending in each column. Every value is -0.0: that is the number
/// to start a sum from, since -0.0 + x has the bits of x for every x, where
/// 0.0 + -0.0 has not.
///
/// Beyond the result it needs 12 bytes for each triangle and 16 for each vertex.
FreeRowBlocks emptyFreeRows(std::int32_t t, std::int32_t n,
                            std::span<const std::int32_t> triangles);

/// Adds to a stored entry. Row and column count from the block's own corner.
inline void addToEntry(SparseBlock& block, std::int32_t row, std::int32_t column, double value) {
  const std::int32_t* rows = block.innerIndexPtr();
  std::int32_t first = block.outerIndexPtr()[column];
  std::int32_t length = block.outerIndexPtr()[column + 1] - first;
  // Lower bound without a branch that depends on the rows: about seven of them,
  // in no predictable order, and a wrong guess costs more than the search.
  while (length > 1) {
    const std::int32_t half = length / 2;
    first += rows[first + half] <= row ? half : 0;
    length -= half;
  }
  block.valuePtr()[first] += value;
}

}  // namespace qelm

#endif  // QELM_MESH_SPARSITY_H
