// Completion scripts for shells, made from the definitions that --help is made from.
#ifndef QELM_TOOLS_COMPLETION_H
#define QELM_TOOLS_COMPLETION_H

#include <string>

namespace CLI {
class App;
}

namespace qelm::tool {

/// For "bash", "zsh" or "fish". Throws UsageError for any other.
std::string completionScript(const CLI::App& app, const std::string& shell);

}  // namespace qelm::tool

#endif
