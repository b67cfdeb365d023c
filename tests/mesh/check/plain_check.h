// The mesh check in its plainest form: every statement of the report by comparing
// everything with everything.
#ifndef QELM_TESTS_MESH_PLAIN_CHECK_H
#define QELM_TESTS_MESH_PLAIN_CHECK_H

#include "qelm.h"
#include "support/meshes.h"

namespace qelm::test {

/// All findings. The worst triangle and its quality are in extended precision.
QelmMeshReport plainReport(const Mesh& mesh);

/// Longest edge and quality of a triangle of finite points, in extended precision.
struct PlainShape {
  long double longestEdge;
  long double quality;
};
PlainShape plainShape(const Point& a, const Point& b, const Point& c);

}  // namespace qelm::test

#endif  // QELM_TESTS_MESH_PLAIN_CHECK_H
