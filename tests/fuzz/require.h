// What a fuzzer requires.
#ifndef QELM_TESTS_FUZZ_REQUIRE_H
#define QELM_TESTS_FUZZ_REQUIRE_H

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace qelm::fuzz {

/// Ends the program, which libFuzzer reports, unless `holds`. Not assert(): it must hold in every
/// build. The report's stack says where, so `what` may be left out.
inline void require(bool holds, const char* what = "a requirement") {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

inline bool sameBits(std::span<const double> a, std::span<const double> b) {
  return std::ranges::equal(a, b, {}, std::bit_cast<std::uint64_t, double>,
                            std::bit_cast<std::uint64_t, double>);
}

}  // namespace qelm::fuzz

#endif  // QELM_TESTS_FUZZ_REQUIRE_H
