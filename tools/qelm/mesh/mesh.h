// The meshes that travel through the tool. Everything is numbered from 0.
#ifndef QELM_TOOLS_MESH_H
#define QELM_TOOLS_MESH_H

#include <array>
#include <cstddef>
#include <initializer_list>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "text/index.h"

namespace qelm::tool {

using Point = std::array<double, 3>;

/// A number for each vertex, as a file names it.
struct VertexArray {
  std::string name;
  std::vector<double> values;  ///< n
};

/// The vertices of a file's faces that have a name in common.
struct VertexSet {
  std::string name;
  std::vector<int> vertices;  ///< in increasing order, each once
};

/// What a file says of its vertices besides their coordinates.
struct Attributes {
  std::vector<VertexArray> arrays;
  std::vector<VertexSet> groups;
  std::vector<VertexSet> materials;
};

/// Polygons, packed: corners one after another, and where each polygon's end. A million arrays of
/// their own would take longer than reading the file.
class Faces {
 public:
  std::size_t size() const { return ends_.size(); }
  bool empty() const { return ends_.empty(); }
  std::size_t cornerCount() const { return corners_.size(); }
  std::span<const int> operator[](std::size_t face) const {
    const std::size_t begin = face == 0 ? 0 : ends_[face - 1];
    return {corners_.data() + begin, ends_[face] - begin};
  }
  void reserve(std::size_t faces) {
    ends_.reserve(faces);
    corners_.reserve(3 * faces);
  }
  void push_back(std::span<const int> corners) {
    corners_.insert(corners_.end(), corners.begin(), corners.end());
    ends_.push_back(corners_.size());
  }
  void push_back(std::initializer_list<int> corners) {
    push_back(std::span<const int>(corners.begin(), corners.size()));
  }

 private:
  std::vector<int> corners_;
  std::vector<std::size_t> ends_;
};

/// What a file holds: points, and polygons between them. Only the range of indices is checked.
struct PolygonSoup {
  std::vector<Point> points;
  Faces faces;
  /// True for formats in which every facet carries its own corner points.
  bool facetsOwnTheirCorners = false;
  Attributes attributes;
  /// How many points were merged with an earlier one at exactly the same place.
  std::size_t mergedPoints = 0;
  /// What else the file holds, as people call it: "normals", "colours".
  std::set<std::string> passedOver;
};

/// A triangle mesh in the layout that the library takes.
struct Mesh {
  std::vector<double> vertices;  ///< 3n, packed xyz
  std::vector<int> triangles;    ///< 3m
  /// For each triangle the face of the file that it is part of; empty if triangles and faces are
  /// the same.
  std::vector<int> faceOfTriangle;
  Attributes attributes = {};
  int leftOutFaces = 0;  ///< faces of the file that had fewer than three different corners

  int vertexCount() const { return asInt(vertices.size() / 3); }
  int triangleCount() const { return asInt(triangles.size() / 3); }
  Point point(int vertex) const {
    const std::size_t base = 3 * asIndex(vertex);
    return {vertices[base], vertices[base + 1], vertices[base + 2]};
  }
  std::span<const int, 3> corners(int triangle) const {
    return std::span<const int, 3>(triangles.data() + 3 * asIndex(triangle), 3);
  }
  /// Corner k of a triangle; 3 is corner 0 again, and so on.
  int corner(int triangle, int k) const { return corners(triangle)[asIndex(k % 3)]; }
};

}  // namespace qelm::tool

#endif
