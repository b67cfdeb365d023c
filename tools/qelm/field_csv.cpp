#include "field_csv.h"

#include <fmt/format.h>

#include <cstddef>
#include <iterator>

namespace qelm::tool {

void writeFieldCsv(const Mesh& mesh, std::span<const double> field, OutputFile& file) {
  constexpr std::size_t kBlock = 1 << 16;
  fmt::memory_buffer block;
  fmt::format_to(std::back_inserter(block), "vertex,x,y,z,value\n");
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const Point p = mesh.point(v);
    fmt::format_to(std::back_inserter(block), "{},{},{},{},{}\n", v, p[0], p[1], p[2],
                   field[static_cast<std::size_t>(v)]);
    if (block.size() >= kBlock) {
      file.write({block.data(), block.size()});
      block.clear();
    }
  }
  file.write({block.data(), block.size()});
}

}  // namespace qelm::tool
