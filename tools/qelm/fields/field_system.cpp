#include "fields/field_system.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

FieldSystem::FieldSystem(const Mesh& mesh, std::span<const int> tags, bool robust) {
  UsedPart part = usedPart(mesh);
  const std::vector<int> ownTags = part.of(tags);
  int status = -1;
  MeshSystem* handle = nullptr;
  const auto construct = robust ? qelmctorRobustTagged : qelmctorTagged;
  construct(part.mesh.vertexCount(), part.mesh.vertices.data(), part.mesh.triangleCount(),
            part.mesh.triangles.data(), ownTags.data(), nullptr, &status, &handle);
  handle_.reset(handle);
  vertices_ = std::move(part.vertices);
  if (status != QELM_STATUS_OK)
    throw MeshError(fmt::format("the library refuses the mesh: {}", qelmstatustext(status)));
  if (const int info = qelminfo(handle); info != 0)
    throw SingularError(fmt::format(
        "the system cannot be factorised (qelminfo {}); look for needle-like triangles or try "
        "--robust, and fix a vertex in every connected part",
        info));
}

std::vector<double> FieldSystem::used(std::span<const double> entries) const {
  std::vector<double> own;
  own.reserve(size());
  for (const int v : vertices_) own.push_back(entries[asIndex(v)]);
  return own;
}

std::vector<double> FieldSystem::solve(const Mesh& mesh, std::span<const double> values,
                                       std::span<const double> load) const {
  const std::size_t n = asIndex(mesh.vertexCount());
  const std::size_t count = values.size() / n;
  std::vector<double> own;  // values, then the fields
  std::vector<double> loads;
  for (std::size_t k = 0; k < count; ++k) {
    const std::vector<double> one = used(values.subspan(k * n, n));
    own.insert(own.end(), one.begin(), one.end());
    if (load.empty()) continue;
    const std::vector<double> its = used(load);
    loads.insert(loads.end(), its.begin(), its.end());
  }
  std::int64_t first = -1;
  int status = -1;
  qelmsolveCheckedTagged(handle(), asInt(count), own.data(), load.empty() ? nullptr : loads.data(),
                         own.data(), &first, &status);
  if (status == QELM_STATUS_FIELD_NOT_FINITE)
    throw SingularError(
        fmt::format("the field is not finite, first at {}; look for needle-like "
                    "triangles or try --robust, and look for values that are too large",
                    describeVertex(mesh, vertices_[asIndex(first) % size()])));
  if (status != QELM_STATUS_OK)
    throw InputError(fmt::format("the library refuses to solve: {}", qelmstatustext(status)));
  std::vector<double> fields(values.size(), std::numeric_limits<double>::quiet_NaN());
  for (std::size_t i = 0; i < own.size(); ++i)
    fields[i / size() * n + asIndex(vertices_[i % size()])] = own[i];
  return fields;
}

double FieldSystem::constantError() const {
  const std::vector<double> ones(size(), 1.0);
  std::vector<double> field(size());
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
