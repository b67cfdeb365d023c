// From a mesh file and boundary conditions to fields: what every command with a field has in
// common.
#ifndef QELM_TOOLS_SOLVE_JOB_H
#define QELM_TOOLS_SOLVE_JOB_H

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "conditions/conditions.h"
#include "conditions/prescribed.h"
#include "fields/field_system.h"
#include "fields/overshoot.h"
#include "fields/robustness.h"
#include "mesh/mesh.h"
#include "terminal/console.h"
#include "terminal/steps.h"
#include "text/index.h"

namespace qelm::tool {

struct FieldOptions {
  std::string mesh;
  bool strict = false;  ///< see MeshSource
  std::vector<std::string> fixes;
  std::string fixFile;             ///< a CSV file; empty: none
  std::string load;                ///< a CSV file, or uniform=Q; empty: no load
  std::string robust;              ///< see parseConstruction()
  std::vector<std::string> given;  ///< --field: each FILE[:COLUMN]; then none of the others
  bool several = false;  ///< whether the command takes several fields: several --field, or
                         ///< conditions with several values
};

struct SolvedField {
  std::string meshName;
  std::vector<std::string> given;  ///< of --field; empty if the fields were solved for
  Mesh mesh;
  std::vector<Condition> conditions;
  int fromFile = 0;  ///< how many vertices --fix-file prescribes
  Prescribed prescribed;
  std::vector<double> load;                ///< n, or none
  std::optional<double> loadPerArea;       ///< of --load uniform=Q
  std::optional<QelmRobustReport> robust;  ///< of --robust
  std::optional<FieldSystem> system;
  double error = 0;            ///< see measuredError()
  std::vector<double> fields;  ///< one after another, in the mesh's order; NaN at vertices in no
                               ///< triangle
  Steps steps;

  std::size_t fieldCount() const { return prescribed.fieldCount; }
  /// The name of field k among several: as --field has it, or its number from 1.
  std::string fieldName(std::size_t k) const;
  std::span<const double> field(std::size_t k = 0) const {
    const std::size_t n = asIndex(mesh.vertexCount());
    return {fields.data() + k * n, n};
  }
};

/// Parses, reads, checks, constructs and solves, or reads the fields of --field. Throws UsageError,
/// InputError.
SolvedField solveField(const FieldOptions& options, const Console& console);

/// How far field k leaves the range of its prescribed values. None of a field with a load, which
/// goes where it is pushed, nor of one from a file.
std::optional<Overshoot> overshootOf(const SolvedField& solved, std::size_t k);

/// Throws RequestError if a field is constant but for rounding: "no range to `use`".
void requireRange(const SolvedField& solved, const char* use);

}  // namespace qelm::tool

#endif
