#include "robust/places_order.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <tuple>

#include "mesh/vec3.h"
#include "robust/triangle_shape.h"

namespace qelm {
namespace {

using Corners = std::array<std::int32_t, 3>;

Corners ascending(std::int32_t a, std::int32_t b, std::int32_t c) {
  const std::int32_t low = std::min(a, b), high = std::max(a, b);
  return {std::min(low, c), std::max(low, std::min(high, c)), std::max(high, c)};
}

/// Corners ascending in each, sorted: by the first corner into buckets, which have few each.
std::vector<std::int32_t> orderedTriangles(std::span<const std::int32_t> triangles,
                                           const std::vector<std::int32_t>& order) {
  std::vector<std::int32_t> rank(order.size());
  for (std::size_t r = 0; r < order.size(); ++r)
    rank[asIndex(order[r])] = static_cast<std::int32_t>(r);
  const auto cornersOf = [&](std::size_t j) {
    return ascending(rank[asIndex(triangles[j])], rank[asIndex(triangles[j + 1])],
                     rank[asIndex(triangles[j + 2])]);
  };
  std::vector<std::size_t> starts(order.size() + 1);
  for (std::size_t j = 0; j < triangles.size(); j += 3) ++starts[asIndex(cornersOf(j)[0])];
  std::partial_sum(starts.begin(), starts.end(), starts.begin());
  std::vector<Corners> ordered(triangles.size() / 3);
  // Each bucket's start moves from its end to its beginning.
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const Corners corners = cornersOf(j);
    ordered[--starts[asIndex(corners[0])]] = corners;
  }
  std::vector<std::int32_t>().swap(rank);
  for (std::size_t first = 0; first < order.size(); ++first)
    std::sort(ordered.begin() + static_cast<std::ptrdiff_t>(starts[first]),
              ordered.begin() + static_cast<std::ptrdiff_t>(starts[first + 1]));
  std::vector<std::int32_t> packed(triangles.size());
  for (std::size_t j = 0; j < ordered.size(); ++j) {
    for (std::size_t k = 0; k < 3; ++k) packed[3 * j + k] = ordered[j][k];
  }
  return packed;
}

/// Cells of a cube around all places, 1024 along each edge, on a curve that stays near where it
/// is (Morton, A computer oriented geodetic data base, 1966): vertices that are neighbours in space
/// are so in memory, mostly.
class Cells {
 public:
  explicit Cells(std::span<const double> coordinates) {
    // Halves, so that differences are finite.
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
      const double half = coordinates[i] / 2;
      low_[i % 3] = i < 3 ? half : std::min(low_[i % 3], half);
    }
    for (std::size_t i = 0; i < coordinates.size(); ++i)
      extent_ = std::max(extent_, coordinates[i] / 2 - low_[i % 3]);
  }

  /// Of a place, below 2^30.
  std::uint64_t numberOf(const double* place) const {
    if (extent_ == 0) return 0;
    std::uint64_t number = 0;
    for (std::size_t c = 0; c < 3; ++c) {
      const double share = (place[c] / 2 - low_[c]) / extent_;  // 0 .. 1
      number |= spread(static_cast<std::uint64_t>(share * 1023)) << c;
    }
    return number;
  }

 private:
  /// Two zeros between any two of ten bits.
  static std::uint64_t spread(std::uint64_t x) {
    x = (x | x << 16) & 0x030000ff;
    x = (x | x << 8) & 0x0300f00f;
    x = (x | x << 4) & 0x030c30c3;
    return (x | x << 2) & 0x09249249;
  }

  std::array<double, 3> low_ = {};
  double extent_ = 0;
};

/// By the 30 bits above the lowest 32; keys that agree in them stay in their order.
void sortByCell(std::vector<std::uint64_t>& keys) {
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

/// Sorts vertices, which come in ascending order, by cell, then by x, y, z, then by number.
void sortByPlace(std::span<std::int32_t> vertices, const Cells& cells,
                 std::span<const double> coordinates) {
  std::vector<std::uint64_t> keys;
  keys.reserve(vertices.size());
  for (const std::int32_t v : vertices)
    keys.push_back(cells.numberOf(&coordinates[3 * asIndex(v)]) << 32 |
                   static_cast<std::uint64_t>(v));
  sortByCell(keys);
  const auto place = [&](std::uint64_t key) {
    const double* const p = &coordinates[3 * std::size_t{static_cast<std::uint32_t>(key)}];
    return std::tuple(p[0], p[1], p[2], key);
  };
  for (auto begin = keys.begin(); begin != keys.end();) {
    const auto end = std::find_if(begin + 1, keys.end(),
                                  [&](std::uint64_t key) { return key >> 32 != *begin >> 32; });
    if (end - begin > 1)
      std::sort(begin, end, [&](std::uint64_t a, std::uint64_t b) { return place(a) < place(b); });
    begin = end;
  }
  for (std::size_t i = 0; i < keys.size(); ++i)
    vertices[i] = static_cast<std::int32_t>(static_cast<std::uint32_t>(keys[i]));
}

}  // namespace

bool haveSteepTriangle(std::int32_t taggedCount, std::span<const double> coordinates,
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

std::vector<std::int32_t> orderOfPlaces(std::int32_t taggedCount,
                                        std::span<const double> coordinates) {
  std::vector<std::int32_t> order(coordinates.size() / 3);
  std::iota(order.begin(), order.end(), 0);
  const Cells cells(coordinates);
  const auto t = static_cast<std::size_t>(taggedCount);
  sortByPlace(std::span(order).first(t), cells, coordinates);
  sortByPlace(std::span(order).subspan(t), cells, coordinates);
  return order;
}

DoubleCover coverInOrder(const std::vector<std::int32_t>& order, std::int32_t taggedCount,
                         std::span<const double> coordinates,
                         std::span<const std::int32_t> triangles) {
  std::vector<double> places(coordinates.size());
  for (std::size_t r = 0; r < order.size(); ++r) {
    for (std::size_t c = 0; c < 3; ++c) places[3 * r + c] = coordinates[3 * asIndex(order[r]) + c];
  }
  DoubleCover cover = coverOf(taggedCount, places, orderedTriangles(triangles, order));
  for (std::int32_t& vertex : cover.origin) vertex = order[asIndex(vertex)];
  return cover;
}

}  // namespace qelm
