#include "mesh_files/ply_header.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

struct NamedType {
  std::string_view name;
  PlyType type;
};

constexpr std::array<NamedType, 16> kTypes = {{{"char", PlyType::kInt8},
                                               {"int8", PlyType::kInt8},
                                               {"uchar", PlyType::kUint8},
                                               {"uint8", PlyType::kUint8},
                                               {"short", PlyType::kInt16},
                                               {"int16", PlyType::kInt16},
                                               {"ushort", PlyType::kUint16},
                                               {"uint16", PlyType::kUint16},
                                               {"int", PlyType::kInt32},
                                               {"int32", PlyType::kInt32},
                                               {"uint", PlyType::kUint32},
                                               {"uint32", PlyType::kUint32},
                                               {"float", PlyType::kFloat32},
                                               {"float32", PlyType::kFloat32},
                                               {"double", PlyType::kFloat64},
                                               {"float64", PlyType::kFloat64}}};

// A number in a text and what separates it from the next.
constexpr std::size_t kLeastTextSize = 2;

using Words = std::vector<std::string_view>;

class HeaderReader {
 public:
  HeaderReader(std::string_view bytes, const std::string& name) : lines_(bytes), name_(name) {}

  PlyHeader run() {
    nextLine();
    if (trimmed(lines_.line()) != "ply")
      throw FileError(fmt::format("{}: not a PLY file: it does not begin with 'ply'", name_));
    format(nextLine());
    for (Words words = nextLine(); words[0] != "end_header"; words = nextLine()) statement(words);
    header_.body = lines_.rest();
    header_.lines = lines_.number();
    checkVertices();
    checkFaces();
    for (const PlyElement& element : header_.elements) checkSize(element);
    return std::move(header_);
  }

 private:
  [[noreturn]] void fail(std::size_t line, const std::string& what) const {
    throw FileError(fmt::format("{}:{}: {}", name_, line, what));
  }

  Words nextLine() {
    if (!lines_.next()) fail(lines_.number(), "the header has no 'end_header'");
    Words words = splitAtBlanks(lines_.line());
    if (words.empty()) fail(lines_.number(), "an empty line in the header");
    return words;
  }

  void format(const Words& words) {
    if (words.size() != 3 || words[0] != "format")
      fail(lines_.number(), "the second line must be 'format ... 1.0'");
    if (words[1] == "ascii")
      header_.format = PlyFormat::kText;
    else if (words[1] == "binary_little_endian")
      header_.format = PlyFormat::kLittleEndian;
    else if (words[1] == "binary_big_endian")
      header_.format = PlyFormat::kBigEndian;
    else
      fail(lines_.number(), fmt::format("unknown format '{}'", words[1]));
  }

  void statement(const Words& words) {
    if (words[0] == "comment" || words[0] == "obj_info") return;
    if (words[0] == "element") return element(words);
    if (words[0] == "property") return property(words);
    fail(lines_.number(), fmt::format("'{}' does not belong into a header", words[0]));
  }

  void element(const Words& words) {
    const auto count = words.size() == 3 ? parseInteger(words[2]) : std::nullopt;
    if (!count || *count < 0) fail(lines_.number(), "an element needs a name and a count");
    refuseSecond(isVertexElement, words[1]);
    refuseSecond(isFaceElement, words[1]);
    header_.elements.push_back({words[1], asIndex(*count), lines_.number(), {}});
  }

  // Only the first of each kind would be looked at for what it must have.
  void refuseSecond(bool (*isKind)(std::string_view), std::string_view name) const {
    if (!isKind(name)) return;
    for (const PlyElement& before : header_.elements)
      if (isKind(before.name))
        fail(lines_.number(),
             fmt::format("element '{}' comes after an element '{}'; one of them is enough", name,
                         before.name));
  }

  void property(const Words& words) {
    if (header_.elements.empty()) fail(lines_.number(), "a property before the first element");
    const bool isList = words.size() == 5 && words[1] == "list";
    if (!isList && words.size() != 3) fail(lines_.number(), "a property needs a type and a name");
    PlyProperty property{words.back(), typeOf(words[isList ? 3 : 1]), {}};
    if (isList) property.countType = typeOf(words[2]);
    if (isList && !isWhole(*property.countType))
      fail(lines_.number(), "a list needs a whole number for its count");
    header_.elements.back().properties.push_back(property);
  }

  PlyType typeOf(std::string_view name) const {
    for (const NamedType& known : kTypes)
      if (known.name == name) return known.type;
    fail(lines_.number(), fmt::format("unknown type '{}'", name));
  }

  const PlyElement& find(bool (*isWanted)(std::string_view), const char* name) const {
    for (const PlyElement& element : header_.elements)
      if (isWanted(element.name)) return element;
    throw FileError(fmt::format("{}: not a mesh: no element '{}'", name_, name));
  }

  void checkVertices() const {
    const PlyElement& vertices = find(isVertexElement, "vertex");
    for (const std::string_view axis : {"x", "y", "z"}) {
      const auto isAxis = [axis](const PlyProperty& p) {
        return p.name == axis && !p.countType && !isWhole(p.type);
      };
      if (std::none_of(vertices.properties.begin(), vertices.properties.end(), isAxis))
        fail(vertices.line, fmt::format("vertices need a float or double property '{}'", axis));
    }
  }

  void checkFaces() const {
    const PlyElement& faces = find(isFaceElement, "face");
    const auto isGood = [](const PlyProperty& p) { return isCornerList(p) && isWhole(p.type); };
    if (std::none_of(faces.properties.begin(), faces.properties.end(), isGood))
      fail(faces.line, "faces need a list 'vertex_indices' of whole numbers");
  }

  void checkSize(const PlyElement& element) const {
    if (element.properties.empty() && element.count > 0)
      fail(element.line, fmt::format("element '{}' has no properties", element.name));
    std::size_t least = 0;
    for (const PlyProperty& property : element.properties)
      least += header_.format == PlyFormat::kText
                   ? kLeastTextSize
                   : sizeOf(property.countType.value_or(property.type));
    // One more: the last number of a text may have nothing behind it.
    if (least > 0 && element.count > (header_.body.size() + 1) / least)
      fail(element.line, fmt::format("{} of '{}' are announced, but the file is too short for them",
                                     element.count, element.name));
  }

  LineReader lines_;
  const std::string& name_;
  PlyHeader header_;
};

}  // namespace

std::size_t sizeOf(PlyType type) {
  switch (type) {
    case PlyType::kInt8:
    case PlyType::kUint8:
      return 1;
    case PlyType::kInt16:
    case PlyType::kUint16:
      return 2;
    case PlyType::kFloat64:
      return 8;
    default:
      return 4;
  }
}

bool isWhole(PlyType type) { return type != PlyType::kFloat32 && type != PlyType::kFloat64; }

PlyHeader readPlyHeader(std::string_view bytes, const std::string& name) {
  return HeaderReader(bytes, name).run();
}

}  // namespace qelm::tool
