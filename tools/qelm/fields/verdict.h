// How well a mesh can be solved on: one judgement, which 'check' prints and every command
// that solves acts on.
#ifndef QELM_TOOLS_VERDICT_H
#define QELM_TOOLS_VERDICT_H

#include <span>
#include <string>
#include <vector>

#include "fields/field_system.h"
#include "mesh/mesh.h"
#include "qelm.h"
#include "text/error.h"

namespace qelm::tool {

/// The library's report, and its status in `code` if wanted. Vertices in no triangle are counted,
/// but do not change the status. Whether areas near zero do harm is for measuredError() to say.
QelmMeshReport reportOn(const Mesh& mesh, std::span<const int> tags, int* code = nullptr);

/// The error that rounding leaves in a field on this mesh, as a part of its largest value; 0 if it
/// is below a millionth. Costs one solve. Throws SingularError if nothing of the field is left.
///
/// The error is measured because the shape of the worst triangle does not tell it: one needle in a
/// good mesh does no harm, many do. The field measured is the constant 1, whose solution is known.
/// On strips of slivers, single needles and meshes far from the origin it was off by about as much
/// as a linear field, or by more.
double measuredError(const FieldSystem& system, const Mesh& mesh);

/// "will work, but with an error of about 4e-05 of the largest value: ...".
std::string describeError(double error, const Mesh& mesh);

enum class Grade { kFine, kWithError, kWillNotWork };

struct Verdict {
  Grade grade = Grade::kFine;
  std::string text;  ///< "fine", "will work, but ...", "will not work: ..."
  double error = 0;  ///< see measuredError()
  ExitCode exitCode = kExitOk;
};

/// What a solve with these tags would say. Builds the system unless the report is enough to tell.
/// Vertices in no triangle do no harm unless `strict`.
Verdict verdictOn(const Mesh& mesh, std::span<const int> tags, const QelmMeshReport& report,
                  bool strict = false);

/// The fewest tags with which a mesh can be solved: one vertex of every part.
std::vector<int> leastTags(const Mesh& mesh);

}  // namespace qelm::tool

#endif
