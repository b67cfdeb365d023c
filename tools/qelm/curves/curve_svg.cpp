#include "curves/curve_svg.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "curves/curve_labels.h"
#include "curves/curve_picture.h"
#include "curves/svg_scales.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

// The page, in pixels: a heading, the curves, and a scale of colours for each field at the right;
// on a sheet a bar of lengths below them.
constexpr double kMargin = 40;
constexpr double kHeading = 58;
constexpr double kScaleColumn = 100;
constexpr double kFooter = 30;
constexpr double kMostWidth = 1000;
constexpr double kMostHeight = 760;
constexpr double kLeastHeight = 220;
constexpr double kMostBar = 360;
constexpr double kFieldName = 56;  // above a bar, where there are several

constexpr double kPixelsToMillimetre = 96 / 25.4;  // as CSS has it

// More levels than this are drawn with finer lines.
constexpr std::size_t kManyLevels = 24;

// The lines of the first field, the second and so on.
constexpr std::array<const char*, 4> kDashes = {
    "", " stroke-dasharray=\"8 5\"", " stroke-dasharray=\"2 5\"", " stroke-dasharray=\"12 4 2 4\""};

double columnsOf(const CurveDrawing& drawing) {
  return kScaleColumn * static_cast<double>(drawing.fields.size());
}

std::optional<Sheet> sheetOf(const CurveDrawing& drawing) {
  if (!drawing.sheet) return {};
  const auto [width, height] = extentOf(drawing.mesh, drawing.projection);
  return drawing.sheet->sheetFor({width, height,
                                  (2 * kMargin + columnsOf(drawing)) / kPixelsToMillimetre,
                                  (kHeading + 1.5 * kMargin + kFooter) / kPixelsToMillimetre});
}

PictureFrame frameOf(const std::optional<Sheet>& sheet) {
  return {kMostWidth, kMostHeight, sheet ? sheet->millimetres * kPixelsToMillimetre : 0};
}

class SvgWriter {
 public:
  SvgWriter(const CurveDrawing& drawing, const std::optional<Sheet>& sheet,
            const CurvePicture& picture, ByteSink& file)
      : drawing_(drawing), sheet_(sheet), picture_(picture), block_(file) {
    for (const FieldCurves& field : drawing.fields) {
      levelCount_ += field.curves.levels().size();
      texts_.push_back(levelTexts(field.curves.levels(), field.colours.high - field.colours.low));
    }
  }

  void run() {
    open();
    heading();
    block_.text("<g transform=\"translate({:.2f} {:.2f})\">\n",
                kMargin + (plotWidth() - picture_.width) / 2,
                kHeading + kMargin / 2 + (plotHeight() - picture_.height) / 2);
    outline();
    curves();
    labels();
    block_.text("</g>\n");
    for (std::size_t k = 0; k < drawing_.fields.size(); ++k) scale(k);
    if (sheet_)
      writeLengthBar(*sheet_, kPixelsToMillimetre, kMargin, pageHeight() - kMargin * 0.75, block_);
    block_.text("</svg>\n");
    block_.flush();
  }

 private:
  bool hasSeveral() const { return drawing_.fields.size() > 1; }
  double beside() const { return 2 * kMargin + columnsOf(drawing_); }
  double around() const { return kHeading + 1.5 * kMargin + (sheet_ ? kFooter : 0); }
  double plotWidth() const {
    return sheet_ ? sheet_->width * kPixelsToMillimetre - beside() : picture_.width;
  }
  double plotHeight() const {
    return sheet_ ? sheet_->height * kPixelsToMillimetre - around()
                  : std::max(picture_.height, kLeastHeight);
  }
  double pageWidth() const { return plotWidth() + beside(); }
  double pageHeight() const { return plotHeight() + around(); }

  /// Of a sheet to a hundredth of a pixel: lengths are to be measured.
  void open() {
    const std::string size =
        sheet_ ? fmt::format("width=\"{0}mm\" height=\"{1}mm\" viewBox=\"0 0 {2:.4f} {3:.4f}\"",
                             sheet_->width, sheet_->height, pageWidth(), pageHeight())
               : fmt::format("width=\"{0:.0f}\" height=\"{1:.0f}\" viewBox=\"0 0 {0:.0f} {1:.0f}\"",
                             pageWidth(), pageHeight());
    block_.text(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" {} font-family=\"Helvetica, Arial, 'Liberation "
        "Sans', sans-serif\" fill=\"#222\">\n<title>{}</title>\n"
        "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n",
        size, xmlText(drawing_.caption.title));
  }

  void heading() {
    block_.text(
        "<text x=\"{0:.0f}\" y=\"36\" font-size=\"18\" font-weight=\"bold\">{1}</text>\n"
        "<text x=\"{0:.0f}\" y=\"56\" font-size=\"12\" fill=\"#595959\">{2}, {3}{4}</text>\n",
        kMargin, xmlText(drawing_.caption.title), contents(), drawing_.projection.description,
        sheet_ ? fmt::format(", scale {}", sheet_->scale) : "");
  }

  /// "12 level curves at 9 levels, 0.1 to 0.9 kN".
  std::string contents() const {
    std::size_t count = 0;
    for (const FieldCurves& field : drawing_.fields) count += field.curves.size();
    std::string text = fmt::format("{} level curve{}", count, count == 1 ? "" : "s");
    const std::string unit = xmlText(drawing_.caption.unitAfter());
    if (hasSeveral())
      text += fmt::format(" of {} fields", drawing_.fields.size());
    else if (levelCount_ > 1)
      text += fmt::format(" at {} levels, {} to {}{}", levelCount_, texts_[0].front(),
                          texts_[0].back(), unit);
    else if (levelCount_ == 1)
      text += " at " + texts_[0].front() + unit;
    return text;
  }

  void outline() {
    block_.text(
        "<g id=\"outline\" fill=\"none\" stroke=\"#8c8c8c\" stroke-width=\"1\" "
        "stroke-linecap=\"round\" stroke-linejoin=\"round\">\n");
    paths(picture_.outline);
    block_.text("</g>\n");
  }

  void curves() {
    block_.text(
        "<g id=\"curves\" fill=\"none\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n");
    for (std::size_t k = 0; k < drawing_.fields.size(); ++k) {
      if (hasSeveral())
        block_.text("<g data-field=\"{}\"{}>\n", quoted(drawing_.fields[k].name), dashes(k));
      field(drawing_.fields[k], picture_.fields[k]);
      if (hasSeveral()) block_.text("</g>\n");
    }
    block_.text("</g>\n");
  }

  static const char* dashes(std::size_t field) { return kDashes[field % kDashes.size()]; }

  static std::string quoted(const std::string& name) {
    std::string text = xmlText(name);
    for (std::size_t at = text.find('"'); at != text.npos; at = text.find('"', at))
      text.replace(at, 1, "&quot;");
    return text;
  }

  // Every line lies on a wider dark one: yellow would be lost on white.
  void field(const FieldCurves& field, const std::vector<LevelStrokes>& drawn) {
    const double width = levelCount_ > kManyLevels ? 1.1 : 2;
    const std::vector<double>& levels = field.curves.levels();
    for (std::size_t k = 0; k < levels.size(); ++k) {
      const LevelStrokes& strokes = drawn[k];
      if (strokes.front.empty() && strokes.behind.empty()) continue;
      const std::string colour = hex(field.colours(levels[k]));
      block_.text("<g data-level=\"{}\">\n", levels[k]);
      group(strokes.behind, colour, width * 0.6, " stroke-opacity=\"0.3\"");
      group(strokes.front, "#333", width + 1, " stroke-opacity=\"0.75\"");
      group(strokes.front, colour, width, "");
      block_.text("</g>\n");
    }
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
      std::string coordinates = fmt::format("{:.2f} {:.2f}", p[0], p[1]);
      if (coordinates == last) continue;
      block_.text("{}{}", command, coordinates);
      last = std::move(coordinates);
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

  void scale(std::size_t k) {
    const double name = hasSeveral() ? kFieldName : 0;
    const double height = std::min(kMostBar, plotHeight() - name);
    const double left = kMargin * 1.75 + plotWidth() + kScaleColumn * static_cast<double>(k);
    const double top = kHeading + kMargin / 2 + name + (plotHeight() - name - height) / 2;
    writeColourScale(drawing_.fields[k], texts_[k], drawing_.caption, k, dashes(k),
                     {left, top, height}, block_);
  }

  const CurveDrawing& drawing_;
  const std::optional<Sheet>& sheet_;
  const CurvePicture& picture_;
  std::vector<std::vector<std::string>> texts_;  ///< of each field's levels
  std::size_t levelCount_ = 0;
  TextBlock block_;
};

}  // namespace

void writeCurvesSvg(const CurveDrawing& drawing, ByteSink& file) {
  const std::optional<Sheet> sheet = sheetOf(drawing);
  const CurvePicture picture =
      drawCurves(drawing.mesh, drawing.fields, drawing.projection, frameOf(sheet));
  SvgWriter(drawing, sheet, picture, file).run();
}

}  // namespace qelm::tool
