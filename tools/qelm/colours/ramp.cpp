#include "colours/ramp.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "colours/published_ramps.h"
#include "colours/ramp_from_image.h"
#include "files/file_bytes.h"
#include "files/paths.h"
#include "text/error.h"

namespace qelm::tool {
namespace {

constexpr std::string_view kReversed = "reversed:";

bool isImage(std::string_view text) { return lowerExtension(toPath(text)) == ".png"; }

std::string_view withoutReversed(std::string_view text) {
  return text.starts_with(kReversed) ? text.substr(kReversed.size()) : text;
}

/// As std::lround() rounds a number that is not negative, without a call.
std::uint8_t nearest(double x) {
  const auto below = static_cast<std::uint8_t>(x);
  return static_cast<std::uint8_t>(below + (x - below >= 0.5 ? 1 : 0));
}

}  // namespace

Ramp::Ramp(std::vector<Colour> colours, std::string name)
    : colours_(std::move(colours)), name_(std::move(name)) {}

Colour Ramp::operator()(double t) const {
  const double position = std::clamp(t, 0.0, 1.0) * static_cast<double>(colours_.size() - 1);
  const auto below = static_cast<std::size_t>(position);
  const std::size_t above = std::min(below + 1, colours_.size() - 1);
  const double part = position - static_cast<double>(below);
  Colour colour{};
  for (std::size_t k = 0; k < colour.size(); ++k) {
    const double mixed = (1 - part) * colours_[below][k] + part * colours_[above][k];
    colour[k] = nearest(mixed);
  }
  return colour;
}

Ramp Ramp::reversed() const {
  return {{colours_.rbegin(), colours_.rend()}, name_.empty() ? "" : name_ + "-reversed"};
}

Ramp namedRamp(const std::string& name) {
  const RampTable* const table = publishedRamp(name);
  if (table == nullptr)
    throw UsageError(fmt::format(
        "--ramp {}: give viridis, magma, cividis, turbo, coolwarm or an image FILE.png", name));
  std::vector<Colour> colours;
  for (const std::uint32_t rgb : *table)
    colours.push_back({static_cast<std::uint8_t>(rgb >> 16 & 0xff),
                       static_cast<std::uint8_t>(rgb >> 8 & 0xff),
                       static_cast<std::uint8_t>(rgb & 0xff)});
  return {std::move(colours), name};
}

std::string rampFile(const std::string& text) {
  const std::string_view name = withoutReversed(text);
  return isImage(name) ? std::string(name) : "";
}

Ramp parseRamp(const std::string& text) {
  const std::string name(withoutReversed(text));
  Ramp ramp = isImage(name) ? rampOfImage(readFile(toPath(name)), name) : namedRamp(name);
  return name == text ? ramp : ramp.reversed();
}

}  // namespace qelm::tool
