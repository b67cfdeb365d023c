#include "curves/curve_svg.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "curves/curve_labels.h"
#include "curves/curve_picture.h"
#include "text/text.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

// The page, in pixels: a heading, the curves, and a scale at the right.
constexpr double kMargin = 40;
constexpr double kHeading = 58;
constexpr double kScaleColumn = 100;
constexpr double kMostWidth = 1000;
constexpr double kMostHeight = 760;
constexpr double kLeastHeight = 220;

// The scale's bar, and how far its labels keep apart.
constexpr double kBarWidth = 16;
constexpr double kMostBar = 360;
constexpr double kLabelPitch = 17;
constexpr int kBarStops = 16;

// More levels than this are drawn with finer lines.
constexpr std::size_t kManyLevels = 24;

std::string hex(const Colour& colour) {
  return fmt::format("#{:02x}{:02x}{:02x}", colour[0], colour[1], colour[2]);
}

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '&')
      result += "&amp;";
    else if (c == '<')
      result += "&lt;";
    else if (c == '>')
      result += "&gt;";
    else if (static_cast<unsigned char>(c) < 0x20)
      result += ' ';  // no other character is forbidden in XML
    else
      result += c;
  }
  return result;
}

class SvgWriter {
 public:
  SvgWriter(const CurveDrawing& drawing, const CurvePicture& picture, OutputFile& file)
      : drawing_(drawing),
        picture_(picture),
        levels_(drawing.curves.levels()),
        texts_(levelTexts(levels_, drawing.colours.high - drawing.colours.low)),
        isFine_(levels_.size() > kManyLevels),
        block_(file) {}

  void run() {
    open();
    heading();
    block_.text("<g transform=\"translate({:.2f} {:.2f})\">\n", kMargin, top());
    outline();
    curves();
    labels();
    block_.text("</g>\n");
    scale();
    block_.text("</svg>\n");
    block_.flush();
  }

 private:
  double plotHeight() const { return std::max(picture_.height, kLeastHeight); }
  double top() const { return kHeading + kMargin / 2 + (plotHeight() - picture_.height) / 2; }
  double pageWidth() const { return picture_.width + 2 * kMargin + kScaleColumn; }
  double pageHeight() const { return plotHeight() + kHeading + 1.5 * kMargin; }

  double part(double level) const { return drawing_.colours.part(level); }
  std::string unit() const { return escaped(drawing_.caption.unitAfter()); }
  std::string colourOf(double level) const { return hex(drawing_.colours(level)); }

  void open() {
    block_.text(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0:.0f}\" height=\"{1:.0f}\" "
        "viewBox=\"0 0 {0:.0f} {1:.0f}\" font-family=\"Helvetica, Arial, 'Liberation Sans', "
        "sans-serif\" fill=\"#222\">\n<title>{2}</title>\n"
        "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n",
        pageWidth(), pageHeight(), escaped(drawing_.caption.title));
  }

  void heading() {
    std::string what = fmt::format("{} level curve{}", drawing_.curves.size(),
                                   drawing_.curves.size() == 1 ? "" : "s");
    if (levels_.size() > 1)
      what += fmt::format(" at {} levels, {} to {}{}", levels_.size(), texts_.front(),
                          texts_.back(), unit());
    else if (!levels_.empty())
      what += " at " + texts_.front() + unit();
    block_.text(
        "<text x=\"{0:.0f}\" y=\"36\" font-size=\"18\" font-weight=\"bold\">{1}</text>\n"
        "<text x=\"{0:.0f}\" y=\"56\" font-size=\"12\" fill=\"#595959\">{2}, {3}</text>\n",
        kMargin, escaped(drawing_.caption.title), what, drawing_.projection.description);
  }

  void outline() {
    block_.text(
        "<g id=\"outline\" fill=\"none\" stroke=\"#8c8c8c\" stroke-width=\"1\" "
        "stroke-linecap=\"round\" stroke-linejoin=\"round\">\n");
    paths(picture_.outline);
    block_.text("</g>\n");
  }

  // Every line lies on a wider dark one: yellow would be lost on white.
  void curves() {
    const double width = isFine_ ? 1.1 : 2;
    block_.text(
        "<g id=\"curves\" fill=\"none\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n");
    for (std::size_t k = 0; k < levels_.size(); ++k) {
      const LevelStrokes& strokes = picture_.levels[k];
      if (strokes.front.empty() && strokes.behind.empty()) continue;
      const std::string colour = colourOf(levels_[k]);
      block_.text("<g data-level=\"{}\">\n", levels_[k]);
      group(strokes.behind, colour, width * 0.6, " stroke-opacity=\"0.3\"");
      group(strokes.front, "#333", width + 1, " stroke-opacity=\"0.75\"");
      group(strokes.front, colour, width, "");
      block_.text("</g>\n");
    }
    block_.text("</g>\n");
  }

  void group(const std::vector<Stroke>& strokes, const std::string& colour, double width,
             const char* more) {
    if (strokes.empty()) return;
    block_.text("<g stroke=\"{}\" stroke-width=\"{:.2f}\"{}>\n", colour, width, more);
    paths(strokes);
    block_.text("</g>\n");
  }

  void paths(const std::vector<Stroke>& strokes) {
    if (strokes.empty()) return;
    block_.text("<path d=\"");
    for (const Stroke& stroke : strokes) path(stroke);
    block_.text("\"/>\n");
  }

  // To a hundredth of a pixel; points that fall together are left out.
  void path(const Stroke& stroke) {
    std::string last;
    char command = 'M';
    for (const PicturePoint& p : stroke.points) {
      std::string place = fmt::format("{:.2f} {:.2f}", p[0], p[1]);
      if (place == last) continue;
      block_.text("{}{}", command, place);
      last = std::move(place);
      command = 'L';
    }
    if (stroke.closed) block_.text("Z");
  }

  void labels() {
    block_.text("<g id=\"labels\" font-size=\"{}\" text-anchor=\"middle\">\n", kLabelSize);
    for (const CurveLabel& label : placeLabels(picture_, texts_)) {
      // Twice, so that the white lies behind the digits in every viewer.
      for (const char* style : {"stroke=\"#fff\" stroke-width=\"4\" stroke-linejoin=\"round\"", ""})
        block_.text(
            "<text transform=\"translate({:.2f} {:.2f}) rotate({:.1f})\" dy=\"0.36em\" {}>{}"
            "</text>\n",
            label.centre[0], label.centre[1], label.degrees, style, label.text);
    }
    block_.text("</g>\n");
  }

  void scale() {
    const double height = std::min(kMostBar, plotHeight());
    const double left = kMargin * 1.75 + picture_.width;
    const double above = kHeading + kMargin / 2 + (plotHeight() - height) / 2;
    block_.text(
        "<g id=\"scale\" font-size=\"12\" transform=\"translate({:.2f} {:.2f})\">\n"
        "<defs><linearGradient id=\"ramp\" x1=\"0\" y1=\"1\" x2=\"0\" y2=\"0\">\n",
        left, above);
    for (int k = 0; k <= kBarStops; ++k) {
      const double t = static_cast<double>(k) / kBarStops;
      block_.text("<stop offset=\"{}\" stop-color=\"{}\"/>\n", t, hex(drawing_.colours.ramp(t)));
    }
    block_.text(
        "</linearGradient></defs>\n<rect width=\"{}\" height=\"{:.2f}\" fill=\"url(#ramp)\"/>\n",
        kBarWidth, height);
    ends(height);
    ticks(height);
    block_.text("</g>\n");
  }

  void ends(double height) {
    const auto& [ramp, low, high, isFixed] = drawing_.colours;
    // Half a thousandth of the bar is less than a pixel.
    const double step = (high - low) / 1000;
    // A range that was given is not the field's: its ends may stand for all that is beyond.
    const char* const top = !isFixed ? "max " : drawing_.range.high > high ? "\u2265 " : "";
    const char* const bottom = !isFixed ? "min " : drawing_.range.low < low ? "\u2264 " : "";
    block_.text(
        "<g fill=\"#595959\"><text y=\"-8\">{}{}{}</text>\n"
        "<text y=\"{:.2f}\">{}{}{}</text></g>\n",
        top, digits(high, step), unit(), height + 18, bottom, digits(low, step), unit());
  }

  void ticks(double height) {
    const std::size_t every = labelEvery(height);
    for (std::size_t k = 0; k < levels_.size(); ++k) {
      if (levels_[k] < drawing_.colours.low || levels_[k] > drawing_.colours.high) continue;
      const double y = height * (1 - part(levels_[k]));
      // On the bar in whichever of black and white stands out.
      block_.text(
          "<path d=\"M0 {0:.2f}H{1}\" stroke=\"{2}\"/><path d=\"M{1} {0:.2f}h5\" "
          "stroke=\"#595959\"/>\n",
          y, kBarWidth, part(levels_[k]) < 0.6 ? "#fff" : "#222");
      if (k % every == 0)
        block_.text("<text x=\"{}\" y=\"{:.2f}\" dy=\"0.36em\">{}</text>\n", kBarWidth + 9, y,
                    texts_[k]);
    }
  }

  /// Labels every so many levels, so that those at the closest levels keep apart.
  std::size_t labelEvery(double height) const {
    for (std::size_t every = 1; every < levels_.size(); ++every) {
      bool isFree = true;
      for (std::size_t k = every; k < levels_.size() && isFree; k += every)
        isFree = height * (part(levels_[k]) - part(levels_[k - every])) >= kLabelPitch;
      if (isFree) return every;
    }
    return std::max<std::size_t>(levels_.size(), 1);
  }

  const CurveDrawing& drawing_;
  const CurvePicture& picture_;
  const std::vector<double>& levels_;
  const std::vector<std::string> texts_;
  bool isFine_;
  TextBlock block_;
};

}  // namespace

void writeCurvesSvg(const CurveDrawing& drawing, OutputFile& file) {
  const CurvePicture picture =
      drawCurves(drawing.mesh, drawing.curves, drawing.projection, kMostWidth, kMostHeight);
  SvgWriter(drawing, picture, file).run();
}

}  // namespace qelm::tool
