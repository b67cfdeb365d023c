// qelm check
#ifndef QELM_TOOLS_CHECK_COMMAND_H
#define QELM_TOOLS_CHECK_COMMAND_H

#include <string>
#include <vector>

#include "terminal/console.h"

namespace qelm::tool {

struct CheckOptions {
  std::string mesh;
  bool strict = false;             ///< see MeshSource
  std::vector<std::string> fixes;  ///< without these and a file, conditions are not checked
  std::string fixFile;
};

/// Prints the report on the standard output. Returns the exit code of a solve with these conditions
/// or, without any, of one with a fixed vertex in every part.
int runCheck(const CheckOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
