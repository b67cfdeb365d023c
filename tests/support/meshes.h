// Named test meshes. Everything is in input order, outward or upward oriented.
#ifndef QELM_TESTS_SUPPORT_MESHES_H
#define QELM_TESTS_SUPPORT_MESHES_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

namespace qelm::test {

using Field = std::vector<double>;

struct Point {
  double x, y, z;
};

/// A triangle mesh with one tag per vertex (0 unless set).
struct Mesh {
  std::vector<double> vertices;         ///< 3n, packed xyz
  std::vector<std::int32_t> triangles;  ///< 3m
  std::vector<std::int32_t> tags;       ///< n

  int vertexCount() const { return static_cast<int>(vertices.size() / 3); }
  int triangleCount() const { return static_cast<int>(triangles.size() / 3); }
  Point point(int vertex) const;

  /// Copies with other tags.
  Mesh withTags(std::vector<std::int32_t> newTags) const;
  Mesh withTagged(std::initializer_list<int> vertexIndices, std::int32_t tag = 1) const;
  Mesh withBoundaryTagged(std::int32_t tag = 1) const;
  Mesh withEveryVertexTagged(std::int32_t tag = 1) const;

  /// f evaluated at every vertex.
  template <class Function>
  Field sample(Function f) const {
    Field field;
    for (int i = 0; i < vertexCount(); ++i) field.push_back(f(point(i)));
    return field;
  }

  /// A copy with every point moved by f.
  template <class Function>
  Mesh mapped(Function f) const {
    Mesh copy = *this;
    for (int i = 0; i < vertexCount(); ++i) {
      const Point p = f(point(i));
      const auto base = 3 * static_cast<std::size_t>(i);
      copy.vertices[base] = p.x;
      copy.vertices[base + 1] = p.y;
      copy.vertices[base + 2] = p.z;
    }
    return copy;
  }
};

/// (0,0,0), (1,0,0), (0,1,0).
Mesh rightTriangle();

/// The right triangle, its first vertex tagged 3, and another one far from it without a tag, whose
/// rows of the matrix are exactly singular.
Mesh twoPartsOneTagged();

/// Unit square as two triangles over the diagonal 0-2: 4 vertices.
Mesh twoTriangles();

/// columns x rows vertices on the unit square in z = 0, row after row, diagonals
/// all one way: 2 (columns-1) (rows-1) triangles.
Mesh gridMesh(int columns, int rows);
/// Unit sphere: an icosahedron subdivided `levels` times. 10 * 4^levels + 2 vertices.
Mesh sphereMesh(int levels);
/// Torus with radii 2 and 0.75, around x around vertices.
Mesh torusMesh(int aroundAxis, int aroundTube);
/// A graph z = f(x, y) over a jittered grid: open, curved, irregular.
Mesh openSurface(int columns, int rows, std::uint64_t seed);
/// A strip of triangles whose height is `aspect` times their base.
Mesh sliverStrip(int quads, double aspect);
/// A triangle fan around vertex 0, closed or open.
Mesh fan(int triangles);

/// Vertices on edges that belong to exactly one triangle.
std::vector<bool> boundaryVertices(const Mesh& mesh);
/// The same surface with its vertices renumbered: new index of i is newIndex[i].
Mesh relabelled(const Mesh& mesh, const std::vector<std::int32_t>& newIndex);
/// Every triangle with three vertices of its own, as an STL file has them.
Mesh asSoup(const Mesh& mesh);

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_MESHES_H
