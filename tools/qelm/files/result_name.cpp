#include "files/result_name.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <system_error>

#include "files/paths.h"
#include "text/error.h"

namespace qelm::tool {
namespace fs = std::filesystem;
namespace {

bool isLetter(char c) { return c >= 'a' && c <= 'z'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// ".png" and ".3mf" say what a file holds; ".2026" and ".before-noon" do not.
bool isAFormat(std::string_view extension) {
  constexpr std::size_t kLongest = 5;
  if (extension.size() < 2 || extension.size() > 1 + kLongest) return false;
  extension.remove_prefix(1);
  return std::all_of(extension.begin(), extension.end(),
                     [](char c) { return isLetter(c) || isDigit(c); }) &&
         std::any_of(extension.begin(), extension.end(), isLetter);
}

}  // namespace

void refuseToOverwrite(const InputNames& inputs, const fs::path& target) {
  for (const std::string& input : inputs) {
    std::error_code ignored;
    const fs::path path = toPath(input);
    // Devices and pipes are not written over.
    if (fs::is_regular_file(path, ignored) && fs::equivalent(path, target, ignored))
      throw UsageError(fmt::format("-o {} would overwrite {}, which is read; choose another name",
                                   toUtf8(target), input));
  }
}

std::string promisedFormat(const std::string& target, const std::vector<std::string_view>& written,
                           std::string_view writes) {
  const std::string extension = lowerExtension(toPath(target));
  if (std::find(written.begin(), written.end(), extension) != written.end()) return extension;
  if (isAFormat(extension))
    throw UsageError(fmt::format("-o {}: {} is not written here; {}", target, extension, writes));
  return "";
}

std::string resultFormat(const std::string& target, const std::string& wanted,
                         const std::vector<std::string_view>& written, std::string_view writes) {
  if (wanted.empty()) return promisedFormat(target, written, writes);
  if (std::find(written.begin(), written.end(), "." + wanted) == written.end())
    throw UsageError(fmt::format("--format {}: {}", wanted, writes));
  return "." + wanted;
}

}  // namespace qelm::tool
