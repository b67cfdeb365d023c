// The named steps of a run: how long each took, and which one runs.
#ifndef QELM_TOOLS_STEPS_H
#define QELM_TOOLS_STEPS_H

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "terminal/console.h"

namespace qelm::tool {

struct Step {
  std::string name;
  double seconds;  ///< wall clock
};

/// Shows, as long as it lives, which step runs and for how long, and how long it is expected to
/// take (in seconds; 0: unknown). Shows nothing of short steps, and nothing without a terminal.
class ProgressLine {
 public:
  ProgressLine(const char* name, double expected);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

 private:
  struct Ticker;
  std::unique_ptr<Ticker> ticker_;
};

class Steps {
 public:
  Steps() : Steps(Console(true)) {}
  explicit Steps(const Console& console) : console_(console) {}

  /// Runs `action` under a ProgressLine, notes its time, and returns its result.
  template <class Action>
  auto run(const char* name, Action action, double expected = 0) {
    const Stopwatch stopwatch(*this, name, expected);
    return action();
  }

  const std::vector<Step>& list() const { return list_; }

 private:
  using Clock = std::chrono::steady_clock;

  class Stopwatch {
   public:
    Stopwatch(Steps& steps, const char* name, double expected) : steps_(steps), name_(name) {
      if (!steps.console_.quiet()) line_ = std::make_unique<ProgressLine>(name, expected);
    }
    ~Stopwatch() {
      const std::chrono::duration<double> passed = Clock::now() - begin_;
      line_.reset();
      steps_.finished({name_, passed.count()});
    }

   private:
    Steps& steps_;
    const char* name_;
    Clock::time_point begin_ = Clock::now();
    std::unique_ptr<ProgressLine> line_;
  };

  void finished(const Step& step);

  Console console_;
  std::vector<Step> list_;
};

}  // namespace qelm::tool

#endif
