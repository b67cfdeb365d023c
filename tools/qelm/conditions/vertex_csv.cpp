#include "conditions/vertex_csv.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>

#include "conditions/conditions.h"
#include "files/paths.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

struct Columns {
  std::size_t count;
  std::optional<std::size_t> vertex;
  std::size_t value;
  std::optional<std::size_t> tag;
};

struct Row {
  std::size_t vertex;
  double value;
  int tag;
};

/// What sets the two kinds of files apart.
struct Form {
  const char* what;      ///< "load"
  bool mayOmitVertices;  ///< values alone, in order
  bool mayHaveTags;
};

class VertexCsv {
 public:
  VertexCsv(std::string_view text, const std::string& name, const std::vector<bool>& used,
            const Form& form)
      : lines_(text), name_(name), form_(form), used_(used), given_(used.size(), false) {}

  std::vector<Row> run() {
    while (lines_.next()) {
      const std::string_view line = trimmed(lines_.line().substr(0, lines_.line().find('#')));
      if (line.empty()) continue;
      const std::vector<std::string_view> fields = splitAt(line, ',');
      if (!columns_ && (columns_ = header(fields))) continue;
      if (!columns_) columns_ = withoutHeader(fields.size());
      row(fields);
    }
    if (form_.mayOmitVertices && (!columns_ || !columns_->vertex) && rows_.size() != given_.size())
      throw FileError(
          fmt::format("{}: {} loads for {} vertices; give one per vertex, or lines of "
                      "VERTEX,VALUE",
                      name_, rows_.size(), given_.size()));
    return std::move(rows_);
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw FileError(fmt::format("{}:{}: {}", name_, lines_.number(), what));
  }

  std::optional<Columns> header(const std::vector<std::string_view>& fields) const {
    if (std::all_of(fields.begin(), fields.end(),
                    [](std::string_view f) { return parseDouble(trimmed(f)).has_value(); }))
      return {};
    Columns columns{fields.size(), {}, fields.size(), {}};
    for (std::size_t k = 0; k < fields.size(); ++k) {
      const std::string_view title = trimmed(fields[k]);
      if (title == "vertex") columns.vertex = k;
      if (title == "value") columns.value = k;
      if (title == "tag" && form_.mayHaveTags) columns.tag = k;
    }
    if (columns.value == fields.size())
      fail("neither a row of numbers nor a header with a column 'value'");
    if (!columns.vertex && !form_.mayOmitVertices) fail("the header has no column 'vertex'");
    return columns;
  }

  Columns withoutHeader(std::size_t count) const {
    if (count == 1 && form_.mayOmitVertices) return {1, {}, 0, {}};
    if (count == 2) return {2, 0, 1, {}};
    if (count == 3 && form_.mayHaveTags) return {3, 0, 1, 2};
    fail(fmt::format("{} column{} a header line with 'vertex' and 'value'", count,
                     count == 1 ? " needs" : "s need"));
  }

  void row(const std::vector<std::string_view>& fields) {
    if (fields.size() != columns_->count)
      fail(fmt::format("{} columns instead of {}", fields.size(), columns_->count));
    const std::size_t vertex =
        columns_->vertex ? vertexIn(fields[*columns_->vertex]) : rows_.size();
    if (vertex >= given_.size())
      fail(fmt::format("more than {} {}s; the mesh has only that many vertices", given_.size(),
                       form_.what));
    if (given_[vertex]) fail(fmt::format("vertex {} has a {} already", vertex, form_.what));
    given_[vertex] = true;
    // As fields are written: a vertex in no triangle has no value.
    if (!used_[vertex] && trimmed(fields[columns_->value]).empty()) return;
    rows_.push_back({vertex, valueIn(fields[columns_->value]),
                     columns_->tag ? tagIn(fields[*columns_->tag]) : 1});
  }

  std::size_t vertexIn(std::string_view field) const {
    const auto vertex = parseInteger(trimmed(field));
    if (!vertex || *vertex < 0 || static_cast<std::size_t>(*vertex) >= given_.size())
      fail(fmt::format("there is no vertex '{}'; the mesh has {} vertices, numbered 0 to {}",
                       trimmed(field), given_.size(), given_.size() - 1));
    return static_cast<std::size_t>(*vertex);
  }

  double valueIn(std::string_view field) const {
    const auto value = parseDouble(trimmed(field));
    if (!value) fail(fmt::format("'{}' is not a number", trimmed(field)));
    if (!std::isfinite(*value)) fail(fmt::format("'{}' is not finite", trimmed(field)));
    return *value;
  }

  int tagIn(std::string_view field) const {
    const auto tag = parseTag(trimmed(field));
    if (!tag) fail(fmt::format("'{}' is not a tag; give 1, 2 or 3", trimmed(field)));
    return *tag;
  }

  LineReader lines_;
  const std::string& name_;
  const Form& form_;
  const std::vector<bool>& used_;
  std::vector<bool> given_;
  std::vector<Row> rows_;
  std::optional<Columns> columns_;
};

}  // namespace

std::vector<double> parseLoad(std::string_view text, const std::string& name,
                              const std::vector<bool>& used) {
  std::vector<double> load(used.size(), 0.0);
  const Form form{"load", true, false};
  for (const Row& row : VertexCsv(text, name, used, form).run()) load[row.vertex] = row.value;
  return load;
}

std::vector<FixedVertex> parseFixes(std::string_view text, const std::string& name,
                                    const std::vector<bool>& used) {
  std::vector<FixedVertex> fixes;
  const Form form{"value", false, true};
  for (const Row& row : VertexCsv(text, name, used, form).run())
    fixes.push_back({static_cast<int>(row.vertex), row.value, row.tag});
  if (fixes.empty())
    throw FileError(fmt::format("{}: no vertex to fix; give lines of VERTEX,VALUE", name));
  return fixes;
}

std::vector<double> readLoad(const std::string& name, const std::vector<bool>& used) {
  return parseLoad(readFile(toPath(name)), name, used);
}

std::vector<FixedVertex> readFixes(const std::string& name, const std::vector<bool>& used) {
  return parseFixes(readFile(toPath(name)), name, used);
}

}  // namespace qelm::tool
