// What every command of the command line is added to.
#ifndef QELM_TOOLS_COMMAND_FRAME_H
#define QELM_TOOLS_COMMAND_FRAME_H

#include <CLI/CLI.hpp>

#include "commands/named_inputs.h"
#include "terminal/console.h"
#include "text/error.h"

namespace qelm::tool {

struct CommandFrame {
  CLI::App& app;
  OutputOptions output;
  int exitCode = kExitOk;  ///< of a command that ends without an exception

  /// Runs `run` when the command line asks for the command. Whatever writes files is told first
  /// what the command line may read.
  template <class Run>
  void onRun(CLI::App& command, Run run) {
    command.callback([this, &command, run] {
      output.inputs = inputsOf(command);
      run();
    });
  }
};

}  // namespace qelm::tool

#endif
