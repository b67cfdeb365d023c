#include "commands/solve_command.h"

#include <fmt/format.h>

#include <cmath>
#include <optional>

#include "commands/gradient_command.h"
#include "conditions/npy_array.h"
#include "fields/field_csv.h"
#include "fields/field_range.h"
#include "fields/field_report.h"
#include "fields/gradient_files.h"
#include "files/output_file.h"
#include "files/paths.h"
#include "mesh/mesh_checks.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

using Json = nlohmann::ordered_json;

/// The vertex and field where two sets of fields differ most.
std::size_t worstOf(const std::vector<double>& fields, const std::vector<double>& others) {
  std::vector<double> differences(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) differences[i] = std::abs(fields[i] - others[i]);
  return asIndex(rangeOf(differences).highest);
}

/// How far the plain fields differ from the robust ones, or why there are none.
ReportItem comparePlain(const SolvedField& solved) {
  try {
    const FieldSystem plain(solved.mesh, solved.prescribed.tags, false);
    const std::vector<double> fields =
        plain.solve(solved.mesh, solved.prescribed.values, solved.load);
    const std::size_t worst = worstOf(solved.fields, fields);
    const std::size_t n = asIndex(solved.mesh.vertexCount());
    const int vertex = asInt(worst % n);
    const double difference = std::abs(fields[worst] - solved.fields[worst]);
    const FieldRange range = rangeOf(fields);
    std::string text = fmt::format("differs by at most {:.3g}, at {}", difference,
                                   describeVertex(solved.mesh, vertex));
    if (solved.fieldCount() > 1) text += fmt::format(" of field {}", worst / n + 1);
    return {"plain",
            text + fmt::format("; from {:.6g} to {:.6g}", range.low, range.high),
            {{"plain",
              {{"difference", difference},
               {"vertex", vertex},
               {"field", worst / n},
               {"min", range.low},
               {"max", range.high}}}}};
  } catch (const SingularError& error) {
    return {
        "plain", std::string("no field: ") + error.what(), {{"plain", {{"error", error.what()}}}}};
  }
}

}  // namespace

void runSolve(const SolveOptions& options, const OutputOptions& output) {
  if (output.json && options.output == "-")
    throw UsageError("the standard output takes the field (-o -) or --json, not both");
  if (options.comparePlain && options.field.robust.empty())
    throw UsageError("--compare-plain needs --robust to compare with");
  const Console console(output);
  promisedFormat(options.output, {".csv", ".txt", ".dat", ".npy"},
                 "'solve' writes the field as .csv or .npy");
  // The file is opened before the solve: a missing folder is better known at once.
  std::optional<OutputFile> file;
  if (!options.output.empty()) file.emplace(options.output, output.inputs);
  SolvedField solved = solveField(options.field, console);
  std::vector<ReportItem> more;
  FieldColumns columns = {fieldTitles(solved.fieldCount()), solved.fields};
  if (options.gradient) {
    const std::vector<Gradient> gradients = gradientsOf(solved, console);
    columns = withGradients(solved.fields, gradients);
    more.push_back(gradientReport(solved, gradients));
  }
  std::vector<std::string> results;
  if (file) {
    solved.steps.run("write", [&] {
      if (lowerExtension(toPath(options.output)) == ".npy")
        writeNpy(columns.values, asIndex(solved.mesh.vertexCount()), *file);
      else
        writeFieldCsv(solved.mesh, columns.titles, columns.values, *file);
      file->commit();
    });
    results.push_back(options.output == "-" ? "standard output" : options.output);
  }
  if (options.comparePlain)
    more.push_back(solved.steps.run("compare", [&] { return comparePlain(solved); }));
  reportField(solved, results, output, console, more);
}

}  // namespace qelm::tool
