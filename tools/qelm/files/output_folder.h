// Several files that appear together or not at all.
#ifndef QELM_TOOLS_OUTPUT_FOLDER_H
#define QELM_TOOLS_OUTPUT_FOLDER_H

#include <filesystem>
#include <string>
#include <vector>

#include "files/cleanup.h"

namespace qelm::tool {

/// A temporary folder beside the targets. What is written into it moves to its
/// place by publish(); without that, nothing is left. Throws InputError that
/// names the target folder.
class OutputFolder {
 public:
  /// `beside` is any path in the target folder.
  explicit OutputFolder(const std::filesystem::path& beside);
  ~OutputFolder();
  OutputFolder(const OutputFolder&) = delete;
  OutputFolder& operator=(const OutputFolder&) = delete;

  const std::filesystem::path& path() const { return temporary_; }

  /// Moves the named files to the target folder, in this order.
  void publish(const std::vector<std::filesystem::path>& names);

 private:
  std::filesystem::path target_;
  std::filesystem::path temporary_;
  RemovedOnInterrupt removal_;
};

/// The process's working directory, for the time of a scope.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::filesystem::path& folder);
  ~WorkingFolder();
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;

 private:
  std::filesystem::path before_;
};

}  // namespace qelm::tool

#endif
