// The options and help of the commands that compute or take a field.
#ifndef QELM_TOOLS_FIELD_COMMANDS_H
#define QELM_TOOLS_FIELD_COMMANDS_H

#include "commands/command_frame.h"

namespace qelm::tool {

void addSolve(CommandFrame& frame);
void addGradient(CommandFrame& frame);
void addHeatmap(CommandFrame& frame);
void addCurves(CommandFrame& frame);
void addView(CommandFrame& frame);

}  // namespace qelm::tool

#endif
