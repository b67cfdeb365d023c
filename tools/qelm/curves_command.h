// qelm curves
#ifndef QELM_TOOLS_CURVES_COMMAND_H
#define QELM_TOOLS_CURVES_COMMAND_H

#include <optional>
#include <string>

#include "solve_job.h"

namespace qelm::tool {

struct CurvesOptions {
  FieldOptions field;
  std::optional<std::string> levels;  ///< a number of them
  std::optional<std::string> at;      ///< or their values
  std::string view = "plane";         ///< of a drawing, see projectionOf()
  std::optional<std::string> format;
  std::string output;
};

void runCurves(const CurvesOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
