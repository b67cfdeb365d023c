// Entry point: arguments in, exit code out.
#include <exception>
#include <new>
#include <string>
#include <vector>

#ifdef _WIN32
#include <windows.h>
// after windows.h
#include <shellapi.h>
#endif

#include "commands/command_line.h"
#include "files/paths.h"
#include "terminal/console.h"
#include "text/error.h"

namespace {

using qelm::tool::Console;

#ifdef _WIN32
// The narrow arguments have lost every character outside the system's code page.
std::vector<std::string> utf8Arguments(int, char**) {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int k = 1; k < count; ++k) arguments.push_back(qelm::tool::toUtf8(wide[k]));
  LocalFree(wide);
  return arguments;
}
#else
std::vector<std::string> utf8Arguments(int argc, char** argv) { return {argv + 1, argv + argc}; }
#endif

int run(int argc, char** argv) {
  try {
    return qelm::tool::runCommandLine(utf8Arguments(argc, argv));
  } catch (const qelm::tool::UsageError& error) {
    Console().error(error.what());
    Console().line("Run 'qelm --help' or 'qelm COMMAND --help'.");
    return qelm::tool::kExitUsage;
  } catch (const std::bad_alloc&) {
    Console().error("out of memory; the mesh is too large for this machine");
  } catch (const qelm::tool::InputError& error) {
    Console().error(error.what());
    return error.code();
  } catch (const std::exception& error) {
    Console().error(error.what());
  }
  return qelm::tool::kExitFailure;
}

}  // namespace

int main(int argc, char** argv) {
  qelm::tool::prepareConsole();
  return run(argc, argv);
}
