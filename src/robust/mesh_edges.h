// The sides of a mesh's triangles, gathered by edge.
#ifndef QELM_ROBUST_MESH_EDGES_H
#define QELM_ROBUST_MESH_EDGES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qelm {

/// Side 3 t + k of triangle t leads from its k-th corner to the next one.
struct Side {
  std::int32_t higherEnd;
  std::int32_t side;
};

/// Every side of every triangle, sorted by lower end, then higher end, then number: sorted
/// into buckets of equal lower end by counting, and each small bucket by itself.
///
///   triangles (0,1,2) (0,2,3)     sides 0:0-1 1:1-2 2:2-0 3:0-2 4:2-3 5:3-0
///   bucket 0: (1: 0) (2: 2) (2: 3) (3: 5)    1: (2: 1)    2: (3: 4)
class MeshEdges {
 public:
  MeshEdges(std::size_t vertexCount, std::span<const std::int32_t> triangles);

  /// visit(lowerEnd, sides) for each edge, in ascending order of its ends.
  template <class Visit>
  void forEach(Visit visit) const {
    std::size_t first = 0;
    for (std::size_t v = 0; v + 1 < starts_.size(); ++v) {
      while (first < starts_[v + 1]) {
        std::size_t end = first + 1;
        while (end < starts_[v + 1] && sides_[end].higherEnd == sides_[first].higherEnd) ++end;
        visit(static_cast<std::int32_t>(v),
              std::span<const Side>(sides_.data() + first, end - first));
        first = end;
      }
    }
  }

 private:
  std::vector<std::size_t> starts_;
  std::vector<Side> sides_;
};

}  // namespace qelm

#endif  // QELM_ROBUST_MESH_EDGES_H
