// Elements side by side against the same elements one by one, bit by bit.
#include "mesh/element_sums.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/plain_element.h"
#include "support/random.h"

namespace qelm::test {
namespace {

std::uint64_t word(double x) { return std::bit_cast<std::uint64_t>(x); }

/// Which NaN a sum of two gives is the compiler's choice; that it is one is not.
bool sameNumber(double a, double b) {
  return word(a) == word(b) || (std::isnan(a) && std::isnan(b));
}

/// Triangles that have no vertex in common: 3j, 3j+1, 3j+2. So no sum has two terms.
struct Soup {
  std::vector<double> coordinates;
  std::vector<std::int32_t> triangles;

  std::size_t count() const { return triangles.size() / 3; }
  const double* point(std::size_t vertex) const { return &coordinates[3 * vertex]; }
};

Soup randomSoup(Random& random, std::size_t count, double scale, double flatness) {
  Soup soup;
  for (std::size_t v = 0; v < 3 * count; ++v) {
    soup.coordinates.push_back(scale * uniform(random, -1, 1));
    for (int k = 0; k < 2; ++k) {
      soup.coordinates.push_back(scale * flatness * uniform(random, -1, 1));
    }
    soup.triangles.push_back(static_cast<std::int32_t>(v));
  }
  return soup;
}

/// The stiffness of element j of a soup with no vertex tagged.
PlainStiffness elementOf(const LowerTriangle& lower, std::size_t j) {
  const auto v = static_cast<std::int32_t>(3 * j);
  const auto entry = [&](std::int32_t row, std::int32_t column) {
    for (const LowerTriangle::Entry& e : lower.row(row)) {
      if (e.column == column) return e.value;
    }
    ADD_FAILURE() << "no entry " << row << ", " << column;
    return 0.0;
  };
  return {lower.diagonal(v),   lower.diagonal(v + 1), lower.diagonal(v + 2),
          entry(v + 1, v + 0), entry(v + 2, v + 1),   entry(v + 2, v + 0)};
}

bool sameNumbers(const PlainStiffness& a, const PlainStiffness& b) {
  return sameNumber(a.k00, b.k00) && sameNumber(a.k11, b.k11) && sameNumber(a.k22, b.k22) &&
         sameNumber(a.k01, b.k01) && sameNumber(a.k12, b.k12) && sameNumber(a.k02, b.k02);
}

void expectElements(const Soup& soup) {
  LowerTriangle lower(0, soup.triangles.size());
  addElements(soup.coordinates, soup.triangles, lower);
  lower.mergeBuckets();
  for (std::size_t j = 0; j < soup.count(); ++j) {
    const PlainStiffness single =
        plainStiffness(soup.point(3 * j), soup.point(3 * j + 1), soup.point(3 * j + 2));
    ASSERT_TRUE(sameNumbers(elementOf(lower, j), single)) << "triangle " << j;
  }
}

void expectElementsOfAllKinds() {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (const double scale : {1.0, 1e-3, 1e70, 1e-70, 1e160, 1e-160}) {
    for (const double flatness : {1.0, 1e-6, 1e-14, 0.0}) {
      SCOPED_TRACE(std::to_string(scale) + " by " + std::to_string(flatness));
      expectElements(randomSoup(random, 50 * kBlock, scale, flatness));
    }
  }
}

/// None, some that fill no block, and those over after several blocks.
void expectElementsOfEveryCount() {
  Random random(1);
  for (std::size_t count = 0; count <= 4 * kBlock + 1; ++count) {
    SCOPED_TRACE(count);
    expectElements(randomSoup(random, count, 1, 1));
  }
}

TEST(ElementSums, HaveTheBitsOfSingleElements) {
  expectElementsOfAllKinds();
  expectElementsOfEveryCount();
}

}  // namespace
}  // namespace qelm::test
