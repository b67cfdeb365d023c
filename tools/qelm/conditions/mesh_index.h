// What conditions ask about a mesh again and again, found out once.
#ifndef QELM_TOOLS_MESH_INDEX_H
#define QELM_TOOLS_MESH_INDEX_H

#include <optional>
#include <string>
#include <vector>

#include "conditions/selectors.h"
#include "mesh/boundary.h"
#include "mesh/mesh.h"

namespace qelm::tool {

/// As length(a - b), bit for bit, wherever that neither overflows nor underflows.
long double distance(const Point& a, const Point& b);

class MeshIndex {
 public:
  /// Keeps a reference; the mesh has a vertex.
  explicit MeshIndex(const Mesh& mesh) : mesh_(mesh) {}

  const Mesh& mesh() const { return mesh_; }
  /// For each vertex whether it is in some triangle; others cannot be selected.
  const std::vector<bool>& used();
  /// The used vertex nearest to a point; of equally near ones the one with the lowest number.
  int nearestVertex(const Point& point);
  const Box& box();
  /// A millionth of the box's diagonal: what counts as on a plane.
  double tolerance();
  const std::vector<BoundaryLoop>& loops();
  /// 0 unless loops() was called.
  std::size_t loopCount() const { return loops_ ? loops_->size() : 0; }
  /// For each vertex the number of its connected part, by lowest vertex; -1 in no triangle.
  const std::vector<int>& parts();
  int partCount();

 private:
  const Mesh& mesh_;
  std::optional<std::vector<bool>> used_;
  std::optional<Box> box_;
  std::optional<std::vector<BoundaryLoop>> loops_;
  std::optional<std::vector<int>> parts_;
  int partCount_ = 0;
};

}  // namespace qelm::tool

#endif
