// The checks of a mesh's counts and pointers.
#ifndef QELM_MESH_ARGUMENTS_H
#define QELM_MESH_ARGUMENTS_H

#include "qelm.h"

namespace qelm {

/// Counts before pointers, the vertex count first: a call that is wrong in
/// several ways reports the first of them.
inline int argumentStatus(int vertexCount, const double* vertices, int triangleCount,
                          const int* triangles, const int* tags) {
  if (vertexCount < 1) return QELM_STATUS_BAD_COUNT_OR_HANDLE;
  if (triangleCount < 1) return QELM_STATUS_UNUSED_VERTEX;
  if (vertices == nullptr || triangles == nullptr || tags == nullptr) return QELM_STATUS_NULL_ARRAY;
  return QELM_STATUS_OK;
}

}  // namespace qelm

#endif  // QELM_MESH_ARGUMENTS_H
