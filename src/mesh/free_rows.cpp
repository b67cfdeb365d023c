#include "mesh/free_rows.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace qelm {
namespace {

std::size_t at(std::int32_t index) { return static_cast<std::size_t>(index); }

/// A block whose columns get their entries one by one.
struct Filling {
  std::int32_t* outer;
  std::int32_t* rows;
  double* values;
  std::vector<std::int32_t> next;  ///< where the next entry of each column goes

  Filling(SparseBlock& block, std::vector<std::int32_t> firstPlaces)
      : outer(block.outerIndexPtr()),
        rows(block.innerIndexPtr()),
        values(block.valuePtr()),
        next(std::move(firstPlaces)) {}

  void append(std::size_t column, std::int32_t row, double value) {
    const auto place = at(next[column]++);
    rows[place] = row;
    values[place] = value;
  }
};

/// Makes room for columns of so many entries.
template <class Count>
void reserveColumns(SparseBlock& block, Count count) {
  std::int32_t* outer = block.outerIndexPtr();
  for (Eigen::Index c = 0; c < block.cols(); ++c) {
    outer[c + 1] = outer[c] + count(static_cast<std::size_t>(c));
  }
  block.resizeNonZeros(outer[block.cols()]);
}

/// Behind the room for upper rows, whose numbers freeFree.next holds.
void fillDiagonalAndLowerRows(const EdgeSums& sums, std::int32_t t, Filling& freeFree,
                              Filling& freeFixed) {
  for (std::size_t v = 0; v < sums.ownerCount(); ++v) {
    const auto row = static_cast<std::int32_t>(v);
    freeFree.next[v] += freeFree.outer[v];
    freeFree.append(v, row, sums.diagonal(v));
    for (const EdgeSums::Entry& entry : sums.entries(v)) {
      if (entry.neighbour < t) {
        freeFixed.append(at(entry.neighbour), row, entry.sum);
      } else {
        freeFree.append(at(entry.neighbour - t), row, entry.sum);
      }
    }
  }
}

/// When it is a column's turn, all of its own upper rows have come.
void fillUpperRows(Filling& freeFree) {
  const std::size_t columns = freeFree.next.size();
  std::copy_n(freeFree.outer, columns, freeFree.next.begin());
  for (std::size_t w = 0; w < columns; ++w) {
    const std::int32_t diagonal = freeFree.next[w];
    for (std::int32_t k = diagonal + 1; k < freeFree.outer[w + 1]; ++k) {
      freeFree.append(at(freeFree.rows[k]), static_cast<std::int32_t>(w), freeFree.values[k]);
    }
  }
}

}  // namespace

// Twice transposed, so sorted without a comparison: owners come in ascending order and
// give their entries to the columns of the lower neighbours; then columns come in
// ascending order and give them, as they are symmetric, to those of the owners. Room
// for these is left in front: a column's rows are upper ones, diagonal, lower ones.
FreeRowBlocks blocksOf(const EdgeSums& sums, EdgeSums::Counts counts, std::int32_t t) {
  const auto freeCount = static_cast<Eigen::Index>(sums.ownerCount());
  FreeRowBlocks blocks{SparseBlock(freeCount, freeCount), SparseBlock(freeCount, t)};
  reserveColumns(blocks.freeFree, [&](std::size_t v) {
    return counts.freeNeighbours[v] + 1 + counts.owners[at(t) + v];
  });
  reserveColumns(blocks.freeFixed, [&](std::size_t w) { return counts.owners[w]; });
  const std::int32_t* const fixedOuter = blocks.freeFixed.outerIndexPtr();
  Filling freeFree(blocks.freeFree, std::move(counts.freeNeighbours));
  Filling freeFixed(blocks.freeFixed, {fixedOuter, fixedOuter + t});
  fillDiagonalAndLowerRows(sums, t, freeFree, freeFixed);
  fillUpperRows(freeFree);
  return blocks;
}

}  // namespace qelm
