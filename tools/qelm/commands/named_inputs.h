// Which files a command line may read from.
#ifndef QELM_TOOLS_NAMED_INPUTS_H
#define QELM_TOOLS_NAMED_INPUTS_H

#include <CLI/CLI.hpp>

#include "files/result_name.h"

namespace qelm::tool {

/// All that the command line says, but where results go: what of it is a file may be read.
InputNames inputsOf(const CLI::App& command);

}  // namespace qelm::tool

#endif
