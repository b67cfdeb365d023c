#include "files/paths.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <utility>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <process.h>
#else
#include <unistd.h>
#endif

#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace fs = std::filesystem;

fs::path toPath(std::string_view utf8) { return fs::path(std::u8string(utf8.begin(), utf8.end())); }

std::string toUtf8(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

#ifdef _WIN32
int processNumber() { return _getpid(); }
#else
int processNumber() { return getpid(); }
#endif

std::string lowerExtension(const fs::path& path) { return lowerCase(toUtf8(path.extension())); }

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

std::string readFile(const fs::path& path) {
  return std::string(std::string_view(readFileBytes(path)));
}

FileBytes readFileBytes(const fs::path& path) {
  const std::string name = toUtf8(path);
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  if (status.type() == fs::file_type::not_found)
    throw FileError(fmt::format("{}: no such file; check the name and the folder", name));
  if (status.type() == fs::file_type::directory)
    throw FileError(fmt::format("{}: is a folder; name a file in it", name));
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) throw FileError(fmt::format("{}: cannot be opened: {}", name, std::strerror(errno)));
  constexpr std::size_t kBlock = 1 << 20;
  const auto announced = fs::file_size(path, ignored);
  // A device or a pipe has no size. One byte more shows that the end is reached.
  std::size_t room = ignored ? kBlock : static_cast<std::size_t>(announced) + 1;
  FileBytes result{std::make_unique_for_overwrite<char[]>(room)};
  while (true) {
    file.read(result.bytes.get() + result.size, static_cast<std::streamsize>(room - result.size));
    result.size += static_cast<std::size_t>(file.gcount());
    if (!file) break;
    room = 2 * room + kBlock;
    FileBytes larger{std::make_unique_for_overwrite<char[]>(room), result.size};
    std::memcpy(larger.bytes.get(), result.bytes.get(), result.size);
    result = std::move(larger);
  }
  if (file.bad()) throw FileError(fmt::format("{}: reading it failed", name));
  return result;
}

std::string shownName(const std::string& name) { return name == "-" ? "standard input" : name; }

std::string readFileOrStandardInput(const std::string& name) {
  return name == "-" ? readStandardInput() : readFile(toPath(name));
}

}  // namespace qelm::tool
