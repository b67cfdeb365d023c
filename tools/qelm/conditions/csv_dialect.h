// The many ways in which programs write tables of numbers as text.
#ifndef QELM_TOOLS_CSV_DIALECT_H
#define QELM_TOOLS_CSV_DIALECT_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qelm::tool {

/// The text in UTF-8, whatever its mark says: UTF-16 of either byte order is converted, in which
/// half a pair becomes U+FFFD. Text without a mark is taken as it is.
std::string toUtf8Text(std::string_view bytes);

class CsvDialect {
 public:
  /// Of a table by its first line: fields end at semicolons if it has any, else at tabs, else at
  /// commas, else at blanks. Where they do not end at commas, a comma may stand for the decimal
  /// point.
  static CsvDialect of(std::string_view firstLine);

  /// The line's fields without blanks around them, and without quotes.
  std::vector<std::string_view> fields(std::string_view line) const;

  std::optional<double> number(std::string_view field) const;
  /// A whole number, also as "3.000e+00".
  std::optional<long long> wholeNumber(std::string_view field) const;

  /// "separated by semicolons"
  std::string_view name() const;

 private:
  explicit CsvDialect(char separator) : separator_(separator) {}
  char separator_;
};

}  // namespace qelm::tool

#endif
