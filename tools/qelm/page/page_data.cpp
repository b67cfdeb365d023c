#include "page/page_data.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

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

/// Seven bits in each byte, the lowest first; the top bit says that more follow.
void appendVarint(std::string& block, std::uint32_t number) {
  for (; number >= 0x80; number >>= 7) block.push_back(static_cast<char>(number | 0x80));
  block.push_back(static_cast<char>(number));
}

/// 0, -1, 1, -2 ... as 0, 1, 2, 3 ..., so that small numbers of either sign are short.
std::uint32_t zigzag(int number) {
  return (static_cast<std::uint32_t>(number) << 1) ^ static_cast<std::uint32_t>(number >> 31);
}

/// The box round the mesh, then every coordinate as a 24-bit fraction of it, rounded to the
/// nearest: off by 2^-25 of the box's extent at most.
void appendFractions(std::string& block, const Mesh& mesh) {
  constexpr double kMostSteps = 0xffffff;
  Point low = mesh.point(0);
  Point high = low;
  for (int v = 1; v < mesh.vertexCount(); ++v)
    for (std::size_t k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], mesh.point(v)[k]);
      high[k] = std::max(high[k], mesh.point(v)[k]);
    }
  const Point size = {high[0] - low[0], high[1] - low[1], high[2] - low[2]};
  append(block, std::span<const double>(low));
  append(block, std::span<const double>(size));
  for (std::size_t i = 0; i < mesh.vertices.size(); ++i) {
    const double part = size[i % 3] > 0 ? (mesh.vertices[i] - low[i % 3]) / size[i % 3] : 0;
    const auto steps = static_cast<std::uint32_t>(std::lround(part * kMostSteps));
    for (int shift = 0; shift < 24; shift += 8)
      block.push_back(static_cast<char>(steps >> shift & 0xff));
  }
}

/// Vertices that one condition holds mostly come one after another, and free ones do.
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

std::string base64(std::string_view bytes) {
  constexpr std::string_view kLetters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t k = 0; k < bytes.size(); k += 3) {
    const std::string_view three = bytes.substr(k, 3);
    std::uint32_t bits = 0;
    for (std::size_t b = 0; b < 3; ++b)
      bits = bits << 8 | (b < three.size() ? static_cast<unsigned char>(three[b]) : 0U);
    for (std::size_t b = 0; b < 4; ++b)
      text.push_back(b <= three.size() ? kLetters[bits >> (18 - 6 * b) & 63] : '=');
  }
  return text;
}

}  // namespace qelm::tool
