#include "encodings/number_source.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// A digit and what separates it from the next.
constexpr std::size_t kLeastText = 2;

}  // namespace

NumberSource::NumberSource(std::string_view bytes, const std::string& name, std::size_t firstLine)
    : bytes_(withoutMark(bytes)), rest_(bytes_), name_(name), firstLine_(firstLine) {}

void NumberSource::setBinary(ByteOrder order) {
  isBinary_ = true;
  order_ = order;
}

void NumberSource::fail(const std::string& what) const {
  if (isBinary_)
    throw FileError(fmt::format("{}: {}{}{}", name_, place_, place_.empty() ? "" : ": ", what));
  const auto line = firstLine_ + asIndex(std::count(bytes_.data(), rest_.data(), '\n'));
  throw FileError(fmt::format("{}:{}: {}", name_, line, what));
}

void NumberSource::skipBlanks() {
  std::size_t k = 0;
  while (k < rest_.size() && isBlank(rest_[k])) ++k;
  rest_.remove_prefix(k);
}

std::string_view NumberSource::line() {
  const std::size_t end = std::min(rest_.find('\n'), rest_.size());
  std::string_view line = rest_.substr(0, end);
  rest_.remove_prefix(std::min(end + 1, rest_.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::string_view NumberSource::word() {
  skipBlanks();
  std::size_t end = 0;
  while (end < rest_.size() && !isBlank(rest_[end])) ++end;
  const std::string_view word = rest_.substr(0, end);
  rest_.remove_prefix(end);
  return word;
}

void NumberSource::require(std::size_t count, std::size_t least) const {
  if (count > (rest_.size() + (isBinary_ ? 0 : 1)) / least)
    fail(fmt::format("{} numbers are announced, but the file is too short for them", count));
}

void NumberSource::requireNumbers(std::size_t count, NumberType type) const {
  require(count, isBinary_ ? sizeOf(type) : kLeastText);
}

std::string_view NumberSource::take(std::size_t size) {
  if (size > rest_.size()) fail("the file ends here; it may be cut short");
  const std::string_view taken = rest_.substr(0, size);
  rest_.remove_prefix(size);
  return taken;
}

double NumberSource::parsedNumber() {
  skipBlanks();
  double value = 0;
  const char* const end = rest_.data() + rest_.size();
  const auto [stop, error] = std::from_chars(rest_.data(), end, value);
  if (error == std::errc{} && (stop == end || isBlank(*stop))) {
    rest_.remove_prefix(asIndex(stop - rest_.data()));
    return value;
  }
  const std::string_view begin = rest_;
  const std::string_view text = word();
  if (text.empty()) fail("the file ends here; it may be cut short");
  const auto slowly = parseDouble(text);  // signs, and what is out of range
  if (slowly) return *slowly;
  rest_ = begin;
  fail(fmt::format("'{}' is not a number", text.substr(0, 40)));
}

std::int64_t NumberSource::parsedInteger() {
  skipBlanks();
  std::int64_t value = 0;
  const char* const end = rest_.data() + rest_.size();
  const auto [stop, error] = std::from_chars(rest_.data(), end, value);
  if (error == std::errc{} && (stop == end || isBlank(*stop))) {
    rest_.remove_prefix(asIndex(stop - rest_.data()));
    return value;
  }
  if (rest_.empty()) fail("the file ends here; it may be cut short");
  const std::string_view begin = rest_;
  const std::string_view text = word();
  const auto number = parseDouble(text);
  if (number && std::trunc(*number) == *number) return wholeOf(*number);
  rest_ = begin;
  fail(fmt::format("'{}' is not a whole number", text.substr(0, 40)));
}

std::vector<double> NumberSource::numbers(NumberType type, std::size_t tuples,
                                          std::size_t components) {
  require(tuples, 1);
  require(components, 1);
  if (components > 0 && tuples > (rest_.size() + 1) / components)
    fail(fmt::format("{} times {} numbers are announced, but the file is too short for them",
                     tuples, components));
  Gathered<double> values;
  read(type, tuples * components, values);
  return values.take();
}

template <class Integer>
std::vector<Integer> NumberSource::integers(NumberType type, std::size_t count) {
  Gathered<Integer> values;
  read(type, count, values);
  return values.take();
}

template std::vector<std::int64_t> NumberSource::integers(NumberType, std::size_t);
template std::vector<int> NumberSource::integers(NumberType, std::size_t);
template std::vector<std::uint8_t> NumberSource::integers(NumberType, std::size_t);

double NumberSource::number(NumberType type) {
  if (!isBinary_) return parsedNumber();
  double value = 0;
  forEachNumber(take(sizeOf(type)), type, order_,
                [&value](auto number) { value = static_cast<double>(number); });
  return value;
}

std::int64_t NumberSource::integer(NumberType type) {
  if (!isBinary_) return parsedInteger();
  std::int64_t value = 0;
  forEachNumber(take(sizeOf(type)), type, order_,
                [&value](auto number) { value = wholeOf(number); });
  return value;
}

std::size_t NumberSource::count(NumberType type, std::size_t least, std::size_t words) {
  const std::int64_t number = integer(type);
  const std::size_t each = std::max<std::size_t>(1, isBinary_ ? least : kLeastText * words);
  if (number < 0 || asIndex(number) > (rest_.size() + 1) / each)
    fail(fmt::format("{} are announced, but the file is too short for them", number));
  return asIndex(number);
}

}  // namespace qelm::tool
