// From a mesh file and boundary conditions to a field: the part that every
// command with a field has in common.
#ifndef QELM_TOOLS_SOLVE_JOB_H
#define QELM_TOOLS_SOLVE_JOB_H

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "conditions/conditions.h"
#include "conditions/selection.h"
#include "fields/field_system.h"
#include "fields/robustness.h"
#include "mesh/mesh.h"
#include "terminal/console.h"
#include "terminal/steps.h"

namespace qelm::tool {

struct FieldOptions {
  std::string mesh;
  bool strict = false;  ///< see MeshSource
  std::vector<std::string> fixes;
  std::string fixFile;             ///< a CSV file; empty: none
  std::string load;                ///< a CSV file, or uniform=Q; empty: no load
  std::string robust;              ///< see parseConstruction()
  std::vector<std::string> given;  ///< --field: each FILE[:COLUMN] in place of all these
  bool several = false;  ///< whether there may be several fields: of --field, or of conditions
                         ///< with several values, one for each
};

struct SolvedField {
  std::string meshName;
  std::vector<std::string> given;  ///< of --field; empty where the fields were solved for
  Mesh mesh;
  std::vector<Condition> conditions;
  int fromFile = 0;  ///< vertices that --fix-file fixes
  Prescribed prescribed;
  std::vector<double> load;                ///< n, or none
  std::optional<double> loadPerArea;       ///< of --load uniform=Q
  std::optional<QelmRobustReport> robust;  ///< unless construction was plain on request
  std::optional<FieldSystem> system;
  double error = 0;            ///< that rounding leaves, see measuredError()
  std::vector<double> fields;  ///< one after another, in the mesh's order; not a number at
                               ///< vertices in no triangle
  Steps steps;

  std::size_t fieldCount() const { return prescribed.fieldCount; }
  /// What a field is called beside others: as it was given, or by its number from 1.
  std::string fieldName(std::size_t k) const;
  std::span<const double> field(std::size_t k = 0) const {
    const auto n = static_cast<std::size_t>(mesh.vertexCount());
    return {fields.data() + k * n, n};
  }
};

/// Parses, reads, checks, constructs and solves, or takes the field of --field. Throws UsageError,
/// InputError.
SolvedField solveField(const FieldOptions& options, const Console& console);

/// Throws RequestError when a field is the same everywhere, but for the rounding of
/// its solve: "no range to `use`".
void requireRange(const SolvedField& solved, const char* use);

/// "read 0.012 s, check 0.001 s".
std::string describeTimes(const Steps& steps);

/// What a command has to add to the summary: a line for people, if any, members for programs.
struct ReportItem {
  std::string name;
  std::string text;
  nlohmann::ordered_json members;
};

/// What was done, as the commands print it with --json.
nlohmann::ordered_json summaryJson(const SolvedField& solved,
                                   const std::vector<std::string>& results,
                                   const std::vector<ReportItem>& more = {});
void printJson(const nlohmann::ordered_json& json);

/// Says what was done: lines on the console, or one JSON object on the standard
/// output. `results` are the files written.
void reportField(const SolvedField& solved, const std::vector<std::string>& results,
                 const OutputOptions& output, const Console& console,
                 const std::vector<ReportItem>& more = {});

}  // namespace qelm::tool

#endif
