// The tool's command line: finds the command that it asks for, and explains what is wrong with it.
#ifndef QELM_TOOLS_COMMAND_LINE_H
#define QELM_TOOLS_COMMAND_LINE_H

#include <string>
#include <vector>

namespace qelm::tool {

/// Runs the command that `arguments` (UTF-8, without the program's name) ask
/// for. Returns the exit code of help, version and wrong usage; what commands
/// throw passes through.
int runCommandLine(std::vector<std::string> arguments);

}  // namespace qelm::tool

#endif
