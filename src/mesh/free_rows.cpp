#include "mesh/free_rows.h"

#include <vector>

#include "interface/index.h"

namespace qelm {
namespace {

/// Calls visit(row, column, value) for every entry of the free rows; in each column, rows ascend.
template <class Visit>
void forEachEntry(const LowerTriangle& lower, std::int32_t t, Visit visit) {
  for (std::int32_t i = t; i < lower.vertexCount(); ++i) {
    for (const LowerTriangle::Entry& entry : lower.row(i)) {
      visit(i, entry.column, entry.value);
      if (entry.column >= t) visit(entry.column, i, entry.value);
    }
    visit(i, i, lower.diagonal(i));
  }
}

/// Sets a block's column pointers and makes room for its entries. Turns the size of each column
/// into the position of its first entry.
void makeColumns(SparseBlock& block, std::int32_t* sizes) {
  std::int32_t* const pointers = block.outerIndexPtr();
  for (Eigen::Index c = 0; c < block.cols(); ++c) {
    pointers[c + 1] = indexable(std::int64_t{pointers[c]} + sizes[c]);
    sizes[c] = pointers[c];
  }
  block.resizeNonZeros(pointers[block.cols()]);
}

}  // namespace

FreeRowBlocks toCompressedColumns(const LowerTriangle& lower, std::int32_t t) {
  const std::int32_t freeCount = lower.vertexCount() - t;
  FreeRowBlocks blocks{SparseBlock(freeCount, freeCount), SparseBlock(freeCount, t)};
  std::vector<std::int32_t> next(asIndex(lower.vertexCount()));
  forEachEntry(lower, t, [&](auto, std::int32_t column, auto) { ++next[asIndex(column)]; });
  makeColumns(blocks.freeFixed, next.data());
  makeColumns(blocks.freeFree, next.data() + t);
  forEachEntry(lower, t, [&](std::int32_t row, std::int32_t column, double value) {
    SparseBlock& block = column < t ? blocks.freeFixed : blocks.freeFree;
    const std::int32_t position = next[asIndex(column)]++;
    block.innerIndexPtr()[position] = row - t;
    block.valuePtr()[position] = value;
  });
  return blocks;
}

}  // namespace qelm
