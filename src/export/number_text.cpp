#include "export/number_text.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

#include "interface/index.h"

namespace qelm {
namespace {

void writeEight(char* to, std::uint64_t characters) { std::memcpy(to, &characters, 8); }

/// digits * 10^(exponent - 5).
struct SixDigits {
  std::uint32_t digits;  ///< 100000 .. 999999
  int exponent;          ///< of the first digit
};

/// Rounds to six significant digits. False where the rounding is not certain, or outside of
/// [0.0001, 999999), where the notation has an exponent.
///
/// The digits are magnitude * 10^(5 - exponent), rounded to an integer. The power is
/// exact and the product below 2^20, so it is off by at most 2^-34; where it is further
/// than kDoubt from the middle of two integers, so is the exact product, on the same
/// side. A power of ten below 1 is not a double, but the doubles nearest to those here
/// are above them: no double lies between, and comparing with either is the same.
bool roundToSix(double magnitude, SixDigits& rounded) {
  constexpr double kDoubt = 1e-6;
  constexpr std::array<double, 10> kPowers = {1e5, 1e4, 1e3, 1e2, 1e1, 1, 1e-1, 1e-2, 1e-3, 1e-4};
  constexpr std::array<double, 10> kScales = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  if (!(magnitude >= 1e-4 && magnitude < 999999)) return false;
  std::size_t below = 0;  // powers above the magnitude; counted without branches
  for (const double power : kPowers) below += magnitude < power ? 1 : 0;
  const double scaled = magnitude * kScales[below];
  const auto whole = static_cast<std::int32_t>(scaled);
  const double rest = scaled - whole;
  if (std::fabs(rest - 0.5) < kDoubt) return false;
  rounded.digits = static_cast<std::uint32_t>(whole + (rest > 0.5 ? 1 : 0));
  rounded.exponent = 5 - asInt(below);
  if (rounded.digits == 1000000) rounded = {100000, rounded.exponent + 1};
  return true;
}

/// Writes words of eight characters; those behind the number's end mean nothing.
char* writePlain(char* to, const SixDigits& number) {
  const std::uint64_t digits = eightDigits(number.digits * 100);
  const auto zerosAtEnd = asIndex(std::countl_zero(digits)) / 8;
  const std::size_t kept = 8 - zerosAtEnd;
  const std::uint64_t text = digits | kZeros;
  if (number.exponent < 0) {
    const auto zeros = asIndex(-number.exponent);
    writeEight(to, kZeros);
    to[1] = '.';
    writeEight(to + 1 + zeros, text);
    return to + 1 + zeros + kept;
  }
  const std::size_t beforePoint = asIndex(number.exponent) + 1;
  writeEight(to, text);
  to[beforePoint] = '.';
  writeEight(to + beforePoint + 1, text >> 8 * beforePoint);
  return to + (kept <= beforePoint ? beforePoint : kept + 1);
}

/// Streams write NaN as the C library does: glibc shows the sign, the Windows runtime does not.
std::string_view nanText(double number) {
#ifdef _WIN32
  static_cast<void>(number);
  return "nan";
#else
  return std::signbit(number) ? "-nan" : "nan";
#endif
}

/// "%g" is what to_chars calls general with a precision, digit for digit.
char* writeAny(char* to, double number) {
  if (!std::isnan(number)) {
    return std::to_chars(to, to + kNumberRoom, number, std::chars_format::general, 6).ptr;
  }
  const std::string_view text = nanText(number);
  std::memcpy(to, text.data(), text.size());
  return to + text.size();
}

}  // namespace

char* writeNumber(char* to, double number) {
  SixDigits rounded;
  const double magnitude = std::fabs(number);
  const bool isZero = magnitude == 0;
  if (!isZero && !roundToSix(magnitude, rounded)) return writeAny(to, number);
  *to = '-';
  to += std::signbit(number) ? 1 : 0;
  if (!isZero) return writePlain(to, rounded);
  *to = '0';
  return to + 1;
}

char* writeNumber(char* to, std::int32_t number) {
  if (isShort(number)) return shortText(number).write(to);
  return std::to_chars(to, to + kNumberRoom, number).ptr;
}

}  // namespace qelm
