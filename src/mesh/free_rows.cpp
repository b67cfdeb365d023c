#include "mesh/free_rows.h"

#include <vector>

#include "interface/index.h"

namespace qelm {
namespace {

/// The number of entries in each column of the free rows, first those of prescribed vertices.
std::vector<std::int32_t> columnSizes(const LowerTriangle& lower, std::int32_t t) {
  std::vector<std::int32_t> sizes(asIndex(lower.vertexCount()));
  for (std::int32_t i = t; i < lower.vertexCount(); ++i) {
    ++sizes[asIndex(i)];
    for (const LowerTriangle::Entry& entry : lower.row(i)) {
      ++sizes[asIndex(entry.column)];
      if (entry.column >= t) ++sizes[asIndex(i)];
    }
  }
  return sizes;
}

void setColumnPointers(SparseBlock& block, const std::int32_t* sizes) {
  std::int32_t* const pointers = block.outerIndexPtr();
  for (Eigen::Index c = 0; c < block.cols(); ++c) {
    pointers[c + 1] = indexable(std::int64_t{pointers[c]} + sizes[c]);
  }
  block.resizeNonZeros(pointers[block.cols()]);
}

/// Puts entries into a block's compressed columns, at given positions or each behind the last one
/// of its column.
struct ColumnWriter {
  std::int32_t* rows;
  double* values;
  std::vector<std::int32_t> next;  ///< the position of each column's next entry

  explicit ColumnWriter(SparseBlock& block)
      : rows(block.innerIndexPtr()),
        values(block.valuePtr()),
        next(block.outerIndexPtr(), block.outerIndexPtr() + block.cols()) {}

  void put(std::int32_t position, std::int32_t row, double value) {
    rows[position] = row;
    values[position] = value;
  }
  void append(std::int32_t column, std::int32_t row, double value) {
    put(next[asIndex(column)]++, row, value);
  }
};

}  // namespace

FreeRowBlocks toCompressedColumns(const LowerTriangle& lower, std::int32_t t) {
  const std::int32_t freeCount = lower.vertexCount() - t;
  FreeRowBlocks blocks{SparseBlock(freeCount, freeCount), SparseBlock(freeCount, t)};
  const std::vector<std::int32_t> sizes = columnSizes(lower, t);
  setColumnPointers(blocks.freeFixed, sizes.data());
  setColumnPointers(blocks.freeFree, sizes.data() + t);

  ColumnWriter fixed(blocks.freeFixed);
  ColumnWriter free(blocks.freeFree);
  for (std::int32_t i = 0; i < freeCount; ++i) {
    std::int32_t above = free.next[asIndex(i)];
    for (const LowerTriangle::Entry& entry : lower.row(t + i)) {
      if (entry.column < t) {
        fixed.append(entry.column, i, entry.value);
      } else {
        free.put(above++, entry.column - t, entry.value);
        free.append(entry.column - t, i, entry.value);
      }
    }
    free.put(above++, i, lower.diagonal(t + i));
    free.next[asIndex(i)] = above;
  }
  return blocks;
}

}  // namespace qelm
