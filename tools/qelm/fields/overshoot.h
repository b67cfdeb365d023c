// Fields that leave the range of their prescribed values.
#ifndef QELM_TOOLS_OVERSHOOT_H
#define QELM_TOOLS_OVERSHOOT_H

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "conditions/prescribed.h"
#include "mesh/mesh.h"

namespace qelm::tool {

struct Overshoot {
  double low, high;  ///< the range
  int vertex;        ///< where the field is farthest outside
  double value;      ///< the field there
  double by;         ///< how far outside `value` is, above 0
};

/// How far field k leaves the range; nothing if it stays inside but for rounding. Without a load a
/// smooth field has its extremes at prescribed vertices (the maximum principle); on triangles with
/// obtuse angles the computed field may break that.
std::optional<Overshoot> overshootOf(std::span<const double> field, const Prescribed& prescribed,
                                     std::size_t k);

/// Says by how much, where, and what to do.
std::string describeOvershoot(const Overshoot& overshoot, const Mesh& mesh);

}  // namespace qelm::tool

#endif
