// Which levels of a field curves are cut at.
#ifndef QELM_TOOLS_LEVELS_H
#define QELM_TOOLS_LEVELS_H

#include <span>
#include <string>
#include <vector>

#include "mesh/mesh.h"
#include "terminal/console.h"

namespace qelm::tool {

// More levels than anyone can look at, and few enough to be cut in a moment.
inline constexpr int kMostLevels = 10000;

/// As on the command line; of the first four texts one is not empty at most.
struct LevelOptions {
  std::string count;                 ///< --levels
  std::string at;                    ///< --at
  std::string every;                 ///< --every
  std::string spacing;               ///< --spacing
  bool round = false;                ///< --round
  std::vector<std::string> through;  ///< --through; with any of the others or alone
};

class LevelChoice {
 public:
  /// Throws UsageError that quotes what is wrong.
  explicit LevelChoice(const LevelOptions& options);

  /// The levels for a field from `low` to `high`, in increasing order, each once:
  ///  - a count N: low + k (high - low) / (N + 1) for k = 1 .. N;
  ///  - a count N and --round, or nothing: the multiples of 1, 2 or 5 times a power of ten
  ///    strictly between low and high, with the step that gives nearest to N of them, or to
  ///    ten; evenly spaced ones where there is none;
  ///  - a step: all its multiples strictly between low and high;
  ///  - a list: as given, with a note about those outside;
  ///  - `more`, which the caller has computed: the values at the points of through(), besides the
  ///    levels above or alone; and the levels of spacing(), in place of the levels above.
  /// Throws RequestError when nothing lies between.
  std::vector<double> levels(double low, double high, const Console& console,
                             std::span<const double> more = {}) const;

  /// How far apart curves are to be; 0 without --spacing.
  double spacing() const { return spacing_; }

  /// The points that --through names.
  const std::vector<Point>& through() const { return through_; }

 private:
  std::vector<double> chosen(double low, double high, const Console& console) const;
  std::vector<double> round(double low, double high) const;
  std::vector<double> even(double low, double high) const;
  std::vector<double> multiples(double low, double high) const;

  int count_ = 0;
  bool round_ = false;
  double step_ = 0;
  std::vector<double> list_;
  std::vector<Point> through_;
  double spacing_ = 0;
  bool onlyMore_ = false;  ///< no level but those of --spacing and --through
};

}  // namespace qelm::tool

#endif
