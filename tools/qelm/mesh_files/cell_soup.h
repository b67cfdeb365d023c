// From cells of any type, as simulations have them, to polygons.
#ifndef QELM_TOOLS_CELL_SOUP_H
#define QELM_TOOLS_CELL_SOUP_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Cells, their corners one after another in one array; `ends[k]` is where those of cell k end.
struct CellList {
  std::vector<std::int64_t> ends;
  std::vector<std::int64_t> corners;
};

/// Gathers one or more pieces. All throw FileError that names the file.
class CellSoup {
 public:
  explicit CellSoup(const std::string& name) : name_(name) {}

  /// The points of a piece, xyz; what is added after it is numbered from its first point.
  void addPoints(std::span<const double> coordinates);
  void addPolygons(const CellList& cells);
  void addStrips(const CellList& cells);
  /// Cells of any of VTK's types: linear and quadratic triangles, quadrilaterals, polygons and
  /// strips are taken. Others are only counted.
  void addCells(const CellList& cells, std::span<const std::int64_t> types);
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
  void addFace(std::span<const std::int64_t> corners);
  void addStrip(std::span<const std::int64_t> corners);
  void addCell(std::int64_t type, std::span<const std::int64_t> corners);
  void addPicked(std::span<const std::int64_t> corners, std::span<const std::size_t> picks);
  VertexArray& arrayNamed(const std::string& name);

  const std::string& name_;
  std::size_t firstPoint_ = 0;
  std::size_t otherCells_ = 0;
  std::vector<int> face_;
  PolygonSoup soup_;
};

}  // namespace qelm::tool

#endif
