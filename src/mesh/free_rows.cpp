#include "mesh/free_rows.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qelm {
namespace {

std::size_t at(std::int32_t index) { return static_cast<std::size_t>(index); }

/// Where the next entries of a block go.
struct Filling {
  std::int32_t* rows;
  double* values;
  std::vector<std::int32_t> next;  ///< for each column

  explicit Filling(SparseBlock& block)
      : rows(block.innerIndexPtr()),
        values(block.valuePtr()),
        next(block.outerIndexPtr(), block.outerIndexPtr() + block.cols()) {}

  void append(std::size_t column, std::int32_t row, double value) {
    const auto place = at(next[column]++);
    rows[place] = row;
    values[place] = value;
  }
};

/// Turns the counts in outer[1] .. outer[columns] into ends, and makes room.
void reserveColumns(SparseBlock& block) {
  std::int32_t* outer = block.outerIndexPtr();
  for (Eigen::Index c = 0; c < block.cols(); ++c) outer[c + 1] += outer[c];
  block.resizeNonZeros(outer[block.cols()]);
}

void countColumns(const EdgeSums& sums, std::int32_t t, FreeRowBlocks& blocks) {
  std::int32_t* const freeCount = blocks.freeFree.outerIndexPtr() + 1;
  std::int32_t* const fixedCount = blocks.freeFixed.outerIndexPtr() + 1;
  for (std::size_t v = 0; v < sums.ownerCount(); ++v) {
    std::int32_t freeNeighbours = 0;
    for (const std::int32_t w : sums.lowerNeighbours(v)) {
      ++(w < t ? fixedCount[w] : freeCount[w - t]);
      freeNeighbours += w < t ? 0 : 1;
    }
    freeCount[v] += freeNeighbours + 1;
  }
}

}  // namespace

// Vertices come in ascending order. Each one's own column has had nothing but its
// upper entries then: those it gave to lower columns went to their ends, and what
// those columns gave to it would be given by higher ones. So every column receives its
// rows in ascending order: upper ones, diagonal, lower ones.
FreeRowBlocks blocksOf(const EdgeSums& sums, std::int32_t t) {
  const auto freeCount = static_cast<Eigen::Index>(sums.ownerCount());
  FreeRowBlocks blocks{SparseBlock(freeCount, freeCount), SparseBlock(freeCount, t)};
  countColumns(sums, t, blocks);
  reserveColumns(blocks.freeFree);
  reserveColumns(blocks.freeFixed);
  Filling freeFree(blocks.freeFree);
  Filling freeFixed(blocks.freeFixed);
  for (std::size_t v = 0; v < sums.ownerCount(); ++v) {
    const auto row = static_cast<std::int32_t>(v);
    const std::span<const std::int32_t> neighbours = sums.lowerNeighbours(v);
    const std::span<const double> values = sums.sums(v);
    for (std::size_t k = 0; k < neighbours.size(); ++k) {
      if (neighbours[k] < t) {
        freeFixed.append(at(neighbours[k]), row, values[k]);
      } else {
        freeFree.append(v, neighbours[k] - t, values[k]);
        freeFree.append(at(neighbours[k] - t), row, values[k]);
      }
    }
    freeFree.append(v, row, sums.diagonal(v));
  }
  return blocks;
}

}  // namespace qelm
