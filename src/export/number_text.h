// Numbers as text in memory.
#ifndef QELM_EXPORT_NUMBER_TEXT_H
#define QELM_EXPORT_NUMBER_TEXT_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "interface/index.h"

namespace qelm {

/// Characters that writing a number may touch, some of them beyond the number's end.
/// "-1.23457e-308" has 13 characters, "-2147483648" has 11.
inline constexpr std::size_t kNumberRoom = 24;

/// Writes a number as a stream in its default state does, whatever the locale:
/// general notation with six significant digits. Returns the end.
char* writeNumber(char* to, double number);

/// Writes a number in plain decimal. Returns the end.
char* writeNumber(char* to, std::int32_t number);

// Digits are made eight at a time, side by side in the bytes of one word, which is stored at once:
//
//   12345678    halves    1234 | 5678    then 12 | 34 | 56 | 78    then '1' '2' ... '8'
static_assert(std::endian::native == std::endian::little);

inline constexpr std::uint64_t kZeros = 0x3030303030303030;  // eight times '0'

/// The eight decimal digits of a number below 10^8, the first one in the lowest byte. Halves are
/// split side by side, three times: into numbers below 10^4, numbers below 10^2, and digits.
/// Multiplying by 10486 / 2^20 divides by 100 exactly below 10^4, by
/// 103 / 2^10 divides by 10 exactly below 10^2.
inline std::uint64_t eightDigits(std::uint32_t number) {
  const std::uint64_t fours = number / 10000 | std::uint64_t{number % 10000} << 32;
  const std::uint64_t hundreds = (fours * 10486 >> 20) & 0x0000007f0000007f;
  const std::uint64_t twos = hundreds | (fours - 100 * hundreds) << 16;
  const std::uint64_t tens = (twos * 103 >> 10) & 0x000f000f000f000f;
  return tens | (twos - 10 * tens) << 8;
}

/// An integer's text in a word, to be written more than once.
struct ShortText {
  std::uint64_t characters;
  std::size_t length;

  char* write(char* to) const {
    std::memcpy(to, &characters, sizeof characters);
    return to + length;
  }
};

/// Whether a number has a ShortText.
inline bool isShort(std::int32_t number) { return number >= 0 && number < 100000000; }

inline ShortText shortText(std::int32_t number) {
  const std::uint64_t digits = eightDigits(static_cast<std::uint32_t>(number));
  // Leading zeros go, but not the last digit, even if it is zero.
  const int zeros = std::countr_zero(digits | std::uint64_t{1} << 56) / 8;
  return {(digits | kZeros) >> 8 * zeros, 8 - asIndex(zeros)};
}

}  // namespace qelm

#endif  // QELM_EXPORT_NUMBER_TEXT_H
