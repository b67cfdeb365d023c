#include "fields/field_csv.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <cstddef>
#include <iterator>

#include "text/index.h"

namespace qelm::tool {

std::vector<std::string> fieldTitles(std::size_t fieldCount) {
  if (fieldCount == 1) return {"value"};
  std::vector<std::string> titles;
  for (std::size_t k = 1; k <= fieldCount; ++k) titles.push_back(fmt::format("value{}", k));
  return titles;
}

void writeFieldCsv(const Mesh& mesh, const std::vector<std::string>& titles,
                   std::span<const double> columns, ByteSink& file) {
  constexpr std::size_t kBlock = 1 << 16;
  const std::size_t n = asIndex(mesh.vertexCount());
  fmt::memory_buffer block;
  const auto out = std::back_inserter(block);
  fmt::format_to(out, "vertex,x,y,z,{}\n", fmt::join(titles, ","));
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const Point p = mesh.point(v);
    fmt::format_to(out, "{},{},{},{}", v, p[0], p[1], p[2]);
    for (std::size_t i = asIndex(v); i < columns.size(); i += n) {
      block.push_back(',');
      if (!std::isnan(columns[i])) fmt::format_to(out, "{}", columns[i]);
    }
    block.push_back('\n');
    if (block.size() >= kBlock) {
      file.write({block.data(), block.size()});
      block.clear();
    }
  }
  file.write({block.data(), block.size()});
}

}  // namespace qelm::tool
