// What a result may be called: never as a file that is read, and as what it holds.
#ifndef QELM_TOOLS_RESULT_NAME_H
#define QELM_TOOLS_RESULT_NAME_H

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qelm::tool {

/// Whatever the command line names that could be a file which the run reads.
using InputNames = std::vector<std::string>;

/// Throws UsageError when `target` is one of the inputs: the same name, another spelling
/// of it, another case where the file system sees none, a symbolic or a hard link.
void refuseToOverwrite(const InputNames& inputs, const std::filesystem::path& target);

/// The format that the name's extension asks for, in lower case with its dot, or empty
/// when the name has no extension or one that is nobody's ("heat.v1-2", "field.2026").
/// Throws UsageError when the extension promises a format that is not among `written`;
/// `writes` is what the command does write, for people.
std::string promisedFormat(const std::string& target, const std::vector<std::string_view>& written,
                           std::string_view writes);

/// promisedFormat() or, unless it is empty, what --format wants, such as "npy"; UsageError when
/// that is not written.
std::string resultFormat(const std::string& target, const std::string& wanted,
                         const std::vector<std::string_view>& written, std::string_view writes);

}  // namespace qelm::tool

#endif
