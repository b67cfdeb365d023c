// Elements side by side against the same elements one by one, bit by bit.
#include "mesh/element_block.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>

#include "support/random.h"

namespace qelm::test {
namespace {

std::uint64_t word(double x) { return std::bit_cast<std::uint64_t>(x); }

/// Which NaN a sum of two gives is the compiler's choice; that it is one is not.
bool sameNumber(double a, double b) {
  return word(a) == word(b) || (std::isnan(a) && std::isnan(b));
}

bool sameNumbers(const ElementStiffness& a, const ElementStiffness& b) {
  return sameNumber(a.k00, b.k00) && sameNumber(a.k11, b.k11) && sameNumber(a.k22, b.k22) &&
         sameNumber(a.k01, b.k01) && sameNumber(a.k12, b.k12) && sameNumber(a.k02, b.k02);
}

BlockCorners randomCorners(Random& random, double scale, double flatness) {
  BlockCorners corners;
  for (std::size_t k = 0; k < 3; ++k) {
    for (std::size_t lane = 0; lane < kBlock; ++lane) {
      corners.x[k][lane] = scale * uniform(random, -1, 1);
      corners.y[k][lane] = scale * flatness * uniform(random, -1, 1);
      corners.z[k][lane] = scale * flatness * uniform(random, -1, 1);
    }
  }
  return corners;
}

void expectElements(StiffnessOfBlock stiffnessOfBlock, const BlockCorners& c,
                    const std::string& what) {
  BlockStiffness block;
  stiffnessOfBlock(c, block);
  for (std::size_t lane = 0; lane < kBlock; ++lane) {
    const auto corner = [&](std::size_t k) {
      return Vec3{c.x[k][lane], c.y[k][lane], c.z[k][lane]};
    };
    const ElementStiffness single = elementStiffness(corner(0), corner(1), corner(2));
    ASSERT_TRUE(sameNumbers(block.of(lane), single)) << what << ", lane " << lane;
  }
}

void expectElementsOfAllKinds(StiffnessOfBlock stiffnessOfBlock) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (const double scale : {1.0, 1e-3, 1e70, 1e-70, 1e160, 1e-160}) {
    for (const double flatness : {1.0, 1e-6, 1e-14, 0.0}) {
      for (int round = 0; round < 50; ++round) {
        expectElements(stiffnessOfBlock, randomCorners(random, scale, flatness),
                       std::to_string(scale) + " by " + std::to_string(flatness));
      }
    }
  }
}

TEST(ElementBlock, HasTheBitsOfSingleElements) {
  expectElementsOfAllKinds(stiffnessOfBlockBaseline);
}

TEST(ElementBlock, HasTheBitsOfSingleElementsInWiderRegisters) {
  if (fastestStiffnessOfBlock() == stiffnessOfBlockBaseline) {
    GTEST_SKIP() << "this processor has none";
  }
  ASSERT_EQ(fastestStiffnessOfBlock(), stiffnessOfBlockAvx2);
  expectElementsOfAllKinds(stiffnessOfBlockAvx2);
}

}  // namespace
}  // namespace qelm::test
