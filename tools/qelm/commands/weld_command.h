// qelm weld
#ifndef QELM_TOOLS_WELD_COMMAND_H
#define QELM_TOOLS_WELD_COMMAND_H

#include <optional>
#include <string>

#include "terminal/console.h"

namespace qelm::tool {

struct WeldOptions {
  std::string mesh;
  bool strict = false;  ///< see MeshSource
  std::string output;
  std::string format;  ///< such as "ply", whatever the output is called; empty: by its name
  std::optional<std::string> tolerance;  ///< as written; none: the default
};

void runWeld(const WeldOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
