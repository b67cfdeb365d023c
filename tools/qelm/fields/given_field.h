// --field: a field from a file, in place of one that is solved for.
#ifndef QELM_TOOLS_GIVEN_FIELD_H
#define QELM_TOOLS_GIVEN_FIELD_H

#include "fields/solve_job.h"

namespace qelm::tool {

/// Reads mesh and field; no vertex counts as held. Throws UsageError where there are conditions as
/// well, InputError.
SolvedField givenField(const FieldOptions& options, const Console& console);

}  // namespace qelm::tool

#endif
