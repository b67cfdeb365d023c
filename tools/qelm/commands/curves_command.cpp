#include "commands/curves_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

#include "curves/curve_distances.h"
#include "curves/curve_files.h"
#include "curves/curve_set.h"
#include "curves/curve_svg.h"
#include "curves/field_levels.h"
#include "curves/projection.h"
#include "curves/simplify.h"
#include "curves/upright.h"
#include "fields/field_range.h"
#include "files/output_file.h"
#include "files/paths.h"
#include "mesh/used_part.h"
#include "mesh_files/load_mesh.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

enum class CurveFormat { kObj, kJson, kSvg, kCsv };

struct Target {
  std::string name;
  CurveFormat format;
  std::unique_ptr<OutputFile> file;
};

CurveFormat formatOf(const std::string& name, const std::string& wanted) {
  if (name == "-" && wanted.empty()) return CurveFormat::kCsv;
  const std::string extension = wanted.empty()
                                    ? promisedFormat(name, {".obj", ".json", ".svg", ".csv"},
                                                     "'curves' writes .obj, .json, .csv and .svg")
                                    : "." + wanted;
  if (extension == ".obj") return CurveFormat::kObj;
  if (extension == ".json") return CurveFormat::kJson;
  if (extension == ".svg") return CurveFormat::kSvg;
  if (extension == ".csv") return CurveFormat::kCsv;
  throw UsageError(fmt::format(
      "-o {}: give a name that ends in .obj, .json, .svg or .csv, or --format obj and so on",
      name));
}

/// Opened before anything is computed.
std::vector<Target> openTargets(const CurvesOptions& options, const OutputOptions& output) {
  std::vector<Target> targets;
  for (const std::string& name : options.outputs) {
    if (output.json && name == "-")
      throw UsageError("the standard output takes the curves (-o -) or --json, not both");
    const auto isSame = [&name](const Target& target) { return target.name == name; };
    if (std::any_of(targets.begin(), targets.end(), isSame))
      throw UsageError(fmt::format("-o {}: given twice", name));
    targets.push_back({name, formatOf(name, options.format), nullptr});
  }
  for (Target& target : targets)
    target.file = std::make_unique<OutputFile>(target.name, output.inputs);
  return targets;
}

void write(Target& target, const SolvedField& solved, const Mesh& shown, const CurveSet& curves,
           const Projection& projection, const ColourScale& colours, const Caption& caption) {
  OutputFile& file = *target.file;
  if (target.format == CurveFormat::kObj) writeCurvesObj(curves, file);
  if (target.format == CurveFormat::kJson) writeCurvesJson(curves, solved.meshName, file);
  if (target.format == CurveFormat::kCsv) writeCurvesCsv(curves, file);
  if (target.format == CurveFormat::kSvg)
    writeCurvesSvg({shown, curves, projection, rangeOf(solved.fields), colours, caption}, file);
}

/// For the summary, such as "9 (3 closed, 6 open) with 5236 points, at 9 levels".
ReportItem report(const CurveSet& curves) {
  const std::vector<double>& levels = curves.levels();
  std::size_t closed = 0;
  for (std::size_t c = 0; c < curves.size(); ++c) closed += curves[c].closed ? 1 : 0;
  return {"curves",
          fmt::format("{} ({} closed, {} open) with {} points, at {} level{}, {} to {}",
                      curves.size(), closed, curves.size() - closed, curves.pointCount(),
                      levels.size(), levels.size() == 1 ? "" : "s", levels.front(), levels.back()),
          {{"levels", levels},
           {"curves", curves.size()},
           {"closedCurves", closed},
           {"points", curves.pointCount()}}};
}

/// 0 of an empty text.
double parsedTolerance(const std::string& text) {
  if (text.empty()) return 0;
  const auto tolerance = parseDouble(trimmed(text));
  if (!tolerance || !std::isfinite(*tolerance) || *tolerance <= 0)
    throw UsageError(fmt::format("--simplify {}: a distance larger than 0 is needed", text));
  return *tolerance;
}

/// How even the curves of --spacing are.
ReportItem spacingReport(const CurveSet& curves, double spacing) {
  constexpr double kStepsToASpacing = 8;
  const auto distances = distancesBetween(curves, spacing / kStepsToASpacing);
  if (!distances) return {"spacing", "one level only", {{"spacing", nullptr}}};
  const auto& [smallest, largest] = *distances;
  const std::string low = digits(smallest, smallest / 1000);
  const std::string high = digits(largest, largest / 1000);
  return {"spacing",
          fmt::format("neighbouring curves are {} apart",
                      low == high ? low : fmt::format("{} to {}", low, high)),
          {{"spacing", {{"smallest", smallest}, {"largest", largest}}}}};
}

}  // namespace

void runCurves(const CurvesOptions& options, const OutputOptions& output) {
  const Console console(output);
  const double tolerance = parsedTolerance(options.simplify);
  const LevelChoice choice(options.levels);
  const ViewChoice view = parseView(options.picture.view);
  const std::optional<std::size_t> up = parseUp(options.picture.up);
  const ColourChoice colours(options.picture.colours);
  std::vector<Target> targets = openTargets(options, output);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "cut");
  const std::vector<double> levels = levelsOf(choice, solved, console);
  CurveSet curves =
      solved.steps.run("cut", [&] { return CurveSet(*solved.system, solved.field(), levels); });
  const std::size_t pointsBefore = curves.pointCount();
  if (tolerance > 0)
    curves = solved.steps.run("simplify", [&] { return simplify(curves, tolerance); });
  const ColourScale scale = colours.scaleFor(rangeOf(solved.fields), console);
  Caption caption = options.picture.caption;
  if (caption.title.empty()) caption.title = toUtf8(toPath(solved.meshName).filename());
  std::vector<std::string> results;
  solved.steps.run("write", [&] {
    const Mesh shown = usedPart(solved.mesh).mesh;
    const Projection projection = projectionFor(view, shown, upAxis(up, solved.meshName, shown));
    for (Target& target : targets) write(target, solved, shown, curves, projection, scale, caption);
    std::vector<OutputFile*> files;
    for (const Target& target : targets) files.push_back(target.file.get());
    commitTogether(files);
  });
  for (const Target& target : targets)
    results.push_back(target.name == "-" ? "standard output" : target.name);
  std::vector<ReportItem> reports = {report(curves)};
  if (tolerance > 0)
    reports.push_back(
        {"simplify",
         fmt::format("{} of {} points left out", pointsBefore - curves.pointCount(), pointsBefore),
         {{"pointsBefore", pointsBefore}}});
  if (choice.spacing() > 0) reports.push_back(spacingReport(curves, choice.spacing()));
  reportField(solved, results, output, console, reports);
}

}  // namespace qelm::tool
