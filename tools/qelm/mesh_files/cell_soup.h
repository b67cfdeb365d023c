// Cells as simulation files have them become polygons. In: points, and cells of any of VTK's types.
// Out: a polygon soup of the cells that are faces, and how many others there were.
#ifndef QELM_TOOLS_CELL_SOUP_H
#define QELM_TOOLS_CELL_SOUP_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Where the corners of cells end in an array that has them one after another. Of triangles, which
/// most cells are, only how many they are.
class CellEnds {
 public:
  using Number = std::int64_t;
  std::size_t size() const { return size_; }
  bool areTriangles() const { return ends_.empty(); }
  std::int64_t operator[](std::size_t cell) const {
    return areTriangles() ? static_cast<std::int64_t>(3 * (cell + 1)) : ends_[cell];
  }
  void expect(std::size_t) {}
  void append(std::span<const std::int64_t> block) {
    if (areTriangles() && continueTriangles(block))
      size_ += block.size();
    else
      for (const std::int64_t end : block) push_back(end);
  }
  void push_back(std::int64_t end) {
    ++size_;
    if (areTriangles()) {
      if (end == static_cast<std::int64_t>(3 * size_)) return;
      for (std::size_t k = 1; k < size_; ++k) ends_.push_back(static_cast<std::int64_t>(3 * k));
    }
    ends_.push_back(end);
  }

 private:
  bool continueTriangles(std::span<const std::int64_t> block) const {
    auto end = static_cast<std::int64_t>(3 * size_);
    std::int64_t differences = 0;  // no branch for each
    for (const std::int64_t each : block) differences |= each ^ (end += 3);
    return differences == 0;
  }

  std::size_t size_ = 0;
  std::vector<std::int64_t> ends_;  ///< empty while all are triangles
};

/// Cells, their corners one after another in one array. A corner that is no int is the nearest one,
/// which is as far out of range.
struct CellList {
  CellEnds ends;
  Corners corners;
};

/// Gathers one or more pieces. All throw FileError that names the file.
class CellSoup {
 public:
  explicit CellSoup(const std::string& name) : name_(name) {}

  /// The points of a piece, xyz; what is added after it is numbered from its first point.
  void addPoints(std::vector<double> coordinates);
  void addPolygons(CellList cells);
  void addStrips(const CellList& cells);
  /// Cells of any of VTK's types: linear and quadratic triangles, quadrilaterals, polygons and
  /// strips are taken. Others are only counted.
  void addCells(CellList cells, std::span<const std::uint8_t> types);
  /// Numbers of the piece's points, `components` for each. More than one become arrays NAME.0,
  /// NAME.1 and so on.
  void addArray(const std::string& name, std::size_t components, std::span<const double> values);
  /// What is in the file besides, as people call it.
  void passOver(const std::string& what) { soup_.passedOver.insert(what); }

  std::size_t pointCount() const { return soup_.points.size(); }

  PolygonSoup finish();

 private:
  [[noreturn]] void fail(const std::string& what) const;
  void checkEnds(const CellList& cells) const;
  bool addTriangles(CellList& cells);
  void addFace(std::span<const int> corners);
  void addStrip(std::span<const int> corners);
  void addCell(std::uint8_t type, std::span<const int> corners);
  void addPicked(std::span<const int> corners, std::span<const std::size_t> picks);
  VertexArray& arrayNamed(const std::string& name);

  const std::string& name_;
  std::size_t firstPoint_ = 0;
  std::optional<int> badCorner_;  ///< the first one of this piece that names no point of it
  std::size_t otherCells_ = 0;
  std::vector<int> face_;
  PolygonSoup soup_;
};

}  // namespace qelm::tool

#endif
