// qelm view
#ifndef QELM_TOOLS_VIEW_COMMAND_H
#define QELM_TOOLS_VIEW_COMMAND_H

#include <string>

#include "commands/picture_options.h"
#include "curves/levels.h"
#include "fields/solve_job.h"

namespace qelm::tool {

struct ViewOptions {
  FieldOptions field;
  LevelOptions levels;  ///< none given: about ten round ones
  std::string output;
  PictureOptions picture;
  std::string page;  ///< a page to fill in instead of the built-in one; empty: none
};

/// Writes one page that shows the field in any browser, without a network. Throws
/// OutputError when the tool was built without the page.
void runView(const ViewOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
