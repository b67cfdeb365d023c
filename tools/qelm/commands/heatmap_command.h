// qelm heatmap
#ifndef QELM_TOOLS_HEATMAP_COMMAND_H
#define QELM_TOOLS_HEATMAP_COMMAND_H

#include <string>

#include "commands/picture_options.h"
#include "fields/solve_job.h"

namespace qelm::tool {

struct HeatmapOptions {
  FieldOptions field;
  std::string output;  ///< the files' path without extension; a final ".obj" is ignored. One that
                       ///< ends in ".ply" and so on is a single file's
  std::string format;  ///< of a single file, such as "ply", whatever it is called
  PictureOptions picture;
};

void runHeatmap(const HeatmapOptions& options, const OutputOptions& output);

}  // namespace qelm::tool

#endif
