// Numbers in binary files: of several types, in either byte order.
#ifndef QELM_TOOLS_NUMBERS_H
#define QELM_TOOLS_NUMBERS_H

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "text/compiler.h"
#include "text/room.h"

namespace qelm::tool {

static_assert(std::endian::native == std::endian::little, "bytes of big-endian files are turned");

enum class NumberType {
  kInt8,
  kUint8,
  kInt16,
  kUint16,
  kInt32,
  kUint32,
  kInt64,
  kUint64,
  kFloat32,
  kFloat64
};

enum class ByteOrder { kLittle, kBig };

constexpr std::size_t sizeOf(NumberType type) {
  constexpr std::array<std::size_t, 10> kSizes = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
  return kSizes[static_cast<std::size_t>(type)];
}

constexpr bool isWhole(NumberType type) {
  return type != NumberType::kFloat32 && type != NumberType::kFloat64;
}

/// The number at the front of `bytes`, which must be long enough.
template <class Number>
Number numberAt(const char* bytes, ByteOrder order) {
  using Word = std::conditional_t<
      sizeof(Number) == 8, std::uint64_t,
      std::conditional_t<sizeof(Number) == 4, std::uint32_t,
                         std::conditional_t<sizeof(Number) == 2, std::uint16_t, std::uint8_t>>>;
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  return std::bit_cast<Number>(order == ByteOrder::kBig ? byteSwapped(word) : word);
}

/// Calls `use` with a zero of the type.
template <class Use>
void withNumberType(NumberType type, Use use) {
  switch (type) {
    case NumberType::kInt8:
      return use(std::int8_t{});
    case NumberType::kUint8:
      return use(std::uint8_t{});
    case NumberType::kInt16:
      return use(std::int16_t{});
    case NumberType::kUint16:
      return use(std::uint16_t{});
    case NumberType::kInt32:
      return use(std::int32_t{});
    case NumberType::kUint32:
      return use(std::uint32_t{});
    case NumberType::kInt64:
      return use(std::int64_t{});
    case NumberType::kUint64:
      return use(std::uint64_t{});
    case NumberType::kFloat32:
      return use(float{});
    case NumberType::kFloat64:
      return use(double{});
  }
}

/// Calls `use(number)` for each number in `bytes`, whatever their type.
template <class Use>
void forEachNumber(std::string_view bytes, NumberType type, ByteOrder order, Use use) {
  withNumberType(type, [&]<class Number>(Number) {
    for (std::size_t k = 0; k + sizeof(Number) <= bytes.size(); k += sizeof(Number))
      use(numberAt<Number>(bytes.data() + k, order));
  });
}

/// The number as an integer: rounded towards 0, and clamped to the range of integers.
template <class Number>
std::int64_t wholeOf(Number number) {
  if constexpr (std::is_floating_point_v<Number>) {
    // The next power of two: the largest integer itself is no double.
    constexpr double kLimit = 9223372036854775808.0;
    if (!(number > -kLimit)) return std::numeric_limits<std::int64_t>::min();
    if (!(number < kLimit)) return std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(number);
  } else if constexpr (std::is_same_v<Number, std::uint64_t>) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(std::min(number, kMost));
  } else {
    return number;
  }
}

/// The same in the range of another type.
template <class To, class Number>
To wholeAs(Number number) {
  using Limits = std::numeric_limits<To>;
  return static_cast<To>(std::clamp<std::int64_t>(wholeOf(number), Limits::min(), Limits::max()));
}

// Blocks of numbers go to a sink, a class with
//   using Number = the type that it takes;
//   void append(std::span<const Number> block);
// and, where one number may come at a time, push_back(Number), and expect(std::size_t), which is
// told how many will come.

/// The number as a sink takes it: a double, or the nearest whole number of its type.
template <class To, class Number>
To converted(Number number) {
  if constexpr (std::is_floating_point_v<To>)
    return static_cast<To>(number);
  else
    return wholeAs<To>(number);
}

/// A sink that keeps all numbers in one array.
template <class To>
class Gathered {
 public:
  using Number = To;
  bool empty() const { return numbers_.empty(); }
  void expect(std::size_t count) { makeRoom(numbers_, count); }
  void append(std::span<const To> block) {
    numbers_.insert(numbers_.end(), block.begin(), block.end());
  }
  void push_back(To number) { numbers_.push_back(number); }
  std::vector<To> take() { return std::move(numbers_); }

 private:
  std::vector<To> numbers_;
};

/// So many numbers are converted at once: they stay in the nearest cache, and loops over them need
/// no calls. A multiple of three and of four, for those who want whole triangles.
constexpr std::size_t kBlockOfNumbers = 1536;

/// Asks for bytes that are needed soon. By itself the processor stops at the end of each page of
/// memory.
inline void prefetch(std::string_view bytes) {
  constexpr std::size_t kCacheLine = 64;
  for (std::size_t k = 0; k < bytes.size(); k += kCacheLine) prefetchToRead(bytes.data() + k);
}

template <class Number, ByteOrder order, class To>
void convertBlock(const char* from, std::span<To> to) {
  const auto number = [from](std::size_t k) {
    return numberAt<Number>(from + k * sizeof(Number), order);
  };
  if constexpr (std::is_integral_v<Number> && std::is_integral_v<To>) {
    // Nearly always all of them fit: then none has a bit beyond those of `To`.
    std::make_unsigned_t<Number> bits = 0;
    for (std::size_t k = 0; k < to.size(); ++k) {
      bits |= static_cast<std::make_unsigned_t<Number>>(number(k));
      to[k] = static_cast<To>(number(k));
    }
    if (std::in_range<To>(bits)) return;
  }
  for (std::size_t k = 0; k < to.size(); ++k) to[k] = converted<To>(number(k));
}

/// Gives the numbers in `bytes` to the sink in blocks, of kBlockOfNumbers all but the last. Bytes
/// at the end that make no whole number are passed over.
template <class Sink>
void appendNumbers(std::string_view bytes, NumberType type, ByteOrder order, Sink& sink) {
  using To = typename Sink::Number;
  withNumberType(type, [&]<class Number>(Number) {
    std::array<To, kBlockOfNumbers> room;
    constexpr std::size_t kBytes = room.size() * sizeof(Number);
    while (bytes.size() >= sizeof(Number)) {
      const std::span<To> block(room.data(), std::min(room.size(), bytes.size() / sizeof(Number)));
      const std::string_view rest = bytes.substr(block.size() * sizeof(Number));
      prefetch(rest.substr(0, kBytes));
      if (order == ByteOrder::kBig)
        convertBlock<Number, ByteOrder::kBig>(bytes.data(), block);
      else
        convertBlock<Number, ByteOrder::kLittle>(bytes.data(), block);
      sink.append(std::span<const To>(block));
      bytes = rest;
    }
  });
}

}  // namespace qelm::tool

#endif
