// Which files a command line may read from.
#ifndef QELM_TOOLS_NAMED_INPUTS_H
#define QELM_TOOLS_NAMED_INPUTS_H

#include <CLI/CLI.hpp>

#include "files/result_name.h"

namespace qelm::tool {

/// The values of all options but --output, and the files within them. Those that are names of files
/// may be read.
InputNames inputsOf(const CLI::App& command);

}  // namespace qelm::tool

#endif
