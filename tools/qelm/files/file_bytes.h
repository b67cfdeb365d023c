// What comes in is a file's name, or the standard input; what comes out are its bytes.
#ifndef QELM_TOOLS_FILE_BYTES_H
#define QELM_TOOLS_FILE_BYTES_H

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace qelm::tool {

/// The bytes of a file, in memory of their own or mapped: a large file on Linux is not copied, the
/// system shows the pages of its own cache. On Windows every file is copied.
class FileBytes {
 public:
  operator std::string_view() const { return {bytes_.get(), size_}; }

  /// Another program may shorten a mapped file. Its missing pages read as zeros from then on, and
  /// this throws FileError, which names the file. To be called when the bytes have been used.
  void requireWhole(const std::filesystem::path& path) const;

 private:
  friend FileBytes readFileBytes(const std::filesystem::path& path);

  struct Release {
    std::size_t mapped = 0;  ///< bytes of a mapping; 0 for memory from new[]
    void operator()(const char* bytes) const;
  };
  using Memory = std::unique_ptr<const char[], Release>;

  FileBytes(Memory bytes, std::size_t size) : bytes_(std::move(bytes)), size_(size) {}
  static Memory map(const std::filesystem::path& path);

  Memory bytes_;
  std::size_t size_;
};

/// All bytes of a file. Throws FileError that names the file and the reason when it cannot be read.
FileBytes readFileBytes(const std::filesystem::path& path);

/// The same, in memory of their own.
std::string readFile(const std::filesystem::path& path);

/// All bytes of the standard input. Throws UsageError when they have been read before.
std::string readStandardInput();

/// readFile(), or readStandardInput() for "-".
std::string readFileOrStandardInput(const std::string& name);

}  // namespace qelm::tool

#endif
