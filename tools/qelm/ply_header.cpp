#include "ply_header.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "error.h"
#include "text.h"

namespace qelm::tool {
namespace {

struct TypeSize {
  std::string_view type;
  std::size_t size;
};

constexpr std::array<TypeSize, 16> kTypes = {{{"char", 1},
                                              {"int8", 1},
                                              {"uchar", 1},
                                              {"uint8", 1},
                                              {"short", 2},
                                              {"int16", 2},
                                              {"ushort", 2},
                                              {"uint16", 2},
                                              {"int", 4},
                                              {"int32", 4},
                                              {"uint", 4},
                                              {"uint32", 4},
                                              {"float", 4},
                                              {"float32", 4},
                                              {"double", 8},
                                              {"float64", 8}}};

// A number in a text and what separates it from the next.
constexpr std::size_t kLeastTextSize = 2;

struct Property {
  std::string_view type;  ///< of a list: of its items
  std::string_view name;
  bool isList;
};

struct Element {
  std::string_view name;
  std::size_t count;
  std::size_t line;
  std::vector<Property> properties;
  std::size_t leastSize = 0;  ///< of one item, in a binary file
};

using Words = std::vector<std::string_view>;

class PlyHeader {
 public:
  PlyHeader(std::string_view bytes, const std::string& name)
      : lines_(bytes), name_(name), unread_(bytes.size()) {}

  void check() {
    nextLine();
    if (trimmed(lines_.line()) != "ply")
      throw FileError(fmt::format("{}: not a PLY file: it does not begin with 'ply'", name_));
    format(nextLine());
    for (Words words = nextLine(); words[0] != "end_header"; words = nextLine()) statement(words);
    checkVertices();
    checkFaces();
    for (const Element& element : elements_) checkSize(element);
  }

 private:
  [[noreturn]] void fail(std::size_t line, const std::string& what) const {
    throw FileError(fmt::format("{}:{}: {}", name_, line, what));
  }

  Words nextLine() {
    if (!lines_.next()) fail(lines_.number(), "the header has no 'end_header'");
    unread_ -= std::min(unread_, lines_.line().size() + 1);
    Words words = splitAtBlanks(lines_.line());
    if (words.empty()) fail(lines_.number(), "an empty line in the header");
    return words;
  }

  void format(const Words& words) {
    if (words.size() != 3 || words[0] != "format")
      fail(lines_.number(), "the second line must be 'format ... 1.0'");
    isText_ = words[1] == "ascii";
    if (!isText_ && words[1] != "binary_little_endian" && words[1] != "binary_big_endian")
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
    elements_.push_back({words[1], static_cast<std::size_t>(*count), lines_.number(), {}});
  }

  void property(const Words& words) {
    if (elements_.empty()) fail(lines_.number(), "a property before the first element");
    const bool isList = words.size() == 5 && words[1] == "list";
    if (!isList && words.size() != 3) fail(lines_.number(), "a property needs a type and a name");
    Element& element = elements_.back();
    element.leastSize += sizeOf(words[isList ? 2 : 1]);
    const std::string_view type = words[isList ? 3 : 1];
    sizeOf(type);
    element.properties.push_back({type, words.back(), isList});
  }

  std::size_t sizeOf(std::string_view type) const {
    for (const TypeSize& known : kTypes)
      if (known.type == type) return known.size;
    fail(lines_.number(), fmt::format("unknown type '{}'", type));
  }

  const Element& find(std::string_view name, std::string_view other) const {
    for (const Element& element : elements_)
      if (element.name == name || element.name == other) return element;
    throw FileError(fmt::format("{}: not a mesh: no element '{}'", name_, name));
  }

  void checkVertices() const {
    const Element& vertices = find("vertex", "vertices");
    for (const std::string_view axis : {"x", "y", "z"}) {
      const auto isAxis = [axis](const Property& p) {
        return p.name == axis && !p.isList && (p.type.starts_with("float") || p.type == "double");
      };
      if (std::none_of(vertices.properties.begin(), vertices.properties.end(), isAxis))
        fail(vertices.line, fmt::format("vertices need a float or double property '{}'", axis));
    }
  }

  void checkFaces() const {
    const Element& faces = find("face", "faces");
    const auto isCorners = [](const Property& p) {
      return p.isList && (p.name == "vertex_indices" || p.name == "vertex_index") &&
             (p.type.starts_with("int") || p.type.starts_with("uint")) && sizeOfIndex(p.type) == 4;
    };
    if (std::none_of(faces.properties.begin(), faces.properties.end(), isCorners))
      fail(faces.line, "faces need a list 'vertex_indices' of int or uint");
  }

  static std::size_t sizeOfIndex(std::string_view type) {
    return type.ends_with("16") ? 2 : type.ends_with("8") ? 1 : 4;
  }

  void checkSize(const Element& element) const {
    if (element.properties.empty() && element.count > 0)
      fail(element.line, fmt::format("element '{}' has no properties", element.name));
    const std::size_t least =
        isText_ ? kLeastTextSize * element.properties.size() : element.leastSize;
    // One more: the last number of a text may have nothing behind it.
    if (least > 0 && element.count > (unread_ + 1) / least)
      fail(element.line, fmt::format("{} of '{}' are announced, but the file is too short for them",
                                     element.count, element.name));
  }

  LineReader lines_;
  const std::string& name_;
  std::size_t unread_;  ///< bytes after the lines read so far
  bool isText_ = true;
  std::vector<Element> elements_;
};

}  // namespace

void checkPlyHeader(std::string_view bytes, const std::string& name) {
  PlyHeader(bytes, name).check();
}

}  // namespace qelm::tool
