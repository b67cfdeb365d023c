// qelm repair
#ifndef QELM_TOOLS_REPAIR_COMMAND_H
#define QELM_TOOLS_REPAIR_COMMAND_H

#include "commands/new_mesh.h"
#include "terminal/console.h"

namespace qelm::tool {

void runRepair(const NewMeshOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
