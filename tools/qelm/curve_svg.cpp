// The drawing of level curves.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

#include "curve_writer.h"
#include "viridis.h"

namespace qelm::tool {
namespace {

// All in pixels of the drawing.
constexpr double kDrawingSize = 900;  // the longer side of what is drawn
constexpr double kMargin = 40;
constexpr double kLegendWidth = 150;
constexpr double kRowHeight = 22;
constexpr double kSampleLength = 28;
constexpr std::size_t kMostRows = 14;  // of the legend

// The bright end of the ramp cannot be told from white paper: lines stop before it.
constexpr double kBrightest = 0.88;

std::string colourOf(double t) {
  const Colour c = viridis(kBrightest * t);
  return fmt::format("#{:02x}{:02x}{:02x}", c[0], c[1], c[2]);
}

struct Extent {
  double low[2] = {std::numeric_limits<double>::infinity(),
                   std::numeric_limits<double>::infinity()};
  double high[2] = {-low[0], -low[1]};

  void include(const std::array<double, 2>& p) {
    for (std::size_t k = 0; k < 2; ++k) {
      low[k] = std::min(low[k], p[k]);
      high[k] = std::max(high[k], p[k]);
    }
  }
  double size(std::size_t k) const { return high[k] - low[k]; }
};

/// Edges of one triangle.
std::vector<std::pair<int, int>> boundaryEdges(const Mesh& mesh) {
  std::vector<std::pair<int, int>> sides;
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    for (std::size_t k = 0; k < 3; ++k) sides.push_back(std::minmax(c[k], c[(k + 1) % 3]));
  }
  std::sort(sides.begin(), sides.end());
  std::vector<std::pair<int, int>> single;
  for (std::size_t i = 0; i < sides.size();) {
    std::size_t end = i + 1;
    while (end < sides.size() && sides[end] == sides[i]) ++end;
    if (end == i + 1) single.push_back(sides[i]);
    i = end;
  }
  return single;
}

class Drawing {
 public:
  Drawing(const LevelCurves& curves, const Mesh& mesh, const Projection& projection)
      : curves_(curves), mesh_(mesh), projection_(projection) {
    for (int v = 0; v < mesh.vertexCount(); ++v) extent_.include(projection(mesh.point(v)));
    const double longer = std::max(extent_.size(0), extent_.size(1));
    scale_ = longer > 0 ? kDrawingSize / longer : 1;
  }

  std::string text() {
    add("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 {0:.0f} {1:.0f}\" "
        "width=\"{0:.0f}\" "
        "height=\"{1:.0f}\">\n",
        width() + kLegendWidth, height());
    add("<title>Level curves</title>\n<desc>{} levels, {} curves</desc>\n", curves_.levels().size(),
        curves_.count());
    add("<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n");
    drawBoundary();
    drawCurves();
    drawLegend();
    add("</svg>\n");
    return std::move(text_);
  }

 private:
  template <class... Arguments>
  void add(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::format_to(std::back_inserter(text_), format, std::forward<Arguments>(arguments)...);
  }

  double width() const { return 2 * kMargin + scale_ * extent_.size(0); }
  double height() const {
    return std::max(2 * kMargin + scale_ * extent_.size(1),
                    2 * kMargin + kRowHeight * static_cast<double>(legendLevels().size()));
  }

  void addPoint(char command, const Point& p) {
    const auto at = projection_(p);
    add("{}{:.2f} {:.2f}", command, kMargin + scale_ * (at[0] - extent_.low[0]),
        kMargin + scale_ * (extent_.high[1] - at[1]));
  }

  void drawBoundary() {
    add("<path fill=\"none\" stroke=\"#9aa0a6\" stroke-width=\"1.2\" stroke-linecap=\"round\" "
        "d=\"");
    for (const auto& [a, b] : boundaryEdges(mesh_)) {
      addPoint('M', mesh_.point(a));
      addPoint('L', mesh_.point(b));
    }
    add("\"/>\n");
  }

  /// Where a level lies between the lowest and the highest one: 0 to 1.
  double place(double level) const {
    const auto [low, high] = std::minmax_element(curves_.levels().begin(), curves_.levels().end());
    return *high > *low ? (level - *low) / (*high - *low) : 0.5;
  }

  void drawCurves() {
    add("<g fill=\"none\" stroke-width=\"2\" stroke-linejoin=\"round\" "
        "stroke-linecap=\"round\">\n");
    for (std::size_t k = 0; k < curves_.count(); ++k) {
      const Curve curve = curves_[k];
      const double value = curves_.levels()[curve.level];
      add("<path stroke=\"{}\" data-level=\"{}\" d=\"", colourOf(place(value)), value);
      for (std::size_t p = 0; p < curve.pointCount(); ++p)
        addPoint(p == 0 ? 'M' : 'L', curve.point(p));
      add("{}\"/>\n", curve.closed ? "Z" : "");
    }
    add("</g>\n");
  }

  /// From high to low; of many, evenly chosen ones with both ends.
  std::vector<double> legendLevels() const {
    std::vector<double> levels(curves_.levels().begin(), curves_.levels().end());
    std::sort(levels.rbegin(), levels.rend());
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
    if (levels.size() <= kMostRows) return levels;
    std::vector<double> chosen;
    for (std::size_t k = 0; k < kMostRows; ++k)
      chosen.push_back(levels[k * (levels.size() - 1) / (kMostRows - 1)]);
    return chosen;
  }

  void drawLegend() {
    const double x = width();
    double y = kMargin + kRowHeight / 2;
    add("<g font-family=\"Helvetica, Arial, sans-serif\" font-size=\"14\" fill=\"#202124\" "
        "stroke-width=\"3\" stroke-linecap=\"round\">\n");
    for (const double level : legendLevels()) {
      add("<path stroke=\"{}\" d=\"M{:.1f} {:.1f}h{:.1f}\"/>", colourOf(place(level)), x, y,
          kSampleLength);
      add("<text x=\"{:.1f}\" y=\"{:.1f}\">{:.4g}</text>\n", x + kSampleLength + 10, y + 5, level);
      y += kRowHeight;
    }
    add("</g>\n");
  }

  const LevelCurves& curves_;
  const Mesh& mesh_;
  const Projection& projection_;
  Extent extent_;
  double scale_ = 1;
  std::string text_;
};

}  // namespace

void writeCurvesSvg(const LevelCurves& curves, const Mesh& mesh, const Projection& projection,
                    OutputFile& file) {
  file.write(Drawing(curves, mesh, projection).text());
}

}  // namespace qelm::tool
