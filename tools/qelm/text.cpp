#include "text.h"

#include <fmt/format.h>

#include <charconv>
#include <cstdlib>
#include <string>

namespace qelm::tool {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\v\f";

// std::from_chars takes no leading plus sign; people and programs write one.
std::string_view withoutPlus(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
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
  for (std::size_t begin = text.find_first_not_of(kBlanks); begin != std::string_view::npos;
       begin = text.find_first_not_of(kBlanks)) {
    text.remove_prefix(begin);
    const std::size_t end = text.find_first_of(kBlanks);
    parts.push_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end);
  }
  return parts;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::string printable(std::string_view text) {
  std::string result;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if ((code < 0x20 && c != '\n') || code == 0x7f)
      result += fmt::format("\\x{:02x}", code);
    else
      result += c;
  }
  return result;
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
