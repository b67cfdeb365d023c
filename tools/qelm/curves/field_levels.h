// The levels at which a field that is there is cut.
#ifndef QELM_TOOLS_FIELD_LEVELS_H
#define QELM_TOOLS_FIELD_LEVELS_H

#include <vector>

#include "curves/levels.h"
#include "fields/solve_job.h"

namespace qelm::tool {

/// What `choice` means for this field, with a line about each place that a curve goes through.
/// Throws RequestError that names the mesh.
std::vector<double> levelsOf(const LevelChoice& choice, const SolvedField& solved,
                             const Console& console);

}  // namespace qelm::tool

#endif
