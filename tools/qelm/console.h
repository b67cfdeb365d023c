// What the tool says: messages on the standard error stream, data on the
// standard output.
#ifndef QELM_TOOLS_CONSOLE_H
#define QELM_TOOLS_CONSOLE_H

#include <string_view>

namespace qelm::tool {

class Console {
 public:
  explicit Console(bool quiet = false) : quiet_(quiet) {}

  /// A line of the summary; not shown with -q.
  void line(std::string_view text) const;
  /// Something that was done without being asked for, or is better known; not
  /// shown with -q.
  void note(std::string_view text) const;
  /// Always shown.
  void error(std::string_view text) const;

  bool quiet() const { return quiet_; }

 private:
  bool quiet_;
};

/// Lets Windows consoles show UTF-8. Does nothing elsewhere.
void prepareConsole();

}  // namespace qelm::tool

#endif
