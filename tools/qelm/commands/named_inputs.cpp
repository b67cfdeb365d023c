#include "commands/named_inputs.h"

#include "colours/ramp.h"
#include "conditions/conditions.h"
#include "conditions/field_file.h"
#include "text/error.h"

namespace qelm::tool {
namespace {

/// Passes over a condition that is wrong: the command itself says so.
void addFilesOf(const std::string& condition, InputNames& names) {
  try {
    for (std::string& file : filesOf(parseCondition(condition))) names.push_back(std::move(file));
  } catch (const UsageError&) {
  }
}

}  // namespace

InputNames inputsOf(const CLI::App& command) {
  InputNames names;
  for (const CLI::Option* option : command.get_options())
    if (!option->check_lname("output"))
      for (const std::string& value : option->results()) {
        names.push_back(value);
        if (option->check_lname("fix")) addFilesOf(value, names);
        if (option->check_lname("ramp")) names.push_back(rampFile(value));
        if (option->check_lname("field")) names.push_back(parseFieldSource(value).file);
      }
  return names;
}

}  // namespace qelm::tool
