// How the tool gives up: one sentence for the user, one exit code for scripts.
#ifndef QELM_TOOLS_ERROR_H
#define QELM_TOOLS_ERROR_H

#include <stdexcept>
#include <string>

namespace qelm::tool {

enum ExitCode : int {
  kExitOk = 0,
  /// The input cannot be used, or the result cannot be written.
  kExitBadInput = 1,
  /// The command line itself is wrong.
  kExitUsage = 2,
};

/// What is wrong, where, and what to do about it.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace qelm::tool

#endif
