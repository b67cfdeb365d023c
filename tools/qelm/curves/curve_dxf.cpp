#include "curves/curve_dxf.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "mesh/box.h"
#include "mesh/vec3.h"
#include "text/text_block.h"

namespace qelm::tool {
namespace {

// Letters of that part of the diagonal can be read where all of the drawing fits a screen.
constexpr double kTextPart = 0.008;

// AutoCAD's colours by number: 170 is blue, then through cyan and green to yellow, 50.
constexpr int kBlue = 170;
constexpr int kYellow = 50;
constexpr int kHueStep = 10;

// Flags of POLYLINE and VERTEX.
constexpr int kClosed = 1;
constexpr int kPolyline3d = 8;
constexpr int kVertex3d = 32;

Box boxOf(std::span<const FieldCurves> fields) {
  Box box;
  for (const FieldCurves& field : fields)
    for (std::size_t c = 0; c < field.curves.size(); ++c) {
      const Curve curve = field.curves[c];
      for (std::size_t k = 0; k < curve.size(); ++k) box.add(curve.point(k));
    }
  if (box.low[0] > box.high[0]) box = {{0, 0, 0}, {0, 0, 0}};
  return box;
}

/// `field` is "" of a single one, else such as "FIELD1_".
std::string layerOf(const std::string& field, double level) {
  std::string name = fmt::format("{}LEVEL_{}", field, level);
  std::erase(name, '+');
  for (char& c : name) c = c == '.' ? 'P' : c == 'e' ? 'E' : c;
  return name;
}

int colourOf(std::size_t level, std::size_t count) {
  if (count < 2) return kBlue;
  const double part = static_cast<double>(level) / static_cast<double>(count - 1);
  return kBlue - kHueStep * static_cast<int>(std::lround(part * (kBlue - kYellow) / kHueStep));
}

class DxfWriter {
 public:
  DxfWriter(std::span<const FieldCurves> fields, ByteSink& file)
      : fields_(fields), box_(boxOf(fields)), block_(file) {}

  void run() {
    header();
    tables();
    block_.text("0\nSECTION\n2\nENTITIES\n");
    const double height = kTextPart * length(box_.size());
    for (std::size_t f = 0; f < fields_.size(); ++f) {
      const CurveSet& curves = fields_[f].curves;
      for (std::size_t c = 0; c < curves.size(); ++c) {
        const Curve curve = curves[c];
        const double level = curves.levels()[curve.level];
        const std::string layer = layerOf(fieldPart(f), level);
        polyline(curve, layer);
        if (height > 0)
          block_.text("0\nTEXT\n8\n{}\n{}40\n{}\n1\n{}\n", layer,
                      coordinates(curve.point(curve.size() / 2)), height, level);
      }
    }
    block_.text("0\nENDSEC\n0\nEOF\n");
    block_.flush();
  }

 private:
  std::string fieldPart(std::size_t f) const {
    return fields_.size() > 1 ? fmt::format("FIELD{}_", f) : "";
  }

  static std::string coordinates(const Point& p, int first = 10) {
    return fmt::format("{}\n{}\n{}\n{}\n{}\n{}\n", first, p[0], first + 10, p[1], first + 20, p[2]);
  }

  void header() {
    block_.text(
        "999\nlevel curves written by qelm\n0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n");
    block_.text("9\n$EXTMIN\n{}9\n$EXTMAX\n{}", coordinates(box_.low), coordinates(box_.high));
    block_.text("0\nENDSEC\n");
  }

  void tables() {
    std::size_t count = 1;
    for (const FieldCurves& field : fields_) count += field.curves.levels().size();
    block_.text(
        "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLTYPE\n70\n1\n0\nLTYPE\n2\nCONTINUOUS\n70\n0\n3\n"
        "Solid line\n72\n65\n73\n0\n40\n0\n0\nENDTAB\n");
    block_.text("0\nTABLE\n2\nLAYER\n70\n{}\n", count);
    layer("0", 7);
    for (std::size_t f = 0; f < fields_.size(); ++f) {
      const std::vector<double>& levels = fields_[f].curves.levels();
      for (std::size_t k = 0; k < levels.size(); ++k)
        layer(layerOf(fieldPart(f), levels[k]), colourOf(k, levels.size()));
    }
    block_.text("0\nENDTAB\n0\nENDSEC\n");
  }

  void layer(const std::string& name, int colour) {
    block_.text("0\nLAYER\n2\n{}\n70\n0\n62\n{}\n6\nCONTINUOUS\n", name, colour);
  }

  void polyline(const Curve& curve, const std::string& layer) {
    block_.text("0\nPOLYLINE\n8\n{}\n66\n1\n10\n0\n20\n0\n30\n0\n70\n{}\n", layer,
                kPolyline3d | (curve.closed ? kClosed : 0));
    for (std::size_t k = 0; k < curve.size(); ++k) {
      const Point p = curve.point(k);
      block_.text("0\nVERTEX\n8\n{}\n10\n{}\n20\n{}\n30\n{}\n70\n{}\n", layer, p[0], p[1], p[2],
                  kVertex3d);
    }
    block_.text("0\nSEQEND\n8\n{}\n", layer);
  }

  std::span<const FieldCurves> fields_;
  Box box_;
  TextBlock block_;
};

}  // namespace

void writeCurvesDxf(std::span<const FieldCurves> fields, ByteSink& file) {
  DxfWriter(fields, file).run();
}

}  // namespace qelm::tool
