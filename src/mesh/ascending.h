// Short lists in ascending order, without a branch on how they are ordered.
//
// The lists of a mesh have some three entries each. A loop that sorts such a list guesses
// wrong where the mesh is numbered in random order, and that takes longer than the
// sorting. So the keys of up to kLongestInRegisters entries go through straight-line
// comparisons that the compiler makes of minimum and maximum.
#ifndef QELM_MESH_ASCENDING_H
#define QELM_MESH_ASCENDING_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#if defined(__clang__)
#define QELM_UNROLL _Pragma("clang loop unroll(full)")
#elif defined(__GNUC__)
#define QELM_UNROLL _Pragma("GCC unroll 8")
#else
#define QELM_UNROLL
#endif

namespace qelm {

/// The longest list that is sorted without a branch.
inline constexpr std::size_t kLongestInRegisters = 8;

namespace ascending {

/// Bubble sort. Below: the entry's place. Above: what the order is by.
template <std::size_t kLength, class Entry>
std::array<std::uint64_t, kLength> sortedKeys(const Entry* list) {
  std::array<std::uint64_t, kLength> keys;
  QELM_UNROLL
  for (std::size_t i = 0; i < kLength; ++i) {
    keys[i] = static_cast<std::uint64_t>(list[i].neighbour) << 32 | i;
  }
  QELM_UNROLL
  for (std::size_t end = kLength; end > 1; --end) {
    QELM_UNROLL
    for (std::size_t i = 1; i < end; ++i) {
      const std::uint64_t a = keys[i - 1];
      const std::uint64_t b = keys[i];
      keys[i - 1] = std::min(a, b);
      keys[i] = std::max(a, b);
    }
  }
  return keys;
}

template <std::size_t kLength, class Entry, class Visit>
void visit(const Entry* list, Visit& visitEntry) {
  for (const std::uint64_t key : sortedKeys<kLength>(list)) {
    visitEntry(list[static_cast<std::uint32_t>(key)]);
  }
}

}  // namespace ascending

/// Calls visitEntry(entry) for every entry of the list, in ascending order of their
/// neighbours: 0 or more, all different. A list longer than kLongestInRegisters is put
/// into that order where it is.
template <class Entry, class Visit>
void visitAscending(std::span<Entry> list, Visit visitEntry) {
  static_assert(kLongestInRegisters == 8);
  switch (list.size()) {
    case 0:
      return;
    case 1:
      return visitEntry(list[0]);
    case 2:
      return ascending::visit<2>(list.data(), visitEntry);
    case 3:
      return ascending::visit<3>(list.data(), visitEntry);
    case 4:
      return ascending::visit<4>(list.data(), visitEntry);
    case 5:
      return ascending::visit<5>(list.data(), visitEntry);
    case 6:
      return ascending::visit<6>(list.data(), visitEntry);
    case 7:
      return ascending::visit<7>(list.data(), visitEntry);
    case 8:
      return ascending::visit<8>(list.data(), visitEntry);
    default:
      break;
  }
  std::sort(list.begin(), list.end(),
            [](const Entry& a, const Entry& b) { return a.neighbour < b.neighbour; });
  for (const Entry& entry : list) visitEntry(entry);
}

}  // namespace qelm

#endif  // QELM_MESH_ASCENDING_H
