// A hash set of 32-bit indices in one flat array; the caller compares what the indices stand for.
// Open addressing with linear probing, at most half full:
//
//   slot     0  1  2  3  4  5  6  7       key with hash 10: slot 10 mod 8 = 2 holds another key,
//   index    .  .  0  1  .  .  2  .       so does slot 3, slot 4 is empty: the key is new
//
// Cost: one or two slots for a look-up, on average.
#ifndef QELM_MESH_INDEX_TABLE_H
#define QELM_MESH_INDEX_TABLE_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "interface/compiler.h"

namespace qelm {

/// Mixes three words so that every bit of them reaches the low bits: a multiply
/// carries upwards only, so each round folds the high half down again. The
/// multiplier is the odd number next to 2^64 divided by the golden ratio.
inline std::uint64_t hashWords(std::uint64_t a, std::uint64_t b, std::uint64_t c) {
  constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15;
  std::uint64_t hash = 0;
  for (const std::uint64_t word : {a, b, c}) {
    hash = (hash ^ word) * kMultiplier;
    hash ^= hash >> 32;
  }
  hash *= kMultiplier;
  return hash ^ (hash >> 29);
}

class IndexTable {
 public:
  /// Takes up to `most` indices; allocates once.
  explicit IndexTable(std::size_t most) : slots_(std::bit_ceil(2 * most + 1), kEmpty) {}

  /// The index already stored for which same(index) holds, or else `index`, which
  /// is stored then.
  template <class Same>
  std::int32_t findOrInsert(std::uint64_t hash, std::int32_t index, Same same) {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = static_cast<std::size_t>(hash) & mask;
    for (; slots_[slot] != kEmpty; slot = (slot + 1) & mask) {
      if (same(slots_[slot])) return slots_[slot];
    }
    return slots_[slot] = index;
  }

  /// Prefetches the slot in which findOrInsert() with this hash looks first.
  void prefetch(std::uint64_t hash) const {
    prefetchToWrite(&slots_[static_cast<std::size_t>(hash) & (slots_.size() - 1)]);
  }
  /// The index in that slot; negative if it is empty.
  std::int32_t firstTried(std::uint64_t hash) const {
    return slots_[static_cast<std::size_t>(hash) & (slots_.size() - 1)];
  }

 private:
  static constexpr std::int32_t kEmpty = -1;
  std::vector<std::int32_t> slots_;
};

}  // namespace qelm

#endif  // QELM_MESH_INDEX_TABLE_H
