#include "console.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>

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

void labelled(const char* colour, std::string_view label, std::string_view text) {
  if (useColour())
    fmt::print(stderr, "qelm: {}{}:\x1b[0m {}\n", colour, label, text);
  else
    fmt::print(stderr, "qelm: {}: {}\n", label, text);
}

}  // namespace

void Console::line(std::string_view text) const {
  if (!quiet_) fmt::print(stderr, "{}\n", text);
}

void Console::note(std::string_view text) const {
  if (!quiet_) labelled(kBlue, "note", text);
}

void Console::error(std::string_view text) const { labelled(kRed, "error", text); }

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
