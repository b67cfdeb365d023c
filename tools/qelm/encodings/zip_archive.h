// ZIP archives.
#ifndef QELM_TOOLS_ZIP_ARCHIVE_H
#define QELM_TOOLS_ZIP_ARCHIVE_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace qelm::tool {

/// Reads single files of an archive that is in memory: stored or deflated ones, with 64-bit sizes
/// too. Format: PKWARE, APPNOTE. Throws FileError that names the archive.
class ZipArchive {
 public:
  /// `name` is the archive's, for messages; both must outlive this.
  ZipArchive(std::string_view bytes, const std::string& name);

  /// The bytes of a file in it, checked against their check sum; nothing when there is none of
  /// that name. Names differ in no more than the case of their letters.
  std::optional<std::string> file(std::string_view path) const;
  /// The first file whose name ends so.
  std::optional<std::string> firstNameEnding(std::string_view end) const;

 private:
  struct Entry {
    std::uint16_t flags, method;
    std::uint32_t checkSum;
    std::uint64_t compressedSize, size, offset;
  };

  [[noreturn]] void fail(const std::string& what) const;
  std::uint64_t word(std::uint64_t at, std::size_t size) const;
  void readDirectory(std::uint64_t at, std::uint64_t count);
  void readLargeSizes(std::uint64_t at, std::uint64_t end, Entry& entry) const;

  std::string_view bytes_;
  const std::string& name_;
  std::map<std::string, Entry> entries_;  ///< by name, in small letters
};

}  // namespace qelm::tool

#endif
