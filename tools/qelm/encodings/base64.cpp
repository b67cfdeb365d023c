#include "encodings/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace qelm::tool {
namespace {

constexpr std::string_view kLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::uint8_t kPadding = 64;
constexpr std::uint8_t kBlank = 65;
constexpr std::uint8_t kNothing = 66;

constexpr std::array<std::uint8_t, 256> meanings() {
  std::array<std::uint8_t, 256> table{};
  table.fill(kNothing);
  for (std::size_t k = 0; k < kLetters.size(); ++k)
    table[static_cast<unsigned char>(kLetters[k])] = static_cast<std::uint8_t>(k);
  table['='] = kPadding;
  for (const char blank : {' ', '\t', '\r', '\n'})
    table[static_cast<unsigned char>(blank)] = kBlank;
  return table;
}

constexpr std::array<std::uint8_t, 256> kMeanings = meanings();

}  // namespace

std::optional<std::string> fromBase64(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3 + 3);
  std::uint32_t group = 0;
  int letters = 0;
  int padding = 0;
  for (const char c : text) {
    const std::uint8_t meaning = kMeanings[static_cast<unsigned char>(c)];
    if (meaning == kBlank) continue;
    if (meaning == kNothing) return {};
    if (meaning == kPadding && letters < 2) return {};
    if (meaning != kPadding && padding > 0) return {};
    padding += meaning == kPadding ? 1 : 0;
    group = ((group << 6) & 0xffffff) | (meaning == kPadding ? 0U : meaning);
    if (++letters < 4) continue;
    for (int k = 0; k < 3 - padding; ++k)
      bytes += static_cast<char>(static_cast<unsigned char>((group >> (16 - 8 * k)) & 0xff));
    group = 0;
    letters = padding = 0;
  }
  if (letters != 0) return {};
  return bytes;
}

std::string toBase64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k)
      group =
          (group << 8) | (at + k < bytes.size() ? static_cast<unsigned char>(bytes[at + k]) : 0U);
    for (std::size_t k = 0; k < 4; ++k)
      text += at + k <= bytes.size() ? kLetters[(group >> (18 - 6 * k)) & 63] : '=';
  }
  return text;
}

}  // namespace qelm::tool
