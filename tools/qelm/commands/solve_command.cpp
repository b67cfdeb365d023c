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
#include "files/result_name.h"
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

void write(const SolvedField& solved, const std::vector<Gradient>& gradients,
           const std::string& format, OutputFile& file) {
  if (format == ".vtp" || format == ".vtu")
    return writeFieldsVtk(solved.mesh, solved.fields, solved.fieldCount(), gradients,
                          format == ".vtu", file);
  const FieldColumns columns = gradients.empty()
                                   ? FieldColumns{fieldTitles(solved.fieldCount()), solved.fields}
                                   : withGradients(solved.fields, gradients);
  if (format == ".npy")
    writeNpy(columns.values, asIndex(solved.mesh.vertexCount()), file);
  else
    writeFieldCsv(solved.mesh, columns.titles, columns.values, file);
}

}  // namespace

void runSolve(const SolveOptions& options, const OutputOptions& output) {
  if (output.json && options.output == "-")
    throw UsageError("the standard output takes the field (-o -) or --json, not both");
  if (options.comparePlain && options.field.robust.empty())
    throw UsageError("--compare-plain needs --robust to compare with");
  const Console console(output);
  const std::string format =
      resultFormat(options.output, options.format, {".csv", ".txt", ".dat", ".npy", ".vtp", ".vtu"},
                   "'solve' writes the field as .csv, .npy, .vtp or .vtu");
  // The file is opened before the solve: a missing folder is better known at once.
  std::optional<OutputFile> file;
  if (!options.output.empty()) file.emplace(options.output, output.inputs);
  SolvedField solved = solveField(options.field, console);
  std::vector<ReportItem> more;
  std::vector<Gradient> gradients;
  if (options.gradient) {
    gradients = gradientsOf(solved, console);
    more.push_back(gradientReport(solved, gradients));
  }
  std::vector<std::string> results;
  if (file) {
    solved.steps.run("write", [&] {
      write(solved, gradients, format, *file);
      file->commit();
    });
    results.push_back(options.output == "-" ? "standard output" : options.output);
  }
  if (options.comparePlain)
    more.push_back(solved.steps.run("compare", [&] { return comparePlain(solved); }));
  reportField(solved, results, output, console, more);
}

}  // namespace qelm::tool
