#include "mesh/edge_sums.h"

#include <array>
#include <new>
#include <utility>

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
EdgeSums::EdgeSums(std::int32_t t, std::int32_t n, std::span<const std::int32_t> triangles)
    : t_(t),
      n_(n),
      isScattered_(joinFarVertices(triangles)),
      owners_(static_cast<std::size_t>(n - t), Owner{-0.0, 0}) {
  const auto count = [&](std::int32_t v, std::size_t edges) {
    if (v >= t) owners_[static_cast<std::size_t>(v - t)].end += edges;
  };
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const auto [a, b, c] = std::array{triangles[j], triangles[j + 1], triangles[j + 2]};
    const std::int32_t highest = std::max(std::max(a, b), c);
    const std::int32_t middle = std::max(std::min(a, b), std::min(std::max(a, b), c));
    count(highest, 2);
    count(middle, 1);
  }
  std::size_t size = 0;
  for (Owner& owner : owners_) {
    const std::size_t contributions = owner.end;
    owner.end = size;
    size += contributions;
  }
  setLength(size);
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
EdgeSums::Counts EdgeSums::addUp() {
  struct Neighbour {
    std::uint32_t lastEntry = 0;  ///< from 1 on
    std::int32_t owners = 0;
  };
  std::vector<Neighbour> known(static_cast<std::size_t>(n_));
  std::vector<std::int32_t> freeNeighbours(owners_.size());
  Entry* const entries = entries_.get();
  std::size_t read = 0;
  std::uint32_t next = 1;
  for (std::size_t v = 0; v < owners_.size(); ++v) {
    const std::uint32_t first = next;
    std::int32_t freeOnes = 0;
    for (; read < owners_[v].end; ++read) {
      const Entry added = entries[read];
      Neighbour& neighbour = known[static_cast<std::size_t>(added.neighbour)];
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
    freeNeighbours[v] = freeOnes;
  }
  setLength(next - 1);
  Counts counts{std::vector<std::int32_t>(known.size()), std::move(freeNeighbours)};
  std::transform(known.begin(), known.end(), counts.owners.begin(),
                 [](const Neighbour& neighbour) { return neighbour.owners; });
  return counts;
}

}  // namespace qelm
