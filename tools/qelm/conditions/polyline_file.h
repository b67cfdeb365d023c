// The files of curve:FILE: polylines as OBJ or CSV.
#ifndef QELM_TOOLS_POLYLINE_FILE_H
#define QELM_TOOLS_POLYLINE_FILE_H

#include <string>
#include <string_view>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

struct Polyline {
  std::vector<Point> points;  ///< one at least; of a closed one the first is not repeated
  bool closed = false;
};

/// The polylines ("l") of an OBJ text, or the points of CSV lines X,Y,Z. With a header line, CSV
/// has columns x, y and z among others, starts a curve where the column "curve" changes, and
/// closes it where "closed" is 1, as in the files of `qelm curves`. Throws FileError with the line.
std::vector<Polyline> parsePolylines(std::string_view text, const std::string& name);

/// The same from a file: OBJ by its extension, else CSV.
std::vector<Polyline> readPolylines(const std::string& name);

}  // namespace qelm::tool

#endif
