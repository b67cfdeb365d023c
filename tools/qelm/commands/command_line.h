// The tool's command line: every command, option and help text.
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
