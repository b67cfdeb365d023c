// Small pieces of parsing that every reader needs.
#ifndef QELM_TOOLS_TEXT_H
#define QELM_TOOLS_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qelm::tool {

/// The whole of `text` as a number; nothing when anything else is in it. "nan"
/// and "inf" are numbers here; what is too large becomes infinite.
std::optional<double> parseDouble(std::string_view text);

/// The whole of `text` as a decimal integer.
std::optional<long long> parseInteger(std::string_view text);

/// A number that was measured, in nine digits at most. What was read or is in a result is
/// written with {}: the shortest digits that read back as the same double.
std::string digits(double value);

/// In as few digits as tell it from numbers that are `step` away.
std::string digits(double value, double step);

std::vector<std::string_view> splitAt(std::string_view text, char separator);
std::vector<std::string_view> splitAtBlanks(std::string_view text);
/// The same into `parts`, in place of what is there: no new memory for every line.
void splitAtBlanks(std::string_view text, std::vector<std::string_view>& parts);
std::string_view trimmed(std::string_view text);

/// Adds a character's bytes in UTF-8. `character` is at most 0x10ffff.
void appendUtf8(std::string& text, std::uint32_t character);

/// With small letters for those of ASCII.
std::string lowerCase(std::string_view text);

/// The text without what could steer a terminal, or end a C string: files and their
/// names may hold anything. Bytes that are no UTF-8 become "\xff" as well. Line ends stay.
std::string printable(std::string_view text);

/// The text in one line: control characters, such as line ends, become blanks.
std::string oneLine(std::string text);

/// The text without the byte order mark that some programs put in front of UTF-8.
std::string_view withoutMark(std::string_view text);

/// Hands out a text line by line, without a mark in front and without line ends
/// ("\n" or "\r\n").
class LineReader {
 public:
  explicit LineReader(std::string_view text) : rest_(withoutMark(text)) {}

  /// Moves to the next line; false at the end.
  bool next();
  std::string_view line() const { return line_; }
  /// What follows this line.
  std::string_view rest() const { return rest_; }
  /// Counted from 1, as editors do.
  std::size_t number() const { return number_; }

 private:
  std::string_view rest_;
  std::string_view line_;
  std::size_t number_ = 0;
};

}  // namespace qelm::tool

#endif
