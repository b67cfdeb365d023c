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

  /// Has the memory ready that the column's next entry takes.
  void prefetch([[maybe_unused]] std::size_t column) const {
#if defined(__GNUC__)
    __builtin_prefetch(rows + next[column], 1);
    __builtin_prefetch(values + next[column], 1);
#endif
  }

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

/// How far ahead the memory of an entry's place is made ready, if vertices are scattered.
constexpr std::size_t kEntriesAhead = 24;
constexpr std::size_t kColumnsAhead = 8;

/// Behind the room for upper rows.
template <bool kScattered>
void fillDiagonalAndLowerRows(const EdgeSums& sums, std::int32_t t, Filling& freeFree,
                              Filling& freeFixed) {
  const EdgeSums::Entry* const end = sums.entries().data() + sums.entries().size();
  for (std::size_t v = 0; v < sums.ownerCount(); ++v) {
    const auto row = static_cast<std::int32_t>(v);
    freeFree.append(v, row, sums.diagonal(v));
    for (const EdgeSums::Entry& entry : sums.entries(v)) {
      if (kScattered && static_cast<std::size_t>(end - &entry) > kEntriesAhead) {
        const std::int32_t ahead = (&entry + kEntriesAhead)->neighbour;
        if (ahead >= t) freeFree.prefetch(at(ahead - t));
      }
      if (entry.neighbour < t) {
        freeFixed.append(at(entry.neighbour), row, entry.sum);
      } else {
        freeFree.append(at(entry.neighbour - t), row, entry.sum);
      }
    }
  }
}

/// Into the room in front of each diagonal.
template <bool kScattered>
void fillUpperRows(const std::vector<std::int32_t>& diagonals, Filling& freeFree) {
  const std::size_t columns = diagonals.size();
  std::copy_n(freeFree.outer, columns, freeFree.next.begin());
  for (std::size_t w = 0; w < columns; ++w) {
    if (const std::size_t ahead = w + kColumnsAhead; kScattered && ahead < columns) {
      for (std::int32_t k = diagonals[ahead] + 1; k < freeFree.outer[ahead + 1]; ++k) {
        freeFree.prefetch(at(freeFree.rows[k]));
      }
    }
    for (std::int32_t k = diagonals[w] + 1; k < freeFree.outer[w + 1]; ++k) {
      freeFree.append(at(freeFree.rows[k]), static_cast<std::int32_t>(w), freeFree.values[k]);
    }
  }
}

/// Where each column's diagonal is, behind so many upper rows.
std::vector<std::int32_t> diagonalPlaces(const SparseBlock& block,
                                         std::vector<std::int32_t> upperRows) {
  for (std::size_t v = 0; v < upperRows.size(); ++v) upperRows[v] += block.outerIndexPtr()[v];
  return upperRows;
}

template <bool kScattered>
void fill(const EdgeSums& sums, std::int32_t t, std::vector<std::int32_t> upperRows,
          FreeRowBlocks& blocks) {
  const std::vector<std::int32_t> diagonals = diagonalPlaces(blocks.freeFree, std::move(upperRows));
  const std::int32_t* const fixedOuter = blocks.freeFixed.outerIndexPtr();
  Filling freeFree(blocks.freeFree, diagonals);
  Filling freeFixed(blocks.freeFixed, {fixedOuter, fixedOuter + t});
  fillDiagonalAndLowerRows<kScattered>(sums, t, freeFree, freeFixed);
  fillUpperRows<kScattered>(diagonals, freeFree);
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
  if (sums.isScattered()) {
    fill<true>(sums, t, std::move(counts.freeNeighbours), blocks);
  } else {
    fill<false>(sums, t, std::move(counts.freeNeighbours), blocks);
  }
  return blocks;
}

}  // namespace qelm
