// Ranks in lists: every order that nine entries can have.
#include "mesh/ranks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <span>
#include <vector>

#include "support/random.h"

namespace qelm::test {
namespace {

struct Entry {
  std::int32_t neighbour;
  double sum;
};

/// Each entry's sum tells its neighbour.
std::vector<Entry> entriesOf(const std::vector<std::int32_t>& neighbours) {
  std::vector<Entry> entries;
  for (const std::int32_t v : neighbours) entries.push_back({v, 0.5 + v});
  return entries;
}

/// Whether all of these are visited, once, each with its own sum and rank.
testing::AssertionResult haveTheirRanks(const std::vector<std::int32_t>& neighbours) {
  std::vector<Entry> list = entriesOf(neighbours);
  std::vector<Entry> ranked(neighbours.size(), Entry{-1, 0});
  std::size_t visits = 0;
  visitWithRanks(std::span(list), [&](const Entry& entry, std::size_t rank) {
    ranked.at(rank) = entry;
    ++visits;
  });
  std::vector<std::int32_t> expected = neighbours;
  std::sort(expected.begin(), expected.end());
  if (visits != expected.size()) {
    return testing::AssertionFailure() << visits << " visits to " << expected.size();
  }
  for (std::size_t rank = 0; rank < expected.size(); ++rank) {
    if (ranked[rank].neighbour != expected[rank]) {
      return testing::AssertionFailure() << "rank " << rank << " has " << ranked[rank].neighbour;
    }
    if (ranked[rank].sum != 0.5 + expected[rank]) {
      return testing::AssertionFailure() << "rank " << rank << " has the sum of another entry";
    }
  }
  return testing::AssertionSuccess();
}

TEST(Ranks, EveryOrderOfUpToNineEntries) {
  for (std::size_t length = 0; length <= kLongestWithoutBranch + 1; ++length) {
    std::vector<std::int32_t> neighbours(length);
    std::iota(neighbours.begin(), neighbours.end(), 3);
    do {
      ASSERT_TRUE(haveTheirRanks(neighbours)) << length << " entries";
    } while (std::next_permutation(neighbours.begin(), neighbours.end()));
  }
}

TEST(Ranks, FromZeroToTheHighestNumber) {
  const std::int32_t highest = std::numeric_limits<std::int32_t>::max();
  EXPECT_TRUE(haveTheirRanks({highest, 0}));
  EXPECT_TRUE(haveTheirRanks({highest, 1 << 30, 0, highest - 1, 1, (1 << 30) - 1}));
}

TEST(Ranks, LongLists) {
  Random random(5);
  for (const int length : {10, 100, 5000}) {
    EXPECT_TRUE(haveTheirRanks(permutation(random, length))) << length;
  }
}

}  // namespace
}  // namespace qelm::test
