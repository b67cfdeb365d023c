#include "load_csv.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>

#include "error.h"
#include "paths.h"
#include "text.h"

namespace qelm::tool {

const char* const kLoadHelp =
    "Loads: --load FILE.csv adds a load g, so that K u + g = 0 at every free vertex, with\n"
    "K the surface's stiffness matrix (rows sum to 0, positive diagonal): a positive load\n"
    "lowers the field. Values enter as they are, one per vertex, without any area factor;\n"
    "those at fixed vertices are not used. The file has one of these forms:\n"
    "  VALUE             on each line, one line per vertex, in order\n"
    "  VERTEX,VALUE      on each line; vertices that are not named have load 0\n"
    "  a header line     with the columns vertex and value among others, as in the files\n"
    "                    that -o writes\n"
    "Empty lines and what follows a # are left out.\n";

namespace {

struct Columns {
  std::size_t count;
  std::optional<std::size_t> vertex;
  std::size_t value;
};

class LoadReader {
 public:
  LoadReader(std::string_view text, const std::string& name, int vertexCount)
      : lines_(text),
        name_(name),
        load_(static_cast<std::size_t>(vertexCount), 0.0),
        given_(load_.size(), false) {}

  std::vector<double> run() {
    while (lines_.next()) {
      const std::string_view line = trimmed(lines_.line().substr(0, lines_.line().find('#')));
      if (line.empty()) continue;
      const std::vector<std::string_view> fields = splitAt(line, ',');
      if (!columns_ && (columns_ = header(fields))) continue;
      if (!columns_) columns_ = withoutHeader(fields.size());
      row(fields);
    }
    if (!columns_ || (!columns_->vertex && next_ != load_.size()))
      throw InputError(
          fmt::format("{}: {} loads for {} vertices; give one per vertex, or lines of "
                      "VERTEX,VALUE",
                      name_, next_, load_.size()));
    return std::move(load_);
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw InputError(fmt::format("{}:{}: {}", name_, lines_.number(), what));
  }

  std::optional<Columns> header(const std::vector<std::string_view>& fields) const {
    if (std::all_of(fields.begin(), fields.end(),
                    [](std::string_view f) { return parseDouble(trimmed(f)).has_value(); }))
      return {};
    Columns columns{fields.size(), {}, fields.size()};
    for (std::size_t k = 0; k < fields.size(); ++k) {
      if (trimmed(fields[k]) == "vertex") columns.vertex = k;
      if (trimmed(fields[k]) == "value") columns.value = k;
    }
    if (columns.value == fields.size())
      fail("neither a row of numbers nor a header with a column 'value'");
    return columns;
  }

  Columns withoutHeader(std::size_t count) const {
    if (count == 1) return {1, {}, 0};
    if (count == 2) return {2, 0, 1};
    fail(fmt::format("{} columns need a header line with 'vertex' and 'value'", count));
  }

  void row(const std::vector<std::string_view>& fields) {
    if (fields.size() != columns_->count)
      fail(fmt::format("{} columns instead of {}", fields.size(), columns_->count));
    const std::size_t vertex = columns_->vertex ? vertexIn(fields[*columns_->vertex]) : next_++;
    if (vertex >= load_.size())
      fail(fmt::format("more than {} loads; the mesh has only that many vertices", load_.size()));
    if (given_[vertex]) fail(fmt::format("vertex {} has a load already", vertex));
    given_[vertex] = true;
    load_[vertex] = valueIn(fields[columns_->value]);
  }

  std::size_t vertexIn(std::string_view field) const {
    const auto vertex = parseInteger(trimmed(field));
    if (!vertex || *vertex < 0 || static_cast<std::size_t>(*vertex) >= load_.size())
      fail(fmt::format("there is no vertex '{}'; the mesh has {} vertices, numbered 0 to {}",
                       trimmed(field), load_.size(), load_.size() - 1));
    return static_cast<std::size_t>(*vertex);
  }

  double valueIn(std::string_view field) const {
    const auto value = parseDouble(trimmed(field));
    if (!value) fail(fmt::format("'{}' is not a number", trimmed(field)));
    if (!std::isfinite(*value)) fail(fmt::format("'{}' is not finite", trimmed(field)));
    return *value;
  }

  LineReader lines_;
  const std::string& name_;
  std::vector<double> load_;
  std::vector<bool> given_;
  std::optional<Columns> columns_;
  std::size_t next_ = 0;
};

}  // namespace

std::vector<double> readLoad(const std::string& name, int vertexCount) {
  const std::string text = readFile(toPath(name));
  return LoadReader(text, name, vertexCount).run();
}

}  // namespace qelm::tool
