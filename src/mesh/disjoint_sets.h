// Union-find in which the lowest index of a set is its root.
#ifndef QELM_MESH_DISJOINT_SETS_H
#define QELM_MESH_DISJOINT_SETS_H

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace qelm {

/// Sets of 0 .. count-1, each element alone at first. Since the lower root always
/// becomes the root of a union, the result depends on which pairs were united and
/// not on their order.
class DisjointSets {
 public:
  explicit DisjointSets(std::size_t count) : parent_(count) {
    std::iota(parent_.begin(), parent_.end(), 0);
  }

  /// The lowest index in the set of x. Halves the path on its way.
  std::int32_t find(std::int32_t x) {
    while (parent(x) != x) x = parent(x) = parent(parent(x));
    return x;
  }

  void unite(std::int32_t a, std::int32_t b) {
    a = find(a);
    b = find(b);
    if (a < b) parent(b) = a;
    if (b < a) parent(a) = b;
  }

 private:
  std::int32_t& parent(std::int32_t x) { return parent_[static_cast<std::size_t>(x)]; }

  std::vector<std::int32_t> parent_;
};

}  // namespace qelm

#endif  // QELM_MESH_DISJOINT_SETS_H
