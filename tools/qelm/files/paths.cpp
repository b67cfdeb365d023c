#include "files/paths.h"

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

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

std::string shownName(const std::string& name) { return name == "-" ? "standard input" : name; }

}  // namespace qelm::tool
