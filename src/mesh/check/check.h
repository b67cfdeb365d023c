// What is wrong with a mesh, before anything is built from it. Any index, any coordinate and any
// tag is taken.
//
// In: a mesh. Out: a count and the lowest index of each defect. Each file looks for some of them:
//
//   check             indices out of range, repeated vertices of a triangle, unused vertices
//   check_geometry    coordinates that are not finite; area and size of triangles (quality)
//   check_parts       connected parts without a prescribed vertex: union-find over the triangles
//   check_edges       boundary loops, edges of three triangles or more: half-edges, sorted
//   check_repeats     equal triangles, vertices at one point: hash tables
//
// Cost: O(n) for n vertices and triangles, but for sorting the half-edges.
#ifndef QELM_MESH_CHECK_H
#define QELM_MESH_CHECK_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "interface/index.h"
#include "qelm.h"

namespace qelm {

/// A mesh as a caller hands it over: n vertices and tags, m triangles, n, m >= 1.
struct MeshView {
  std::span<const double> vertices;         ///< 3n, packed xyz
  std::span<const std::int32_t> triangles;  ///< 3m
  std::span<const std::int32_t> tags;       ///< n

  std::size_t vertexCount() const { return tags.size(); }
  std::size_t triangleCount() const { return triangles.size() / 3; }

  std::span<const std::int32_t> corners(std::size_t triangle) const {
    return triangles.subspan(3 * triangle, 3);
  }
  bool inRange(std::int32_t vertex) const { return vertex >= 0 && asIndex(vertex) < vertexCount(); }
  /// Whether a triangle names three different vertices of the mesh.
  bool isSound(std::size_t triangle) const;
  /// Whether the three coordinates of a vertex are numbers and not infinite.
  bool isFinite(std::size_t vertex) const;
};

/// A report with nothing in it.
QelmMeshReport emptyReport();

/// Counts one more defect; `first` is the lowest index, in whatever order defects are found.
void note(QelmFinding& finding, std::size_t index);

/// The whole report.
QelmMeshReport checkMesh(const MeshView& mesh);

/// The code of the report's first defect in the documented order, or 0.
int firstDefect(const QelmMeshReport& report);

// The parts of checkMesh(). Each fills findings of its own.
void checkIndices(const MeshView& mesh, QelmMeshReport& report);
void checkGeometry(const MeshView& mesh, QelmMeshReport& report);
void checkParts(const MeshView& mesh, QelmMeshReport& report);
void checkEdges(const MeshView& mesh, QelmMeshReport& report);
void checkRepeats(const MeshView& mesh, QelmMeshReport& report);

}  // namespace qelm

#endif  // QELM_MESH_CHECK_H
