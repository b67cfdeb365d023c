// Accessors, duplication and release of a MeshSystem handle. A call with a null handle touches no
// out-parameter.
#include <cstddef>

#include "interface/index.h"
#include "interface/mesh_system.h"
#include "qelm.h"

namespace {

int vertexCountOf(const MeshSystem& system) { return qelm::asInt(system.vertices->size() / 3); }

}  // namespace

extern "C" int qelminfo(const MeshSystem* h) {
  if (h == nullptr) return QELM_INFO_NO_HANDLE;
  return static_cast<int>(h->freeSolver->info());
}

extern "C" int qelverts(const MeshSystem* h, const double** coordinatesOut) {
  if (h == nullptr) return 0;
  *coordinatesOut = h->vertices->data();
  return vertexCountOf(*h);
}

// The result is the vertex count, exactly as in qelverts(). This is on purpose and stays: callers
// know their triangle count from the construction, and the isoline pass depends on this number.
extern "C" int qeltris(const MeshSystem* h, const int** indicesOut) {
  if (h == nullptr) return 0;
  *indicesOut = h->triangles->data();
  return vertexCountOf(*h);
}

extern "C" void dupl(const MeshSystem* h, MeshSystem** copyOut) {
  if (h == nullptr) return;
  *copyOut = new MeshSystem(*h);
}

extern "C" int usecount(const MeshSystem* h) {
  if (h == nullptr) return 0;
  // An empty pointer counts 0 owners.
  return qelm::asInt(h->freeSolver.use_count());
}

extern "C" void qelmfree(MeshSystem* h) { delete h; }
