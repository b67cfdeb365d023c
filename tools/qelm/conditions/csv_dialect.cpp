#include "conditions/csv_dialect.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "text/text.h"

namespace qelm::tool {
namespace {

std::string_view unquoted(std::string_view field) {
  field = trimmed(field);
  if (field.size() < 2 || field.front() != '"' || field.back() != '"') return field;
  return trimmed(field.substr(1, field.size() - 2));
}

std::string fromUtf16(std::string_view bytes, bool isBigEndian) {
  constexpr std::uint32_t kReplacement = 0xfffd;
  const auto unitAt = [&](std::size_t at) -> std::uint32_t {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    return static_cast<std::uint32_t>(isBigEndian ? first << 8 | second : second << 8 | first);
  };
  std::string text;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    std::uint32_t unit = unitAt(at);
    const bool isFirstHalf = unit >= 0xd800 && unit < 0xdc00;
    const std::uint32_t next = isFirstHalf && at + 3 < bytes.size() ? unitAt(at + 2) : 0;
    if (next >= 0xdc00 && next < 0xe000) {
      unit = 0x10000 + ((unit - 0xd800) << 10) + (next - 0xdc00);
      at += 2;
    } else if (unit >= 0xd800 && unit < 0xe000) {
      unit = kReplacement;
    }
    appendUtf8(text, unit);
  }
  return text;
}

}  // namespace

std::string toUtf8Text(std::string_view bytes) {
  if (bytes.starts_with("\xff\xfe")) return fromUtf16(bytes.substr(2), false);
  if (bytes.starts_with("\xfe\xff")) return fromUtf16(bytes.substr(2), true);
  return std::string(bytes);
}

CsvDialect CsvDialect::of(std::string_view firstLine) {
  for (const char separator : {';', '\t', ','})
    if (firstLine.find(separator) != std::string_view::npos) return CsvDialect(separator);
  return CsvDialect(' ');
}

std::vector<std::string_view> CsvDialect::fields(std::string_view line) const {
  std::vector<std::string_view> fields =
      separator_ == ' ' ? splitAtBlanks(line) : splitAt(line, separator_);
  for (std::string_view& field : fields) field = unquoted(field);
  return fields;
}

std::optional<double> CsvDialect::number(std::string_view field) const {
  const std::size_t comma = field.find(',');
  if (separator_ == ',' || comma == std::string_view::npos) return parseDouble(field);
  std::string pointed(field);
  pointed[comma] = '.';
  return parseDouble(pointed);
}

std::optional<long long> CsvDialect::wholeNumber(std::string_view field) const {
  if (const auto whole = parseInteger(field)) return whole;
  constexpr double kMost = 9007199254740992;  // 2^53: beyond, doubles are whole but not exact
  const auto value = number(field);
  if (!value || !(std::abs(*value) <= kMost) || std::trunc(*value) != *value) return {};
  return static_cast<long long>(*value);
}

std::string_view CsvDialect::name() const {
  if (separator_ == ';') return "separated by semicolons";
  if (separator_ == '\t') return "separated by tabs";
  return separator_ == ',' ? "separated by commas" : "separated by blanks";
}

}  // namespace qelm::tool
