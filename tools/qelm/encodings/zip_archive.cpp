#include "encodings/zip_archive.h"

#include <fmt/format.h>

#include <algorithm>

#include "encodings/inflate.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

constexpr std::string_view kEnd = "PK\5\6";
constexpr std::string_view kEnd64 = "PK\6\6";
constexpr std::string_view kEnd64Place = "PK\6\7";
constexpr std::string_view kDirectoryEntry = "PK\1\2";
constexpr std::string_view kLocalHeader = "PK\3\4";
constexpr std::size_t kEndSize = 22;
constexpr std::size_t kEnd64PlaceSize = 20;
constexpr std::size_t kMostComment = 0xffff;
constexpr std::size_t kEntrySize = 46;
constexpr std::size_t kLocalSize = 30;

// These stand for "see the larger field".
constexpr std::uint64_t kMost32 = 0xffffffff;
constexpr std::uint64_t kMost16 = 0xffff;
constexpr std::uint64_t kLargeSizes = 1;  // the number of that extra field

constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;
constexpr std::uint16_t kEncrypted = 1;

}  // namespace

ZipArchive::ZipArchive(std::string_view bytes, const std::string& name)
    : bytes_(bytes), name_(name) {
  const std::size_t begin =
      bytes.size() > kEndSize + kMostComment ? bytes.size() - kEndSize - kMostComment : 0;
  const std::size_t found = bytes.substr(begin).rfind(kEnd);
  if (found == bytes.npos) fail("not a ZIP archive, or cut short: it has no directory");
  const std::uint64_t end = begin + found;
  std::uint64_t count = word(end + 10, 2);
  std::uint64_t offset = word(end + 16, 4);
  const bool is64 = (count == kMost16 || offset == kMost32) && end >= kEnd64PlaceSize &&
                    bytes.substr(end - kEnd64PlaceSize).starts_with(kEnd64Place);
  if (is64) {
    const std::uint64_t end64 = word(end - kEnd64PlaceSize + 8, 8);
    if (end64 > bytes.size() || !bytes.substr(end64).starts_with(kEnd64))
      fail("a damaged directory");
    count = word(end64 + 32, 8);
    offset = word(end64 + 48, 8);
  }
  readDirectory(offset, count);
}

void ZipArchive::fail(const std::string& what) const {
  throw FileError(fmt::format("{}: {}", name_, what));
}

std::uint64_t ZipArchive::word(std::uint64_t at, std::size_t size) const {
  if (at > bytes_.size() || size > bytes_.size() - at)
    fail("a damaged ZIP archive; it may be cut short");
  std::uint64_t value = 0;
  for (std::size_t k = size; k > 0; --k)
    value = (value << 8) | static_cast<unsigned char>(bytes_[at + k - 1]);
  return value;
}

void ZipArchive::readDirectory(std::uint64_t at, std::uint64_t count) {
  for (std::uint64_t k = 0; k < count; ++k) {
    if (at > bytes_.size() || !bytes_.substr(at).starts_with(kDirectoryEntry))
      fail(fmt::format("a damaged ZIP archive: {} files are announced, {} are there", count, k));
    Entry entry{static_cast<std::uint16_t>(word(at + 8, 2)),
                static_cast<std::uint16_t>(word(at + 10, 2)),
                static_cast<std::uint32_t>(word(at + 16, 4)),
                word(at + 20, 4),
                word(at + 24, 4),
                word(at + 42, 4)};
    const std::uint64_t nameSize = word(at + 28, 2);
    const std::uint64_t extraSize = word(at + 30, 2);
    const std::uint64_t commentSize = word(at + 32, 2);
    const std::uint64_t extra = at + kEntrySize + nameSize;
    word(extra + extraSize, 0);
    readLargeSizes(extra, extra + extraSize, entry);
    entries_.emplace(lowerCase(bytes_.substr(at + kEntrySize, nameSize)), entry);
    at = extra + extraSize + commentSize;
  }
}

void ZipArchive::readLargeSizes(std::uint64_t at, std::uint64_t end, Entry& entry) const {
  while (at + 4 <= end) {
    const std::uint64_t kind = word(at, 2);
    const std::uint64_t next = at + 4 + word(at + 2, 2);
    if (kind == kLargeSizes) {
      std::uint64_t field = at + 4;
      for (std::uint64_t* size : {&entry.size, &entry.compressedSize, &entry.offset})
        if (*size == kMost32 && field + 8 <= next) {
          *size = word(field, 8);
          field += 8;
        }
    }
    at = next;
  }
}

std::optional<std::string> ZipArchive::file(std::string_view path) const {
  const auto found = entries_.find(lowerCase(path));
  if (found == entries_.end()) return {};
  const Entry& entry = found->second;
  if ((entry.flags & kEncrypted) != 0) fail(fmt::format("'{}' in it is encrypted", path));
  if (entry.offset > bytes_.size() || !bytes_.substr(entry.offset).starts_with(kLocalHeader))
    fail(fmt::format("'{}' in it is not where the directory says", path));
  const std::uint64_t data =
      entry.offset + kLocalSize + word(entry.offset + 26, 2) + word(entry.offset + 28, 2);
  if (data > bytes_.size() || entry.compressedSize > bytes_.size() - data)
    fail(fmt::format("'{}' in it is cut short", path));
  const std::string_view stored = bytes_.substr(data, entry.compressedSize);
  std::string content;
  if (entry.method != kStored && entry.method != kDeflated)
    fail(fmt::format("'{}' in it is compressed by a method other than deflate", path));
  const bool isWhole = entry.method == kStored
                           ? stored.size() == entry.size
                           : inflate(stored, Wrapping::kNone, entry.size, content);
  if (entry.method == kStored) content = stored;
  if (!isWhole || crc32Of(content) != entry.checkSum)
    fail(fmt::format("'{}' in it is damaged", path));
  return content;
}

std::optional<std::string> ZipArchive::firstNameEnding(std::string_view end) const {
  for (const auto& [name, entry] : entries_)
    if (name.ends_with(end)) return name;
  return {};
}

}  // namespace qelm::tool
