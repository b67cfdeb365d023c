#include "fields/solve_job.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <numeric>

#include "conditions/vertex_csv.h"
#include "fields/field_range.h"
#include "fields/forecast.h"
#include "fields/given_field.h"
#include "fields/overshoot.h"
#include "fields/uniform_load.h"
#include "fields/verdict.h"
#include "files/output_file.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "mesh_files/load_mesh.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

double valueAt(const SolvedField& solved, std::size_t field, int vertex) {
  return solved.field(field)[static_cast<std::size_t>(vertex)];
}

Json vertexJson(const SolvedField& solved, std::size_t field, int vertex) {
  return {{"value", valueAt(solved, field, vertex)},
          {"vertex", vertex},
          {"point", solved.mesh.point(vertex)}};
}

/// Only of a field that was solved for, without load: with one, a field goes where it is pushed.
std::optional<Overshoot> overshootOf(const SolvedField& solved, std::size_t k) {
  if (!solved.load.empty() || !solved.given.empty()) return {};
  return overshootOf(solved.field(k), solved.prescribed, k);
}

/// {"min": ..., "max": ..., "outside": ...}
Json rangeJson(const SolvedField& solved, std::size_t field) {
  const FieldRange range = rangeOf(solved.field(field));
  Json json = {{"min", vertexJson(solved, field, range.lowest)},
               {"max", vertexJson(solved, field, range.highest)},
               {"outside", nullptr}};
  if (const auto overshoot = overshootOf(solved, field)) {
    json["outside"] = vertexJson(solved, field, overshoot->vertex);
    json["outside"]["by"] = overshoot->by;
  }
  return json;
}

double totalLoad(const SolvedField& solved) {
  return std::accumulate(solved.load.begin(), solved.load.end(), 0.0);
}

/// A number, or the text of an expression or of *.
Json valueJson(const Value& value) {
  if (value.isNumber()) return value.number;
  return value.text;
}

/// {"value": 1} of a condition for one field or for all, else {"values": [1, 2]}.
Json conditionJson(const Condition& condition) {
  Json json = {{"selector", condition.text}};
  if (condition.values.size() == 1) {
    json["value"] = valueJson(condition.values[0]);
  } else {
    json["values"] = Json::array();
    for (const Value& value : condition.values) json["values"].push_back(valueJson(value));
  }
  json["tag"] = condition.tag;
  return json;
}

}  // namespace

Json summaryJson(const SolvedField& solved, const std::vector<std::string>& results,
                 const std::vector<ReportItem>& more) {
  Json fixes = Json::array();
  for (std::size_t k = 0; k < solved.conditions.size(); ++k) {
    fixes.push_back(conditionJson(solved.conditions[k]));
    fixes.back()["vertices"] = solved.prescribed.selected[k];
    if (const auto& nearest = solved.prescribed.nearest[k]) {
      fixes.back()["vertex"] = nearest->vertex;
      fixes.back()["distance"] = nearest->distance;
    }
    if (!solved.prescribed.details[k].empty()) fixes.back()["found"] = solved.prescribed.details[k];
  }
  Json summary = {{"mesh", solved.meshName},
                  {"vertices", solved.mesh.vertexCount()},
                  {"triangles", solved.mesh.triangleCount()},
                  {"fixedVertices", solved.prescribed.fixedCount},
                  {"fixFileVertices", solved.fromFile},
                  {"fix", fixes}};
  if (solved.fieldCount() == 1) {
    summary.update(rangeJson(solved, 0));
  } else {
    summary["fields"] = Json::array();
    for (std::size_t k = 0; k < solved.fieldCount(); ++k)
      summary["fields"].push_back(rangeJson(solved, k));
    for (std::size_t k = 0; k < solved.given.size(); ++k)
      summary["fields"][k]["field"] = solved.given[k];
  }
  if (solved.given.size() == 1) summary["field"] = solved.given[0];
  if (solved.loadPerArea)
    summary["load"] = {{"perArea", *solved.loadPerArea}, {"total", totalLoad(solved)}};
  if (solved.robust) summary["robust"] = robustJson(*solved.robust);
  summary["error"] = solved.error;
  for (const ReportItem& item : more) summary.update(item.members);
  summary["seconds"] = Json::object();
  for (const Step& step : solved.steps.list()) summary["seconds"][step.name] = step.seconds;
  summary["results"] = results;
  return summary;
}

namespace {

std::string describeValue(const SolvedField& solved, std::size_t field, int vertex) {
  return fmt::format("{} at {}", valueAt(solved, field, vertex),
                     describeVertex(solved.mesh, vertex));
}

/// How many vertices a condition holds; of near: which one, and how far away.
std::string describeSelected(const SolvedField& solved, std::size_t k) {
  const auto& nearest = solved.prescribed.nearest[k];
  if (!nearest) {
    const auto& details = solved.prescribed.details[k];
    return fmt::format("{}{}", solved.prescribed.selected[k],
                       details.empty() ? "" : fmt::format(" ({})", fmt::join(details, "; ")));
  }
  return fmt::format("{}, {:.6g} away", describeVertex(solved.mesh, nearest->vertex),
                     nearest->distance);
}

void printRanges(const SolvedField& solved, const Console& console) {
  for (std::size_t k = 0; k < solved.fieldCount(); ++k) {
    const FieldRange range = rangeOf(solved.field(k));
    if (solved.fieldCount() > 1) console.line(fmt::format("field {}", solved.fieldName(k)));
    console.line("minimum  " + describeValue(solved, k, range.lowest));
    console.line("maximum  " + describeValue(solved, k, range.highest));
  }
}

void printLines(const SolvedField& solved, const std::vector<std::string>& results,
                const Console& console, const std::vector<ReportItem>& more) {
  console.line(fmt::format("mesh     {}: {} vertices, {} triangles", solved.meshName,
                           solved.mesh.vertexCount(), solved.mesh.triangleCount()));
  if (solved.given.size() == 1) console.line("field    " + solved.given[0]);
  if (solved.given.empty())
    console.line(fmt::format("fixed    {} vertices", solved.prescribed.fixedCount));
  if (solved.fromFile > 0) console.line(fmt::format("         from the file: {}", solved.fromFile));
  for (std::size_t k = 0; k < solved.conditions.size(); ++k)
    console.line(fmt::format("         {} = {}: {}", solved.conditions[k].text,
                             describeValues(solved.conditions[k]), describeSelected(solved, k)));
  if (solved.loadPerArea)
    console.line(fmt::format("load     {} per area, {} in all", *solved.loadPerArea,
                             digits(totalLoad(solved))));
  printRanges(solved, console);
  if (solved.robust)
    console.line("matrix   " + (solved.robust->changed != 0
                                    ? "robust: " + describe(*solved.robust)
                                    : std::string("plain, which is good here")));
  for (const ReportItem& item : more)
    if (!item.text.empty()) console.line(fmt::format("{:<9}{}", item.name, item.text));
  console.line("time     " + describeTimes(solved.steps));
  console.line(fmt::format("result   {}", results.empty()
                                              ? "not written; -o FIELD.csv writes it"
                                              : fmt::format("{}", fmt::join(results, ", "))));
}

}  // namespace

namespace {

/// A report that is missing is left to the constructor to explain.
bool wantsRobust(const SolvedField& solved) {
  return !solved.robust || solved.robust->changed != 0;
}

}  // namespace

void printJson(const nlohmann::ordered_json& json) {
  printData(json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

std::string describeTimes(const Steps& steps) {
  std::vector<std::string> times;
  for (const Step& step : steps.list())
    times.push_back(fmt::format("{} {:.3f} s", step.name, step.seconds));
  return fmt::format("{}", fmt::join(times, ", "));
}

namespace {

void noteOvershoots(const SolvedField& solved, const Console& console) {
  for (std::size_t k = 0; k < solved.fieldCount(); ++k)
    if (const auto overshoot = overshootOf(solved, k))
      console.note((solved.fieldCount() > 1 ? fmt::format("field {}: ", k + 1) : "") +
                   describeOvershoot(*overshoot, solved.mesh));
}

}  // namespace

std::string SolvedField::fieldName(std::size_t k) const {
  return given.empty() ? fmt::format("{}", k + 1) : given[k];
}

SolvedField solveField(const FieldOptions& options, const Console& console) {
  if (!options.given.empty()) return givenFields(options, console);
  SolvedField solved;
  solved.meshName = options.mesh;
  solved.steps = Steps(console);
  for (const std::string& fix : options.fixes) solved.conditions.push_back(parseCondition(fix));
  if (!options.several && fieldCount(solved.conditions) > 1)
    throw UsageError(
        "a --fix has several values, but this command takes one field; 'solve', 'curves' and "
        "'view' take several");
  const Construction construction = parseConstruction(options.robust);
  const std::optional<double> perArea = parseUniformLoad(options.load);
  Steps& steps = solved.steps;
  solved.mesh = steps.run("read", [&] {
    return loadWeldedMesh({options.mesh, options.strict}, console);
  });
  const Mesh& mesh = solved.mesh;
  const std::vector<bool> used = usedVertices(mesh);
  solved.loadPerArea = perArea;
  if (perArea)
    solved.load = uniformLoad(mesh, *perArea);
  else if (!options.load.empty())
    solved.load = readLoad(options.load, used);
  std::vector<FixedVertex> fromFile;
  if (!options.fixFile.empty()) fromFile = readFixes(options.fixFile, used);
  solved.fromFile = static_cast<int>(fromFile.size());
  const std::string notWorking = options.mesh + ": will not work";
  steps.run("check", [&] {
    naming(notWorking, [&] {
      checkMesh(mesh, {construction != Construction::plain, options.strict});
    });
    solved.prescribed =
        naming(options.mesh, [&] { return prescribe(mesh, solved.conditions, fromFile); });
    naming(notWorking, [&] { checkEveryPartIsFixed(mesh, solved.prescribed.tags); });
    if (construction != Construction::plain)
      solved.robust = robustReport(mesh, solved.prescribed.tags);
  });
  for (const std::string& note : solved.prescribed.notes) console.note(note);
  const bool robust = construction == Construction::robust ||
                      (construction == Construction::automatic && wantsRobust(solved));
  const auto expected =
      naming(options.mesh, [&] { return forecast(mesh, solved.prescribed.tags, robust); });
  if (expected)
    if (const auto wait = describeWait(*expected)) console.note(*wait);
  naming(notWorking, [&] {
    steps.run(
        "construct", [&] { solved.system.emplace(mesh, solved.prescribed.tags, robust); },
        expected ? secondsOf(*expected) : 0);
    solved.fields = steps.run("solve", [&] {
      solved.error = measuredError(*solved.system, mesh);
      return solved.system->solve(mesh, solved.prescribed.values, solved.load);
    });
  });
  if (solved.error > 0)
    console.note(fmt::format("{}: {}", options.mesh, describeError(solved.error, mesh)));
  noteOvershoots(solved, console);
  return solved;
}

void requireRange(const SolvedField& solved, const char* use) {
  // Stretched over all colours or levels, rounding would show as noise.
  constexpr double kConstant = 1e-12;
  for (std::size_t k = 0; k < solved.fieldCount(); ++k) {
    const FieldRange range = rangeOf(solved.field(k));
    if (range.high - range.low > kConstant * std::max(std::abs(range.low), std::abs(range.high)))
      continue;
    throw RequestError(fmt::format(
        "{}: the field{} is {} everywhere, so there is no range to {}{}", solved.meshName,
        solved.fieldCount() > 1 ? fmt::format(" {}", solved.fieldName(k)) : "", digits(range.low),
        use, solved.given.empty() ? "; fix vertices at two different values at least" : ""));
  }
}

void reportField(const SolvedField& solved, const std::vector<std::string>& results,
                 const OutputOptions& output, const Console& console,
                 const std::vector<ReportItem>& more) {
  if (output.json)
    printJson(summaryJson(solved, results, more));
  else
    printLines(solved, results, console, more);
}

}  // namespace qelm::tool
