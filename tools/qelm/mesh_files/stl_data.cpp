#include "mesh_files/stl_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "mesh_files/point_merger.h"
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

/// The facets' corners, those that are exactly equal as one point.
class FacetSoup {
 public:
  void add(const std::array<Point, 3>& corners) {
    waiting_.insert(waiting_.end(), corners.begin(), corners.end());
    if (waiting_.size() >= kAtOnce) place();
  }
  /// A closed surface has half as many points as facets.
  void expect(std::size_t facets) {
    points_.expect(facets / 2);
    soup_.faces.reserve(facets);
  }
  std::size_t size() const { return soup_.faces.size() + waiting_.size() / 3; }
  void passOver(const char* what) { soup_.passedOver.insert(what); }
  PolygonSoup finish() {
    place();
    soup_.points = points_.finish();
    soup_.facetsOwnTheirCorners = true;
    return std::move(soup_);
  }

 private:
  // Corners: many together are found sooner than one by one.
  static constexpr std::size_t kAtOnce = 3 * 256;

  void place() {
    numbers_.clear();
    points_.addAll(waiting_, numbers_);
    for (std::size_t k = 0; k < numbers_.size(); k += 3)
      soup_.faces.push_back({numbers_[k], numbers_[k + 1], numbers_[k + 2]});
    waiting_.clear();
  }

  PointMerger points_;
  std::vector<Point> waiting_;
  std::vector<int> numbers_;  ///< of those, for a moment
  PolygonSoup soup_;
};

/// Binary files, as isBinaryStl() says.
PolygonSoup readBinary(std::string_view bytes, const std::string& name) {
  const std::uint64_t count = facetCount(bytes);
  if (count == 0) throw FileError(fmt::format("{}: not a mesh: no facets", name));
  const std::uint64_t present = (bytes.size() - kHeaderSize) / kFacetSize;
  if (present < count)
    throw FileError(
        fmt::format("{}: not an STL file, or cut short: {} facets are announced, {} are there",
                    name, count, present));
  FacetSoup soup;
  soup.expect(static_cast<std::size_t>(count));
  for (std::uint64_t facet = 0; facet < count; ++facet) {
    const std::size_t place = kHeaderSize + kFacetSize * facet;
    std::array<float, 9> numbers;
    std::memcpy(numbers.data(), bytes.data() + place + kNormalSize, sizeof numbers);
    std::array<Point, 3> corners{};
    for (std::size_t k = 0; k < numbers.size(); ++k) {
      // A point that is none could be taken for any other one.
      if (!std::isfinite(numbers[k]))
        throw MeshError(
            fmt::format("{}: facet {}: a coordinate of corner {} is not finite; repair the file",
                        name, facet, k / 3));
      corners[k / 3][k % 3] = numbers[k];
    }
    soup.add(corners);
    // Some programs keep a facet's colour there.
    if (valueAt<std::uint16_t>(bytes, place + kAttributeOffset) != 0) soup.passOver("colours");
  }
  return soup.finish();
}

/// Whether the word is `lower`, in capitals or not.
bool isWord(std::string_view word, std::string_view lower) {
  return word.size() == lower.size() &&
         std::equal(word.begin(), word.end(), lower.begin(), [](char c, char wanted) {
           return c == wanted || (c >= 'A' && c <= 'Z' && c - 'A' + 'a' == wanted);
         });
}

class StlText {
 public:
  StlText(std::string_view text, const std::string& name) : lines_(text), name_(name) {}

  PolygonSoup run() {
    while (lines_.next()) {
      splitAtBlanks(lines_.line(), words_);
      statements();
    }
    if (cornerCount_ != kOutside) fail("the file ends within a facet; it may be cut short");
    if (soup_.size() == 0) throw FileError(fmt::format("{}: not a mesh: no facets", name_));
    return soup_.finish();
  }

 private:
  static constexpr std::size_t kOutside = static_cast<std::size_t>(-1);

  [[noreturn]] void fail(const std::string& what) const {
    throw FileError(fmt::format("{}:{}: {}", name_, lines_.number(), what));
  }

  [[noreturn]] void failMesh(const std::string& what) const {
    throw MeshError(fmt::format("{}:{}: {}", name_, lines_.number(), what));
  }

  // One line may hold several: some programs write whole facets so.
  void statements() {
    for (std::size_t k = 0; k < words_.size(); ++k) {
      const std::string_view word = words_[k];
      if (isWord(word, "solid") || isWord(word, "endsolid")) return;  // a name may follow
      if (isWord(word, "facet")) beginFacet();
      if (isWord(word, "endfacet")) endFacet();
      if (isWord(word, "vertex")) {
        corner(k);
        k += 3;
      }
    }
  }

  void beginFacet() {
    if (cornerCount_ != kOutside) fail("'facet' within a facet");
    cornerCount_ = 0;
  }

  void corner(std::size_t at) {
    if (cornerCount_ == kOutside) fail("'vertex' outside of a facet");
    if (cornerCount_ == 3)
      fail(fmt::format("facet {} has more than three corners; STL files hold triangles only",
                       soup_.size()));
    if (words_.size() < at + 4) fail("a vertex needs three coordinates");
    Point& point = corners_[cornerCount_++];
    for (std::size_t k = 0; k < 3; ++k) {
      const std::string_view word = words_[at + 1 + k];
      const auto value = parseDouble(word);
      if (!value) fail(fmt::format("'{}' is not a coordinate", word));
      if (!std::isfinite(*value))
        failMesh(fmt::format("facet {}: coordinate '{}' is not finite; repair the file",
                             soup_.size(), word));
      point[k] = *value;
    }
  }

  void endFacet() {
    if (cornerCount_ != 3)
      fail(fmt::format("facet {} has {} corners instead of three", soup_.size(),
                       cornerCount_ == kOutside ? 0 : cornerCount_));
    cornerCount_ = kOutside;
    soup_.add(corners_);
  }

  LineReader lines_;
  const std::string& name_;
  std::vector<std::string_view> words_;
  std::array<Point, 3> corners_{};
  std::size_t cornerCount_ = kOutside;
  FacetSoup soup_;
};

}  // namespace

bool isBinaryStl(std::string_view bytes) {
  if (bytes.size() < kHeaderSize) return false;
  if (bytes.size() == kHeaderSize + kFacetSize * facetCount(bytes)) return true;
  return lowerCase(trimmed(withoutMark(bytes).substr(0, kCountOffset)).substr(0, 5)) != "solid";
}

PolygonSoup readStl(std::string_view bytes, const std::string& name) {
  return isBinaryStl(bytes) ? readBinary(bytes, name) : StlText(bytes, name).run();
}

}  // namespace qelm::tool
