// The constructor export: it checks the arguments, renumbers the mesh, assembles and factorises.
#include "mesh/construct.h"

#include <cstddef>
#include <memory>
#include <span>
#include <utility>

#include "interface/index.h"
#include "mesh/arguments.h"
#include "mesh/assembly.h"
#include "mesh/numbering.h"
#include "qelm.h"

namespace qelm {
namespace {

/// The complete system of a mesh in input order, or null with a defect in `status`.
std::unique_ptr<MeshSystem> constructTagged(std::span<const double> vertices,
                                            std::span<const int> triangles,
                                            std::span<const int> tags, AssembleSystem assemble,
                                            SizeLimit* limit, int& taggedCount, int& status) {
  VertexNumbering numbering = numberVertices(tags);
  taggedCount = numbering.taggedCount;
  std::vector<std::int32_t> renumbered = renumberTriangles(triangles, numbering);
  if (limit != nullptr) {
    limit->bucketBytes = bucketBytes(taggedCount, renumbered);
  }
  auto system = assemble(taggedCount, asInt(tags.size()), reorderCoordinates(vertices, numbering),
                         std::move(renumbered), limit, status);
  if (system == nullptr) return nullptr;
  system->vertexPlace = std::move(numbering.toSystem);
  system->vertexOrder = std::move(numbering.toInput);
  system->tags.assign(tags.begin(), tags.end());
  return system;
}

}  // namespace

// The result is 1 on every path, failures included, and callers know it: the
// outcome is in status alone.
int runConstructor(const ConstructorArguments& arguments, AssembleSystem assemble, SizeLimit* limit,
                   int* taggedCountOut, int* status, MeshSystem** handleOut) {
  const auto& [vertexCount, vertices, triangleCount, triangles, tags] = arguments;
  *handleOut = nullptr;
  if (taggedCountOut != nullptr) *taggedCountOut = 0;
  const int argument = argumentStatus(vertexCount, vertices, triangleCount, triangles, tags);
  if (argument != QELM_STATUS_OK) {
    *status = argument;
    return 1;
  }
  const auto n = asIndex(vertexCount);
  const auto m = asIndex(triangleCount);
  int taggedCount = 0;
  auto system = constructTagged({vertices, 3 * n}, {triangles, 3 * m}, {tags, n}, assemble, limit,
                                taggedCount, *status);
  if (taggedCountOut != nullptr) *taggedCountOut = taggedCount;
  *handleOut = system.release();
  return 1;
}

}  // namespace qelm

extern "C" int qelmctorTagged(int vertexCount, const double* vertices, int triangleCount,
                              const int* triangles, const int* tags, int* taggedCountOut,
                              int* status, MeshSystem** handleOut) {
  return qelm::runConstructor({vertexCount, vertices, triangleCount, triangles, tags},
                              qelm::assembleSystem, nullptr, taggedCountOut, status, handleOut);
}
