#include "files/paths.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

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
  std::string bytes;
  constexpr std::size_t kBlock = 1 << 20;
  const auto size = fs::file_size(path, ignored);
  if (!ignored) bytes.reserve(size + kBlock);  // a device or a pipe has none
  while (file) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kBlock);
    file.read(bytes.data() + before, kBlock);
    bytes.resize(before + static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad()) throw FileError(fmt::format("{}: reading it failed", name));
  return bytes;
}

std::string shownName(const std::string& name) { return name == "-" ? "standard input" : name; }

std::string readFileOrStandardInput(const std::string& name) {
  return name == "-" ? readStandardInput() : readFile(toPath(name));
}

}  // namespace qelm::tool
