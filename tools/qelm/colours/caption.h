// --title and --unit: what pictures and heat maps say about themselves.
#ifndef QELM_TOOLS_CAPTION_H
#define QELM_TOOLS_CAPTION_H

#include <string>

namespace qelm::tool {

struct Caption {
  std::string title;  ///< empty: the mesh file's name, where one is shown
  std::string unit;   ///< of the values; empty: none

  /// " kN", to be put behind a value.
  std::string unitAfter() const { return unit.empty() ? "" : " " + unit; }
};

}  // namespace qelm::tool

#endif
