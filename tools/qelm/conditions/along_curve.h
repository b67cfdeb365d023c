// curve:FILE: the vertices of a mesh along polylines of a file.
#ifndef QELM_TOOLS_ALONG_CURVE_H
#define QELM_TOOLS_ALONG_CURVE_H

#include <string>
#include <string_view>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

struct Polyline {
  std::vector<Point> points;  ///< two at least; of a closed one the first is not repeated
  bool closed = false;
};

/// The polylines ("l") of an OBJ text, or the points of CSV lines X,Y,Z. With a header line, CSV
/// has columns x, y and z among others, starts a curve where the column "curve" changes, and
/// closes it where "closed" is 1, as in the files of `qelm curves`. Throws FileError with the line.
std::vector<Polyline> parsePolylines(std::string_view text, const std::string& name);

/// The same from a file: OBJ by its extension, else CSV.
std::vector<Polyline> readPolylines(const std::string& name);

struct VertexOnCurve {
  int vertex;
  double arc;       ///< the way along its polyline to where it is nearest, from 0 to 1
  double distance;  ///< from the polyline
};

/// The vertices nearest to the polylines' points, four times as dense as the mesh's edges, and
/// those on the way along edges from one to the next. Each vertex comes once, by its number.
/// Requires finite coordinates.
std::vector<VertexOnCurve> verticesAlong(const Mesh& mesh, const std::vector<Polyline>& curves);

}  // namespace qelm::tool

#endif
