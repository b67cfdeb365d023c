// qelm gradient
#ifndef QELM_TOOLS_GRADIENT_COMMAND_H
#define QELM_TOOLS_GRADIENT_COMMAND_H

#include <span>
#include <string>

#include "fields/field_report.h"
#include "fields/gradient.h"
#include "fields/solve_job.h"

namespace qelm::tool {

struct GradientOptions {
  FieldOptions field;
  std::string per = "triangle";  ///< or "vertex"
  std::string output;            ///< empty: nothing is written
  std::string format;            ///< of the output, whatever it is called
};

void runGradient(const GradientOptions& options, const OutputOptions& output);

/// Of every field in turn, with a note about triangles without area.
std::vector<Gradient> gradientsOf(SolvedField& solved, const Console& console);

/// For the summary, of one field: where the gradient is longest.
ReportItem gradientReport(const SolvedField& solved, std::span<const Gradient> gradients);

}  // namespace qelm::tool

#endif
