// From values to colours: --ramp and --range.
#ifndef QELM_TOOLS_COLOUR_SCALE_H
#define QELM_TOOLS_COLOUR_SCALE_H

#include <optional>
#include <string>

#include "colours/ramp.h"
#include "fields/field_range.h"
#include "terminal/console.h"

namespace qelm::tool {

/// As on the command line.
struct ColourOptions {
  std::string ramp = "viridis";  ///< see parseRamp()
  std::string range;             ///< "LOW,HIGH"; empty: the field's own
};

struct ValueRange {
  double low, high;  ///< low < high
};

/// Throws UsageError that quotes `text`; none of an empty one.
std::optional<ValueRange> parseRange(const std::string& text);

struct ColourScale {
  Ramp ramp;
  double low, high;      ///< the values that have the ramp's first and last colour
  bool isFixed = false;  ///< the range is that of --range: the field may be narrower, or leave it

  /// Where `value` lies between low and high, from 0 to 1; NaN stays so.
  double part(double value) const;
  /// Values outside of the range have the colour of its end. `value` must not be NaN.
  Colour operator()(double value) const { return ramp(part(value)); }
};

class ColourChoice {
 public:
  /// Reads the ramp's image, if it is one. Throws UsageError, FileError.
  explicit ColourChoice(const ColourOptions& options);

  /// The scale for a field with this range, with a note if the field leaves that of --range.
  ColourScale scaleFor(const FieldRange& field, const Console& console) const;

  const Ramp& ramp() const { return ramp_; }
  const std::optional<ValueRange>& range() const { return range_; }

 private:
  Ramp ramp_;
  std::optional<ValueRange> range_;
};

}  // namespace qelm::tool

#endif
