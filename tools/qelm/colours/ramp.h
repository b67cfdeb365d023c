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

  /// The colour at t from 0 to 1, by linear interpolation between neighbouring colours. Below 0 and
  /// above 1 it is that of the end; t must not be NaN.
  Colour operator()(double t) const;

  Ramp reversed() const;

  /// "viridis", "viridis-reversed"; empty if the ramp is an image's.
  const std::string& name() const { return name_; }

 private:
  std::vector<Colour> colours_;
  std::string name_;
};

/// The published ramp of that name. Throws UsageError that lists them.
Ramp namedRamp(const std::string& name);

/// The ramp of --ramp: the name of a published one, or of a PNG image, see rampOfImage();
/// "reversed:" before either turns it round. Throws UsageError, FileError.
Ramp parseRamp(const std::string& text);

/// The file that a text of --ramp names; empty if it names none.
std::string rampFile(const std::string& text);

}  // namespace qelm::tool

#endif
