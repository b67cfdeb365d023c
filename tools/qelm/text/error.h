// How the tool gives up: one sentence for the user, one exit code for scripts.
#ifndef QELM_TOOLS_ERROR_H
#define QELM_TOOLS_ERROR_H

#include <stdexcept>
#include <string>

#include "text/text.h"

namespace qelm::tool {

/// Documented in --help and in docs/tool.md; scripts rely on them.
enum ExitCode : int {
  kExitOk = 0,
  /// The result cannot be written, or the machine's memory is not enough.
  kExitFailure = 1,
  /// The command line is wrong, or asks for what the mesh has not.
  kExitUsage = 2,
  /// A file that cannot be opened, or is not what its name says.
  kExitUnreadable = 3,
  /// A file that was read, but holds no mesh that can be used.
  kExitBadMesh = 4,
  /// The mesh is good, but not enough of it is fixed for one smooth field.
  kExitSingular = 5,
};

/// What is wrong, where, and what to do about it.
class InputError : public std::runtime_error {
 public:
  explicit InputError(const std::string& text, ExitCode code = kExitFailure)
      : std::runtime_error(printable(text)), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

struct OutputError : InputError {
  explicit OutputError(const std::string& text) : InputError(text, kExitFailure) {}
};

/// The command line is correct, but asks for what the mesh has not.
struct RequestError : InputError {
  explicit RequestError(const std::string& text) : InputError(text, kExitUsage) {}
};

struct FileError : InputError {
  explicit FileError(const std::string& text) : InputError(text, kExitUnreadable) {}
};

struct MeshError : InputError {
  explicit MeshError(const std::string& text) : InputError(text, kExitBadMesh) {}
};

struct SingularError : InputError {
  explicit SingularError(const std::string& text) : InputError(text, kExitSingular) {}
};

/// The command line cannot be understood; a hint at --help follows.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace qelm::tool

#endif
