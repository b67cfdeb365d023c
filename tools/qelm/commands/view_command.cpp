#include "commands/view_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string_view>

#include "curves/field_levels.h"
#include "curves/projection.h"
#include "curves/upright.h"
#include "encodings/base64.h"
#include "fields/field_range.h"
#include "fields/field_report.h"
#include "files/file_bytes.h"
#include "files/output_file.h"
#include "files/paths.h"
#include "mesh/used_part.h"
#include "mesh_files/load_mesh.h"
#include "page/page_data.h"
#include "page/view_page.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

struct FirstView {
  ViewChoice choice;
  std::optional<std::size_t> up;
};

std::string titleOf(const SolvedField& solved, const ViewOptions& options) {
  const std::string& title = options.picture.caption.title;
  return title.empty() ? toUtf8(toPath(solved.meshName).filename()) : title;
}

/// Values that differ from vertex to vertex stand in the text: the page can neither show them as a
/// number nor change them.
Json conditionFacts(const Condition& condition, int vertices) {
  const bool areNumbers = std::all_of(condition.values.begin(), condition.values.end(),
                                      [](const Value& value) { return value.isNumber(); });
  if (!areNumbers)
    return {{"text", condition.text + "=" + describeValues(condition)}, {"vertices", vertices}};
  Json facts = {
      {"text", condition.text}, {"value", condition.values[0].number}, {"vertices", vertices}};
  // One for each field.
  if (condition.values.size() > 1)
    for (const Value& value : condition.values) facts["values"].push_back(value.number);
  return facts;
}

/// Names and levels of several fields; an empty list for a single one.
Json fieldFacts(const SolvedField& solved, const std::vector<std::vector<double>>& levels) {
  Json list = Json::array();
  if (levels.size() > 1)
    for (std::size_t k = 0; k < levels.size(); ++k)
      list.push_back({{"name", solved.fieldName(k)}, {"levels", levels[k]}});
  return list;
}

/// What the page shows in its corner, and the state in which it opens.
Json pageFacts(const SolvedField& solved, const Mesh& shown, const ViewOptions& options,
               const FirstView& view, const ColourChoice& colours,
               const std::vector<std::vector<double>>& levels) {
  Json conditions = Json::array();
  if (solved.fromFile > 0)
    conditions.push_back({{"text", toUtf8(toPath(shownName(options.field.fixFile)).filename())},
                          {"vertices", solved.fromFile}});
  for (std::size_t k = 0; k < solved.conditions.size(); ++k)
    conditions.push_back(conditionFacts(solved.conditions[k], solved.prescribed.selected[k]));
  Json facts = {{"name", titleOf(solved, options)},
                {"vertices", solved.mesh.vertexCount()},
                {"triangles", solved.mesh.triangleCount()},
                {"load", !options.field.load.empty()},
                {"conditions", conditions},
                {"levels", levels[0]},
                {"fields", fieldFacts(solved, levels)},
                {"unit", options.picture.caption.unit},
                {"range", nullptr},
                {"up", nullptr},
                {"toward", nullptr},
                {"noValue", Json::array()}};
  if (colours.range()) facts["range"] = {colours.range()->low, colours.range()->high};
  const std::vector<bool> used = usedVertices(solved.mesh);
  for (int v = 0; v < solved.mesh.vertexCount(); ++v)
    if (!used[asIndex(v)])
      facts["noValue"].push_back({{"vertex", v}, {"point", solved.mesh.point(v)}});
  const std::size_t up = upAxis(view.up, solved.meshName, shown);
  facts["up"] = std::string(1, "xyz"[up]);
  if (view.choice.direction) facts["toward"] = projectionFor(view.choice, shown, up).toward;
  return facts;
}

/// For each vertex the number of its condition in the page's list, from 1; 0 if the vertex is free.
std::vector<int> fixedBy(const SolvedField& solved) {
  std::vector<int> numbers = solved.prescribed.prescribedBy;
  // A file comes first in the list, if there is one.
  const int shift = solved.fromFile > 0 ? 0 : 1;
  for (int& number : numbers) number = number == 0 ? 0 : number - shift;
  return numbers;
}

// A page with more vertices has rounded positions, which is all that a screen can show: 24 bits
// across the mesh, nine bytes a vertex instead of 24.
constexpr int kMostExact = 100'000;

/// The page's data, without the vertices in no triangle.
std::string pageDataOf(const SolvedField& solved, const UsedPart& part, const Ramp& ramp,
                       bool isExact) {
  const std::vector<double> field = part.of(solved.field());
  std::vector<double> others;
  for (std::size_t k = 1; k < solved.fieldCount(); ++k) {
    const std::vector<double> other = part.of(solved.field(k));
    others.insert(others.end(), other.begin(), other.end());
  }
  std::vector<double> load;
  if (!solved.load.empty()) load = part.of(std::span<const double>(solved.load));
  const std::vector<int> numbers = fixedBy(solved);
  return pageData(
      {part.mesh, field, others, load, part.of(std::span<const int>(numbers)), ramp, isExact});
}

/// A page of the caller's own may solve with the positions, so they keep every bit.
bool isExact(const SolvedField& solved, const ViewOptions& options) {
  return !options.page.empty() || solved.mesh.vertexCount() <= kMostExact;
}

/// JSON for a script element, in which nothing may look like the element's end.
std::string inScript(const Json& json) {
  std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at))
    text.replace(at, 1, "\\u003c");
  return text;
}

std::string inHtml(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '<')
      escaped += "&lt;";
    else if (c == '&')
      escaped += "&amp;";
    else
      escaped += c;
  }
  return escaped;
}

constexpr std::string_view kTitleMark = "@QELM_TITLE@";
constexpr std::string_view kFactsMark = "@QELM_FACTS@";
constexpr std::string_view kMeshMark = "@QELM_MESH@";

/// The page to fill in. Throws FileError if that of --page lacks a mark, OutputError if the tool
/// was built without a page.
std::string pageToFill(const ViewOptions& options) {
  if (!options.page.empty()) {
    std::string page = readFile(toPath(options.page));
    std::size_t at = 0;
    for (const std::string_view mark : {kTitleMark, kFactsMark, kMeshMark}) {
      at = page.find(mark, at);
      if (at == std::string::npos)
        throw FileError(
            fmt::format("{}: this is no page to fill in: there is no {}", options.page, mark));
    }
    return page;
  }
  if (viewPage().empty())
    throw OutputError(
        "this qelm was built without the page that 'view' fills in; run scripts/page in its "
        "sources and build it again, or use 'qelm heatmap' or 'qelm curves'");
  return std::string(viewPage());
}

/// Writes `page` with each mark's text in its place. The marks come in this order, each once.
void writeFilled(std::string_view page,
                 const std::vector<std::pair<std::string_view, std::string>>& texts,
                 OutputFile& file) {
  for (const auto& [mark, text] : texts) {
    const std::size_t at = page.find(mark);
    file.write(page.substr(0, at));
    file.write(text);
    page.remove_prefix(at + mark.size());
  }
  file.write(page);
}

/// In JSON the summary has the first field's levels alone.
ReportItem levelReport(const SolvedField& solved, std::size_t k,
                       const std::vector<double>& levels) {
  const std::string name = solved.fieldCount() > 1 ? solved.fieldName(k) + ": " : "";
  return {"levels",
          fmt::format("{}{}, {} to {}", name, levels.size(), levels.front(), levels.back()),
          k == 0 ? Json{{"levels", levels}} : Json::object()};
}

/// Fills in `page` with the solved fields, at these levels of each.
void writePage(const std::string& page, const SolvedField& solved, const ViewOptions& options,
               const FirstView& view, const ColourChoice& colours,
               const std::vector<std::vector<double>>& levels, OutputFile& file) {
  const UsedPart part = usedPart(solved.mesh);
  writeFilled(
      page,
      {{kTitleMark, inHtml(titleOf(solved, options)) + " \u2013 qelm"},
       {kFactsMark, inScript(pageFacts(solved, part.mesh, options, view, colours, levels))},
       {kMeshMark, toBase64(pageDataOf(solved, part, colours.ramp(), isExact(solved, options)))}},
      file);
  file.commit();
}

}  // namespace

void runView(const ViewOptions& options, const OutputOptions& output) {
  const Console console(output);
  const LevelChoice choice(options.levels);
  const FirstView view = {parseView(options.picture.view), parseUp(options.picture.up)};
  const ColourChoice colours(options.picture.colours);
  if (!options.field.given.empty() && !options.page.empty())
    throw UsageError("--page fills in a page that solves, for which --field has nothing");
  const std::string page = pageToFill(options);
  if (output.json && options.output == "-")
    throw UsageError("the standard output takes the page (-o -) or --json, not both");
  promisedFormat(options.output, {".html", ".htm"}, "'view' writes a page, .html");
  OutputFile file(options.output, output.inputs);
  SolvedField solved = solveField(options.field, console);
  requireRange(solved, "show");
  if (solved.fieldCount() > 1 && !options.page.empty())
    throw UsageError("--page fills in a page that solves, which it does for one field");
  std::vector<std::vector<double>> levels;
  std::vector<ReportItem> reports;
  for (std::size_t k = 0; k < solved.fieldCount(); ++k) {
    // For its note: the page colours by itself.
    colours.scaleFor(rangeOf(solved.field(k)), console);
    levels.push_back(levelsOf(choice, solved, k, console));
    reports.push_back(levelReport(solved, k, levels[k]));
  }
  solved.steps.run("write", [&] { writePage(page, solved, options, view, colours, levels, file); });
  reportField(solved, {options.output == "-" ? "standard output" : options.output}, output, console,
              reports);
}

}  // namespace qelm::tool
