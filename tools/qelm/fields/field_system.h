// The library's handle, owned.
#ifndef QELM_TOOLS_FIELD_SYSTEM_H
#define QELM_TOOLS_FIELD_SYSTEM_H

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "mesh/mesh.h"
#include "qelm.h"

namespace qelm::tool {

/// Vertices in no triangle take no part; a field has no value there, which is not a number.
class FieldSystem {
 public:
  /// Plain or robust. Throws InputError when the library refuses the mesh or cannot
  /// factorise.
  FieldSystem(const Mesh& mesh, std::span<const int> tags, bool robust);

  /// One or more fields, one after another, with a value for each vertex in the mesh's
  /// order; `load` is one of them for all, or empty for none. Throws InputError when a
  /// value is not finite, qelminfo() alone does not see that; vertices in no triangle apart.
  std::vector<double> solve(const Mesh& mesh, std::span<const double> values,
                            std::span<const double> load) const;

  /// What rounding does on this mesh: the largest deviation of the field that should be 1
  /// everywhere, so an error as a part of a field's largest value. Infinite where such a
  /// field is not finite.
  double constantError() const;

  const MeshSystem* handle() const { return handle_.get(); }

  /// Of one entry for each of the mesh's vertices, those that the handle has, in its input order.
  std::vector<double> used(std::span<const double> entries) const;

 private:
  std::size_t size() const { return vertices_.size(); }

  struct Free {
    void operator()(MeshSystem* handle) const { qelmfree(handle); }
  };
  std::unique_ptr<MeshSystem, Free> handle_;
  std::vector<int> vertices_;  ///< the handle's input vertices, by their numbers in the mesh
};

}  // namespace qelm::tool

#endif
