#include "colours/colour_ply.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "text/index.h"
#include "text/text.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

static_assert(sizeof(int) == sizeof(std::int32_t));

constexpr Colour kNoValue = {128, 128, 128};

/// As in the file: without padding.
#pragma pack(push, 1)
struct VertexRecord {
  Point point;
  Colour colour;
  double value;
};
#pragma pack(pop)

static_assert(std::endian::native == std::endian::little, "binary PLY is little-endian here");

void writeHeader(const Mesh& mesh, const ColourScale& scale, const Caption& caption,
                 TextBlock& block) {
  block.text("ply\nformat binary_little_endian 1.0\ncomment written by qelm\n");
  if (!caption.title.empty()) block.text("comment {}\n", oneLine(caption.title));
  if (!caption.unit.empty()) block.text("comment value in {}\n", oneLine(caption.unit));
  if (scale.isFixed) block.text("comment colours from {} to {}\n", scale.low, scale.high);
  block.text(
      "element vertex {}\n"
      "property double x\nproperty double y\nproperty double z\n"
      "property uchar red\nproperty uchar green\nproperty uchar blue\nproperty double value\n"
      "element face {}\nproperty list uchar int vertex_indices\nend_header\n",
      mesh.vertexCount(), mesh.triangleCount());
}

}  // namespace

void writeColourPly(const Mesh& mesh, std::span<const double> field, const ColourScale& scale,
                    const Caption& caption, OutputFile& file) {
  TextBlock block(file);
  writeHeader(mesh, scale, caption, block);
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const double value = field[asIndex(v)];
    const Colour colour = std::isnan(value) ? kNoValue : scale(value);
    block.bytes(VertexRecord{mesh.point(v), colour, value});
  }
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    block.bytes(std::uint8_t{3});
    block.bytes(mesh.corners(t));
  }
  block.flush();
}

}  // namespace qelm::tool
