// Level curves with their levels.
#ifndef QELM_TOOLS_CURVE_SET_H
#define QELM_TOOLS_CURVE_SET_H

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "fields/field_system.h"
#include "mesh/mesh.h"

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
  /// Without curves.
  explicit CurveSet(std::vector<double> levels) : levels_(std::move(levels)) {}
  /// Cuts the mesh at the levels; `field` is in the mesh's order.
  CurveSet(const FieldSystem& system, std::span<const double> field, std::vector<double> levels);

  const std::vector<double>& levels() const { return levels_; }
  std::size_t size() const { return curves_.size(); }
  std::size_t pointCount() const { return coordinates_.size() / 3; }

  /// Curves come by level, in the order of levels().
  Curve operator[](std::size_t k) const;

  /// Adds a curve at the end, of the last one's level or a later one.
  void add(std::span<const double> coordinates, std::size_t level, bool closed);

 private:
  struct Entry {
    std::size_t begin;  ///< of its coordinates, which end where the next curve's begin
    std::size_t level;
    bool closed;
  };
  std::vector<double> levels_;
  std::vector<double> coordinates_;
  std::vector<Entry> curves_;
};

}  // namespace qelm::tool

#endif
