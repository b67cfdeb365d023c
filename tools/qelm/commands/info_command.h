// qelm info
#ifndef QELM_TOOLS_INFO_COMMAND_H
#define QELM_TOOLS_INFO_COMMAND_H

#include <string>

#include "terminal/console.h"

namespace qelm::tool {

struct InfoOptions {
  std::string mesh;
  bool strict = false;  ///< see MeshSource
};

/// Prints on the standard output what a mesh is like; defects do not matter here.
void runInfo(const InfoOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
