// What the tool says: messages on the standard error stream, data on the
// standard output.
#ifndef QELM_TOOLS_CONSOLE_H
#define QELM_TOOLS_CONSOLE_H

#include <string>
#include <string_view>
#include <vector>

namespace qelm::tool {

/// The options of every command that say what it prints.
struct OutputOptions {
  bool quiet = false;
  bool verbose = false;
  bool json = false;
  /// The files that the command line may read: no result may overwrite them.
  std::vector<std::string> inputs;
};

class Console {
 public:
  explicit Console(bool quiet = false) : quiet_(quiet) {}
  explicit Console(const OutputOptions& options)
      : quiet_(options.quiet), verbose_(options.verbose) {}

  /// A line of the summary; not shown with -q.
  void line(std::string_view text) const;
  /// Something that was done without being asked for, or that the user should know; not shown
  /// with -q.
  void note(std::string_view text) const;
  /// Shown with -v only.
  void detail(std::string_view text) const;
  /// Always shown.
  void error(std::string_view text) const;

  bool quiet() const { return quiet_; }
  bool verbose() const { return verbose_; }

 private:
  bool quiet_ = false;
  bool verbose_ = false;
};

/// The last line of a terminal, which is written again and again. Anything else that is printed
/// replaces it.
class LiveLine {
 public:
  static void show(const std::string& text);
  static void clear();
};

/// Whether the standard error stream is a terminal on which a line can be overwritten.
bool hasTerminal();

/// Lets Windows consoles show UTF-8. Does nothing elsewhere.
void prepareConsole();

}  // namespace qelm::tool

#endif
