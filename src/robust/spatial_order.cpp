#include "robust/spatial_order.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <tuple>

#include "interface/index.h"
#include "interface/unset.h"
#include "mesh/vec3.h"
#include "robust/triangle_shape.h"

namespace qelm {
namespace {

/// The triangles with their corners as ranks in `order`, ascending in each triangle, sorted: by
/// counting sort into a bucket for each first corner, then each bucket, which is small, by itself.
UnsetVector<std::int32_t> orderedTriangles(std::span<const std::int32_t> triangles,
                                           const std::vector<std::int32_t>& order) {
  std::vector<std::int32_t> rank(order.size());
  for (std::size_t r = 0; r < order.size(); ++r) rank[asIndex(order[r])] = asInt(r);
  const auto rankOf = [&](std::size_t j) { return rank[asIndex(triangles[j])]; };
  std::vector<std::uint32_t> starts(order.size() + 1);
  for (std::size_t j = 0; j < triangles.size(); j += 3)
    ++starts[asIndex(std::min({rankOf(j), rankOf(j + 1), rankOf(j + 2)}))];
  std::partial_sum(starts.begin(), starts.end(), starts.begin());
  // The higher corners of each triangle, the middle one in the upper half. Each bucket's start
  // moves down from its end.
  UnsetVector<std::uint64_t> higher(triangles.size() / 3);
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const std::int32_t a = rankOf(j), b = rankOf(j + 1), c = rankOf(j + 2);
    const std::int32_t low = std::min(a, b), high = std::max(a, b);
    const std::int32_t middle = std::max(low, std::min(high, c));
    higher[--starts[asIndex(std::min(low, c))]] = std::uint64_t{static_cast<std::uint32_t>(middle)}
                                                      << 32 |
                                                  static_cast<std::uint32_t>(std::max(high, c));
  }
  std::vector<std::int32_t>().swap(rank);
  UnsetVector<std::int32_t> ordered(triangles.size());
  for (std::size_t first = 0; first < order.size(); ++first) {
    const std::span bucket =
        std::span(higher).subspan(starts[first], starts[first + 1] - starts[first]);
    std::sort(bucket.begin(), bucket.end());
    for (std::size_t i = 0; i < bucket.size(); ++i) {
      std::int32_t* const triangle = &ordered[3 * (starts[first] + i)];
      triangle[0] = asInt(first);
      triangle[1] = asInt(bucket[i] >> 32);
      triangle[2] = asInt(static_cast<std::uint32_t>(bucket[i]));
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

bool hasSteepTriangle(std::int32_t taggedCount, std::span<const double> coordinates,
                      std::span<const std::int32_t> triangles) {
  const auto point = [&](std::int32_t v) {
    return Vec3{coordinates[3 * asIndex(v)], coordinates[3 * asIndex(v) + 1],
                coordinates[3 * asIndex(v) + 2]};
  };
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const std::int32_t a = triangles[j], b = triangles[j + 1], c = triangles[j + 2];
    if (std::max({a, b, c}) < taggedCount) continue;
    if (isSteep(point(a), point(b), point(c))) return true;
  }
  return false;
}

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
