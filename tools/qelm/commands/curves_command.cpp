#include "commands/curves_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "curves/curve_dxf.h"
#include "curves/curve_files.h"
#include "curves/curve_gltf.h"
#include "curves/curve_set.h"
#include "curves/curve_svg.h"
#include "curves/curve_vtp.h"
#include "curves/field_levels.h"
#include "curves/projection.h"
#include "curves/upright.h"
#include "fields/field_range.h"
#include "files/output_file.h"
#include "files/paths.h"
#include "mesh/used_part.h"
#include "mesh_files/load_mesh.h"
#include "text/error.h"

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

void write(Target& target, const SolvedField& solved, const Mesh& shown, const CurveSet& curves,
           const Projection& projection, std::size_t up, const std::string& unit) {
  OutputFile& file = *target.file;
  if (target.format == CurveFormat::kObj) writeCurvesObj(curves, file);
  if (target.format == CurveFormat::kJson) writeCurvesJson(curves, solved.meshName, file);
  if (target.format == CurveFormat::kCsv) writeCurvesCsv(curves, file);
  if (target.format == CurveFormat::kDxf) writeCurvesDxf(curves, file);
  if (target.format == CurveFormat::kVtp) writeCurvesVtp(curves, file);
  const FieldRange range = rangeOf(solved.fields);
  const bool isGlb = target.format == CurveFormat::kGlb;
  if (isGlb || target.format == CurveFormat::kGltf)
    writeCurvesGltf(curves, range.low, range.high, up, isGlb, file);
  if (target.format == CurveFormat::kSvg) {
    writeCurvesSvg({shown, curves, projection, toUtf8(toPath(solved.meshName).filename()),
                    range.low, range.high, unit},
                   file);
  }
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

}  // namespace

void runCurves(const CurvesOptions& options, const OutputOptions& output) {
  const Console console(output);
  const LevelChoice choice(options.levels);
  const ViewChoice view = parseView(options.view);
  const std::optional<std::size_t> up = parseUp(options.up);
  std::vector<Target> targets = openTargets(options, output);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "cut");
  const std::vector<double> levels = levelsOf(choice, solved, console);
  const CurveSet curves =
      solved.steps.run("cut", [&] { return CurveSet(*solved.system, solved.field(), levels); });
  std::vector<std::string> results;
  solved.steps.run("write", [&] {
    const Mesh shown = usedPart(solved.mesh).mesh;
    const std::size_t axis = upAxis(up, solved.meshName, shown);
    const Projection projection = projectionFor(view, shown, axis);
    for (Target& target : targets)
      write(target, solved, shown, curves, projection, axis, options.unit);
    std::vector<OutputFile*> files;
    for (const Target& target : targets) files.push_back(target.file.get());
    commitTogether(files);
  });
  for (const Target& target : targets)
    results.push_back(target.name == "-" ? "standard output" : target.name);
  reportField(solved, results, output, console, {report(curves)});
}

}  // namespace qelm::tool
