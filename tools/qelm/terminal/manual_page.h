// The manual page, made of the same definitions as --help.
#ifndef QELM_TOOLS_MANUAL_PAGE_H
#define QELM_TOOLS_MANUAL_PAGE_H

#include <string>

namespace CLI {
class App;
}

namespace qelm::tool {

/// In the language of man(7). Topics stand once, after the commands.
std::string manualPage(const CLI::App& app, const std::string& version);

}  // namespace qelm::tool

#endif
