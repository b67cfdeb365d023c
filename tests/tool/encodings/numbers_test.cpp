// Numbers of binary files, block by block.
#include "encodings/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "mesh/mesh.h"
#include "mesh_files/cell_soup.h"

namespace {

using namespace qelm::tool;

constexpr std::size_t kCount = 2 * kBlockOfNumbers + 77;

template <class Number>
std::string stored(const std::vector<Number>& numbers, ByteOrder order) {
  std::string bytes;
  for (const Number number : numbers) {
    std::array<char, sizeof(Number)> raw;
    std::memcpy(raw.data(), &number, raw.size());
    if (order == ByteOrder::kBig) std::reverse(raw.begin(), raw.end());
    bytes.append(raw.data(), raw.size());
  }
  return bytes;
}

/// Keeps the sizes of the blocks as well.
template <class To>
struct Recorded {
  using Number = To;
  std::vector<To> numbers;
  std::vector<std::size_t> sizes;
  void append(std::span<const To> block) {
    numbers.insert(numbers.end(), block.begin(), block.end());
    sizes.push_back(block.size());
  }
};

template <class To, class Number>
void expectConverted(std::vector<Number> numbers, NumberType type) {
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    Recorded<To> sink;
    appendNumbers(stored(numbers, order), type, order, sink);
    ASSERT_EQ(sink.numbers.size(), numbers.size());
    for (std::size_t k = 0; k < numbers.size(); ++k)
      ASSERT_EQ(sink.numbers[k], converted<To>(numbers[k])) << k;
    const std::vector<std::size_t> sizes = {kBlockOfNumbers, kBlockOfNumbers, 77};
    EXPECT_EQ(sink.sizes, sizes);
  }
}

template <class Number>
std::vector<Number> counted() {
  std::vector<Number> numbers(kCount);
  for (std::size_t k = 0; k < kCount; ++k) numbers[k] = static_cast<Number>(k % 100);
  return numbers;
}

TEST(NumbersTest, OfEveryTypeAndOrderAreConverted) {
  expectConverted<int>(counted<std::int8_t>(), NumberType::kInt8);
  expectConverted<int>(counted<std::uint16_t>(), NumberType::kUint16);
  expectConverted<std::int64_t>(counted<std::uint32_t>(), NumberType::kUint32);
  expectConverted<double>(counted<std::int64_t>(), NumberType::kInt64);
  expectConverted<double>(counted<float>(), NumberType::kFloat32);
  expectConverted<int>(counted<double>(), NumberType::kFloat64);
}

TEST(NumbersTest, BeyondTheRangeBecomeTheNearestOfIt) {
  constexpr std::int64_t kInt = std::numeric_limits<int>::max();
  for (const std::int64_t beyond :
       {kInt, kInt + 1, -kInt - 1, -kInt - 2, std::int64_t{-1},
        std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()})
    for (const std::size_t place :
         {std::size_t{0}, kBlockOfNumbers - 1, kBlockOfNumbers, kCount - 1}) {
      auto numbers = counted<std::int64_t>();
      numbers[place] = beyond;
      expectConverted<int>(numbers, NumberType::kInt64);
      expectConverted<std::uint8_t>(numbers, NumberType::kInt64);
      expectConverted<std::uint32_t>(numbers, NumberType::kInt64);
    }
  auto large = counted<std::uint64_t>();
  large[kBlockOfNumbers] = std::numeric_limits<std::uint64_t>::max();
  expectConverted<std::int64_t>(large, NumberType::kUint64);
}

TEST(NumbersTest, CutShortEndWithTheLastWholeOne) {
  const std::string bytes = stored(counted<std::int32_t>(), ByteOrder::kLittle);
  Recorded<int> sink;
  appendNumbers(std::string_view(bytes).substr(0, bytes.size() - 1), NumberType::kInt32,
                ByteOrder::kLittle, sink);
  EXPECT_EQ(sink.numbers.size(), kCount - 1);
}

TEST(CornersTest, AreLookedAtWhateverTheBlocks) {
  for (const std::size_t odd : {std::size_t{2000}, kCount}) {  // a triangle that repeats, or none
    std::vector<int> all(kCount);
    for (std::size_t k = 0; k < kCount; ++k) all[k] = static_cast<int>(k);
    all[1234] = 99'999;
    if (odd < kCount) all[odd / 3 * 3 + 2] = all[odd / 3 * 3];
    for (const std::size_t size : {1u, 2u, 4u, 100u, 5000u}) {
      Corners corners;
      for (std::size_t k = 0; k < kCount; k += size)
        corners.append(std::span(all).subspan(k, std::min(size, kCount - k)));
      EXPECT_EQ(corners.facts().repeat, odd < kCount) << size;
      EXPECT_EQ(corners.facts().highest, 99'999U) << size;
      EXPECT_EQ(corners.take(), all);
    }
  }
}

TEST(CellEndsTest, AreTrianglesUntilOneIsNot) {
  for (const std::size_t other : {std::size_t{0}, kBlockOfNumbers, kCount - 1, kCount}) {
    std::vector<std::int64_t> all(kCount);
    for (std::size_t k = 0; k < kCount; ++k)
      all[k] = static_cast<std::int64_t>(3 * (k + 1) + (k >= other ? 1 : 0));
    CellEnds ends;
    for (std::size_t k = 0; k < kCount; k += kBlockOfNumbers)
      ends.append(std::span(all).subspan(k, std::min(kBlockOfNumbers, kCount - k)));
    EXPECT_EQ(ends.areTriangles(), other == kCount);
    ASSERT_EQ(ends.size(), kCount);
    for (std::size_t k = 0; k < kCount; ++k) ASSERT_EQ(ends[k], all[k]) << other << " " << k;
  }
}

}  // namespace
