// What several selectors ask about a mesh, computed when the first one asks.
#ifndef QELM_TOOLS_MESH_INDEX_H
#define QELM_TOOLS_MESH_INDEX_H

#include <optional>
#include <string>
#include <vector>

#include "conditions/selectors.h"
#include "mesh/boundary.h"
#include "mesh/mesh.h"

namespace qelm::tool {

/// The distance of any two finite points: length(a - b), bit for bit, unless that would overflow or
/// underflow.
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
  /// The box of the used vertices.
  const Box& box();
  /// How far from a plane vertices still count as on it: a millionth of the box's diagonal.
  double tolerance();
  const std::vector<BoundaryLoop>& loops();
  /// 0 unless loops() was called.
  std::size_t loopCount() const { return loops_ ? loops_->size() : 0; }
  /// For each vertex the number of its connected part, counted by their lowest vertices; -1 if the
  /// vertex is in no triangle.
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
