#include "terminal/console.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "text/text.h"

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace qelm::tool {
namespace {

bool standardErrorIsTerminal() {
#ifdef _WIN32
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(fileno(stderr)) != 0;
#endif
}

// See no-color.org: any value but an empty one switches colour off.
bool useColour() {
  const char* const noColour = std::getenv("NO_COLOR");
  if (noColour != nullptr && *noColour != '\0') return false;
  return standardErrorIsTerminal();
}

constexpr const char* kRed = "\x1b[1;31m";
constexpr const char* kBlue = "\x1b[1;34m";

// Longer than any message that names an element, its file and what to do.
constexpr std::size_t kLongestMessage = 4000;

// One standard error stream, one line at its end: shared with the thread that
// keeps the line up to date.
std::mutex streamMutex;
std::size_t liveWidth = 0;

void clearLiveLine() {
  if (liveWidth == 0) return;
  fmt::print(stderr, "\r{:{}}\r", "", liveWidth);
  liveWidth = 0;
}

std::string message(std::string_view text) {
  if (text.size() <= kLongestMessage) return printable(text);
  return printable(text.substr(0, kLongestMessage)) + " ...";
}

void print(std::string_view text) {
  const std::lock_guard lock(streamMutex);
  clearLiveLine();
  fmt::print(stderr, "{}\n", message(text));
}

void labelled(const char* colour, std::string_view label, std::string_view text) {
  const std::lock_guard lock(streamMutex);
  clearLiveLine();
  if (useColour())
    fmt::print(stderr, "qelm: {}{}:\x1b[0m {}\n", colour, label, message(text));
  else
    fmt::print(stderr, "qelm: {}: {}\n", label, message(text));
}

}  // namespace

void Console::line(std::string_view text) const {
  if (!quiet_) print(text);
}

void Console::note(std::string_view text) const {
  if (!quiet_) labelled(kBlue, "note", text);
}

void Console::detail(std::string_view text) const {
  if (verbose_) print(text);
}

void Console::error(std::string_view text) const { labelled(kRed, "error", text); }

void LiveLine::show(const std::string& text) {
  const std::lock_guard lock(streamMutex);
  fmt::print(stderr, "\r{:{}}", text, liveWidth);
  std::fflush(stderr);
  liveWidth = std::max(liveWidth, text.size());
}

void LiveLine::clear() {
  const std::lock_guard lock(streamMutex);
  clearLiveLine();
}

bool hasTerminal() {
  const char* const kind = std::getenv("TERM");
  if (kind != nullptr && std::string_view(kind) == "dumb") return false;
  return standardErrorIsTerminal();
}

void prepareConsole() {
#ifdef _WIN32
  SetConsoleOutputCP(CP_UTF8);
  const HANDLE handle = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode(handle, &mode) != 0)
    SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
#endif
}

}  // namespace qelm::tool
