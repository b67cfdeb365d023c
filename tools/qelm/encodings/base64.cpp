#include "encodings/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "text/index.h"

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

/// The two letters of each twelve bits.
constexpr std::array<std::array<char, 2>, 4096> pairs() {
  std::array<std::array<char, 2>, 4096> table{};
  for (std::size_t k = 0; k < table.size(); ++k) table[k] = {kLetters[k >> 6], kLetters[k & 63]};
  return table;
}

constexpr std::array<std::array<char, 2>, 4096> kPairs = pairs();

struct Group {
  std::uint32_t number;  ///< 24 bits
  bool areLetters;       ///< neither padding nor blanks nor anything else
};

Group wholeGroup(const char* text) {
  std::uint32_t number = 0;
  std::uint32_t all = 0;
  for (int k = 0; k < 4; ++k) {
    const std::uint32_t meaning = kMeanings[static_cast<unsigned char>(text[k])];
    number = (number << 6) | (meaning & 63);
    all |= meaning;
  }
  return {number, all < kPadding};
}

}  // namespace

std::optional<std::string> fromBase64(std::string_view text) {
  std::string bytes(text.size() / 4 * 3 + 3, '\0');
  char* to = bytes.data();
  const auto put = [&to](std::uint32_t number, int count) {
    for (int k = 0; k < count; ++k)
      *to++ = static_cast<char>(static_cast<unsigned char>((number >> (16 - 8 * k)) & 0xff));
  };
  std::uint32_t group = 0;
  int letters = 0;
  int padding = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (letters == 0 && text.size() - at >= 4) {
      const auto [number, areLetters] = wholeGroup(text.data() + at);
      if (areLetters) {
        put(number, 3);
        at += 4;
        continue;
      }
    }
    const std::uint8_t meaning = kMeanings[static_cast<unsigned char>(text[at++])];
    if (meaning == kBlank) continue;
    if (meaning == kNothing) return {};
    if (meaning == kPadding && letters < 2) return {};
    if (meaning != kPadding && padding > 0) return {};
    padding += meaning == kPadding ? 1 : 0;
    group = ((group << 6) & 0xffffff) | (meaning == kPadding ? 0U : meaning);
    if (++letters < 4) continue;
    put(group, 3 - padding);
    group = 0;
    letters = padding = 0;
  }
  if (letters != 0) return {};
  bytes.resize(asIndex(to - bytes.data()));
  return bytes;
}

std::string toBase64(std::string_view bytes) {
  std::string text((bytes.size() + 2) / 3 * 4, '=');
  char* to = text.data();
  std::size_t at = 0;
  for (; bytes.size() - at >= 3; at += 3) {
    const auto byte = [&](std::size_t k) {
      return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + k]));
    };
    const std::uint32_t group = (byte(0) << 16) | (byte(1) << 8) | byte(2);
    std::memcpy(to, kPairs[group >> 12].data(), 2);
    std::memcpy(to + 2, kPairs[group & 0xfff].data(), 2);
    to += 4;
  }
  for (; at < bytes.size(); at += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k)
      group =
          (group << 8) | (at + k < bytes.size() ? static_cast<unsigned char>(bytes[at + k]) : 0U);
    for (std::size_t k = 0; at + k <= bytes.size(); ++k)
      *to++ = kLetters[(group >> (18 - 6 * k)) & 63];
  }
  return text;
}

}  // namespace qelm::tool
