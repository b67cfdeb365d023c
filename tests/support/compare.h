// Comparisons that name the worst element.
#ifndef QELM_TESTS_SUPPORT_COMPARE_H
#define QELM_TESTS_SUPPORT_COMPARE_H

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <span>

namespace qelm::test {

/// |actual - expected| <= tolerance * max(1, largest |expected|), entry by entry.
/// A NaN on either side fails.
inline testing::AssertionResult allClose(std::span<const double> actual,
                                         std::span<const double> expected, double tolerance) {
  if (actual.size() != expected.size()) {
    return testing::AssertionFailure() << actual.size() << " entries, not " << expected.size();
  }
  double scale = 1;
  for (const double e : expected) scale = std::fmax(scale, std::fabs(e));
  std::size_t worst = 0;
  double worstError = -1;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    const double error = std::fabs(actual[i] - expected[i]);
    if (!(error <= worstError)) {
      worst = i;
      worstError = error;
      if (std::isnan(error)) break;
    }
  }
  if (worstError <= tolerance * scale) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "worst at " << worst << ": " << actual[worst] << " instead of " << expected[worst]
         << ", off by " << worstError << ", allowed " << tolerance * scale;
}

/// The same 64-bit words, so that NaN equals itself and -0.0 differs from 0.0.
inline testing::AssertionResult sameBits(std::span<const double> actual,
                                         std::span<const double> expected) {
  if (actual.size() != expected.size()) {
    return testing::AssertionFailure() << actual.size() << " entries, not " << expected.size();
  }
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (std::bit_cast<std::uint64_t>(actual[i]) != std::bit_cast<std::uint64_t>(expected[i])) {
      return testing::AssertionFailure()
             << "entry " << i << ": " << actual[i] << " instead of " << expected[i];
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_COMPARE_H
