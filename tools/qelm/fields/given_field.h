// --field: fields from files, in place of those that are solved for.
#ifndef QELM_TOOLS_GIVEN_FIELD_H
#define QELM_TOOLS_GIVEN_FIELD_H

#include "fields/solve_job.h"

namespace qelm::tool {

/// Reads mesh and fields; no vertex counts as prescribed. Throws UsageError if there are conditions
/// as well, or several fields for a command that takes one; InputError.
SolvedField givenFields(const FieldOptions& options, const Console& console);

}  // namespace qelm::tool

#endif
