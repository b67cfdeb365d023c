#include "curves_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "curve_writer.h"
#include "error.h"
#include "level_curves.h"
#include "output_file.h"
#include "paths.h"
#include "text.h"

namespace qelm::tool {
namespace {

constexpr long long kMostLevels = 100000;

struct Range {
  double low, high;
};

Range rangeOf(const SolvedField& solved) {
  const auto [low, high] = std::minmax_element(solved.fields.begin(), solved.fields.end());
  return {*low, *high};
}

int parsedCount(const std::string& text) {
  const auto count = parseInteger(trimmed(text));
  if (!count || *count < 1 || *count > kMostLevels)
    throw UsageError(
        fmt::format("--levels {}: a whole number from 1 to {} is needed", text, kMostLevels));
  return static_cast<int>(*count);
}

/// Which levels, once the field's range is known. Read before that, so that a wrong
/// command line is refused before a long solve.
class Levels {
 public:
  explicit Levels(const CurvesOptions& options) {
    if (options.levels.has_value() == options.at.has_value())
      throw UsageError("give either --levels N or --at VALUE,VALUE,...");
    if (options.at) values_ = parseLevels(*options.at);
    if (options.levels) count_ = parsedCount(*options.levels);
  }

  std::vector<double> in(const Range& range) const {
    return count_ > 0 ? evenLevels(range.low, range.high, count_) : values_;
  }

  bool areGiven() const { return count_ == 0; }

 private:
  std::vector<double> values_;
  int count_ = 0;
};

/// A level without any curve is no error, but seldom meant.
void noteLevelsOutside(const std::vector<double>& levels, const Range& range,
                       const Console& console) {
  for (const double level : levels)
    if (!(range.low < level && level <= range.high))
      console.note(fmt::format("no curves at {:.6g}: the field goes from {:.6g} to {:.6g}", level,
                               range.low, range.high));
}

void write(const LevelCurves& curves, const SolvedField& solved, const Projection& projection,
           CurveFormat format, OutputFile& file) {
  switch (format) {
    case CurveFormat::obj:
      writeCurvesObj(curves, file);
      break;
    case CurveFormat::json:
      writeCurvesJson(curves, file);
      break;
    case CurveFormat::csv:
      writeCurvesCsv(curves, file);
      break;
    case CurveFormat::svg:
      writeCurvesSvg(curves, solved.mesh, projection, file);
      break;
  }
  file.commit();
}

struct Counts {
  std::size_t curves = 0;
  std::size_t closed = 0;
  std::size_t points = 0;
};

Counts countsOf(const LevelCurves& curves) {
  Counts counts;
  for (std::size_t k = 0; k < curves.count(); ++k) {
    ++counts.curves;
    counts.closed += curves[k].closed ? 1 : 0;
    counts.points += curves[k].pointCount();
  }
  return counts;
}

void report(const SolvedField& solved, const LevelCurves& curves,
            const std::vector<std::string>& results, const OutputOptions& output,
            const Console& console) {
  const Counts counts = countsOf(curves);
  if (output.json) {
    nlohmann::ordered_json summary = summaryJson(solved, results);
    summary["levels"] = curves.levels();
    summary["curves"] = counts.curves;
    summary["closedCurves"] = counts.closed;
    summary["points"] = counts.points;
    printJson(summary);
    return;
  }
  console.line(fmt::format("curves   {} at {} levels, {} of them closed; {} points", counts.curves,
                           curves.levels().size(), counts.closed, counts.points));
  reportField(solved, results, output, console);
}

}  // namespace

void runCurves(const CurvesOptions& options, const OutputOptions& output) {
  if (output.json && options.output == "-")
    throw UsageError("the standard output takes the curves (-o -) or --json, not both");
  const Console console(output.quiet);
  const CurveFormat format = curveFormat(options.output, options.format);
  const Levels levels(options);
  refuseToOverwrite(options.field.mesh, toPath(options.output));
  OutputFile file(options.output);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "cut");
  const Projection projection = projectionOf(options.view, solved.mesh);
  const Range range = rangeOf(solved);
  const LevelCurves curves = solved.steps.run(
      "cut", [&] { return LevelCurves(*solved.system, solved.field(), levels.in(range)); });
  if (levels.areGiven()) noteLevelsOutside(levels.in(range), range, console);
  solved.steps.run("write", [&] { write(curves, solved, projection, format, file); });
  report(solved, curves, {options.output == "-" ? "standard output" : options.output}, output,
         console);
}

}  // namespace qelm::tool
