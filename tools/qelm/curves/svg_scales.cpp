#include "curves/svg_scales.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "text/text.h"

namespace qelm::tool {
namespace {

// A bar of colours, and how far its labels keep apart.
constexpr double kBarWidth = 16;
constexpr double kLabelPitch = 17;
constexpr int kBarStops = 16;
constexpr std::size_t kLongestName = 14;

// A bar of lengths takes about so many millimetres of paper.
constexpr double kLengthBar = 60;

class ColourScaleWriter {
 public:
  ColourScaleWriter(const FieldCurves& field, const std::vector<std::string>& texts,
                    const Caption& caption, double height, TextBlock& block)
      : field_(field),
        levels_(field.curves.levels()),
        texts_(texts),
        unit_(xmlText(caption.unitAfter())),
        height_(height),
        block_(block) {}

  void bar(std::size_t number) {
    const std::string ramp = number == 0 ? "ramp" : fmt::format("ramp{}", number + 1);
    block_.text("<defs><linearGradient id=\"{}\" x1=\"0\" y1=\"1\" x2=\"0\" y2=\"0\">\n", ramp);
    for (int k = 0; k <= kBarStops; ++k) {
      const double t = static_cast<double>(k) / kBarStops;
      block_.text("<stop offset=\"{}\" stop-color=\"{}\"/>\n", t, hex(field_.colours.ramp(t)));
    }
    block_.text(
        "</linearGradient></defs>\n<rect width=\"{}\" height=\"{:.2f}\" fill=\"url(#{})\"/>\n",
        kBarWidth, height_, ramp);
  }

  void ends() {
    const auto& [ramp, low, high, isFixed] = field_.colours;
    // Half a thousandth of the bar is less than a pixel.
    const double step = (high - low) / 1000;
    // A range that was given is not the field's: its ends may stand for all that is beyond.
    const char* const top = !isFixed ? "max " : field_.range.high > high ? "\u2265 " : "";
    const char* const bottom = !isFixed ? "min " : field_.range.low < low ? "\u2264 " : "";
    block_.text(
        "<g fill=\"#595959\"><text y=\"-8\">{}{}{}</text>\n"
        "<text y=\"{:.2f}\">{}{}{}</text></g>\n",
        top, digits(high, step), unit_, height_ + 18, bottom, digits(low, step), unit_);
  }

  void ticks() {
    const std::size_t every = labelEvery();
    for (std::size_t k = 0; k < levels_.size(); ++k) {
      if (levels_[k] < field_.colours.low || levels_[k] > field_.colours.high) continue;
      const double y = height_ * (1 - part(k));
      // On the bar in whichever of black and white stands out.
      block_.text(
          "<path d=\"M0 {0:.2f}H{1}\" stroke=\"{2}\"/><path d=\"M{1} {0:.2f}h5\" "
          "stroke=\"#595959\"/>\n",
          y, kBarWidth, isDark(field_.colours(levels_[k])) ? "#fff" : "#222");
      if (k % every == 0)
        block_.text("<text x=\"{}\" y=\"{:.2f}\" dy=\"0.36em\">{}</text>\n", kBarWidth + 9, y,
                    texts_[k]);
    }
  }

  /// Above the bar, with a sample of its lines where they are not drawn through.
  void name(const std::string& dashes) {
    std::string text = field_.name;
    if (text.size() > kLongestName) text = text.substr(0, kLongestName - 1) + "\u2026";
    block_.text("<text y=\"-28\" font-weight=\"bold\">{}</text>\n", xmlText(printable(text)));
    block_.text("<path d=\"M0 -46h48\" stroke=\"#333\" stroke-width=\"2\"{}/>\n", dashes);
  }

 private:
  static bool isDark(const Colour& colour) {
    constexpr double kMiddle = 125;  // of 255; viridis passes it at 0.6 of its way
    return 0.299 * colour[0] + 0.587 * colour[1] + 0.114 * colour[2] < kMiddle;
  }

  double part(std::size_t level) const { return field_.colours.part(levels_[level]); }

  /// Labels every so many levels, so that those at the closest levels keep apart.
  std::size_t labelEvery() const {
    for (std::size_t every = 1; every < levels_.size(); ++every) {
      bool isFree = true;
      for (std::size_t k = every; k < levels_.size() && isFree; k += every)
        isFree = height_ * (part(k) - part(k - every)) >= kLabelPitch;
      if (isFree) return every;
    }
    return std::max<std::size_t>(levels_.size(), 1);
  }

  const FieldCurves& field_;
  const std::vector<double>& levels_;
  const std::vector<std::string>& texts_;
  std::string unit_;
  double height_;
  TextBlock& block_;
};

}  // namespace

std::string hex(const Colour& colour) {
  return fmt::format("#{:02x}{:02x}{:02x}", colour[0], colour[1], colour[2]);
}

std::string xmlText(const std::string& text) {
  std::string result;
  for (const char c : oneLine(text)) {  // no other character is forbidden in XML
    if (c == '&')
      result += "&amp;";
    else if (c == '<')
      result += "&lt;";
    else if (c == '>')
      result += "&gt;";
    else
      result += c;
  }
  return result;
}

void writeColourScale(const FieldCurves& field, const std::vector<std::string>& texts,
                      const Caption& caption, std::size_t number, const std::string& dashes,
                      const SvgArea& area, TextBlock& block) {
  block.text("<g id=\"scale{}\" font-size=\"12\" transform=\"translate({:.2f} {:.2f})\">\n",
             number == 0 ? "" : fmt::format("{}", number + 1), area.left, area.top);
  ColourScaleWriter writer(field, texts, caption, area.height, block);
  writer.bar(number);
  if (!field.name.empty()) writer.name(dashes);
  writer.ends();
  writer.ticks();
  block.text("</g>\n");
}

void writeLengthBar(const Sheet& sheet, double pixelsToMillimetre, double left, double top,
                    TextBlock& block) {
  // The largest of 1, 2 and 5 times a power of ten that is not longer than wanted.
  const double most = kLengthBar / sheet.millimetres;
  const double power = std::pow(10, std::floor(std::log10(most)));
  double length = power;
  for (const double digit : {2.0, 5.0})
    if (digit * power <= most) length = digit * power;
  const double width = length * sheet.millimetres * pixelsToMillimetre;
  block.text(
      "<g id=\"length-bar\" font-size=\"11\" transform=\"translate({:.2f} {:.2f})\">\n"
      "<rect width=\"{:.2f}\" height=\"5\" fill=\"#fff\" stroke=\"#222\" stroke-width=\"0.75\"/>\n"
      "<rect width=\"{:.2f}\" height=\"5\"/>\n",
      left, top, width, width / 2);
  block.text(
      "<text x=\"0\" y=\"-5\" text-anchor=\"middle\">0</text>\n"
      "<text x=\"{0:.2f}\" y=\"-5\" text-anchor=\"middle\">{1}</text>\n"
      "<text x=\"{2:.2f}\" y=\"-5\" text-anchor=\"middle\">{3} {4}</text>\n</g>\n",
      width / 2, digits(length / 2), width, digits(length), sheet.meshUnit);
}

}  // namespace qelm::tool
