#include "page/page_data.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "mesh/box.h"
#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

static_assert(std::endian::native == std::endian::little, "numbers are written as they lie");

constexpr std::string_view kMagic = "QELM";
constexpr std::uint32_t kVersion = 2;
constexpr int kColourSteps = 256;

template <class Number>
void append(std::string& block, std::span<const Number> numbers) {
  block.append(reinterpret_cast<const char*>(numbers.data()), numbers.size_bytes());
}

void append(std::string& block, std::uint32_t number) {
  append(block, std::span<const std::uint32_t>(&number, 1));
}

/// A number in groups of seven bits, the lowest first; a byte's top bit says that more follow.
void appendVarint(std::string& block, std::uint32_t number) {
  for (; number >= 0x80; number >>= 7) block.push_back(static_cast<char>(number | 0x80));
  block.push_back(static_cast<char>(number));
}

/// 0, -1, 1, -2 ... as 0, 1, 2, 3 ..., so that small numbers of either sign are short.
std::uint32_t zigzag(int number) {
  return (static_cast<std::uint32_t>(number) << 1) ^ static_cast<std::uint32_t>(number >> 31);
}

/// The mesh's box, then every coordinate as a 24-bit fraction of the box, rounded to the nearest:
/// it is off by 2^-25 of the box's size at most.
void appendFractions(std::string& block, const Mesh& mesh) {
  constexpr double kMostSteps = 0xffffff;
  const auto [low, high] = boxOf(mesh);
  const Point size = high - low;
  append(block, std::span<const double>(low));
  append(block, std::span<const double>(size));
  for (std::size_t i = 0; i < mesh.vertices.size(); ++i) {
    const double part = size[i % 3] > 0 ? (mesh.vertices[i] - low[i % 3]) / size[i % 3] : 0;
    const auto steps = static_cast<std::uint32_t>(std::lround(part * kMostSteps));
    for (int shift = 0; shift < 24; shift += 8)
      block.push_back(static_cast<char>(steps >> shift & 0xff));
  }
}

/// Run-length encoding: vertices of one condition mostly come one after another, and so do free
/// ones.
void appendRuns(std::string& block, std::span<const int> fixedBy) {
  for (std::size_t v = 0; v < fixedBy.size();) {
    std::size_t end = v;
    while (end < fixedBy.size() && fixedBy[end] == fixedBy[v]) ++end;
    appendVarint(block, static_cast<std::uint32_t>(end - v));
    appendVarint(block, static_cast<std::uint32_t>(fixedBy[v]));
    v = end;
  }
}

void appendColours(std::string& block, const Ramp& ramp) {
  for (int k = 0; k < kColourSteps; ++k)
    for (const std::uint8_t channel : ramp(static_cast<double>(k) / (kColourSteps - 1)))
      block.push_back(static_cast<char>(channel));
}

}  // namespace

std::string pageData(const PageContent& content) {
  const Mesh& mesh = content.mesh;
  std::string block(kMagic);
  append(block, kVersion);
  append(block, static_cast<std::uint32_t>(mesh.vertexCount()));
  append(block, static_cast<std::uint32_t>(mesh.triangleCount()));
  append(block, static_cast<std::uint32_t>(content.load.size()));
  append(block, content.isExact ? 1U : 0U);
  if (content.isExact)
    append(block, std::span<const double>(mesh.vertices));
  else
    appendFractions(block, mesh);
  append(block, content.field);
  append(block, content.load);
  appendColours(block, content.ramp);
  appendRuns(block, content.fixedBy);
  int before = 0;
  for (const int corner : mesh.triangles) {
    appendVarint(block, zigzag(corner - before));
    before = corner;
  }
  append(block, content.others);
  return block;
}

}  // namespace qelm::tool
