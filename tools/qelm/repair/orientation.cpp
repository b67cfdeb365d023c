#include "repair/orientation.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

namespace qelm::tool {
namespace {

struct DirectedSide {
  int low, high;
  int triangle;
  bool isUpward;  ///< runs from the lower to the higher vertex
};

struct Neighbour {
  int triangle;
  bool isOpposed;  ///< both run along their side in one direction
};

std::vector<DirectedSide> sortedSides(const Mesh& mesh) {
  std::vector<DirectedSide> sides;
  sides.reserve(mesh.triangles.size());
  for (int t = 0; t < mesh.triangleCount(); ++t)
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = mesh.corners(t)[k];
      const int b = mesh.corners(t)[(k + 1) % 3];
      sides.push_back({std::min(a, b), std::max(a, b), t, a < b});
    }
  std::sort(sides.begin(), sides.end(), [](const DirectedSide& a, const DirectedSide& b) {
    return std::tie(a.low, a.high, a.triangle) < std::tie(b.low, b.high, b.triangle);
  });
  return sides;
}

std::vector<std::vector<Neighbour>> neighboursOf(const Mesh& mesh) {
  const std::vector<DirectedSide> sides = sortedSides(mesh);
  std::vector<std::vector<Neighbour>> neighbours(static_cast<std::size_t>(mesh.triangleCount()));
  for (std::size_t first = 0; first < sides.size();) {
    std::size_t last = first + 1;
    while (last < sides.size() && sides[last].low == sides[first].low &&
           sides[last].high == sides[first].high)
      ++last;
    if (last - first == 2) {
      const DirectedSide& a = sides[first];
      const DirectedSide& b = sides[first + 1];
      const bool isOpposed = a.isUpward == b.isUpward;
      neighbours[static_cast<std::size_t>(a.triangle)].push_back({b.triangle, isOpposed});
      neighbours[static_cast<std::size_t>(b.triangle)].push_back({a.triangle, isOpposed});
    }
    first = last;
  }
  return neighbours;
}

enum class Turn : char { unknown, asItIs, turned };

Turn across(Turn side, bool isOpposed) {
  return isOpposed == (side == Turn::asItIs) ? Turn::turned : Turn::asItIs;
}

}  // namespace

Orientation orientAlike(Mesh& mesh) {
  const auto neighbours = neighboursOf(mesh);
  std::vector<Turn> sides(neighbours.size(), Turn::unknown);
  Orientation result;
  for (int start = 0; start < mesh.triangleCount(); ++start) {
    if (sides[static_cast<std::size_t>(start)] != Turn::unknown) continue;
    sides[static_cast<std::size_t>(start)] = Turn::asItIs;
    std::vector<int> piece = {start};
    int opposed = 0;
    for (std::size_t k = 0; k < piece.size(); ++k) {
      const auto t = static_cast<std::size_t>(piece[k]);
      for (const Neighbour& next : neighbours[t]) {
        Turn& side = sides[static_cast<std::size_t>(next.triangle)];
        const Turn wanted = across(sides[t], next.isOpposed);
        if (side == Turn::unknown) {
          side = wanted;
          piece.push_back(next.triangle);
        } else if (side != wanted) {
          ++opposed;  // seen from both triangles
        }
      }
    }
    result.opposed += opposed / 2;
    const auto turned = std::count_if(piece.begin(), piece.end(), [&](int t) {
      return sides[static_cast<std::size_t>(t)] == Turn::turned;
    });
    const bool turnsTheRest = 2 * turned > static_cast<std::ptrdiff_t>(piece.size());
    for (const int t : piece) {
      if ((sides[static_cast<std::size_t>(t)] == Turn::turned) == turnsTheRest) continue;
      const std::size_t base = 3 * static_cast<std::size_t>(t);
      std::swap(mesh.triangles[base + 1], mesh.triangles[base + 2]);
      ++result.turned;
    }
  }
  return result;
}

}  // namespace qelm::tool
