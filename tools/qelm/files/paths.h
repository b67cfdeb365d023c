// File names. Inside the tool every name is UTF-8; at the edges it is whatever
// the platform wants.
#ifndef QELM_TOOLS_PATHS_H
#define QELM_TOOLS_PATHS_H

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace qelm::tool {

std::filesystem::path toPath(std::string_view utf8);
std::string toUtf8(const std::filesystem::path& path);

/// Distinguishes temporary names of processes that run at the same time.
int processNumber();

/// The file's extension in lower case, with its dot.
std::string lowerExtension(const std::filesystem::path& path);

/// All bytes of the standard input. Throws UsageError when they have been read before.
std::string readStandardInput();

/// All bytes of a file; an InputError that names the file and the reason when it
/// cannot be read.
std::string readFile(const std::filesystem::path& path);

/// Bytes of a file. Unlike a string's they are not set to zero before they are read.
struct FileBytes {
  std::unique_ptr<char[]> bytes;
  std::size_t size = 0;
  operator std::string_view() const { return {bytes.get(), size}; }
};

/// The same as readFile(), in less time.
FileBytes readFileBytes(const std::filesystem::path& path);

/// What the tool calls a file of numbers in messages: "-" is "standard input".
std::string shownName(const std::string& name);

/// readFile(), or readStandardInput() for "-".
std::string readFileOrStandardInput(const std::string& name);

}  // namespace qelm::tool

#endif
