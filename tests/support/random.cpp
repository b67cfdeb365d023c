#include "support/random.h"

#include <cstddef>
#include <cstdlib>
#include <utility>

namespace qelm::test {

std::uint64_t testSeed() {
  const char* text = std::getenv("QELM_TEST_SEED");
  return text != nullptr ? std::strtoull(text, nullptr, 10) : 20240607U;
}

std::string seedTrace(std::uint64_t seed) { return "QELM_TEST_SEED=" + std::to_string(seed); }

// The standard distributions differ between libraries; these do not.
double uniform(Random& random, double low, double high) {
  const double unit = static_cast<double>(random() >> 11) * 0x1p-53;
  return low + unit * (high - low);
}

int uniformInt(Random& random, int low, int high) {
  const auto span = static_cast<std::uint64_t>(static_cast<std::int64_t>(high) - low + 1);
  return static_cast<int>(low + static_cast<std::int64_t>(random() % span));
}

std::vector<std::int32_t> permutation(Random& random, int count) {
  std::vector<std::int32_t> order;
  for (int i = 0; i < count; ++i) order.push_back(i);
  for (int i = count - 1; i > 0; --i) {
    const auto j = static_cast<std::size_t>(uniformInt(random, 0, i));
    std::swap(order[static_cast<std::size_t>(i)], order[j]);
  }
  return order;
}

}  // namespace qelm::test
