#include "mesh_files/off_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

#include "encodings/number_source.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

// "0 0 0" and "3 0 0 0", each with what separates it from the next.
constexpr std::size_t kLeastVertex = 6;
constexpr std::size_t kLeastFace = 8;

class OffReader {
 public:
  OffReader(std::string_view text, const std::string& name)
      : lines_(text), name_(name), size_(text.size()) {}

  PolygonSoup run() {
    nextLine();
    keyword();
    if (isBinary_) return readBinary();
    counts();
    for (std::size_t v = 0; v < vertexCount_; ++v) vertex(v);
    for (std::size_t f = 0; f < faceCount_; ++f) face(f);
    return std::move(soup_);
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw FileError(fmt::format("{}:{}: {}", name_, lines_.number(), what));
  }

  /// The words of the next line that has any, without its comment.
  void nextLine() {
    words_.clear();
    needWords(1);
  }

  /// Goes on with the next lines while there are fewer words than `count`.
  void needWords(std::size_t count) {
    while (words_.size() < count) {
      if (!lines_.next())
        fail(fmt::format("the file ends before {}; it may be cut short", whatIsRead()));
      splitAtBlanks(lines_.line().substr(0, lines_.line().find('#')), more_);
      words_.insert(words_.end(), more_.begin(), more_.end());
    }
  }

  std::string whatIsRead() const {
    if (soup_.points.size() < vertexCount_)
      return fmt::format("vertex {} of {}", soup_.points.size(), vertexCount_);
    if (soup_.faces.size() < faceCount_)
      return fmt::format("face {} of {}", soup_.faces.size(), faceCount_);
    return "the counts of vertices and faces";
  }

  // OFF, COFF, NOFF, CNOFF, STCNOFF: prefixes for texture, colour, normal. 4OFF and
  // nOFF live in other spaces. The line may be missing altogether.
  void keyword() {
    const std::string_view word = words_[0];
    if (parseDouble(word)) return;
    if (!word.ends_with("OFF")) fail("not an OFF file: it does not begin with 'OFF'");
    const std::string_view prefix = word.substr(0, word.size() - 3);
    passOver(prefix);
    if (prefix.find_first_not_of("STCN") != std::string_view::npos)
      fail(fmt::format("'{}' is not a surface in space; only OFF, COFF, NOFF and STOFF are", word));
    if (words_.size() > 1 && words_[1] == "BINARY") {
      isBinary_ = true;
      return;
    }
    words_.erase(words_.begin());
    if (words_.empty()) nextLine();
  }

  void passOver(std::string_view prefix) {
    if (prefix.find('C') != std::string_view::npos) soup_.passedOver.insert("colours");
    if (prefix.find('N') != std::string_view::npos) soup_.passedOver.insert("normals");
    if (prefix.starts_with("ST")) soup_.passedOver.insert("texture coordinates");
  }

  // The number of edges may be missing, and is never right to rely on.
  void counts() {
    needWords(2);
    vertexCount_ = count(words_[0], kLeastVertex, "vertices");
    faceCount_ = count(words_[1], kLeastFace, "faces");
    soup_.points.reserve(vertexCount_);
    soup_.faces.reserve(faceCount_);
  }

  std::size_t count(std::string_view word, std::size_t least, const char* what) const {
    const auto number = parseInteger(word);
    if (!number || *number < 0) fail(fmt::format("'{}' is not a number of {}", word, what));
    const auto result = asIndex(*number);
    if (result > (size_ + 1) / least)
      fail(fmt::format("{} {} are announced, but the file is too short for them", result, what));
    return result;
  }

  void vertex(std::size_t index) {
    nextLine();
    needWords(3);
    Point point{};
    for (std::size_t k = 0; k < 3; ++k) {
      const auto value = parseDouble(words_[k]);
      if (!value) fail(fmt::format("vertex {}: '{}' is not a coordinate", index, words_[k]));
      point[k] = *value;
    }
    soup_.points.push_back(point);
  }

  void face(std::size_t index) {
    nextLine();
    const auto corners = parseInteger(words_[0]);
    if (!corners || *corners < 0)
      fail(fmt::format("face {}: '{}' is not a number of corners", index, words_[0]));
    if (asIndex(*corners) > size_)
      fail(fmt::format("face {}: {} corners, but the file is too short for them", index, *corners));
    needWords(asIndex(*corners) + 1);
    if (words_.size() > asIndex(*corners) + 1) soup_.passedOver.insert("colours");
    corners_.clear();
    for (std::size_t k = 1; k <= asIndex(*corners); ++k)
      corners_.push_back(cornerIndex(words_[k], index));
    soup_.faces.push_back(corners_);
  }

  /// Big-endian: the counts of vertices, faces and edges, each vertex's coordinates as floats, and
  /// of each face the corners' count, their numbers, and the count of the colour's floats with
  /// them.
  PolygonSoup readBinary() {
    if (words_[0] != "OFF")
      fail(fmt::format("a binary {} file; only OFF itself is read in binary", words_[0]));
    NumberSource source(lines_.rest(), name_);
    source.setBinary(ByteOrder::kBig);
    source.setPlace("counts");
    constexpr NumberType kInt = NumberType::kInt32;
    const std::size_t vertexCount = source.count(kInt, 12, 3);
    const std::size_t faceCount = source.count(kInt, 8, 2);
    source.integer(kInt);
    soup_.points.reserve(vertexCount);
    for (std::size_t v = 0; v < vertexCount; ++v) {
      if (v == 0) source.setPlace("vertices");
      Point point{};
      for (double& coordinate : point) coordinate = source.number(NumberType::kFloat32);
      soup_.points.push_back(point);
    }
    for (std::size_t f = 0; f < faceCount; ++f) {
      source.setPlace(fmt::format("face {}", f));
      const std::vector<std::int64_t> corners = source.integers(kInt, source.count(kInt, 4, 1));
      corners_.assign(corners.begin(), corners.end());
      soup_.faces.push_back(corners_);
      const std::size_t colour = source.count(kInt, 4, 1);
      for (std::size_t k = 0; k < colour; ++k) source.number(NumberType::kFloat32);
      if (colour > 0) soup_.passedOver.insert("colours");
    }
    return std::move(soup_);
  }

  int cornerIndex(std::string_view word, std::size_t face) const {
    const auto index = parseInteger(word);
    if (!index) fail(fmt::format("face {}: '{}' is not a vertex's number", face, word));
    // One that does not fit is out of range, like any other one too high.
    constexpr long long kMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(*index, -kMost, kMost));
  }

  LineReader lines_;
  const std::string& name_;
  std::size_t size_;
  std::vector<std::string_view> words_;
  std::vector<std::string_view> more_;
  bool isBinary_ = false;
  std::size_t vertexCount_ = 0;
  std::size_t faceCount_ = 0;
  std::vector<int> corners_;
  PolygonSoup soup_;
};

}  // namespace

PolygonSoup readOff(std::string_view text, const std::string& name) {
  return OffReader(text, name).run();
}

}  // namespace qelm::tool
