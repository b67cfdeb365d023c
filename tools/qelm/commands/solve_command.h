// qelm solve
#ifndef QELM_TOOLS_SOLVE_COMMAND_H
#define QELM_TOOLS_SOLVE_COMMAND_H

#include <string>

#include "fields/solve_job.h"

namespace qelm::tool {

struct SolveOptions {
  FieldOptions field;
  std::string output;         ///< empty: nothing is written
  std::string format;         ///< of the output, whatever it is called
  bool comparePlain = false;  ///< to the robust field
  bool gradient = false;      ///< write it beside the field
};

void runSolve(const SolveOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
