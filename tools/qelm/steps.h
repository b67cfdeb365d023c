// The named steps of a run and how long each took.
#ifndef QELM_TOOLS_STEPS_H
#define QELM_TOOLS_STEPS_H

#include <chrono>
#include <string>
#include <vector>

namespace qelm::tool {

struct Step {
  std::string name;
  double seconds;  ///< wall clock
};

class Steps {
 public:
  /// Runs `action`, returns what it returns, and takes its time.
  template <class Action>
  auto run(const char* name, Action action) {
    const Stopwatch stopwatch(*this, name);
    return action();
  }

  const std::vector<Step>& list() const { return list_; }

 private:
  using Clock = std::chrono::steady_clock;

  class Stopwatch {
   public:
    Stopwatch(Steps& steps, const char* name) : steps_(steps), name_(name) {}
    ~Stopwatch() {
      const std::chrono::duration<double> passed = Clock::now() - begin_;
      steps_.list_.push_back({name_, passed.count()});
    }

   private:
    Steps& steps_;
    const char* name_;
    Clock::time_point begin_ = Clock::now();
  };

  std::vector<Step> list_;
};

}  // namespace qelm::tool

#endif
