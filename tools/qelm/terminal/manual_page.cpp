#include "terminal/manual_page.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "text/text.h"

namespace qelm::tool {
namespace {

/// A title that ends in a colon, and lines.
struct Section {
  std::string title;
  std::string body;
};

std::vector<Section> sectionsOf(const CLI::App& app) {
  std::vector<Section> sections;
  const std::string footer = app.get_footer();
  LineReader lines(footer);
  while (lines.next()) {
    const std::string_view line = lines.line();
    if (line.empty()) continue;
    if (line[0] != ' ') {
      sections.push_back({std::string(line.substr(0, line.find(':'))), ""});
    } else if (!sections.empty()) {
      sections.back().body += line;
      sections.back().body += '\n';
    }
  }
  return sections;
}

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

std::string literal(const std::string& body) { return ".nf\n" + escaped(body) + ".fi\n"; }

class PageWriter {
 public:
  PageWriter(const CLI::App& app, const std::string& version) : app_(app), version_(version) {
    for (const CLI::App* command : app.get_subcommands({}))
      for (const Section& section : sectionsOf(*command)) ++uses_[section.body];
  }

  std::string run() {
    page_ = fmt::format(".TH QELM 1 \"\" \"qelm {}\" \"User Commands\"\n", escaped(version_));
    page_ += ".SH NAME\nqelm \\- smooth fields between prescribed values on triangle meshes\n";
    page_ += ".SH SYNOPSIS\n.B qelm\n.I COMMAND\n[\\fIMESH\\fR] [\\fIOPTION\\fR]...\n";
    page_ += ".SH DESCRIPTION\n" + escaped(app_.get_description()) + "\n";
    options(app_);
    page_ += ".SH COMMANDS\n";
    for (const CLI::App* command : app_.get_subcommands({})) this->command(*command);
    sharedSections();
    return std::move(page_);
  }

 private:
  void command(const CLI::App& command) {
    page_ += fmt::format(".SS qelm {}", escaped(command.get_name()));
    for (const CLI::Option* option : command.get_options())
      if (option->get_positional()) page_ += " " + escaped(option->get_type_name());
    page_ += "\n" + escaped(command.get_description()) + ".\n";
    options(command);
    for (const Section& section : sectionsOf(command))
      if (uses_[section.body] == 1)
        page_ += fmt::format(".PP\n.B {}\n", escaped(section.title)) + literal(section.body);
  }

  void options(const CLI::App& app) {
    for (const CLI::Option* option : app.get_options()) {
      const bool isPositional = option->get_positional();
      const std::string name =
          isPositional ? option->get_type_name() : option->get_name(false, true);
      page_ += fmt::format(".TP\n\\fB{}\\fR", escaped(name));
      if (!isPositional && option->get_items_expected_max() > 0)
        page_ += fmt::format(" \\fI{}\\fR", escaped(option->get_type_name()));
      page_ += "\n" + escaped(option->get_description()) + ".\n";
    }
  }

  void sharedSections() {
    std::vector<Section> sections;
    for (const CLI::App* command : app_.get_subcommands({}))
      for (const Section& section : sectionsOf(*command))
        if (uses_[section.body] > 1) sections.push_back(section);
    // In the order in which they are met first, with the exit codes at the end.
    std::map<std::string, bool> done;
    for (const bool last : {false, true})
      for (const Section& section : sections) {
        const bool isLast = section.title == "Exit codes";
        if (isLast != last || std::exchange(done[section.title], true)) continue;
        page_ += fmt::format(".SH {}\n", isLast ? "EXIT STATUS" : escaped(upper(section.title)));
        page_ += literal(section.body);
      }
  }

  const CLI::App& app_;
  const std::string& version_;
  std::map<std::string, int> uses_;  ///< of a section's body
  std::string page_;
};

}  // namespace

std::string manualPage(const CLI::App& app, const std::string& version) {
  return PageWriter(app, version).run();
}

}  // namespace qelm::tool
