// File names. Inside the tool every name is UTF-8; at the edges it is whatever
// the platform wants.
#ifndef QELM_TOOLS_PATHS_H
#define QELM_TOOLS_PATHS_H

#include <filesystem>
#include <string>
#include <string_view>

namespace qelm::tool {

std::filesystem::path toPath(std::string_view utf8);
std::string toUtf8(const std::filesystem::path& path);

/// Distinguishes temporary names of processes that run at the same time.
int processNumber();

/// The file's extension in lower case, with its dot.
std::string lowerExtension(const std::filesystem::path& path);

/// What the tool calls a file of numbers in messages: "-" is "standard input".
std::string shownName(const std::string& name);

}  // namespace qelm::tool

#endif
