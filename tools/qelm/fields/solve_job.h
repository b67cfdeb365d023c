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
  std::string fixFile;   ///< a CSV file; empty: none
  std::string load;      ///< a CSV file; empty: no load
  std::string robust;    ///< see parseConstruction()
  bool several = false;  ///< whether conditions may have several values, one for each field
};

struct SolvedField {
  std::string meshName;
  Mesh mesh;
  std::vector<Condition> conditions;
  int fromFile = 0;  ///< vertices that --fix-file fixes
  Prescribed prescribed;
  std::vector<double> load;                ///< n, or none
  std::optional<QelmRobustReport> robust;  ///< unless construction was plain on request
  std::optional<FieldSystem> system;
  double error = 0;            ///< that rounding leaves, see measuredError()
  std::vector<double> fields;  ///< one after another, in the mesh's order; not a number at
                               ///< vertices in no triangle
  Steps steps;

  std::size_t fieldCount() const { return prescribed.fieldCount; }
  std::span<const double> field(std::size_t k = 0) const {
    const auto n = static_cast<std::size_t>(mesh.vertexCount());
    return {fields.data() + k * n, n};
  }
};

/// Parses, reads, checks, constructs and solves. Throws UsageError, InputError.
SolvedField solveField(const FieldOptions& options, const Console& console);

/// Throws RequestError when the field is the same everywhere, but for the rounding of
/// its solve: "no range to `use`".
void requireRange(const SolvedField& solved, const char* use);

/// "read 0.012 s, check 0.001 s".
std::string describeTimes(const Steps& steps);

/// What a command has to add to the summary: a line for people, members for programs.
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
