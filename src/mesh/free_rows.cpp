#include "mesh/free_rows.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "interface/compiler.h"
#include "interface/index.h"
#include "mesh/ranks.h"

namespace qelm {
namespace {

std::size_t at(std::int32_t index) { return static_cast<std::size_t>(index); }

/// A block whose columns get their entries one by one.
struct Filling {
  std::int32_t* rows;
  double* values;
  std::vector<std::int32_t> next;  ///< where the next entry of each column goes

  Filling(SparseBlock& block, std::vector<std::int32_t> firstPlaces)
      : rows(block.innerIndexPtr()), values(block.valuePtr()), next(std::move(firstPlaces)) {}

  /// Has the memory ready that the column's next entry takes.
  void prefetch(std::size_t column) const {
    prefetchToWrite(rows + next[column]);
    prefetchToWrite(values + next[column]);
  }

  void put(std::size_t place, std::int32_t row, double value) {
    rows[place] = row;
    values[place] = value;
  }
  void append(std::size_t column, std::int32_t row, double value) {
    put(at(next[column]++), row, value);
  }
};

/// Makes room for columns of so many entries. Throws std::bad_alloc if they are more in all than
/// Eigen can index.
template <class Count>
void reserveColumns(SparseBlock& block, Count count) {
  std::int32_t* outer = block.outerIndexPtr();
  for (Eigen::Index c = 0; c < block.cols(); ++c) {
    // Each is at most the number of vertices.
    const std::int64_t entries = count(static_cast<std::size_t>(c));
    outer[c + 1] = indexable(outer[c] + entries);
  }
  block.resizeNonZeros(outer[block.cols()]);
}

/// Behind each column's upper rows, in place of their numbers, and its diagonal.
std::vector<std::int32_t> lowerPlaces(const SparseBlock& block,
                                      std::vector<std::int32_t> upperRows) {
  for (std::size_t v = 0; v < upperRows.size(); ++v) upperRows[v] += block.outerIndexPtr()[v] + 1;
  return upperRows;
}

template <bool kScattered>
void fill(EdgeSums& sums, std::int32_t t, Filling& freeFree, Filling& freeFixed) {
  const EdgeSums::Entry* const end = sums.entries().data() + sums.entries().size();
  const auto freeCount = static_cast<std::int32_t>(freeFree.next.size());
  for (std::int32_t owner = 0; owner < freeCount; ++owner) {
    const std::span<EdgeSums::Entry> list = sums.entries(t + owner);
    if (kScattered) {
      for (const EdgeSums::Entry& entry : list) {
        if (static_cast<std::size_t>(end - &entry) <= EdgeSums::kAhead) break;
        const std::int32_t ahead = (&entry + EdgeSums::kAhead)->neighbour;
        if (ahead >= t) freeFree.prefetch(at(ahead - t));
      }
    }
    // Nothing is behind the diagonal yet: that comes from higher owners. What is in front
    // of it are the free neighbours, as the tagged ones have the lowest ranks.
    const std::size_t diagonal = at(freeFree.next[at(owner)] - 1);
    freeFree.put(diagonal, owner, sums.diagonal(t + owner));
    const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(diagonal) - std::ssize(list);
    visitWithRanks(list, [&](const EdgeSums::Entry& entry, std::size_t rank) {
      if (entry.neighbour < t) {
        freeFixed.append(at(entry.neighbour), owner, entry.sum);
        return;
      }
      const std::int32_t neighbour = entry.neighbour - t;
      const std::ptrdiff_t place = first + static_cast<std::ptrdiff_t>(rank);
      freeFree.put(static_cast<std::size_t>(place), neighbour, entry.sum);
      freeFree.append(at(neighbour), owner, entry.sum);
    });
  }
}

}  // namespace

// Owners come in ascending order. Each gives its entries to the upper rows of its own
// column, by their ranks, and, as they are symmetric, to the columns of its lower
// neighbours: there the rows come in order by themselves.
FreeRowBlocks blocksOf(EdgeSums sums, EdgeSums::Counts counts, std::int32_t t) {
  const auto freeCount = static_cast<Eigen::Index>(counts.freeNeighbours.size());
  FreeRowBlocks blocks{SparseBlock(freeCount, freeCount), SparseBlock(freeCount, t)};
  reserveColumns(blocks.freeFree, [&](std::size_t v) {
    return std::int64_t{counts.freeNeighbours[v]} + 1 + counts.neighbours[at(t) + v].owners;
  });
  reserveColumns(blocks.freeFixed, [&](std::size_t w) { return counts.neighbours[w].owners; });
  Filling freeFree(blocks.freeFree, lowerPlaces(blocks.freeFree, std::move(counts.freeNeighbours)));
  const std::int32_t* const fixedOuter = blocks.freeFixed.outerIndexPtr();
  Filling freeFixed(blocks.freeFixed, {fixedOuter, fixedOuter + t});
  if (sums.isScattered()) {
    fill<true>(sums, t, freeFree, freeFixed);
  } else {
    fill<false>(sums, t, freeFree, freeFixed);
  }
  return blocks;
}

}  // namespace qelm
