// qelm check
#ifndef QELM_TOOLS_CHECK_COMMAND_H
#define QELM_TOOLS_CHECK_COMMAND_H

#include <string>
#include <vector>

#include "fields/solve_job.h"

namespace qelm::tool {

struct CheckOptions {
  std::string mesh;
  bool strict = false;             ///< see MeshSource
  std::vector<std::string> fixes;  ///< none, and no file: conditions are not looked at
  std::string fixFile;
};

/// Prints the report on the standard output. Returns what a solve with these conditions would
/// end with; without conditions, with one fixed vertex in every part.
int runCheck(const CheckOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
