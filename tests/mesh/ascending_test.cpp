// Short lists in ascending order: every order that eight entries can have.
#include "mesh/ascending.h"

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

/// Whether all of these are visited, once, in order, each with its own sum.
testing::AssertionResult comeInOrder(std::vector<std::int32_t> neighbours) {
  std::vector<Entry> list = entriesOf(neighbours);
  std::vector<Entry> visited;
  visitAscending(std::span(list), [&](const Entry& entry) { visited.push_back(entry); });
  std::sort(neighbours.begin(), neighbours.end());
  if (visited.size() != neighbours.size()) {
    return testing::AssertionFailure() << visited.size() << " of " << neighbours.size();
  }
  for (std::size_t i = 0; i < visited.size(); ++i) {
    if (visited[i].neighbour != neighbours[i]) {
      return testing::AssertionFailure() << "place " << i << " has " << visited[i].neighbour;
    }
    if (visited[i].sum != 0.5 + neighbours[i]) {
      return testing::AssertionFailure() << "place " << i << " has the sum of another entry";
    }
  }
  return testing::AssertionSuccess();
}

TEST(Ascending, EveryOrderOfUpToNineEntries) {
  for (std::size_t length = 0; length <= kLongestInRegisters + 1; ++length) {
    std::vector<std::int32_t> neighbours(length);
    std::iota(neighbours.begin(), neighbours.end(), 3);
    do {
      ASSERT_TRUE(comeInOrder(neighbours)) << length << " entries";
    } while (std::next_permutation(neighbours.begin(), neighbours.end()));
  }
}

TEST(Ascending, FromZeroToTheHighestNumber) {
  const std::int32_t highest = std::numeric_limits<std::int32_t>::max();
  EXPECT_TRUE(comeInOrder({highest, 0}));
  EXPECT_TRUE(comeInOrder({highest, 1 << 30, 0, highest - 1, 1, (1 << 30) - 1}));
}

TEST(Ascending, LongLists) {
  Random random(5);
  for (const int length : {10, 100, 5000}) {
    EXPECT_TRUE(comeInOrder(permutation(random, length))) << length;
  }
}

}  // namespace
}  // namespace qelm::test
