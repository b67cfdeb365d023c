#include "conditions/polyline_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "files/file_bytes.h"
#include "files/paths.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

class PolylineReader {
 public:
  PolylineReader(std::string_view text, const std::string& name) : lines_(text), name_(name) {}

  std::vector<Polyline> obj() {
    while (lines_.next()) {
      const auto words = splitAtBlanks(lines_.line().substr(0, lines_.line().find('#')));
      if (words.empty()) continue;
      if (words[0] == "v") points_.push_back(pointOf(words, {1, 2, 3}));
      if (words[0] == "l") polyline(words);
    }
    return finished("no polyline (l)");
  }

  std::vector<Polyline> csv() {
    while (lines_.next()) {
      const std::string_view line = trimmed(lines_.line().substr(0, lines_.line().find('#')));
      if (line.empty()) continue;
      const std::vector<std::string_view> fields = splitAt(line, ',');
      if (count_ == 0) {
        count_ = fields.size();
        if (header(fields)) continue;
      }
      row(fields);
    }
    return finished("no points");
  }

 private:
  using Columns = std::array<std::size_t, 3>;

  [[noreturn]] void fail(const std::string& what) const {
    throw FileError(fmt::format("{}:{}: {}", name_, lines_.number(), what));
  }

  Point pointOf(const std::vector<std::string_view>& words, const Columns& columns) const {
    Point point{};
    for (std::size_t k = 0; k < 3; ++k) {
      if (columns[k] >= words.size()) fail("a point needs three coordinates");
      const std::string_view word = trimmed(words[columns[k]]);
      const auto value = parseDouble(word);
      if (!value || !std::isfinite(*value)) fail(fmt::format("'{}' is not a coordinate", word));
      point[k] = *value;
    }
    return point;
  }

  void polyline(const std::vector<std::string_view>& words) {
    Polyline curve;
    const auto count = static_cast<long long>(points_.size());
    for (std::size_t k = 1; k < words.size(); ++k) {
      const auto index = parseInteger(words[k].substr(0, words[k].find('/')));
      const long long number = !index ? 0 : *index < 0 ? count + *index + 1 : *index;
      if (number < 1 || number > count)
        fail(fmt::format("'{}' is no vertex of a line; {} come before it", words[k], count));
      curve.points.push_back(points_[asIndex(number - 1)]);
    }
    add(std::move(curve));
  }

  bool header(const std::vector<std::string_view>& fields) {
    if (std::all_of(fields.begin(), fields.end(),
                    [](std::string_view f) { return parseDouble(trimmed(f)).has_value(); }))
      return false;
    columns_ = {fields.size(), fields.size(), fields.size()};
    for (std::size_t k = 0; k < fields.size(); ++k) {
      const std::string_view title = trimmed(fields[k]);
      if (title == "x") columns_[0] = k;
      if (title == "y") columns_[1] = k;
      if (title == "z") columns_[2] = k;
      if (title == "curve") curve_ = k;
      if (title == "closed") closed_ = k;
    }
    if (*std::max_element(columns_.begin(), columns_.end()) == fields.size())
      fail("the header has no columns 'x', 'y' and 'z'");
    return true;
  }

  void row(const std::vector<std::string_view>& fields) {
    if (fields.size() != count_)
      fail(fmt::format("{} columns, but {} before", fields.size(), count_));
    const std::string_view key = curve_ ? trimmed(fields[*curve_]) : "";
    if (key != key_ || current_.points.empty()) {
      add(std::move(current_));
      current_ = {};
      current_.closed = closed_ && trimmed(fields[*closed_]) == "1";
      key_ = key;
    }
    current_.points.push_back(pointOf(fields, columns_));
  }

  void add(Polyline curve) {
    if (curve.points.empty()) return;
    if (curve.points.size() > 2 && curve.points.front() == curve.points.back()) {
      curve.points.pop_back();
      curve.closed = true;
    }
    curves_.push_back(std::move(curve));
  }

  std::vector<Polyline> finished(const char* lack) {
    add(std::move(current_));
    if (curves_.empty()) throw FileError(fmt::format("{}: not a curve: {}", name_, lack));
    return std::move(curves_);
  }

  LineReader lines_;
  const std::string& name_;
  std::vector<Point> points_;  ///< of an OBJ file
  Columns columns_ = {0, 1, 2};
  std::optional<std::size_t> curve_, closed_;
  std::size_t count_ = 0;
  std::string_view key_;
  Polyline current_;
  std::vector<Polyline> curves_;
};

}  // namespace

std::vector<Polyline> parsePolylines(std::string_view text, const std::string& name) {
  PolylineReader reader(text, name);
  return lowerExtension(toPath(name)) == ".obj" ? reader.obj() : reader.csv();
}

std::vector<Polyline> readPolylines(const std::string& name) {
  const std::string text = readFile(toPath(name));
  return parsePolylines(text, name);
}

}  // namespace qelm::tool
