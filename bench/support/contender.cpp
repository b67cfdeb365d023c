#include "support/contender.h"

#include <benchmark/benchmark.h>

#include "support/memory.h"

namespace qelm::bench {
namespace {

struct Ready {
  Run run;
  std::size_t made = 0;
  std::size_t peakBytes = 0;
};

Ready makeReady(const Prepare& prepare, const Case& c) {
  Ready ready;
  ready.run = prepare(c);
  ready.peakBytes = peakBytesOf([&ready] { ready.made = ready.run(); });
  return ready;
}

void measure(benchmark::State& state, const Prepare& prepare, const Case& c, Ready& ready) {
  if (!ready.run) ready = makeReady(prepare, c);
  for (auto _ : state) benchmark::DoNotOptimize(ready.made = ready.run());
  state.counters["made"] = static_cast<double>(ready.made);
  state.counters["peak_bytes"] = static_cast<double>(ready.peakBytes);
}

}  // namespace

TakesPart upTo(int largestSize) {
  return [=](const Case& c) { return c.size <= largestSize; };
}

void addContender(const std::string& stage, const std::string& contender, Prepare prepare,
                  const TakesPart& takesPart) {
  for (const Case& c : allCases()) {
    if (!takesPart(c)) continue;
    const auto ready = std::make_shared<Ready>();
    benchmark::RegisterBenchmark(
        (stage + "/" + contender + "/" + nameOf(c)).c_str(),
        [=](benchmark::State& state) { measure(state, prepare, c, *ready); })
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime();
  }
}

int runContenders(int argumentCount, char** arguments) {
  benchmark::Initialize(&argumentCount, arguments);
  if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace qelm::bench
