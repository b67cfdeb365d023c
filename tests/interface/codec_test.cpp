// Integers on the sphere: every value, every edge, the same bits everywhere.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "qelm.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Encoded {
  float x = -7, y = -7, z = -7;
  int returned = -7;
};

Encoded encode(int value) {
  Encoded e;
  e.returned = encode_integer_to_sphere(value, &e.x, &e.y, &e.z);
  return e;
}

TEST(Encode, ZeroIsTheLowCorner) {
  const Encoded e = encode(0);
  EXPECT_EQ(e.returned, 0);
  EXPECT_EQ(e.x, -0.5F);
  EXPECT_EQ(e.y, -0.5F);
  EXPECT_EQ(e.z, std::sqrt(0.5F));
  EXPECT_EQ(decode_integer_from_sphere(e.x, e.y, e.z), 0);
}

TEST(Encode, MinusOneIsTheHighCorner) {
  const Encoded e = encode(-1);
  EXPECT_EQ(e.returned, 0);
  EXPECT_EQ(e.x, 0.5F);
  EXPECT_EQ(e.y, 0.5F);
  EXPECT_EQ(e.z, std::sqrt(0.5F));
  EXPECT_EQ(decode_integer_from_sphere(e.x, e.y, e.z), -1);
}

TEST(Encode, TheLowByteIsXAndTheHighByteIsY) {
  const Encoded e = encode(65534);
  EXPECT_EQ(e.x, (254 - 127.5F) / 255.0F);
  EXPECT_EQ(e.y, 0.5F);
  EXPECT_EQ(decode_integer_from_sphere(e.x, e.y, e.z), 65534);
}

/// The same steps, each rounded from a sum or product that a double holds exactly.
int byteByDoubles(float coordinate) {
  const auto product = static_cast<float>(static_cast<double>(coordinate) * 255);
  const auto moved = static_cast<float>(static_cast<double>(product) + 127.5);
  const auto scaled = static_cast<float>(static_cast<double>(moved) + 0.5);
  const auto low = static_cast<std::uint32_t>(static_cast<std::int64_t>(scaled));
  return static_cast<int>(low < 255 ? low : 255);
}

// Near multiples of 2^32 the low 32 bits show how each step was rounded. Of 16843008, which
// becomes 2^32 - 256, adding 127.5 and 0.5 is not adding 128.
TEST(Decode, RoundsEveryStepByItself) {
  EXPECT_EQ(decode_integer_from_sphere(16843008.0F, -0.5F, 1), 255);
  for (int turns = -40; turns <= 40; ++turns) {
    float x = static_cast<float>(turns * 0x1p32 / 255);
    for (int k = 0; k < 60; ++k) x = std::nextafter(x, -kInfinity);
    for (int k = 0; k < 120; ++k, x = std::nextafter(x, kInfinity)) {
      ASSERT_EQ(decode_integer_from_sphere(x, -0.5F, 1), byteByDoubles(x)) << x;
      ASSERT_EQ(decode_integer_from_sphere(0.5F, -x, -1), 256 * byteByDoubles(x)) << x;
    }
  }
}

TEST(Encode, RefusesWhatIsOutOfRangeWithZeros) {
  for (const int value : {65535, 65536, -2, INT32_MAX, INT32_MIN}) {
    const Encoded e = encode(value);
    EXPECT_EQ(e.returned, -1) << value;
    EXPECT_EQ(e.x, 0.0F);
    EXPECT_EQ(e.y, 0.0F);
    EXPECT_EQ(e.z, 0.0F);
  }
}

TEST(Encode, RefusesANullPointerAndWritesNothing) {
  float a = -7, b = -7;
  for (const int value : {5, 65535}) {
    EXPECT_EQ(encode_integer_to_sphere(value, nullptr, &a, &b), -1);
    EXPECT_EQ(encode_integer_to_sphere(value, &a, nullptr, &b), -1);
    EXPECT_EQ(encode_integer_to_sphere(value, &a, &b, nullptr), -1);
    EXPECT_EQ(a, -7.0F);
    EXPECT_EQ(b, -7.0F);
  }
}

TEST(RoundTrip, BringsEveryValueBackFromThePointAndFromItsMirror) {
  for (int value = -1; value <= 65534; ++value) {
    const Encoded e = encode(value);
    ASSERT_EQ(e.returned, 0) << value;
    ASSERT_EQ(decode_integer_from_sphere(e.x, e.y, e.z), value);
    ASSERT_EQ(decode_integer_from_sphere(-e.x, -e.y, -e.z), value);
    ASSERT_GE(e.z, 0.7071F);
    ASSERT_LE(e.z, 1.0F);
    ASSERT_NEAR(e.x * e.x + e.y * e.y + e.z * e.z, 1.0F, 3e-7F);
  }
}

TEST(RoundTrip, HasTheSameBitsOnEveryPlatform) {
  std::uint64_t hash = 0xcbf29ce484222325;  // FNV-1a over the words
  for (int value = -1; value <= 65534; ++value) {
    const Encoded e = encode(value);
    for (const float f : {e.x, e.y, e.z}) {
      hash = (hash ^ std::bit_cast<std::uint32_t>(f)) * 0x100000001b3;
    }
  }
  EXPECT_EQ(hash, 0xd3c31cd14ead230dULL);
}

TEST(Decode, MirrorsOnlyForAStrictlyNegativeZ) {
  const int plain = decode_integer_from_sphere(-0.5F, 0.25F, 1);
  const int mirrored = decode_integer_from_sphere(0.5F, -0.25F, 1);
  ASSERT_NE(plain, mirrored);
  EXPECT_EQ(decode_integer_from_sphere(-0.5F, 0.25F, -1e-30F), mirrored);
  EXPECT_EQ(decode_integer_from_sphere(-0.5F, 0.25F, -kInfinity), mirrored);
  EXPECT_EQ(decode_integer_from_sphere(-0.5F, 0.25F, -0.0F), plain);
  EXPECT_EQ(decode_integer_from_sphere(-0.5F, 0.25F, kNaN), plain);
}

TEST(Decode, ClampsACoordinateBelowTheRangeToTheByte255OnPurpose) {
  EXPECT_EQ(decode_integer_from_sphere(-0.6F, 0, 1), 33023);
  EXPECT_EQ(decode_integer_from_sphere(0, -0.6F, 1), 255 * 256 + 128);
}

TEST(Decode, TruncatesWhatLiesJustBelowTheRangeToTheByte0) {
  // Between -129/255 and -0.5 the scaled number is above -1.
  EXPECT_EQ(decode_integer_from_sphere(-0.5025F, -0.5F, 1), 0);
}

TEST(Decode, ClampsACoordinateAboveTheRange) {
  EXPECT_EQ(decode_integer_from_sphere(0.6F, -0.5F, 1), 255);
  EXPECT_EQ(decode_integer_from_sphere(7, 7, 1), -1) << "both bytes 255";
}

TEST(Decode, ReadsNaNAndWhatFitsNo64BitIntegerAsTheByte0) {
  for (const float off : {kNaN, kInfinity, -kInfinity, 0x1p63F, -0x1p63F, 1e30F, -1e30F}) {
    EXPECT_EQ(decode_integer_from_sphere(off, -0.5F, 1), 0) << off;
    EXPECT_EQ(decode_integer_from_sphere(-0.5F, off, 1), 0) << off;
  }
}

TEST(Decode, TakesTheLow32BitsOfALargeNumber) {
  // 2^40 is a multiple of 2^32 also after the offsets are lost in rounding.
  EXPECT_EQ(decode_integer_from_sphere(0x1p40F / 255.0F, -0.5F, 1), 0);
  EXPECT_EQ(decode_integer_from_sphere(-0x1p40F / 255.0F, -0.5F, 1), 0);
}

TEST(Decode, TakesTheDirectionsZeroForTheMiddle) {
  EXPECT_EQ(decode_integer_from_sphere(0, 0, 0), 128 * 256 + 128);
}

}  // namespace
