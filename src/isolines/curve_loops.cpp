#include "isolines/curve_loops.h"

#include <algorithm>

#include "isolines/curve_points.h"

namespace qelm {
namespace {

/// Compares a closed sequence that starts at i with the same sequence that starts at j.
std::strong_ordering compareStarts(PointSequence closed, std::size_t i, std::size_t j) {
  for (std::size_t step = 0; step < closed.size(); ++step) {
    const auto order = comparePoints(closed[i], closed[j]);
    if (order != 0) return order;
    i = i + 1 < closed.size() ? i + 1 : 0;
    j = j + 1 < closed.size() ? j + 1 : 0;
  }
  return std::strong_ordering::equal;
}

}  // namespace

std::strong_ordering compareSequences(PointSequence a, PointSequence b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const auto order = comparePoints(a[i], b[i]);
    if (order != 0) return order;
  }
  return a.size() <=> b.size();
}

std::size_t leastStart(PointSequence closed) {
  std::size_t least = 0;
  for (std::size_t i = 1; i < closed.size(); ++i) {
    const auto order = comparePoints(closed[i], closed[least]);
    if (order < 0 || (order == 0 && compareStarts(closed, i, least) < 0)) least = i;
  }
  return least;
}

std::vector<std::uint32_t> sharedPoints(PointSequence sequence,
                                        std::span<const std::uint32_t> vertexNear) {
  if (vertexNear.empty()) return {};
  std::vector<std::size_t> nearVertices;
  for (std::size_t i = 0; i < sequence.size(); ++i) {
    if (vertexNear[i] != kNoVertex) nearVertices.push_back(i);
  }
  std::sort(nearVertices.begin(), nearVertices.end(), [&](std::size_t a, std::size_t b) {
    return comparePoints(sequence[a], sequence[b]) < 0;
  });

  std::vector<std::uint32_t> numbers;
  std::uint32_t lastNumber = 0;
  for (std::size_t i = 1; i < nearVertices.size(); ++i) {
    if (!samePoint(sequence[nearVertices[i]], sequence[nearVertices[i - 1]])) continue;
    numbers.resize(sequence.size(), 0);
    std::uint32_t& number = numbers[nearVertices[i - 1]];
    if (number == 0) number = ++lastNumber;
    numbers[nearVertices[i]] = number;
  }
  return numbers;
}

}  // namespace qelm
