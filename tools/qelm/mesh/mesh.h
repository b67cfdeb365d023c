// The meshes that travel through the tool. Everything is numbered from 0.
#ifndef QELM_TOOLS_MESH_H
#define QELM_TOOLS_MESH_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "text/index.h"
#include "text/room.h"

namespace qelm::tool {

using Point = std::array<double, 3>;

/// `more` behind what is there already; not a copy of it if there is nothing.
template <class Number>
void appendOrMove(std::vector<Number> more, std::vector<Number>& to) {
  if (to.empty())
    to = std::move(more);
  else
    to.insert(to.end(), more.begin(), more.end());
}

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

/// Points, packed as the library takes them.
class Points {
 public:
  std::size_t size() const { return coordinates_.size() / 3; }
  bool empty() const { return coordinates_.empty(); }
  Point operator[](std::size_t k) const {
    return {coordinates_[3 * k], coordinates_[3 * k + 1], coordinates_[3 * k + 2]};
  }
  void reserve(std::size_t points) { coordinates_.reserve(3 * points); }
  /// For so many more.
  void expect(std::size_t points) { makeRoom(coordinates_, 3 * points); }
  void push_back(const Point& point) {
    coordinates_.insert(coordinates_.end(), point.begin(), point.end());
  }
  /// Those of `more`, after those that are here.
  void append(std::vector<double> more) { appendOrMove(std::move(more), coordinates_); }
  std::vector<double> takeCoordinates() { return std::move(coordinates_); }

 private:
  std::vector<double> coordinates_;
};

/// What readers must know of triangles: whether their corners are in range, and all different.
struct TriangleFacts {
  std::uint32_t highest = 0;  ///< of their corners, negative ones above all others
  bool repeat = false;        ///< whether one of them names a vertex twice

  TriangleFacts() = default;
  explicit TriangleFacts(std::span<const int> corners) {
    std::uint32_t most = 0;
    unsigned repeats = 0;  // numbers, not truths: no branch for each
    for (std::size_t k = 0; k + 3 <= corners.size(); k += 3) {
      const auto a = static_cast<std::uint32_t>(corners[k]);
      const auto b = static_cast<std::uint32_t>(corners[k + 1]);
      const auto c = static_cast<std::uint32_t>(corners[k + 2]);
      most = std::max(std::max(most, a), std::max(b, c));
      repeats |= static_cast<unsigned>(a == b) | static_cast<unsigned>(b == c) |
                 static_cast<unsigned>(c == a);
    }
    highest = most;
    repeat = repeats != 0;
  }
  void add(const TriangleFacts& more) {
    highest = std::max(highest, more.highest);
    repeat = repeat || more.repeat;
  }
};

/// Corners one after another, a sink of numbers (see encodings/numbers.h). Each block is looked at
/// for the facts while it is in the nearest cache: a pass over all of them would wait for memory
/// again.
class Corners {
 public:
  using Number = int;
  std::size_t size() const { return numbers_.size(); }
  std::span<const int> all() const { return numbers_; }
  /// Of those that make whole triangles.
  const TriangleFacts& facts() const { return facts_; }
  void expect(std::size_t count) { makeRoom(numbers_, count); }
  void append(std::span<const int> block) {
    numbers_.insert(numbers_.end(), block.begin(), block.end());
    look();
  }
  void push_back(int corner) {
    numbers_.push_back(corner);
    if (numbers_.size() == looked_ + 3) look();
  }
  std::vector<int> take() { return std::move(numbers_); }

 private:
  void look() {
    const std::size_t whole = (numbers_.size() - looked_) / 3 * 3;
    facts_.add(TriangleFacts(std::span(numbers_).subspan(looked_, whole)));
    looked_ += whole;
  }

  std::vector<int> numbers_;
  std::size_t looked_ = 0;  ///< so many of them
  TriangleFacts facts_;
};

/// Polygons, packed: corners one after another, and where each polygon's end. A million arrays of
/// their own would take longer than reading the file.
class Faces {
 public:
  std::size_t size() const { return ends_.empty() ? corners_.size() / 3 : ends_.size(); }
  bool empty() const { return size() == 0; }
  /// Whether each has three corners.
  bool areTriangles() const { return ends_.empty(); }
  std::span<const int> operator[](std::size_t face) const {
    if (areTriangles()) return {corners_.data() + 3 * face, 3};
    const std::size_t begin = face == 0 ? 0 : ends_[face - 1];
    return {corners_.data() + begin, ends_[face] - begin};
  }
  /// Of triangles: whether each corner is the number of one of `count` points.
  bool areAllBelow(std::size_t count) const { return empty() || facts_.highest < count; }
  /// Of triangles: whether one names a vertex twice.
  bool repeatCorners() const { return facts_.repeat; }
  void reserve(std::size_t faces) { corners_.reserve(3 * faces); }
  void push_back(std::span<const int> corners) {
    if (areTriangles() && corners.size() != 3) noteEnds();
    for (const int corner : corners) corners_.push_back(corner);
    if (areTriangles() && corners.size() == 3)
      facts_.add(TriangleFacts(corners));
    else
      ends_.push_back(corners_.size());
  }
  void push_back(std::initializer_list<int> corners) {
    push_back(std::span<const int>(corners.begin(), corners.size()));
  }
  /// Three corners each.
  void appendTriangles(std::vector<int> corners, const TriangleFacts& facts) {
    const std::size_t before = corners_.size();
    facts_.add(facts);
    appendOrMove(std::move(corners), corners_);
    if (areTriangles()) return;
    for (std::size_t end = before + 3; end <= corners_.size(); end += 3) ends_.push_back(end);
  }
  std::vector<int> takeCorners() { return std::move(corners_); }

 private:
  void noteEnds() {
    for (std::size_t end = 3; end <= corners_.size(); end += 3) ends_.push_back(end);
  }

  std::vector<int> corners_;
  std::vector<std::size_t> ends_;  ///< empty while all are triangles
  TriangleFacts facts_;            ///< while all are triangles
};

/// What a file holds: points, and polygons between them. Only the range of indices is checked.
struct PolygonSoup {
  Points points;
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
