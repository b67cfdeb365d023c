#include "fields/field_csv.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>

namespace qelm::tool {

namespace {

std::string header(std::size_t fieldCount) {
  if (fieldCount == 1) return "vertex,x,y,z,value\n";
  std::string line = "vertex,x,y,z";
  for (std::size_t k = 1; k <= fieldCount; ++k) line += fmt::format(",value{}", k);
  return line + "\n";
}

}  // namespace

void writeFieldCsv(const Mesh& mesh, std::span<const double> fields, ByteSink& file) {
  constexpr std::size_t kBlock = 1 << 16;
  const auto n = static_cast<std::size_t>(mesh.vertexCount());
  fmt::memory_buffer block;
  const auto out = std::back_inserter(block);
  fmt::format_to(out, "{}", header(fields.size() / n));
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const Point p = mesh.point(v);
    fmt::format_to(out, "{},{},{},{}", v, p[0], p[1], p[2]);
    for (auto i = static_cast<std::size_t>(v); i < fields.size(); i += n) {
      block.push_back(',');
      if (!std::isnan(fields[i])) fmt::format_to(out, "{}", fields[i]);
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
