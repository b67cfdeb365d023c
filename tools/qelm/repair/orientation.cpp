#include "repair/orientation.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "mesh/half_edges.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

struct Neighbour {
  int triangle;
  bool isOpposed;  ///< both run along their edge in one direction
};

using Neighbours = std::vector<std::vector<Neighbour>>;  ///< of each triangle

Neighbours neighboursOf(const Mesh& mesh) {
  Neighbours neighbours(asIndex(mesh.triangleCount()));
  forEachEdge(sortedHalfEdges(mesh), [&neighbours](std::span<const HalfEdge> edge) {
    if (edge.size() != 2) return;
    const bool isOpposed = edge[0].isUpward == edge[1].isUpward;
    for (std::size_t k = 0; k < 2; ++k)
      neighbours[asIndex(edge[k].triangle())].push_back({edge[1 - k].triangle(), isOpposed});
  });
  return neighbours;
}

enum class Turn : char { unknown, asItIs, turned };

Turn acrossEdge(Turn turn, bool isOpposed) {
  return isOpposed == (turn == Turn::asItIs) ? Turn::turned : Turn::asItIs;
}

struct Piece {
  std::vector<int> triangles;
  int opposed = 0;  ///< edges that stay so
};

/// Decides about the triangles that are joined to `start`.
Piece walkFrom(int start, const Neighbours& neighbours, std::vector<Turn>& turns) {
  turns[asIndex(start)] = Turn::asItIs;
  Piece piece{{start}};
  int opposed = 0;
  for (std::size_t k = 0; k < piece.triangles.size(); ++k) {
    const std::size_t t = asIndex(piece.triangles[k]);
    for (const Neighbour& next : neighbours[t]) {
      Turn& turn = turns[asIndex(next.triangle)];
      const Turn wanted = acrossEdge(turns[t], next.isOpposed);
      if (turn == Turn::unknown) {
        turn = wanted;
        piece.triangles.push_back(next.triangle);
      } else if (turn != wanted) {
        ++opposed;
      }
    }
  }
  piece.opposed = opposed / 2;  // each was seen from both of its triangles
  return piece;
}

}  // namespace

Orientation orientAlike(Mesh& mesh) {
  const Neighbours neighbours = neighboursOf(mesh);
  std::vector<Turn> turns(neighbours.size(), Turn::unknown);
  const auto isTurned = [&turns](int t) { return turns[asIndex(t)] == Turn::turned; };
  Orientation result;
  for (int start = 0; start < mesh.triangleCount(); ++start) {
    if (turns[asIndex(start)] != Turn::unknown) continue;
    const Piece piece = walkFrom(start, neighbours, turns);
    result.opposed += piece.opposed;
    const auto count = std::count_if(piece.triangles.begin(), piece.triangles.end(), isTurned);
    const bool turnsTheRest = 2 * count > static_cast<std::ptrdiff_t>(piece.triangles.size());
    for (const int t : piece.triangles) {
      if (isTurned(t) == turnsTheRest) continue;
      const std::size_t base = 3 * asIndex(t);
      std::swap(mesh.triangles[base + 1], mesh.triangles[base + 2]);
      ++result.turned;
    }
  }
  return result;
}

}  // namespace qelm::tool
