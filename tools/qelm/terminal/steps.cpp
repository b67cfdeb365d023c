#include "terminal/steps.h"

#include <fmt/format.h>

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace qelm::tool {
namespace {

using namespace std::chrono_literals;

// Shorter steps would only flicker.
constexpr auto kFirst = 300ms;
constexpr auto kEvery = 100ms;

}  // namespace

struct ProgressLine::Ticker {
  Ticker(const char* stepName, double seconds)
      : name(stepName), expected(seconds), thread([this] { run(); }) {}

  ~Ticker() {
    {
      const std::lock_guard lock(mutex);
      isDone = true;
    }
    wake.notify_one();
    thread.join();
    LiveLine::clear();
  }

  void run() {
    const auto begin = std::chrono::steady_clock::now();
    std::unique_lock lock(mutex);
    for (auto pause = kFirst; !wake.wait_for(lock, pause, [this] { return isDone; });
         pause = kEvery) {
      const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
      LiveLine::show(describe(passed.count()));
    }
  }

  std::string describe(double passed) const {
    // Of a step that is expected to be short, the time alone says enough.
    constexpr double kLong = 2;
    const std::string line = fmt::format("{:<10}{:6.1f} s", name, passed);
    return expected < kLong ? line : fmt::format("{} of about {:.0f} s", line, expected);
  }

  const char* name;
  double expected;
  std::mutex mutex;
  std::condition_variable wake;
  bool isDone = false;
  std::thread thread;  // last: it uses all the others
};

ProgressLine::ProgressLine(const char* name, double expected) {
  if (!hasTerminal()) return;
  try {
    ticker_ = std::make_unique<Ticker>(name, expected);
  } catch (const std::system_error&) {
    // No thread to be had: the work matters, the line does not.
  }
}

ProgressLine::~ProgressLine() = default;

void Steps::finished(const Step& step) {
  list_.push_back(step);
  console_.detail(fmt::format("{:<10}{:8.3f} s", step.name, step.seconds));
}

}  // namespace qelm::tool
