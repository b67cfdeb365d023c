#include "mesh_files/obj_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

/// A face's highest index can only be judged once all vertices are counted.
struct HighestIndex {
  long long index = 0;
  std::size_t line = 0;
};

// A face may be in several groups, but not in so many that a short file takes much memory.
constexpr std::size_t kMostGroupsOfAFace = 8;

/// The vertices of the faces under each name. Faces that follow each other mostly have the same
/// names, so those are looked up where they change.
class NamedFaces {
 public:
  void name(std::span<const std::string_view> names) {
    current_.clear();
    for (const std::string_view name : names) {
      const auto [at, isNew] = places_.try_emplace(std::string(name), sets_.size());
      if (isNew) sets_.push_back({std::string(name), {}});
      current_.push_back(at->second);
    }
  }
  void add(int vertex) {
    for (const std::size_t place : current_) sets_[place].vertices.push_back(vertex);
  }
  std::vector<VertexSet> sets() {
    std::erase_if(sets_, [](const VertexSet& set) { return set.vertices.empty(); });
    for (VertexSet& set : sets_) {
      std::sort(set.vertices.begin(), set.vertices.end());
      set.vertices.erase(std::unique(set.vertices.begin(), set.vertices.end()), set.vertices.end());
    }
    return std::move(sets_);
  }

 private:
  std::vector<VertexSet> sets_;
  std::unordered_map<std::string, std::size_t> places_;
  std::vector<std::size_t> current_;
};
/// Statements that carry no surface, and what people call it.
constexpr std::pair<std::string_view, const char*> kOthers[] = {
    {"vt", "texture coordinates"}, {"vn", "normals"}, {"g", "groups"}, {"o", "groups"},
    {"usemtl", "materials"},       {"l", "lines"},    {"p", "points"}, {"s", "smoothing groups"}};

class ObjReader {
 public:
  ObjReader(std::string_view text, const std::string& name) : lines_(text), name_(name) {}

  PolygonSoup run() {
    std::string joined;
    while (lines_.next()) {
      std::string_view line = lines_.line();
      const std::size_t first = lines_.number();
      // A backslash at the end of a line continues it on the next.
      if (!line.empty() && line.back() == '\\') line = joinLines(joined);
      statement(line.substr(0, line.find('#')), first);
    }
    checkHighest();
    Attributes& attributes = soup_.attributes;
    attributes.groups = groups_.sets();
    std::vector<VertexSet> objects = objects_.sets();
    attributes.groups.insert(attributes.groups.end(), std::make_move_iterator(objects.begin()),
                             std::make_move_iterator(objects.end()));
    attributes.materials = materials_.sets();
    return std::move(soup_);
  }

 private:
  [[noreturn]] void fail(std::size_t line, const std::string& what) const {
    throw FileError(fmt::format("{}:{}: {}", name_, line, what));
  }

  [[noreturn]] void failMesh(std::size_t line, const std::string& what) const {
    throw MeshError(fmt::format("{}:{}: {}", name_, line, what));
  }

  std::string_view joinLines(std::string& joined) {
    joined.assign(lines_.line());
    while (!joined.empty() && joined.back() == '\\') {
      joined.back() = ' ';
      if (lines_.next()) joined += lines_.line();
    }
    return joined;
  }

  void statement(std::string_view line, std::size_t number) {
    splitAtBlanks(line, words_);
    const std::vector<std::string_view>& words = words_;
    if (words.empty()) return;
    if (words[0] == "v") return vertex(words, number);
    if (words[0] == "f" || words[0] == "fo") return face(words, number);
    const bool isSwitchedOff = words.size() == 2 && (words[1] == "off" || words[1] == "0");
    for (const auto& [keyword, what] : kOthers)
      if (words[0] == keyword && !(words[0] == "s" && isSwitchedOff)) soup_.passedOver.insert(what);
    if (words[0] == "g") group(words, number);
    // These take one name, which may have blanks in it.
    if (words[0] == "o") nameFaces(objects_, line, words[0]);
    if (words[0] == "usemtl") nameFaces(materials_, line, words[0]);
  }

  void group(const std::vector<std::string_view>& words, std::size_t line) {
    if (words.size() > 1 + kMostGroupsOfAFace)
      fail(line, fmt::format("more than {} groups for a face", kMostGroupsOfAFace));
    groups_.name(std::span(words).subspan(1));
  }

  static void nameFaces(NamedFaces& faces, std::string_view line, std::string_view keyword) {
    const std::string_view name = trimmed(trimmed(line).substr(keyword.size()));
    faces.name(std::span(&name, name.empty() ? 0 : 1));
  }

  void vertex(const std::vector<std::string_view>& words, std::size_t line) {
    if (words.size() < 4) fail(line, "a vertex needs three coordinates");
    Point point{};
    for (std::size_t k = 1; k <= 3; ++k) {
      const auto value = parseDouble(words[k]);
      if (!value) fail(line, fmt::format("'{}' is not a coordinate", words[k]));
      if (!std::isfinite(*value))
        failMesh(line, fmt::format("vertex {}: coordinate '{}' is not finite; repair the file",
                                   vertexCount(), words[k]));
      point[k - 1] = *value;
    }
    constexpr std::size_t kWithColour = 7;  // the keyword, x y z, red green blue
    if (words.size() >= kWithColour) soup_.passedOver.insert("colours");
    soup_.points.push_back(point);
  }

  void face(const std::vector<std::string_view>& words, std::size_t line) {
    if (words.size() < 4) fail(line, "a face needs at least three corners");
    corners_.clear();
    for (std::size_t k = 1; k < words.size(); ++k) {
      const long long index = cornerIndex(words[k], line);
      if (index > std::numeric_limits<int>::max()) continue;  // out of range, as is said later
      corners_.push_back(asInt(index) - 1);
      for (NamedFaces* faces : {&groups_, &objects_, &materials_}) faces->add(corners_.back());
    }
    soup_.faces.push_back(corners_);
  }

  /// The vertex of a corner such as "7", "7/1", "7//3" or "-1/-1/-1", from 1.
  long long cornerIndex(std::string_view corner, std::size_t line) {
    const auto index = parseInteger(corner.substr(0, corner.find('/')));
    if (!index) fail(line, fmt::format("'{}' is not a corner of a face", corner));
    if (*index == 0) failMesh(line, "vertex index 0: OBJ files number their vertices from 1");
    if (*index > 0) {
      if (*index > highest_.index) highest_ = {*index, line};
      return *index;
    }
    if (*index < -vertexCount())
      failMesh(line,
               fmt::format("vertex index {} is out of range: {} vertices come before this line",
                           *index, vertexCount()));
    return vertexCount() + *index + 1;
  }

  void checkHighest() const {
    if (highest_.index > vertexCount())
      failMesh(highest_.line,
               fmt::format("vertex index {} is out of range: the file has {} vertices",
                           highest_.index, vertexCount()));
    if (soup_.points.empty()) throw FileError(fmt::format("{}: not a mesh: no vertices", name_));
    if (soup_.faces.empty()) throw FileError(fmt::format("{}: not a mesh: no faces", name_));
  }

  long long vertexCount() const { return static_cast<long long>(soup_.points.size()); }

  LineReader lines_;
  const std::string& name_;
  std::vector<std::string_view> words_;
  std::vector<int> corners_;
  HighestIndex highest_;
  NamedFaces groups_, objects_, materials_;
  PolygonSoup soup_;
};

}  // namespace

PolygonSoup readObj(std::string_view text, const std::string& name) {
  return ObjReader(text, name).run();
}

}  // namespace qelm::tool
