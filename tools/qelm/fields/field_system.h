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

/// A mesh's handle without the vertices that are in no triangle. Fields are NaN there.
class FieldSystem {
 public:
  /// Throws InputError if the library refuses the mesh or cannot factorise.
  FieldSystem(const Mesh& mesh, std::span<const int> tags, bool robust);

  /// Fields from prescribed values: one or more, one after another, with a value for each vertex in
  /// the mesh's order. `load` is the same for all fields; empty: none. Throws InputError if a field
  /// is not finite, which qelminfo() does not see.
  std::vector<double> solve(const Mesh& mesh, std::span<const double> values,
                            std::span<const double> load) const;

  /// The error that rounding makes on this mesh, as a part of a field's largest value: how far the
  /// field that should be 1 everywhere is off at most. Infinite if that field is not finite.
  double constantError() const;

  const MeshSystem* handle() const { return handle_.get(); }

  /// The handle's entries of an array with one for each of the mesh's vertices, in the handle's
  /// input order.
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
