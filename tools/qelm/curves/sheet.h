// --scale and --paper: a drawing in true lengths.
#ifndef QELM_TOOLS_SHEET_H
#define QELM_TOOLS_SHEET_H

#include <optional>
#include <string>

namespace qelm::tool {

/// As on the command line; empty: not given.
struct SheetOptions {
  std::string scale;     ///< "1:50", "2:1"
  std::string paper;     ///< "A4" and so on, or "WIDTH,HEIGHT" in millimetres
  std::string meshUnit;  ///< mm, cm, m, in or ft; or --unit, if it is one of these
};

/// A page and what a length of the mesh is on it.
struct Sheet {
  double width, height;  ///< in millimetres
  double millimetres;    ///< on paper, for a unit of the mesh
  std::string scale;     ///< "1:50"
  std::string meshUnit;  ///< "mm"
};

/// What is to be on it, in units of the mesh, and what stands round that, in millimetres.
struct SheetContent {
  double width, height;
  double besideWidth, besideHeight;
};

class SheetChoice {
 public:
  /// Of options of which scale or paper is given. Throws UsageError that quotes what is wrong.
  SheetChoice(const SheetOptions& options, const std::string& valueUnit);

  /// Without a paper the smallest of A4 to A0 on which the drawing fits at the scale, or as large a
  /// page as it takes; without a scale the largest of 1, 2 or 5 times a power of ten that fits on
  /// the paper. Pages lie or stand as they fit best, unless their sides were given. Throws
  /// RequestError where the drawing does not fit.
  Sheet sheetFor(const SheetContent& content) const;

 private:
  struct Paper {
    double width, height;
    bool mayTurn;
  };
  Sheet sheet(const Paper& paper, double scale) const;
  std::optional<Paper> fitting(const Paper& paper, const SheetContent& content, double scale) const;

  double unit_;  ///< millimetres
  std::string meshUnit_;
  std::optional<double> scale_;  ///< paper's length by the true one
  std::optional<Paper> paper_;
};

/// Whether one of them is given.
inline bool isToScale(const SheetOptions& options) {
  return !options.scale.empty() || !options.paper.empty();
}

}  // namespace qelm::tool

#endif
