#include "mesh/half_edges.h"

#include <algorithm>
#include <tuple>

namespace qelm::tool {

std::vector<HalfEdge> sortedHalfEdges(const Mesh& mesh) {
  std::vector<HalfEdge> halfEdges;
  halfEdges.reserve(mesh.triangles.size());
  for (int t = 0; t < mesh.triangleCount(); ++t)
    for (int k = 0; k < 3; ++k) {
      const int from = mesh.corner(t, k + 1);
      const int to = mesh.corner(t, k + 2);
      halfEdges.push_back({std::min(from, to), std::max(from, to), 3 * t + k, from < to});
    }
  std::sort(halfEdges.begin(), halfEdges.end(), [](const HalfEdge& a, const HalfEdge& b) {
    return std::tie(a.low, a.high, a.index) < std::tie(b.low, b.high, b.index);
  });
  return halfEdges;
}

}  // namespace qelm::tool
