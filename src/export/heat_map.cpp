#include "export/heat_map.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "export/block_writer.h"
#include "export/number_text.h"

namespace qelm {
namespace {

/// More than a line of numbers can need.
constexpr std::size_t kLineRoom = 8 * kNumberRoom;

void writeVertices(BlockWriter& text, std::span<const double> vertices) {
  for (std::size_t i = 0; i < vertices.size(); i += 3) {
    char* to = text.roomFor(kLineRoom);
    *to++ = 'v';
    for (const double coordinate : vertices.subspan(i, 3)) {
      *to++ = ' ';
      to = writeNumber(to, coordinate);
    }
    *to++ = '\n';
    text.usedUpTo(to);
  }
}

/// Reversed on purpose: the largest value gets u = 0, the smallest u = 1. With
/// equal values everywhere 0 / 0 is written as it is. Where a NaN stands among the
/// values, which two are taken for the extremes is up to std::minmax_element, whose
/// every comparison with it is false.
void writeTextureCoordinates(BlockWriter& text, std::span<const double> field) {
  if (field.empty()) return;
  const auto [smallest, largest] = std::minmax_element(field.begin(), field.end());
  const double low = *smallest;
  const double range = *largest - low;
  for (const double value : field) {
    char* to = text.roomFor(kLineRoom);
    std::memcpy(to, "vt ", 3);
    to = writeNumber(to + 3, 1.0 - (value - low) / range);
    std::memcpy(to, " 0.5\n", 5);
    text.usedUpTo(to + 5);
  }
}

/// A corner's texture coordinate has the number of its vertex.
char* writeCorner(char* to, std::int32_t number) {
  if (isShort(number)) {
    const ShortText text = shortText(number);
    to = text.write(to);
    *to++ = '/';
    return text.write(to);
  }
  to = writeNumber(to, number);
  *to++ = '/';
  return writeNumber(to, number);
}

/// 1-based.
void writeFaces(BlockWriter& text, std::span<const std::int32_t> triangles) {
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    char* to = text.roomFor(kLineRoom);
    *to++ = 'f';
    for (const std::int32_t v : triangles.subspan(j, 3)) {
      *to++ = ' ';
      to = writeCorner(to, v + 1);
    }
    *to++ = '\n';
    text.usedUpTo(to);
  }
}

}  // namespace

void writeObj(std::ostream& out, const HeatMap& map, std::string_view path) {
  BlockWriter text(out);
  // The whole path as the caller gave it, folders included, on purpose.
  text.write("mtllib ");
  text.write(path);
  text.write(".mtl\nusemtl Heat\n");
  writeVertices(text, map.vertices);
  writeTextureCoordinates(text, map.field);
  writeFaces(text, map.triangles);
  text.finish();
}

// The blanks and tabs at the ends belong to the lines.
void writeMtl(std::ostream& out) {
  BlockWriter text(out);
  text.write(
      "newmtl Heat \n"
      "Kd 1 1 1             \n"
      "Ns 96.0784\t\t\t \n"
      "d 1\t\t\t\t\t \n"
      "illum 1\t\t\t\t \n"
      "Ka 0 0 0\t\t\t \n"
      "Ks 1 1 1\t\t\t \n"
      "map_Kd viridis.PNG\n");
  text.finish();
}

}  // namespace qelm
