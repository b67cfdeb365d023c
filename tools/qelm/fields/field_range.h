// The least and the largest value of a field.
#ifndef QELM_TOOLS_FIELD_RANGE_H
#define QELM_TOOLS_FIELD_RANGE_H

#include <cstddef>
#include <limits>
#include <span>

#include "text/index.h"

namespace qelm::tool {

struct FieldRange {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
  int lowest = -1;  ///< where it is least; the first of equals
  int highest = -1;
};

/// Vertices in no triangle have the value NaN, which does not count.
inline FieldRange rangeOf(std::span<const double> field) {
  FieldRange range;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] < range.low) {
      range.low = field[i];
      range.lowest = asInt(i);
    }
    if (field[i] > range.high) {
      range.high = field[i];
      range.highest = asInt(i);
    }
  }
  return range;
}

}  // namespace qelm::tool

#endif
