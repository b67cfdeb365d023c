#include "page/page_data.h"

#include <bit>
#include <cstddef>
#include <cstdint>

#include "colours/viridis.h"

namespace qelm::tool {
namespace {

static_assert(std::endian::native == std::endian::little, "numbers are written as they lie");

constexpr std::string_view kMagic = "QELM";
constexpr std::uint32_t kVersion = 1;
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

void appendColours(std::string& block) {
  for (int k = 0; k < kColourSteps; ++k)
    for (const std::uint8_t channel : viridis(static_cast<double>(k) / (kColourSteps - 1)))
      block.push_back(static_cast<char>(channel));
}

}  // namespace

std::string pageData(const Mesh& mesh, std::span<const double> field, std::span<const double> load,
                     const std::vector<int>& fixedBy) {
  std::string block(kMagic);
  append(block, kVersion);
  append(block, static_cast<std::uint32_t>(mesh.vertexCount()));
  append(block, static_cast<std::uint32_t>(mesh.triangleCount()));
  append(block, static_cast<std::uint32_t>(load.size()));
  append(block, std::span<const double>(mesh.vertices));
  append(block, field);
  append(block, load);
  appendColours(block);
  for (const int condition : fixedBy) appendVarint(block, static_cast<std::uint32_t>(condition));
  int before = 0;
  for (const int corner : mesh.triangles) {
    appendVarint(block, zigzag(corner - before));
    before = corner;
  }
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
