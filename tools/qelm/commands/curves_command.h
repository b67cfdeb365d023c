// qelm curves
#ifndef QELM_TOOLS_CURVES_COMMAND_H
#define QELM_TOOLS_CURVES_COMMAND_H

#include <string>
#include <vector>

#include "commands/picture_options.h"
#include "curves/levels.h"
#include "curves/sheet.h"
#include "fields/solve_job.h"

namespace qelm::tool {

struct CurvesOptions {
  FieldOptions field;
  LevelOptions levels;
  std::vector<std::string> outputs;  ///< the extension is the format; "-" is CSV
  std::string simplify;              ///< a distance; empty: every point stays
  std::string format;                ///< instead of the extensions'; empty: none
  PictureOptions picture;
  SheetOptions sheet;  ///< for pictures
};

void runCurves(const CurvesOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
