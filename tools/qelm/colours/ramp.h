// --ramp: which colour a value has.
#ifndef QELM_TOOLS_RAMP_H
#define QELM_TOOLS_RAMP_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qelm::tool {

using Colour = std::array<std::uint8_t, 3>;  ///< red, green, blue

class Ramp {
 public:
  /// `colours` of the smallest value first, two at least; `name` is a published ramp's, or empty.
  Ramp(std::vector<Colour> colours, std::string name);

  /// The colour at t from 0 to 1, between neighbouring ones by linear interpolation. t must be a
  /// number; values outside take an end's colour.
  Colour operator()(double t) const;

  Ramp reversed() const;

  /// "viridis", "viridis-reversed", or empty of an image's.
  const std::string& name() const { return name_; }

 private:
  std::vector<Colour> colours_;
  std::string name_;
};

/// The published ramp of that name. Throws UsageError that lists them.
Ramp namedRamp(const std::string& name);

/// What --ramp says: a published ramp, or a PNG image that is read along its middle, from the
/// colour of the largest value at the left (or, of an image that is higher than wide, at the top)
/// to that of the smallest. "reversed:" before either turns it round. Throws UsageError, FileError.
Ramp parseRamp(const std::string& text);

/// The file that `text` names, or empty.
std::string rampFile(const std::string& text);

/// The ramp of a PNG image's bytes; `name` is for messages. Throws FileError.
Ramp rampOfImage(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
