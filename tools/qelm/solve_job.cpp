#include "solve_job.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>

#include "load_mesh.h"
#include "mesh_checks.h"
#include "output_file.h"
#include "vertex_csv.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

struct Extremes {
  int lowest;
  int highest;
};

Extremes extremesOf(const std::vector<double>& field) {
  // The first of equals, for both.
  const auto low = std::min_element(field.begin(), field.end());
  const auto high = std::max_element(field.begin(), field.end());
  return {static_cast<int>(low - field.begin()), static_cast<int>(high - field.begin())};
}

double valueAt(const SolvedField& solved, int vertex) {
  return solved.field[static_cast<std::size_t>(vertex)];
}

Json vertexJson(const SolvedField& solved, int vertex) {
  return {
      {"value", valueAt(solved, vertex)}, {"vertex", vertex}, {"point", solved.mesh.point(vertex)}};
}

void printJson(const SolvedField& solved, const std::vector<std::string>& results,
               const std::vector<ReportItem>& more) {
  const Extremes extremes = extremesOf(solved.field);
  Json fixes = Json::array();
  for (std::size_t k = 0; k < solved.conditions.size(); ++k)
    fixes.push_back({{"selector", solved.conditions[k].text},
                     {"value", solved.conditions[k].value},
                     {"tag", solved.conditions[k].tag},
                     {"vertices", solved.prescribed.selected[k]}});
  Json seconds = Json::object();
  for (const Step& step : solved.steps.list()) seconds[step.name] = step.seconds;
  Json summary = {{"mesh", solved.meshName},
                  {"vertices", solved.mesh.vertexCount()},
                  {"triangles", solved.mesh.triangleCount()},
                  {"fixedVertices", solved.prescribed.fixedCount},
                  {"fixFileVertices", solved.fromFile},
                  {"fix", fixes},
                  {"min", vertexJson(solved, extremes.lowest)},
                  {"max", vertexJson(solved, extremes.highest)}};
  for (const ReportItem& item : more) summary[item.name] = item.json;
  summary["seconds"] = seconds;
  summary["results"] = results;
  printData(summary.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

std::string describeValue(const SolvedField& solved, int vertex) {
  return fmt::format("{:.6g} at {}", valueAt(solved, vertex), describeVertex(solved.mesh, vertex));
}

void printLines(const SolvedField& solved, const std::vector<std::string>& results,
                const Console& console, const std::vector<ReportItem>& more) {
  console.line(fmt::format("mesh     {}: {} vertices, {} triangles", solved.meshName,
                           solved.mesh.vertexCount(), solved.mesh.triangleCount()));
  console.line(fmt::format("fixed    {} vertices", solved.prescribed.fixedCount));
  if (solved.fromFile > 0) console.line(fmt::format("         from the file: {}", solved.fromFile));
  for (std::size_t k = 0; k < solved.conditions.size(); ++k)
    console.line(fmt::format("         {} = {}: {}", solved.conditions[k].text,
                             solved.conditions[k].value, solved.prescribed.selected[k]));
  const Extremes extremes = extremesOf(solved.field);
  console.line("minimum  " + describeValue(solved, extremes.lowest));
  console.line("maximum  " + describeValue(solved, extremes.highest));
  for (const ReportItem& item : more) console.line(fmt::format("{:<9}{}", item.name, item.text));
  console.line("time     " + describeTimes(solved.steps));
  console.line(fmt::format("result   {}", results.empty()
                                              ? "not written; -o FIELD.csv writes it"
                                              : fmt::format("{}", fmt::join(results, ", "))));
}

}  // namespace

std::string describeTimes(const Steps& steps) {
  std::vector<std::string> times;
  for (const Step& step : steps.list())
    times.push_back(fmt::format("{} {:.3f} s", step.name, step.seconds));
  return fmt::format("{}", fmt::join(times, ", "));
}

SolvedField solveField(const FieldOptions& options, const Console& console) {
  SolvedField solved;
  solved.meshName = options.mesh;
  solved.steps = Steps(console);
  for (const std::string& fix : options.fixes) solved.conditions.push_back(parseCondition(fix));
  Steps& steps = solved.steps;
  solved.mesh = steps.run("read", [&] { return loadWeldedMesh(options.mesh, console); });
  const Mesh& mesh = solved.mesh;
  std::vector<double> load;
  if (!options.load.empty()) load = readLoad(options.load, mesh.vertexCount());
  std::vector<FixedVertex> fromFile;
  if (!options.fixFile.empty()) fromFile = readFixes(options.fixFile, mesh.vertexCount());
  solved.fromFile = static_cast<int>(fromFile.size());
  naming(options.mesh, [&] {
    steps.run("check", [&] {
      checkMesh(mesh);
      solved.prescribed = prescribe(mesh, fromFile, solved.conditions);
      checkEveryPartIsFixed(mesh, solved.prescribed.tags);
    });
    for (const std::string& note : solved.prescribed.notes) console.note(note);
    steps.run("construct", [&] { solved.system.emplace(mesh, solved.prescribed.tags); });
    solved.field = steps.run(
        "solve", [&] { return solved.system->solve(mesh, solved.prescribed.values, load); });
  });
  return solved;
}

void reportField(const SolvedField& solved, const std::vector<std::string>& results,
                 const OutputOptions& output, const Console& console,
                 const std::vector<ReportItem>& more) {
  if (output.json)
    printJson(solved, results, more);
  else
    printLines(solved, results, console, more);
}

}  // namespace qelm::tool
