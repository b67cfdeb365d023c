// Files that appear complete or not at all.
#ifndef QELM_TOOLS_OUTPUT_FILE_H
#define QELM_TOOLS_OUTPUT_FILE_H

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "files/cleanup.h"
#include "files/result_name.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// Writes to a temporary file beside the target, which commit() renames. Without
/// commit() nothing is left and a file of that name stays as it was. Devices and
/// pipes are written to directly; "-" is the standard output.
///
/// Opening, writing and committing throw InputError that names the target. Opening throws
/// UsageError when the target is one of `inputs`: every command has them in its
/// OutputOptions.
class OutputFile : public ByteSink {
 public:
  OutputFile(const std::string& target, const InputNames& inputs);
  ~OutputFile() override;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(std::string_view bytes) override;
  void commit();
  /// commit() without the renaming: what could still fail has been tried then.
  void finish();

 private:
  [[noreturn]] void fail(const char* what) const;
  void openTemporary();

  std::string name_;
  std::filesystem::path target_;     ///< empty for the standard output
  std::filesystem::path temporary_;  ///< empty when the target is written to directly
  RemovedOnInterrupt removal_;
  std::FILE* file_ = nullptr;
};

/// Commits several files: first finishes all, then renames them in this order.
void commitTogether(const std::vector<OutputFile*>& files);

/// Writes to the standard output. Throws InputError when that fails.
void printData(std::string_view text);

}  // namespace qelm::tool

#endif
