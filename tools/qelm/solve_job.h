// From a mesh file and boundary conditions to a field: the part that every
// command with a field has in common.
#ifndef QELM_TOOLS_SOLVE_JOB_H
#define QELM_TOOLS_SOLVE_JOB_H

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "conditions.h"
#include "console.h"
#include "field_system.h"
#include "mesh.h"
#include "selection.h"
#include "steps.h"

namespace qelm::tool {

struct FieldOptions {
  std::string mesh;
  std::vector<std::string> fixes;
  std::string fixFile;  ///< a CSV file; empty: none
  std::string load;     ///< a CSV file; empty: no load
};

struct SolvedField {
  std::string meshName;
  Mesh mesh;
  std::vector<Condition> conditions;
  int fromFile = 0;  ///< vertices that --fix-file fixes
  Prescribed prescribed;
  std::optional<FieldSystem> system;
  std::vector<double> field;  ///< in the mesh's order
  Steps steps;
};

/// Parses, reads, checks, constructs and solves. Throws UsageError, InputError.
SolvedField solveField(const FieldOptions& options, const Console& console);

/// "read 0.012 s, check 0.001 s".
std::string describeTimes(const Steps& steps);

/// What a command has to add to the summary.
struct ReportItem {
  std::string name;
  std::string text;             ///< for people
  nlohmann::ordered_json json;  ///< for programs
};

/// Says what was done: lines on the console, or one JSON object on the standard
/// output. `results` are the files written.
void reportField(const SolvedField& solved, const std::vector<std::string>& results,
                 const OutputOptions& output, const Console& console,
                 const std::vector<ReportItem>& more = {});

}  // namespace qelm::tool

#endif
