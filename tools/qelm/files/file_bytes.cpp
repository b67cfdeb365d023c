#include "files/file_bytes.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <utility>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#else
#include "files/mapped_pages.h"
#endif

#include "files/paths.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace fs = std::filesystem;

#ifdef _WIN32
FileBytes::Memory FileBytes::map(const fs::path&) { return {nullptr, Release{}}; }

void FileBytes::Release::operator()(const char* bytes) const { delete[] bytes; }

void FileBytes::requireWhole(const fs::path&) const {}
#else
FileBytes::Memory FileBytes::map(const fs::path& path) {
  const std::span<const char> pages = mapPages(path.c_str());
  return {pages.data(), Release{pages.size()}};
}

void FileBytes::Release::operator()(const char* bytes) const {
  if (mapped > 0)
    unmapPages({bytes, mapped});
  else
    delete[] bytes;
}

void FileBytes::requireWhole(const fs::path& path) const {
  if (bytes_.get_deleter().mapped > 0 && arePagesMissing())
    throw FileError(
        fmt::format("{}: became shorter while it was read; was it being written?", toUtf8(path)));
}
#endif

FileBytes readFileBytes(const fs::path& path) {
  const std::string name = toUtf8(path);
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  if (status.type() == fs::file_type::not_found)
    throw FileError(fmt::format("{}: no such file; check the name and the folder", name));
  if (status.type() == fs::file_type::directory)
    throw FileError(fmt::format("{}: is a folder; name a file in it", name));
  // A pipe may be opened once: whoever writes sees it being closed.
  if (status.type() == fs::file_type::regular) {
    if (FileBytes::Memory mapped = FileBytes::map(path)) {
      const std::size_t size = mapped.get_deleter().mapped;
      return {std::move(mapped), size};
    }
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) throw FileError(fmt::format("{}: cannot be opened: {}", name, std::strerror(errno)));
  constexpr std::size_t kBlock = 1 << 20;
  const auto announced = fs::file_size(path, ignored);
  // A device or a pipe has no size. One byte more shows that the end is reached.
  std::size_t room = ignored ? kBlock : static_cast<std::size_t>(announced) + 1;
  // Unlike a string's bytes these are not set to zero before.
  auto bytes = std::make_unique_for_overwrite<char[]>(room);
  std::size_t size = 0;
  while (true) {
    file.read(bytes.get() + size, static_cast<std::streamsize>(room - size));
    size += asIndex(file.gcount());
    if (!file) break;
    room = 2 * room + kBlock;
    auto larger = std::make_unique_for_overwrite<char[]>(room);
    std::memcpy(larger.get(), bytes.get(), size);
    bytes = std::move(larger);
  }
  if (file.bad()) throw FileError(fmt::format("{}: reading it failed", name));
  return {FileBytes::Memory(bytes.release(), FileBytes::Release{}), size};
}

std::string readFile(const fs::path& path) {
  const FileBytes bytes = readFileBytes(path);
  std::string result(static_cast<std::string_view>(bytes));
  bytes.requireWhole(path);
  return result;
}

std::string readStandardInput() {
  if (std::feof(stdin) != 0)
    throw UsageError("the standard input (-) can be read once; put one of both into a file");
#ifdef _WIN32
  _setmode(_fileno(stdin), _O_BINARY);
#endif
  std::string bytes;
  constexpr std::size_t kBlock = 1 << 16;
  for (std::size_t read = kBlock; read == kBlock; bytes.resize(bytes.size() - kBlock + read)) {
    bytes.resize(bytes.size() + kBlock);
    read = std::fread(bytes.data() + bytes.size() - kBlock, 1, kBlock, stdin);
  }
  if (std::ferror(stdin) != 0) throw FileError("standard input: reading it failed");
  return bytes;
}

std::string readFileOrStandardInput(const std::string& name) {
  return name == "-" ? readStandardInput() : readFile(toPath(name));
}

}  // namespace qelm::tool
