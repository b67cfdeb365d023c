#include "curve_writer.h"

#include <fmt/format.h>

#include <iterator>

#include "error.h"
#include "paths.h"

namespace qelm::tool {
namespace {

/// Collects text and hands it on in blocks.
class Text {
 public:
  explicit Text(OutputFile& file) : file_(file) {}
  ~Text() = default;

  template <class... Arguments>
  void add(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::format_to(std::back_inserter(block_), format, std::forward<Arguments>(arguments)...);
    if (block_.size() >= kBlock) flush();
  }
  void flush() {
    file_.write({block_.data(), block_.size()});
    block_.clear();
  }

 private:
  static constexpr std::size_t kBlock = 1 << 16;
  OutputFile& file_;
  fmt::memory_buffer block_;
};

}  // namespace

CurveFormat curveFormat(const std::string& output, const std::optional<std::string>& name) {
  const std::string word = name ? "." + *name : lowerExtension(toPath(output));
  if (word == ".obj") return CurveFormat::obj;
  if (word == ".json") return CurveFormat::json;
  if (word == ".svg") return CurveFormat::svg;
  if (word == ".csv") return CurveFormat::csv;
  if (output == "-") throw UsageError("-o - needs --format obj, json, svg or csv");
  throw UsageError(
      fmt::format("-o {}: name a file that ends in .obj, .json, .svg or .csv, or give "
                  "--format",
                  output));
}

void writeCurvesObj(const LevelCurves& curves, OutputFile& file) {
  Text text(file);
  text.add("# level curves\n");
  std::size_t next = 1;
  for (std::size_t k = 0; k < curves.count(); ++k) {
    const Curve curve = curves[k];
    if (k == 0 || curves[k - 1].level != curve.level)
      text.add("g level_{}\n# value {}\n", curve.level, curves.levels()[curve.level]);
    for (std::size_t p = 0; p < curve.pointCount(); ++p) {
      const Point at = curve.point(p);
      text.add("v {} {} {}\n", at[0], at[1], at[2]);
    }
    text.add("l");
    for (std::size_t p = 0; p < curve.pointCount(); ++p) text.add(" {}", next + p);
    if (curve.closed) text.add(" {}", next);
    text.add("\n");
    next += curve.pointCount();
  }
  text.flush();
}

void writeCurvesJson(const LevelCurves& curves, OutputFile& file) {
  Text text(file);
  text.add("{{\"levels\": [");
  for (std::size_t k = 0; k < curves.levels().size(); ++k)
    text.add("{}{}", k == 0 ? "" : ", ", curves.levels()[k]);
  text.add("],\n \"curves\": [");
  for (std::size_t k = 0; k < curves.count(); ++k) {
    const Curve curve = curves[k];
    text.add("{}\n  {{\"level\": {}, \"value\": {}, \"closed\": {}, \"points\": [",
             k == 0 ? "" : ",", curve.level, curves.levels()[curve.level], curve.closed);
    for (std::size_t p = 0; p < curve.pointCount(); ++p) {
      const Point at = curve.point(p);
      text.add("{}[{}, {}, {}]", p == 0 ? "" : ", ", at[0], at[1], at[2]);
    }
    text.add("]}}");
  }
  text.add("{}]}}\n", curves.count() == 0 ? "" : "\n ");
  text.flush();
}

void writeCurvesCsv(const LevelCurves& curves, OutputFile& file) {
  Text text(file);
  text.add("curve,level,value,closed,x,y,z\n");
  for (std::size_t k = 0; k < curves.count(); ++k) {
    const Curve curve = curves[k];
    for (std::size_t p = 0; p < curve.pointCount(); ++p) {
      const Point at = curve.point(p);
      text.add("{},{},{},{},{},{},{}\n", k, curve.level, curves.levels()[curve.level],
               curve.closed ? 1 : 0, at[0], at[1], at[2]);
    }
  }
  text.flush();
}

}  // namespace qelm::tool
