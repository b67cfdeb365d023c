#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <initializer_list>
#include <sstream>

#include "conditions.h"
#include "console.h"
#include "error.h"
#include "heatmap_command.h"
#include "load_csv.h"
#include "output_file.h"
#include "solve_command.h"
#include "weld_command.h"

namespace qelm::tool {
namespace {

constexpr const char* kExitHelp =
    "Messages go to the standard error stream, data to the standard output. Exit code 0\n"
    "for success, 1 for input that cannot be used or a result that cannot be written,\n"
    "2 for a wrong command line. NO_COLOR switches colours off.\n";

constexpr const char* kSolveExamples =
    "Examples:\n"
    "  qelm solve roof.obj --fix loop:0=0 --fix loop:1=1 -o field.csv\n"
    "  qelm solve part.stl --fix vertex:0,7=20.5 --fix near:0,0,10=80 -o - | head\n"
    "  qelm solve hall.obj --fix box:0,0,0,9,9,0=0 --fix loop:1=3 --json -o field.csv\n";

constexpr const char* kHeatmapExamples =
    "Example:\n"
    "  qelm heatmap roof.obj --fix loop:0=0 --fix loop:1=1 -o heat\n";

constexpr const char* kHeatmapHelp =
    "Writes PATH.obj and PATH.mtl and, beside them, viridis.PNG: the largest value is\n"
    "yellow, the smallest dark blue. A file of those names is replaced. Vertices come in\n"
    "the library's order (fixed ones first), not in the mesh's.\n";

constexpr const char* kWeldHelp =
    "Vertices closer together than the tolerance become one, at the place of the one that\n"
    "comes first; chains of close vertices merge as a whole. Triangles that collapse or\n"
    "repeat an earlier one are dropped, then vertices that no triangle uses. Every corner\n"
    "of an STL facet counts as a vertex. --tolerance 0 merges nothing.\n"
    "The extension of OUT chooses the format: .obj and .ply keep every double, .stl is\n"
    "rounded to single precision.\n";

constexpr const char* kWeldExamples =
    "Example:\n"
    "  qelm weld part.stl -o part.obj --tolerance 1e-4\n";

constexpr const char* kSoupHelp =
    "STL files are welded before anything else, within a millionth of the mesh's diagonal;\n"
    "a note says so, and vertex numbers are those after welding.\n";

void addOutputOptions(CLI::App& command, OutputOptions& output) {
  command.add_flag("-q,--quiet", output.quiet, "Say nothing but errors");
  command.add_flag("--json", output.json, "Print the summary as JSON on the standard output");
}

void addMesh(CLI::App& command, std::string& mesh) {
  command.add_option("mesh", mesh, "Mesh file: .obj, .stl (text or binary) or .ply")
      ->type_name("MESH")
      ->required();
}

void addFieldOptions(CLI::App& command, FieldOptions& field) {
  addMesh(command, field.mesh);
  command.add_option("--fix", field.fixes, "Hold vertices at a value; may be given often")
      ->type_name("SELECTOR=VALUE")
      ->allow_extra_args(false);
  command.add_option("--load", field.load, "Add a load, one value per vertex")
      ->type_name("FILE.csv");
}

/// The sections of a command's help, with an empty line between each two.
std::string sections(std::initializer_list<const char*> texts) {
  std::string all;
  for (const char* text : texts) all += (all.empty() ? "" : "\n") + std::string(text);
  return all;
}

class CommandLine {
 public:
  CommandLine() {
    app_.name("qelm");
    // A path that begins with a slash is a path on Windows, too.
    app_.allow_windows_style_options(false);
    app_.set_version_flag("--version", std::string("qelm ") + QELM_TOOL_VERSION,
                          "Print the version and exit");
    app_.set_help_flag("-h,--help", "Print this help and exit");
    app_.require_subcommand(1);
    app_.footer(kExitHelp);
    addSolve();
    addHeatmap();
    addWeld();
  }

  int run(std::vector<std::string> arguments) {
    requireCommand(arguments);
    std::reverse(arguments.begin(), arguments.end());
    try {
      app_.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
      return explain(error);
    }
    return kExitOk;
  }

 private:
  void addSolve() {
    CLI::App& command = *app_.add_subcommand(
        "solve", "Compute the smooth field between fixed values on a triangle mesh");
    addFieldOptions(command, solve_.field);
    command
        .add_option("-o,--output", solve_.output,
                    "Write the field as CSV: vertex,x,y,z,value; - is the standard output")
        ->type_name("FIELD.csv");
    addOutputOptions(command, output_);
    command.footer(sections({kConditionHelp, kLoadHelp, kSoupHelp, kSolveExamples, kExitHelp}));
    command.callback([this] {
      requireFixes(solve_.field);
      runSolve(solve_, output_);
    });
  }

  void addHeatmap() {
    CLI::App& command =
        *app_.add_subcommand("heatmap", "Write a mesh with its field as a heat map for any viewer");
    addFieldOptions(command, heatmap_.field);
    command.add_option("-o,--output", heatmap_.output, "Where the files go, without extension")
        ->type_name("PATH")
        ->required();
    addOutputOptions(command, output_);
    command.footer(sections(
        {kHeatmapHelp, kConditionHelp, kLoadHelp, kSoupHelp, kHeatmapExamples, kExitHelp}));
    command.callback([this] {
      requireFixes(heatmap_.field);
      runHeatmap(heatmap_, output_);
    });
  }

  void addWeld() {
    CLI::App& command =
        *app_.add_subcommand("weld", "Merge vertices that lie together, as in STL files");
    addMesh(command, weld_.mesh);
    command
        .add_option("-o,--output", weld_.output, "Where the mesh goes; - is the standard output")
        ->type_name("OUT")
        ->required();
    command
        .add_option("--tolerance", weld_.tolerance,
                    "Merge vertices closer than this; a millionth of the diagonal unless given")
        ->type_name("DISTANCE");
    addOutputOptions(command, output_);
    command.footer(sections({kWeldHelp, kWeldExamples, kExitHelp}));
    command.callback([this] { runWeld(weld_, output_); });
  }

  // CLI11 would only say that a subcommand is required.
  void requireCommand(const std::vector<std::string>& arguments) const {
    std::string names;
    for (const CLI::App* command : app_.get_subcommands({})) {
      if (!arguments.empty() && command->get_name() == arguments[0]) return;
      names += (names.empty() ? "" : ", ") + command->get_name();
    }
    if (arguments.empty()) throw UsageError("no command; name one of: " + names);
    if (arguments[0].rfind('-', 0) != 0)
      throw UsageError("there is no command '" + arguments[0] + "'; name one of: " + names);
  }

  static void requireFixes(const FieldOptions& field) {
    if (field.fixes.empty())
      throw UsageError(
          "no vertex is fixed; give at least one --fix SELECTOR=VALUE, such as --fix loop:0=0");
  }

  int explain(const CLI::ParseError& error) const {
    if (error.get_exit_code() == 0) {  // --help, --version
      std::ostringstream text;
      app_.exit(error, text, text);
      printData(text.str());
      return kExitOk;
    }
    Console().error(error.what());
    Console().line("Run 'qelm --help' or 'qelm COMMAND --help'.");
    return kExitUsage;
  }

  CLI::App app_{"Smooth fields between prescribed values on triangle meshes."};
  OutputOptions output_;
  SolveOptions solve_;
  HeatmapOptions heatmap_;
  WeldOptions weld_;
};

}  // namespace

int runCommandLine(std::vector<std::string> arguments) {
  return CommandLine().run(std::move(arguments));
}

}  // namespace qelm::tool
