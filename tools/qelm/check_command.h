// qelm check
#ifndef QELM_TOOLS_CHECK_COMMAND_H
#define QELM_TOOLS_CHECK_COMMAND_H

#include <string>
#include <vector>

#include "solve_job.h"

namespace qelm::tool {

struct CheckOptions {
  std::string mesh;
  std::vector<std::string> fixes;  ///< none: conditions are not looked at
};

/// Prints the report on the standard output. Returns kExitOk when the mesh constructs
/// and every solve on it is well posed, else kExitBadInput.
int runCheck(const CheckOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
