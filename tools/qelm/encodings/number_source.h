// Files that hold lines of words and blocks of numbers, the numbers as text or as bytes.
#ifndef QELM_TOOLS_NUMBER_SOURCE_H
#define QELM_TOOLS_NUMBER_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "encodings/numbers.h"

namespace qelm::tool {

/// Reads words and numbers in order. A count that the file announces is compared with what the rest
/// of the file can hold before memory is taken. Numbers are text until setBinary(). Every function
/// throws FileError, which names the line of a text, or the place of binary numbers.
class NumberSource {
 public:
  /// `name` is the file's, for messages; both must outlive this. `firstLine` is where in the file
  /// the bytes begin.
  NumberSource(std::string_view bytes, const std::string& name, std::size_t firstLine = 1);

  void setBinary(ByteOrder order);
  void setText() { isBinary_ = false; }
  bool isBinary() const { return isBinary_; }
  ByteOrder byteOrder() const { return order_; }
  /// For messages, such as "POINTS".
  void setPlace(std::string place) { place_ = std::move(place); }

  bool atEnd() const { return rest_.empty(); }
  std::string_view rest() const { return rest_; }
  void skipBlanks();
  void passOver(std::size_t size) { rest_.remove_prefix(size); }
  /// What is left of this line, without its end.
  std::string_view line();
  /// The next word, which may be empty at the end.
  std::string_view word();

  /// tuples * components numbers.
  std::vector<double> numbers(NumberType type, std::size_t tuples, std::size_t components);
  /// In the range of `Integer`: what is beyond it becomes its nearest number.
  template <class Integer = std::int64_t>
  std::vector<Integer> integers(NumberType type, std::size_t count);

  /// Throws unless the rest of the file can hold so many numbers.
  void requireNumbers(std::size_t count, NumberType type) const;
  /// So many numbers into a sink (see numbers.h), block by block if they are binary.
  template <class Sink>
  void read(NumberType type, std::size_t count, Sink& sink);

  double number(NumberType type);
  std::int64_t integer(NumberType type);
  /// A number that announces how many elements follow. An element takes at least `least` bytes or,
  /// in a text, two characters for each of its `words` numbers.
  std::size_t count(NumberType type, std::size_t least, std::size_t words);

  [[noreturn]] void fail(const std::string& what) const;

 private:
  void require(std::size_t count, std::size_t least) const;
  std::string_view take(std::size_t size);
  double parsedNumber();
  std::int64_t parsedInteger();

  std::string_view bytes_;
  std::string_view rest_;
  const std::string& name_;
  std::size_t firstLine_;
  bool isBinary_ = false;
  ByteOrder order_ = ByteOrder::kLittle;
  std::string place_;
};

template <class Sink>
void NumberSource::read(NumberType type, std::size_t count, Sink& sink) {
  using To = typename Sink::Number;
  requireNumbers(count, type);
  sink.expect(count);
  if (isBinary_) return appendNumbers(take(count * sizeOf(type)), type, order_, sink);
  for (std::size_t k = 0; k < count; ++k)
    if constexpr (std::is_floating_point_v<To>)
      sink.push_back(parsedNumber());
    else
      sink.push_back(wholeAs<To>(parsedInteger()));
}

}  // namespace qelm::tool

#endif
