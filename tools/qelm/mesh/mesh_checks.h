// Checks of what the library takes on trust. A mesh that passes them constructs, and every solve on
// it is well posed.
#ifndef QELM_TOOLS_MESH_CHECKS_H
#define QELM_TOOLS_MESH_CHECKS_H

#include <span>
#include <string>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

struct CheckedFor {
  bool robust = false;  ///< construction that takes triangles of any shape
  bool strict = false;  ///< vertices in no triangle are refused, not left out
};

/// Throws InputError that names the first element of the first kind of defect, in this order: a
/// triangle that names a vertex twice; if strict, a vertex in no triangle; a coordinate that is not
/// finite; and unless robust, a triangle too small or too large to compute with, a triangle without
/// area.
void checkMesh(const Mesh& mesh, const CheckedFor& wanted = {});

/// Throws InputError that names the first vertex with a coordinate that is not finite.
void checkFinite(const Mesh& mesh);

/// Throws InputError if a connected part of the mesh has no vertex with a nonzero tag. Triangles
/// are connected when they share a vertex; a vertex in no triangle is no part.
void checkEveryPartIsFixed(const Mesh& mesh, std::span<const int> tags);

/// Whether a triangle is lower than heightNoise(), or so large or small that its area overflows or
/// underflows.
bool hasNoArea(const Mesh& mesh, int triangle);

/// For each vertex the lowest vertex of its connected part; triangles are connected when they share
/// a vertex.
std::vector<int> lowestOfPart(const Mesh& mesh);

/// "triangle 4711 (12, 90, 91)", with its face where faces were split.
std::string describeTriangle(const Mesh& mesh, int triangle);

/// "vertex 17 (0.5, 1, 2)".
std::string describeVertex(const Mesh& mesh, int vertex);

}  // namespace qelm::tool

#endif
