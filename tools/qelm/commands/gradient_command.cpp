#include "commands/gradient_command.h"

#include <fmt/format.h>

#include <optional>
#include <vector>

#include "fields/field_csv.h"
#include "fields/gradient_files.h"
#include "files/output_file.h"
#include "files/result_name.h"
#include "mesh/mesh_checks.h"
#include "mesh/vec3.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kWrites = "'gradient' writes .csv, .npy, .ply, .vtp and .vtu";

bool isPerVertex(const std::string& per) {
  if (per != "vertex" && per != "triangle")
    throw UsageError(fmt::format("--per {}: give triangle or vertex", per));
  return per == "vertex";
}

void write(const SolvedField& solved, const Gradient& gradient, bool isPerVertex,
           const std::string& format, OutputFile& file) {
  if (format == ".ply") {
    writeGradientPly(solved.mesh, solved.field(), gradient, isPerVertex, file);
  } else if (format == ".vtp" || format == ".vtu") {
    writeFieldsVtk(solved.mesh, solved.fields, 1, {&gradient, 1}, format == ".vtu", file);
  } else if (format == ".npy") {
    writeVectorsNpy(isPerVertex ? gradient.ofVertices : gradient.ofTriangles, file);
  } else if (isPerVertex) {
    const FieldColumns columns = withGradients(solved.fields, {&gradient, 1});
    writeFieldCsv(solved.mesh, columns.titles, columns.values, file);
  } else {
    writeTriangleCsv(solved.mesh, gradient, file);
  }
}

struct Steepest {
  double slope = -1;
  int triangle = -1;
};

Steepest steepestOf(const Gradient& gradient) {
  Steepest steepest;
  for (int t = 0; t < asInt(gradient.ofTriangles.size() / 3); ++t)
    if (const double slope = length(gradient.ofTriangle(t)); slope > steepest.slope)
      steepest = {slope, t};
  return steepest;
}

}  // namespace

std::vector<Gradient> gradientsOf(SolvedField& solved, const Console& console) {
  std::vector<Gradient> gradients;
  solved.steps.run("gradient", [&] {
    for (std::size_t k = 0; k < solved.fieldCount(); ++k)
      gradients.push_back(gradientOf(solved.mesh, solved.field(k)));
  });
  const std::vector<int>& flat = gradients[0].withoutArea;
  if (!flat.empty())
    console.note(fmt::format(
        "{}: {} without area {} no gradient and {} not count in any mean: {}", solved.meshName,
        flat.size() == 1 ? "one triangle" : fmt::format("{} triangles", flat.size()),
        flat.size() == 1 ? "has" : "have", flat.size() == 1 ? "does" : "do",
        describeTriangle(solved.mesh, flat[0])));
  return gradients;
}

ReportItem gradientReport(const SolvedField& solved, std::span<const Gradient> gradients) {
  std::string text;
  Json json = Json::array();
  for (const Gradient& gradient : gradients) {
    const auto [slope, triangle] = steepestOf(gradient);
    if (triangle >= 0)
      text += fmt::format("{}{}, at {}", text.empty() ? "at most " : "; ", digits(slope),
                          describeTriangle(solved.mesh, triangle));
    json.push_back({{"slope", triangle >= 0 ? Json(slope) : Json()},
                    {"triangle", triangle},
                    {"withoutArea", gradient.withoutArea.size()}});
  }
  return {"gradient", text.empty() ? "none: no triangle has an area" : text, {{"gradient", json}}};
}

void runGradient(const GradientOptions& options, const OutputOptions& output) {
  if (output.json && options.output == "-")
    throw UsageError("the standard output takes the gradient (-o -) or --json, not both");
  const Console console(output);
  const bool perVertex = isPerVertex(options.per);
  const std::string format =
      resultFormat(options.output, options.format,
                   {".csv", ".txt", ".dat", ".npy", ".ply", ".vtp", ".vtu"}, kWrites);
  std::optional<OutputFile> file;
  if (!options.output.empty()) file.emplace(options.output, output.inputs);
  SolvedField solved = solveField(options.field, console);
  const std::vector<Gradient> gradients = gradientsOf(solved, console);
  std::vector<std::string> results;
  if (file) {
    solved.steps.run("write", [&] {
      write(solved, gradients[0], perVertex, format, *file);
      file->commit();
    });
    results.push_back(options.output == "-" ? "standard output" : options.output);
  }
  reportField(solved, results, output, console, {gradientReport(solved, gradients)});
}

}  // namespace qelm::tool
