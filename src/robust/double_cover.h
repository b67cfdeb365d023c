// The double cover: a surface of two sheets over any set of triangles, on which every edge has two
// faces.
//
// In: triangles, non-manifold or open ones, too. Out: half-edges with twins. Each triangle has a
// front and a back face, which are glued along edges as paint would flow around them (Sharp and
// Crane, A Laplacian for nonmanifold triangle meshes, 2020). At an edge of one triangle the front
// is glued to its own back, at an edge of two each face to the one on the same side of the other
// triangle, at an edge of three or more each face to the one that it looks at. Seen along the edge:
//
//      f2 \  | f1            the upper face of f0 is glued to the right face of f1, the left
//          \ |               face of f1 to the right face of f2, the lower face of f2 to the
//           \|_____ f0       lower face of f0
//
// The cover is closed and orientable, so that edges can be flipped on it. An edge with two
// prescribed ends is not glued at all: flips would remove it from the mesh, and a prescribed curve
// would become a row of points.
//
// If every other edge has two triangles and each part of the mesh is orientable, the two sheets are
// copies of each other, and one is enough: that of the fronts, with some triangles turned over so
// that each part is oriented like its first triangle.
//
// Cost: linear in the triangles, but for sorting edge fans.
#ifndef QELM_ROBUST_DOUBLE_COVER_H
#define QELM_ROBUST_DOUBLE_COVER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "interface/index.h"
#include "interface/unset.h"

namespace qelm {

/// Half-edge 3 f + k of face f leads from its corner k to the next corner. Faces 0 .. m-1 are the
/// triangles' fronts, faces m .. 2m-1 (with two sheets) their backs, whose corners are the
/// triangle's corners 0, 2, 1. So are those of a front that is turned over, which happens on one
/// sheet only.
struct DoubleCover {
  using HalfEdge = std::int32_t;
  static constexpr HalfEdge kNone = -1;

  int sheets;                        ///< 1 or 2
  UnsetVector<std::int32_t> origin;  ///< vertex where a half-edge starts, in system order
  std::vector<HalfEdge> twin;        ///< the half-edge that it is glued to, or kNone
  UnsetVector<double> cotangent;     ///< of the opposite angle
  std::int64_t flatTriangles;        ///< triangles whose height was raised

  std::size_t size() const { return twin.size(); }
  /// The number of half-edges of the fronts, which come first.
  HalfEdge fronts() const { return static_cast<HalfEdge>(size() / asIndex(sheets)); }
  /// On two sheets, before any flip: the half-edge of the back along the same edge.
  HalfEdge back(HalfEdge front) const { return fronts() + 3 * (front / 3) + 2 - front % 3; }
  static HalfEdge next(HalfEdge h) { return h % 3 == 2 ? h - 2 : h + 1; }
  static HalfEdge previous(HalfEdge h) { return h % 3 == 0 ? h + 2 : h - 1; }
};

/// The cover of a mesh in system order whose vertices 0 .. taggedCount-1 are prescribed, with
/// finite coordinates and three different vertices in each triangle.
///
/// The result takes 48 bytes for each triangle and sheet. Three quarters are allocated after 28
/// bytes for each triangle and 4 for each vertex, needed while edges are found, are freed. Throws
/// std::bad_alloc above 2^31 / 6 triangles.
DoubleCover coverOf(std::int32_t taggedCount, std::span<const double> coordinates,
                    std::span<const std::int32_t> triangles);

}  // namespace qelm

#endif  // QELM_ROBUST_DOUBLE_COVER_H
