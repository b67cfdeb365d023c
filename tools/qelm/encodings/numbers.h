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
#include <string_view>
#include <type_traits>
#include <vector>

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

/// With its bytes in the other order.
template <class Word>
Word turned(Word word) {
  if constexpr (sizeof(Word) == 8)
    return __builtin_bswap64(word);
  else if constexpr (sizeof(Word) == 4)
    return __builtin_bswap32(word);
  else if constexpr (sizeof(Word) == 2)
    return __builtin_bswap16(word);
  else
    return word;
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
  return std::bit_cast<Number>(order == ByteOrder::kBig ? turned(word) : word);
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

/// `change(number)` of each number in `bytes`, behind what is in `to`. Through a small block, which
/// stays in the cache: the vector's memory is written once, and loops over a block need no calls.
template <class To, class Change>
void appendNumbers(std::string_view bytes, NumberType type, ByteOrder order, Change change,
                   std::vector<To>& to) {
  const std::size_t count = bytes.size() / sizeOf(type);
  if (to.capacity() - to.size() < count) to.reserve(std::max(to.size() + count, 2 * to.size()));
  withNumberType(type, [&]<class Number>(Number) {
    std::array<To, 1024> block;
    for (std::size_t done = 0; done < count; done += block.size()) {
      const std::size_t size = std::min(block.size(), count - done);
      const char* const from = bytes.data() + done * sizeof(Number);
      if (order == ByteOrder::kBig)
        for (std::size_t k = 0; k < size; ++k)
          block[k] = change(numberAt<Number>(from + k * sizeof(Number), ByteOrder::kBig));
      else
        for (std::size_t k = 0; k < size; ++k)
          block[k] = change(numberAt<Number>(from + k * sizeof(Number), ByteOrder::kLittle));
      to.insert(to.end(), block.data(), block.data() + size);
    }
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

}  // namespace qelm::tool

#endif
