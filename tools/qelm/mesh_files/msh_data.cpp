#include "mesh_files/msh_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "encodings/number_source.h"
#include "mesh_files/cell_soup.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

/// How many nodes an element has, how many of them are used, and as which of VTK's cells; 0 for
/// one that is no face.
struct ElementType {
  std::int64_t type;
  std::size_t nodes;
  std::size_t used;
  std::uint8_t cell;
};

constexpr std::uint8_t kLineCell = 3;
constexpr std::uint8_t kVolumeCell = 10;

constexpr auto kElementTypes = std::to_array<ElementType>({
    {1, 2, 2, kLineCell},
    {2, 3, 3, 5},
    {3, 4, 4, 9},
    {4, 4, 4, kVolumeCell},
    {5, 8, 8, kVolumeCell},
    {6, 6, 6, kVolumeCell},
    {7, 5, 5, kVolumeCell},
    {8, 3, 3, kLineCell},
    {9, 6, 6, 22},
    {10, 9, 9, 28},
    {11, 10, 10, kVolumeCell},
    {12, 27, 27, kVolumeCell},
    {13, 18, 18, kVolumeCell},
    {14, 14, 14, kVolumeCell},
    {15, 1, 1, 1},
    {16, 8, 8, 23},
    {17, 20, 20, kVolumeCell},
    {18, 15, 15, kVolumeCell},
    {19, 13, 13, kVolumeCell},
    {20, 9, 3, 5},
    {21, 10, 3, 5},
    {22, 12, 3, 5},
    {23, 15, 3, 5},
    {24, 15, 3, 5},
    {25, 21, 3, 5},
    {26, 4, 4, kLineCell},
    {27, 5, 5, kLineCell},
    {28, 6, 6, kLineCell},
    {29, 20, 20, kVolumeCell},
    {30, 35, 35, kVolumeCell},
    {31, 56, 56, kVolumeCell},
    {92, 64, 64, kVolumeCell},
    {93, 125, 125, kVolumeCell},
});

constexpr NumberType kInt = NumberType::kInt32;
constexpr NumberType kDouble = NumberType::kFloat64;

class MshReader {
 public:
  MshReader(std::string_view bytes, const std::string& name)
      : source_(bytes, name), name_(name), soup_(name) {}

  PolygonSoup run() {
    source_.skipBlanks();
    if (trimmed(source_.line()) != "$MeshFormat")
      throw FileError(
          fmt::format("{}: not an MSH file: it does not begin with $MeshFormat", name_));
    format();
    while (nextSection()) {
    }
    soup_.addPoints(std::move(coordinates_));
    soup_.addCells(std::move(cells_), types_);
    return soup_.finish();
  }

 private:
  void format() {
    const double version = source_.number(kDouble);
    const std::int64_t isBinary = source_.integer(kInt);
    const std::int64_t size = source_.integer(kInt);
    isVersion2_ = version >= 2 && version < 3;
    isVersion40_ = version == 4;
    if (!isVersion2_ && !isVersion40_ && version != 4.1)
      source_.fail(fmt::format("MSH {} cannot be read; save it as MSH 4.1 or 2.2", version));
    size_ = size == 4 ? NumberType::kUint32 : NumberType::kUint64;
    // The file says only how large these are; 4.0 had them as unsigned long.
    if (isVersion40_) size_ = NumberType::kUint64;
    source_.line();
    isBinary_ = isBinary == 1;
    if (isBinary_) {
      order_ = ByteOrder::kLittle;
      if (source_.rest().starts_with(std::string_view("\0\0\0\1", 4))) order_ = ByteOrder::kBig;
      source_.setBinary(order_);
      if (source_.integer(kInt) != 1) source_.fail("a binary file that does not begin with 1");
      source_.setText();
    }
    end("$MeshFormat");
  }

  void end(std::string_view section) {
    const std::string wanted = fmt::format("$End{}", section.substr(1));
    if (source_.word() != wanted) source_.fail(fmt::format("there is no {} here", wanted));
  }

  bool nextSection() {
    source_.skipBlanks();
    if (source_.atEnd()) return false;
    const std::string section(trimmed(source_.line()));
    if (!section.starts_with('$')) source_.fail("a section must begin here, such as $Nodes");
    source_.setPlace(section);
    if (section == "$Nodes") {
      nodes();
    } else if (section == "$Elements") {
      elements();
    } else {
      const std::string wanted = fmt::format("$End{}", section.substr(1));
      const std::size_t found = source_.rest().find(wanted);
      if (found == std::string_view::npos) source_.fail(fmt::format("there is no {}", wanted));
      source_.passOver(found);
      if (section.ends_with("Data")) soup_.passOver("data of nodes and elements");
    }
    source_.setText();
    end(section);
    return true;
  }

  void beginNumbers() {
    if (isBinary_) source_.setBinary(order_);
  }

  void nodes() {
    if (!coordinates_.empty()) source_.fail("there are two sections $Nodes");
    // Its count is a text in binary files of version 2.
    if (isVersion2_) {
      const std::size_t count = source_.count(kInt, 28, 4);
      source_.line();
      beginNumbers();
      for (std::size_t k = 0; k < count; ++k) node(source_.integer(kInt), 0);
    } else {
      beginNumbers();
      const std::size_t blocks = source_.count(size_, 12, 3);
      for (int k = 0; k < (isVersion40_ ? 1 : 3); ++k) source_.integer(size_);
      for (std::size_t b = 0; b < blocks; ++b) nodeBlock();
    }
    numberNodes();
  }

  void node(std::int64_t tag, std::size_t parameters) {
    tags_.push_back(tag);
    for (std::size_t k = 0; k < 3; ++k) coordinates_.push_back(source_.number(kDouble));
    for (std::size_t k = 0; k < parameters; ++k) source_.number(kDouble);
  }

  void nodeBlock() {
    const std::int64_t first = source_.integer(kInt);
    const std::int64_t second = source_.integer(kInt);
    const std::int64_t dimension = std::clamp<std::int64_t>(isVersion40_ ? second : first, 0, 3);
    const std::size_t parameters = source_.integer(kInt) != 0 ? asIndex(dimension) : 0;
    const std::size_t count = source_.count(size_, 28, 4);
    if (isVersion40_) {
      for (std::size_t k = 0; k < count; ++k) node(source_.integer(kInt), parameters);
      return;
    }
    std::vector<std::int64_t> tags = source_.integers(size_, count);
    if (isBinary_ && parameters == 0) {
      appendOrMove(source_.numbers(kDouble, count, 3), coordinates_);
      return appendOrMove(std::move(tags), tags_);
    }
    for (const std::int64_t tag : tags) node(tag, parameters);
  }

  /// Mostly they are numbered one after another.
  void numberNodes() {
    firstTag_ = tags_.empty() ? 0 : tags_[0];
    bool isInOrder = true;
    for (std::size_t k = 0; k < tags_.size(); ++k)
      isInOrder = isInOrder && tags_[k] - static_cast<std::int64_t>(k) == firstTag_;
    if (isInOrder) return;
    for (std::size_t k = 0; k < tags_.size(); ++k)
      if (!nodeOf_.emplace(tags_[k], static_cast<std::int64_t>(k)).second)
        source_.fail(fmt::format("there are two nodes {}", tags_[k]));
  }

  std::optional<std::int64_t> nodeOf(std::int64_t tag) const {
    if (nodeOf_.empty()) {
      const auto count = static_cast<std::int64_t>(tags_.size());
      if (tag < firstTag_ || tag >= firstTag_ + count) return {};
      return tag - firstTag_;
    }
    const auto found = nodeOf_.find(tag);
    return found == nodeOf_.end() ? std::nullopt : std::optional(found->second);
  }

  void elements() {
    if (isVersion2_) return elements2();
    beginNumbers();
    const std::size_t blocks = source_.count(size_, 12, 4);
    for (int k = 0; k < (isVersion40_ ? 1 : 3); ++k) source_.integer(size_);
    for (std::size_t b = 0; b < blocks; ++b) {
      source_.integer(kInt);
      source_.integer(kInt);
      const ElementType& type = typeOf(source_.integer(kInt));
      const NumberType number = isVersion40_ ? kInt : size_;
      const std::size_t count =
          source_.count(size_, sizeOf(number) * (1 + type.nodes), 1 + type.nodes);
      elementBlock(type, count, number);
    }
  }

  /// Of version 4. Those of a binary file many at once: in a text, messages say the line.
  void elementBlock(const ElementType& type, std::size_t count, NumberType words) {
    if (!isBinary_) {
      for (std::size_t k = 0; k < count; ++k) element(type, source_.integer(words), words);
      return;
    }
    if (type.nodes == 3) {
      ElementSink sink{*this, type};
      return source_.read(words, 4 * count, sink);
    }
    addElements(type, source_.integers(words, count * (1 + type.nodes)));
  }

  /// Triangles, each a number and three nodes, block by block.
  struct ElementSink {
    using Number = std::int64_t;
    MshReader& reader;
    const ElementType& type;
    void expect(std::size_t numbers) { reader.cells_.corners.expect(numbers / 4 * 3); }
    void append(std::span<const std::int64_t> block) {
      if (!reader.addTriangles(type, block)) reader.addElements(type, block);
    }
    void push_back(std::int64_t) {}  // of texts
  };

  void addElements(const ElementType& type, std::span<const std::int64_t> numbers) {
    const std::size_t each = 1 + type.nodes;
    for (std::size_t k = 0; k < numbers.size(); k += each)
      addElement(type, numbers[k], numbers.subspan(k + 1, type.nodes));
  }

  /// Not unless nodes are numbered one after another, and all of these are there: that is seen
  /// without a branch for each.
  bool addTriangles(const ElementType& type, std::span<const std::int64_t> numbers) {
    if (!nodeOf_.empty()) return false;
    std::int64_t least = firstTag_;
    std::int64_t most = firstTag_;
    for (std::size_t k = 0; k < numbers.size(); k += 4)
      for (std::size_t c = 1; c < 4; ++c) {
        least = std::min(least, numbers[k + c]);
        most = std::max(most, numbers[k + c]);
      }
    if (!nodeOf(least) || !nodeOf(most)) return false;
    std::array<int, kBlockOfNumbers / 4 * 3> corners;
    int* to = corners.data();
    for (std::size_t k = 0; k < numbers.size(); k += 4)
      for (std::size_t c = 1; c < 4; ++c) *to++ = wholeAs<int>(numbers[k + c] - firstTag_);
    const std::size_t triangles = numbers.size() / 4;
    cells_.corners.append(std::span(corners).first(3 * triangles));
    for (std::size_t k = 0; k < triangles; ++k)
      cells_.ends.push_back(static_cast<std::int64_t>(3 * (cells_.ends.size() + 1)));
    types_.insert(types_.end(), triangles, type.cell);
    return true;
  }

  void elements2() {
    const std::size_t count = source_.count(kInt, 8, 4);
    source_.line();
    beginNumbers();
    for (std::size_t done = 0; done < count;) {
      const std::int64_t first = isBinary_ ? 0 : source_.integer(kInt);
      const ElementType& type = typeOf(source_.integer(kInt));
      const std::size_t block = isBinary_ ? source_.count(kInt, 4, 1) : 1;
      const std::size_t tags = source_.count(kInt, 0, 1);
      if (block == 0 || block > count - done) source_.fail("a block of no elements, or too many");
      for (std::size_t k = 0; k < block; ++k) {
        const std::int64_t number = isBinary_ ? source_.integer(kInt) : first;
        for (std::size_t t = 0; t < tags; ++t) source_.integer(kInt);
        element(type, number, kInt);
      }
      done += block;
    }
  }

  const ElementType& typeOf(std::int64_t type) const {
    const auto found =
        std::find_if(kElementTypes.begin(), kElementTypes.end(),
                     [type](const ElementType& known) { return known.type == type; });
    if (found == kElementTypes.end())
      source_.fail(fmt::format("elements of type {} are not known", type));
    return *found;
  }

  void element(const ElementType& type, std::int64_t number, NumberType words) {
    nodes_.clear();
    for (std::size_t k = 0; k < type.nodes; ++k) nodes_.push_back(source_.integer(words));
    addElement(type, number, nodes_);
  }

  void addElement(const ElementType& type, std::int64_t number,
                  std::span<const std::int64_t> nodes) {
    for (const std::int64_t tag : nodes.first(type.used)) {
      const auto node = nodeOf(tag);
      if (!node)
        source_.fail(fmt::format("element {} has a node {}, which is not there", number, tag));
      cells_.corners.push_back(wholeAs<int>(*node));
    }
    cells_.ends.push_back(static_cast<std::int64_t>(cells_.corners.size()));
    types_.push_back(type.cell);
  }

  NumberSource source_;
  const std::string& name_;
  CellSoup soup_;
  bool isVersion2_ = false;
  bool isVersion40_ = false;
  bool isBinary_ = false;
  ByteOrder order_ = ByteOrder::kLittle;
  NumberType size_ = NumberType::kUint64;
  std::vector<double> coordinates_;
  std::vector<std::int64_t> tags_;
  std::int64_t firstTag_ = 0;
  std::unordered_map<std::int64_t, std::int64_t> nodeOf_;
  CellList cells_;
  std::vector<std::uint8_t> types_;
  std::vector<std::int64_t> nodes_;  ///< of an element
};

}  // namespace

PolygonSoup readMsh(std::string_view bytes, const std::string& name) {
  return MshReader(bytes, name).run();
}

}  // namespace qelm::tool
