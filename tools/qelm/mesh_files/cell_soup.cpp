#include "mesh_files/cell_soup.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// Numbers of vtkCellType.h.
constexpr std::uint8_t kLastOfPointsAndLines = 4;
constexpr std::uint8_t kVtkTriangle = 5;
constexpr std::uint8_t kVtkStrip = 6;
constexpr std::uint8_t kVtkPolygon = 7;
constexpr std::uint8_t kQuadraticEdge = 21;

/// Faces, three or four corners each, by the cell's own numbers.
struct CellShape {
  std::uint8_t type;
  std::size_t corners;
  std::size_t perFace;
  std::array<std::size_t, 16> picks;
  std::size_t pickCount;
};

// Of quadratic cells, whose sides have a vertex in the middle, triangles and quadrilaterals
// between all their vertices.
constexpr auto kCellShapes = std::to_array<CellShape>({
    {5, 3, 3, {0, 1, 2}, 3},
    {8, 4, 4, {0, 1, 3, 2}, 4},  // a pixel, row by row
    {9, 4, 4, {0, 1, 2, 3}, 4},
    {22, 6, 3, {0, 3, 5, 3, 1, 4, 5, 4, 2, 3, 4, 5}, 12},
    {23, 8, 8, {0, 4, 1, 5, 2, 6, 3, 7}, 8},
    {28, 9, 4, {0, 4, 8, 7, 4, 1, 5, 8, 8, 5, 2, 6, 7, 8, 6, 3}, 16},
});

}  // namespace

void CellSoup::fail(const std::string& what) const {
  throw FileError(fmt::format("{}: {}", name_, what));
}

void CellSoup::addPoints(std::vector<double> coordinates) {
  // Its number would name a point of the piece that begins here.
  if (badCorner_)
    fail(fmt::format("a cell has corner {}, but its piece has the points 0 .. {}", *badCorner_,
                     static_cast<std::int64_t>(soup_.points.size() - firstPoint_) - 1));
  firstPoint_ = soup_.points.size();
  soup_.points.append(std::move(coordinates));
}

static bool areAll(std::span<const std::uint8_t> types, std::uint8_t type) {
  std::uint8_t different = 0;
  for (const std::uint8_t each : types) different |= each ^ type;
  return different == 0;
}

/// Adds all cells at once and returns true, if they are triangles whose corners are in range.
bool CellSoup::addTriangles(CellList& cells) {
  if (!cells.ends.areTriangles() || cells.corners.size() != 3 * cells.ends.size()) return false;
  TriangleFacts facts = cells.corners.facts();
  const std::size_t count = soup_.points.size();
  if (facts.highest >= count - firstPoint_ || count > std::numeric_limits<int>::max()) return false;
  const int first = asInt(firstPoint_);
  facts.highest += static_cast<std::uint32_t>(first);
  std::vector<int> corners = cells.corners.take();
  if (first > 0)
    for (int& corner : corners) corner += first;
  soup_.faces.appendTriangles(std::move(corners), facts);
  return true;
}

void CellSoup::checkEnds(const CellList& cells) const {
  std::int64_t begin = 0;
  for (std::size_t k = 0; k < cells.ends.size(); ++k) {
    if (cells.ends[k] < begin || cells.ends[k] > static_cast<std::int64_t>(cells.corners.size()))
      fail(fmt::format("cell {}: its corners end at {}, but begin at {}, of {} in all", k,
                       cells.ends[k], begin, cells.corners.size()));
    begin = cells.ends[k];
  }
}

/// Calls `use(corners, k)` for each cell.
template <class Use>
static void forEachCell(const CellList& cells, Use use) {
  std::size_t begin = 0;
  for (std::size_t k = 0; k < cells.ends.size(); ++k) {
    const auto end = asIndex(cells.ends[k]);
    use(cells.corners.all().subspan(begin, end - begin), k);
    begin = end;
  }
}

void CellSoup::addFace(std::span<const int> corners) {
  // A number too high for int becomes this one, which is out of range as well.
  constexpr std::int64_t kMost = std::numeric_limits<int>::max();
  const auto first = static_cast<std::int64_t>(firstPoint_);
  const auto last = static_cast<std::int64_t>(soup_.points.size());
  const auto isThere = [count = last - first](std::int64_t v) { return v >= 0 && v < count; };
  // Nearly all cells are triangles in range.
  if (corners.size() == 3 && isThere(corners[0]) && isThere(corners[1]) && isThere(corners[2]))
    return soup_.faces.push_back(
        {asInt(first + corners[0]), asInt(first + corners[1]), asInt(first + corners[2])});
  face_.clear();
  if (!badCorner_) {
    const auto bad = std::find_if_not(corners.begin(), corners.end(), isThere);
    if (bad != corners.end()) badCorner_ = *bad;
  }
  for (const std::int64_t v : corners)
    // A corner of another piece is out of range, too: the file's own numbers are in the message.
    face_.push_back(static_cast<int>(std::clamp(
        v < 0 || v >= last - first ? (v < 0 ? v : last + (v - (last - first))) : first + v, -kMost,
        kMost)));
  soup_.faces.push_back(face_);
}

void CellSoup::addPolygons(CellList cells) {
  if (addTriangles(cells)) return;
  checkEnds(cells);
  forEachCell(cells, [this](auto corners, std::size_t) { addFace(corners); });
}

void CellSoup::addStrip(std::span<const int> corners) {
  for (std::size_t k = 0; k + 3 <= corners.size(); ++k) {
    std::array<int, 3> triangle = {corners[k], corners[k + 1], corners[k + 2]};
    if (k % 2 == 1) std::swap(triangle[0], triangle[1]);
    addFace(triangle);
  }
}

void CellSoup::addStrips(const CellList& cells) {
  checkEnds(cells);
  forEachCell(cells, [this](auto corners, std::size_t) { addStrip(corners); });
}

void CellSoup::addCells(CellList cells, std::span<const std::uint8_t> types) {
  if (types.size() == cells.ends.size() && areAll(types, kVtkTriangle) && addTriangles(cells))
    return;
  checkEnds(cells);
  if (types.size() != cells.ends.size())
    fail(fmt::format("{} cells, but {} types of cells", cells.ends.size(), types.size()));
  forEachCell(cells, [&](auto corners, std::size_t k) { addCell(types[k], corners); });
}

void CellSoup::addCell(std::uint8_t type, std::span<const int> corners) {
  if (type == kVtkPolygon || (type == kVtkTriangle && corners.size() == 3)) return addFace(corners);
  if (type == kVtkStrip) return addStrip(corners);
  const auto shape = std::find_if(kCellShapes.begin(), kCellShapes.end(),
                                  [type](const CellShape& known) { return known.type == type; });
  if (shape == kCellShapes.end()) {
    ++otherCells_;
    passOver(type <= kLastOfPointsAndLines || type == kQuadraticEdge ? "points and lines"
                                                                     : "volumes");
    return;
  }
  if (corners.size() != shape->corners)
    fail(fmt::format("a cell of type {} with {} corners instead of {}", type, corners.size(),
                     shape->corners));
  for (std::size_t k = 0; k < shape->pickCount; k += shape->perFace)
    addPicked(corners, std::span(shape->picks).subspan(k, shape->perFace));
}

void CellSoup::addPicked(std::span<const int> corners, std::span<const std::size_t> picks) {
  std::array<int, 8> face{};
  for (std::size_t k = 0; k < picks.size(); ++k) face[k] = corners[picks[k]];
  addFace(std::span(face).first(picks.size()));
}

VertexArray& CellSoup::arrayNamed(const std::string& name) {
  std::vector<VertexArray>& arrays = soup_.attributes.arrays;
  for (VertexArray& array : arrays)
    if (array.name == name) return array;
  arrays.push_back({name, {}});
  return arrays.back();
}

void CellSoup::addArray(const std::string& name, std::size_t components,
                        std::span<const double> values) {
  for (std::size_t c = 0; c < components; ++c) {
    VertexArray& array = arrayNamed(components == 1 ? name : fmt::format("{}.{}", name, c));
    passOver(fmt::format("the point data '{}'", name));
    // One that an earlier piece has not, or that comes twice, is left out at the end.
    if (array.values.size() != firstPoint_) continue;
    for (std::size_t k = c; k < values.size(); k += components) array.values.push_back(values[k]);
  }
}

PolygonSoup CellSoup::finish() {
  if (soup_.faces.empty() && otherCells_ > 0)
    fail(
        fmt::format("not a surface: its {} cells are points, lines or volumes; extract the "
                    "surface first",
                    otherCells_));
  std::erase_if(soup_.attributes.arrays, [this](const VertexArray& array) {
    return array.values.size() != soup_.points.size();
  });
  return std::move(soup_);
}

}  // namespace qelm::tool
