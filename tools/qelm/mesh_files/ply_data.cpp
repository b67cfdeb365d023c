#include "mesh_files/ply_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "mesh_files/ply_header.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

static_assert(std::endian::native == std::endian::little, "bytes of other machines are turned");

/// Numbers one after another, whatever the format. Every type's values are doubles.
class PlyNumbers {
 public:
  PlyNumbers(const PlyHeader& header, const std::string& name)
      : format_(header.format), rest_(header.body), line_(header.lines + 1), name_(name) {}

  double next(PlyType type) {
    return format_ == PlyFormat::kText ? nextWord(type) : nextBytes(type);
  }

  /// A list's count; more than the rest of the file could hold is refused.
  std::size_t nextCount(PlyType countType, PlyType itemType) {
    const double count = next(countType);
    const std::size_t least = format_ == PlyFormat::kText ? 2 : sizeOf(itemType);
    const auto most = static_cast<double>((rest_.size() + 1) / least);
    if (!(count >= 0 && count <= most))
      fail(fmt::format("a list of {:.0f} numbers, but the file is too short for them", count));
    return static_cast<std::size_t>(count);
  }

  /// "name:17: in vertex 3, ..."
  void beginItem(std::string_view element, std::size_t index) {
    element_ = element;
    index_ = index;
  }

  [[noreturn]] void fail(const std::string& what) const {
    const std::string place =
        format_ == PlyFormat::kText ? fmt::format("{}:{}", name_, line_) : name_;
    throw FileError(fmt::format("{}: {} {}: {}", place, element_, index_, what));
  }

 private:
  double nextWord(PlyType type) {
    skipBlanks();
    const std::size_t end = std::min(rest_.find_first_of(kBlanks), rest_.size());
    const std::string_view word = rest_.substr(0, end);
    if (word.empty()) fail("the file ends here; it may be cut short");
    const auto value = parseDouble(word);
    if (!value || (isWhole(type) && std::trunc(*value) != *value))
      fail(fmt::format("'{}' is not a {}number", word, isWhole(type) ? "whole " : ""));
    rest_.remove_prefix(end);
    // Digits beyond a float's are kept, though the header says float: many write so.
    return *value;
  }

  void skipBlanks() {
    const std::size_t begin = std::min(rest_.find_first_not_of(kBlanks), rest_.size());
    const std::string_view blanks = rest_.substr(0, begin);
    line_ += static_cast<std::size_t>(std::count(blanks.begin(), blanks.end(), '\n'));
    rest_.remove_prefix(begin);
  }

  double nextBytes(PlyType type) {
    switch (type) {
      case PlyType::kInt8:
        return take<std::int8_t>();
      case PlyType::kUint8:
        return take<std::uint8_t>();
      case PlyType::kInt16:
        return take<std::int16_t>();
      case PlyType::kUint16:
        return take<std::uint16_t>();
      case PlyType::kInt32:
        return take<std::int32_t>();
      case PlyType::kUint32:
        return take<std::uint32_t>();
      case PlyType::kFloat32:
        return take<float>();
      default:
        return take<double>();
    }
  }

  template <class Value>
  Value take() {
    std::array<char, sizeof(Value)> raw;
    if (rest_.size() < raw.size()) fail("the file ends here; it may be cut short");
    std::copy_n(rest_.begin(), raw.size(), raw.begin());
    if (format_ == PlyFormat::kBigEndian) std::reverse(raw.begin(), raw.end());
    rest_.remove_prefix(raw.size());
    Value value;
    std::memcpy(&value, raw.data(), raw.size());
    return value;
  }

  static constexpr std::string_view kBlanks = " \t\r\n\v\f";

  PlyFormat format_;
  std::string_view rest_;
  std::size_t line_;
  const std::string& name_;
  std::string_view element_;
  std::size_t index_ = 0;
};

class PlyReader {
 public:
  PlyReader(const PlyHeader& header, const std::string& name)
      : header_(header), numbers_(header, name) {}

  PolygonSoup run() {
    for (const PlyElement& element : header_.elements) noteOthers(element);
    for (const PlyElement& element : header_.elements) {
      if (isVertexElement(element.name)) findArrays(element);
      for (std::size_t k = 0; k < element.count; ++k) {
        numbers_.beginItem(element.name, k);
        if (isVertexElement(element.name))
          vertex(element);
        else if (isFaceElement(element.name))
          face(element);
        else
          passOver(element);
      }
    }
    // Only of a file that announces vertices, or a property of theirs, twice.
    std::erase_if(soup_.attributes.arrays, [this](const VertexArray& array) {
      return array.values.size() != soup_.points.size();
    });
    return std::move(soup_);
  }

 private:
  static constexpr std::size_t kNoArray = static_cast<std::size_t>(-1);

  /// Where each property's values go: single numbers besides the place.
  void findArrays(const PlyElement& element) {
    arrayOf_.clear();
    std::vector<VertexArray>& arrays = soup_.attributes.arrays;
    for (const PlyProperty& property : element.properties) {
      const bool isPlace = property.name == "x" || property.name == "y" || property.name == "z";
      arrayOf_.push_back(isPlace || property.countType ? kNoArray : arrays.size());
      if (arrayOf_.back() != kNoArray) arrays.push_back({std::string(property.name), {}});
    }
  }

  void noteOthers(const PlyElement& element) {
    if (element.count == 0) return;
    if (!isVertexElement(element.name) && !isFaceElement(element.name))
      soup_.passedOver.insert(fmt::format("the elements '{}'", element.name));
    else
      for (const PlyProperty& property : element.properties)
        if (!isCornerList(property) && property.name != "x" && property.name != "y" &&
            property.name != "z")
          soup_.passedOver.insert(whatIs(property.name));
  }

  static std::string whatIs(std::string_view property) {
    for (const std::string_view colour : {"red", "green", "blue", "alpha", "r", "g", "b", "a"})
      if (property == colour || property == fmt::format("diffuse_{}", colour)) return "colours";
    for (const std::string_view normal : {"nx", "ny", "nz"})
      if (property == normal) return "normals";
    for (const std::string_view place : {"s", "t", "u", "v", "texture_u", "texture_v", "texcoord"})
      if (property == place) return "texture coordinates";
    return fmt::format("the property '{}'", property);
  }

  void vertex(const PlyElement& element) {
    Point point{};
    for (std::size_t k = 0; k < element.properties.size(); ++k) {
      const PlyProperty& property = element.properties[k];
      if (property.countType) {
        list(property, nullptr);
        continue;
      }
      const double value = numbers_.next(property.type);
      if (arrayOf_[k] != kNoArray) soup_.attributes.arrays[arrayOf_[k]].values.push_back(value);
      if (property.name == "x") point[0] = value;
      if (property.name == "y") point[1] = value;
      if (property.name == "z") point[2] = value;
    }
    soup_.points.push_back(point);
  }

  void face(const PlyElement& element) {
    corners_.clear();
    for (const PlyProperty& property : element.properties) {
      if (property.countType)
        list(property, isCornerList(property) && isWhole(property.type) ? &corners_ : nullptr);
      else
        numbers_.next(property.type);
    }
    soup_.faces.push_back(corners_);
  }

  void passOver(const PlyElement& element) {
    for (const PlyProperty& property : element.properties) {
      if (property.countType)
        list(property, nullptr);
      else
        numbers_.next(property.type);
    }
  }

  void list(const PlyProperty& property, std::vector<int>* corners) {
    const std::size_t count = numbers_.nextCount(*property.countType, property.type);
    for (std::size_t k = 0; k < count; ++k) {
      const double value = numbers_.next(property.type);
      if (corners == nullptr) continue;
      // An index that does not fit is out of range, like any other one too high.
      constexpr double kMost = std::numeric_limits<int>::max();
      corners->push_back(static_cast<int>(std::clamp(value, -kMost, kMost)));
    }
  }

  const PlyHeader& header_;
  PlyNumbers numbers_;
  PolygonSoup soup_;
  std::vector<std::size_t> arrayOf_;
  std::vector<int> corners_;
};

}  // namespace

PolygonSoup readPly(std::string_view bytes, const std::string& name) {
  const PlyHeader header = readPlyHeader(bytes, name);
  return PlyReader(header, name).run();
}

}  // namespace qelm::tool
