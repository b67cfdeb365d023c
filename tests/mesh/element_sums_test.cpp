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

#include "mesh/element_block.h"
#include "mesh/plain_element.h"
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
  Vec3 point(std::size_t vertex) const {
    return {coordinates[3 * vertex], coordinates[3 * vertex + 1], coordinates[3 * vertex + 2]};
  }
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

/// Element j of what was summed over a soup with no vertex tagged.
ElementStiffness elementOf(const EdgeSums& sums, std::size_t j) {
  const auto v = static_cast<std::int32_t>(3 * j);
  const auto entry = [&](std::int32_t owner, std::int32_t neighbour) {
    for (const EdgeSums::Entry& e : sums.entries(owner)) {
      if (e.neighbour == neighbour) return e.sum;
    }
    ADD_FAILURE() << "no entry " << owner << ", " << neighbour;
    return 0.0;
  };
  return {sums.diagonal(v),    sums.diagonal(v + 1), sums.diagonal(v + 2),
          entry(v + 1, v + 0), entry(v + 2, v + 1),  entry(v + 2, v + 0)};
}

bool sameNumbers(const ElementStiffness& a, const ElementStiffness& b) {
  return sameNumber(a.k00, b.k00) && sameNumber(a.k11, b.k11) && sameNumber(a.k22, b.k22) &&
         sameNumber(a.k01, b.k01) && sameNumber(a.k12, b.k12) && sameNumber(a.k02, b.k02);
}

/// For the triangles of a soup, with no vertex tagged.
EdgeSums sumsFor(const Soup& soup) {
  std::vector<std::uint32_t> higherEnds(soup.triangles.size());
  for (std::size_t j = 0; j < soup.triangles.size(); j += 3) {
    for (std::size_t k = 0; k < 3; ++k) {
      const std::int32_t end = soup.triangles[j + k];
      const std::int32_t other = soup.triangles[j + (k + 1) % 3];
      ++higherEnds[static_cast<std::size_t>(end > other ? end : other)];
    }
  }
  return {0, soup.triangles, higherEnds};
}

void expectElements(AddElements addElements, const Soup& soup) {
  EdgeSums sums = sumsFor(soup);
  ASSERT_FALSE(addElements(soup.coordinates, soup.triangles, sums));
  sums.addUp();
  for (std::size_t j = 0; j < soup.count(); ++j) {
    const ElementStiffness single =
        plainElement(soup.point(3 * j), soup.point(3 * j + 1), soup.point(3 * j + 2));
    ASSERT_TRUE(sameNumbers(elementOf(sums, j), single)) << "triangle " << j;
  }
}

void expectElementsOfAllKinds(AddElements addElements) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (const double scale : {1.0, 1e-3, 1e70, 1e-70, 1e160, 1e-160}) {
    for (const double flatness : {1.0, 1e-6, 1e-14, 0.0}) {
      SCOPED_TRACE(std::to_string(scale) + " by " + std::to_string(flatness));
      expectElements(addElements, randomSoup(random, 50 * kBlock, scale, flatness));
    }
  }
}

/// None, some that fill no block, and those over after several blocks.
void expectElementsOfEveryCount(AddElements addElements) {
  Random random(1);
  for (std::size_t count = 0; count <= 4 * kBlock + 1; ++count) {
    SCOPED_TRACE(count);
    expectElements(addElements, randomSoup(random, count, 1, 1));
  }
}

/// In blocks and in the rest after them.
void expectRepeatedVerticesToBeNoticed(AddElements addElements) {
  Random random(3);
  const Soup soup = randomSoup(random, 2 * kBlock + 3, 1, 1);
  for (std::size_t j = 0; j < soup.triangles.size(); ++j) {
    Soup bad = soup;
    bad.triangles[j] = bad.triangles[j % 3 == 0 ? j + 2 : j - 1];
    EdgeSums sums = sumsFor(bad);
    EXPECT_TRUE(addElements(bad.coordinates, bad.triangles, sums)) << "index " << j;
  }
}

/// With vertices so far apart that memory is asked for ahead, up to the last triangle.
void expectElementsOfScatteredVertices(AddElements addElements) {
  Random random(2);
  const std::size_t n = 90'000;
  Soup soup = randomSoup(random, n / 3, 1, 1);
  const std::vector<std::int32_t> order = permutation(random, static_cast<int>(n));
  soup.triangles = order;
  EdgeSums sums = sumsFor(soup);
  ASSERT_TRUE(sums.isScattered());
  addElements(soup.coordinates, soup.triangles, sums);
  for (std::size_t j = 0; j < soup.count(); ++j) {
    const auto point = [&](std::size_t k) {
      return soup.point(static_cast<std::size_t>(order[3 * j + k]));
    };
    const ElementStiffness single = plainElement(point(0), point(1), point(2));
    ASSERT_TRUE(sameNumber(sums.diagonal(order[3 * j]), single.k00)) << "triangle " << j;
    ASSERT_TRUE(sameNumber(sums.diagonal(order[3 * j + 1]), single.k11)) << "triangle " << j;
    ASSERT_TRUE(sameNumber(sums.diagonal(order[3 * j + 2]), single.k22)) << "triangle " << j;
  }
}

TEST(ElementSums, HaveTheBitsOfSingleElements) {
  expectElementsOfAllKinds(addElementsBaseline);
  expectElementsOfEveryCount(addElementsBaseline);
  expectElementsOfScatteredVertices(addElementsBaseline);
  expectRepeatedVerticesToBeNoticed(addElementsBaseline);
}

TEST(ElementSums, HaveTheBitsOfSingleElementsInWiderRegisters) {
  if (fastestAddElements() == addElementsBaseline) {
    GTEST_SKIP() << "this processor has none";
  }
  ASSERT_EQ(fastestAddElements(), addElementsAvx2);
  expectElementsOfAllKinds(addElementsAvx2);
  expectElementsOfEveryCount(addElementsAvx2);
  expectElementsOfScatteredVertices(addElementsAvx2);
  expectRepeatedVerticesToBeNoticed(addElementsAvx2);
}

}  // namespace
}  // namespace qelm::test
