// Union-find over 0 .. n-1: disjoint sets, each a tree whose root is its lowest element.
//
//   unite(1, 3), unite(3, 4)      parent   0 1 2 1 1      sets {0} {1, 3, 4} {2}
//
// root() halves the path that it walks: each element on it gets its grandparent as its parent
// (Tarjan and van Leeuwen, Worst-case analysis of set union algorithms, 1984). Cost: O(log n) for a
// call, over many calls.
//
// Which sets result depends on the united pairs alone, not on their order: the partition is the
// transitive closure of the pairs, and the lowest element is a property of the set. So a search may
// report its pairs in any order.
#ifndef QELM_MESH_DISJOINT_SETS_H
#define QELM_MESH_DISJOINT_SETS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

#include "interface/index.h"

namespace qelm {

class DisjointSets {
 public:
  explicit DisjointSets(std::size_t count) : parent_(count) {
    std::iota(parent_.begin(), parent_.end(), 0);
  }

  /// Lowest element of the set of `element`. A loop: no chain of parents can overflow the stack.
  std::int32_t root(std::int32_t element) {
    while (parent(element) != element) {
      parent(element) = parent(parent(element));
      element = parent(element);
    }
    return element;
  }

  void unite(std::int32_t a, std::int32_t b) {
    const std::int32_t rootA = root(a);
    const std::int32_t rootB = root(b);
    if (rootA != rootB) parent(std::max(rootA, rootB)) = std::min(rootA, rootB);
  }

  /// Makes `lower` the parent of a root that was never united before.
  void setParent(std::int32_t element, std::int32_t lower) { parent(element) = lower; }
  std::int32_t parentOf(std::int32_t element) const { return parent_[asIndex(element)]; }

  std::size_t size() const { return parent_.size(); }

 private:
  std::int32_t& parent(std::int32_t element) { return parent_[asIndex(element)]; }

  std::vector<std::int32_t> parent_;
};

}  // namespace qelm

#endif  // QELM_MESH_DISJOINT_SETS_H
