#include "commands/check_command.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <optional>

#include "fields/field_report.h"
#include "fields/robustness.h"
#include "fields/verdict.h"
#include "files/output_file.h"
#include "mesh/delaunay.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "mesh_files/load_mesh.h"
#include "qelm.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

/// What a finding counts, and what its first index numbers.
enum class Element { vertex, triangle };

/// How a finding is told.
struct Line {
  const char* key;  ///< in JSON
  QelmFinding QelmMeshReport::*finding;
  Element element;
  const char* one;     ///< after a count of 1
  const char* many;    ///< after any other
  const char* advice;  ///< empty for what is no defect
};

// Thin triangles are defects if the mesh will not work, else information.
constexpr Line kThin = {
    "nearZeroArea",
    &QelmMeshReport::nearZeroArea,
    Element::triangle,
    "triangle has no area, or too little for its size and place",
    "triangles have no area, or too little for their size and place",
    "remove such triangles with 'qelm repair', or solve with --robust; move a mesh that is far "
    "away to the origin"};

constexpr Line kUnused = {"unusedVertex",
                          &QelmMeshReport::unusedVertex,
                          Element::vertex,
                          "vertex is in no triangle, and gets no value",
                          "vertices are in no triangle, and get no value",
                          "remove such vertices, or leave --strict away"};

constexpr Line kDefects[] = {
    {"indexOutOfRange", &QelmMeshReport::indexOutOfRange, Element::triangle,
     "triangle names a vertex that does not exist", "triangles name a vertex that does not exist",
     "repair the file"},
    {"repeatedVertex", &QelmMeshReport::repeatedVertex, Element::triangle,
     "triangle names a vertex twice", "triangles name a vertex twice", "remove such triangles"},
    kUnused,
    {"notFinite", &QelmMeshReport::notFinite, Element::vertex,
     "vertex has a coordinate that is not finite", "vertices have a coordinate that is not finite",
     "repair the file"},
    kThin,
    {"sizeOutOfRange", &QelmMeshReport::sizeOutOfRange, Element::triangle,
     "triangle is too small or too large to compute with",
     "triangles are too small or too large to compute with", "choose another unit"},
    {"untaggedPart", &QelmMeshReport::untaggedPart, Element::vertex,
     "connected part has no fixed vertex", "connected parts have no fixed vertex",
     "fix a vertex in every part, remove the part, or join the parts with 'qelm weld'"},
};

constexpr Line kInformation[] = {
    {"part", &QelmMeshReport::part, Element::vertex, "connected part", "connected parts", ""},
    {"boundaryLoop", &QelmMeshReport::boundaryLoop, Element::vertex, "boundary loop",
     "boundary loops", ""},
    {"crowdedEdge", &QelmMeshReport::crowdedEdge, Element::triangle,
     "edge with more than two triangles", "edges with more than two triangles", ""},
    {"opposedEdge", &QelmMeshReport::opposedEdge, Element::triangle,
     "edge whose two triangles are oriented against each other",
     "edges whose two triangles are oriented against each other", ""},
    {"repeatedTriangle", &QelmMeshReport::repeatedTriangle, Element::triangle,
     "triangle that repeats an earlier one", "triangles that repeat an earlier one", ""},
    {"coincidentVertex", &QelmMeshReport::coincidentVertex, Element::vertex,
     "vertex exactly at the place of an earlier one",
     "vertices exactly at the place of an earlier one", ""},
};

struct Check {
  Mesh mesh;
  bool strict = false;
  std::optional<Prescribed> prescribed;
  QelmMeshReport report = {};
  int code = 0;  ///< of the report's first defect
  NotDelaunay notDelaunay;
  Verdict verdict;
  std::optional<QelmRobustReport> robust;  ///< none if the mesh cannot be constructed

  bool works() const { return verdict.grade != Grade::kWillNotWork; }
};

/// Without conditions one vertex of every part counts as prescribed, so that no part lacks one.
std::vector<int> tagsOf(const Check& check) {
  return check.prescribed ? check.prescribed->tags : leastTags(check.mesh);
}

/// Without conditions every vertex counts as free: the weights of all edges matter.
std::optional<QelmRobustReport> robustReportOf(const Check& check) {
  if (check.prescribed) return robustReport(check.mesh, check.prescribed->tags);
  const std::vector<int> none(asIndex(check.mesh.vertexCount()), 0);
  return robustReport(check.mesh, none);
}

std::string describeRobust(const QelmRobustReport& report) {
  if (report.changed == 0) return "          weights: good; --robust would change nothing\n";
  if (report.notDelaunayEdges == 0 && report.flatTriangles == 0)
    return "          weights: none negative, but angles below 1.8 degrees: --robust takes more "
           "care\n";
  return fmt::format("          weights: some negative; --robust mends them ({})\n",
                     describe(report));
}

Check checkFile(const CheckOptions& options, const Console& console) {
  std::vector<Condition> conditions;
  for (const std::string& fix : options.fixes) conditions.push_back(parseCondition(fix));
  Check check;
  check.mesh = loadWeldedMesh({options.mesh, options.strict}, console);
  check.strict = options.strict;
  std::vector<FixedVertex> fromFile;
  if (!options.fixFile.empty()) fromFile = readFixes(options.fixFile, usedVertices(check.mesh));
  if (!conditions.empty() || !fromFile.empty())
    check.prescribed =
        naming(options.mesh, [&] { return prescribe(check.mesh, conditions, fromFile); });
  const std::vector<int> tags = tagsOf(check);
  check.report = reportOn(check.mesh, tags, &check.code);
  check.notDelaunay = notDelaunay(check.mesh, tags);
  check.verdict = verdictOn(check.mesh, tags, check.report, check.strict);
  // A mesh that works has no defect, whatever the library's report says.
  if (check.works()) check.code = 0;
  check.robust = robustReportOf(check);
  return check;
}

/// Whether a finding is told among the defects.
bool isDefect(const Check& check, const Line& line) {
  if (line.finding == kThin.finding) return !check.works();
  return line.finding != kUnused.finding || check.strict;
}

std::string describeFirst(const Mesh& mesh, Element element, std::int64_t index) {
  const int i = asInt(index);
  return element == Element::vertex ? describeVertex(mesh, i) : describeTriangle(mesh, i);
}

std::string describe(const Check& check, const Line& line) {
  const QelmFinding& finding = check.report.*line.finding;
  std::string text =
      fmt::format("{:>9} {}", finding.count, finding.count == 1 ? line.one : line.many);
  // Every mesh has a first part and a first loop: the first index says nothing.
  const bool isOrdinary =
      line.finding == &QelmMeshReport::part || line.finding == &QelmMeshReport::boundaryLoop;
  if (finding.count > 0 && !isOrdinary)
    text += fmt::format("{} {}", finding.count == 1 ? ":" : "; the first:",
                        describeFirst(check.mesh, line.element, finding.first));
  return text + "\n";
}

/// Which edges let a field leave the range of its fixed values, and whether they can.
std::string describeNotDelaunay(const Check& check) {
  const NotDelaunay& found = check.notDelaunay;
  std::string text =
      fmt::format("{:>9} {}", found.count,
                  found.count == 1 ? "edge that is not Delaunay" : "edges that are not Delaunay");
  if (found.count == 0) return text + ": a field without load stays within its fixed values\n";
  text += fmt::format("; the first: {} to {}\n", found.first[0], found.first[1]);
  if (found.free == 0)
    return text +
           "          both ends of each are fixed: a field without load stays within "
           "its fixed values\n";
  return text + "          near them a field may leave the range of its fixed values a little\n";
}

std::string describeWorst(const Check& check) {
  if (check.report.worstTriangle < 0) return "";
  return fmt::format("          the thinnest for its size and place: {}\n",
                     describeTriangle(check.mesh, asInt(check.report.worstTriangle)));
}

std::string describeVerdict(const Check& check) {
  const bool isOpen = !check.prescribed && check.works();
  return check.verdict.text + (isOpen ? ", once every part has a fixed vertex" : "");
}

std::string reportText(const Check& check, const std::string& name) {
  std::string text = fmt::format("{}: {} vertices, {} triangles\n", name, check.mesh.vertexCount(),
                                 check.mesh.triangleCount());
  text += check.works() ? "Defects: none\n" : "Defects\n";
  for (const Line& line : kDefects) {
    if (!isDefect(check, line) || check.works() || (check.report.*line.finding).count == 0)
      continue;
    text += describe(check, line) + fmt::format("          {}\n", line.advice);
  }
  text += "For information\n";
  for (const Line& line : kInformation) text += describe(check, line);
  for (const Line& line : {kThin, kUnused})
    if (!isDefect(check, line) && (check.report.*line.finding).count > 0)
      text += describe(check, line);
  if (check.mesh.leftOutFaces > 0)
    text += fmt::format("{:>9} {} of fewer than three different corners, left out\n",
                        check.mesh.leftOutFaces, check.mesh.leftOutFaces == 1 ? "face" : "faces");
  text += describeNotDelaunay(check);
  if (check.prescribed)
    text += fmt::format("{:>9} fixed {}\n", check.prescribed->fixedCount,
                        check.prescribed->fixedCount == 1 ? "vertex" : "vertices");
  if (check.robust) text += describeRobust(*check.robust);
  return text + describeWorst(check) + "Verdict: " + describeVerdict(check) + "\n";
}

Json findingJson(const Check& check, const Line& line) {
  const QelmFinding& finding = check.report.*line.finding;
  Json json = {{"count", finding.count}};
  const char* element = line.element == Element::vertex ? "firstVertex" : "firstTriangle";
  if (finding.count > 0)
    json[element] = finding.first;
  else
    json[element] = nullptr;
  return json;
}

const char* gradeName(Grade grade) {
  if (grade == Grade::kFine) return "fine";
  return grade == Grade::kWithError ? "will work, but with an error" : "will not work";
}

Json reportJson(const Check& check, const std::string& name) {
  Json json = {{"mesh", name},
               {"vertices", check.mesh.vertexCount()},
               {"triangles", check.mesh.triangleCount()},
               {"code", check.code},
               {"grade", gradeName(check.verdict.grade)},
               {"verdict", check.verdict.text},
               {"error", check.verdict.error},
               {"defects", Json::object()},
               {"information", Json::object()}};
  for (const Line& line : kDefects) {
    json[isDefect(check, line) ? "defects" : "information"][line.key] = findingJson(check, line);
  }
  if (!check.prescribed) json["defects"].erase("untaggedPart");
  for (const Line& line : kInformation) json["information"][line.key] = findingJson(check, line);
  json["information"]["notDelaunayEdge"] = {{"count", check.notDelaunay.count},
                                            {"canMatter", check.notDelaunay.free > 0}};
  json["information"]["leftOutFaces"] = check.mesh.leftOutFaces;
  if (check.prescribed) json["information"]["fixedVertices"] = check.prescribed->fixedCount;
  json["information"]["robust"] = nullptr;
  if (check.robust) json["information"]["robust"] = robustJson(*check.robust);
  json["information"]["worstTriangle"] = nullptr;
  json["information"]["worstQuality"] = nullptr;
  if (check.report.worstTriangle >= 0) {
    json["information"]["worstTriangle"] = check.report.worstTriangle;
    json["information"]["worstQuality"] = check.report.worstQuality;
  }
  return json;
}

}  // namespace

int runCheck(const CheckOptions& options, const OutputOptions& output) {
  const Console console(output);
  const Check check = checkFile(options, console);
  if (check.prescribed)
    for (const std::string& note : check.prescribed->notes) console.note(note);
  if (output.json)
    printJson(reportJson(check, options.mesh));
  else if (!output.quiet)
    printData(reportText(check, options.mesh));
  return check.verdict.exitCode;
}

}  // namespace qelm::tool
