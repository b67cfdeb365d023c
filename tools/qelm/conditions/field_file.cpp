#include "conditions/field_file.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <system_error>

#include "conditions/npy_array.h"
#include "files/file_bytes.h"
#include "files/paths.h"
#include "mesh_files/mesh_reader.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

class FieldCsv {
 public:
  FieldCsv(const FieldSource& source, std::string_view text, int vertexCount)
      : source_(source), lines_(text), n_(asIndex(vertexCount)) {}

  std::vector<double> run() {
    values_.assign(n_, 0.0);
    given_.assign(n_, false);
    while (lines_.next()) {
      const std::string_view line = trimmed(lines_.line().substr(0, lines_.line().find('#')));
      if (line.empty()) continue;
      const std::vector<std::string_view> fields = splitAt(line, ',');
      if (count_ == 0 && begin(fields)) continue;
      row(fields);
    }
    if (rows_ != n_)
      throw FileError(
          fmt::format("{}: {} values for {} vertices; give one for each", source_.file, rows_, n_));
    return std::move(values_);
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw FileError(fmt::format("{}:{}: {}", source_.file, lines_.number(), what));
  }

  /// From the first line; true if it is a header.
  bool begin(const std::vector<std::string_view>& fields) {
    count_ = fields.size();
    std::vector<std::string> titles;
    for (const std::string_view field : fields) titles.emplace_back(trimmed(field));
    const bool isHeader = !std::all_of(titles.begin(), titles.end(), [](const std::string& title) {
      return parseDouble(title).has_value();
    });
    if (isHeader) {
      const auto vertex = std::find(titles.begin(), titles.end(), "vertex");
      if (vertex != titles.end()) vertex_ = asIndex(vertex - titles.begin());
    }
    const std::string wanted = source_.column.empty() ? "value" : source_.column;
    const auto found = std::find(titles.begin(), titles.end(), wanted);
    const auto number = parseInteger(source_.column);
    if (isHeader && found != titles.end())
      column_ = asIndex(found - titles.begin());
    else if (number && *number >= 0 && asIndex(*number) < count_)
      column_ = asIndex(*number);
    else if (source_.column.empty() && count_ == 1)
      column_ = 0;
    else
      fail(isHeader ? fmt::format("there is no column '{}'; the file has {}", wanted,
                                  fmt::join(titles, ", "))
                    : fmt::format("{} columns without a header line; name one by number, as in "
                                  "{}:0",
                                  count_, source_.file));
    return isHeader;
  }

  void row(const std::vector<std::string_view>& fields) {
    if (fields.size() != count_)
      fail(fmt::format("{} columns, but {} before", fields.size(), count_));
    std::size_t vertex = rows_;
    if (vertex_) {
      const auto number = parseInteger(trimmed(fields[*vertex_]));
      vertex = number && *number >= 0 ? asIndex(*number) : n_;
      if (vertex >= n_)
        fail(fmt::format("there is no vertex '{}'; the mesh has {} vertices, numbered 0 to {}",
                         trimmed(fields[*vertex_]), n_, n_ - 1));
    }
    if (vertex >= n_)
      fail(fmt::format("more than {} values; the mesh has only that many vertices", n_));
    if (given_[vertex]) fail(fmt::format("vertex {} has a value already", vertex));
    const std::string_view word = trimmed(fields[column_]);
    const auto value = parseDouble(word);
    if (!value) fail(fmt::format("'{}' is not a number", word));
    given_[vertex] = true;
    values_[vertex] = *value;
    ++rows_;
  }

  const FieldSource& source_;
  LineReader lines_;
  std::size_t n_;
  std::size_t count_ = 0;  ///< of columns
  std::size_t column_ = 0;
  std::optional<std::size_t> vertex_;
  std::size_t rows_ = 0;
  std::vector<bool> given_;
  std::vector<double> values_;
};

[[noreturn]] void failSource(const FieldSource& source, const std::string& what) {
  throw FileError(fmt::format("{}: {}", source.file, what));
}

std::vector<double> columnOf(const NpyArray& array, const FieldSource& source, std::size_t n) {
  if (array.rows != n) failSource(source, fmt::format("{} rows for {} vertices", array.rows, n));
  const auto number = parseInteger(source.column);
  if (!source.column.empty() && (!number || *number < 0 || asIndex(*number) >= array.columns))
    failSource(source, fmt::format("there is no column '{}'; the array has {}, numbered from 0",
                                   source.column, array.columns));
  if (source.column.empty() && array.columns != 1)
    failSource(source, fmt::format("the array has {} columns; name one by number, as in {}:0",
                                   array.columns, source.file));
  std::vector<double> values(n);
  for (std::size_t v = 0; v < n; ++v) values[v] = array.at(v, number ? asIndex(*number) : 0);
  return values;
}

std::vector<double> propertyOf(const PolygonSoup& soup, const FieldSource& source, std::size_t n) {
  if (soup.points.size() != n)
    failSource(source, fmt::format("{} vertices, but the mesh has {}", soup.points.size(), n));
  const std::string wanted = source.column.empty() ? "value" : source.column;
  const std::vector<VertexArray>& arrays = soup.attributes.arrays;
  std::vector<std::string> names;
  for (const VertexArray& array : arrays) {
    if (array.name == wanted) return array.values;
    names.push_back(array.name);
  }
  if (source.column.empty() && arrays.size() == 1) return arrays[0].values;
  failSource(source, fmt::format("its vertices have no property '{}', but {}", wanted,
                                 names.empty() ? "no other either"
                                               : fmt::format("{}", fmt::join(names, ", "))));
}

std::vector<double> valuesOf(const FieldSource& source, std::string_view bytes, int vertexCount) {
  const std::size_t n = asIndex(vertexCount);
  const std::string extension = lowerExtension(toPath(source.file));
  if (extension == ".npy" || isNpy(bytes)) return columnOf(parseNpy(bytes, source.file), source, n);
  if (hasVertexArrays(extension))
    return propertyOf(readPolygonSoup(toPath(source.file), bytes), source, n);
  return FieldCsv(source, bytes, vertexCount).run();
}

}  // namespace

FieldSource parseFieldSource(const std::string& text) {
  std::error_code ignored;
  if (text.starts_with("-:")) return {"-", text.substr(2)};
  const std::size_t colon = text.rfind(':');
  // The colon of C:\... is none of a column.
  if (colon == text.npos || colon < 2 || std::filesystem::exists(toPath(text), ignored))
    return {text, ""};
  return {text.substr(0, colon), text.substr(colon + 1)};
}

std::vector<double> parseField(const FieldSource& source, std::string_view bytes,
                               const std::vector<bool>& used) {
  std::vector<double> values = valuesOf(source, bytes, asInt(used.size()));
  for (std::size_t v = 0; v < values.size(); ++v) {
    if (!used[v])
      values[v] = std::nan("");
    else if (!std::isfinite(values[v]))
      failSource(source, fmt::format("vertex {}: the value {} is not finite", v, values[v]));
  }
  return values;
}

std::vector<double> readField(const FieldSource& source, const std::vector<bool>& used) {
  return parseField({shownName(source.file), source.column}, readFileOrStandardInput(source.file),
                    used);
}

}  // namespace qelm::tool
