// qelm weld
#ifndef QELM_TOOLS_WELD_COMMAND_H
#define QELM_TOOLS_WELD_COMMAND_H

#include "commands/new_mesh.h"
#include "terminal/console.h"

namespace qelm::tool {

void runWeld(const NewMeshOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
