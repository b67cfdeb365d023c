#include "terminal/manual_page.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "terminal/help_texts.h"

namespace qelm::tool {
namespace {

std::string escaped(std::string_view text) {
  std::string result;
  bool atLineStart = true;
  for (const char c : text) {
    if (atLineStart && (c == '.' || c == '\'')) result += "\\&";
    if (c == '\\')
      result += "\\e";
    else if (c == '-')
      result += "\\-";
    else
      result += c;
    atLineStart = c == '\n';
  }
  return result;
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return text;
}

/// What must be named: a choice, "bash|zsh", where a line holds it.
std::string positional(const CLI::Option& option) {
  constexpr std::size_t kMost = 60;
  const std::string choice = option.get_type_name();
  return escaped(choice.size() <= kMost ? choice : upper(option.get_name(true, false)));
}

std::string literal(const std::string& body) { return ".nf\n" + escaped(body) + ".fi\n"; }

class PageWriter {
 public:
  PageWriter(const CLI::App& app, const std::string& version) : app_(app), version_(version) {}

  std::string run() {
    page_ = fmt::format(".TH QELM 1 \"\" \"qelm {}\" \"User Commands\"\n", escaped(version_));
    page_ += ".SH NAME\nqelm \\- smooth fields between prescribed values on triangle meshes\n";
    page_ += ".SH SYNOPSIS\n.B qelm\n.I COMMAND\n[\\fIMESH\\fR] [\\fIOPTION\\fR]...\n";
    page_ += ".SH DESCRIPTION\n" + escaped(app_.get_description()) + "\n";
    options(app_);
    page_ += ".SH COMMANDS\n";
    for (const CLI::App* command : app_.get_subcommands({})) this->command(*command);
    topics();
    return std::move(page_);
  }

 private:
  void command(const CLI::App& command) {
    page_ += fmt::format(".SS qelm {}", escaped(command.get_name()));
    for (const CLI::Option* option : command.get_options())
      if (option->get_positional()) page_ += " " + positional(*option);
    page_ += "\n" + escaped(command.get_description()) + ".\n";
    options(command);
    const std::string footer = command.get_footer();
    page_ += literal(footer.substr(0, footer.find("\nMore:")));
  }

  void options(const CLI::App& app) {
    for (const CLI::Option* option : app.get_options()) {
      const bool isPositional = option->get_positional();
      page_ +=
          fmt::format(".TP\n\\fB{}\\fR",
                      isPositional ? positional(*option) : escaped(option->get_name(false, true)));
      if (!isPositional && option->get_items_expected_max() > 0)
        page_ += fmt::format(" \\fI{}\\fR", escaped(option->get_type_name()));
      page_ += "\n" + escaped(option->get_description()) + ".\n";
    }
  }

  void topics() {
    for (const HelpTopic& topic : helpTopics())
      page_ += fmt::format(".SH {}\n", upper(topic.name)) + literal(topic.text);
  }

  const CLI::App& app_;
  const std::string& version_;
  std::string page_;
};

}  // namespace

std::string manualPage(const CLI::App& app, const std::string& version) {
  return PageWriter(app, version).run();
}

}  // namespace qelm::tool
