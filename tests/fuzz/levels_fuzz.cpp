// The options that choose levels, on fields of any range.
#include <cmath>

#include "curves/levels.h"
#include "fuzz/input.h"
#include "fuzz/tool_checks.h"
#include "text/error.h"

namespace {

using qelm::fuzz::require;

void requireIncreasing(const std::vector<double>& levels) {
  for (std::size_t k = 0; k < levels.size(); ++k) {
    require(std::isfinite(levels[k]), "finite levels");
    require(!(levels[k] == 0 && std::signbit(levels[k])), "no negative zero");
    require(k == 0 || levels[k - 1] < levels[k], "each level once, in increasing order");
  }
}

/// All multiples of the step, and nothing else. Where whole numbers are no longer all
/// doubles, or their multiples no longer all different, neighbours cannot be told.
void requireMultiples(const std::vector<double>& levels, double step) {
  constexpr double kWhole = 0x1p50;
  double before = 0;
  for (std::size_t k = 0; k < levels.size(); ++k) {
    const double number = std::nearbyint(levels[k] / step);
    if (!(std::abs(number) < kWhole)) return;
    require(number * step == levels[k], "a multiple of the step");
    require(k == 0 || number == before + 1, "no multiple is left out");
    before = number;
  }
}

void requireGood(const std::vector<double>& levels, const qelm::tool::LevelOptions& options,
                 double low, double high) {
  require(!levels.empty(), "some level, or a refusal");
  require(levels.size() <= 10002, "not more levels than anyone can look at");
  requireIncreasing(levels);
  if (options.at.empty())
    require(low < levels.front() && levels.back() < high, "strictly within the field");
  if (!options.every.empty())
    requireMultiples(levels, *qelm::tool::parseDouble(qelm::tool::trimmed(options.every)));
  if (!options.count.empty() && !options.round)
    require(static_cast<long long>(levels.size()) <=
                *qelm::tool::parseInteger(qelm::tool::trimmed(options.count)),
            "not more than asked for");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const auto kind = input.take<std::uint8_t>();
  const auto low = input.take<double>();
  const auto high = input.take<double>();
  if (size < 17 || !std::isfinite(low) || !std::isfinite(high) || !(low < high)) return 0;
  const std::string text(data + 17, data + size);
  qelm::tool::LevelOptions options;
  options.round = (kind & 4) != 0;
  (kind % 3 == 0 ? options.count : kind % 3 == 1 ? options.at : options.every) = text;
  try {
    const qelm::tool::LevelChoice choice(options);
    requireGood(choice.levels(low, high, qelm::tool::Console(true)), options, low, high);
  } catch (const qelm::tool::UsageError& error) {
    require(*error.what() != '\0', "a message says what is wrong");
  } catch (const qelm::tool::RequestError& error) {
    qelm::fuzz::requireMessage(error.what(), "--");
  }
  return 0;
}
