#include "commands/solve_command.h"

#include <optional>

#include "fields/field_csv.h"
#include "files/output_file.h"
#include "text/error.h"

namespace qelm::tool {

void runSolve(const SolveOptions& options, const OutputOptions& output) {
  if (output.json && options.output == "-")
    throw UsageError("the standard output takes the field (-o -) or --json, not both");
  const Console console(output);
  promisedFormat(options.output, {".csv", ".txt", ".dat"}, "'solve' writes the field as .csv");
  // Opened first: a long solve must not end with a folder that is not there.
  std::optional<OutputFile> file;
  if (!options.output.empty()) file.emplace(options.output, output.inputs);
  SolvedField solved = solveField(options.field, console);
  std::vector<std::string> results;
  if (file) {
    solved.steps.run("write", [&] {
      writeFieldCsv(solved.mesh, solved.fields, *file);
      file->commit();
    });
    results.push_back(options.output == "-" ? "standard output" : options.output);
  }
  reportField(solved, results, output, console);
}

}  // namespace qelm::tool
