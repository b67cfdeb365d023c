#include "conditions/vertex_csv.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>

#include "conditions/csv_dialect.h"
#include "conditions/npy_array.h"
#include "files/file_bytes.h"
#include "files/paths.h"
#include "text/error.h"
#include "text/index.h"
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

/// How files of loads and files of values to prescribe differ.
struct Form {
  const char* what;      ///< "load"
  bool mayOmitVertices;  ///< values alone, in order
  bool mayHaveTags;
};

class VertexCsv {
 public:
  VertexCsv(std::string_view text, const std::string& name, const std::vector<bool>& used,
            const Form& form)
      : text_(toUtf8Text(text)),
        lines_(text_),
        name_(name),
        form_(form),
        used_(used),
        given_(used.size(), false) {}

  std::vector<Row> run() {
    while (lines_.next()) {
      const std::size_t mark = lines_.line().find('#');
      const std::string_view line = trimmed(lines_.line().substr(0, mark));
      if (line.empty()) {
        if (mark != std::string_view::npos) comment_ = lines_.line().substr(mark + 1);
        continue;
      }
      if (!dialect_) dialect_ = CsvDialect::of(line);
      // The untrimmed line: a separator at its end, even a tab, stands before an empty field.
      const std::vector<std::string_view> fields = dialect_->fields(lines_.line().substr(0, mark));
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
                    [this](std::string_view f) { return dialect_->number(f).has_value(); }))
      return {};
    const Columns columns = titled(fields);
    if (columns.value == fields.size())
      fail("neither a row of numbers nor a header with a column 'value'");
    if (!columns.vertex && !form_.mayOmitVertices) fail("the header has no column 'vertex'");
    return columns;
  }

  /// The columns by their titles. Without a column "value" its index is titles.size().
  Columns titled(const std::vector<std::string_view>& titles) const {
    Columns columns{titles.size(), {}, titles.size(), {}};
    for (std::size_t k = 0; k < titles.size(); ++k) {
      const std::string title = lowerCase(titles[k]);
      if (title == "vertex") columns.vertex = k;
      if (title == "value") columns.value = k;
      if (title == "tag" && form_.mayHaveTags) columns.tag = k;
    }
    return columns;
  }

  /// The header may be the last comment before the rows, as numpy.savetxt() writes it.
  Columns withoutHeader(std::size_t count) const {
    const Columns columns = titled(dialect_->fields(comment_));
    if (columns.count == count && columns.value < count &&
        (columns.vertex || form_.mayOmitVertices))
      return columns;
    if (count == 1 && form_.mayOmitVertices) return {1, {}, 0, {}};
    if (count == 2) return {2, 0, 1, {}};
    if (count == 3 && form_.mayHaveTags) return {3, 0, 1, 2};
    fail(fmt::format("{} column{} a header line with 'vertex' and 'value'", count,
                     count == 1 ? " needs" : "s need"));
  }

  void row(const std::vector<std::string_view>& fields) {
    if (fields.size() != columns_->count)
      fail(fmt::format("{} columns instead of {}, {}", fields.size(), columns_->count,
                       dialect_->name()));
    const std::size_t vertex =
        columns_->vertex ? vertexIn(fields[*columns_->vertex]) : rows_.size();
    if (vertex >= given_.size())
      fail(fmt::format("more than {} {}s; the mesh has only that many vertices", given_.size(),
                       form_.what));
    if (given_[vertex]) fail(fmt::format("vertex {} has a {} already", vertex, form_.what));
    given_[vertex] = true;
    // 'solve' writes an empty field for a vertex in no triangle.
    if (!used_[vertex] && fields[columns_->value].empty()) return;
    rows_.push_back({vertex, valueIn(fields[columns_->value]),
                     columns_->tag ? tagIn(fields[*columns_->tag]) : 1});
  }

  std::size_t vertexIn(std::string_view field) const {
    const auto vertex = dialect_->wholeNumber(field);
    if (!vertex || *vertex < 0 || asIndex(*vertex) >= given_.size())
      fail(fmt::format("there is no vertex '{}'; the mesh has {} vertices, numbered 0 to {}", field,
                       given_.size(), given_.size() - 1));
    return asIndex(*vertex);
  }

  double valueIn(std::string_view field) const {
    const auto value = dialect_->number(field);
    if (!value) fail(fmt::format("'{}' is not a number{}", field, hint(field)));
    if (!std::isfinite(*value)) fail(fmt::format("'{}' is not finite", field));
    return *value;
  }

  /// For a field that holds other separators: what the first line made of them.
  std::string hint(std::string_view field) const {
    if (field.find_first_of(" \t;,") == std::string_view::npos) return "";
    return fmt::format("; the first line says that fields are {}", dialect_->name());
  }

  int tagIn(std::string_view field) const {
    const auto tag = dialect_->wholeNumber(field);
    if (!tag || *tag < 1 || *tag > 3) fail(fmt::format("'{}' is not a tag; give 1, 2 or 3", field));
    return asInt(*tag);
  }

  std::string text_;
  LineReader lines_;
  std::string_view comment_;
  std::optional<CsvDialect> dialect_;
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
    fixes.push_back({asInt(row.vertex), row.value, row.tag});
  if (fixes.empty())
    throw FileError(fmt::format("{}: no vertex to fix; give lines of VERTEX,VALUE", name));
  return fixes;
}

namespace {

/// One that is damaged at its beginning, too.
bool isNpyFile(std::string_view bytes, const std::string& name) {
  return isNpy(bytes) || lowerExtension(toPath(name)) == ".npy";
}

/// A value for each vertex.
std::vector<double> npyColumn(std::string_view bytes, const std::string& name, int vertexCount) {
  const NpyArray array = parseNpy(bytes, name);
  if (array.rows != asIndex(vertexCount) || array.columns != 1)
    throw FileError(
        fmt::format("{}: an array of {} by {}; {} by 1 is needed, a value for each "
                    "vertex",
                    name, array.rows, array.columns, vertexCount));
  return array.values;
}

}  // namespace

std::vector<double> readLoad(const std::string& file, const std::vector<bool>& used) {
  const std::string bytes = readFileOrStandardInput(file);
  const std::string name = shownName(file);
  if (!isNpyFile(bytes, name)) return parseLoad(bytes, name, used);
  std::vector<double> load = npyColumn(bytes, name, asInt(used.size()));
  for (std::size_t v = 0; v < load.size(); ++v)
    if (used[v] && !std::isfinite(load[v]))
      throw FileError(fmt::format("{}: vertex {}: the load {} is not finite", name, v, load[v]));
  return load;
}

std::vector<FixedVertex> readFixes(const std::string& file, const std::vector<bool>& used) {
  const std::string bytes = readFileOrStandardInput(file);
  const std::string name = shownName(file);
  if (!isNpyFile(bytes, name)) return parseFixes(bytes, name, used);
  const std::vector<double> values = npyColumn(bytes, name, asInt(used.size()));
  std::vector<FixedVertex> fixes;
  for (std::size_t v = 0; v < values.size(); ++v) {
    if (std::isinf(values[v]))
      throw FileError(fmt::format("{}: vertex {}: the value {} is not finite", name, v, values[v]));
    if (!std::isnan(values[v])) fixes.push_back({asInt(v), values[v], 1});
  }
  if (fixes.empty()) throw FileError(fmt::format("{}: no vertex to fix: all values are nan", name));
  return fixes;
}

}  // namespace qelm::tool
