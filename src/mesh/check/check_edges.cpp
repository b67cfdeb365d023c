// What meets at the edges. Only triangles of three different vertices take part.
#include <algorithm>
#include <cstdint>
#include <span>
#include <tuple>
#include <vector>

#include "interface/index.h"
#include "mesh/check/check.h"
#include "mesh/disjoint_sets.h"

namespace qelm {
namespace {

/// One side of one triangle.
struct Side {
  std::int32_t low;
  std::int32_t high;
  std::int32_t triangle;
  bool ascending;  ///< whether the triangle runs from low to high
};

Side sideOf(std::int32_t from, std::int32_t to, std::size_t triangle) {
  return {std::min(from, to), std::max(from, to), asInt(triangle), from < to};
}

bool sameEdge(const Side& a, const Side& b) { return a.low == b.low && a.high == b.high; }

/// All sides, those of one edge next to each other, by triangle.
std::vector<Side> sortedSides(const MeshView& mesh) {
  std::vector<Side> sides;
  sides.reserve(mesh.triangles.size());
  for (std::size_t j = 0; j < mesh.triangleCount(); ++j) {
    if (!mesh.isSound(j)) continue;
    const auto c = mesh.corners(j);
    for (std::size_t k = 0; k < 3; ++k) sides.push_back(sideOf(c[k], c[(k + 1) % 3], j));
  }
  std::sort(sides.begin(), sides.end(), [](const Side& a, const Side& b) {
    return std::tie(a.low, a.high, a.triangle) < std::tie(b.low, b.high, b.triangle);
  });
  return sides;
}

/// Groups of boundary edges that hang together at vertices.
class Boundary {
 public:
  explicit Boundary(std::size_t vertexCount) : groups_(vertexCount), present_(vertexCount) {}

  void add(const Side& side) {
    groups_.unite(side.low, side.high);
    present_[asIndex(side.low)] = true;
    present_[asIndex(side.high)] = true;
  }

  void noteLoops(QelmFinding& finding) {
    for (std::size_t i = 0; i < present_.size(); ++i) {
      const auto v = asInt(i);
      if (present_[i] && groups_.root(v) == v) note(finding, i);
    }
  }

 private:
  DisjointSets groups_;
  std::vector<bool> present_;
};

/// The sides at one edge.
void noteEdge(std::span<const Side> sides, Boundary& boundary, QelmMeshReport& report) {
  const auto triangle = asIndex(sides.front().triangle);
  if (sides.size() == 1) boundary.add(sides.front());
  if (sides.size() > 2) note(report.crowdedEdge, triangle);
  if (sides.size() == 2 && sides[0].ascending == sides[1].ascending) {
    note(report.opposedEdge, triangle);
  }
}

}  // namespace

void checkEdges(const MeshView& mesh, QelmMeshReport& report) {
  const std::vector<Side> sides = sortedSides(mesh);
  Boundary boundary(mesh.vertexCount());
  for (auto edge = sides.begin(); edge != sides.end();) {
    const auto end =
        std::find_if(edge, sides.end(), [&](const Side& side) { return !sameEdge(*edge, side); });
    noteEdge({&*edge, asIndex(end - edge)}, boundary, report);
    edge = end;
  }
  boundary.noteLoops(report.boundaryLoop);
}

}  // namespace qelm
