#include "commands/curves_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "curves/curve_distances.h"
#include "curves/curve_dxf.h"
#include "curves/curve_files.h"
#include "curves/curve_gltf.h"
#include "curves/curve_set.h"
#include "curves/curve_svg.h"
#include "curves/curve_vtp.h"
#include "curves/field_curves.h"
#include "curves/field_levels.h"
#include "curves/projection.h"
#include "curves/simplify.h"
#include "curves/upright.h"
#include "fields/field_range.h"
#include "fields/field_report.h"
#include "files/output_file.h"
#include "files/paths.h"
#include "mesh/used_part.h"
#include "mesh_files/load_mesh.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

enum class CurveFormat { kObj, kJson, kSvg, kCsv, kDxf, kVtp, kGlb, kGltf };

constexpr std::array<std::pair<std::string_view, CurveFormat>, 8> kFormats = {{
    {".obj", CurveFormat::kObj},
    {".json", CurveFormat::kJson},
    {".csv", CurveFormat::kCsv},
    {".svg", CurveFormat::kSvg},
    {".dxf", CurveFormat::kDxf},
    {".vtp", CurveFormat::kVtp},
    {".glb", CurveFormat::kGlb},
    {".gltf", CurveFormat::kGltf},
}};
constexpr const char* kFormatNames = ".obj, .json, .csv, .svg, .dxf, .vtp, .glb or .gltf";

struct Target {
  std::string name;
  CurveFormat format;
  std::unique_ptr<OutputFile> file;
};

CurveFormat formatOf(const std::string& name, const std::string& wanted) {
  if (name == "-" && wanted.empty()) return CurveFormat::kCsv;
  std::vector<std::string_view> extensions;
  for (const auto& format : kFormats) extensions.push_back(format.first);
  const std::string extension =
      wanted.empty()
          ? promisedFormat(name, extensions, fmt::format("'curves' writes {}", kFormatNames))
          : "." + wanted;
  for (const auto& format : kFormats)
    if (format.first == extension) return format.second;
  throw UsageError(fmt::format("-o {}: give a name that ends in {}, or --format obj and so on",
                               name, kFormatNames));
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

/// What the writers take besides the curves.
struct Look {
  const Mesh& mesh;
  const Projection& projection;
  std::size_t up;  ///< axis
  const Caption& caption;
  const std::optional<SheetChoice>& sheet;
};

void write(Target& target, const std::string& meshName, std::span<const FieldCurves> fields,
           const Look& look) {
  OutputFile& file = *target.file;
  switch (target.format) {
    case CurveFormat::kObj:
      return writeCurvesObj(fields, file);
    case CurveFormat::kJson:
      return writeCurvesJson(fields, meshName, file);
    case CurveFormat::kCsv:
      return writeCurvesCsv(fields, file);
    case CurveFormat::kSvg:
      return writeCurvesSvg({look.mesh, fields, look.projection, look.caption, look.sheet}, file);
    case CurveFormat::kDxf:
      return writeCurvesDxf(fields, file);
    case CurveFormat::kVtp:
      return writeCurvesVtp(fields, file);
    case CurveFormat::kGlb:
    case CurveFormat::kGltf:
      return writeCurvesGltf(fields, look.up, target.format == CurveFormat::kGlb, file);
  }
}

/// 0 of an empty text.
double parsedTolerance(const std::string& text) {
  if (text.empty()) return 0;
  const auto tolerance = parseDouble(trimmed(text));
  if (!tolerance || !std::isfinite(*tolerance) || *tolerance <= 0)
    throw UsageError(fmt::format("--simplify {}: a distance larger than 0 is needed", text));
  return *tolerance;
}

/// Such as "9 (3 closed, 6 open) with 5236 points, at 9 levels".
std::string describe(const CurveSet& curves, std::size_t closed) {
  const std::vector<double>& levels = curves.levels();
  return fmt::format("{} ({} closed, {} open) with {} points, at {} level{}, {} to {}",
                     curves.size(), closed, curves.size() - closed, curves.pointCount(),
                     levels.size(), levels.size() == 1 ? "" : "s", levels.front(), levels.back());
}

/// How far apart the curves of --spacing have come out.
ReportItem spacingReport(const CurveSet& curves, double spacing) {
  constexpr double kStepsToASpacing = 8;
  const auto distances = distancesBetween(curves, spacing / kStepsToASpacing);
  if (!distances) return {"spacing", "one level only", {{"spacing", nullptr}}};
  const auto& [smallest, largest] = *distances;
  const double step = std::max(smallest / 100, largest / 1e5);
  const std::string low = digits(smallest, step);
  const std::string high = digits(largest, step);
  return {"spacing",
          fmt::format("neighbouring curves are {} apart",
                      low == high ? low : fmt::format("{} to {}", low, high)),
          {{"spacing", {{"smallest", smallest}, {"largest", largest}}}}};
}

/// How every field is cut and coloured.
struct Cutting {
  LevelChoice levels;
  ColourChoice colours;
  double tolerance;  ///< of --simplify; 0 keeps every point
};

/// The curves of field k. What the summary says of them is added to `reports`.
FieldCurves cutField(SolvedField& solved, std::size_t k, const Cutting& cutting,
                     const Console& console, std::vector<ReportItem>& reports) {
  const FieldRange range = rangeOf(solved.field(k));
  const std::vector<double> levels = levelsOf(cutting.levels, solved, k, console);
  CurveSet curves =
      solved.steps.run("cut", [&] { return CurveSet(*solved.system, solved.field(k), levels); });
  const std::size_t before = curves.pointCount();
  if (cutting.tolerance > 0)
    curves = solved.steps.run("simplify", [&] { return simplify(curves, cutting.tolerance); });
  std::size_t closed = 0;
  for (std::size_t c = 0; c < curves.size(); ++c) closed += curves[c].closed ? 1 : 0;
  reports.push_back({"curves",
                     describe(curves, closed),
                     {{"levels", levels},
                      {"curves", curves.size()},
                      {"closedCurves", closed},
                      {"points", curves.pointCount()}}});
  if (cutting.tolerance > 0)
    reports.push_back(
        {"simplify",
         fmt::format("{} of {} points left out", before - curves.pointCount(), before),
         {{"pointsBefore", before}}});
  if (cutting.levels.spacing() > 0)
    reports.push_back(spacingReport(curves, cutting.levels.spacing()));
  return {solved.fieldCount() > 1 ? solved.fieldName(k) : "", std::move(curves), range,
          cutting.colours.scaleFor(range, console)};
}

/// Puts the fields' names into their lines and their JSON members into one list. `counts` are the
/// numbers of reports after each field.
void joinReports(std::vector<ReportItem>& reports, const std::vector<FieldCurves>& fields,
                 const std::vector<std::size_t>& counts) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  std::size_t at = 0;
  for (std::size_t k = 0; k < fields.size(); ++k) {
    list.push_back({{"name", fields[k].name}});
    for (; at < counts[k]; ++at) {
      reports[at].text = fmt::format("{}: {}", fields[k].name, reports[at].text);
      list.back().update(reports[at].members);
      reports[at].members = nlohmann::ordered_json::object();
    }
  }
  reports.push_back({"", "", {{"cuts", list}}});
}

}  // namespace

void runCurves(const CurvesOptions& options, const OutputOptions& output) {
  const Console console(output);
  const Cutting cutting = {LevelChoice(options.levels), ColourChoice(options.picture.colours),
                           parsedTolerance(options.simplify)};
  const ViewChoice view = parseView(options.picture.view);
  const std::optional<std::size_t> up = parseUp(options.picture.up);
  std::optional<SheetChoice> sheet;
  if (isToScale(options.sheet)) sheet.emplace(options.sheet, options.picture.caption.unit);
  std::vector<Target> targets = openTargets(options, output);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "cut");
  std::vector<FieldCurves> fields;
  std::vector<ReportItem> reports;
  std::vector<std::size_t> counts;  // of reports, after each field
  for (std::size_t k = 0; k < solved.fieldCount(); ++k) {
    fields.push_back(cutField(solved, k, cutting, console, reports));
    counts.push_back(reports.size());
  }
  if (fields.size() > 1) joinReports(reports, fields, counts);
  Caption caption = options.picture.caption;
  if (caption.title.empty()) caption.title = toUtf8(toPath(solved.meshName).filename());
  std::vector<std::string> results;
  solved.steps.run("write", [&] {
    const Mesh shown = usedPart(solved.mesh).mesh;
    const std::size_t axis = upAxis(up, solved.meshName, shown);
    const Projection projection = projectionFor(view, shown, axis);
    for (Target& target : targets)
      write(target, solved.meshName, fields, {shown, projection, axis, caption, sheet});
    std::vector<OutputFile*> files;
    for (const Target& target : targets) files.push_back(target.file.get());
    commitTogether(files);
  });
  for (const Target& target : targets)
    results.push_back(target.name == "-" ? "standard output" : target.name);
  reportField(solved, results, output, console, reports);
}

}  // namespace qelm::tool
