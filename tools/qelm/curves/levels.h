// Which levels of a field curves are cut at.
#ifndef QELM_TOOLS_LEVELS_H
#define QELM_TOOLS_LEVELS_H

#include <string>
#include <vector>

#include "terminal/console.h"

namespace qelm::tool {

/// As on the command line; exactly one is not empty.
struct LevelOptions {
  std::string count;  ///< --levels
  std::string at;     ///< --at
  std::string every;  ///< --every
};

class LevelChoice {
 public:
  /// Throws UsageError that quotes what is wrong.
  explicit LevelChoice(const LevelOptions& options);

  /// The levels for a field from `low` to `high`, in increasing order, each once:
  ///  - a count N: low + k (high - low) / (N + 1) for k = 1 .. N;
  ///  - a step: all its multiples strictly between low and high;
  ///  - a list: as given, with a note about those outside.
  /// Throws RequestError when nothing lies between.
  std::vector<double> levels(double low, double high, const Console& console) const;

 private:
  std::vector<double> even(double low, double high) const;
  std::vector<double> multiples(double low, double high) const;

  int count_ = 0;
  double step_ = 0;
  std::vector<double> list_;
};

}  // namespace qelm::tool

#endif
