// Places of a list's entries in ascending order, without a branch on how they are ordered.
//
// The lists of a mesh have some three entries each. What sorts such a list with branches
// guesses wrong where the mesh is numbered in random order, and that takes longer than the
// sorting. Here each entry of up to kLongestWithoutBranch counts how many are below it,
// in straight-line code.
#ifndef QELM_MESH_RANKS_H
#define QELM_MESH_RANKS_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "interface/compiler.h"

namespace qelm {

/// The longest list that is ranked without a branch.
inline constexpr std::size_t kLongestWithoutBranch = 8;

/// visitWithRanks() for a list of this length, one or more.
template <std::size_t kLength, class Entry, class Visit>
void visitFixedWithRanks(const Entry* list, Visit& visit) {
  std::array<std::size_t, kLength> ranks;
  QELM_UNROLL
  for (std::size_t i = 0; i < kLength; ++i) ranks[i] = kLength - 1 - i;  // all later ones
  QELM_UNROLL
  for (std::size_t j = 1; j < kLength; ++j) {
    QELM_UNROLL
    for (std::size_t i = 0; i < j; ++i) {
      const auto inOrder = static_cast<std::size_t>(list[i].neighbour < list[j].neighbour);
      ranks[i] -= inOrder;
      ranks[j] += inOrder;
    }
  }
  QELM_UNROLL
  for (std::size_t i = 0; i < kLength; ++i) visit(list[i], ranks[i]);
}

/// Calls visit(entry, rank) for every entry of the list, in any order: its rank is the
/// number of entries with a lower neighbour. All neighbours are different. A list longer
/// than kLongestWithoutBranch is put into ascending order where it is.
template <class Entry, class Visit>
void visitWithRanks(std::span<Entry> list, Visit visit) {
  static_assert(kLongestWithoutBranch == 8);
  switch (list.size()) {
    case 0:
      return;
    case 1:
      return visitFixedWithRanks<1>(list.data(), visit);
    case 2:
      return visitFixedWithRanks<2>(list.data(), visit);
    case 3:
      return visitFixedWithRanks<3>(list.data(), visit);
    case 4:
      return visitFixedWithRanks<4>(list.data(), visit);
    case 5:
      return visitFixedWithRanks<5>(list.data(), visit);
    case 6:
      return visitFixedWithRanks<6>(list.data(), visit);
    case 7:
      return visitFixedWithRanks<7>(list.data(), visit);
    case 8:
      return visitFixedWithRanks<8>(list.data(), visit);
    default:
      break;
  }
  std::sort(list.begin(), list.end(),
            [](const Entry& a, const Entry& b) { return a.neighbour < b.neighbour; });
  for (std::size_t i = 0; i < list.size(); ++i) visit(list[i], i);
}

}  // namespace qelm

#endif  // QELM_MESH_RANKS_H
