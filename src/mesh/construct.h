// What the exports that construct a mesh system have in common.
#ifndef QELM_MESH_CONSTRUCT_H
#define QELM_MESH_CONSTRUCT_H

#include <cstdint>
#include <memory>
#include <vector>

#include "interface/mesh_system.h"
#include "mesh/size_limit.h"

namespace qelm {

/// A constructor's arguments, as they come.
struct ConstructorArguments {
  int vertexCount;
  const double* vertices;
  int triangleCount;
  const int* triangles;
  const int* tags;
};

/// assembleSystem(), or another function with its contract.
using AssembleSystem = std::unique_ptr<MeshSystem> (*)(int taggedCount, int vertexCount,
                                                       std::vector<double> coordinates,
                                                       std::vector<std::int32_t> triangles,
                                                       SizeLimit* limit, int& status);

/// Checks, renumbers, assembles, and writes the outcome: see qelmctorTagged(), and
/// qelmctorLimitedTagged() for a limit, which may be null. Returns 1.
int runConstructor(const ConstructorArguments& arguments, AssembleSystem assemble, SizeLimit* limit,
                   int* taggedCountOut, int* status, MeshSystem** handleOut);

}  // namespace qelm

#endif  // QELM_MESH_CONSTRUCT_H
