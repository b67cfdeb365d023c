#include "mesh/lower_triangle.h"

#include <limits>
#include <new>
#include <utility>

namespace qelm {

void LowerTriangle::makeBuckets() {
  std::size_t size = 0;
  for (Row& row : rows_) size += std::exchange(row.end, size);
  if (size > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
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
    for (; read < rows_[v].end; ++read) {
      const Entry added = entries[read];
      std::uint32_t& slot = slots[asIndex(added.column)];
      if (slot > first) {
        entries[slot - 1].value += added.value;
      } else {
        entries[count] = added;
        slot = ++count;
      }
    }
    std::ranges::sort(entries + first, entries + count, {}, &Entry::column);
    rows_[v].end = count;
  }
  // What merging has emptied is given back.
  auto merged = std::make_unique_for_overwrite<Entry[]>(count);
  std::copy_n(entries, count, merged.get());
  entries_ = std::move(merged);
}

}  // namespace qelm
