#include "text/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace qelm::tool {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

// kBlanks.find() would be a call for each character of large files.
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// std::from_chars takes no leading plus sign; people and programs write one.
std::string_view withoutPlus(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

/// How many bytes the UTF-8 character in front has; 0 when there is none.
std::size_t characterSize(std::string_view text) {
  const auto at = [text](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char first = at(0);
  if (first < 0x80) return 1;
  const std::size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || text.size() < size) return 0;
  for (std::size_t k = 1; k < size; ++k)
    if ((at(k) & 0xc0) != 0x80) return 0;
  // Longer than need be, halves of a pair, beyond the last one.
  const bool isBad = (first == 0xe0 && at(1) < 0xa0) || (first == 0xed && at(1) > 0x9f) ||
                     (first == 0xf0 && at(1) < 0x90) || (first == 0xf4 && at(1) > 0x8f);
  return isBad ? 0 : size;
}

/// Control characters but the line's end: those of ASCII, and U+0080 to U+009F.
bool steers(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  if (character.size() == 1) return (first < 0x20 && first != '\n') || first == 0x7f;
  return first == 0xc2 && static_cast<unsigned char>(character[1]) < 0xa0;
}

}  // namespace

std::optional<double> parseDouble(std::string_view text) {
  text = withoutPlus(text);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end != text.data() + text.size() || error == std::errc::invalid_argument) return {};
  // from_chars says "out of range" without saying on which side; strtod does.
  if (error == std::errc::result_out_of_range)
    return std::strtod(std::string(text).c_str(), nullptr);
  return value;
}

std::optional<long long> parseInteger(std::string_view text) {
  text = withoutPlus(text);
  long long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end != text.data() + text.size() || error != std::errc{}) return {};
  return value;
}

std::string digits(double value) { return fmt::format("{:.9g}", value); }

std::string digits(double value, double step) {
  constexpr int kMost = 17;
  constexpr double kLarge = 1e6;
  for (int count = 1; count < kMost; ++count) {
    const std::string text = fmt::format("{:.{}g}", value, count);
    // 100 rather than 1e+02.
    if (text.find("e+") != std::string::npos && std::abs(value) < kLarge) continue;
    // Less than half a step away, so that neighbours stay apart.
    if (std::abs(*parseDouble(text) - value) < step / 2) return text;
  }
  return fmt::format("{}", value);
}

std::vector<std::string_view> splitAt(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t cut = text.find(separator);
    parts.push_back(text.substr(0, cut));
    if (cut == std::string_view::npos) return parts;
    text.remove_prefix(cut + 1);
  }
}

std::vector<std::string_view> splitAtBlanks(std::string_view text) {
  std::vector<std::string_view> parts;
  splitAtBlanks(text, parts);
  return parts;
}

void splitAtBlanks(std::string_view text, std::vector<std::string_view>& parts) {
  parts.clear();
  for (std::size_t begin = 0; begin < text.size();) {
    while (begin < text.size() && isBlank(text[begin])) ++begin;
    std::size_t end = begin;
    while (end < text.size() && !isBlank(text[end])) ++end;
    if (end > begin) parts.push_back(text.substr(begin, end - begin));
    begin = end;
  }
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

void appendUtf8(std::string& text, std::uint32_t character) {
  const auto byte = [&text](std::uint32_t bits) { text.push_back(static_cast<char>(bits)); };
  if (character < 0x80) return byte(character);
  if (character < 0x800) {
    byte(0xc0 | character >> 6);
  } else {
    if (character < 0x10000) {
      byte(0xe0 | character >> 12);
    } else {
      byte(0xf0 | character >> 18);
      byte(0x80 | (character >> 12 & 0x3f));
    }
    byte(0x80 | (character >> 6 & 0x3f));
  }
  byte(0x80 | (character & 0x3f));
}

std::string lowerCase(std::string_view text) {
  std::string copy(text);
  std::transform(copy.begin(), copy.end(), copy.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return copy;
}

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t size = characterSize(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(size, 1));
    if (size > 0 && !steers(character))
      result += character;
    else
      for (const char c : character)
        result += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
    text.remove_prefix(character.size());
  }
  return result;
}

std::string oneLine(std::string text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';
  return text;
}

std::string_view withoutMark(std::string_view text) {
  constexpr std::string_view kMark = "\xef\xbb\xbf";
  return text.starts_with(kMark) ? text.substr(kMark.size()) : text;
}

bool LineReader::next() {
  if (rest_.empty()) return false;
  const std::size_t end = rest_.find('\n');
  line_ = rest_.substr(0, end);
  rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
  if (!line_.empty() && line_.back() == '\r') line_.remove_suffix(1);
  ++number_;
  return true;
}

}  // namespace qelm::tool
