// The vertices of a mesh along a polyline.
//
// The polyline is sampled at four points for each of the mesh's mean edges, and each sample finds
// its nearest vertex in a kd-tree. Where two samples in a row have different vertices, a walk along
// edges joins them, each time to the neighbour nearest to the goal, so that the vertices form a
// chain without gaps:
//
//      v0---v1---v2     samples o have the nearest vertices v0, v0, v2: the walk adds v1
//      o   o      o
//
// Takes n log n steps for n vertices, and log n for each sample.
#ifndef QELM_TOOLS_ALONG_CURVE_H
#define QELM_TOOLS_ALONG_CURVE_H

#include <vector>

#include "conditions/polyline_file.h"
#include "mesh/mesh.h"

namespace qelm::tool {

struct VertexOnCurve {
  int vertex;
  double arc;       ///< how far along its polyline its nearest point is, from 0 to 1
  double distance;  ///< from the polyline
};

/// The chains of all polylines: each vertex once, in increasing order. Requires finite coordinates.
std::vector<VertexOnCurve> verticesAlong(const Mesh& mesh, const std::vector<Polyline>& curves);

}  // namespace qelm::tool

#endif
