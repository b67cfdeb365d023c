// Contenders for one job, measured in turn in one process.
#ifndef QELM_BENCH_SUPPORT_CONTENDER_H
#define QELM_BENCH_SUPPORT_CONTENDER_H

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "support/cases.h"

namespace qelm::bench {

/// One run of the job. Returns the number of things made (segments, say), so that
/// contenders can be seen to have done the same.
using Run = std::function<std::size_t()>;

/// Gets everything ready that is not part of the job. Called once in a process,
/// before the first run, and only if the contender is measured on that case.
using Prepare = std::function<Run(const Case&)>;

/// Which cases a contender takes part in.
using TakesPart = std::function<bool(const Case&)>;
TakesPart upTo(int largestSize);

/// Adds a benchmark "stage/contender/surface/order/size" for every such case. The first run counts
/// memory (counter "peak_bytes") and warms up; the counter "made" is what the run returns.
void addContender(const std::string& stage, const std::string& contender, Prepare prepare,
                  const TakesPart& takesPart = upTo(3'000'000));

/// What the contenders of a case share: made when the first of them asks, and freed when one of the
/// next case does. Told apart by its type.
template <class T, class Make>
std::shared_ptr<const T> sharedBetweenContenders(const Case& c, Make make) {
  static std::pair<std::string, std::shared_ptr<const T>> last;
  if (last.first != nameOf(c)) {
    last.second.reset();
    last.second = std::make_shared<const T>(make(c));
    last.first = nameOf(c);
  }
  return last.second;
}

/// The whole program: to be called from main.
int runContenders(int argumentCount, char** arguments);

}  // namespace qelm::bench

#endif  // QELM_BENCH_SUPPORT_CONTENDER_H
