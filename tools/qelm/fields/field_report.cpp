#include "fields/field_report.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstddef>
#include <numeric>

#include "fields/field_range.h"
#include "files/output_file.h"
#include "mesh/mesh_checks.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

double valueAt(const SolvedField& solved, std::size_t field, int vertex) {
  return solved.field(field)[asIndex(vertex)];
}

Json vertexJson(const SolvedField& solved, std::size_t field, int vertex) {
  return {{"value", valueAt(solved, field, vertex)},
          {"vertex", vertex},
          {"point", solved.mesh.point(vertex)}};
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

/// How many vertices condition k prescribes or, for near:, which one and how far away it is.
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

/// What the field was solved for.
void printConditions(const SolvedField& solved, const Console& console) {
  if (solved.given.empty())
    console.line(fmt::format("fixed    {} vertices", solved.prescribed.fixedCount));
  if (solved.fromFile > 0) console.line(fmt::format("         from the file: {}", solved.fromFile));
  for (std::size_t k = 0; k < solved.conditions.size(); ++k)
    console.line(fmt::format("         {} = {}: {}", solved.conditions[k].text,
                             describeValues(solved.conditions[k]), describeSelected(solved, k)));
  if (solved.loadPerArea)
    console.line(fmt::format("load     {} per area, {} in all", *solved.loadPerArea,
                             digits(totalLoad(solved))));
}

void printLines(const SolvedField& solved, const std::vector<std::string>& results,
                const Console& console, const std::vector<ReportItem>& more) {
  console.line(fmt::format("mesh     {}: {} vertices, {} triangles", solved.meshName,
                           solved.mesh.vertexCount(), solved.mesh.triangleCount()));
  if (solved.given.size() == 1) console.line("field    " + solved.given[0]);
  printConditions(solved, console);
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

void printJson(const nlohmann::ordered_json& json) {
  printData(json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

std::string describeTimes(const Steps& steps) {
  std::vector<std::string> times;
  for (const Step& step : steps.list())
    times.push_back(fmt::format("{} {:.3f} s", step.name, step.seconds));
  return fmt::format("{}", fmt::join(times, ", "));
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
