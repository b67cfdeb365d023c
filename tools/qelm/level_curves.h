// Level curves of a field, cut by the library.
#ifndef QELM_TOOLS_LEVEL_CURVES_H
#define QELM_TOOLS_LEVEL_CURVES_H

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "field_system.h"
#include "mesh.h"
#include "qelm.h"

namespace qelm::tool {

/// One curve; its points stay with the LevelCurves that it comes from.
struct Curve {
  std::size_t level;               ///< index of its level
  bool closed;                     ///< leads on from its last point to its first
  std::span<const double> points;  ///< packed xyz

  std::size_t pointCount() const { return points.size() / 3; }
  Point point(std::size_t k) const { return {points[3 * k], points[3 * k + 1], points[3 * k + 2]}; }
};

class LevelCurves {
 public:
  /// `field` in the mesh's order. Throws InputError when the library refuses.
  LevelCurves(const FieldSystem& system, std::span<const double> field, std::vector<double> levels);

  std::span<const double> levels() const { return levels_; }
  std::size_t count() const { return static_cast<std::size_t>(curves_->curveCount); }
  Curve operator[](std::size_t k) const;

 private:
  struct Free {
    void operator()(QelmCurves* curves) const { qelmfreecurves(curves); }
  };
  std::vector<double> levels_;
  std::unique_ptr<QelmCurves, Free> curves_;
};

/// `count` levels that divide the range from low to high evenly, its ends left out.
std::vector<double> evenLevels(double low, double high, int count);

/// "0.1,0.5". Throws UsageError that quotes `text`.
std::vector<double> parseLevels(const std::string& text);

}  // namespace qelm::tool

#endif
