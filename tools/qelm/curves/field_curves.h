// The level curves of one field, with what it takes to draw them.
#ifndef QELM_TOOLS_FIELD_CURVES_H
#define QELM_TOOLS_FIELD_CURVES_H

#include <string>

#include "colours/colour_scale.h"
#include "curves/curve_set.h"
#include "fields/field_range.h"

namespace qelm::tool {

struct FieldCurves {
  std::string name;  ///< of several fields; empty of a single one
  CurveSet curves;
  FieldRange range;
  ColourScale colours;
};

}  // namespace qelm::tool

#endif
