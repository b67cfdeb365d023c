#include "curves/sheet.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <vector>

#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

struct LengthUnit {
  std::string_view name;
  double millimetres;
};
constexpr std::array<LengthUnit, 5> kUnits = {
    {{"mm", 1}, {"cm", 10}, {"m", 1000}, {"in", 25.4}, {"ft", 304.8}}};

struct NamedPaper {
  std::string_view name;
  double longer, shorter;
};
// From the smallest; those without a paper of their own take one of the first five (ISO 216).
constexpr std::array<NamedPaper, 7> kPapers = {{{"A4", 297, 210},
                                                {"A3", 420, 297},
                                                {"A2", 594, 420},
                                                {"A1", 841, 594},
                                                {"A0", 1189, 841},
                                                {"letter", 279.4, 215.9},
                                                {"tabloid", 431.8, 279.4}}};
constexpr std::size_t kIsoPapers = 5;

// Larger than any plotter's.
constexpr double kLargestSide = 20'000;

// Rounding must not push a drawing off a page that was made for it.
constexpr double kSlack = 1e-6;

double positive(std::string_view text) {
  const auto value = parseDouble(trimmed(text));
  return value && std::isfinite(*value) && *value > 0 ? *value : 0;
}

double parsedScale(const std::string& text) {
  const std::vector<std::string_view> words = splitAt(text, ':');
  const double paper = words.size() == 2 ? positive(words[0]) : 0;
  const double real = words.size() == 2 ? positive(words[1]) : 0;
  const double scale = paper > 0 && real > 0 ? paper / real : 0;
  if (!(scale > 0) || !std::isfinite(scale))
    throw UsageError(fmt::format("--scale {}: write it as 1:50, or 2:1", text));
  return scale;
}

const LengthUnit* lengthUnit(std::string_view name) {
  const auto* const found = std::find_if(
      kUnits.begin(), kUnits.end(), [name](const LengthUnit& unit) { return unit.name == name; });
  return found == kUnits.end() ? nullptr : found;
}

const LengthUnit& parsedUnit(const SheetOptions& options, const std::string& valueUnit) {
  const std::string& text = options.meshUnit.empty() ? valueUnit : options.meshUnit;
  if (const LengthUnit* const unit = lengthUnit(text)) return *unit;
  if (options.meshUnit.empty())
    throw UsageError(
        "a drawing to scale needs to know what the mesh is measured in; give --mesh-unit mm, cm, "
        "m, in or ft");
  throw UsageError(fmt::format("--mesh-unit {}: give mm, cm, m, in or ft", text));
}

/// "1:50", "2:1".
std::string scaleText(double scale) {
  return scale <= 1 ? fmt::format("1:{}", digits(1 / scale)) : fmt::format("{}:1", digits(scale));
}

/// The largest of 1, 2 and 5 times a power of ten that is not above `most`.
double roundScale(double most) {
  const double power = std::pow(10, std::floor(std::log10(most)));
  for (const double digit : {10.0, 5.0, 2.0})
    if (digit * power <= most * (1 + kSlack)) return digit * power;
  return power;
}

}  // namespace

SheetChoice::SheetChoice(const SheetOptions& options, const std::string& valueUnit) {
  const LengthUnit& unit = parsedUnit(options, valueUnit);
  unit_ = unit.millimetres;
  meshUnit_ = std::string(unit.name);
  if (!options.scale.empty()) scale_ = parsedScale(options.scale);
  if (options.paper.empty()) return;
  for (const NamedPaper& paper : kPapers)
    if (paper.name == options.paper) paper_ = {paper.longer, paper.shorter, true};
  const std::vector<std::string_view> sides = splitAt(options.paper, ',');
  if (sides.size() == 2) paper_ = {positive(sides[0]), positive(sides[1]), false};
  if (!paper_ || !(std::min(paper_->width, paper_->height) > 0) ||
      std::max(paper_->width, paper_->height) > kLargestSide)
    throw UsageError(
        fmt::format("--paper {}: give A0 to A4, letter, tabloid, or WIDTH,HEIGHT in millimetres",
                    options.paper));
}

Sheet SheetChoice::sheet(const Paper& paper, double scale) const {
  return {paper.width, paper.height, unit_ * scale, scaleText(scale), meshUnit_};
}

std::optional<SheetChoice::Paper> SheetChoice::fitting(const Paper& paper,
                                                       const SheetContent& content,
                                                       double scale) const {
  const double width = content.width * unit_ * scale + content.besideWidth;
  const double height = content.height * unit_ * scale + content.besideHeight;
  if (width <= paper.width + kSlack && height <= paper.height + kSlack) return paper;
  if (paper.mayTurn && width <= paper.height + kSlack && height <= paper.width + kSlack)
    return Paper{paper.height, paper.width, false};
  return {};
}

Sheet SheetChoice::sheetFor(const SheetContent& content) const {
  // What fits at most, lying or standing.
  const auto mostOn = [&](double width, double height) {
    return std::min((width - content.besideWidth) / (content.width * unit_),
                    (height - content.besideHeight) / (content.height * unit_));
  };
  if (paper_) {
    double most = mostOn(paper_->width, paper_->height);
    if (paper_->mayTurn) most = std::max(most, mostOn(paper_->height, paper_->width));
    if (!(most > 0))
      throw RequestError("--paper: the page is too small for a heading and a scale of colours");
    const double scale = scale_ ? *scale_ : roundScale(most);
    if (const auto paper = fitting(*paper_, content, scale)) return sheet(*paper, scale);
    throw RequestError(fmt::format("--scale {}: the drawing does not fit on the paper; {} does",
                                   scaleText(scale), scaleText(roundScale(most))));
  }
  for (std::size_t k = 0; k < kIsoPapers; ++k)
    if (const auto paper = fitting({kPapers[k].longer, kPapers[k].shorter, true}, content, *scale_))
      return sheet(*paper, *scale_);
  const Paper own = {content.width * unit_ * *scale_ + content.besideWidth,
                     content.height * unit_ * *scale_ + content.besideHeight, false};
  if (!(std::max(own.width, own.height) <= kLargestSide))
    throw RequestError(fmt::format("--scale {}: the drawing would be {:.3g} m by {:.3g} m",
                                   scaleText(*scale_), own.width / 1000, own.height / 1000));
  return sheet(own, *scale_);
}

}  // namespace qelm::tool
