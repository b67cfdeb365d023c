#include "terminal/completion.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <string_view>
#include <vector>

#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

constexpr const char* kSelectors =
    "vertex: loop: loop:near: boundary= near: box: sphere: plane: above: below: xmin= xmax= ymin= "
    "ymax= zmin= zmax= part: part:near: group: material: property: feature: curve:";

constexpr const char* kMeshFiles = "obj|off|ply|stl|vtk|vtp|vtu|gltf|glb|3mf|msh";

/// What an option takes, as its name for the value tells.
enum class Value { kNone, kMesh, kCsv, kSelector, kWords, kFile, kOther };

Value valueOf(const CLI::Option& option) {
  if (option.get_items_expected_max() == 0) return Value::kNone;
  const std::string type = option.get_type_name();
  if (type == "MESH") return Value::kMesh;
  if (type == "FILE.csv") return Value::kCsv;
  if (type.starts_with("SELECTOR")) return Value::kSelector;
  if (type.find('|') != std::string::npos) return Value::kWords;
  if (type == "OUT" || type == "PATH" || type == "FIELD.csv") return Value::kFile;
  return Value::kOther;
}

/// "a|b|X,Y,Z": the words, without those that only stand for something.
std::vector<std::string_view> wordsOf(const std::string& type) {
  std::vector<std::string_view> words = splitAt(type, '|');
  std::erase_if(words, [](std::string_view word) { return word.find(',') != word.npos; });
  return words;
}

std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options())
    for (std::string& name : namesOf(*option)) names.push_back(std::move(name));
  return names;
}

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

/// In single quotes, as every shell here takes them; `special` get a backslash.
std::string quoted(const std::string& text, std::string_view special = "") {
  std::string result = "'";
  for (const char c : text) {
    if (special.find(c) != special.npos) result += '\\';
    if (c == '\'')
      result += "'\\''";
    else
      result += c;
  }
  return result + "'";
}

// ---- bash ----

std::string bashValue(const CLI::Option& option, const std::string& names) {
  switch (valueOf(option)) {
    case Value::kMesh:
      return fmt::format("    {}) _qelm_files '@({})' ;;\n", names, kMeshFiles);
    case Value::kCsv:
      return fmt::format("    {}) _qelm_files 'csv' ;;\n", names);
    case Value::kSelector:
      return fmt::format(
          "    {}) compopt -o nospace; COMPREPLY=($(compgen -W '{}' -- \"$cur\")) ;;\n", names,
          kSelectors);
    case Value::kWords:
      return fmt::format("    {}) COMPREPLY=($(compgen -W '{}' -- \"$cur\")) ;;\n", names,
                         fmt::join(wordsOf(option.get_type_name()), " "));
    case Value::kFile:
      return fmt::format("    {}) _qelm_files '*' ;;\n", names);
    default:
      return fmt::format("    {}) ;;\n", names);
  }
}

std::string bashCommand(const CLI::App& command) {
  std::string values;
  std::string positional;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional())
      positional = bashValue(*option, "*");
    else if (valueOf(*option) != Value::kNone)
      values += bashValue(*option, fmt::format("{}", fmt::join(namesOf(*option), "|")));
  }
  return fmt::format(
      "  {}) case $prev in\n{}    *) case $cur in\n"
      "    -*) COMPREPLY=($(compgen -W '{}' -- \"$cur\")) ;;\n{}    esac ;;\n    esac ;;\n",
      command.get_name(), values, fmt::join(optionNames(command), " "), positional);
}

std::string bashScript(const CLI::App& app) {
  std::string script =
      "# bash completion for qelm\n"
      "_qelm_files() {\n"
      "  local IFS=$'\\n'\n"
      "  compopt -o filenames\n"
      "  COMPREPLY=($(compgen -d -- \"$cur\"; shopt -s extglob; compgen -f -X \"!*.$1\" -- "
      "\"$cur\"))\n"
      "  [ \"$1\" != '*' ] || COMPREPLY=($(compgen -f -- \"$cur\"))\n"
      "}\n"
      "_qelm() {\n"
      "  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n"
      "  COMPREPLY=()\n";
  script += fmt::format(
      "  if [ \"$COMP_CWORD\" -eq 1 ]; then COMPREPLY=($(compgen -W '{} {}' -- \"$cur\")); "
      "return; fi\n  case ${{COMP_WORDS[1]}} in\n",
      fmt::join(commandNames(app), " "), fmt::join(optionNames(app), " "));
  for (const CLI::App* command : app.get_subcommands({})) script += bashCommand(*command);
  return script + "  esac\n}\ncomplete -F _qelm qelm\n";
}

// ---- zsh ----

std::string escapedColons(std::string_view text) {
  std::string result;
  for (const char c : text) result += c == ':' ? std::string("\\:") : std::string(1, c);
  return result;
}

std::string zshAction(const CLI::Option& option) {
  switch (valueOf(option)) {
    case Value::kNone:
      return "";
    case Value::kMesh:
      return fmt::format(":mesh:_files -g \"*.({})\"", kMeshFiles);
    case Value::kCsv:
      return ":file:_files -g \"*.csv\"";
    case Value::kSelector:
      return fmt::format(":condition:({})", escapedColons(kSelectors));
    case Value::kWords:
      return fmt::format(":word:({})", fmt::join(wordsOf(option.get_type_name()), " "));
    case Value::kFile:
      return ":file:_files";
    default:
      return ":value:";
  }
}

std::string zshCommand(const CLI::App& command) {
  std::string text = fmt::format("    {}) _arguments", command.get_name());
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional()) {
      text += " \\\n      '1" + zshAction(*option) + "'";
      continue;
    }
    for (const std::string& name : namesOf(*option))
      text += fmt::format(" \\\n      '*{}'{}'{}'", name,
                          quoted("[" + option->get_description() + "]", ":"), zshAction(*option));
  }
  return text + " ;;\n";
}

std::string zshScript(const CLI::App& app) {
  std::string script = "#compdef qelm\n_qelm() {\n  local -a commands=(\n";
  for (const CLI::App* command : app.get_subcommands({}))
    script += "    " + quoted(command->get_name() + ":" + command->get_description()) + "\n";
  script +=
      "  )\n  if (( CURRENT == 2 )); then _describe command commands; return; fi\n"
      "  local command=$words[2]\n  shift words\n  (( CURRENT-- ))\n  case $command in\n";
  for (const CLI::App* command : app.get_subcommands({})) script += zshCommand(*command);
  return script + "  esac\n}\ncompdef _qelm qelm\n";
}

// ---- fish ----

std::string fishValue(const CLI::Option& option) {
  switch (valueOf(option)) {
    case Value::kNone:
      return "";
    case Value::kSelector:
      return fmt::format(" -x -a '{}'", kSelectors);
    case Value::kWords:
      return fmt::format(" -x -a '{}'", fmt::join(wordsOf(option.get_type_name()), " "));
    case Value::kOther:
      return " -x";
    default:
      return " -r -F";
  }
}

std::string fishScript(const CLI::App& app) {
  std::string script = "# fish completion for qelm\ncomplete -c qelm -n __fish_use_subcommand -f\n";
  for (const CLI::App* command : app.get_subcommands({})) {
    script += fmt::format("complete -c qelm -n __fish_use_subcommand -a {} -d {}\n",
                          command->get_name(), quoted(command->get_description()));
    for (const CLI::Option* option : command->get_options()) {
      if (option->get_positional()) continue;
      script +=
          fmt::format("complete -c qelm -n '__fish_seen_subcommand_from {}'", command->get_name());
      for (const std::string& name : option->get_snames()) script += " -s " + name;
      for (const std::string& name : option->get_lnames()) script += " -l " + name;
      script += fishValue(*option) + " -d " + quoted(option->get_description()) + "\n";
    }
  }
  return script;
}

}  // namespace

std::string completionScript(const CLI::App& app, const std::string& shell) {
  if (shell == "bash") return bashScript(app);
  if (shell == "zsh") return zshScript(app);
  if (shell == "fish") return fishScript(app);
  throw UsageError(fmt::format("completion {}: give bash, zsh or fish", shell));
}

}  // namespace qelm::tool
