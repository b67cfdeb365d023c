#include "fields/overshoot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "mesh/mesh_checks.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

constexpr const char* kRemedy =
    "--robust keeps it inside; so do finer triangles, or triangles without obtuse angles "
    "('qelm check' counts the edges)";

}  // namespace

std::optional<Overshoot> overshootOf(std::span<const double> field, const Prescribed& prescribed,
                                     std::size_t k) {
  constexpr double kRounding = 1e-9;  // of the largest prescribed value
  Overshoot worst{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                  -1, 0, 0};
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (prescribed.tags[i] == 0) continue;
    const double value = prescribed.values[k * field.size() + i];
    worst.low = std::min(worst.low, value);
    worst.high = std::max(worst.high, value);
  }
  for (std::size_t i = 0; i < field.size(); ++i) {
    const double by = std::max(worst.low - field[i], field[i] - worst.high);
    if (by > worst.by) worst = {worst.low, worst.high, asInt(i), field[i], by};
  }
  if (!(worst.by > kRounding * std::max(std::abs(worst.low), std::abs(worst.high)))) return {};
  return worst;
}

std::string describeOvershoot(const Overshoot& overshoot, const Mesh& mesh) {
  return fmt::format(
      "the field leaves the range of the fixed values, {} to {}, by {:.3g}: it is {} at {}; {}",
      overshoot.low, overshoot.high, overshoot.by, digits(overshoot.value, overshoot.by / 100),
      describeVertex(mesh, overshoot.vertex), kRemedy);
}

}  // namespace qelm::tool
