#include "commands/mesh_commands.h"

#include <memory>

#include "commands/check_command.h"
#include "commands/info_command.h"
#include "commands/new_mesh.h"
#include "commands/repair_command.h"
#include "commands/shared_options.h"
#include "commands/weld_command.h"
#include "terminal/help_texts.h"

namespace qelm::tool {
namespace {

/// Of a command that writes a mesh.
void addNewMesh(CLI::App& command, NewMeshOptions& options, const char* tolerance) {
  addMesh(command, options.mesh, options.strict);
  command.add_option("-o,--output", options.output, "Where it goes; - is the standard output")
      ->type_name("OUT")
      ->required();
  command.add_option("--format", options.format, "Whatever OUT is called")
      ->type_name("obj|ply|...")
      ->group(kStreams);
  command.add_option("--tolerance", options.tolerance, tolerance)->type_name("DISTANCE");
}

}  // namespace

void addInfo(CommandFrame& frame) {
  const auto options = std::make_shared<InfoOptions>();
  CLI::App& command =
      *frame.app.add_subcommand("info", "Say what a mesh is like: sizes, parts, boundary loops");
  addMesh(command, options->mesh, options->strict);
  addOutputOptions(command, frame.output);
  command.footer(footer(kInfoExamples, "facts, files, output"));
  frame.onRun(command, [&frame, options] { runInfo(*options, frame.output); });
}

void addCheck(CommandFrame& frame) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App& command =
      *frame.app.add_subcommand("check", "Say what is wrong with a mesh, and what it is like");
  addMesh(command, options->mesh, options->strict);
  addFixes(command, options->fixes, options->fixFile);
  addOutputOptions(command, frame.output);
  command.footer(footer(kCheckExamples, "checks, conditions, selectors, files, output"));
  frame.onRun(command, [&frame, options] { frame.exitCode = runCheck(*options, frame.output); });
}

void addWeld(CommandFrame& frame) {
  const auto options = std::make_shared<NewMeshOptions>();
  CLI::App& command =
      *frame.app.add_subcommand("weld", "Merge vertices that lie together, as in STL files");
  addNewMesh(command, *options, "Merge vertices closer than this");
  addOutputOptions(command, frame.output);
  command.footer(footer(kWeldExamples, "welding, files, output"));
  frame.onRun(command, [&frame, options] { runWeld(*options, frame.output); });
}

void addRepair(CommandFrame& frame) {
  const auto options = std::make_shared<NewMeshOptions>();
  CLI::App& command =
      *frame.app.add_subcommand("repair", "Make a mesh that can be solved on of one that cannot");
  addNewMesh(command, *options, "What is smaller than this counts as none");
  addOutputOptions(command, frame.output);
  command.footer(footer(kRepairExamples, "mending, welding, files, output"));
  frame.onRun(command, [&frame, options] { runRepair(*options, frame.output); });
}

}  // namespace qelm::tool
