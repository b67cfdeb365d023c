// The library's level curves, owned.
#ifndef QELM_TOOLS_CURVE_SET_H
#define QELM_TOOLS_CURVE_SET_H

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "fields/field_system.h"
#include "mesh/mesh.h"
#include "qelm.h"

namespace qelm::tool {

struct Curve {
  std::span<const double> coordinates;  ///< packed xyz; a closed curve's first is not repeated
  std::size_t level;                    ///< index into CurveSet::levels()
  bool closed;

  std::size_t size() const { return coordinates.size() / 3; }
  Point point(std::size_t k) const {
    return {coordinates[3 * k], coordinates[3 * k + 1], coordinates[3 * k + 2]};
  }
};

class CurveSet {
 public:
  /// Cuts the mesh at the levels; `field` is in the mesh's order.
  CurveSet(const FieldSystem& system, std::span<const double> field, std::vector<double> levels);

  const std::vector<double>& levels() const { return levels_; }
  std::size_t size() const { return static_cast<std::size_t>(curves_->curveCount); }
  std::size_t pointCount() const { return static_cast<std::size_t>(curves_->pointCount); }

  /// Curves come by level, in the order of levels().
  Curve operator[](std::size_t k) const;

 private:
  struct Free {
    void operator()(QelmCurves* curves) const { qelmfreecurves(curves); }
  };
  std::vector<double> levels_;
  std::unique_ptr<QelmCurves, Free> curves_;
};

}  // namespace qelm::tool

#endif
