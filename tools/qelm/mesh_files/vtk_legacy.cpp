#include "mesh_files/vtk_legacy.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <vector>

#include "encodings/number_source.h"
#include "mesh_files/cell_soup.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

struct NamedVtkType {
  std::string_view name;
  NumberType type;
};

// A long has eight bytes here, as on the systems on which such files are written.
constexpr auto kVtkTypes = std::to_array<NamedVtkType>({
    {"char", NumberType::kInt8},
    {"signed_char", NumberType::kInt8},
    {"unsigned_char", NumberType::kUint8},
    {"short", NumberType::kInt16},
    {"unsigned_short", NumberType::kUint16},
    {"int", NumberType::kInt32},
    {"vtkidtype", NumberType::kInt32},
    {"unsigned_int", NumberType::kUint32},
    {"long", NumberType::kInt64},
    {"vtktypeint64", NumberType::kInt64},
    {"long_long", NumberType::kInt64},
    {"unsigned_long", NumberType::kUint64},
    {"vtktypeuint64", NumberType::kUint64},
    {"unsigned_long_long", NumberType::kUint64},
    {"float", NumberType::kFloat32},
    {"double", NumberType::kFloat64},
});

/// "%20" and the like, which VTK writes for blanks in names.
std::string decodedName(std::string_view name) {
  std::string result;
  for (std::size_t k = 0; k < name.size(); ++k) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto digit = [&](std::size_t at) {
      return at < name.size() ? kDigits.find(static_cast<char>(name[at] | 0x20)) : kDigits.npos;
    };
    if (name[k] == '%' && digit(k + 1) < 16 && digit(k + 2) < 16) {
      result += static_cast<char>(static_cast<unsigned char>(16 * digit(k + 1) + digit(k + 2)));
      k += 2;
    } else {
      result += name[k];
    }
  }
  return result;
}

class LegacyReader {
 public:
  LegacyReader(std::string_view bytes, const std::string& name)
      : source_(bytes, name), name_(name), soup_(name) {}

  PolygonSoup run() {
    heading();
    while (nextStatement()) statement();
    if (types_.empty() == (cells_.ends.size() == 0)) {
      if (!types_.empty()) soup_.addCells(std::move(cells_), types_);
    } else {
      throw FileError(fmt::format("{}: {} cells, but {} types of cells; it may be cut short", name_,
                                  cells_.ends.size(), types_.size()));
    }
    for (const PointArray& array : arrays_)
      soup_.addArray(array.name, array.components, array.values);
    return soup_.finish();
  }

 private:
  struct PointArray {
    std::string name;
    std::size_t components;
    std::vector<double> values;
  };
  enum class Association { kNone, kPoints, kCells };

  [[noreturn]] void fail(const std::string& what) const { source_.fail(what); }

  void heading() {
    if (!lowerCase(source_.line()).starts_with("# vtk datafile"))
      throw FileError(
          fmt::format("{}: not a VTK file: it does not begin with '# vtk DataFile'", name_));
    source_.line();  // a title
    const std::string coding = lowerCase(trimmed(source_.line()));
    if (coding != "ascii" && coding != "binary")
      fail(fmt::format("'{}' instead of ASCII or BINARY", coding));
    if (coding == "binary") source_.setBinary(ByteOrder::kBig);
  }

  /// The words of the next line that has any.
  bool nextStatement() {
    source_.skipBlanks();
    if (source_.atEnd()) return false;
    words_ = splitAtBlanks(source_.line());
    keyword_ = lowerCase(words_[0]);
    source_.setPlace(keyword_);
    return true;
  }

  std::string word(std::size_t k) const {
    if (k >= words_.size()) fail(fmt::format("too few words behind '{}'", words_[0]));
    return std::string(words_[k]);
  }

  std::size_t count(std::size_t k) const {
    const auto number = parseInteger(word(k));
    if (!number || *number < 0) fail(fmt::format("'{}' is not a count", word(k)));
    return asIndex(*number);
  }

  NumberType type(std::size_t k) const {
    const std::string name = lowerCase(word(k));
    for (const NamedVtkType& known : kVtkTypes)
      if (known.name == name) return known.type;
    fail(fmt::format("numbers of type '{}' cannot be read", word(k)));
  }

  void statement() {
    if (keyword_ == "dataset") return dataset();
    if (keyword_ == "points") return points();
    if (keyword_ == "polygons") return soup_.addPolygons(cells());
    if (keyword_ == "triangle_strips") return soup_.addStrips(cells());
    if (keyword_ == "vertices" || keyword_ == "lines") {
      if (cells().ends.size() > 0) soup_.passOver("points and lines");
      return;
    }
    if (keyword_ == "cells") {
      cells_ = cells();
      return;
    }
    if (keyword_ == "cell_types") {
      types_ = source_.integers<std::uint8_t>(NumberType::kInt32, count(1));
      return;
    }
    if (keyword_ == "metadata") return metadata();
    if (keyword_ == "point_data" || keyword_ == "cell_data") return association();
    if (keyword_ == "field") return field();
    if (keyword_ == "lookup_table") return colourTable();
    attribute();
  }

  void dataset() {
    const std::string kind = lowerCase(word(1));
    if (kind != "polydata" && kind != "unstructured_grid")
      fail(fmt::format("a data set {} is not a mesh of triangles; save its surface as POLYDATA",
                       word(1)));
  }

  void points() {
    if (soup_.pointCount() > 0) fail("POINTS are given twice");
    soup_.addPoints(source_.numbers(type(2), count(1), 3));
  }

  /// Up to version 4 each cell has its number of corners in front; from 5 on there are two arrays.
  CellList cells() {
    const std::size_t first = count(1);
    const std::size_t second = count(2);
    source_.skipBlanks();
    return lowerCase(source_.rest().substr(0, 7)) == "offsets" ? cellsByOffsets(first, second)
                                                               : cellsByCounts(first, second);
  }

  CellList cellsByCounts(std::size_t cellCount, std::size_t size) {
    const std::vector<int> all = source_.integers<int>(NumberType::kInt32, size);
    CellList cells;
    if (cellCount > size) fail(fmt::format("{} cells in {} numbers", cellCount, size));
    cells.corners.expect(size - cellCount);
    std::size_t at = 0;
    for (std::size_t k = 0; k < cellCount; ++k) {
      const std::int64_t corners = at < size ? all[at] : -1;
      if (corners < 0 || asIndex(corners) > size - at - 1)
        fail(fmt::format("cell {} does not fit into {} numbers", k, size));
      cells.corners.append(std::span(all).subspan(at + 1, asIndex(corners)));
      cells.ends.push_back(static_cast<std::int64_t>(cells.corners.size()));
      at += 1 + asIndex(corners);
    }
    return cells;
  }

  CellList cellsByOffsets(std::size_t offsetCount, std::size_t cornerCount) {
    CellList cells;
    nextStatement();
    const NumberType offsets = type(1);
    source_.requireNumbers(offsetCount, offsets);
    const std::int64_t first = offsetCount > 0 ? source_.integer(offsets) : 0;
    if (first != 0) fail(fmt::format("the first offset is {}, not 0", first));
    if (offsetCount > 0) source_.read(offsets, offsetCount - 1, cells.ends);
    if (!nextStatement() || keyword_ != "connectivity") fail("CONNECTIVITY must follow OFFSETS");
    source_.read(type(1), cornerCount, cells.corners);
    return cells;
  }

  /// Up to an empty line.
  void metadata() {
    while (!source_.atEnd() && !trimmed(source_.line()).empty()) {
    }
  }

  void association() {
    association_ = keyword_ == "point_data" ? Association::kPoints : Association::kCells;
    tuples_ = count(1);
    if (association_ == Association::kPoints && tuples_ != soup_.pointCount())
      fail(fmt::format("data of {} points, but there are {}", tuples_, soup_.pointCount()));
  }

  void array(const std::string& name, NumberType type, std::size_t components, std::size_t tuples) {
    std::vector<double> values = source_.numbers(type, tuples, components);
    if (association_ == Association::kCells) soup_.passOver("cell data");
    if (association_ == Association::kPoints && tuples == soup_.pointCount())
      arrays_.push_back({decodedName(name), components, std::move(values)});
  }

  void attribute() {
    const bool isOne =
        keyword_ == "global_ids" || keyword_ == "pedigree_ids" || keyword_ == "edge_flags";
    if (keyword_ == "scalars") return scalars();
    if (keyword_ == "color_scalars") {
      // Bytes, but numbers from 0 to 1 in a text.
      return array(word(1), NumberType::kUint8, count(2), tuples());
    }
    if (keyword_ == "texture_coordinates") return array(word(1), type(3), count(2), tuples());
    if (keyword_ == "vectors" || keyword_ == "normals") return array(word(1), type(2), 3, tuples());
    if (keyword_ == "tensors") return array(word(1), type(2), 9, tuples());
    if (keyword_ == "tensors6") return array(word(1), type(2), 6, tuples());
    if (isOne) return array(word(1), type(2), 1, tuples());
    fail(fmt::format("'{}' is not known here", words_[0]));
  }

  std::size_t tuples() const {
    if (association_ == Association::kNone)
      fail(fmt::format("'{}' before POINT_DATA or CELL_DATA", words_[0]));
    return tuples_;
  }

  void scalars() {
    const std::string name = word(1);
    const NumberType numbers = type(2);
    const std::size_t components = words_.size() > 3 ? count(3) : 1;
    source_.skipBlanks();
    if (lowerCase(source_.rest().substr(0, 12)) == "lookup_table") source_.line();
    array(name, numbers, components, tuples());
  }

  void colourTable() {
    constexpr std::size_t kChannels = 4;
    source_.numbers(NumberType::kUint8, count(2), kChannels);
  }

  /// Arrays with headings of their own.
  void field() {
    const std::size_t arrays = count(2);
    for (std::size_t k = 0; k < arrays; ++k) {
      if (!nextStatement()) fail(fmt::format("{} arrays are announced, {} are there", arrays, k));
      if (keyword_ == "metadata") {
        metadata();
        if (!nextStatement()) fail(fmt::format("{} arrays are announced, {} are there", arrays, k));
      }
      array(word(0), type(3), count(1), count(2));
    }
  }

  NumberSource source_;
  const std::string& name_;
  CellSoup soup_;
  std::vector<std::string_view> words_;
  std::string keyword_;
  CellList cells_;
  std::vector<std::uint8_t> types_;
  Association association_ = Association::kNone;
  std::size_t tuples_ = 0;
  std::vector<PointArray> arrays_;
};

}  // namespace

PolygonSoup readVtkLegacy(std::string_view bytes, const std::string& name) {
  return LegacyReader(bytes, name).run();
}

}  // namespace qelm::tool
