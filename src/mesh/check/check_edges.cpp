// The triangles at each edge: half-edges sorted by their vertices, so that those of one edge stand
// next to each other. Only triangles of three different vertices take part.
//
//   triangles (0,1,2) (2,1,3)     low high triangle ascending
//                                  0    1     0       yes
//                                  0    2     0       no
//                                  1    2     0       yes    } one edge: its two triangles run
//                                  1    2     1       no     } through it in opposite directions
//                                  1    3     1       yes
//                                  2    3     1       no
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

/// A half-edge: one edge of one triangle.
struct HalfEdge {
  std::int32_t low;
  std::int32_t high;
  std::int32_t triangle;
  bool ascending;  ///< whether the triangle runs through it from low to high
};

HalfEdge halfEdge(std::int32_t from, std::int32_t to, std::size_t triangle) {
  return {std::min(from, to), std::max(from, to), asInt(triangle), from < to};
}

bool sameEdge(const HalfEdge& a, const HalfEdge& b) { return a.low == b.low && a.high == b.high; }

/// All half-edges, those of one edge next to each other, by triangle.
std::vector<HalfEdge> sortedHalfEdges(const MeshView& mesh) {
  std::vector<HalfEdge> halfEdges;
  halfEdges.reserve(mesh.triangles.size());
  for (std::size_t j = 0; j < mesh.triangleCount(); ++j) {
    if (!mesh.isSound(j)) continue;
    const auto c = mesh.corners(j);
    for (std::size_t k = 0; k < 3; ++k) halfEdges.push_back(halfEdge(c[k], c[(k + 1) % 3], j));
  }
  std::sort(halfEdges.begin(), halfEdges.end(), [](const HalfEdge& a, const HalfEdge& b) {
    return std::tie(a.low, a.high, a.triangle) < std::tie(b.low, b.high, b.triangle);
  });
  return halfEdges;
}

/// The boundary edges, grouped by shared vertices with union-find: each group is a loop.
class Boundary {
 public:
  explicit Boundary(std::size_t vertexCount) : groups_(vertexCount), present_(vertexCount) {}

  void add(const HalfEdge& edge) {
    groups_.unite(edge.low, edge.high);
    present_[asIndex(edge.low)] = true;
    present_[asIndex(edge.high)] = true;
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

/// Takes the half-edges of one edge.
void noteEdge(std::span<const HalfEdge> halfEdges, Boundary& boundary, QelmMeshReport& report) {
  const auto triangle = asIndex(halfEdges.front().triangle);
  if (halfEdges.size() == 1) boundary.add(halfEdges.front());
  if (halfEdges.size() > 2) note(report.crowdedEdge, triangle);
  if (halfEdges.size() == 2 && halfEdges[0].ascending == halfEdges[1].ascending) {
    note(report.opposedEdge, triangle);
  }
}

}  // namespace

void checkEdges(const MeshView& mesh, QelmMeshReport& report) {
  const std::vector<HalfEdge> halfEdges = sortedHalfEdges(mesh);
  Boundary boundary(mesh.vertexCount());
  for (auto edge = halfEdges.begin(); edge != halfEdges.end();) {
    const auto end = std::find_if(edge, halfEdges.end(),
                                  [&](const HalfEdge& other) { return !sameEdge(*edge, other); });
    noteEdge({&*edge, asIndex(end - edge)}, boundary, report);
    edge = end;
  }
  boundary.noteLoops(report.boundaryLoop);
}

}  // namespace qelm
