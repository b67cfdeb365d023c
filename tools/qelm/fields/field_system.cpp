#include "fields/field_system.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <limits>

#include "mesh/mesh_checks.h"
#include "text/error.h"

namespace qelm::tool {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

FieldSystem::FieldSystem(const Mesh& mesh, std::span<const int> tags) {
  int status = -1;
  MeshSystem* handle = nullptr;
  qelmctorTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                 mesh.triangles.data(), tags.data(), nullptr, &status, &handle);
  handle_.reset(handle);
  if (status != QELM_STATUS_OK)
    throw MeshError(fmt::format("the library refuses the mesh: {}", qelmstatustext(status)));
  if (const int info = qelminfo(handle); info != 0)
    throw SingularError(fmt::format(
        "the system cannot be factorised (qelminfo {}); look for needle-like triangles, and fix "
        "a vertex in every connected part",
        info));
}

std::vector<double> FieldSystem::solve(const Mesh& mesh, std::span<const double> values,
                                       std::span<const double> load) const {
  const auto n = static_cast<std::size_t>(mesh.vertexCount());
  const std::size_t count = values.size() / n;
  std::vector<double> loads;
  if (!load.empty())
    for (std::size_t k = 0; k < count; ++k) loads.insert(loads.end(), load.begin(), load.end());
  std::vector<double> fields(values.size());
  int status = -1;
  qelmsolveManyTagged(handle(), static_cast<int>(count), values.data(),
                      load.empty() ? nullptr : loads.data(), fields.data(), &status);
  if (status != QELM_STATUS_OK)
    throw InputError(fmt::format("the library refuses to solve: {}", qelmstatustext(status)));
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (!std::isfinite(fields[i]))
      throw SingularError(
          fmt::format("the field is not finite, first at {}; look for needle-like "
                      "triangles and for values that are too large",
                      describeVertex(mesh, static_cast<int>(i % n))));
  return fields;
}

double FieldSystem::constantError(std::size_t vertexCount) const {
  const std::vector<double> ones(vertexCount, 1.0);
  std::vector<double> field(vertexCount);
  int status = -1;
  qelmsolveTagged(handle(), ones.data(), field.data(), &status);
  double largest = 0;
  for (const double value : field) {
    const double error = std::abs(value - 1);
    if (!(error <= largest)) largest = std::isfinite(error) ? error : kInfinity;
  }
  return largest;
}

}  // namespace qelm::tool
