// What the commands with a field say at their end: lines for people, or JSON for programs.
#ifndef QELM_TOOLS_FIELD_REPORT_H
#define QELM_TOOLS_FIELD_REPORT_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "fields/solve_job.h"
#include "terminal/console.h"
#include "terminal/steps.h"

namespace qelm::tool {

/// "read 0.012 s, check 0.001 s".
std::string describeTimes(const Steps& steps);

/// What a command adds to the summary: a line for people unless the text is empty, and members of
/// the JSON object for programs.
struct ReportItem {
  std::string name;
  std::string text;
  nlohmann::ordered_json members;
};

/// What was done, as the commands print it with --json.
nlohmann::ordered_json summaryJson(const SolvedField& solved,
                                   const std::vector<std::string>& results,
                                   const std::vector<ReportItem>& more = {});
void printJson(const nlohmann::ordered_json& json);

/// Says what was done: lines on the console, or one JSON object on the standard
/// output. `results` are the files written.
void reportField(const SolvedField& solved, const std::vector<std::string>& results,
                 const OutputOptions& output, const Console& console,
                 const std::vector<ReportItem>& more = {});

}  // namespace qelm::tool

#endif
