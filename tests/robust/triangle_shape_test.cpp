// Cotangents of every kind of triangle.
#include "robust/triangle_shape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kRounding = 1e-15;

TEST(TriangleShape, HasTheCotangentsOfItsAngles) {
  const Cotangents right = cotangentsOf({0, 0, 0}, {2, 0, 0}, {0, 1, 0});
  EXPECT_DOUBLE_EQ(right.at[0], 0);
  EXPECT_DOUBLE_EQ(right.at[1], 2);
  EXPECT_DOUBLE_EQ(right.at[2], 0.5);
  EXPECT_FALSE(right.wasFlat);
  const Cotangents obtuse = cotangentsOf({-1, 0, 5}, {1, 0, 5}, {0, 0.5, 5});
  EXPECT_DOUBLE_EQ(obtuse.at[0], 2);
  EXPECT_DOUBLE_EQ(obtuse.at[1], 2);
  EXPECT_DOUBLE_EQ(obtuse.at[2], -0.75);
}

TEST(TriangleShape, IsSteepAboveACotangentOf32AtAnyCorner) {
  for (const double height : {1 / 31.9, 1 / 32.1, 1e-9, 0.0}) {
    const bool expected = height < 1 / 32.0;
    const Vec3 a{0, 0, 7}, needle{0, height, 7}, b{1, 0, 7};
    const Vec3 p{-1, 0, 7}, cap{0, height, 7};
    EXPECT_EQ(isSteep(a, needle, b), expected) << height;
    EXPECT_EQ(isSteep(b, a, needle), expected) << height;
    EXPECT_EQ(isSteep(needle, b, a), expected) << height;
    EXPECT_EQ(isSteep(p, b, cap), expected) << height;
  }
  EXPECT_FALSE(isSteep({1, 2, 3}, {1, 2, 3}, {1, 2, 3}));
  EXPECT_TRUE(isSteep({1, 2, 3}, {1, 2, 3}, {1, 2, 4}));
  EXPECT_TRUE(isSteep({0, 0, 0}, {1, 0, 0}, {2, 0, 0}));
  EXPECT_FALSE(isSteep({0, 0, 0}, {1e-300, 0, 0}, {0, 1e-300, 0}));
  EXPECT_FALSE(isSteep({0, 0, 0}, {1e300, 0, 0}, {0, 1e300, 0}));
}

TEST(TriangleShape, DoesNotDependOnTheUnit) {
  const Cotangents one = cotangentsOf({1, 2, 3}, {4, 3, 1}, {2, 2, 7});
  for (const int exponent : {-1060, -700, -201, -30, 30, 201, 700, 1018}) {
    const double unit = std::ldexp(1.0, exponent);
    const Cotangents scaled = cotangentsOf({unit, 2 * unit, 3 * unit}, {4 * unit, 3 * unit, unit},
                                           {2 * unit, 2 * unit, 7 * unit});
    EXPECT_EQ(scaled.at, one.at) << exponent;
  }
}

TEST(TriangleShape, IsBoundedForTheLargestCoordinates) {
  constexpr double kMost = std::numeric_limits<double>::max();
  const Cotangents c = cotangentsOf({-kMost, -kMost, 0}, {kMost, -kMost, 0}, {0, kMost, 0});
  EXPECT_NEAR(c.at[0], 0.5, kRounding);
  EXPECT_NEAR(c.at[1], 0.5, kRounding);
  EXPECT_NEAR(c.at[2], 0.75, kRounding);
}

TEST(TriangleShape, IsEquilateralForOnePlace) {
  const Cotangents c = cotangentsOf({1, 2, 3}, {1, 2, 3}, {1, 2, 3});
  for (const double cotangent : c.at) EXPECT_DOUBLE_EQ(cotangent, 1 / std::sqrt(3.0));
  EXPECT_TRUE(c.wasFlat);
}

TEST(TriangleShape, IsAnIsoscelesNeedleForTwoEqualCorners) {
  const Cotangents c = cotangentsOf({0, 0, 0}, {5, 5, 5}, {0, 0, 0});
  EXPECT_EQ(c.at[0], 0x1p-23);
  EXPECT_EQ(c.at[2], 0x1p-23);
  EXPECT_NEAR(c.at[1], 0x1p22, 1);
  EXPECT_TRUE(c.wasFlat);
}

TEST(TriangleShape, KeepsTheFootOfACapWithoutHeight) {
  const Cotangents c = cotangentsOf({0, 0, 0}, {1, 1, 0}, {4, 4, 0});  // corner 1 in between
  EXPECT_DOUBLE_EQ(c.at[0], 0.25 * 0x1p26);
  EXPECT_DOUBLE_EQ(c.at[2], 0.75 * 0x1p26);
  EXPECT_NEAR(c.at[1], -0.1875 * 0x1p26, 0x1p-25);
  EXPECT_TRUE(c.wasFlat);
}

TEST(TriangleShape, LeavesTrianglesAboveTheLeastHeightAlone) {
  EXPECT_FALSE(cotangentsOf({0, 0, 0}, {1, 0, 0}, {0.5, 0x1.01p-26, 0}).wasFlat);
  EXPECT_TRUE(cotangentsOf({0, 0, 0}, {1, 0, 0}, {0.5, 0x0.ffp-26, 0}).wasFlat);
  EXPECT_FALSE(cotangentsOf({0, 0, 0}, {1, 0, 0}, {0, 0x1.01p-22, 0}).wasFlat);
  EXPECT_TRUE(cotangentsOf({0, 0, 0}, {1, 0, 0}, {0, 0x0.ffp-22, 0}).wasFlat);
}

// Any two cotangents x, y of a triangle give the third, (1 - x y) / (x + y).
void expectTriangle(const Cotangents& c) {
  for (std::size_t k = 0; k < 3; ++k) {
    const double x = c.at[k];
    const double y = c.at[(k + 1) % 3];
    const double z = c.at[(k + 2) % 3];
    ASSERT_LE(std::fabs(x), 0x1p26 * (1 + kRounding));
    const double largest = std::max({x * x, y * y, z * z, 1.0});
    EXPECT_NEAR(x * y + y * z + z * x, 1, 8 * 0x1p-52 * largest);
  }
}

TEST(TriangleShape, OfAnyCornersIsThatOfATriangleAndDoesNotDependOnTheirOrder) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int k = 0; k < 20000; ++k) {
    const double small = std::pow(10.0, -uniformInt(random, 0, 25));
    std::array<Vec3, 3> p;
    for (Vec3& q : p) {
      q = {static_cast<double>(uniformInt(random, 0, 2)), small * uniform(random, 0, 1),
           small * uniformInt(random, 0, 1)};
    }
    const Cotangents c = cotangentsOf(p[0], p[1], p[2]);
    expectTriangle(c);
    const Cotangents turned = cotangentsOf(p[1], p[2], p[0]);
    const Cotangents mirrored = cotangentsOf(p[1], p[0], p[2]);
    for (std::size_t i = 0; i < 3; ++i) {
      ASSERT_EQ(turned.at[i], c.at[(i + 1) % 3]);
      ASSERT_EQ(mirrored.at[i], c.at[i == 2 ? 2 : 1 - i]);
    }
  }
}

TEST(TriangleShape, OfNumeratorsIsTheirsOrRaised) {
  const Cotangents plain = cotangentsOf({1, 2, -0.5}, 4);
  EXPECT_EQ(plain.at, (std::array<double, 3>{0.25, 0.5, -0.125}));
  EXPECT_FALSE(plain.wasFlat);
  const Cotangents flat = cotangentsOf({3, 1, -0.75}, 0);
  EXPECT_TRUE(flat.wasFlat);
  EXPECT_DOUBLE_EQ(flat.at[0], 0.75 * 0x1p26);
  EXPECT_DOUBLE_EQ(flat.at[1], 0.25 * 0x1p26);
  expectTriangle(flat);
}

}  // namespace
}  // namespace qelm::test
