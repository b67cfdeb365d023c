// The options and help of the commands that take a mesh and no field.
#ifndef QELM_TOOLS_MESH_COMMANDS_H
#define QELM_TOOLS_MESH_COMMANDS_H

#include "commands/command_frame.h"

namespace qelm::tool {

void addInfo(CommandFrame& frame);
void addCheck(CommandFrame& frame);
void addWeld(CommandFrame& frame);
void addRepair(CommandFrame& frame);

}  // namespace qelm::tool

#endif
