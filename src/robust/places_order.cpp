#include "robust/places_order.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>

#include "mesh/vec3.h"
#include "robust/triangle_shape.h"

namespace qelm {
namespace {

using Corners = std::array<std::int32_t, 3>;

std::vector<std::int32_t> orderedTriangles(std::span<const std::int32_t> triangles,
                                           const std::vector<std::int32_t>& order) {
  std::vector<std::int32_t> rank(order.size());
  for (std::size_t r = 0; r < order.size(); ++r)
    rank[asIndex(order[r])] = static_cast<std::int32_t>(r);
  std::vector<Corners> ordered(triangles.size() / 3);
  for (std::size_t j = 0; j < ordered.size(); ++j) {
    for (std::size_t k = 0; k < 3; ++k) ordered[j][k] = rank[asIndex(triangles[3 * j + k])];
    std::sort(ordered[j].begin(), ordered[j].end());
  }
  std::sort(ordered.begin(), ordered.end());
  std::vector<std::int32_t> packed;
  packed.reserve(triangles.size());
  for (const Corners& corners : ordered)
    packed.insert(packed.end(), corners.begin(), corners.end());
  return packed;
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
  const auto isBefore = [&](std::int32_t v, std::int32_t w) {
    for (std::size_t c = 0; c < 3; ++c) {
      const double x = coordinates[3 * asIndex(v) + c];
      const double y = coordinates[3 * asIndex(w) + c];
      if (x != y) return x < y;
    }
    return v < w;
  };
  std::vector<std::int32_t> order(coordinates.size() / 3);
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.begin() + taggedCount, isBefore);
  std::sort(order.begin() + taggedCount, order.end(), isBefore);
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
