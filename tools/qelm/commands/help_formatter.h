// How --help looks.
#ifndef QELM_TOOLS_HELP_FORMATTER_H
#define QELM_TOOLS_HELP_FORMATTER_H

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace qelm::tool {

/// Compact: what an option takes, and in words whether it must be given.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter() { column_width(kColumn); }

  /// Without a heading, as there is one positional argument at most.
  std::string make_positionals(const CLI::App* app) const override {
    std::string text;
    for (const CLI::Option* option :
         app->get_options([](const CLI::Option* o) { return o->get_positional(); }))
      text += make_option(option, true);
    return text;
  }

  std::string make_option_opts(const CLI::Option* option) const override {
    if (option->get_items_expected_max() == 0 || option->get_positional()) return "";
    return " " + option->get_type_name();
  }
  /// Options of a group that is named after a help topic share one line, so that --help fits a
  /// screen. The manual page and completion have them in full.
  std::string make_group(std::string group, bool isPositional,
                         std::vector<const CLI::Option*> options) const override {
    if (group.rfind("qelm help ", 0) != 0)
      return CLI::Formatter::make_group(std::move(group), isPositional, std::move(options));
    std::string names = " ";
    for (const CLI::Option* option : options) names += " --" + option->get_lnames()[0];
    names.resize(std::max(names.size() + 2, get_column_width()), ' ');
    return names + "See '" + group + "'\n";
  }
  /// Without the blank lines before such groups.
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    std::string text = CLI::Formatter::make_help(app, std::move(name), mode);
    for (std::size_t at = text.find("\n\n  --"); at != text.npos; at = text.find("\n\n  --"))
      text.erase(at, 1);
    return text;
  }
  std::string make_option_desc(const CLI::Option* option) const override {
    return option->get_description() +
           (option->get_required() && !option->get_positional() ? " (required)" : "");
  }

 private:
  static constexpr std::size_t kColumn = 30;
};

}  // namespace qelm::tool

#endif
