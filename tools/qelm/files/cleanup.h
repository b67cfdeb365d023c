// Temporary files do not outlive an interrupted run.
#ifndef QELM_TOOLS_CLEANUP_H
#define QELM_TOOLS_CLEANUP_H

#include <filesystem>
#include <string>

namespace qelm::tool {

/// A temporary file, or a folder with files, that is removed when a signal such as
/// Ctrl-C ends the program, for as long as this lives. (Ending otherwise is up to
/// whoever made it.) Does nothing on Windows, and when too many live at once.
class RemovedOnInterrupt {
 public:
  RemovedOnInterrupt() = default;
  ~RemovedOnInterrupt();
  RemovedOnInterrupt(const RemovedOnInterrupt&) = delete;
  RemovedOnInterrupt& operator=(const RemovedOnInterrupt&) = delete;

  void watch(const std::filesystem::path& path);
  void release();

 private:
  int slot_ = -1;
  std::string path_;  ///< the signal's handler reads its characters
};

}  // namespace qelm::tool

#endif
