// The levels at which a field that is there is cut.
#ifndef QELM_TOOLS_FIELD_LEVELS_H
#define QELM_TOOLS_FIELD_LEVELS_H

#include <cstddef>
#include <vector>

#include "curves/levels.h"
#include "fields/solve_job.h"

namespace qelm::tool {

/// What `choice` means for the field number k, with a line about each point that a curve goes
/// through. Throws RequestError that names the mesh.
std::vector<double> levelsOf(const LevelChoice& choice, const SolvedField& solved, std::size_t k,
                             const Console& console);

}  // namespace qelm::tool

#endif
