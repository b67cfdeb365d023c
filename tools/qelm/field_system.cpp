#include "field_system.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>

#include "error.h"
#include "mesh_checks.h"

namespace qelm::tool {

FieldSystem::FieldSystem(const Mesh& mesh, std::span<const int> tags) {
  int status = -1;
  MeshSystem* handle = nullptr;
  qelmctorTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                 mesh.triangles.data(), tags.data(), nullptr, &status, &handle);
  handle_.reset(handle);
  if (status != QELM_STATUS_OK)
    throw MeshError(fmt::format("the library refuses the mesh with status {}", status));
  if (const int info = qelminfo(handle); info != 0)
    throw SingularError(fmt::format(
        "the system cannot be factorised (qelminfo {}); look for needle-like triangles, and fix "
        "a vertex in every connected part",
        info));
}

std::vector<double> FieldSystem::solve(const Mesh& mesh, std::span<const double> values,
                                       std::span<const double> load) const {
  std::vector<double> field(values.size());
  int status = -1;
  if (load.empty())
    qelmsolveTagged(handle(), values.data(), field.data(), &status);
  else
    qelmsolvePTagged(handle(), values.data(), load.data(), field.data(), &status);
  if (status != QELM_STATUS_OK)
    throw InputError(fmt::format("the library refuses to solve with status {}", status));
  for (std::size_t v = 0; v < field.size(); ++v)
    if (!std::isfinite(field[v]))
      throw SingularError(
          fmt::format("the field is not finite, first at {}; look for needle-like "
                      "triangles and for values that are too large",
                      describeVertex(mesh, static_cast<int>(v))));
  return field;
}

}  // namespace qelm::tool
