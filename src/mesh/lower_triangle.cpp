#include "mesh/lower_triangle.h"

#include <limits>
#include <new>

namespace qelm {

// 32 bits count the edges of a thousand million triangles, which no matrix has that can be indexed.
std::vector<std::uint32_t> bucketSizes(std::span<const std::int32_t> triangles,
                                       std::size_t vertexCount) {
  if (triangles.size() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
  std::vector<std::uint32_t> sizes(vertexCount);
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    ++sizes[asIndex(std::max(triangles[j], triangles[j + 1]))];
    ++sizes[asIndex(std::max(triangles[j + 1], triangles[j + 2]))];
    ++sizes[asIndex(std::max(triangles[j], triangles[j + 2]))];
  }
  return sizes;
}

LowerTriangle::LowerTriangle(std::int32_t taggedCount,
                             const std::vector<std::uint32_t>& bucketSizes)
    : taggedCount_(taggedCount), rows_(bucketSizes.size(), Row{0, 0}) {
  std::size_t size = 0;
  for (auto v = asIndex(taggedCount); v < rows_.size(); ++v) {
    rows_[v].end = size;
    size += bucketSizes[v];
  }
  entries_ = std::make_unique_for_overwrite<Entry[]>(size);
}

// In place: no entry is written before it is read. slots[u] is one more than the position of the
// last entry of column u; that entry belongs to this row if it is not in front of the row's first.
// When the row is sorted, its slots are not asked again. 32 bits hold a position: Eigen's indices
// allow fewer than 2^31 entries.
void LowerTriangle::mergeBuckets() {
  std::vector<std::uint32_t> slots(rows_.size());
  Entry* const entries = entries_.get();
  std::size_t read = 0;
  std::uint32_t count = 0;
  for (auto v = asIndex(taggedCount_); v < rows_.size(); ++v) {
    const std::uint32_t first = count;
    const std::size_t end = rows_[v].end;
    for (; read < end; ++read) {
      const Entry added = entries[read];
      std::uint32_t& slot = slots[asIndex(added.column)];
      if (slot > first) {
        entries[slot - 1].value += added.value;
      } else {
        entries[count] = added;
        slot = ++count;
      }
    }
    std::sort(entries + first, entries + count,
              [](const Entry& a, const Entry& b) { return a.column < b.column; });
    rows_[v].end = count;
  }
  // What merging has emptied is given back.
  auto merged = std::make_unique_for_overwrite<Entry[]>(count);
  std::copy_n(entries, count, merged.get());
  entries_ = std::move(merged);
}

}  // namespace qelm
