// Fields that leave the range of the values that are held.
#ifndef QELM_TOOLS_OVERSHOOT_H
#define QELM_TOOLS_OVERSHOOT_H

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "conditions/selection.h"
#include "mesh/mesh.h"

namespace qelm::tool {

struct Overshoot {
  double low, high;  ///< of the values that are held
  int vertex;        ///< where the field is farthest outside
  double value;      ///< the field there
  double by;         ///< how far outside that is, above 0
};

/// None where the field number k stays inside, but for rounding. Without a load the smooth field
/// has its extremes where it is held; on triangles with obtuse angles the computed one need not.
std::optional<Overshoot> overshootOf(std::span<const double> field, const Prescribed& prescribed,
                                     std::size_t k);

/// Says by how much, where, and what to do.
std::string describeOvershoot(const Overshoot& overshoot, const Mesh& mesh);

}  // namespace qelm::tool

#endif
