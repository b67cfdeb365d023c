#include "commands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <sstream>

#include "commands/field_commands.h"
#include "commands/help_formatter.h"
#include "commands/mesh_commands.h"
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
    addInfo(frame_);
    addCheck(frame_);
    addSolve(frame_);
    addGradient(frame_);
    addHeatmap(frame_);
    addCurves(frame_);
    addView(frame_);
    addWeld(frame_);
    addRepair(frame_);
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
    return frame_.exitCode;
  }

 private:
  void addCompletion() {
    CLI::App& command = *app_.add_subcommand(
        "completion", "Print a script that completes command lines in a shell");
    command.add_option("shell", shell_, "The shell")->type_name("bash|zsh|fish")->required();
    command.footer(footer(kCompletionExamples, ""));
    frame_.onRun(command, [this] { printData(completionScript(app_, shell_)); });
  }

  void addManual() {
    CLI::App& command = *app_.add_subcommand("manual", "Print the manual page, for man");
    command.footer(footer(kManualExamples, ""));
    frame_.onRun(command, [this] { printData(manualPage(app_, QELM_TOOL_VERSION)); });
  }

  void addHelp() {
    CLI::App& command = *app_.add_subcommand("help", "Explain conditions, levels, files and so on");
    command.add_option("topic", topic_, "What about; all topics unless given")
        ->type_name(topicNames());
    command.footer(footer(kHelpExamples, ""));
    frame_.onRun(command, [this] { printData(helpOn(topic_)); });
  }

  /// A topic's text, or a command's own help.
  std::string helpOn(const std::string& name) const {
    if (name.empty()) return topicList();
    for (const CLI::App* command : app_.get_subcommands({}))
      if (command->get_name() == name) return command->help("qelm");
    return topicText(name);
  }

  // CLI11 takes the value of a flag only after an equals sign.
  static void joinAuto(std::vector<std::string>& arguments) {
    for (std::size_t k = 0; k + 1 < arguments.size(); ++k) {
      if (arguments[k] != "--robust" || arguments[k + 1] != "auto") continue;
      arguments[k] = "--robust=auto";
      arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(k) + 1);
    }
  }

  // Names the commands, where CLI11 would only say that a subcommand is required.
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
  CommandFrame frame_{app_, {}};
  std::string shell_;
  std::string topic_;
};

}  // namespace

int runCommandLine(std::vector<std::string> arguments) {
  return CommandLine().run(std::move(arguments));
}

}  // namespace qelm::tool
