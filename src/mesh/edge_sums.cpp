#include "mesh/edge_sums.h"

#include <bit>
#include <new>
#include <utility>

#include "interface/index.h"

namespace qelm {
namespace {

/// Whether many triangles join vertices so far apart that a core's cache has no room for
/// what is between them. One triangle in 16 tells.
bool joinFarVertices(std::span<const std::int32_t> triangles) {
  constexpr std::int32_t kFar = 1 << 14;  // of 40 to 100 bytes each
  std::size_t near = 0;
  std::size_t far = 0;
  for (std::size_t j = 0; j < triangles.size(); j += std::size_t{3} * 16) {
    ++(std::abs(triangles[j] - triangles[j + 1]) > kFar ? far : near);
  }
  return far > near / 8;
}

}  // namespace

// -0.0 is the number to start a diagonal's sum from: -0.0 + x has the bits of x for
// every x, where 0.0 + -0.0 has not.
EdgeSums::EdgeSums(std::int32_t t, std::span<const std::int32_t> triangles,
                   const std::vector<std::uint32_t>& higherEnds)
    : t_(t), isScattered_(joinFarVertices(triangles)), owners_(higherEnds.size(), Owner{-0.0, 0}) {
  std::size_t size = 0;
  for (auto v = asIndex(t); v < owners_.size(); ++v) {
    owners_[v].end = size;
    size += higherEnds[v];
  }
  setLength(size);
}

// What is not -0.0 makes no -0.0 of it.
bool EdgeSums::haveEveryVertex() const {
  return std::none_of(owners_.begin(), owners_.end(), [](const Owner& owner) {
    return std::bit_cast<std::uint64_t>(owner.diagonal) == std::bit_cast<std::uint64_t>(-0.0);
  });
}

void EdgeSums::setLength(std::size_t length) {
  // One at least: of nothing the C library may make a null pointer.
  void* const moved =
      std::realloc(entries_.get(), std::max<std::size_t>(length, 1) * sizeof(Entry));
  if (moved == nullptr) throw std::bad_alloc();
  static_cast<void>(entries_.release());
  entries_.reset(static_cast<Entry*>(moved));
}

// In place: what is read is never behind what is written. The last entry that was made
// with a neighbour is this owner's if it is not before the owner's first one.
//
// 32 bits hold an entry's number: Eigen's indices allow fewer than 2^30 edges between
// free vertices, and fewer than 2^31 to tagged ones.
template <bool kScattered>
EdgeSums::Counts EdgeSums::addUpLists() {
  const auto t = asIndex(t_);
  std::vector<Neighbour> known(owners_.size());
  std::vector<std::int32_t> freeNeighbours(owners_.size() - t);
  Entry* const entries = entries_.get();
  const std::size_t contributions = this->entries().size();
  std::size_t read = 0;
  std::uint32_t next = 1;
  for (std::size_t v = t; v < owners_.size(); ++v) {
    const std::uint32_t first = next;
    std::int32_t freeOnes = 0;
    for (; read < owners_[v].end; ++read) {
      if (kScattered && contributions - read > kAhead) {
        prefetchToWrite(&known[asIndex(entries[read + kAhead].neighbour)]);
      }
      const Entry added = entries[read];
      Neighbour& neighbour = known[asIndex(added.neighbour)];
      if (neighbour.lastEntry >= first) {
        entries[neighbour.lastEntry - 1].sum += added.sum;
        continue;
      }
      entries[next - 1] = added;
      neighbour.lastEntry = next++;
      ++neighbour.owners;
      freeOnes += added.neighbour >= t_ ? 1 : 0;
    }
    owners_[v].end = next - 1;
    freeNeighbours[v - t] = freeOnes;
  }
  setLength(next - 1);
  return {std::move(known), std::move(freeNeighbours)};
}

EdgeSums::Counts EdgeSums::addUp() {
  return isScattered_ ? addUpLists<true>() : addUpLists<false>();
}

}  // namespace qelm
