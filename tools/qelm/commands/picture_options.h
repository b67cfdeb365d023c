// What every command that draws takes.
#ifndef QELM_TOOLS_PICTURE_OPTIONS_H
#define QELM_TOOLS_PICTURE_OPTIONS_H

#include <string>

#include "colours/caption.h"
#include "colours/colour_scale.h"

namespace qelm::tool {

/// As on the command line; a heat map has no view of its own.
struct PictureOptions {
  std::string view = "best";
  std::string up = "auto";
  Caption caption;
  ColourOptions colours;
};

}  // namespace qelm::tool

#endif
