#include "mesh_files/stl_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <vector>

#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

// 80 bytes of anything and a facet count; then per facet a normal and three
// corners of three floats each, and two bytes of attributes.
constexpr std::size_t kHeaderSize = 84;
constexpr std::size_t kCountOffset = 80;
constexpr std::size_t kFacetSize = 50;
constexpr std::size_t kNormalSize = 12;
constexpr std::size_t kAttributeOffset = 48;

template <class T>
T valueAt(std::string_view bytes, std::size_t offset) {
  T value;
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

std::uint64_t facetCount(std::string_view bytes) {
  return valueAt<std::uint32_t>(bytes, kCountOffset);
}

class StlPass {
 public:
  StlPass(std::string_view text, const std::string& name) : lines_(text), name_(name) {}

  std::string run() {
    plain_ = "solid\n";
    while (lines_.next()) statement(splitAtBlanks(lines_.line()));
    if (corners_ != kOutside) fail("the file ends within a facet; it may be cut short");
    if (facetCount_ == 0) throw FileError(fmt::format("{}: not a mesh: no facets", name_));
    plain_ += "endsolid\n";
    return std::move(plain_);
  }

 private:
  static constexpr int kOutside = -1;

  [[noreturn]] void fail(const std::string& what) const {
    throw FileError(fmt::format("{}:{}: {}", name_, lines_.number(), what));
  }

  [[noreturn]] void failMesh(const std::string& what) const {
    throw MeshError(fmt::format("{}:{}: {}", name_, lines_.number(), what));
  }

  // One line may hold several statements: some programs write whole facets so.
  void statement(const std::vector<std::string_view>& words) {
    for (std::size_t k = 0; k < words.size(); ++k) {
      const std::string word = lowerCase(words[k]);
      if (word == "solid" || word == "endsolid") return;  // a name may follow
      if (word == "facet") beginFacet();
      if (word == "endfacet") endFacet();
      if (word == "vertex") {
        corner(words, k);
        k += 3;
      }
    }
  }

  void beginFacet() {
    if (corners_ != kOutside) fail("'facet' within a facet");
    corners_ = 0;
    plain_ += "facet\n";
  }

  void corner(const std::vector<std::string_view>& words, std::size_t at) {
    if (corners_ == kOutside) fail("'vertex' outside of a facet");
    if (++corners_ > 3)
      fail(fmt::format("facet {} has more than three corners; STL files hold triangles only",
                       facetCount_));
    if (words.size() < at + 4) fail("a vertex needs three coordinates");
    for (std::size_t k = at + 1; k <= at + 3; ++k) {
      const auto value = parseDouble(words[k]);
      if (!value) fail(fmt::format("'{}' is not a coordinate", words[k]));
      if (!std::isfinite(*value))
        failMesh(fmt::format("facet {}: coordinate '{}' is not finite; repair the file",
                             facetCount_, words[k]));
    }
    fmt::format_to(std::back_inserter(plain_), "vertex {} {} {}\n", words[at + 1], words[at + 2],
                   words[at + 3]);
  }

  void endFacet() {
    if (corners_ != 3)
      fail(fmt::format("facet {} has {} corners instead of three", facetCount_,
                       std::max(corners_, 0)));
    corners_ = kOutside;
    ++facetCount_;
    plain_ += "endfacet\n";
  }

  LineReader lines_;
  const std::string& name_;
  std::string plain_;
  int corners_ = kOutside;
  long long facetCount_ = 0;
};

}  // namespace

bool isBinaryStl(std::string_view bytes) {
  if (bytes.size() < kHeaderSize) return false;
  if (bytes.size() == kHeaderSize + kFacetSize * facetCount(bytes)) return true;
  return lowerCase(trimmed(withoutMark(bytes).substr(0, kCountOffset)).substr(0, 5)) != "solid";
}

void checkBinaryStl(std::string_view bytes, const std::string& name) {
  const std::uint64_t count = facetCount(bytes);
  if (count == 0) throw FileError(fmt::format("{}: not a mesh: no facets", name));
  const std::uint64_t present = (bytes.size() - kHeaderSize) / kFacetSize;
  if (present < count)
    throw FileError(
        fmt::format("{}: not an STL file, or cut short: {} facets are announced, {} are there",
                    name, count, present));
  for (std::uint64_t facet = 0; facet < count; ++facet) {
    const std::size_t corners = kHeaderSize + kFacetSize * facet + kNormalSize;
    for (std::size_t k = 0; k < 9; ++k)
      if (!std::isfinite(valueAt<float>(bytes, corners + 4 * k)))
        throw MeshError(
            fmt::format("{}: facet {}: a coordinate of corner {} is not finite; repair the file",
                        name, facet, k / 3));
  }
}

bool hasAttributes(std::string_view bytes) {
  for (std::uint64_t facet = 0; facet < facetCount(bytes); ++facet)
    if (valueAt<std::uint16_t>(bytes, kHeaderSize + kFacetSize * facet + kAttributeOffset) != 0)
      return true;
  return false;
}

std::string plainStl(std::string_view text, const std::string& name) {
  return StlPass(text, name).run();
}

}  // namespace qelm::tool
