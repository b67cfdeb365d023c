// The half-edges of a mesh grouped by edge.
//
// In: triangles. Half-edge 3 t + k leads from corner k of triangle t to the next corner. Out: the
// half-edges sorted by their lower vertex, their higher vertex and their own number: by counting
// sort into a bucket for each lower vertex, then each bucket, which is small, by itself. Cost:
// linear in the triangles.
//
//   triangles (0,1,2) (0,2,3)    half-edges 0:0-1 1:1-2 2:2-0 3:0-2 4:2-3 5:3-0
//
//   bucket 0   (1: 0) (2: 2) (2: 3) (3: 5)      (higher vertex: half-edge)
//   bucket 1   (2: 1)
//   bucket 2   (3: 4)                           edge 0-2 has half-edges 2 and 3
#ifndef QELM_ROBUST_MESH_EDGES_H
#define QELM_ROBUST_MESH_EDGES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "interface/index.h"
#include "interface/unset.h"

namespace qelm {

/// A half-edge in the bucket of its lower vertex. One word, so that it is sorted at once: from the
/// highest bit the higher vertex, the number, and whether it leads from the lower vertex.
class MeshHalfEdge {
 public:
  MeshHalfEdge() = default;
  MeshHalfEdge(std::int32_t higherVertex, std::int32_t number, bool leadsUp)
      : key_(std::uint64_t{static_cast<std::uint32_t>(higherVertex)} << 32 |
             std::uint64_t{static_cast<std::uint32_t>(number)} << 1 | (leadsUp ? 1 : 0)) {}

  std::int32_t higherVertex() const { return asInt(key_ >> 32); }
  std::int32_t number() const { return asInt(static_cast<std::uint32_t>(key_) >> 1); }
  bool leadsUp() const { return (key_ & 1) != 0; }
  friend bool operator<(MeshHalfEdge a, MeshHalfEdge b) { return a.key_ < b.key_; }

 private:
  std::uint64_t key_;
};

class MeshEdges {
 public:
  MeshEdges(std::size_t vertexCount, std::span<const std::int32_t> triangles);

  /// Calls visit(lowerVertex, halfEdges) for each edge, in ascending order of its vertices.
  template <class Visit>
  void forEach(Visit visit) const {
    std::size_t first = 0;
    for (std::size_t v = 0; v + 1 < starts_.size(); ++v) {
      while (first < starts_[v + 1]) {
        std::size_t end = first + 1;
        while (end < starts_[v + 1] &&
               halfEdges_[end].higherVertex() == halfEdges_[first].higherVertex())
          ++end;
        visit(asInt(v), std::span<const MeshHalfEdge>(halfEdges_.data() + first, end - first));
        first = end;
      }
    }
  }

 private:
  std::vector<std::uint32_t> starts_;  ///< of each bucket
  UnsetVector<MeshHalfEdge> halfEdges_;
};

}  // namespace qelm

#endif  // QELM_ROBUST_MESH_EDGES_H
