// Finds equal triples among numbered things.
#ifndef QELM_MESH_HASH_INDEX_H
#define QELM_MESH_HASH_INDEX_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qelm {

using Triple = std::array<std::uint64_t, 3>;

/// A set of ids, told apart by their triples: keyOf(id) must give the same triple
/// whenever it is asked. Open addressing with linear probing; ids are all it keeps,
/// in eight to sixteen bytes for each at the capacity that it is made for.
template <class KeyOf>
class HashIndex {
 public:
  static constexpr std::int32_t kNone = -1;

  /// Room for `capacity` ids; more must not be inserted.
  HashIndex(std::size_t capacity, KeyOf keyOf)
      : keyOf_(keyOf), slots_(std::bit_ceil(2 * capacity + 1), kNone) {}

  /// The id with this triple, or kNone.
  std::int32_t find(const Triple& key) const { return slots_[slotOf(key)]; }

  /// The id with this triple. That is `id` itself, from now on, if there was none
  /// before; keyOf(id) must be `key` by the next call.
  std::int32_t findOrInsert(const Triple& key, std::int32_t id) {
    std::int32_t& slot = slots_[slotOf(key)];
    if (slot == kNone) slot = id;
    return slot;
  }
  std::int32_t findOrInsert(std::int32_t id) { return findOrInsert(keyOf_(id), id); }

 private:
  std::size_t slotOf(const Triple& key) const {
    std::size_t slot = hashOf(key) & (slots_.size() - 1);
    while (slots_[slot] != kNone && keyOf_(slots_[slot]) != key) {
      slot = (slot + 1) & (slots_.size() - 1);
    }
    return slot;
  }

  // Multiplications spread low bits upward, shifts bring high bits down: doubles of
  // a lattice differ in few high bits only. The constants are odd and arbitrary.
  static std::size_t hashOf(const Triple& key) {
    std::uint64_t hash = 0;
    for (const std::uint64_t word : key) {
      hash = (hash ^ word) * 0x9e3779b97f4a7c15;
      hash ^= hash >> 32;
    }
    hash *= 0xd6e8feb86659fd93;
    return static_cast<std::size_t>(hash ^ (hash >> 32));
  }

  KeyOf keyOf_;
  std::vector<std::int32_t> slots_;
};

}  // namespace qelm

#endif  // QELM_MESH_HASH_INDEX_H
