#include "files/output_folder.h"

#include <fmt/format.h>

#include <system_error>

#include "files/paths.h"
#include "text/error.h"

namespace qelm::tool {
namespace fs = std::filesystem;

OutputFolder::OutputFolder(const fs::path& beside) {
  target_ = fs::absolute(beside).parent_path();
  constexpr int kAttempts = 100;
  std::error_code error;
  for (int k = 0; k < kAttempts; ++k) {
    const fs::path candidate = target_ / fmt::format(".qelm-{}-{}.part", processNumber(), k);
    if (fs::create_directory(candidate, error)) {
      temporary_ = candidate;
      removal_.watch(temporary_);
      return;
    }
    if (error) break;
  }
  throw OutputError(fmt::format("{}: cannot be written to: {}", toUtf8(target_),
                                error ? error.message() : "too many temporary folders"));
}

OutputFolder::~OutputFolder() {
  std::error_code ignored;
  fs::remove_all(temporary_, ignored);
}

void OutputFolder::publish(const std::vector<fs::path>& names) {
  // All that could be in the way is looked at before the first file moves.
  for (const fs::path& name : names) {
    const fs::path target = target_ / name;
    std::error_code ignored;
    if (fs::is_directory(target, ignored))
      throw OutputError(fmt::format("{}: cannot be written: it is a folder", toUtf8(target)));
  }
  for (const fs::path& name : names) {
    std::error_code error;
    fs::rename(temporary_ / name, target_ / name, error);
    if (error)
      throw OutputError(
          fmt::format("{}: cannot be written: {}", toUtf8(target_ / name), error.message()));
  }
}

WorkingFolder::WorkingFolder(const fs::path& folder) : before_(fs::current_path()) {
  fs::current_path(folder);
}

WorkingFolder::~WorkingFolder() {
  std::error_code ignored;
  fs::current_path(before_, ignored);
}

}  // namespace qelm::tool
