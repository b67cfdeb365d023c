// qelm repair
#ifndef QELM_TOOLS_REPAIR_COMMAND_H
#define QELM_TOOLS_REPAIR_COMMAND_H

#include <optional>
#include <string>

#include "terminal/console.h"

namespace qelm::tool {

struct RepairOptions {
  std::string mesh;
  bool strict = false;  ///< see MeshSource
  std::string output;
  std::string format;  ///< such as "ply", whatever the output is called; empty: by its name
  std::optional<std::string> tolerance;  ///< as written; none: the default
};

void runRepair(const RepairOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
