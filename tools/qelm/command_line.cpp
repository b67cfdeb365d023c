#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <initializer_list>
#include <sstream>

#include "check_command.h"
#include "conditions.h"
#include "console.h"
#include "curves_command.h"
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
    "  qelm solve hall.obj --fix box:0,0,0,9,9,0=0 --fix loop:1=3 --json -o field.csv\n"
    "  qelm solve roof.obj --fix loop:0=0,1 --fix loop:1=1,0 -o fields.csv\n";

constexpr const char* kSeveralHelp =
    "Several fields at once: --fix SELECTOR=VALUE,VALUE,... gives one value for each field,\n"
    "a single VALUE is for all. They are solved together, in much less time than one after\n"
    "another, and written to columns value1, value2 and so on.\n";

constexpr const char* kHeatmapExamples =
    "Example:\n"
    "  qelm heatmap roof.obj --fix loop:0=0 --fix loop:1=1 -o heat\n";

constexpr const char* kHeatmapHelp =
    "Writes PATH.obj and PATH.mtl and, beside them, viridis.PNG: the largest value is\n"
    "yellow, the smallest dark blue. A file of those names is replaced. Vertices come in\n"
    "the library's order (fixed ones first), not in the mesh's.\n";

constexpr const char* kCurvesHelp =
    "Cuts the field at --levels N levels that divide its range evenly, the ends left out,\n"
    "or at the values of --at. Curves are closed or end at the mesh's boundary; higher\n"
    "values lie at their left. The extension of OUT chooses the format, or --format:\n"
    "  .obj    polylines, a group for each level\n"
    "  .json   levels, and for each curve its level, value, points, and whether it is closed\n"
    "  .csv    a line for each point: curve,level,value,closed,x,y,z\n"
    "  .svg    a drawing with a legend, seen along an axis (--view x, y, z, -x, -y, -z) or at\n"
    "          right angles to the plane that fits best (--view plane, unless given)\n"
    "Coordinates keep every digit, but for the drawing.\n";

constexpr const char* kCurvesExamples =
    "Examples:\n"
    "  qelm curves roof.obj --fix loop:0=0 --fix loop:1=1 --levels 12 -o curves.obj\n"
    "  qelm curves roof.obj --fix loop:0=0 --fix loop:1=1 --at 0.25,0.5,0.75 -o curves.svg\n"
    "  qelm curves part.stl --fix vertex:0=20 --fix near:9,9,9=80 --levels 5 -o - --format csv\n";

constexpr const char* kCheckHelp =
    "Looks for what would keep the mesh from being solved on, and prints a report on the\n"
    "standard output; -q leaves only the exit code: 0 when there is no defect, else 1. With\n"
    "--fix, conditions are looked at as well: every connected part needs a fixed vertex.\n";

constexpr const char* kCheckExamples =
    "Examples:\n"
    "  qelm check roof.obj\n"
    "  qelm check roof.obj --fix loop:0=0 --json\n";

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

void addFixes(CLI::App& command, std::vector<std::string>& fixes) {
  command.add_option("--fix", fixes, "Hold vertices at a value; may be given often")
      ->type_name("SELECTOR=VALUE")
      ->allow_extra_args(false);
}

void addFieldOptions(CLI::App& command, FieldOptions& field) {
  addMesh(command, field.mesh);
  addFixes(command, field.fixes);
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
    addCheck();
    addCurves();
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
    return outcome_;
  }

 private:
  void addSolve() {
    CLI::App& command = *app_.add_subcommand(
        "solve", "Compute the smooth field between fixed values on a triangle mesh");
    addFieldOptions(command, solve_.field);
    solve_.field.several = true;
    command
        .add_option("-o,--output", solve_.output,
                    "Write the field as CSV: vertex,x,y,z,value; - is the standard output")
        ->type_name("FIELD.csv");
    addOutputOptions(command, output_);
    command.footer(
        sections({kConditionHelp, kSeveralHelp, kLoadHelp, kSoupHelp, kSolveExamples, kExitHelp}));
    command.callback([this] {
      requireFixes(solve_.field);
      runSolve(solve_, output_);
    });
  }

  void addCheck() {
    CLI::App& command =
        *app_.add_subcommand("check", "Say what is wrong with a mesh, and what it is like");
    addMesh(command, check_.mesh);
    addFixes(command, check_.fixes);
    addOutputOptions(command, output_);
    command.footer(sections({kCheckHelp, kConditionHelp, kSoupHelp, kCheckExamples, kExitHelp}));
    command.callback([this] { outcome_ = runCheck(check_, output_); });
  }

  void addCurves() {
    CLI::App& command =
        *app_.add_subcommand("curves", "Cut the field into level curves, joined into polylines");
    addFieldOptions(command, curves_.field);
    command.add_option("--levels", curves_.levels, "How many levels, spread evenly")
        ->type_name("N");
    command.add_option("--at", curves_.at, "Or the levels themselves")->type_name("VALUE,...");
    command.add_option("--view", curves_.view, "Where a drawing is seen from")
        ->type_name("DIRECTION");
    command.add_option("--format", curves_.format, "obj, json, svg or csv, whatever OUT is called")
        ->type_name("NAME");
    command
        .add_option("-o,--output", curves_.output, "Where the curves go; - is the standard output")
        ->type_name("OUT")
        ->required();
    addOutputOptions(command, output_);
    command.footer(
        sections({kCurvesHelp, kConditionHelp, kLoadHelp, kSoupHelp, kCurvesExamples, kExitHelp}));
    command.callback([this] {
      requireFixes(curves_.field);
      runCurves(curves_, output_);
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
  int outcome_ = kExitOk;
  OutputOptions output_;
  SolveOptions solve_;
  CheckOptions check_;
  CurvesOptions curves_;
  HeatmapOptions heatmap_;
  WeldOptions weld_;
};

}  // namespace

int runCommandLine(std::vector<std::string> arguments) {
  return CommandLine().run(std::move(arguments));
}

}  // namespace qelm::tool
