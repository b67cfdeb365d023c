#include "commands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <sstream>

#include "commands/check_command.h"
#include "commands/curves_command.h"
#include "commands/gradient_command.h"
#include "commands/heatmap_command.h"
#include "commands/help_formatter.h"
#include "commands/info_command.h"
#include "commands/named_inputs.h"
#include "commands/repair_command.h"
#include "commands/shared_options.h"
#include "commands/solve_command.h"
#include "commands/view_command.h"
#include "commands/weld_command.h"
#include "files/output_file.h"
#include "terminal/completion.h"
#include "terminal/console.h"
#include "terminal/help_texts.h"
#include "terminal/manual_page.h"
#include "text/error.h"

namespace qelm::tool {
namespace {

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
    app_.formatter(std::make_shared<HelpFormatter>());
    app_.footer(topicList() +
                "\nWhere to begin:\n  qelm info MESH      shows the boundary loops of a mesh\n");
    addInfo();
    addCheck();
    addSolve();
    addGradient();
    addHeatmap();
    addCurves();
    addView();
    addWeld();
    addRepair();
    addCompletion();
    addManual();
    addHelp();
  }

  int run(std::vector<std::string> arguments) {
    requireCommand(arguments);
    joinAuto(arguments);
    std::reverse(arguments.begin(), arguments.end());
    try {
      app_.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
      return explain(error);
    }
    return outcome_;
  }

 private:
  /// Every command's: what it reads is known to all that write files.
  template <class Run>
  void onRun(CLI::App& command, Run run) {
    command.callback([this, &command, run] {
      output_.inputs = inputsOf(command);
      run();
    });
  }

  void addInfo() {
    CLI::App& command =
        *app_.add_subcommand("info", "Say what a mesh is like: sizes, parts, boundary loops");
    addMesh(command, info_.mesh, info_.strict);
    addOutputOptions(command, output_);
    command.footer(footer(kInfoExamples, "facts, files, output"));
    onRun(command, [this] { runInfo(info_, output_); });
  }

  void addSolve() {
    CLI::App& command =
        *app_.add_subcommand("solve", "Compute the smooth field between fixed values");
    addFieldOptions(command, solve_.field);
    solve_.field.several = true;
    command.add_option("-o,--output", solve_.output, "Write the field; - is the standard output")
        ->type_name("FIELD.csv");
    command.add_option("--format", solve_.format, "Whatever FIELD.csv is called")
        ->type_name("csv|npy|vtp|vtu")
        ->group(kStreams);
    command.add_flag("--gradient", solve_.gradient, "Write its gradient at the vertices as well");
    command.add_flag("--compare-plain", solve_.comparePlain,
                     "With --robust, say how far the plain field is off");
    addOutputOptions(command, output_);
    command.footer(
        footer(kSolveExamples, "conditions, selectors, loads, gradients, robust, files"));
    onRun(command, [this] {
      requireFixes(solve_.field);
      runSolve(solve_, output_);
    });
  }

  void addGradient() {
    CLI::App& command =
        *app_.add_subcommand("gradient", "Write in which direction a field grows, and how steeply");
    addFieldOptions(command, gradient_.field);
    addGivenField(command, gradient_.field);
    command.add_option("--per", gradient_.per, "What has one vector each")
        ->type_name("triangle|vertex");
    command.add_option("-o,--output", gradient_.output, "As .csv, .npy, .ply, .vtp; or -")
        ->type_name("OUT");
    command.add_option("--format", gradient_.format, "Whatever OUT is called")
        ->type_name("csv|npy|ply|vtp|vtu")
        ->group(kStreams);
    addOutputOptions(command, output_);
    command.footer(
        footer(kGradientExamples, "gradients, conditions, fields, loads, robust, output"));
    onRun(command, [this] {
      requireFixes(gradient_.field);
      runGradient(gradient_, output_);
    });
  }

  void addCheck() {
    CLI::App& command =
        *app_.add_subcommand("check", "Say what is wrong with a mesh, and what it is like");
    addMesh(command, check_.mesh, check_.strict);
    addFixes(command, check_.fixes, check_.fixFile);
    addOutputOptions(command, output_);
    command.footer(footer(kCheckExamples, "checks, conditions, selectors, files, output"));
    onRun(command, [this] { outcome_ = runCheck(check_, output_); });
  }

  void addHeatmap() {
    CLI::App& command = *app_.add_subcommand("heatmap", "Write a mesh with its field in colours");
    addFieldOptions(command, heatmap_.field);
    addGivenField(command, heatmap_.field);
    command.add_option("-o,--output", heatmap_.output, "PATH.obj and two more; .ply, .glb, .vtp")
        ->type_name("PATH")
        ->required();
    command.add_option("--format", heatmap_.format, "Of one file, whatever PATH is")
        ->type_name("ply|glb|gltf|vtp|vtu")
        ->group(kStreams);
    addColourOptions(command, heatmap_.picture);
    addOutputOptions(command, output_);
    command.footer(footer(kHeatmapExamples, "conditions, fields, loads, robust, files, output"));
    onRun(command, [this] {
      requireFixes(heatmap_.field);
      runHeatmap(heatmap_, output_);
    });
  }

  void addCurves() {
    CLI::App& command =
        *app_.add_subcommand("curves", "Cut a field's level curves: polylines, or a picture");
    addFieldOptions(command, curves_.field);
    curves_.field.several = true;
    addGivenField(command, curves_.field);
    addLevels(command, curves_.levels);
    addSimplify(command, curves_.simplify);
    command.add_option("-o,--output", curves_.outputs, "As .obj, .json, .svg, .dxf, ...; or -")
        ->type_name("OUT")
        ->allow_extra_args(false)
        ->required();
    command.add_option("--format", curves_.format, "Whatever OUT is called")
        ->type_name("obj|json|svg|dxf|...")
        ->group(kStreams);
    addViewOptions(command, curves_.picture, "From where an .svg looks at the mesh");
    addSheetOptions(command, curves_.sheet);
    addColourOptions(command, curves_.picture);
    addOutputOptions(command, output_);
    command.footer(
        footer(kCurvesExamples, "levels, conditions, fields, loads, robust, files, output"));
    onRun(command, [this] {
      requireFixes(curves_.field);
      runCurves(curves_, output_);
    });
  }

  void addView() {
    CLI::App& command =
        *app_.add_subcommand("view", "Write a page that shows the field in a browser");
    addFieldOptions(command, view_.field);
    view_.field.several = true;
    addGivenField(command, view_.field);
    addLevels(command, view_.levels);
    command.add_option("-o,--output", view_.output, "Where it goes; - is the standard output")
        ->type_name("PAGE.html")
        ->required();
    command.add_option("--page", view_.page, "Fill in this page, such as the live one")
        ->type_name("TEMPLATE.html")
        ->group("qelm help pictures");
    addViewOptions(command, view_.picture, "From where the page looks at first");
    addColourOptions(command, view_.picture);
    addOutputOptions(command, output_);
    command.footer(footer(kViewExamples, "levels, conditions, fields, loads, robust, output"));
    onRun(command, [this] {
      requireFixes(view_.field);
      runView(view_, output_);
    });
  }

  void addWeld() {
    CLI::App& command =
        *app_.add_subcommand("weld", "Merge vertices that lie together, as in STL files");
    addMesh(command, weld_.mesh, weld_.strict);
    command.add_option("-o,--output", weld_.output, "Where it goes; - is the standard output")
        ->type_name("OUT")
        ->required();
    command.add_option("--format", weld_.format, "Whatever OUT is called")
        ->type_name("obj|ply|...")
        ->group(kStreams);
    command.add_option("--tolerance", weld_.tolerance, "Merge vertices closer than this")
        ->type_name("DISTANCE");
    addOutputOptions(command, output_);
    command.footer(footer(kWeldExamples, "welding, files, output"));
    onRun(command, [this] { runWeld(weld_, output_); });
  }

  void addRepair() {
    CLI::App& command =
        *app_.add_subcommand("repair", "Make a mesh that can be solved on of one that cannot");
    addMesh(command, repair_.mesh, repair_.strict);
    command.add_option("-o,--output", repair_.output, "Where it goes; - is the standard output")
        ->type_name("OUT")
        ->required();
    command.add_option("--format", repair_.format, "Whatever OUT is called")
        ->type_name("obj|ply|...")
        ->group(kStreams);
    command
        .add_option("--tolerance", repair_.tolerance, "What is smaller than this counts as none")
        ->type_name("DISTANCE");
    addOutputOptions(command, output_);
    command.footer(footer(kRepairExamples, "mending, welding, files, output"));
    onRun(command, [this] { runRepair(repair_, output_); });
  }

  void addCompletion() {
    CLI::App& command = *app_.add_subcommand(
        "completion", "Print a script that completes command lines in a shell");
    command.add_option("shell", shell_, "The shell")->type_name("bash|zsh|fish")->required();
    command.footer(footer(kCompletionExamples, ""));
    onRun(command, [this] { printData(completionScript(app_, shell_)); });
  }

  void addManual() {
    CLI::App& command = *app_.add_subcommand("manual", "Print the manual page, for man");
    command.footer(footer(kManualExamples, ""));
    onRun(command, [this] { printData(manualPage(app_, QELM_TOOL_VERSION)); });
  }

  void addHelp() {
    CLI::App& command = *app_.add_subcommand("help", "Explain conditions, levels, files and so on");
    command.add_option("topic", topic_, "What about; all topics unless given")
        ->type_name(topicNames());
    command.footer(footer(kHelpExamples, ""));
    onRun(command, [this] { printData(helpOn(topic_)); });
  }

  /// A topic's text, or a command's own help.
  std::string helpOn(const std::string& name) const {
    if (name.empty()) return topicList();
    for (const CLI::App* command : app_.get_subcommands({}))
      if (command->get_name() == name) return command->help("qelm");
    return topicText(name);
  }

  // A flag that may have a value takes it after an equals sign only.
  static void joinAuto(std::vector<std::string>& arguments) {
    for (std::size_t k = 0; k + 1 < arguments.size(); ++k) {
      if (arguments[k] != "--robust" || arguments[k + 1] != "auto") continue;
      arguments[k] = "--robust=auto";
      arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(k) + 1);
    }
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
    if (field.fixes.empty() && field.fixFile.empty() && field.given.empty())
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
  std::string shell_;
  std::string topic_;
  OutputOptions output_;
  CheckOptions check_;
  InfoOptions info_;
  SolveOptions solve_;
  GradientOptions gradient_;
  HeatmapOptions heatmap_;
  CurvesOptions curves_;
  ViewOptions view_;
  WeldOptions weld_;
  RepairOptions repair_;
};

}  // namespace

int runCommandLine(std::vector<std::string> arguments) {
  return CommandLine().run(std::move(arguments));
}

}  // namespace qelm::tool
