// Random test data whose seed is printed on failure and can be set.
#ifndef QELM_TESTS_SUPPORT_RANDOM_H
#define QELM_TESTS_SUPPORT_RANDOM_H

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace qelm::test {

using Random = std::mt19937_64;

/// The seed of this run: QELM_TEST_SEED if set, else a fixed number, so that
/// plain runs repeat. Tests print it through SCOPED_TRACE(seedTrace(seed)).
std::uint64_t testSeed();
std::string seedTrace(std::uint64_t seed);

/// Uniform in [low, high), the same bits on every platform.
double uniform(Random& random, double low, double high);
/// Uniform in low .. high, the same on every platform.
int uniformInt(Random& random, int low, int high);
/// A permutation of 0 .. count-1, the same on every platform.
std::vector<std::int32_t> permutation(Random& random, int count);

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_RANDOM_H
