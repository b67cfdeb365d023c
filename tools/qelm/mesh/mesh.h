// The meshes that travel through the tool. Everything is numbered from 0.
#ifndef QELM_TOOLS_MESH_H
#define QELM_TOOLS_MESH_H

#include <array>
#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace qelm::tool {

using Point = std::array<double, 3>;

/// What a file holds: points and polygons over them, nothing checked but that
/// every index is in range.
struct PolygonSoup {
  std::vector<Point> points;
  std::vector<std::vector<int>> faces;
  /// True for formats in which every facet carries its own corner points.
  bool facetsOwnTheirCorners = false;
  /// What the file holds besides, as people call it: "normals", "colours".
  std::set<std::string> passedOver;
};

/// A triangle mesh in the layout that the library takes.
struct Mesh {
  std::vector<double> vertices;  ///< 3n, packed xyz
  std::vector<int> triangles;    ///< 3m
  /// For each triangle the face of the file that it is part of; empty when
  /// triangle and face are the same everywhere.
  std::vector<int> faceOfTriangle;
  int leftOutFaces = 0;  ///< faces of the file that had fewer than three different corners

  int vertexCount() const { return static_cast<int>(vertices.size() / 3); }
  int triangleCount() const { return static_cast<int>(triangles.size() / 3); }
  Point point(int vertex) const {
    const auto base = 3 * static_cast<std::size_t>(vertex);
    return {vertices[base], vertices[base + 1], vertices[base + 2]};
  }
  std::span<const int, 3> corners(int triangle) const {
    return std::span<const int, 3>(triangles.data() + 3 * static_cast<std::size_t>(triangle), 3);
  }
};

}  // namespace qelm::tool

#endif
