#include "robust/spatial_order.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <tuple>

#include "interface/index.h"
#include "interface/unset.h"

namespace qelm {
namespace {

/// A triangle's corners as ranks in an order, ascending.
struct RankedCorners {
  std::int32_t low, middle, high;
};

RankedCorners sortedRanks(const std::int32_t* triangle, const std::vector<std::int32_t>& rank) {
  const std::int32_t a = rank[asIndex(triangle[0])], b = rank[asIndex(triangle[1])],
                     c = rank[asIndex(triangle[2])];
  const std::int32_t low = std::min(a, b), high = std::max(a, b);
  return {std::min(low, c), std::max(low, std::min(high, c)), std::max(high, c)};
}

/// Two numbers in one word, which sorts by the first, then by the second.
std::uint64_t packed(std::int32_t first, std::int32_t second) {
  return std::uint64_t{static_cast<std::uint32_t>(first)} << 32 |
         static_cast<std::uint32_t>(second);
}
std::int32_t firstOf(std::uint64_t word) { return asInt(word >> 32); }
std::int32_t secondOf(std::uint64_t word) { return asInt(static_cast<std::uint32_t>(word)); }

/// The triangles with their corners as ranks in `order`, ascending in each triangle, sorted: by
/// counting sort into a bucket for each lowest corner, then each bucket, which is small, by itself.
UnsetVector<std::int32_t> orderedTriangles(std::span<const std::int32_t> triangles,
                                           const std::vector<std::int32_t>& order) {
  std::vector<std::int32_t> rank(order.size());
  for (std::size_t r = 0; r < order.size(); ++r) rank[asIndex(order[r])] = asInt(r);
  std::vector<std::uint32_t> starts(order.size() + 1);
  for (std::size_t j = 0; j < triangles.size(); j += 3)
    ++starts[asIndex(sortedRanks(&triangles[j], rank).low)];
  std::partial_sum(starts.begin(), starts.end(), starts.begin());
  // Each bucket's start moves down from its end.
  UnsetVector<std::uint64_t> higherCorners(triangles.size() / 3);
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const RankedCorners corners = sortedRanks(&triangles[j], rank);
    higherCorners[--starts[asIndex(corners.low)]] = packed(corners.middle, corners.high);
  }
  std::vector<std::int32_t>().swap(rank);
  UnsetVector<std::int32_t> ordered(triangles.size());
  std::int32_t* next = ordered.data();
  for (std::size_t low = 0; low < order.size(); ++low) {
    const auto bucket =
        std::span(higherCorners).subspan(starts[low], starts[low + 1] - starts[low]);
    std::sort(bucket.begin(), bucket.end());
    for (const std::uint64_t higher : bucket) {
      *next++ = asInt(low);
      *next++ = firstOf(higher);
      *next++ = secondOf(higher);
    }
  }
  return ordered;
}

/// The cells of a cube around all points, 1024 along each edge, in the order of a Morton curve.
class MortonCells {
 public:
  explicit MortonCells(std::span<const double> coordinates) {
    // Coordinates are halved: differences cannot overflow.
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
      const double half = coordinates[i] / 2;
      low_[i % 3] = i < 3 ? half : std::min(low_[i % 3], half);
    }
    for (std::size_t i = 0; i < coordinates.size(); ++i)
      extent_ = std::max(extent_, coordinates[i] / 2 - low_[i % 3]);
  }

  /// The Morton code of a point's cell, below 2^30: the bits of its three indices interleaved.
  std::uint64_t codeOf(const double* point) const {
    if (extent_ == 0) return 0;
    std::uint64_t code = 0;
    for (std::size_t c = 0; c < 3; ++c) {
      const double share = (point[c] / 2 - low_[c]) / extent_;  // 0 .. 1
      code |= spread(static_cast<std::uint64_t>(share * 1023)) << c;
    }
    return code;
  }

 private:
  /// Puts two zeros between any two of ten bits.
  static std::uint64_t spread(std::uint64_t x) {
    x = (x | x << 16) & 0x030000ff;
    x = (x | x << 8) & 0x0300f00f;
    x = (x | x << 4) & 0x030c30c3;
    return (x | x << 2) & 0x09249249;
  }

  std::array<double, 3> low_ = {};
  double extent_ = 0;
};

/// Radix sort by the Morton code, the 30 bits above the lowest 32; keys of one code stay in order.
void sortByCode(std::vector<std::uint64_t>& keys) {
  constexpr std::uint64_t kDigit = 0x3ff;
  std::vector<std::uint64_t> sorted(keys.size());
  for (const int shift : {32, 42, 52}) {
    std::array<std::size_t, kDigit + 2> starts = {};
    for (const std::uint64_t key : keys) ++starts[(key >> shift & kDigit) + 1];
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    for (const std::uint64_t key : keys) sorted[starts[key >> shift & kDigit]++] = key;
    keys.swap(sorted);
  }
}

/// Sorts vertices, given in ascending order, by cell, then by x, y, z, then by number.
void sortByPosition(std::span<std::int32_t> vertices, const MortonCells& cells,
                    std::span<const double> coordinates) {
  std::vector<std::uint64_t> keys;
  keys.reserve(vertices.size());
  for (const std::int32_t v : vertices)
    keys.push_back(cells.codeOf(&coordinates[3 * asIndex(v)]) << 32 |
                   static_cast<std::uint64_t>(v));
  sortByCode(keys);
  const auto position = [&](std::uint64_t key) {
    const double* const p = &coordinates[3 * std::size_t{static_cast<std::uint32_t>(key)}];
    return std::tuple(p[0], p[1], p[2], key);
  };
  for (auto begin = keys.begin(); begin != keys.end();) {
    const auto end = std::find_if(begin + 1, keys.end(),
                                  [&](std::uint64_t key) { return key >> 32 != *begin >> 32; });
    if (end - begin > 1)
      std::sort(begin, end,
                [&](std::uint64_t a, std::uint64_t b) { return position(a) < position(b); });
    begin = end;
  }
  for (std::size_t i = 0; i < keys.size(); ++i)
    vertices[i] = asInt(static_cast<std::uint32_t>(keys[i]));
}

}  // namespace

std::vector<std::int32_t> spatialOrder(std::int32_t taggedCount,
                                       std::span<const double> coordinates) {
  std::vector<std::int32_t> order(coordinates.size() / 3);
  std::iota(order.begin(), order.end(), 0);
  const MortonCells cells(coordinates);
  const auto t = asIndex(taggedCount);
  sortByPosition(std::span(order).first(t), cells, coordinates);
  sortByPosition(std::span(order).subspan(t), cells, coordinates);
  return order;
}

DoubleCover coverInOrder(const std::vector<std::int32_t>& order, std::int32_t taggedCount,
                         std::span<const double> coordinates,
                         std::span<const std::int32_t> triangles) {
  UnsetVector<double> ordered(coordinates.size());
  for (std::size_t r = 0; r < order.size(); ++r) {
    for (std::size_t c = 0; c < 3; ++c) ordered[3 * r + c] = coordinates[3 * asIndex(order[r]) + c];
  }
  DoubleCover cover = coverOf(taggedCount, ordered, orderedTriangles(triangles, order));
  for (std::int32_t& vertex : cover.origin) vertex = order[asIndex(vertex)];
  return cover;
}

}  // namespace qelm
